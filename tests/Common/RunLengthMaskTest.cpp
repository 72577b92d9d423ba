#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

#include <algorithm>

namespace
{

using namespace Zvl;
using TestSupport::CellsIn;
using TestSupport::ExpectRect;
using TestSupport::ExpectThrow;

constexpr char kFunction[] = "Zvl::RLEToMask";
constexpr std::int32_t kLowest = std::numeric_limits<std::int32_t>::min();
constexpr std::int32_t kHighest = std::numeric_limits<std::int32_t>::max();

/** A list of runs, each as row, column, length. */
Zo::Object<void*> Runs(const std::vector<qPoint3d32s>& runs)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d32s_type, runs.size(), nullptr));
    Zo::Test(qArrayList_Import(list, runs.data(), runs.size()));
    return list;
}

TEST(RunLengthMask, TheBoxIsOneColumnWiderThanTheRuns)
{
    Zo::Object<void*> mask;
    Rect2d<int> rect;
    RLEToMask(Runs({{5, 3, 4}}), mask.Slot(), &rect, nullptr);
    ExpectRect(rect, 3, 5, 5, 1);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (std::vector<std::uint8_t>{1, 1, 1, 1, 0}));
}

TEST(RunLengthMask, RunsMayOverlapAndComeInAnyOrder)
{
    Zo::Object<void*> mask;
    Rect2d<int> rect;
    RLEToMask(Runs({{2, 1, 2}, {0, -1, 1}, {2, 0, 2}, {1, 0, 0}}), mask.Slot(), &rect, nullptr);
    ExpectRect(rect, -1, 0, 5, 3);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (std::vector<std::uint8_t>{1, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 1, 1, 1, 0}));
}

TEST(RunLengthMask, BoxAndMaskMayBeAskedForAlone)
{
    Rect2d<int> rect;
    RLEToMask(Runs({{5, 3, 4}}), nullptr, &rect, nullptr);
    ExpectRect(rect, 3, 5, 5, 1);
    Zo::Object<void*> mask;
    RLEToMask(Runs({{5, 3, 4}}), mask.Slot(), nullptr, nullptr);
    EXPECT_EQ(qArray2_Length(mask, 1), 5U);
}

TEST(RunLengthMask, WithoutRunsNothingHappens)
{
    Rect2d<int> rect = {1, 2, 3, 4};
    const Zo::Object<void*> kept = TestSupport::MakeFilled<std::uint8_t>(1, 1, 9);
    qArray2 mask = kept.Get();
    RLEToMask(nullptr, &mask, &rect, nullptr);
    RLEToMask(Runs({}), &mask, &rect, nullptr);
    ExpectRect(rect, 1, 2, 3, 4);
    EXPECT_EQ(mask, kept.Get());
    // Nobody who would receive anything: the runs are not even looked at.
    EXPECT_NO_THROW(RLEToMask(Runs({{0, 0, -1}}), nullptr, nullptr, nullptr));
}

TEST(RunLengthMask, AMaskThatIsThereIsReplaced)
{
    const Zo::Object<void*> kept = TestSupport::MakeFilled<std::uint8_t>(1, 5, 9);
    Zo::Object<void*> shared = kept;
    qArray2 mask = shared.Detach();
    RLEToMask(Runs({{5, 3, 4}}), &mask, nullptr, nullptr);
    const Zo::Object<void*> made = mask;
    EXPECT_NE(made.Get(), kept.Get());
    EXPECT_EQ(qObject_ShareCount(kept), 1);
    EXPECT_EQ(CellsIn<std::uint8_t>(kept), std::vector<std::uint8_t>(5, 9));
}

TEST(RunLengthMask, TheSlotMayHoldTheRuns)
{
    qObject slot = Runs({{5, 3, 4}}).Detach();
    RLEToMask(slot, &slot, nullptr, nullptr);
    const Zo::Object<void*> made = slot;
    EXPECT_EQ(CellsIn<std::uint8_t>(made), (std::vector<std::uint8_t>{1, 1, 1, 1, 0}));
}

TEST(RunLengthMask, RunsThatCannotBeAreRefusedAndNothingIsWritten)
{
    const Zo::Object<void*> kept = TestSupport::MakeFilled<std::uint8_t>(1, 1, 9);
    for (const std::vector<qPoint3d32s>& runs : {std::vector<qPoint3d32s>{{0, 0, -1}},
                                                 {{0, 0, 4}, {1, 2, kLowest}},
                                                 {{0, kLowest, 1}, {0, kHighest, kHighest}},
                                                 {{kLowest, 0, 1}, {kHighest, 0, 1}},
                                                 {{0, 0, kHighest}},
                                                 {{kLowest, 0, 1}, {-1, 0, 1}}})
    {
        Rect2d<int> rect = {1, 2, 3, 4};
        qArray2 mask = kept.Get();
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { RLEToMask(Runs(runs), &mask, &rect, nullptr); });
        ExpectRect(rect, 1, 2, 3, 4);
        EXPECT_EQ(mask, kept.Get());
    }
}

TEST(RunLengthMask, TheLargestBoxIsToldButHasNoMask)
{
    // 2^31 - 1 columns and rows: within 32 bits, and beyond any memory. The allocator says so without being asked in earnest.
    TestSupport::FailingAllocator allocator;
    allocator.FailAt(1);
    const Zo::Object<void*> runs = Runs({{0, 0, kHighest - 1}, {kHighest - 1, 0, 1}});
    Rect2d<int> rect;
    qArray2 mask = TestSupport::MakeFilled<std::uint8_t>(1, 1, 9).Detach();
    ExpectThrow(STATUS_OUT_OF_MEMORY, kFunction, [&] { RLEToMask(runs, &mask, &rect, allocator.Get()); });
    ExpectRect(rect, 0, 0, kHighest, kHighest);
    EXPECT_EQ(mask, nullptr);
}

TEST(RunLengthMask, AnEmptyListOfWhateverChangesNothing)
{
    Zo::Object<void*> pairs;
    Zo::Test(qArrayList_Construct(pairs.Slot(), xxqPoint32s_type, 1, nullptr));
    Rect2d<int> rect = {1, 2, 3, 4};
    RLEToMask(pairs, nullptr, &rect, nullptr);
    EXPECT_TRUE(rect.x == 1 && rect.y == 2 && rect.width == 3 && rect.height == 4);
}

TEST(RunLengthMask, OtherListsAreRefused)
{
    Zo::Object<void*> pairs;
    Zo::Test(qArrayList_Construct(pairs.Slot(), xxqPoint32s_type, 1, nullptr));
    const qPoint32s pair = {1, 2};
    Zo::Test(qArrayList_Add(pairs, &pair));
    const Zo::Object<void*> array = TestSupport::MakeFilled<std::uint8_t>(1, 12, 0);
    Rect2d<int> rect;
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { RLEToMask(pairs, nullptr, &rect, nullptr); });
    ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { RLEToMask(array, nullptr, &rect, nullptr); });
}

TEST(RunLengthMask, AgreesWithThePlainLoop)
{
    std::mt19937 random(11);
    for (int turn = 0; turn < 200; ++turn)
    {
        std::vector<qPoint3d32s> runs(1 + random() % 30);
        for (qPoint3d32s& run : runs)
        {
            run = {static_cast<int>(random() % 40) - 20, static_cast<int>(random() % 60) - 30,
                   static_cast<int>(random() % 25)};
        }
        Zo::Object<void*> mask;
        Rect2d<int> rect;
        RLEToMask(Runs(runs), mask.Slot(), &rect, nullptr);
        const std::vector<std::uint8_t> cells = CellsIn<std::uint8_t>(mask);
        ASSERT_EQ(cells.size(), static_cast<std::size_t>(rect.width * rect.height));
        for (int i = 0; i < rect.width * rect.height; ++i)
        {
            const int row = rect.y + i / rect.width;
            const int column = rect.x + i % rect.width;
            const bool covered = std::any_of(runs.begin(), runs.end(),
                                             [&](const qPoint3d32s& run)
                                             { return run.x == row && column >= run.y && column < run.y + run.z; });
            ASSERT_EQ(cells[static_cast<std::size_t>(i)], covered ? 1 : 0) << "turn " << turn;
        }
    }
}

TEST(RunLengthMask, EveryShortageOfMemoryIsThrown)
{
    const Zo::Object<void*> runs = Runs({{5, 3, 4}});
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        const auto convert = [&]
        {
            Zo::Object<void*> mask;
            RLEToMask(runs, mask.Slot(), nullptr, nullptr);
        };
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, convert, mode), 2U);
    }
}

} // namespace
