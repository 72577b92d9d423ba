#include "Geometry/VoronoiBeach.h"
#include "Geometry/VoronoiClip.h"
#include "Geometry/VoronoiHeap.h"
#include "Geometry/VoronoiQueue.h"
#include "Geometry/VoronoiSites.h"

#include "support/ExpectThrow.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <numeric>
#include <random>
#include <vector>

namespace
{

using Zvl::VoronoiArena;
using Zvl::VoronoiBeachIndex;
using Zvl::VoronoiBeachRun;
using Zvl::VoronoiEdge;
using Zvl::VoronoiHalfEdge;
using Zvl::VoronoiQueue;
using Zvl::VoronoiSite;

void* TakeFromHeap(void* /*context*/, std::size_t size)
{
    return std::malloc(size);
}

void ReturnToHeap(void* /*context*/, void* memory)
{
    std::free(memory);
}

/** An arena that is freed at the end. */
struct OwnArena : VoronoiArena
{
    OwnArena() : VoronoiArena(nullptr, &TakeFromHeap, &ReturnToHeap) {}
    ~OwnArena() { FreeBlocks(); }
    OwnArena(const OwnArena&) = delete;
    OwnArena& operator=(const OwnArena&) = delete;
};

struct Queue
{
    explicit Queue(std::int32_t count) : items(static_cast<std::size_t>(count)), queue{count, 1, items.data()} {}

    std::vector<VoronoiHalfEdge*> items;
    VoronoiQueue queue;
};

VoronoiHalfEdge Event(double y, double x)
{
    VoronoiHalfEdge event{};
    event.y = y;
    event.vertex = {x, 0.0};
    return event;
}

TEST(VoronoiQueue, GivesTheLowestAndThenTheLeftmostEvent)
{
    Queue held(8);
    VoronoiHalfEdge high = Event(2.0, 0.0);
    VoronoiHalfEdge right = Event(1.0, 5.0);
    VoronoiHalfEdge left = Event(1.0, -5.0);
    held.queue.Push(&high);
    held.queue.Push(&right);
    held.queue.Push(&left);
    EXPECT_EQ(&held.queue.Top(), &left);
    EXPECT_EQ(held.queue.Pop(), &left);
    EXPECT_EQ(held.queue.Pop(), &right);
    EXPECT_EQ(held.queue.Pop(), &high);
    EXPECT_TRUE(held.queue.Empty());
}

TEST(VoronoiQueue, RemovalOfWhatWasNeverQueuedOrFromAnEmptyQueueDoesNothing)
{
    Queue held(4);
    VoronoiHalfEdge queued = Event(1.0, 0.0);
    const VoronoiHalfEdge other = Event(1.0, 0.0);
    held.queue.Push(&queued);
    held.queue.Remove(&other);
    EXPECT_EQ(held.queue.numitems, 2);
    held.queue.Remove(&queued);
    EXPECT_TRUE(held.queue.Empty());
    EXPECT_EQ(queued.pqpos, 1); // the position that it left
    held.queue.Remove(&queued);
    EXPECT_TRUE(held.queue.Empty());
}

TEST(VoronoiQueue, AFullQueueRefusesMore)
{
    Queue held(2);
    VoronoiHalfEdge first = Event(1.0, 0.0);
    VoronoiHalfEdge second = Event(2.0, 0.0);
    held.queue.Push(&first);
    TestSupport::ExpectThrow(STATUS_ABORTED, "Zvl::GenerateVoronoi", [&] { held.queue.Push(&second); });
    EXPECT_EQ(held.queue.Pop(), &first);
}

TEST(VoronoiQueue, RandomPushesAndRemovalsKeepTheOrder)
{
    std::mt19937 random(1);
    std::vector<VoronoiHalfEdge> events(300);
    Queue held(301);
    std::vector<VoronoiHalfEdge*> expected;
    for (VoronoiHalfEdge& event : events)
    {
        event = Event(static_cast<double>(random() % 20), static_cast<double>(random() % 20));
        held.queue.Push(&event);
        expected.push_back(&event);
        if (random() % 3 == 0)
        {
            const std::size_t removed = random() % expected.size();
            held.queue.Remove(expected[removed]);
            expected.erase(expected.begin() + static_cast<std::ptrdiff_t>(removed));
        }
    }
    const auto before = [](const VoronoiHalfEdge* a, const VoronoiHalfEdge* b)
    { return a->y != b->y ? a->y < b->y : a->vertex.x < b->vertex.x; };
    std::sort(expected.begin(), expected.end(), before);
    for (const VoronoiHalfEdge* event : expected)
    {
        ASSERT_FALSE(held.queue.Empty());
        const VoronoiHalfEdge* popped = held.queue.Pop();
        EXPECT_EQ(popped->y, event->y);
        EXPECT_EQ(popped->vertex.x, event->vertex.x);
    }
    EXPECT_TRUE(held.queue.Empty());
}

TEST(VoronoiArena, RecordsAreZeroAndFillBlocks)
{
    struct Record
    {
        double values[64];
    };
    static_assert(sizeof(Record) == 512);
    OwnArena arena;
    Record* first = arena.New<Record>("");
    EXPECT_EQ(first->values[63], 0.0);
    for (std::size_t i = 1; i < (VoronoiArena::kBlockSize - 24) / sizeof(Record); ++i)
    {
        EXPECT_EQ(arena.New<Record>(""), first + i);
    }
    EXPECT_NE(arena.New<Record>(""), first + 31); // 31 records fit in the 16360 bytes of a block
    arena.FreeBlocks();
    EXPECT_NE(arena.New<Record>(""), nullptr);
}

TEST(VoronoiHeap, BlocksAreApartAlignedAndWritable)
{
    for (const std::int32_t count : {-1, 0, 1000, 2147483647})
    {
        Zvl::VoronoiHeap* heap = Zvl::VoronoiHeap::New(count);
        ASSERT_NE(heap, nullptr);
        std::vector<char*> blocks;
        for (const std::size_t size : {1U, 100U, 16384U, 16384U, 100000U, 3U, 16384U})
        {
            blocks.push_back(static_cast<char*>(Zvl::VoronoiHeap::Allocate(heap, size)));
            ASSERT_NE(blocks.back(), nullptr);
            EXPECT_EQ(reinterpret_cast<std::uintptr_t>(blocks.back()) % alignof(std::max_align_t), 0U);
            std::fill_n(blocks.back(), size, static_cast<char>(blocks.size()));
        }
        heap->Disown();
        for (std::size_t i = 0; i < blocks.size(); ++i)
        {
            EXPECT_EQ(*blocks[i], static_cast<char>(i + 1));
            Zvl::VoronoiHeap::Release(heap, blocks[i]);
        }
    }
}

/** The index beside a plain list, with half-edges told apart by their keys. */
class IndexBesideList
{
public:
    explicit IndexBesideList(std::size_t sites) : table(VoronoiBeachIndex::TableSize(sites)), index(arena, table.data())
    {
    }

    void InsertAt(std::size_t place, double key)
    {
        auto* added = arena.New<VoronoiHalfEdge>("");
        added->y = key;
        index.InsertAfter(place == 0 ? nullptr : list[place - 1], added);
        list.insert(list.begin() + static_cast<std::ptrdiff_t>(place), added);
    }

    void ReplaceAt(std::size_t place)
    {
        auto* added = arena.New<VoronoiHalfEdge>("");
        added->y = list[place]->y;
        VoronoiBeachIndex::Replace(list[place], added);
        list[place] = added;
    }

    void RemoveAt(std::size_t place)
    {
        index.Remove(list[place]);
        list.erase(list.begin() + static_cast<std::ptrdiff_t>(place));
    }

    std::size_t PlaceFor(double key) const
    {
        std::size_t place = 0;
        while (place < list.size() && list[place]->y < key)
        {
            ++place;
        }
        return place;
    }

    void ExpectFound(double key) const
    {
        const std::size_t place = PlaceFor(key);
        const VoronoiHalfEdge* found =
            index.FindLast([key](const VoronoiHalfEdge* halfEdge) { return halfEdge->y < key; });
        EXPECT_EQ(found, place == 0 ? nullptr : list[place - 1]);
    }

    /** Empties the index, and lists everything again. */
    void ListAnew()
    {
        index.Clear();
        EXPECT_EQ(index.FindLast([](const VoronoiHalfEdge* /*halfEdge*/) { return true; }), nullptr);
        for (std::size_t place = 0; place < list.size(); ++place)
        {
            index.InsertAfter(place == 0 ? nullptr : list[place - 1], list[place]);
        }
    }

    std::size_t Size() const { return list.size(); }

private:
    OwnArena arena;
    std::vector<VoronoiBeachRun*> table;
    VoronoiBeachIndex index;
    std::vector<VoronoiHalfEdge*> list;
};

TEST(VoronoiBeachIndex, FindsAmongWhatWasInsertedReplacedAndRemoved)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> key(0.0, 1.0);
    IndexBesideList both(4000);
    both.ExpectFound(0.5);
    for (int round = 0; round < 6; ++round)
    {
        for (int i = 0; i < 1000; ++i)
        {
            const double added = key(random) * (round % 2 == 0 ? 1.0 : 0.01); // every other round in one place
            both.InsertAt(both.PlaceFor(added), added);
            both.ExpectFound(key(random));
            both.ReplaceAt(random() % both.Size());
        }
        while (both.Size() > (round == 2 ? 0U : 100U))
        {
            both.RemoveAt(random() % both.Size());
            both.ExpectFound(key(random));
        }
        both.ListAnew();
        both.ExpectFound(key(random));
    }
}

std::vector<VoronoiSite> SortedSites(const std::vector<qPoint64f>& points)
{
    std::vector<std::uint32_t> room(points.size());
    std::vector<VoronoiSite> sites(points.size());
    sites.resize(Zvl::SortSites(points, nullptr, room, sites).size());
    return sites;
}

/** Sorts by y, then x, then place, and drops what equals its predecessor. */
void ExpectSweepOrder(const std::vector<qPoint64f>& points)
{
    std::vector<std::int32_t> order(points.size());
    std::iota(order.begin(), order.end(), 0);
    const auto keyOf = [&points](std::int32_t index)
    {
        const qPoint64f& p = points[static_cast<std::size_t>(index)];
        return std::pair(p.y, p.x);
    };
    std::stable_sort(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) { return keyOf(a) < keyOf(b); });
    order.erase(
        std::unique(order.begin(), order.end(), [&](std::int32_t a, std::int32_t b) { return keyOf(a) == keyOf(b); }),
        order.end());
    const std::vector<VoronoiSite> sites = SortedSites(points);
    ASSERT_EQ(sites.size(), order.size());
    for (std::size_t i = 0; i < sites.size(); ++i)
    {
        ASSERT_EQ(sites[i].index, order[i]);
        ASSERT_EQ(std::pair(sites[i].p.y, sites[i].p.x), keyOf(order[i]));
    }
}

TEST(VoronoiSites, ComeInSweepOrderWhateverTheirHeights)
{
    std::mt19937 random(4);
    std::uniform_real_distribution<double> number(-1.0, 1.0);
    for (const std::size_t count : {0U, 1U, 2U, 17U, 3000U})
    {
        for (int kind = 0; kind < 8; ++kind)
        {
            std::vector<qPoint64f> points(count);
            for (qPoint64f& p : points)
            {
                const double y = number(random);
                const double heights[] = {y,   // uniform
                                          0.5, // level
                                          std::round(4.0 * y),
                                          std::pow(y, 21.0), // most of them in one strip
                                          1e100 * y,
                                          y > 0.9 ? 1e100 : y,
                                          5e-324 * std::round(2.0 * y), // a height that has no reciprocal
                                          1e8 + 1e-8 * std::round(3.0 * y)};
                p = {std::round(3.0 * number(random)), heights[kind]};
            }
            ExpectSweepOrder(points);
        }
    }
}

/** The edge `a x + b y = c`. */
VoronoiEdge EdgeOn(double a, double b, double c)
{
    VoronoiEdge edge{};
    edge.line = {a, b};
    edge.c = c;
    edge.pos[0] = Zvl::kVoronoiNullPoint;
    edge.pos[1] = Zvl::kVoronoiNullPoint;
    return edge;
}

void ExpectClipped(VoronoiEdge edge, const qPoint64f& first, const qPoint64f& second)
{
    EXPECT_TRUE(Zvl::ClipEdge(edge, {0.0, 0.0}, {8.0, 4.0}));
    EXPECT_EQ(edge.pos[0].x, first.x);
    EXPECT_EQ(edge.pos[0].y, first.y);
    EXPECT_EQ(edge.pos[1].x, second.x);
    EXPECT_EQ(edge.pos[1].y, second.y);
}

TEST(VoronoiClip, EdgesWithoutEndsReachFromBorderToBorder)
{
    ExpectClipped(EdgeOn(0.0, 1.0, 3.0), {0.0, 3.0}, {8.0, 3.0});
    ExpectClipped(EdgeOn(1.0, 0.0, 3.0), {3.0, 0.0}, {3.0, 4.0});
    ExpectClipped(EdgeOn(-1.0, 1.0, 0.0), {0.0, 0.0}, {4.0, 4.0});
    ExpectClipped(EdgeOn(0.5, 1.0, 6.0), {4.0, 4.0}, {8.0, 2.0});
    ExpectClipped(EdgeOn(1.0, 0.5, 9.0), {8.0, 2.0}, {7.0, 4.0});
}

TEST(VoronoiClip, EndsInsideOfTheBoxAreMovedOnTheLine)
{
    VoronoiEdge flat = EdgeOn(-0.5, 1.0, 1.0);
    flat.pos[0] = {2.0, 7.0}; // y is taken from the line, 1 + 2 / 2
    ExpectClipped(flat, {2.0, 2.0}, {6.0, 4.0});
    VoronoiEdge steep = EdgeOn(1.0, -0.5, 3.0);
    steep.pos[1] = {9.0, 2.0};
    ExpectClipped(steep, {3.0, 0.0}, {4.0, 2.0});
    VoronoiEdge steepUpwards = EdgeOn(1.0, 0.5, 3.0); // its second position is the lower end
    steepUpwards.pos[1] = {9.0, 2.0};
    ExpectClipped(steepUpwards, {2.0, 2.0}, {1.0, 4.0});
}

TEST(VoronoiClip, EdgesOutsideOfTheBoxVanish)
{
    for (VoronoiEdge edge : {EdgeOn(0.0, 1.0, 5.0), EdgeOn(1.0, 0.0, -1.0), EdgeOn(1.0, 1.0, 13.0),
                             EdgeOn(-1.0, 1.0, 4.0), EdgeOn(1.0, 1.0, -2.0)})
    {
        EXPECT_FALSE(Zvl::ClipEdge(edge, {0.0, 0.0}, {8.0, 4.0}));
    }
    VoronoiEdge beyond = EdgeOn(0.0, 1.0, 2.0);
    beyond.pos[0] = {9.0, 2.0};
    EXPECT_FALSE(Zvl::ClipEdge(beyond, {0.0, 0.0}, {8.0, 4.0}));
}

/** A breakpoint on the bisector of two sites. */
struct Breakpoint
{
    Breakpoint(qPoint64f lower, qPoint64f upper, VoronoiEdge bisector, std::int32_t direction)
        : bottom{lower, 0, {nullptr}}, top{upper, 1, {nullptr}}, edge(bisector)
    {
        edge.sites[0] = &bottom;
        edge.sites[1] = &top;
        halfEdge.PutOn(edge, direction);
    }
    Breakpoint(const Breakpoint&) = delete;
    Breakpoint& operator=(const Breakpoint&) = delete;

    VoronoiSite bottom;
    VoronoiSite top;
    VoronoiEdge edge;
    VoronoiHalfEdge halfEdge{};
};

TEST(VoronoiBeach, ABreakpointOfAFlatBisectorIsWhereTheParabolasCross)
{
    // Sites (0, 0) and (0, 2), sweep line at 4: the parabolas (x² - 16) / -8 and (x² - 12) / -4 cross at x² = 8.
    const Breakpoint right({0.0, 0.0}, {0.0, 2.0}, EdgeOn(0.0, 1.0, 1.0), Zvl::kRight);
    EXPECT_FALSE(IsRightOf(right.halfEdge, {2.82, 4.0}));
    EXPECT_TRUE(IsRightOf(right.halfEdge, {2.83, 4.0}));
    const Breakpoint left({0.0, 0.0}, {0.0, 2.0}, EdgeOn(0.0, 1.0, 1.0), Zvl::kLeft);
    EXPECT_FALSE(IsRightOf(left.halfEdge, {-2.83, 4.0}));
    EXPECT_TRUE(IsRightOf(left.halfEdge, {-2.82, 4.0}));
}

TEST(VoronoiBeach, ABreakpointOfASteepBisectorIsWhereTheParabolasCross)
{
    // Sites (0, 0) and (4, 0): the breakpoint stays at x = 2. It is drawn from below, so that only one half exists.
    const Breakpoint upright({0.0, 0.0}, {4.0, 0.0}, EdgeOn(1.0, 0.0, 2.0), Zvl::kLeft);
    EXPECT_FALSE(IsRightOf(upright.halfEdge, {1.99, 3.0}));
    EXPECT_TRUE(IsRightOf(upright.halfEdge, {2.01, 3.0}));
    // Sites (0, 0) and (4, 2), bisector x + y / 2 = 2.5. With the sweep line at 6 the distances to it and to the sites
    // agree where x² = 36 - 12 y: x² - 24 x + 24 = 0 on the bisector, x = 12 - sqrt(120) or 12 + sqrt(120).
    const Breakpoint left({0.0, 0.0}, {4.0, 2.0}, EdgeOn(1.0, 0.5, 2.5), Zvl::kLeft);
    EXPECT_FALSE(IsRightOf(left.halfEdge, {1.045, 6.0}));
    EXPECT_TRUE(IsRightOf(left.halfEdge, {1.046, 6.0}));
    const Breakpoint right({0.0, 0.0}, {4.0, 2.0}, EdgeOn(1.0, 0.5, 2.5), Zvl::kRight);
    EXPECT_FALSE(IsRightOf(right.halfEdge, {22.954, 6.0}));
    EXPECT_TRUE(IsRightOf(right.halfEdge, {22.955, 6.0}));
    // The same in a mirror.
    const Breakpoint mirrored({0.0, 0.0}, {-4.0, 2.0}, EdgeOn(1.0, -0.5, -2.5), Zvl::kRight);
    EXPECT_TRUE(IsRightOf(mirrored.halfEdge, {-1.045, 6.0}));
    EXPECT_FALSE(IsRightOf(mirrored.halfEdge, {-1.046, 6.0}));
}

TEST(VoronoiBeach, BreakpointsMeetInTheCentreOfTheirSites)
{
    // Sites (0, 0), (4, 0) and (2, 4): the centre is (2, 1.5).
    const Breakpoint left({0.0, 0.0}, {4.0, 0.0}, EdgeOn(1.0, 0.0, 2.0), Zvl::kLeft);
    const Breakpoint right({0.0, 0.0}, {2.0, 4.0}, EdgeOn(0.5, 1.0, 2.5), Zvl::kLeft);
    const auto meeting = VoronoiIntersect(left.halfEdge, right.halfEdge);
    ASSERT_TRUE(meeting.has_value());
    EXPECT_EQ(meeting->x, 2.0);
    EXPECT_EQ(meeting->y, 1.5);
    // It lies left of (4, 0), where a breakpoint that moves to the right never comes.
    const Breakpoint other({0.0, 0.0}, {4.0, 0.0}, EdgeOn(1.0, 0.0, 2.0), Zvl::kRight);
    EXPECT_FALSE(VoronoiIntersect(other.halfEdge, right.halfEdge).has_value());
}

TEST(VoronoiBeach, ParallelBreakpointsAndThoseOfOneSiteNeverMeet)
{
    const Breakpoint first({0.0, 0.0}, {0.0, 2.0}, EdgeOn(0.0, 1.0, 1.0), Zvl::kRight);
    const Breakpoint parallel({0.0, 2.0}, {0.0, 4.0}, EdgeOn(0.0, 1.0, 3.0), Zvl::kRight);
    const Breakpoint nearlyParallel({0.0, 2.0}, {0.0, 4.0}, EdgeOn(9.9e-5, 1.0, 3.0), Zvl::kLeft);
    EXPECT_FALSE(VoronoiIntersect(first.halfEdge, parallel.halfEdge).has_value());
    EXPECT_FALSE(VoronoiIntersect(first.halfEdge, nearlyParallel.halfEdge).has_value());
    EXPECT_FALSE(VoronoiIntersect(first.halfEdge, first.halfEdge).has_value());
    EXPECT_FALSE(VoronoiIntersect(first.halfEdge, VoronoiHalfEdge{}).has_value());
    EXPECT_FALSE(VoronoiIntersect(VoronoiHalfEdge{}, first.halfEdge).has_value());
}

} // namespace
