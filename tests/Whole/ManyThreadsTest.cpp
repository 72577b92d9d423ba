/** @file
 *  Many threads of a host at a time, each with objects of its own over surfaces that all of them read. How long they run is
 *  told by the environment variable ZDK_STRESS_SECONDS. */

#include "Whole/Program.h"

#include <ZdkVisionLib/Alignment/RefFrame.h>
#include <ZdkVisionLib/Common/MaskProfile.h>

#include "support/Surfaces.h"

#include <atomic>
#include <chrono>
#include <cmath>
#include <cstdlib>
#include <deque>
#include <exception>
#include <random>
#include <thread>

namespace
{

using namespace Zvl;
using WholeTest::Digest;
using WholeTest::Digests;
using WholeTest::Operation;
using WholeTest::World;
using Clock = std::chrono::steady_clock;

constexpr unsigned kThreads = 8;

Clock::duration HowLong()
{
    const char* seconds = std::getenv("ZDK_STRESS_SECONDS");
    return std::chrono::milliseconds(seconds == nullptr ? 1000 : std::lround(1000.0 * std::strtod(seconds, nullptr)));
}

/** Lets null allocator arguments mean an allocator that counts what lives. It takes no lock, which would bring the threads
 *  into an order that they do not have without it. */
class CountingDefault
{
public:
    CountingDefault()
    {
        Zo::Test(qAlloc_Construct(handle.Slot(), &Allocate, &Free, &live));
        Zo::Test(qAlloc_SetDefault(handle));
    }

    ~CountingDefault() { qAlloc_SetDefault(nullptr); }

    CountingDefault(const CountingDefault&) = delete;
    CountingDefault& operator=(const CountingDefault&) = delete;

    std::ptrdiff_t LiveBlocks() const { return live.load(); }

private:
    static void* Allocate(void* context, std::size_t size) noexcept
    {
        void* memory = std::malloc(size);
        static_cast<std::atomic<std::ptrdiff_t>*>(context)->fetch_add(memory != nullptr ? 1 : 0,
                                                                      std::memory_order_relaxed);
        return memory;
    }

    static void Free(void* context, void* memory) noexcept
    {
        static_cast<std::atomic<std::ptrdiff_t>*>(context)->fetch_sub(1, std::memory_order_relaxed);
        std::free(memory);
    }

    std::atomic<std::ptrdiff_t> live{0};
    Zo::Object<void*> handle;
};

/** Frames, their bytes, and the estimation of rigid motions. */
void DigestFrames(const World& world, Digests& digests)
{
    RefFrame frame;
    frame.SetFrame(std::vector<qPoint64f>(world.ring.begin(), world.ring.begin() + 100),
                   std::vector<qPoint64f>(world.ring.begin() + 100, world.ring.begin() + 200));
    frame.Rotate(20.0, {0.0, 0.0, 1.0}).Translate(1.0, 2.0, 3.0);
    Zo::Object<void*> bytes;
    frame.Serialize(bytes.Slot());
    RefFrame read;
    read.Deserialize(qArray1_Data(bytes), qArray1_Count(bytes), nullptr);
    Zo::Object<void*> again;
    read.Serialize(again.Slot());
    digests["RefFrame"] =
        Digest().Add(qArray1_Data(bytes), qArray1_Count(bytes)).Add(qArray1_Data(again), qArray1_Count(again)).Value();
    std::vector<qPoint3d64f> source;
    std::vector<qPoint3d64f> target;
    for (std::size_t i = 0; i < 50; ++i)
    {
        const qPoint64f& point = world.ring[i];
        source.push_back({point.x, point.y, static_cast<double>(i % 7)});
        target.push_back(frame.Apply(source.back()));
    }
    qL3dTransform3d transform{};
    EXPECT_EQ(EstimateRigidTransformation(source, target, &transform), STATUS_OK);
    digests["EstimateRigidTransformation"] = Digest().Add(&transform, sizeof(transform)).Value();
}

/** Regions over the first row of the plate as a line scan. */
void DigestProfileRegions(const World& world, Digests& digests)
{
    Profile profile(qPoint64f{world.offset.x, 0.0}, qPoint64f{world.scale.x, 0.001});
    profile.AddLayer(xxq16s_type, world.columns, nullptr);
    Zo::Test(qMemCopy(qArray1_Data(profile.layers[0]), qArray2_At(world.plate.layers[0], 0, 0),
                      world.columns * sizeof(short)));
    const auto circle = std::make_shared<CircleRoiProfile>(AnnularSector2d<double>{0.1, 3.3, 0.0, 360.0, {-1.0, 0.1}},
                                                           world.columns, profile.scale, profile.offset, 1, nullptr);
    const auto rectangle = std::make_shared<RectangleRoiProfile>(
        Region2d<double>{-2.0, -0.5, 7.1, 1.3, 11.0}, world.columns, profile.scale, profile.offset, 1, nullptr);
    ComposedRoiProfile composed(1, nullptr);
    composed.Add(circle);
    composed.Add(rectangle->ApplyAnchor({0.5, 0.0, 0.0, 3.0}));
    composed.ApplyRoi(profile);
    const Zo::Object<void*> mask = composed.GetMask();
    digests["ComposedRoiProfile"] = Digest().Add(qArray1_Data(mask), qArray1_Count(mask)).Value();
}

/** Handles of the shared layers, copied, moved, dropped and cloned. */
void DigestHandles(const World& world, Digests& digests)
{
    std::deque<Zo::Object<void*>> handles;
    for (int i = 0; i < 400; ++i)
    {
        handles.push_back(world.plate.layers[static_cast<std::size_t>(i % 2)]);
        handles.push_back(world.other.layers[0]);
        if (i % 3 == 0)
        {
            handles.pop_front();
            handles.front() = handles.back();
        }
    }
    const Surface copy = world.plate;
    Zo::Object<void*> clone;
    Zo::Test(xqObject_CloneImpl(clone.Slot(), copy.layers[1], nullptr, nullptr, 0));
    digests["handles"] = Digest().AddArray(handles.back()).AddArray(clone).AddValue(handles.size()).Value();
}

std::vector<Operation> AllOperations()
{
    std::vector<Operation> operations = WholeTest::Operations();
    operations.insert(operations.end(), {DigestFrames, DigestProfileRegions, DigestHandles, DigestHandles});
    return operations;
}

/** The operations over worlds of some sizes, and what each of them gives on one thread. */
class Work
{
public:
    Work() : operations(AllOperations())
    {
        for (const auto& [rows, columns] : {std::pair<std::size_t, std::size_t>(64, 80), {97, 130}, {200, 340}})
        {
            const World& world = worlds.emplace_back(rows, columns);
            for (const Operation operation : operations)
            {
                operation(world, expected.emplace_back());
            }
        }
    }

    /** Draws one operation and compares what it gives. Throws what it throws. */
    bool DoOne(std::mt19937& random) const
    {
        const std::size_t which = random() % expected.size();
        Digests digests;
        operations[which % operations.size()](worlds[which / operations.size()], digests);
        return digests == expected[which];
    }

    void ExpectNoCountLeft() const
    {
        for (const World& world : worlds)
        {
            for (const Surface* surface : {&world.plate, &world.other})
            {
                for (const Zo::Object<void*>& layer : surface->layers)
                {
                    EXPECT_EQ(qObject_ShareCount(layer), 1);
                }
            }
        }
    }

private:
    std::vector<Operation> operations;
    std::deque<World> worlds;
    std::deque<Digests> expected; ///< of each operation over each world
};

struct Tally
{
    std::size_t done = 0;
    std::size_t different = 0;
    std::string thrown;
};

Tally WorkUntil(Clock::time_point end, const Work& work, unsigned seed)
{
    std::mt19937 random(seed);
    Tally tally;
    try
    {
        do
        {
            tally.different += work.DoOne(random) ? 0U : 1U;
            ++tally.done;
        } while (Clock::now() < end);
    }
    catch (const std::exception& exception)
    {
        tally.thrown = exception.what();
    }
    return tally;
}

TEST(ManyThreads, GiveTheResultsOfOneAndLeaveNothingBehind)
{
    const CountingDefault allocator;
    const TestSupport::WorkerCount workers(3);
    {
        const Work work;
        const std::ptrdiff_t before = allocator.LiveBlocks();
        std::vector<Tally> tallies(kThreads);
        std::vector<std::thread> threads;
        const Clock::time_point end = Clock::now() + HowLong();
        for (unsigned i = 0; i < kThreads; ++i)
        {
            threads.emplace_back([&, i] { tallies[i] = WorkUntil(end, work, i); });
        }
        for (std::thread& thread : threads)
        {
            thread.join();
        }
        std::size_t done = 0;
        for (const Tally& tally : tallies)
        {
            EXPECT_EQ(tally.different, 0U);
            EXPECT_EQ(tally.thrown, "");
            EXPECT_GT(tally.done, 0U);
            done += tally.done;
        }
        RecordProperty("operations", std::to_string(done));
        work.ExpectNoCountLeft();
        EXPECT_EQ(allocator.LiveBlocks(), before);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0);
}

/** One object, whose count all threads change as fast as they can. */
TEST(ManyThreads, ShareOneObjectWithoutLosingACount)
{
    Zo::Object<void*> shared;
    Zo::Test(qArray1_Construct(shared.Slot(), xxq8u_type, 16, nullptr));
    std::vector<std::thread> threads;
    const Clock::time_point end = Clock::now() + HowLong() / 4;
    for (unsigned i = 0; i < kThreads; ++i)
    {
        threads.emplace_back(
            [&shared, end]
            {
                std::vector<Zo::Object<void*>> held;
                while (Clock::now() < end)
                {
                    held.assign(50, shared);
                    held[7] = held[8];
                    held.erase(held.begin(), held.begin() + 20);
                }
            });
    }
    for (std::thread& thread : threads)
    {
        thread.join();
    }
    EXPECT_EQ(qObject_ShareCount(shared), 1);
    Zo::Object<void*> last = std::move(shared);
    void* raw = last.Get();
    last.Reset();
    EXPECT_FALSE(xqCastClass_ObjectIsValid(raw));
}

} // namespace
