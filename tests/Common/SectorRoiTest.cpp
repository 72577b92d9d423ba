#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Geometry/Geometry.h>

#include "support/FailingAllocator.h"
#include "support/Regions.h"

#include <cmath>
#include <cstring>

namespace
{

using namespace Zvl;
using TestSupport::ExpectBox;
using TestSupport::kNoOffset;
using TestSupport::kUnitScale;
using TestSupport::Picture;

TEST(CircleRoi, MarksTheCellsWhoseCentresLieInTheRing)
{
    CircleROI disc(3.0, 3.0, 0.0, 2.0, 0.0, 360.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    ExpectBox(disc, 1, 1, 5, 5);
    EXPECT_EQ(Picture(disc), "..#.. .###. ##### .###. ..#..");
    CircleROI ring(3.0, 3.0, 1.5, 2.9, 0.0, 360.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(ring), "##### #...# #...# #...# #####");
    // Both circles belong to the ring.
    CircleROI exact(3.0, 3.0, 1.0, 2.0, 0.0, 360.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(exact), "..#.. .###. ##.## .###. ..#..");
}

TEST(CircleRoi, ASectorHasBothItsEnds)
{
    CircleROI quarter(3.0, 3.0, 0.0, 2.0, 0.0, 90.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(quarter), "..... ..... ..### ..##. ..#..");
    CircleROI wrapped(3.0, 3.0, 0.0, 2.0, 315.0, 90.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(wrapped), "..... ...#. ..### ...#. .....");
    CircleROI backwards(3.0, 3.0, 0.0, 2.0, 45.0, -90.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(backwards), "..... ...#. ..### ...#. .....");
}

TEST(CircleRoi, KeepsTheSectorAndReportsItsShape)
{
    const AnnularSector2d<double> sector = {1.0, 5.0, 10.0, 20.0, {30.0, 40.0}};
    CircleROI roi(sector, 100, 100, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(roi.GetShapeType(), MaskTypeCircle);
    EXPECT_TRUE(roi.GetShape().innerRadius == 1.0 && roi.GetShape().outerRadius == 5.0);
    EXPECT_TRUE(roi.GetShape().startAngle == 10.0 && roi.GetShape().angleSpan == 20.0);
    EXPECT_TRUE(roi.GetShape().center.x == 30.0 && roi.GetShape().center.y == 40.0);
    const EllipticalSector2d<double>& ellipse = static_cast<const EllipseROI&>(roi).GetShape();
    EXPECT_TRUE(ellipse.innerHeight == 2.0 && ellipse.innerWidth == 2.0 && ellipse.outerHeight == 10.0 &&
                ellipse.outerWidth == 10.0);
    EXPECT_TRUE(ellipse.startAngle == 10.0 && ellipse.angleSpan == 20.0 && ellipse.rotation == 0.0);
    EXPECT_TRUE(ellipse.center.x == 30.0 && ellipse.center.y == 40.0);

    const CircleROI doubles(30.0, 40.0, 1.0, 5.0, 10.0, 20.0, 100, 100, kUnitScale, kNoOffset, nullptr);
    const CircleROI point(qPoint64f{30.0, 40.0}, 1.0, 5.0, 10.0, 20.0, 100, 100, kUnitScale, kNoOffset, nullptr);
    for (const CircleROI* other : {&doubles, &point})
    {
        EXPECT_EQ(std::memcmp(&other->GetShape(), &sector, sizeof(sector)), 0);
    }
}

TEST(CircleRoi, DefaultShapesAreZeros)
{
    const CircleROI circle;
    EXPECT_TRUE(circle.GetShape().outerRadius == 0.0 && circle.GetShape().center.x == 0.0 &&
                circle.GetShape().center.y == 0.0);
    const EllipseROI ellipse;
    EXPECT_TRUE(ellipse.GetShape().outerWidth == 0.0 && ellipse.GetShape().center.x == 0.0 &&
                ellipse.GetShape().center.y == 0.0);
}

TEST(CircleRoi, AnAnchorMovesACopy)
{
    CircleROI roi(3.0, 3.0, 0.0, 2.0, 0.0, 90.0, 10, 10, kUnitScale, kNoOffset, nullptr);
    roi.GetMask();
    const std::shared_ptr<ROI> moved = roi.ApplyAnchor({2.0, 1.0, TestSupport::kNull, TestSupport::kNull});
    EXPECT_EQ(moved->GetMaskValidity(), 0);
    EXPECT_EQ(moved->GetShapeType(), MaskTypeCircle);
    ExpectBox(*moved, 3, 2, 5, 5);
    EXPECT_EQ(Picture(*moved), Picture(roi));
    ExpectBox(roi, 1, 1, 5, 5);
    const auto copy = std::dynamic_pointer_cast<CircleROI>(roi.DeepCopy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(Picture(*copy), Picture(roi));
}

TEST(EllipseRoi, KeepsTheSectorAndReportsItsShape)
{
    const EllipticalSector2d<double> sector = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, {8.0, 9.0}};
    const EllipseROI whole(sector, 100, 100, kUnitScale, kNoOffset, nullptr);
    const EllipseROI doubles(8.0, 9.0, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 100, 100, kUnitScale, kNoOffset, nullptr);
    const EllipseROI point(qPoint64f{8.0, 9.0}, 1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 100, 100, kUnitScale, kNoOffset,
                           nullptr);
    for (const EllipseROI* roi : {&whole, &doubles, &point})
    {
        EXPECT_EQ(roi->GetShapeType(), MaskTypeEllipse);
        EXPECT_EQ(std::memcmp(&roi->GetShape(), &sector, sizeof(sector)), 0);
    }
}

TEST(EllipseRoi, ItsBoxIsThatOfTheRotatedEnclosingRectangle)
{
    EllipseROI upright(20.0, 20.0, 0.0, 0.0, 6.0, 12.0, 0.0, 360.0, 0.0, 40, 40, kUnitScale, kNoOffset, nullptr);
    ExpectBox(upright, 14, 17, 13, 7);
    EllipseROI turned(20.0, 20.0, 0.0, 0.0, 10.0, 10.0, 0.0, 360.0, 45.0, 40, 40, kUnitScale, kNoOffset, nullptr);
    const double half = 10.0 / std::sqrt(2.0);
    const Region2d<double> region = turned.GetBoundingRegion();
    EXPECT_NEAR(region.x, 20.0 - half, 1e-12);
    EXPECT_NEAR(region.width, 2.0 * half, 1e-12);
    ExpectBox(turned, 13, 13, 15, 15);
    const std::vector<std::uint8_t> cells = TestSupport::CellsIn<std::uint8_t>(turned.GetMask());
    EXPECT_EQ(cells[0], 0);
    EXPECT_EQ(cells[14], 0);
    EXPECT_EQ(cells[cells.size() - 1], 0);
    EXPECT_EQ(cells[7 * 15 + 7], 1);
}

TEST(EllipseRoi, RotationTurnsItsFrame)
{
    EllipseROI roi(4.0, 4.0, 0.0, 0.0, 2.0, 6.0, 0.0, 360.0, 90.0, 9, 9, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(roi), ".#. .#. .#. ### .#. .#. .#.");
    const std::shared_ptr<ROI> moved = roi.ApplyAnchor({0.0, 0.0, 0.0, 0.0});
    EXPECT_EQ(moved->GetShapeType(), MaskTypeEllipse);
    EXPECT_EQ(Picture(*moved), Picture(roi));
    EXPECT_EQ(Picture(*roi.DeepCopy()), Picture(roi));
}

TEST(EllipseRoi, OutsideTheFrameThereIsNoMask)
{
    EllipseROI roi(-50.0, 4.0, 0.0, 0.0, 2.0, 6.0, 0.0, 360.0, 0.0, 9, 9, kUnitScale, kNoOffset, nullptr);
    EXPECT_EQ(Picture(roi), "null");
    ExpectBox(roi, 0, 3, 0, 0);
}

/** The defining loop: each cell by the sector's point test, its position found by repeated addition. */
template <typename Test>
std::vector<std::uint8_t> PlainMask(const Rect2d<int>& box, const qPoint64f& scale, const qPoint64f& offset, Test test)
{
    std::vector<std::uint8_t> cells;
    for (const double y : TestSupport::RowPositions(box, scale.y, offset.y))
    {
        qPoint64f curPoint = {box.x * scale.x + offset.x, y};
        for (int column = 0; column < box.width; ++column)
        {
            cells.push_back(test(curPoint) != 0 ? 1 : 0);
            curPoint.x += scale.x;
        }
    }
    return cells;
}

/** A random sector, sometimes with round numbers so that the outline passes through cells. */
EllipticalSector2d<double> RandomSector(std::mt19937& random, bool round)
{
    const auto number = [&](double low, double high)
    {
        const double value = std::uniform_real_distribution<double>(low, high)(random);
        return round ? std::round(value) : value;
    };
    EllipticalSector2d<double> sector;
    sector.outerWidth = number(0.0, 60.0);
    sector.outerHeight = random() % 20 == 0 ? number(0.0, 0.2) : number(0.0, 60.0);
    const double inner = random() % 3 == 0 ? 0.0 : number(0.0, 1.2);
    sector.innerWidth = sector.outerWidth * inner;
    sector.innerHeight = sector.outerHeight * (random() % 2 == 0 ? inner : number(0.0, 1.2));
    sector.startAngle = round ? 45.0 * static_cast<double>(random() % 16) - 360.0 : number(-500.0, 500.0);
    sector.angleSpan = random() % 3 == 0 ? 360.0
                       : round           ? 45.0 * static_cast<double>(random() % 16) - 360.0
                                         : number(-400.0, 400.0);
    sector.rotation = random() % 3 == 0 ? 0.0
                      : round           ? 45.0 * static_cast<double>(random() % 8)
                                        : number(-200.0, 200.0);
    sector.center = {number(0.0, 40.0), number(0.0, 40.0)};
    return sector;
}

class SectorMasks : public testing::TestWithParam<std::size_t>
{
};

TEST_P(SectorMasks, AgreeWithTheTestOfEveryCell)
{
    const TestSupport::WorkerCount workers(GetParam());
    std::mt19937 random(17);
    std::size_t selected = 0;
    for (int turn = 0; turn < 3000; ++turn)
    {
        const bool round = turn % 2 == 0;
        const EllipticalSector2d<double> sector = RandomSector(random, round);
        const qPoint64f scale = round ? kUnitScale : qPoint64f{0.37 + 0.1 * (turn % 7), 0.41 + 0.1 * (turn % 5)};
        const qPoint64f offset = round ? kNoOffset : qPoint64f{-3.3, 2.1};
        EllipseROI ellipse(sector, 50, 50, scale, offset, nullptr);
        if (void* mask = ellipse.GetMask().Get(); mask != nullptr)
        {
            const auto expected =
                PlainMask(ellipse.GetBoundingBox(), scale, offset,
                          [&](const qPoint64f& point) { return CheckPointInEllipticalSector(sector, point); });
            ASSERT_EQ(TestSupport::CellsIn<std::uint8_t>(mask), expected) << "ellipse, turn " << turn;
            selected += static_cast<std::size_t>(std::count(expected.begin(), expected.end(), 1));
        }
        const AnnularSector2d<double> ring = {sector.innerWidth / 2.0, sector.outerWidth / 2.0, sector.startAngle,
                                              sector.angleSpan, sector.center};
        CircleROI circle(ring, 50, 50, scale, offset, nullptr);
        if (void* mask = circle.GetMask().Get(); mask != nullptr)
        {
            const auto expected =
                PlainMask(circle.GetBoundingBox(), scale, offset,
                          [&](const qPoint64f& point) { return CheckPointInAnnularSector(ring, point); });
            ASSERT_EQ(TestSupport::CellsIn<std::uint8_t>(mask), expected) << "circle, turn " << turn;
        }
    }
    EXPECT_GT(selected, 10000U);
}

/** Large enough that the workers really share the rows out among threads. */
TEST_P(SectorMasks, OfManyRowsAgreeWithTheTestOfEveryCell)
{
    const TestSupport::WorkerCount workers(GetParam());
    const EllipticalSector2d<double> sector = {300.0, 200.0, 500.0, 580.0, 40.0, 290.0, 33.0, {300.3, 299.8}};
    EllipseROI roi(sector, 600, 600, kUnitScale, kNoOffset, nullptr);
    ASSERT_NE(roi.GetMask().Get(), nullptr);
    const auto expected =
        PlainMask(roi.GetBoundingBox(), kUnitScale, kNoOffset,
                  [&](const qPoint64f& point) { return CheckPointInEllipticalSector(sector, point); });
    EXPECT_EQ(TestSupport::CellsIn<std::uint8_t>(roi.GetMask()), expected);
}

INSTANTIATE_TEST_SUITE_P(Workers, SectorMasks, testing::Values(1, 2, 3, 8, 17));

TEST(SectorMasksFarFromTheOrigin, AgreeWithTheTestOfEveryCell)
{
    // At an offset of 1e9 the steps of 1e-3 add up to positions that are far from index times scale.
    const qPoint64f scale = {1e-3, 1e-3};
    const qPoint64f offset = {1e9, -1e9};
    const AnnularSector2d<double> ring = {0.3, 0.7, 20.0, 250.0, {1e9 + 1.0, -1e9 + 0.9}};
    CircleROI circle(ring, 2000, 2000, scale, offset, nullptr);
    ASSERT_NE(circle.GetMask().Get(), nullptr);
    const auto expected = PlainMask(circle.GetBoundingBox(), scale, offset,
                                    [&](const qPoint64f& point) { return CheckPointInAnnularSector(ring, point); });
    EXPECT_EQ(TestSupport::CellsIn<std::uint8_t>(circle.GetMask()), expected);
}

/** Cells of the two masks that differ from the defining test, of sectors as large as @p unit, or with a hole as large. */
std::size_t DifferingCells(const AnnularSector2d<double>& ring, const EllipticalSector2d<double>& ellipse, double unit)
{
    const qPoint64f scale = {unit, unit};
    CircleROI circle(ring, 21, 21, scale, kNoOffset, nullptr);
    EllipseROI oval(ellipse, 21, 21, scale, kNoOffset, nullptr);
    std::size_t differing = 0;
    const auto compare = [&](ROI& roi, auto test)
    {
        void* mask = roi.GetMask().Get();
        const auto expected = PlainMask(roi.GetBoundingBox(), scale, kNoOffset, test);
        const auto cells = TestSupport::CellsIn<std::uint8_t>(mask);
        ASSERT_EQ(cells.size(), expected.size());
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            differing += cells[i] != expected[i] ? 1 : 0;
        }
    };
    compare(circle, [&](const qPoint64f& point) { return CheckPointInAnnularSector(ring, point); });
    compare(oval, [&](const qPoint64f& point) { return CheckPointInEllipticalSector(ellipse, point); });
    return differing;
}

TEST(SectorMasksOfAnySize, AgreeWithTheTestOfEveryCell)
{
    for (int power = -110; power <= 110; ++power)
    {
        const double k = std::pow(10.0, power);
        for (const double row : {10.0, 10.25, 10.5})
        {
            EXPECT_EQ(DifferingCells({0.0, 8.0 * k, 0.0, 360.0, {10.0 * k, row * k}},
                                     {0.0, 0.0, 8.0 * k, 16.0 * k, 0.0, 360.0, 30.0, {10.0 * k, row * k}}, k),
                      0U)
                << power;
            if (power < 0)
            {
                EXPECT_EQ(DifferingCells({k, 5.0, 0.0, 360.0, {10.0, row}},
                                         {k, 2.0 * k, 8.0, 16.0, 0.0, 360.0, 30.0, {10.0, row}}, 1.0),
                          0U)
                    << power;
            }
        }
    }
}

TEST(SectorMasksOfStrangeShapes, AgreeWithTheTestOfEveryCell)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double strange : {0.0, -0.0, -4.0, 1e-200, 1e200, 1e-310, infinity, notANumber, TestSupport::kNull})
    {
        for (int field = 0; field < 9; ++field)
        {
            EllipticalSector2d<double> sector = {2.0, 3.0, 12.0, 16.0, 30.0, 200.0, 15.0, {10.0, 10.0}};
            double* fields[] = {&sector.innerHeight, &sector.innerWidth, &sector.outerHeight,
                                &sector.outerWidth,  &sector.startAngle, &sector.angleSpan,
                                &sector.rotation,    &sector.center.x,   &sector.center.y};
            *fields[field] = strange;
            EllipseROI roi(sector, 20, 20, kUnitScale, kNoOffset, nullptr);
            void* mask = roi.GetMask().Get();
            if (mask == nullptr)
            {
                EXPECT_LE(roi.GetBoundingBox().width * roi.GetBoundingBox().height, 0);
                continue;
            }
            const auto expected =
                PlainMask(roi.GetBoundingBox(), kUnitScale, kNoOffset,
                          [&](const qPoint64f& point) { return CheckPointInEllipticalSector(sector, point); });
            EXPECT_EQ(TestSupport::CellsIn<std::uint8_t>(mask), expected) << strange << " in field " << field;
        }
    }
}

/** The rows at 10 from the centre touch the outer curve, and meet the inner one, miss it, or touch it up to rounding. */
TEST(SectorMasksOfCurvesThatAlmostCoincide, AgreeWithTheTestOfEveryCell)
{
    for (const double aside : {-1e-3, -1e-8, -2e-9, -1e-10, -1e-15, 0.0, 1e-15, 1e-10, 2e-9, 1e-8, 1e-3})
    {
        const double inner = 20.0 * (1.0 + aside);
        for (const double innerWidth : {inner, 14.0, 30.0})
        {
            for (const double span : {200.0, 360.0})
            {
                const EllipticalSector2d<double> sector = {inner, innerWidth, 20.0, 20.0, 0.0, span, 0.0, {16.0, 16.0}};
                EllipseROI roi(sector, 33, 33, kUnitScale, kNoOffset, nullptr);
                const auto expected =
                    PlainMask(roi.GetBoundingBox(), kUnitScale, kNoOffset,
                              [&](const qPoint64f& point) { return CheckPointInEllipticalSector(sector, point); });
                EXPECT_EQ(TestSupport::CellsIn<std::uint8_t>(roi.GetMask().Get()), expected)
                    << aside << ", inner width " << innerWidth << ", " << span << " degrees";
            }
        }
    }
}

TEST(SectorMasksOfStrangeFrames, EndWithoutACrash)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double strange : {0.0, -1.0, 1e-200, 1e200, infinity, notANumber})
    {
        for (const bool inScale : {true, false})
        {
            const qPoint64f scale = inScale ? qPoint64f{strange, strange} : kUnitScale;
            const qPoint64f offset = inScale ? kNoOffset : qPoint64f{strange, strange};
            CircleROI roi(3.0, 3.0, 1.0, 4.0, 10.0, 300.0, 20, 20, scale, offset, nullptr);
            EXPECT_NO_THROW(roi.GetMask());
        }
    }
}

class LyingEllipse : public EllipseROI
{
public:
    using EllipseROI::EllipseROI;
    MaskType GetShapeType() const override { return MaskTypeCircle; }
};

TEST(EllipseRoi, AFalseReportOfACircleIsRefused)
{
    LyingEllipse roi({0.0, 0.0, 4.0, 4.0, 0.0, 360.0, 0.0, {5.0, 5.0}}, 20, 20, kUnitScale, kNoOffset, nullptr);
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::EllipseROI::_AssignMaskSliced", [&] { roi.GetMask(); });
    EXPECT_EQ(roi.GetMaskValidity(), 0);
}

TEST(CircleRoi, EveryShortageOfMemoryIsThrown)
{
    EXPECT_GT(TestSupport::ExpectEachFailureThrown("Zvl::ROI::_ConstructMask",
                                                   []
                                                   {
                                                       CircleROI roi(30.0, 30.0, 0.0, 20.0, 0.0, 360.0, 100, 100,
                                                                     kUnitScale, kNoOffset, nullptr);
                                                       roi.GetMask();
                                                   }),
              0U);
}

} // namespace
