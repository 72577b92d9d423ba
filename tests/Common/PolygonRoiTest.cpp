#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/PolygonTests.h"
#include "Common/Rounding.h"
#include "support/FailingAllocator.h"
#include "support/Regions.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>

namespace
{

using namespace Zvl;
using Points = std::vector<Point2d<double>>;
using TestSupport::ExpectBox;
using TestSupport::kNoOffset;
using TestSupport::kUnitScale;
using TestSupport::Picture;

int IsPointInPolygon(const Point2d<double>& p, const std::vector<Point2d<double>>& points)
{
    Intersections intersections;
    return Zvl::IsPointInPolygon(p, points, intersections);
}

PolygonROI Polygon(const Points& points, std::uint64_t frame = 20)
{
    return PolygonROI(points, frame, frame, kUnitScale, kNoOffset, nullptr);
}

TEST(PolygonRoi, ACoordinateThatIsNoNumberBoundsNothingWhereverItIs)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (std::ptrdiff_t place = 1; place < 5; ++place)
    {
        Points points = {{1.0, 1.0}, {10.0, 1.0}, {10.0, 10.0}, {1.0, 10.0}, {1.0, 1.0}};
        points.insert(points.begin() + place, {notANumber, 5.0});
        PolygonROI roi = Polygon(points);
        ExpectBox(roi, 1, 1, 10, 10);
    }
}

TEST(PolygonRoi, TheArrayFormClosesAndTheVectorFormTrusts)
{
    const qPoint64f corners[] = {{1.0, 1.0}, {5.0, 1.0}, {1.0, 5.0}};
    PolygonROI closed(corners, 3, 20, 20, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(closed.GetShape().size(), 4U);
    EXPECT_EQ(Picture(closed), "##### ####. ###.. ##... #....");

    PolygonROI open = Polygon({{1.0, 1.0}, {5.0, 1.0}, {1.0, 5.0}});
    EXPECT_EQ(open.GetShape().size(), 3U);
    EXPECT_EQ(Picture(open), "null");
    ExpectBox(open, 0, 0, 0, 0);
    EXPECT_EQ(open.GetBoundingRegion().width, 0.0);
    EXPECT_EQ(open.GetMaskValidity(), 1);

    const PolygonROI none(corners, 0, 20, 20, kUnitScale, kNoOffset, nullptr);
    EXPECT_TRUE(none.GetShape().empty());
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonROI::PolygonROI",
                             [] { PolygonROI(nullptr, 3, 20, 20, kUnitScale, kNoOffset, nullptr); });
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonROI::PolygonROI",
                             [&] { PolygonROI(corners, UINT64_MAX, 20, 20, kUnitScale, kNoOffset, nullptr); });
}

TEST(PolygonRoi, AGridAlignedRectangleIncludesItsRightAndTopEdge)
{
    PolygonROI roi = Polygon({{1.0, 1.0}, {4.0, 1.0}, {4.0, 3.0}, {1.0, 3.0}, {1.0, 1.0}});
    ExpectBox(roi, 1, 1, 4, 3);
    EXPECT_EQ(Picture(roi), "#### #### ####");
}

TEST(PolygonRoi, ACrossingOnAColumnPutsItsCellInside)
{
    // The right edge of x = 4 meets column 4 exactly on rows that touch no vertex.
    PolygonROI roi = Polygon({{1.5, 0.5}, {4.0, 0.5}, {4.0, 3.5}, {1.5, 3.5}, {1.5, 0.5}});
    EXPECT_EQ(Picture(roi), "### ### ###");
}

TEST(PolygonRoi, ALoneVertexOnAColumnIsOneCell)
{
    PolygonROI onColumn = Polygon({{3.0, 1.0}, {5.0, 3.5}, {1.0, 3.5}, {3.0, 1.0}});
    EXPECT_EQ(Picture(onColumn), "..#.. ..#.. .###.");
    PolygonROI betweenColumns = Polygon({{3.4, 1.0}, {5.0, 3.5}, {1.0, 3.5}, {3.4, 1.0}});
    EXPECT_EQ(Picture(betweenColumns).substr(0, 5), ".....");
}

TEST(PolygonRoi, ALoneVertexIsNoCellFromTheToleranceOn)
{
    const auto rowOfVertexAt = [](double x)
    {
        PolygonROI roi = Polygon({{x, 1.0}, {x + 2.0, 3.5}, {x - 2.0, 3.5}, {x, 1.0}});
        return Picture(roi).substr(0, 3);
    };
    const double tolerance = std::ldexp(1.0, -23);
    EXPECT_EQ(rowOfVertexAt(std::nextafter(tolerance, 0.0)), "#..");
    EXPECT_EQ(rowOfVertexAt(tolerance), "...");
}

TEST(PolygonRoi, ALoneCrossingJustLeftOfTheBoxMarksItsFirstCell)
{
    // The box is clipped to column 0; the vertex at -0.3 truncates to it.
    PolygonROI roi = Polygon({{-0.3, 1.0}, {5.0, 4.5}, {-6.0, 4.5}, {-0.3, 1.0}});
    EXPECT_EQ(Picture(roi).substr(0, 5), "#....");
}

TEST(PolygonRoi, AnOutsideNotchBetweenVerticesOnOneRowStaysOutside)
{
    // Two towers on a base; row 1 touches both of their tops, row 3 the bottom of the notch.
    PolygonROI roi =
        Polygon({{1.0, 5.0}, {1.0, 1.0}, {3.0, 1.0}, {4.0, 3.0}, {5.0, 1.0}, {7.0, 1.0}, {7.0, 5.0}, {1.0, 5.0}});
    EXPECT_EQ(Picture(roi), "###.### ###.### ####### ####### #######");
}

TEST(PolygonRoi, ClippedPartsStillCountForParity)
{
    PolygonROI left = Polygon({{-5.0, 0.5}, {3.5, 0.5}, {3.5, 2.5}, {-5.0, 2.5}, {-5.0, 0.5}});
    ExpectBox(left, 0, 1, 4, 2);
    EXPECT_EQ(Picture(left), "#### ####");
    PolygonROI right = Polygon({{2.5, 0.5}, {50.0, 0.5}, {50.0, 2.5}, {2.5, 2.5}, {2.5, 0.5}}, 6);
    EXPECT_EQ(Picture(right), "### ###");
}

TEST(PolygonRoi, HorizontalEdgesAddNoCrossing)
{
    Point2d<double> crossing;
    EXPECT_EQ(IntersectHorizontalRay({0.0, 1.0}, {1.0, 1.0}, {5.0, 1.0}, &crossing), 0);
    EXPECT_EQ(IntersectHorizontalRay({0.0, 1.0}, {1.0, 0.0}, {5.0, 2.0}, &crossing), 1);
    EXPECT_EQ(crossing.x, 3.0);
    EXPECT_EQ(crossing.y, 1.0);
    EXPECT_EQ(IntersectHorizontalRay({3.0, 1.0}, {1.0, 0.0}, {5.0, 2.0}, &crossing), 0); // not to the right
    EXPECT_EQ(IntersectHorizontalRay({0.0, 2.0}, {1.0, 0.0}, {5.0, 2.0}, &crossing), 1); // both ends count
    EXPECT_EQ(IntersectHorizontalRay({0.0, 0.0}, {1.0, 0.0}, {5.0, 2.0}, &crossing), 1);
    EXPECT_EQ(IntersectHorizontalRay({0.0, 2.1}, {1.0, 0.0}, {5.0, 2.0}, &crossing), 0);
}

TEST(PolygonTests, EdgesThatMeetInAVertexGiveOneCrossing)
{
    const Points diamond = {{0.0, -2.0}, {2.0, 0.0}, {0.0, 2.0}, {-2.0, 0.0}, {0.0, -2.0}};
    for (const int sort : {0, 1})
    {
        std::vector<double> crossings = {99.0};
        CollectIntersectXs({-10.0, 0.0}, diamond, &crossings, sort);
        std::vector<double> expected = sort != 0 ? std::vector<double>{-2.0, 2.0} : std::vector<double>{2.0, -2.0};
        EXPECT_EQ(crossings, expected);
        CollectIntersectXs({-10.0, 0.0}, {{1.0, 2.0}}, &crossings, sort);
        EXPECT_TRUE(crossings.empty());
    }
}

TEST(PolygonTests, AMergedListIsTheSameSortedAsUnsorted)
{
    std::mt19937 random(23);
    std::uniform_real_distribution<double> jitter(-4.0 * kGeometricTolerance, 4.0 * kGeometricTolerance);
    for (int turn = 0; turn < 500; ++turn)
    {
        Points comb;
        for (int i = 0; i < 12; ++i)
        {
            comb.emplace_back(static_cast<double>(random() % 3) + jitter(random), i % 2 == 0 ? -1.0 : 1.0);
        }
        std::vector<double> sorted;
        std::vector<double> unsorted;
        CollectIntersectXs({-10.0, 0.25}, comb, &sorted, 1);
        CollectIntersectXs({-10.0, 0.25}, comb, &unsorted, 0);
        std::sort(unsorted.begin(), unsorted.end());
        ASSERT_EQ(sorted, unsorted);
    }
}

TEST(PolygonTests, ASegmentsStartCountsAndItsEndDoesNot)
{
    const Line right = {{0.0, 0.0}, {1.0, 0.0}};
    Point2d<double> crossing;
    EXPECT_EQ(IntersectRaySegment(right, {3.0, 0.0}, {4.0, 5.0}, &crossing), 1);
    EXPECT_EQ(crossing.x, 3.0);
    EXPECT_EQ(IntersectRaySegment(right, {4.0, 5.0}, {3.0, 0.0}, &crossing), 0);
    EXPECT_EQ(IntersectRaySegment(right, {3.0, -1.0}, {3.0, 1.0}, &crossing), 1);
    EXPECT_EQ(IntersectRaySegment(right, {-3.0, -1.0}, {-3.0, 1.0}, &crossing), 0); // behind the origin
    EXPECT_EQ(IntersectRaySegment(right, {2.0, 0.0}, {5.0, 0.0}, &crossing), 1);    // collinear: its start
    EXPECT_EQ(crossing.x, 2.0);
    EXPECT_EQ(IntersectRaySegment(right, {2.0, 1.0}, {5.0, 1.0}, &crossing), 0); // parallel
    EXPECT_EQ(IntersectRaySegment(right, {2.0, 0.0}, {2.0, 0.0}, &crossing), 0); // no length
    const Line up = {{1.0, -5.0}, {0.0, 1.0}};
    EXPECT_EQ(IntersectRaySegment(up, {0.0, 0.0}, {4.0, 0.0}, &crossing), 1); // level segment
    EXPECT_TRUE(crossing.x == 1.0 && crossing.y == 0.0);
}

TEST(PolygonTests, ALineNeedsAClosedPolygon)
{
    std::vector<Point2d<double>> crossings = {{1.0, 1.0}};
    CollectIntersectPoints({{0.0, 0.0}, {1.0, 0.0}}, {{1.0, -1.0}, {1.0, 1.0}, {1.0, -1.0}}, &crossings);
    EXPECT_TRUE(crossings.empty());
    CollectIntersectPoints({{0.0, 0.0}, {1.0, 0.0}}, {{1.0, -1.0}, {1.0, 1.0}, {2.0, 1.0}, {2.0, -1.0}, {1.0, -1.0}},
                           &crossings);
    EXPECT_EQ(crossings.size(), 2U);
}

TEST(PolygonTests, TheBoundaryIsInside)
{
    const Points square = {{0.0, -3.0}, {3.0, 0.0}, {0.0, 3.0}, {-3.0, 0.0}, {0.0, -3.0}};
    EXPECT_EQ(IsPointOnSegment({1.5, -1.5}, square[0], square[1]), 1);
    EXPECT_EQ(IsPointOnSegment({1.5, -1.6}, square[0], square[1]), 0);
    EXPECT_EQ(IsPointOnSegment({4.0, 1.0}, square[0], square[1]), 0);
    EXPECT_EQ(IsPointInPolygon({1.5, -1.5}, square), 1);
    EXPECT_EQ(IsPointInPolygon({3.0, 0.0}, square), 1);
    EXPECT_EQ(IsPointInPolygon({0.5, 0.5}, square), 1);
    EXPECT_EQ(IsPointInPolygon({0.0, 0.0}, square), 1); // its horizontal ray hits a vertex
    EXPECT_EQ(IsPointInPolygon({-5.0, 0.0}, square), 0);
    EXPECT_EQ(IsPointInPolygon({2.0, 2.0}, square), 0);
    EXPECT_EQ(IsPointInPolygon({0.0, 0.0}, {{0.0, 0.0}, {1.0, 0.0}}), 0);
}

TEST(PolygonTests, WhenEveryDirectionHitsAVertexThePointIsOutside)
{
    // A vertex in each of the 36 directions, in turn near and far, around a centre that is inside.
    constexpr double pi = 3.141592653589793;
    Points star;
    for (int n = 0; n < 36; ++n)
    {
        const double radius = n % 2 == 0 ? 1.0 : 2.0;
        star.emplace_back(radius * std::cos(n * pi / 18), radius * std::sin(n * pi / 18));
    }
    star.push_back(star.front());
    EXPECT_EQ(IsPointInPolygon({0.0, 0.0}, star), 0);
    EXPECT_EQ(IsPointInPolygon({0.01, 0.02}, star), 1);
}

// The scan as it is defined: every row meets every edge, and every crossing is compared with every vertex.

struct PlainScan
{
    const Points& points;
    Rect2d<int> box;
    qPoint64f scale;
    qPoint64f offset;
    double regionLeft;

    double ColumnOf(double x) const { return (x - offset.x) / scale.x - box.x; }
    int NotGreaterThan(double x) const { return TruncateToInt(std::floor(ColumnOf(x) + kGeometricTolerance)); }
    int NotLessThan(double x) const { return TruncateToInt(std::ceil(ColumnOf(x) - kGeometricTolerance)); }

    void Fill(std::uint8_t* row, int first, int last, int value) const
    {
        for (int column = first; column <= last; ++column)
        {
            row[column] = static_cast<std::uint8_t>(value);
        }
    }

    bool HitsVertex(const std::vector<double>& xs, double y) const
    {
        for (const double x : xs)
        {
            for (const Point2d<double>& vertex : points)
            {
                const double dx = x - vertex.x;
                const double dy = y - vertex.y;
                if (std::sqrt(dx * dx + dy * dy) < kGeometricTolerance)
                {
                    return true;
                }
            }
        }
        return false;
    }

    void Single(double x, std::uint8_t* row) const
    {
        const double t = ColumnOf(x);
        const int c = TruncateToInt(t);
        if (t - c < kGeometricTolerance && c >= 0 && c < box.width)
        {
            row[c] = 1;
        }
        else if (c < box.width && c + 1 - t < kGeometricTolerance && c + 1 >= 0 && c + 1 < box.width)
        {
            row[c + 1] = 1;
        }
    }

    void Parity(const std::vector<double>& xs, std::uint8_t* row) const
    {
        int maskValue = 0;
        int start = 0;
        for (const double x : xs)
        {
            int end = NotGreaterThan(x);
            if (end < 0)
            {
                maskValue = 1 - maskValue;
                continue;
            }
            if (end >= box.width)
            {
                end = box.width - 1;
                Fill(row, start, end, maskValue);
                start = end + 1;
                break;
            }
            if (start <= end)
            {
                Fill(row, start, end, maskValue);
                if (NotLessThan(x) == end)
                {
                    row[end] = 1;
                }
            }
            start = end + 1;
            maskValue = 1 - maskValue;
        }
        if (start >= 0 && start < box.width)
        {
            Fill(row, start, box.width - 1, maskValue);
        }
    }

    void Midpoints(const std::vector<double>& xs, double y, std::uint8_t* row) const
    {
        double spanLeft = box.x * scale.x + offset.x;
        const double right = (box.x + box.width - 1) * scale.x + offset.x;
        int start = 0;
        for (const double x : xs)
        {
            int end = NotGreaterThan(x);
            if (end < 0)
            {
                continue;
            }
            if (end >= box.width)
            {
                end = box.width - 1;
                Fill(row, start, end, IsPointInPolygon({(spanLeft + right) * 0.5, y}, points));
                start = end + 1;
                break;
            }
            const int maskValue = IsPointInPolygon({(spanLeft + x) * 0.5, y}, points);
            if (start <= end)
            {
                Fill(row, start, end, maskValue);
                if (NotLessThan(x) == end)
                {
                    row[end] = 1;
                }
            }
            start = end + 1;
            spanLeft = x + scale.x;
        }
        if (start >= 0 && start < box.width)
        {
            Fill(row, start, box.width - 1, IsPointInPolygon({(spanLeft + right) * 0.5, y}, points));
        }
    }

    std::vector<std::uint8_t> Mask() const
    {
        std::vector<std::uint8_t> cells(static_cast<std::size_t>(box.width) * static_cast<std::size_t>(box.height), 0);
        std::uint8_t* row = cells.data();
        for (const double y : TestSupport::RowPositions(box, scale.y, offset.y))
        {
            std::vector<double> xs;
            CollectIntersectXs({regionLeft - 10.0, y}, points, &xs, 0);
            std::sort(xs.begin(), xs.end());
            if (xs.size() == 1)
            {
                Single(xs[0], row);
            }
            else if (xs.size() > 1 && HitsVertex(xs, y))
            {
                Midpoints(xs, y, row);
            }
            else if (xs.size() > 1)
            {
                Parity(xs, row);
            }
            row += box.width;
        }
        return cells;
    }
};

Points RandomPolygon(std::mt19937& random, int turn)
{
    const auto count = 3 + random() % (turn % 10 == 0 ? 60 : 9);
    const bool onGrid = turn % 2 == 0;
    std::uniform_real_distribution<double> position(-8.0, 38.0);
    Points points;
    for (std::size_t i = 0; i < count; ++i)
    {
        const double x = position(random);
        const double y = position(random);
        points.emplace_back(onGrid ? std::round(x) : x, onGrid ? std::round(y) : y);
    }
    points.push_back(points.front());
    return points;
}

class PolygonMasks : public testing::TestWithParam<std::size_t>
{
};

TEST_P(PolygonMasks, AgreeWithTheDefiningScan)
{
    const TestSupport::WorkerCount workers(GetParam());
    std::mt19937 random(29);
    for (int turn = 0; turn < 3000; ++turn)
    {
        const Points points = RandomPolygon(random, turn);
        const qPoint64f scale = turn % 4 < 2 ? kUnitScale : qPoint64f{0.7, 0.9};
        const qPoint64f offset = turn % 4 < 2 ? kNoOffset : qPoint64f{1.3, -2.2};
        PolygonROI roi(points, 30, 30, scale, offset, nullptr);
        void* mask = roi.GetMask().Get();
        if (mask == nullptr)
        {
            continue;
        }
        const PlainScan plain = {points, roi.GetBoundingBox(), scale, offset, roi.GetBoundingRegion().x};
        ASSERT_EQ(TestSupport::CellsIn<std::uint8_t>(mask), plain.Mask()) << "turn " << turn;
    }
}

/** Large enough that the workers really share the rows out among threads. */
TEST_P(PolygonMasks, OfManyRowsAgreeWithTheDefiningScan)
{
    const TestSupport::WorkerCount workers(GetParam());
    std::mt19937 random(41);
    std::uniform_real_distribution<double> position(-50.0, 650.0);
    Points points;
    for (int i = 0; i < 40; ++i)
    {
        points.emplace_back(position(random), std::round(position(random)));
    }
    points.push_back(points.front());
    PolygonROI roi = Polygon(points, 600);
    ASSERT_NE(roi.GetMask().Get(), nullptr);
    const PlainScan plain = {points, roi.GetBoundingBox(), kUnitScale, kNoOffset, roi.GetBoundingRegion().x};
    EXPECT_EQ(TestSupport::CellsIn<std::uint8_t>(roi.GetMask()), plain.Mask());
}

INSTANTIATE_TEST_SUITE_P(Workers, PolygonMasks, testing::Values(1, 2, 3, 8, 17));

TEST(PolygonMasksOfStrangeShapes, EndAndAgreeWithTheDefiningScan)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double strange : {1e300, -1e300, 1e18, infinity, -infinity, notANumber, TestSupport::kNull})
    {
        for (int vertex = 0; vertex < 4; ++vertex)
        {
            for (const bool inX : {true, false})
            {
                Points points = {{1.0, 1.0}, {9.0, 2.0}, {8.0, 9.0}, {2.0, 7.0}};
                (inX ? points[static_cast<std::size_t>(vertex)].x : points[static_cast<std::size_t>(vertex)].y) =
                    strange;
                points.push_back(points.front());
                PolygonROI roi = Polygon(points);
                if (void* mask = roi.GetMask().Get(); mask != nullptr)
                {
                    const PlainScan plain = {points, roi.GetBoundingBox(), kUnitScale, kNoOffset,
                                             roi.GetBoundingRegion().x};
                    EXPECT_EQ(TestSupport::CellsIn<std::uint8_t>(mask), plain.Mask()) << strange << " at " << vertex;
                }
            }
        }
    }
    for (const double strange : {0.0, -1.0, 1e-200, 1e200, infinity, notANumber})
    {
        PolygonROI roi({{1.0, 1.0}, {9.0, 2.0}, {8.0, 9.0}, {1.0, 1.0}}, 20, 20, {strange, strange}, kNoOffset,
                       nullptr);
        EXPECT_NO_THROW(roi.GetMask());
    }
}

TEST(PolygonRoi, AnAnchorAndADeepCopyMakeNewPolygons)
{
    PolygonROI roi = Polygon({{1.0, 1.0}, {4.0, 1.0}, {4.0, 3.0}, {1.0, 3.0}, {1.0, 1.0}});
    const std::shared_ptr<ROI> moved = roi.ApplyAnchor({2.0, 3.0, TestSupport::kNull, 0.0});
    EXPECT_EQ(moved->GetShapeType(), MaskTypePolygon);
    ExpectBox(*moved, 3, 4, 4, 3);
    ExpectBox(roi, 1, 1, 4, 3);
    EXPECT_EQ(Picture(*roi.DeepCopy()), Picture(roi));
    const std::shared_ptr<ROI> empty = Polygon({}).ApplyAnchor({2.0, 3.0, TestSupport::kNull, 0.0});
    EXPECT_EQ(Picture(*empty), "null");
}

TEST(PolygonRoi, EveryShortageOfMemoryIsThrown)
{
    EXPECT_GT(
        TestSupport::ExpectEachFailureThrown("Zvl::ROI::_ConstructMask",
                                             [] {
                                                 Polygon({{1.0, 1.0}, {9.0, 2.0}, {8.0, 9.0}, {1.0, 1.0}}).GetMask();
                                             }),
        0U);
}

TEST(RectangleRoi, KeepsItsRectangleAndReportsItsRotation)
{
    const Region2d<double> shape = {1.0, 2.0, 3.0, 4.0, 0.5};
    const RectangleROI region(shape, 20, 20, kUnitScale, kNoOffset, nullptr);
    const RectangleROI doubles(1.0, 2.0, 3.0, 4.0, 0.5, 20, 20, kUnitScale, kNoOffset, nullptr);
    const RectangleROI corner(qPoint64f{1.0, 2.0}, 3.0, 4.0, 0.5, 20, 20, kUnitScale, kNoOffset, nullptr);
    for (const RectangleROI* roi : {&region, &doubles, &corner})
    {
        EXPECT_EQ(std::memcmp(&roi->GetShape(), &shape, sizeof(shape)), 0);
        EXPECT_EQ(roi->GetShapeType(), MaskTypeRotatedRectangle);
        EXPECT_EQ(static_cast<const PolygonROI*>(roi)->GetShape().size(), 5U);
    }
    for (const double angle : {0.0, -0.5, kGeometricTolerance})
    {
        const RectangleROI roi(1.0, 2.0, 3.0, 4.0, angle, 20, 20, kUnitScale, kNoOffset, nullptr);
        EXPECT_EQ(roi.GetShapeType(), MaskTypeRectangle) << angle;
    }
    const RectangleROI none;
    EXPECT_TRUE(none.GetShape().x == 0.0 && none.GetShape().width == 0.0);
    EXPECT_TRUE(static_cast<const PolygonROI&>(none).GetShape().empty());
}

TEST(RectangleRoi, ANegativeAngleRotatesThePolygonAllTheSame)
{
    RectangleROI roi(5.0, 9.0, 10.0, 2.0, -90.0, 40, 40, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(roi.GetShapeType(), MaskTypeRectangle);
    ExpectBox(roi, 9, 5, 3, 11);
}

TEST(RectangleRoi, AnAnchorShiftsAndTurnsIt)
{
    RectangleROI roi(5.0, 9.0, 10.0, 2.0, 0.0, 40, 40, kUnitScale, kNoOffset, nullptr);
    const std::shared_ptr<ROI> moved = roi.ApplyAnchor({1.0, 2.0, TestSupport::kNull, TestSupport::kNull});
    EXPECT_EQ(moved->GetShapeType(), MaskTypeRectangle);
    ExpectBox(*moved, 6, 11, 11, 3);
    const auto turned = std::dynamic_pointer_cast<RectangleROI>(roi.ApplyAnchor({20.0, 0.0, TestSupport::kNull, 90.0}));
    ASSERT_NE(turned, nullptr);
    EXPECT_EQ(turned->GetShape().angle, 90.0);
    ExpectBox(*turned, 9, 5, 3, 11);
    EXPECT_EQ(Picture(*roi.DeepCopy()), Picture(roi));
}

} // namespace
