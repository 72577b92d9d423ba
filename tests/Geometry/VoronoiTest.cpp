#include "VoronoiSupport.h"

#include "Geometry/VoronoiCells.h"
#include "support/ExpectThrow.h"

#include <cstdlib>
#include <limits>

namespace
{

using namespace VoronoiSupport;
using TestSupport::ExpectThrow;
using Zvl::GenerateVoronoi;
using Zvl::GenerateVoronoiWith;
using Zvl::VoronoiDiagram;
using Zvl::VoronoiGraphEdge;
using Zvl::VoronoiOwner;
using Zvl::VoronoiRect;

constexpr const char* kFunction = "Zvl::GenerateVoronoi";
constexpr double kInfinity = std::numeric_limits<double>::infinity();

void ExpectEmpty(const VoronoiDiagram& diagram)
{
    EXPECT_EQ(diagram.internal, nullptr);
    EXPECT_EQ(diagram.numsites, 0);
    EXPECT_TRUE(Zvl::SitesOf(diagram).empty());
    EXPECT_EQ(Zvl::FirstVoronoiVertex(&diagram), nullptr);
    EXPECT_EQ(Zvl::FirstVoronoiEdge(diagram), nullptr);
}

void ExpectBox(const VoronoiDiagram& diagram, const VoronoiRect& box)
{
    EXPECT_EQ(diagram.min.x, box.min.x);
    EXPECT_EQ(diagram.min.y, box.min.y);
    EXPECT_EQ(diagram.max.x, box.max.x);
    EXPECT_EQ(diagram.max.y, box.max.y);
}

/** The border of a cell as its corners, beginning with the end of the first edge. */
void ExpectCorners(const VoronoiGraphEdge* edge, const Points& corners)
{
    for (const qPoint64f& corner : corners)
    {
        ASSERT_NE(edge, nullptr);
        EXPECT_EQ(edge->pos[1].x, corner.x);
        EXPECT_EQ(edge->pos[1].y, corner.y);
        edge = edge->next;
    }
    EXPECT_EQ(edge, nullptr);
}

TEST(Voronoi, OneSiteHasTheBoxForItsCell)
{
    Diagram diagram({{2.0, 3.0}});
    ExpectBox(diagram.Get(), {{-8.0, -7.0}, {12.0, 13.0}});
    ASSERT_EQ(diagram.Sites().size(), 1U);
    const VoronoiGraphEdge* edge = diagram.Sites()[0].edges;
    ExpectCorners(edge, {{12.0, -7.0}, {12.0, 13.0}, {-8.0, 13.0}, {-8.0, -7.0}});
    for (; edge != nullptr; edge = edge->next)
    {
        EXPECT_EQ(edge->neighbor, nullptr);
        EXPECT_EQ(edge->edge->sites[0], diagram.Sites().data());
        EXPECT_EQ(edge->edge->sites[1], nullptr);
    }
    EXPECT_EQ(diagram.Vertices().size(), 4U);
}

TEST(Voronoi, ABoxMayBeALineOrAPoint)
{
    const Points site{{2.0, 3.0}};
    for (const VoronoiRect& flat :
         {VoronoiRect{{2.0, 0.0}, {2.0, 5.0}}, {{0.0, 3.0}, {5.0, 3.0}}, {{2.0, 3.0}, {2.0, 3.0}}})
    {
        VoronoiOwner owner;
        GenerateVoronoi(1, site.data(), &flat, owner.Get());
        ExpectBox(*owner.Get(), flat);
        EXPECT_EQ(owner.Get()->numsites, 1);
    }
}

TEST(Voronoi, TwoSitesShareOneEdgeBetweenTheBorders)
{
    Diagram diagram({{4.0, 1.0}, {0.0, 1.0}});
    ExpectBox(diagram.Get(), {{-10.0, -9.0}, {14.0, 11.0}});
    ASSERT_EQ(diagram.Sites().size(), 2U);
    const Zvl::VoronoiSite& left = diagram.Sites()[0];
    const Zvl::VoronoiSite& right = diagram.Sites()[1];
    EXPECT_EQ(left.index, 1);
    EXPECT_EQ(right.index, 0);
    EXPECT_EQ(left.edges->neighbor, &right);
    EXPECT_EQ(Zvl::AngleTo(left, left.edges->pos[0], left.edges->pos[1]), 0.0);
    ExpectCorners(left.edges, {{2.0, 11.0}, {-10.0, 11.0}, {-10.0, -9.0}, {2.0, -9.0}});
    ExpectCorners(right.edges, {{2.0, -9.0}, {14.0, -9.0}, {14.0, 11.0}, {2.0, 11.0}});
    EXPECT_EQ(right.edges->neighbor, &left);
    EXPECT_EQ(diagram.Vertices().size(), 6U);
}

TEST(Voronoi, FourCocircularSitesMeetInOneVertex)
{
    Diagram diagram({{-1.0, -1.0}, {1.0, -1.0}, {-1.0, 1.0}, {1.0, 1.0}});
    EXPECT_EQ(diagram.Vertices().size(), 9U);
    std::size_t inside = 0;
    for (const Zvl::VoronoiVertex* vertex : diagram.Vertices())
    {
        if (diagram.IsInside(vertex->pos, 0.0))
        {
            ++inside;
            EXPECT_EQ(vertex->pos.x, 0.0);
            EXPECT_EQ(vertex->pos.y, 0.0);
            EXPECT_EQ(LengthOf(vertex->edges), 4U);
        }
    }
    EXPECT_EQ(inside, 1U);
}

/** Cells of few and of many edges, with directions that differ clearly, hardly, or by a zero's sign. */
std::vector<Points> SitesOfManyCells()
{
    Points star = VoronoiSupport::Ring(60, {50.0, 50.0}, 40.0);
    star.push_back({50.0, 50.0});
    Points turnedStar = VoronoiSupport::Ring(23, {50.0, 50.0}, 40.0);
    turnedStar.push_back({50.0, 50.0});
    Points close = RandomSites(60, 1e-6, 3);
    close.push_back({5.0, 5.0});
    return {RandomSites(2000, 100.0, 9),
            VoronoiSupport::Grid(20, 20),
            star,
            turnedStar,
            VoronoiSupport::Ring(500, {7.0, -9.0}, 40.0),
            close};
}

TEST(Voronoi, EdgesAreSortedByAngleFromTheXAxis)
{
    for (const Points& points : SitesOfManyCells())
    {
        Diagram diagram(points);
        for (const Zvl::VoronoiSite& site : diagram.Sites())
        {
            double last = 0.0;
            for (const VoronoiGraphEdge* edge = site.edges; edge != nullptr; edge = edge->next)
            {
                if (edge->neighbor != nullptr)
                {
                    const double angle = Zvl::AngleTo(site, edge->pos[0], edge->pos[1]);
                    ASSERT_GE(angle, last);
                    ASSERT_LE(angle, 6.2831854820251465);
                    last = angle;
                }
            }
        }
    }
}

TEST(Voronoi, SitesAreSortedByYThenX)
{
    Diagram diagram({{5.0, 2.0}, {1.0, 7.0}, {4.0, 2.0}, {9.0, -3.0}});
    std::vector<std::int32_t> order;
    for (const Zvl::VoronoiSite& site : diagram.Sites())
    {
        order.push_back(site.index);
    }
    EXPECT_EQ(order, (std::vector<std::int32_t>{3, 2, 0, 1}));
}

TEST(Voronoi, EqualPointsBecomeOneSite)
{
    Diagram diagram({{1.0, 1.0}, {5.0, 2.0}, {1.0, 1.0}, {1.0, 1.0}, {2.0, 4.0}, {5.0, 2.0}});
    EXPECT_EQ(diagram.Get().numsites, 3);
    EXPECT_EQ(diagram.Sites().size(), 3U);
    ExpectClosedCells(diagram, 1e-12);
    ExpectPlanarGraph(diagram);

    Diagram same(Points(1000, {3.5, -2.5}));
    EXPECT_EQ(same.Get().numsites, 1);
    EXPECT_EQ(same.Vertices().size(), 4U);
}

TEST(Voronoi, TheBoxLeavesOutAsManyLastPointsAsThereAreDuplicates)
{
    Diagram diagram({{0.0, 0.0}, {0.0, 0.0}, {4.0, 0.0}, {0.0, 4.0}, {20.0, 2.0}});
    EXPECT_EQ(diagram.Get().numsites, 4);
    ExpectBox(diagram.Get(), {{-10.0, -10.0}, {14.0, 14.0}});
}

TEST(Voronoi, ASiteWhoseCellLiesOutsideOfTheBoxEndsTheConstruction)
{
    const Points points{{0.0, 0.0}, {0.0, 0.0}, {4.0, 0.0}, {0.0, 4.0}, {100.0, 200.0}};
    VoronoiOwner owner;
    ExpectThrow(STATUS_ABORTED, kFunction, [&] { GenerateVoronoi(5, points.data(), nullptr, owner.Get()); });
    ExpectEmpty(*owner.Get());
}

TEST(Voronoi, TheBoxIsRoundedOutwards)
{
    Diagram diagram({{-0.5, 2.0}, {1.25, -3.75}, {1.0, 1.0}});
    ExpectBox(diagram.Get(), {{-11.0, -14.0}, {12.0, 12.0}});
}

TEST(Voronoi, TheClipRectangleIsTheBoxAndLeavesOutsidersOut)
{
    const VoronoiRect clip = {{0.0, 0.0}, {10.0, 6.0}};
    const Points points{{0.0, 0.0},  {10.0, 6.0},      {5.0, 3.0}, {10.0000001, 3.0},
                        {3.0, -0.1}, {kInfinity, 0.0}, {8.0, 1.0}};
    Diagram diagram(points, &clip);
    ExpectBox(diagram.Get(), clip);
    EXPECT_EQ(diagram.Get().numsites, 4);
    ExpectClosedCells(diagram, 1e-12);
    ExpectEmptyCircles(diagram, 1e-12);
    ExpectPlanarGraph(diagram);

    const VoronoiRect elsewhere = {{20.0, 20.0}, {30.0, 30.0}};
    Diagram none(points, &elsewhere);
    EXPECT_EQ(none.Get().numsites, 0);
    EXPECT_TRUE(none.Vertices().empty());
}

TEST(Voronoi, SitesOnTheBorderOfTheBox)
{
    const VoronoiRect clip = {{0.0, 0.0}, {6.0, 4.0}};
    Diagram diagram(Grid(7, 5), &clip);
    EXPECT_EQ(diagram.Get().numsites, 35);
    ExpectClosedCells(diagram, 1e-12);
    ExpectPlanarGraph(diagram);
}

TEST(Voronoi, NoPointsGiveADiagramWithoutSites)
{
    for (const std::int32_t count : {0, -5})
    {
        VoronoiOwner owner;
        GenerateVoronoi(count, nullptr, nullptr, owner.Get());
        Zvl::BuildVoronoiVertices(owner.Get());
        EXPECT_EQ(owner.Get()->numsites, 0);
        ExpectBox(*owner.Get(), {});
        EXPECT_EQ(Zvl::FirstVoronoiVertex(owner.Get()), nullptr);
    }
}

TEST(Voronoi, ADiagramInUseIsFreedAndBuiltAnew)
{
    VoronoiOwner owner;
    const Points first = RandomSites(50, 10.0, 10);
    GenerateVoronoi(50, first.data(), nullptr, owner.Get());
    Zvl::BuildVoronoiVertices(owner.Get());
    const Points second{{1.0, 1.0}, {2.0, 2.0}};
    GenerateVoronoi(2, second.data(), nullptr, owner.Get());
    EXPECT_EQ(owner.Get()->numsites, 2);
    EXPECT_EQ(Zvl::FirstVoronoiVertex(owner.Get()), nullptr);
    Zvl::FreeVoronoi(owner.Get());
    ExpectEmpty(*owner.Get());
    Zvl::FreeVoronoi(owner.Get());
    Zvl::FreeVoronoi(nullptr);
}

TEST(Voronoi, BuildingTheGraphTwiceOrOfNothingDoesNothing)
{
    VoronoiOwner owner;
    Zvl::BuildVoronoiVertices(owner.Get());
    ExpectEmpty(*owner.Get());
    const Points points = RandomSites(10, 10.0, 11);
    GenerateVoronoi(10, points.data(), nullptr, owner.Get());
    Zvl::BuildVoronoiVertices(owner.Get());
    const Zvl::VoronoiVertex* first = Zvl::FirstVoronoiVertex(owner.Get());
    Zvl::BuildVoronoiVertices(owner.Get());
    EXPECT_EQ(Zvl::FirstVoronoiVertex(owner.Get()), first);
    EXPECT_EQ(Zvl::FirstVoronoiVertex(nullptr), nullptr);
}

TEST(Voronoi, NullPointersAreRefused)
{
    const Points points{{0.0, 0.0}};
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { GenerateVoronoi(1, points.data(), nullptr, nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::BuildVoronoiVertices", [] { Zvl::BuildVoronoiVertices(nullptr); });
    VoronoiOwner owner;
    GenerateVoronoi(1, points.data(), nullptr, owner.Get());
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { GenerateVoronoi(1, nullptr, nullptr, owner.Get()); });
    ExpectEmpty(*owner.Get());
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                [&] { GenerateVoronoiWith(1, points.data(), nullptr, nullptr, nullptr, nullptr, owner.Get()); });
    ExpectEmpty(*owner.Get());
}

TEST(Voronoi, CoordinatesBeyondAllBoundsAreRefused)
{
    VoronoiOwner owner;
    for (const double bad : {std::nan(""), kInfinity, -kInfinity, std::numeric_limits<double>::lowest(), 1.1e100})
    {
        for (const qPoint64f& point : {qPoint64f{bad, 1.0}, {1.0, bad}})
        {
            const Points points{{0.0, 0.0}, {1.0, 3.0}, point, {2.0, 2.0}};
            ExpectThrow(STATUS_BAD_DATA, kFunction, [&] { GenerateVoronoi(4, points.data(), nullptr, owner.Get()); });
            ExpectEmpty(*owner.Get());
        }
        const Points points{{0.0, 0.0}};
        for (const VoronoiRect& clip :
             {VoronoiRect{{bad, 0.0}, {1.0, 1.0}}, {{0.0, bad}, {1.0, 1.0}}, {{0.0, 0.0}, {bad, 1.0}}})
        {
            ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                        [&] { GenerateVoronoi(1, points.data(), &clip, owner.Get()); });
        }
    }
    const VoronoiRect clip = {{1.0, 0.0}, {0.0, 1.0}};
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                [&] {
                    GenerateVoronoi(1, Points{{0.0, 0.0}}.data(), &clip, owner.Get());
                });
    const VoronoiRect good = {{0.0, 0.0}, {1.0, 1.0}};
    ExpectThrow(STATUS_BAD_DATA, kFunction,
                [&] {
                    GenerateVoronoi(1, Points{{std::nan(""), 0.0}}.data(), &good, owner.Get());
                });
}

/** Whatever the coordinates, the call comes back with a diagram or an exception. */
TEST(Voronoi, WildCoordinatesNeitherCrashNorHang)
{
    std::mt19937_64 random(12);
    std::uniform_real_distribution<double> exponent(-100.0, 100.0);
    std::uniform_int_distribution<int> kind(0, 5);
    std::size_t built = 0;
    for (int repetition = 0; repetition < 3000; ++repetition)
    {
        const double spread = std::pow(10.0, exponent(random));
        const double offset = std::pow(10.0, exponent(random)) * (repetition % 3);
        Points points(2 + random() % 60);
        for (qPoint64f& p : points)
        {
            const auto coordinate = [&]
            {
                const double cell = static_cast<double>(random() % 7);
                switch (kind(random))
                {
                case 0:
                    return std::pow(10.0, exponent(random));
                case 1:
                    return offset;
                default:
                    return offset + spread * (cell + static_cast<double>(random() % 3) * 1e-13);
                }
            };
            p = {coordinate(), coordinate()};
        }
        try
        {
            Diagram diagram(points);
            ++built;
            EXPECT_LE(diagram.Sites().size(), points.size());
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_TRUE(exception.GetStatus() == STATUS_ABORTED || exception.GetStatus() == STATUS_BAD_DATA);
        }
    }
    EXPECT_GT(built, 1000U);
}

// The square of the distance of the first and the fourth site is 0, though they are not the same.
TEST(Voronoi, SitesWhoseSquaredDistanceVanishesHaveAnUprightEdge)
{
    Diagram diagram({{0x1p-1022, 0.0}, {15.9375, 24.0}, {-0.0625, 0.0}, {0.0, 0.0}, {0.0, 1.96875}});
    EXPECT_EQ(diagram.Sites().size(), 5U);
    const VoronoiGraphEdge* edge = diagram.Sites()[1].edges; // of (0, 0)
    while (edge != nullptr && edge->neighbor != &diagram.Sites()[2])
    {
        edge = edge->next;
    }
    ASSERT_NE(edge, nullptr);
    EXPECT_EQ(edge->pos[0].x, 0.0);
    EXPECT_EQ(edge->pos[1].x, 0.0);
    EXPECT_EQ(std::min(edge->pos[0].y, edge->pos[1].y), -10.0);
    EXPECT_EQ(std::max(edge->pos[0].y, edge->pos[1].y), 0.984375); // half way to (0, 1.96875)
}

/** An allocator that counts, and that fails from one allocation on. */
struct CountingHeap
{
    std::size_t allocations = 0;
    std::size_t live = 0;
    std::size_t failAt = 0;
    std::vector<std::size_t> sizes;

    static void* Allocate(void* context, std::size_t size)
    {
        auto& heap = *static_cast<CountingHeap*>(context);
        if (++heap.allocations == heap.failAt)
        {
            return nullptr;
        }
        ++heap.live;
        heap.sizes.push_back(size);
        return std::malloc(size);
    }

    static void Release(void* context, void* memory)
    {
        --static_cast<CountingHeap*>(context)->live;
        std::free(memory);
    }
};

void GenerateWith(CountingHeap& heap, const Points& points, VoronoiDiagram* diagram)
{
    GenerateVoronoiWith(static_cast<std::int32_t>(points.size()), points.data(), nullptr, &heap,
                        &CountingHeap::Allocate, &CountingHeap::Release, diagram);
}

TEST(Voronoi, AllButOneAllocationAreBlocksOfOneSize)
{
    CountingHeap heap;
    VoronoiOwner owner;
    GenerateWith(heap, RandomSites(500, 10.0, 13), owner.Get());
    Zvl::BuildVoronoiVertices(owner.Get());
    ASSERT_GT(heap.sizes.size(), 10U);
    for (std::size_t i = 1; i < heap.sizes.size(); ++i)
    {
        EXPECT_EQ(heap.sizes[i], 16384U);
    }
    Zvl::FreeVoronoi(owner.Get());
    EXPECT_EQ(heap.live, 0U);
}

TEST(Voronoi, ExhaustedMemoryLeavesAnEmptyDiagram)
{
    const Points points = RandomSites(200, 10.0, 14);
    std::size_t failures = 0;
    for (bool failed = true; failed;)
    {
        CountingHeap heap;
        heap.failAt = failures + 1;
        VoronoiOwner owner;
        bool isGenerated = false;
        try
        {
            GenerateWith(heap, points, owner.Get());
            isGenerated = true;
            Zvl::BuildVoronoiVertices(owner.Get());
            failed = false;
        }
        catch (const Zo::Exception& exception)
        {
            ++failures;
            EXPECT_EQ(exception.GetStatus(), STATUS_OUT_OF_MEMORY);
            EXPECT_STREQ(exception.GetFunction(), isGenerated ? "Zvl::BuildVoronoiVertices" : kFunction);
            EXPECT_EQ(isGenerated, owner.Get()->internal != nullptr);
        }
        Zvl::FreeVoronoi(owner.Get());
        EXPECT_EQ(heap.live, 0U);
    }
    EXPECT_GT(failures, 10U);
}

} // namespace
