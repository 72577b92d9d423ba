#include "platform/Fixtures.h"

#include <algorithm>
#include <atomic>
#include <stdexcept>
#include <string>
#include <thread>

namespace
{

using namespace PlatformTest;

/** Sets the pool's count for one test. */
class Workers
{
public:
    explicit Workers(std::size_t count) : before(qThreadPool_Count(qThreadPool_Default()))
    {
        EXPECT_EQ(qThreadPool_SetCount(qThreadPool_Default(), count), STATUS_OK);
    }
    ~Workers() { qThreadPool_SetCount(qThreadPool_Default(), before); }
    Workers(const Workers&) = delete;
    Workers& operator=(const Workers&) = delete;

private:
    std::size_t before;
};

constexpr std::size_t kCounts[] = {1, 2, 3, 8, 17, 1024};

/** How often each worker ran. The cells are plain: each belongs to one worker, and the end of the job orders
 *  them before the caller's look at them. */
struct Tally
{
    std::vector<int> runs = std::vector<int>(1024, 0);
    void* target = nullptr;
    std::size_t count = 0;

    static qStatus Run(void* context, void* sender, const qParallelArgs* args)
    {
        auto& self = *static_cast<Tally*>(context);
        const bool asTold = sender == nullptr && args->target == self.target && args->workerCount == self.count;
        self.runs[args->worker] += asTold ? 1 : 100;
        return STATUS_OK;
    }

    bool IsOnceEach() const
    {
        return std::all_of(runs.begin(), runs.begin() + static_cast<std::ptrdiff_t>(count),
                           [](int runCount) { return runCount == 1; }) &&
               std::all_of(runs.begin() + static_cast<std::ptrdiff_t>(count), runs.end(),
                           [](int runCount) { return runCount == 0; });
    }
};

TEST(Parallel, EachWorkerRunsExactlyOnce)
{
    const Handle small = MakeArray1(xxq8u_type, 10);
    const Handle large = MakeArray2(xxq16s_type, 1000, 1000);
    const Handle list = MakeList(xxq8u_type);
    for (const std::size_t count : kCounts)
    {
        const Workers workers(count);
        EXPECT_EQ(qThreadPool_Count(qThreadPool_Default()), count);
        for (void* target : {static_cast<void*>(nullptr), small.Get(), large.Get(), list.Get()})
        {
            Tally tally;
            tally.target = target;
            tally.count = count;
            EXPECT_EQ(qParallel_Execute(&Tally::Run, &tally, target), STATUS_OK);
            EXPECT_TRUE(tally.IsOnceEach()) << count;
        }
    }
}

TEST(Parallel, SmallTargetsStayOnTheCallingThreadInOneShare)
{
    const Workers workers(8);
    const Handle target = MakeArray2(xxq8u_type, 10, 10);
    struct Seen
    {
        std::thread::id caller = std::this_thread::get_id();
        std::size_t next = 0;
        bool inOrder = true;
        std::vector<std::size_t> begins;
        std::vector<std::size_t> ends;
    } seen;
    const auto callback = [](void* context, void*, const qParallelArgs* args) -> qStatus
    {
        auto& self = *static_cast<Seen*>(context);
        self.inOrder = self.inOrder && std::this_thread::get_id() == self.caller && args->worker == self.next;
        ++self.next;
        self.begins.push_back(qParallelArgs_Begin(args, 3, 10));
        self.ends.push_back(qParallelArgs_End(args, 3, 10));
        return STATUS_OK;
    };
    EXPECT_EQ(qParallel_Execute(callback, &seen, target), STATUS_OK);
    EXPECT_TRUE(seen.inOrder);
    EXPECT_EQ(seen.next, 8U);
    const std::vector<std::size_t> begins = {3, 10, 10, 10, 10, 10, 10, 10};
    EXPECT_EQ(seen.begins, begins);
    EXPECT_EQ(seen.ends, std::vector<std::size_t>(8, 10)) << "the first worker has all of it";
}

TEST(Parallel, TargetsOf64KiBAreShared)
{
    const Workers workers(3);
    const auto endOfFirstShare = [](std::size_t bytes)
    {
        const Handle target = MakeArray1(xxq8u_type, bytes);
        std::size_t end = 0;
        const auto callback = [](void* context, void*, const qParallelArgs* args) -> qStatus
        {
            if (args->worker == 0)
            {
                *static_cast<std::size_t*>(context) = qParallelArgs_End(args, 0, 9);
            }
            return STATUS_OK;
        };
        EXPECT_EQ(qParallel_Execute(callback, &end, target), STATUS_OK);
        return end;
    };
    EXPECT_EQ(endOfFirstShare(65535), 9U);
    EXPECT_EQ(endOfFirstShare(65536), 3U);
}

TEST(Parallel, ManyHostThreadsMayCallAtOnce)
{
    const Workers workers(8);
    std::vector<std::thread> hosts;
    for (int host = 0; host < 4; ++host)
    {
        hosts.emplace_back(
            []
            {
                for (int turn = 0; turn < 50; ++turn)
                {
                    Tally tally;
                    tally.count = 8;
                    EXPECT_EQ(qParallel_Execute(&Tally::Run, &tally, nullptr), STATUS_OK);
                    EXPECT_TRUE(tally.IsOnceEach());
                }
            });
    }
    for (std::thread& host : hosts)
    {
        host.join();
    }
}

TEST(Parallel, JobsNest)
{
    const Workers workers(8);
    Tally inner[8];
    for (Tally& tally : inner)
    {
        tally.count = 8;
    }
    const auto callback = [](void* context, void*, const qParallelArgs* args)
    { return qParallel_Execute(&Tally::Run, static_cast<Tally*>(context) + args->worker, nullptr); };
    EXPECT_EQ(qParallel_Execute(callback, inner, nullptr), STATUS_OK);
    for (const Tally& tally : inner)
    {
        EXPECT_TRUE(tally.IsOnceEach());
    }
}

TEST(Parallel, AWaitingWorkerTakesNoWorkOfOuterJobs)
{
    const Workers workers(17);
    struct Guard
    {
        std::atomic<bool> entangled{false};
    } guard;
    // While a thread waits for an inner job, it must not run another worker of the outer one.
    const auto callback = [](void* context, void*, const qParallelArgs*) -> qStatus
    {
        thread_local bool inside = false;
        if (inside)
        {
            static_cast<Guard*>(context)->entangled = true;
        }
        inside = true;
        Tally tally;
        tally.count = 17;
        const qStatus status = qParallel_Execute(&Tally::Run, &tally, nullptr);
        inside = false;
        return status;
    };
    for (int turn = 0; turn < 20; ++turn)
    {
        EXPECT_EQ(qParallel_Execute(callback, &guard, nullptr), STATUS_OK);
    }
    EXPECT_FALSE(guard.entangled);
}

/** Workers fail or throw as told. */
struct Failures
{
    std::vector<std::size_t> failing;
    std::vector<std::size_t> throwing;
    std::atomic<std::size_t> runs{0};

    static qStatus Run(void* context, void*, const qParallelArgs* args)
    {
        auto& self = *static_cast<Failures*>(context);
        ++self.runs;
        const auto has = [args](const std::vector<std::size_t>& indices)
        { return std::find(indices.begin(), indices.end(), args->worker) != indices.end(); };
        if (has(self.throwing))
        {
            throw std::runtime_error(std::to_string(args->worker));
        }
        return has(self.failing) ? -static_cast<qStatus>(args->worker) : STATUS_OK;
    }
};

TEST(Parallel, TheLowestFailureWinsAfterAllHaveEnded)
{
    const Handle small = MakeArray1(xxq8u_type, 10);
    const Workers workers(17);
    for (void* target : {static_cast<void*>(nullptr), small.Get()})
    {
        for (int turn = 0; turn < 20; ++turn)
        {
            Failures failures;
            failures.failing = {16, 4, 11};
            EXPECT_EQ(qParallel_Execute(&Failures::Run, &failures, target), -4);
            EXPECT_EQ(failures.runs, 17U);
        }
        Failures first;
        first.failing = {0};
        EXPECT_EQ(qParallel_Execute(&Failures::Run, &first, target), 0) << "a status of 0 is a failure";
    }
}

TEST(Parallel, TheLowestExceptionLeavesTheCall)
{
    const Handle small = MakeArray1(xxq8u_type, 10);
    const Workers workers(17);
    for (void* target : {static_cast<void*>(nullptr), small.Get()})
    {
        Failures failures;
        failures.throwing = {12, 3, 7};
        failures.failing = {5};
        try
        {
            qParallel_Execute(&Failures::Run, &failures, target);
            ADD_FAILURE();
        }
        catch (const std::runtime_error& error)
        {
            EXPECT_STREQ(error.what(), "3");
        }
        EXPECT_EQ(failures.runs, 17U);
        failures.failing = {1};
        EXPECT_EQ(qParallel_Execute(&Failures::Run, &failures, target), -1);
    }
}

TEST(Parallel, ArgumentsAreChecked)
{
    EXPECT_EQ(qParallel_Execute(nullptr, nullptr, nullptr), STATUS_BAD_PARAMETER);
    Tally tally;
    EXPECT_STOPPED(qParallel_Execute(&Tally::Run, &tally, DeadHandle()));
    EXPECT_EQ(tally.runs[0], 0);
}

TEST(ThreadPool, CountsOutOfRangeAreRefused)
{
    const qThreadPool pool = qThreadPool_Default();
    ASSERT_NE(pool, nullptr);
    EXPECT_EQ(pool, qThreadPool_Default());
    const std::size_t before = qThreadPool_Count(pool);
    EXPECT_GE(before, 1U);
    EXPECT_EQ(qThreadPool_SetCount(pool, 0), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qThreadPool_SetCount(pool, 1025), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qThreadPool_SetCount(pool, kHuge), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qThreadPool_Count(pool), before);
}

TEST(ParallelArgs, SharesCoverTheRangeInOrderAndBalance)
{
    std::vector<std::size_t> totals = {kHuge, kHuge - 1, kHalf, kHalf + 1, std::size_t{1} << 32};
    for (std::size_t total = 0; total < 60; ++total)
    {
        totals.push_back(total);
    }
    for (const std::size_t count : {std::size_t{1}, std::size_t{2}, std::size_t{3}, std::size_t{7}, std::size_t{8},
                                    std::size_t{17}, std::size_t{1024}})
    {
        for (const std::size_t total : totals)
        {
            std::size_t expectedBegin = 0;
            for (std::size_t worker = 0; worker < count; ++worker)
            {
                const qParallelArgs args{nullptr, worker, count};
                const std::size_t begin = qParallelArgs_Begin(&args, 0, total);
                const std::size_t end = qParallelArgs_End(&args, 0, total);
                ASSERT_EQ(begin, expectedBegin);
                ASSERT_GE(end, begin);
                ASSERT_GE(end - begin, total / count);
                ASSERT_LE(end - begin, total / count + (total % count == 0 ? 0 : 1));
                expectedBegin = end;
            }
            ASSERT_EQ(expectedBegin, total);
        }
    }
}

TEST(ParallelArgs, SharesByHand)
{
    const qParallelArgs middle{nullptr, 1, 3};
    EXPECT_EQ(qParallelArgs_Begin(&middle, 0, 10), 4U); // shares 4, 3, 3
    EXPECT_EQ(qParallelArgs_End(&middle, 0, 10), 7U);
    EXPECT_EQ(qParallelArgs_Begin(&middle, 100, 110), 104U);
    EXPECT_EQ(qParallelArgs_End(&middle, 100, 110), 107U);
    EXPECT_EQ(qParallelArgs_Begin(&middle, 5, 2), 5U) << "a range that ends before it starts is empty";
    EXPECT_EQ(qParallelArgs_End(&middle, 5, 2), 5U);
}

TEST(ParallelArgs, WorkersBeyondTheSharesFindTheirsEmpty)
{
    const auto share = [](std::size_t worker, std::size_t from, std::size_t total)
    {
        const qParallelArgs args{nullptr, worker, 5, 2};
        return std::pair(qParallelArgs_Begin(&args, from, total), qParallelArgs_End(&args, from, total));
    };
    EXPECT_EQ(share(0, 10, 17), std::pair(std::size_t{10}, std::size_t{14}));
    EXPECT_EQ(share(1, 10, 17), std::pair(std::size_t{14}, std::size_t{17}));
    EXPECT_EQ(share(2, 10, 17), std::pair(std::size_t{17}, std::size_t{17}));
    EXPECT_EQ(share(4, 10, 17), std::pair(std::size_t{17}, std::size_t{17}));
    EXPECT_EQ(share(4, 5, 2), std::pair(std::size_t{5}, std::size_t{5}));
    EXPECT_EQ(share(3, 0, kHuge), std::pair(kHuge, kHuge));
}

TEST(ParallelArgs, NonsenseIsStopped)
{
    const qParallelArgs none{nullptr, 0, 0};
    const qParallelArgs outside{nullptr, 3, 3};
    EXPECT_STOPPED(qParallelArgs_Begin(nullptr, 0, 10));
    EXPECT_STOPPED(qParallelArgs_End(&none, 0, 10));
    EXPECT_STOPPED(qParallelArgs_Begin(&outside, 0, 10));
}

} // namespace
