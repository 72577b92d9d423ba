#include <ZdkVisionLib/Alignment/Anchor.h>

#include "support/ExpectThrow.h"
#include "support/FailingAllocator.h"

#include <gtest/gtest.h>

#include <cmath>
#include <vector>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();
constexpr const char* kFunction = "Zvl::AnchorPointSetRegion";
constexpr Anchor kQuarterTurn = {10, 20, 30, 90};

void ExpectNear(const qPoint3d64f& actual, const qPoint3d64f& expected)
{
    EXPECT_NEAR(actual.x, expected.x, 1e-12);
    EXPECT_NEAR(actual.y, expected.y, 1e-12);
    EXPECT_NEAR(actual.z, expected.z, 1e-12);
}

Zo::Object<void*> ListOf(const std::vector<qPoint3d64f>& points)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, points.size(), nullptr));
    Zo::Test(qArrayList_Import(list, points.data(), points.size()));
    return list;
}

Zo::Object<void*> ListOfBytes(std::size_t count)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq8u_type, count, nullptr));
    Zo::Test(qArrayList_Resize(list, count));
    Zo::Test(qArrayList_Zero(list));
    return list;
}

/** Runs the list form with handles, and gives a new output list back. */
void MoveList(const Anchor& anchor, const Zo::Object<void*>& in, Zo::Object<void*>& out, qAlloc allocator = nullptr)
{
    void* inHandle = in.Get();
    void* outHandle = out.Get();
    AnchorPointSetRegion(anchor, &inHandle, &outHandle, allocator);
    if (out.Get() == nullptr)
    {
        out.Reset(outHandle);
    }
    EXPECT_EQ(outHandle, out.Get());
}

void ExpectItems(qArrayList list, const std::vector<qPoint3d64f>& expected)
{
    ASSERT_EQ(qArrayList_Count(list), expected.size());
    for (std::size_t index = 0; index < expected.size(); ++index)
    {
        ExpectNear(*static_cast<const qPoint3d64f*>(qArrayList_At(list, index)), expected[index]);
    }
}

} // namespace

// ---------------------------------------------------------------------------------------------------------
// Arrays

TEST(AnchorPointSetRegion, TurnsAboutTheOriginAndShiftsByWhatIsNotNull)
{
    const qPoint3d64f point = {1, 2, 3};
    for (unsigned present = 0; present < 16; ++present)
    {
        const bool hasX = (present & 1U) != 0;
        const bool hasY = (present & 2U) != 0;
        const bool hasZ = (present & 4U) != 0;
        const bool hasAngle = (present & 8U) != 0;
        const Anchor anchor = {hasX ? 10 : kNull, hasY ? 20 : kNull, hasZ ? 30 : kNull, hasAngle ? 90 : kNull};
        // A quarter turn carries (1, 2) to (-2, 1).
        const qPoint3d64f expected = {(hasAngle ? -2.0 : 1.0) + (hasX ? 10.0 : 0.0),
                                      (hasAngle ? 1.0 : 2.0) + (hasY ? 20.0 : 0.0), 3.0 + (hasZ ? 30.0 : 0.0)};
        qPoint3d64f moved = {0, 0, 0};
        AnchorPointSetRegion(anchor, &point, 1, &moved);
        ExpectNear(moved, expected);

        const Point3d<double> record = point;
        Point3d<double> movedRecord;
        AnchorPointSetRegion(anchor, &record, 1, &movedRecord);
        ExpectNear(movedRecord, expected);
    }
}

TEST(AnchorPointSetRegion, AnAnchorOfNullsCopiesEvenWhatNoFrameCouldKeep)
{
    const std::vector<qPoint3d64f> points = {{kNull, 0.1, 1e300}, {-0.0, 2, kNull}};
    std::vector<qPoint3d64f> moved(2);
    AnchorPointSetRegion(Anchor(), points.data(), 2, moved.data());
    EXPECT_EQ(moved[0].x, kNull);
    EXPECT_EQ(moved[0].y, 0.1);
    EXPECT_EQ(moved[0].z, 1e300);
    EXPECT_TRUE(std::signbit(moved[1].x));
    EXPECT_EQ(moved[1].z, kNull);
}

TEST(AnchorPointSetRegion, MovesAnArrayInPlace)
{
    std::vector<qPoint3d64f> points = {{1, 2, 3}, {0, 0, 0}};
    AnchorPointSetRegion(Anchor(), points.data(), 2, points.data());
    ExpectNear(points[0], {1, 2, 3});
    AnchorPointSetRegion(kQuarterTurn, points.data(), 2, points.data());
    ExpectNear(points[0], {8, 21, 33});
    ExpectNear(points[1], {10, 20, 30});
}

TEST(AnchorPointSetRegion, NullArraysAreFineWithoutPointsOnly)
{
    qPoint3d64f point = {1, 2, 3};
    const qPoint3d64f* none = nullptr;
    AnchorPointSetRegion(kQuarterTurn, none, 0, nullptr);
    AnchorPointSetRegion(Anchor(), none, 0, nullptr);
    for (const Anchor& anchor : {Anchor(), kQuarterTurn})
    {
        TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                                 [&] { AnchorPointSetRegion(anchor, none, 1, &point); });
        TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                                 [&] { AnchorPointSetRegion(anchor, &point, 1, static_cast<qPoint3d64f*>(nullptr)); });
    }
}

// ---------------------------------------------------------------------------------------------------------
// Lists

TEST(AnchorPointSetRegionOfLists, FillsANewList)
{
    TestSupport::FailingAllocator allocator;
    {
        const Zo::Object<void*> in = ListOf({{1, 2, 3}, {0, 0, 0}});
        Zo::Object<void*> out;
        MoveList(kQuarterTurn, in, out, allocator.Get());
        EXPECT_EQ(qArrayList_Type(out), xxqPoint3d64f_type);
        EXPECT_EQ(qObject_ShareCount(out), 1);
        EXPECT_GT(allocator.LiveBlocks(), 0U);
        ExpectItems(out, {{8, 21, 33}, {10, 20, 30}});
        ExpectItems(in, {{1, 2, 3}, {0, 0, 0}});
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(AnchorPointSetRegionOfLists, ReplacesTheItemsOfAnOldList)
{
    const Zo::Object<void*> in = ListOf({{1, 2, 3}, {0, 0, 0}});
    Zo::Object<void*> out = ListOf({{9, 9, 9}, {8, 8, 8}, {7, 7, 7}});
    MoveList(kQuarterTurn, in, out);
    ExpectItems(out, {{8, 21, 33}, {10, 20, 30}});
    MoveList(Anchor(), in, out);
    ExpectItems(out, {{1, 2, 3}, {0, 0, 0}});
}

TEST(AnchorPointSetRegionOfLists, AnEmptyListMakesNoListAndEmptiesAnOldOne)
{
    const Zo::Object<void*> in = ListOf({});
    Zo::Object<void*> none;
    MoveList(kQuarterTurn, in, none);
    EXPECT_EQ(none.Get(), nullptr);
    Zo::Object<void*> old = ListOf({{9, 9, 9}});
    MoveList(kQuarterTurn, in, old);
    ExpectItems(old, {});
    Zo::Object<void*> bytes = ListOfBytes(5);
    MoveList(kQuarterTurn, in, bytes);
    EXPECT_EQ(qArrayList_Count(bytes), 0U);
}

TEST(AnchorPointSetRegionOfLists, TheInputAsOutputEndsEmpty)
{
    Zo::Object<void*> list = ListOf({{1, 2, 3}, {4, 5, 6}});
    MoveList(kQuarterTurn, list, list);
    ExpectItems(list, {});
}

TEST(AnchorPointSetRegionOfLists, UnfitHandlesAreRejected)
{
    const Zo::Object<void*> points = ListOf({{1, 2, 3}});
    const Zo::Object<void*> bytes = ListOfBytes(3);
    Zo::Object<void*> array;
    Zo::Test(qArray1_Construct(array.Slot(), xxqPoint3d64f_type, 1, nullptr));
    int foreign = 0;
    Zo::Object<void*> old = ListOf({{9, 9, 9}});

    void* out = old.Get();
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                             [&] { AnchorPointSetRegion(kQuarterTurn, nullptr, &out, nullptr); });
    for (void* const in : {static_cast<void*>(nullptr), bytes.Get(), array.Get(), static_cast<void*>(&foreign)})
    {
        TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                                 [&] { AnchorPointSetRegion(kQuarterTurn, &in, &out, nullptr); });
    }
    ExpectItems(old, {{9, 9, 9}});

    void* const in = points.Get();
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                             [&] { AnchorPointSetRegion(kQuarterTurn, &in, nullptr, nullptr); });
    for (void* unfit : {bytes.Get(), array.Get(), static_cast<void*>(&foreign)})
    {
        void* const before = unfit;
        TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                                 [&] { AnchorPointSetRegion(kQuarterTurn, &in, &unfit, nullptr); });
        EXPECT_EQ(unfit, before);
    }
    EXPECT_EQ(qArrayList_Count(bytes), 0U);
}

TEST(AnchorPointSetRegionOfLists, ShortageOfMemoryLeavesNoNewList)
{
    const Zo::Object<void*> in = ListOf({{1, 2, 3}, {4, 5, 6}});
    for (const TestSupport::Failing mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        const std::size_t failures = TestSupport::ExpectEachFailureThrown(
            kFunction,
            [&]
            {
                void* const inHandle = in.Get();
                void* outHandle = nullptr;
                try
                {
                    AnchorPointSetRegion(kQuarterTurn, &inHandle, &outHandle, nullptr);
                }
                catch (const Zo::Exception&)
                {
                    EXPECT_EQ(outHandle, nullptr);
                    throw;
                }
                const Zo::Object<void*> out(outHandle);
                ExpectItems(out, {{8, 21, 33}, {5, 24, 36}});
            },
            mode);
        EXPECT_GT(failures, 0U);
    }
}

TEST(AnchorPointSetRegionOfLists, ShortageOfMemoryLeavesAnOldListEmpty)
{
    const Zo::Object<void*> in = ListOf({{1, 2, 3}, {4, 5, 6}});
    for (const TestSupport::Failing mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        TestSupport::FailingAllocator allocator;
        Zo::Object<void*> out;
        Zo::Test(qArrayList_Construct(out.Slot(), xxqPoint3d64f_type, 0, allocator.Get()));
        void* const inHandle = in.Get();
        void* outHandle = out.Get();
        allocator.FailAt(1, mode);
        const int status = mode == TestSupport::Failing::OnlyNth ? STATUS_OK : STATUS_OUT_OF_MEMORY;
        TestSupport::ExpectThrow(status, kFunction,
                                 [&] { AnchorPointSetRegion(kQuarterTurn, &inHandle, &outHandle, nullptr); });
        EXPECT_EQ(allocator.Failures(), mode == TestSupport::Failing::OnlyNth ? 1U : 2U);
        EXPECT_EQ(outHandle, out.Get());
        EXPECT_EQ(qObject_ShareCount(out), 1);
    }
}

// ---------------------------------------------------------------------------------------------------------
// Polygons

TEST(AnchorPolygon, MovesEveryVertexByTheRuleForPoints)
{
    const std::vector<Point2d<double>> flat = {{1, 2}, {0, 0}, {3, 0}};
    std::vector<Point2d<double>> movedFlat = {{7, 7}};
    AnchorPolygon(kQuarterTurn, flat, &movedFlat);
    ASSERT_EQ(movedFlat.size(), 3U);
    ExpectNear({movedFlat[0].x, movedFlat[0].y, 0}, {8, 21, 0});
    ExpectNear({movedFlat[2].x, movedFlat[2].y, 0}, {10, 23, 0});

    const std::vector<Point3d<double>> solid = {{1, 2, 3}, {0, 0, 0}};
    std::vector<Point3d<double>> movedSolid(5);
    AnchorPolygon(kQuarterTurn, solid, &movedSolid);
    ASSERT_EQ(movedSolid.size(), 2U);
    ExpectNear(movedSolid[0], {8, 21, 33});
    ExpectNear(movedSolid[1], {10, 20, 30});
}

TEST(AnchorPolygon, ANullShiftStillTurnsTheVertices)
{
    const std::vector<Point2d<double>> in = {{1, 2}};
    std::vector<Point2d<double>> out;
    AnchorPolygon(Anchor{kNull, 20, kNull, 90}, in, &out);
    ExpectNear({out[0].x, out[0].y, 0}, {-2, 21, 0});
}

TEST(AnchorPolygon, AnAnchorOfNullsCopies)
{
    const std::vector<Point2d<double>> in = {{1, 2}, {kNull, 1e300}};
    std::vector<Point2d<double>> out;
    AnchorPolygon(Anchor(), in, &out);
    EXPECT_EQ(out[0].x, 1.0);
    EXPECT_EQ(out[1].x, kNull);
    EXPECT_EQ(out[1].y, 1e300);
}

TEST(AnchorPolygon, MovesInPlace)
{
    std::vector<Point2d<double>> flat = {{1, 2}, {0, 0}};
    AnchorPolygon(kQuarterTurn, flat, &flat);
    ExpectNear({flat[0].x, flat[0].y, 0}, {8, 21, 0});
    std::vector<Point3d<double>> solid = {{1, 2, 3}};
    AnchorPolygon(kQuarterTurn, solid, &solid);
    ExpectNear(solid[0], {8, 21, 33});
}

TEST(AnchorPolygon, WithoutVerticesTheOutputStays)
{
    std::vector<Point2d<double>> flat = {{7, 7}};
    AnchorPolygon(kQuarterTurn, std::vector<Point2d<double>>(), &flat);
    EXPECT_EQ(flat.size(), 1U);
    std::vector<Point3d<double>> solid(5);
    AnchorPolygon(kQuarterTurn, std::vector<Point3d<double>>(), &solid);
    EXPECT_EQ(solid.size(), 5U);
}

TEST(AnchorPolygon, ANullOutputThrowsEvenWithoutVertices)
{
    const std::vector<Point2d<double>> flat;
    const std::vector<Point3d<double>> solid;
    const char* function = "Zvl::AnchorPolygon";
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, function, [&] { AnchorPolygon(kQuarterTurn, flat, nullptr); });
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, function, [&] { AnchorPolygon(kQuarterTurn, solid, nullptr); });
    TestSupport::ExpectThrow(
        STATUS_BAD_PARAMETER, function,
        [&] {
            AnchorPolygon(kQuarterTurn, {{1.0, 2.0}}, static_cast<std::vector<Point2d<double>>*>(nullptr));
        });
}

} // namespace Zvl
