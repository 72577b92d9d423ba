#include "Geometry/RotatedBounds.h"

#include "Geometry/PlainBounds.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace PlainBounds;
using TestSupport::ExpectThrow;
using TestSupport::kNull;
using Zvl::GetRotatedBounds;

constexpr const char* kFunction = "Zvl::GetRotatedBounds";

Box Bounds(const Points& left, const Points& right, const qPoint64f& scale = {1.0, 1.0},
           const qPoint64f& offset = {0.0, 0.0}, void* allocator = nullptr)
{
    const double offsets[] = {offset.x, offset.y};
    const double scales[] = {scale.x, scale.y};
    Box box = {{7.0, 7.0}, {7.0, 7.0}, 7.0};
    GetRotatedBounds(MakeChain(left), MakeChain(right), offsets, scales, box.center, box.size, &box.angle, allocator);
    return box;
}

/** The corners of a rectangle about @p x, @p y, rounded to cells. */
Points Corners(double x, double y, double length, double width, double degrees)
{
    const double cosine = std::cos(degrees * 3.141592653589793 / 180.0);
    const double sine = std::sin(degrees * 3.141592653589793 / 180.0);
    Points corners;
    for (const auto& [u, v] : {std::pair{-1, -1}, {1, -1}, {1, 1}, {-1, 1}})
    {
        const double along = u * length / 2;
        const double across = v * width / 2;
        corners.push_back({static_cast<int>(std::lround(x + along * cosine - across * sine)),
                           static_cast<int>(std::lround(y + along * sine + across * cosine))});
    }
    return corners;
}

TEST(GetRotatedBounds, ASingleCellLiesAlongTheAxes)
{
    // Every direction has area 0, and the first one wins. The angle is that of the longer side.
    ExpectSameBox(Bounds({{3, 4}}, {{3, 4}}), {{3.0, 4.0}, {1.0, 1.0}, 0.0});
    ExpectSameBox(Bounds({{3, 4}}, {{3, 4}}, {2.0, 1.0}, {100.0, 200.0}), {{106.0, 204.0}, {1.0, 2.0}, 0.0});
    ExpectSameBox(Bounds({{3, 4}}, {{3, 4}}, {1.0, 2.0}, {100.0, 200.0}), {{103.0, 208.0}, {1.0, 2.0}, 90.0});
    ExpectSameBox(Bounds({{0, 0}}, {}), {{0.0, 0.0}, {1.0, 1.0}, 0.0});
}

TEST(GetRotatedBounds, AnUprightRectangleHasAngle0Or90)
{
    ExpectNearBox(Bounds({{0, 0}, {0, 2}}, {{4, 0}, {4, 2}}), {{2.0, 1.0}, {3.0, 5.0}, 0.0}, 1e-12);
    ExpectNearBox(Bounds({{0, 0}, {0, 4}}, {{2, 0}, {2, 4}}), {{1.0, 2.0}, {3.0, 5.0}, 90.0}, 1e-12);
    // A square: of equal extents, the first direction is the angle's.
    ExpectNearBox(Bounds({{0, 0}, {0, 4}}, {{4, 0}, {4, 4}}), {{2.0, 2.0}, {5.0, 5.0}, 0.0}, 1e-12);
}

TEST(GetRotatedBounds, ADiagonalOfCellsLiesAt45Or135Degrees)
{
    // Four diagonal steps, and one cell's diagonal in both directions.
    const double diagonal = std::sqrt(2.0);
    ExpectNearBox(Bounds({{0, 0}, {4, 4}}, {{0, 0}, {4, 4}}), {{2.0, 2.0}, {diagonal, 5 * diagonal}, 45.0}, 5e-5);
    ExpectNearBox(Bounds({{4, 0}, {0, 4}}, {{4, 0}, {0, 4}}), {{2.0, 2.0}, {diagonal, 5 * diagonal}, 135.0}, 5e-5);
}

TEST(GetRotatedBounds, TheCellsExtentIsTheShorterWayThroughACell)
{
    // Cells (0, 0), (40, 30) of 1 x 2: the direction is that of (40, 60), 56.3 degrees.
    const Box box = Bounds({{0, 0}, {40, 30}}, {}, {1.0, 2.0});
    EXPECT_NEAR(box.angle, 56.3, 1e-9);
    const double angle = 56.3 * 3.141592653589793 / 180.0;
    EXPECT_NEAR(box.size[1], std::sqrt(40.0 * 40.0 + 60.0 * 60.0) + 1.0 / std::cos(angle), 1e-3);
    EXPECT_NEAR(box.size[0], 1.0 / std::sin(angle), 0.02);
    EXPECT_NEAR(box.center[0], 20.0, 0.02);
    EXPECT_NEAR(box.center[1], 30.0, 0.02);
}

TEST(GetRotatedBounds, DirectionsJustBelow0AreFoundAsTheirPerpendiculars)
{
    const Box box = Bounds(Corners(20000, 10000, 30000, 3000, -0.4), {});
    EXPECT_NEAR(box.angle, 179.6, 1e-9);
    EXPECT_NEAR(box.size[0], 3001.0, 3.0);
    EXPECT_NEAR(box.size[1], 30001.0, 3.0);
    EXPECT_NEAR(box.center[0], 20000.0, 1.0);
    EXPECT_NEAR(box.center[1], 10000.0, 1.0);
    EXPECT_NEAR(Bounds(Corners(20000, 10000, 3000, 30000, -0.4), {}).angle, 89.6, 1e-9);
}

TEST(GetRotatedBounds, BothEndsOfTheFineRangeAreReached)
{
    for (const double degrees : {0.9, 1.1, 44.1, 44.4, 44.5, 44.6, 44.9, 88.9, 89.1, 89.5, 89.9})
    {
        EXPECT_NEAR(Bounds(Corners(20000, 20000, 36000, 4000, degrees), {}).angle, degrees, 0.01) << degrees;
    }
}

TEST(GetRotatedBounds, PointsWithANullCoordinateAreNoPoints)
{
    constexpr int null = std::numeric_limits<int>::min();
    const Box expected = Bounds({{0, 0}, {0, 2}}, {{4, 0}, {4, 2}});
    ExpectSameBox(Bounds({{0, 0}, {null, 1}, {0, 2}}, {{4, 0}, {900, null}, {4, 2}, {null, null}}), expected);
    ExpectSameBox(Bounds({{null, 1}}, {{1, null}}), Box());
}

TEST(GetRotatedBounds, EmptyChainsGiveNulls)
{
    ExpectSameBox(Bounds({}, {}), Box());
    ExpectSameBox(Bounds({}, {}, {0.1, 0.3}, {5.0, 6.0}), Box());
}

TEST(GetRotatedBounds, AgreesWithThePlainLoop)
{
    std::mt19937 random(17);
    std::uniform_real_distribution<double> scale(0.05, 2.0);
    std::uniform_real_distribution<double> offset(-50.0, 50.0);
    for (int round = 0; round < 60; ++round)
    {
        Points sides[2];
        for (Points& side : sides)
        {
            const unsigned spread = round % 3 == 0 ? 4 : 2000;
            for (std::size_t count = random() % 12; count > 0; --count)
            {
                side.push_back({static_cast<int>(random() % spread) - 300, static_cast<int>(random() % spread) - 300});
            }
        }
        const qPoint64f cell = {scale(random), scale(random)};
        const qPoint64f origin = {offset(random), offset(random)};
        Points all = sides[0];
        all.insert(all.end(), sides[1].begin(), sides[1].end());
        ExpectSameBox(Bounds(sides[0], sides[1], cell, origin), BoundsOf(all, origin, cell));
    }
}

TEST(GetRotatedBounds, FindsTheBestOfAllDirectionsForRectangles)
{
    std::mt19937 random(23);
    std::uniform_real_distribution<double> degrees(0.0, 180.0);
    std::uniform_real_distribution<double> side(300.0, 8000.0);
    for (int round = 0; round < 60; ++round)
    {
        const Points corners = Corners(9000, 9000, side(random), side(random), degrees(random));
        const Search search(corners, {1.0, 1.0});
        std::int64_t smallest = search.Area(0);
        for (int direction = 1; direction < 900; ++direction)
        {
            smallest = std::min(smallest, search.Area(direction));
        }
        const int found = static_cast<int>(std::lround(Bounds(corners, {}).angle * 10.0)) % 900;
        EXPECT_EQ(search.Area(found), smallest) << "round " << round;
    }
}

TEST(GetRotatedBounds, AreasBeyond64BitsAreStillCompared)
{
    // Extents of 3e5 cells are 2.5e10 in fixed point.
    const Box box = Bounds(Corners(200000, 200000, 300000, 290000, 30.0), {});
    EXPECT_NEAR(box.angle, 30.0, 1e-9);
    EXPECT_NEAR(box.size[0], 290001.0, 3.0);
    EXPECT_NEAR(box.size[1], 300001.0, 3.0);
    // A row is a million columns wide.
    ExpectNearBox(Bounds({{0, 0}, {0, 1000}}, {{3000, 0}, {3000, 1000}}, {1.0, 1e6}),
                  {{1500.0, 5e8}, {3001.0, 1.001e9}, 90.0}, 1e-3);
}

TEST(GetRotatedBounds, WholeRangeOfCoordinatesIsFine)
{
    constexpr int low = -std::numeric_limits<int>::max();
    constexpr int high = std::numeric_limits<int>::max();
    const double side = 4294967295.0;
    ExpectNearBox(Bounds({{low, low}, {low, high}}, {{high, low}, {high, high}}), {{0.0, 0.0}, {side, side}, 0.0},
                  1e-3);
}

TEST(GetRotatedBounds, ScalesThatNoProjectionCanHoldGiveNulls)
{
    constexpr double notANumber = std::numeric_limits<double>::quiet_NaN();
    constexpr double infinity = std::numeric_limits<double>::infinity();
    const Points points = {{0, 0}, {5, 9}};
    for (const qPoint64f& scale :
         {qPoint64f{0.0, 1.0}, qPoint64f{notANumber, 1.0}, qPoint64f{1.0, notANumber}, qPoint64f{infinity, 1.0},
          qPoint64f{1.0, infinity}, qPoint64f{1e-320, 1.0}, qPoint64f{1e-200, 1e200}, qPoint64f{1e-10, 1e10},
          qPoint64f{1.0, kNull}, qPoint64f{0.0, 0.0}})
    {
        ExpectSameBox(Bounds(points, points, scale), Box());
        ExpectSameBox(Bounds({{0, 0}}, {}, scale), Box());
    }
}

TEST(GetRotatedBounds, OddOffsetsAndAFlatScaleHaveAResult)
{
    const Box moved = Bounds({{1, 2}}, {}, {1.0, 1.0}, {std::numeric_limits<double>::quiet_NaN(), 10.0});
    EXPECT_TRUE(std::isnan(moved.center[0]));
    EXPECT_EQ(moved.center[1], 12.0);
    EXPECT_EQ(moved.size[0], 1.0);
    ExpectNearBox(Bounds({{0, 0}}, {{4, 7}}, {1.0, 0.0}), {{2.0, 0.0}, {0.0, 5.0}, 0.0}, 1e-12);
}

TEST(GetRotatedBounds, RefusesNullsAndWhatIsNoChain)
{
    Zo::Object<void*> numbers;
    Zo::Test(qArrayList_Construct(numbers.Slot(), xxq32s_type, 4, nullptr));
    const Zo::Object<void*> chain = MakeChain({{1, 1}});
    const double scale[] = {1.0, 1.0};
    double center[] = {7.0, 7.0};
    double size[] = {7.0, 7.0};
    double angle = 7.0;
    const auto expectRefusal = [&](const Zo::Object<void*>& left, const Zo::Object<void*>& right, const double* offsets,
                                   const double* scales, double* centers, double* sizes, double* angles)
    {
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                    [&] { GetRotatedBounds(left, right, offsets, scales, centers, sizes, angles, nullptr); });
    };
    expectRefusal({}, chain, scale, scale, center, size, &angle);
    expectRefusal(chain, {}, scale, scale, center, size, &angle);
    expectRefusal(numbers, chain, scale, scale, center, size, &angle);
    expectRefusal(chain, numbers, scale, scale, center, size, &angle);
    expectRefusal(chain, chain, nullptr, scale, center, size, &angle);
    expectRefusal(chain, chain, scale, nullptr, center, size, &angle);
    expectRefusal(chain, chain, scale, scale, nullptr, size, &angle);
    expectRefusal(chain, chain, scale, scale, center, nullptr, &angle);
    expectRefusal(chain, chain, scale, scale, center, size, nullptr);
    EXPECT_EQ(center[0] + center[1] + size[0] + size[1] + angle, 35.0);
    EXPECT_EQ(qObject_ShareCount(chain), 1);
}

TEST(GetRotatedBounds, ShortageOfMemoryIsThrownAndLeavesTheOutputs)
{
    TestSupport::FailingAllocator allocator;
    const Zo::Object<void*> chain = MakeChain({{1, 1}});
    const double mapping[] = {1.0, 1.0};
    allocator.FailNever();
    Bounds({{1, 1}}, {}, {1.0, 1.0}, {0.0, 0.0}, allocator.Get());
    const std::size_t allocations = allocator.Allocations();
    EXPECT_GE(allocations, 4U);
    for (std::size_t nth = 1; nth <= allocations; ++nth)
    {
        for (const auto& [mode, status] : {std::pair{TestSupport::Failing::FromNthOn, STATUS_OUT_OF_MEMORY},
                                           {TestSupport::Failing::OnlyNth, STATUS_OK}})
        {
            Box box = {{7.0, 7.0}, {7.0, 7.0}, 7.0};
            allocator.FailAt(nth, mode);
            ExpectThrow(status, kFunction,
                        [&, &box = box] {
                            GetRotatedBounds(chain, chain, mapping, mapping, box.center, box.size, &box.angle,
                                             allocator.Get());
                        });
            ExpectSameBox(box, {{7.0, 7.0}, {7.0, 7.0}, 7.0});
            EXPECT_EQ(allocator.LiveBlocks(), 0U);
        }
    }
    EXPECT_EQ(qObject_ShareCount(chain), 1);
}

} // namespace
