#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

namespace
{

using namespace Zvl;
using TestSupport::CellsIn;
using TestSupport::ExpectThrow;
using TestSupport::MakeArray;
using TestSupport::MakeFilled;

constexpr char kFunction[] = "Zvl::MaskOperation";

/** The cells of @p a and @p b combined. */
std::vector<std::uint8_t> Combined(const Zo::Object<void*>& a, const Zo::Object<void*>& b, MaskOperationType op)
{
    Zo::Object<void*> out;
    MaskOperation(a, b, op, out.Slot(), nullptr);
    EXPECT_EQ(qArray2_Length(out, 0), qArray2_Length(a, 0));
    EXPECT_EQ(qArray2_Length(out, 1), qArray2_Length(a, 1));
    return CellsIn<std::uint8_t>(out);
}

TEST(MaskOperation, CombinesBitByBit)
{
    const Zo::Object<void*> a = MakeArray<std::uint8_t>(2, 3, {0, 1, 0, 1, 6, 255});
    const Zo::Object<void*> b = MakeArray<std::uint8_t>(2, 3, {0, 0, 1, 1, 3, 16});
    EXPECT_EQ(Combined(a, b, MaskOperationAnd), (std::vector<std::uint8_t>{0, 0, 0, 1, 2, 16}));
    EXPECT_EQ(Combined(a, b, MaskOperationOr), (std::vector<std::uint8_t>{0, 1, 1, 1, 7, 255}));
}

TEST(MaskOperation, AgreesWithThePlainLoop)
{
    std::mt19937 random(5);
    for (int turn = 0; turn < 50; ++turn)
    {
        const std::size_t rows = 1 + random() % 40;
        const std::size_t columns = 1 + random() % 70;
        std::vector<std::uint8_t> a(rows * columns);
        std::vector<std::uint8_t> b(rows * columns);
        std::vector<std::uint8_t> both(rows * columns);
        std::vector<std::uint8_t> either(rows * columns);
        for (std::size_t i = 0; i < a.size(); ++i)
        {
            a[i] = static_cast<std::uint8_t>(random());
            b[i] = static_cast<std::uint8_t>(random());
            both[i] = static_cast<std::uint8_t>(a[i] & b[i]);
            either[i] = static_cast<std::uint8_t>(a[i] | b[i]);
        }
        EXPECT_EQ(Combined(MakeArray(rows, columns, a), MakeArray(rows, columns, b), MaskOperationAnd), both);
        EXPECT_EQ(Combined(MakeArray(rows, columns, a), MakeArray(rows, columns, b), MaskOperationOr), either);
    }
}

TEST(MaskOperation, WorksOnAnyPlainItems)
{
    const Zo::Object<void*> a = MakeArray<std::int16_t>(1, 2, {0x0f0f, -32768});
    const Zo::Object<void*> b = MakeArray<std::int16_t>(1, 2, {0x00ff, 1});
    Zo::Object<void*> out;
    MaskOperation(a, b, MaskOperationOr, out.Slot(), nullptr);
    EXPECT_EQ(CellsIn<std::int16_t>(out), (std::vector<std::int16_t>{0x0fff, -32767}));
}

TEST(MaskOperation, WithoutAnOutputNothingIsLookedAt)
{
    EXPECT_NO_THROW(MaskOperation(nullptr, MakeFilled<std::uint8_t>(1, 1, 1), MaskOperationAnd, nullptr, nullptr));
}

TEST(MaskOperation, UnfitInputIsRefusedAndTheOutputKept)
{
    const Zo::Object<void*> a = MakeFilled<std::uint8_t>(2, 3, 1);
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq8u_type, 6, nullptr));
    const std::vector<Zo::Object<void*>> unfit = {Zo::Object<void*>(), MakeFilled<std::int16_t>(2, 3, 1),
                                                  MakeFilled<std::uint8_t>(3, 3, 1), MakeFilled<std::uint8_t>(2, 2, 1),
                                                  list};
    const Zo::Object<void*> kept = MakeFilled<std::uint8_t>(1, 1, 9);
    for (const Zo::Object<void*>& b : unfit)
    {
        qArray2 out = kept.Get();
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { MaskOperation(a, b, MaskOperationOr, &out, nullptr); });
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { MaskOperation(b, a, MaskOperationOr, &out, nullptr); });
        EXPECT_EQ(out, kept.Get());
    }
    EXPECT_EQ(CellsIn<std::uint8_t>(kept), std::vector<std::uint8_t>{9});
}

TEST(MaskOperation, ItemsThatAreObjectsAreRefused)
{
    Zo::Object<void*> handles;
    Zo::Test(qArray2_Construct(handles.Slot(), xxqObject_type, 1, 1, nullptr));
    Zo::Object<void*> out;
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                [&] { MaskOperation(handles, handles, MaskOperationAnd, out.Slot(), nullptr); });
}

TEST(MaskOperation, EmptyMasksLeaveTheOutputAlone)
{
    const Zo::Object<void*> none = MakeFilled<std::uint8_t>(0, 0, 0);
    const Zo::Object<void*> flat = MakeFilled<std::uint8_t>(3, 0, 0);
    const Zo::Object<void*> kept = MakeFilled<std::int16_t>(1, 1, 9);
    qArray2 out = kept.Get();
    MaskOperation(none, none, MaskOperationOr, &out, nullptr);
    MaskOperation(flat, flat, MaskOperationOr, &out, nullptr);
    EXPECT_EQ(out, kept.Get());
    EXPECT_EQ(qArray2_Type(kept), xxq16s_type);
}

TEST(MaskOperation, AnUnknownOperationGivesTheShapeOnly)
{
    const Zo::Object<void*> a = MakeFilled<std::uint8_t>(2, 3, 1);
    Zo::Object<void*> out;
    MaskOperation(a, a, static_cast<MaskOperationType>(2), out.Slot(), nullptr);
    EXPECT_EQ(qArray2_Length(out, 0), 2U);
    EXPECT_EQ(qArray2_Length(out, 1), 3U);
    EXPECT_EQ(qArray2_Type(out), xxq8u_type);
    // The shape of the input is there already, and so are the cells that nothing was stored to.
    qArray2 present = MakeFilled<std::uint8_t>(2, 3, 7).Detach();
    MaskOperation(a, present, static_cast<MaskOperationType>(-1), &present, nullptr);
}

TEST(MaskOperation, AnOutputOfTheSameTypeIsKeptAsAnObject)
{
    const Zo::Object<void*> a = MakeFilled<std::uint8_t>(2, 3, 1);
    const Zo::Object<void*> kept = MakeFilled<std::uint8_t>(1, 1, 9);
    qArray2 out = kept.Get();
    MaskOperation(a, a, MaskOperationOr, &out, nullptr);
    EXPECT_EQ(out, kept.Get());
    EXPECT_EQ(CellsIn<std::uint8_t>(kept), std::vector<std::uint8_t>(6, 1));
}

TEST(MaskOperation, AnotherOutputIsReplaced)
{
    const Zo::Object<void*> a = MakeFilled<std::uint8_t>(2, 3, 1);
    const Zo::Object<void*> kept = MakeFilled<std::int16_t>(2, 3, 9);
    Zo::Object<void*> shared = kept;
    qArray2 out = shared.Detach();
    MaskOperation(a, a, MaskOperationOr, &out, nullptr);
    const Zo::Object<void*> made = out;
    EXPECT_NE(out, kept.Get());
    EXPECT_EQ(qObject_ShareCount(kept), 1);
    EXPECT_EQ(CellsIn<std::uint8_t>(made), std::vector<std::uint8_t>(6, 1));
}

TEST(MaskOperation, TheOutputMayBeOneOfTheInputs)
{
    const Zo::Object<void*> b = MakeArray<std::uint8_t>(1, 4, {0, 1, 0, 1});
    for (const bool first : {true, false})
    {
        const Zo::Object<void*> a = MakeArray<std::uint8_t>(1, 4, {0, 0, 1, 1});
        qArray2 out = a.Get();
        MaskOperation(first ? a : b, first ? b : a, MaskOperationOr, &out, nullptr);
        EXPECT_EQ(out, a.Get());
        EXPECT_EQ(CellsIn<std::uint8_t>(a), (std::vector<std::uint8_t>{0, 1, 1, 1}));
    }
}

TEST(MaskOperation, ReleasesItsArgumentsOnEveryWayOut)
{
    const Zo::Object<void*> a = MakeFilled<std::uint8_t>(2, 3, 1);
    const Zo::Object<void*> b = MakeFilled<std::uint8_t>(1, 3, 1);
    Zo::Object<void*> out;
    MaskOperation(a, a, MaskOperationOr, out.Slot(), nullptr);
    EXPECT_THROW(MaskOperation(a, b, MaskOperationOr, out.Slot(), nullptr), Zo::Exception);
    EXPECT_EQ(qObject_ShareCount(a), 1);
    EXPECT_EQ(qObject_ShareCount(b), 1);
}

TEST(MaskOperation, EveryShortageOfMemoryIsThrown)
{
    const Zo::Object<void*> a = MakeFilled<std::uint8_t>(20, 30, 1);
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        const auto construct = [&]
        {
            Zo::Object<void*> out;
            MaskOperation(a, a, MaskOperationOr, out.Slot(), nullptr);
        };
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, construct, mode), 2U);
    }
}

TEST(MaskOperation, AFailingResizeIsThrown)
{
    const Zo::Object<void*> a = MakeFilled<std::uint8_t>(20, 30, 1);
    TestSupport::FailingAllocator allocator;
    Zo::Object<void*> out;
    Zo::Test(qArray2_Construct(out.Slot(), xxq8u_type, 1, 1, allocator.Get()));
    allocator.FailAt(1);
    qArray2 slot = out.Get();
    ExpectThrow(STATUS_OUT_OF_MEMORY, kFunction, [&] { MaskOperation(a, a, MaskOperationOr, &slot, nullptr); });
    EXPECT_EQ(slot, out.Get());
}

} // namespace
