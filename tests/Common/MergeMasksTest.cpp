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
using Masks = std::vector<Zo::Object<void*>>;
using Rects = std::vector<Rect2d<int>>;

constexpr char kFunction[] = "Zvl::MergeMasks";

/** The union of @p masks; its box must be as expected. */
std::vector<std::uint8_t> Merged(const Masks& masks, const Rects& rects, const Rect2d<int>& expected)
{
    Zo::Object<void*> merged;
    Rect2d<int> rect;
    MergeMasks(masks, rects, merged.Slot(), &rect, nullptr);
    TestSupport::ExpectRect(rect, expected.x, expected.y, expected.width, expected.height);
    EXPECT_EQ(qArray2_Length(merged, 0), static_cast<std::size_t>(expected.height));
    EXPECT_EQ(qArray2_Length(merged, 1), static_cast<std::size_t>(expected.width));
    return CellsIn<std::uint8_t>(merged);
}

TEST(MergeMasks, LaysEachMaskIntoPlace)
{
    const Masks masks = {MakeArray<std::uint8_t>(2, 2, {1, 1, 1, 0}), MakeArray<std::uint8_t>(2, 2, {0, 1, 1, 1})};
    EXPECT_EQ(Merged(masks, {{4, 7, 2, 2}, {5, 6, 2, 2}}, {4, 6, 3, 3}),
              (std::vector<std::uint8_t>{0, 0, 1, 1, 1, 1, 1, 0, 0}));
}

TEST(MergeMasks, LeavesGapsOut)
{
    const Masks masks = {MakeFilled<std::uint8_t>(2, 2, 1), MakeFilled<std::uint8_t>(2, 2, 1)};
    const std::vector<std::uint8_t> cells = Merged(masks, {{0, 0, 2, 2}, {5, 5, 2, 2}}, {0, 0, 7, 7});
    for (std::size_t i = 0; i < cells.size(); ++i)
    {
        const std::size_t row = i / 7;
        const std::size_t column = i % 7;
        EXPECT_EQ(cells[i], (row < 2 && column < 2) || (row >= 5 && column >= 5) ? 1 : 0);
    }
}

TEST(MergeMasks, CellsBecomeZeroOrOneAlsoOfASingleMask)
{
    const Masks masks = {MakeArray<std::uint8_t>(1, 3, {200, 0, 1})};
    EXPECT_EQ(Merged(masks, {{1, 2, 3, 1}}, {1, 2, 3, 1}), (std::vector<std::uint8_t>{1, 0, 1}));
    EXPECT_EQ(CellsIn<std::uint8_t>(masks[0]), (std::vector<std::uint8_t>{200, 0, 1}));
}

TEST(MergeMasks, EmptyMasksAddNothing)
{
    const Masks masks = {MakeFilled<std::uint8_t>(1, 1, 1), MakeFilled<std::uint8_t>(0, 0, 1),
                         MakeFilled<std::uint8_t>(4, 0, 1), Zo::Object<void*>()};
    EXPECT_EQ(Merged(masks, {{3, 3, 1, 1}, {9, 9, 0, 0}, {-9, 0, 0, 4}, {50, 50, 0, 0}}, {3, 3, 1, 1}),
              std::vector<std::uint8_t>{1});
    EXPECT_TRUE(Merged({Zo::Object<void*>()}, {{5, 5, 0, 0}}, {0, 0, 0, 0}).empty());
}

TEST(MergeMasks, WithoutMasksNothingIsWritten)
{
    const Zo::Object<void*> kept = MakeFilled<std::uint8_t>(1, 1, 9);
    qArray2 merged = kept.Get();
    Rect2d<int> rect = {1, 2, 3, 4};
    MergeMasks({}, {}, &merged, &rect, nullptr);
    EXPECT_EQ(merged, kept.Get());
    EXPECT_EQ(rect.x, 1);
    EXPECT_EQ(rect.height, 4);
}

TEST(MergeMasks, MaskAndBoxMayBeAskedForAlone)
{
    const Masks masks = {MakeFilled<std::uint8_t>(1, 2, 1)};
    Rect2d<int> rect;
    MergeMasks(masks, {{3, 4, 2, 1}}, nullptr, &rect, nullptr);
    EXPECT_EQ(rect.x, 3);
    EXPECT_EQ(rect.width, 2);
    Zo::Object<void*> merged;
    MergeMasks(masks, {{3, 4, 2, 1}}, merged.Slot(), nullptr, nullptr);
    EXPECT_EQ(CellsIn<std::uint8_t>(merged), (std::vector<std::uint8_t>{1, 1}));
}

TEST(MergeMasks, UnfitInputIsRefusedAndNothingIsWritten)
{
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(2, 3, 1);
    const Zo::Object<void*> kept = MakeFilled<std::uint8_t>(1, 1, 9);
    const std::vector<std::pair<Masks, Rects>> unfit = {
        {{mask}, {}},
        {{mask}, {{0, 0, 3, 2}, {0, 0, 3, 2}}},
        {{mask}, {{0, 0, 2, 3}}},
        {{mask, mask}, {{0, 0, 3, 2}, {0, 0, 3, 1}}},
        {{Zo::Object<void*>()}, {{0, 0, 3, 2}}},
        {{MakeFilled<std::int16_t>(2, 3, 1)}, {{0, 0, 3, 2}}},
        {{mask, mask}, {{-2147483647, 0, 3, 2}, {2147483640, 0, 3, 2}}},
    };
    for (const auto& input : unfit)
    {
        qArray2 merged = kept.Get();
        Rect2d<int> rect = {1, 2, 3, 4};
        ExpectThrow(STATUS_BAD_PARAMETER, kFunction,
                    [&] { MergeMasks(input.first, input.second, &merged, &rect, nullptr); });
        EXPECT_EQ(merged, kept.Get());
        EXPECT_EQ(rect.y, 2);
    }
}

TEST(MergeMasks, TheSlotMayHoldOneOfTheMasks)
{
    Masks masks = {MakeFilled<std::uint8_t>(1, 1, 1), MakeFilled<std::uint8_t>(1, 1, 1)};
    Zo::Object<void*> shared = masks[0];
    qArray2 merged = shared.Detach();
    MergeMasks(masks, {{0, 0, 1, 1}, {2, 0, 1, 1}}, &merged, nullptr, nullptr);
    const Zo::Object<void*> made = merged;
    EXPECT_EQ(CellsIn<std::uint8_t>(made), (std::vector<std::uint8_t>{1, 0, 1}));
    EXPECT_EQ(CellsIn<std::uint8_t>(masks[0]), std::vector<std::uint8_t>{1});
    EXPECT_EQ(qObject_ShareCount(masks[0]), 1);
}

TEST(MergeMasks, EveryShortageOfMemoryIsThrown)
{
    const Masks masks = {MakeFilled<std::uint8_t>(3, 2, 1)};
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        const auto merge = [&]
        {
            Zo::Object<void*> merged;
            MergeMasks(masks, {{0, 0, 2, 3}}, merged.Slot(), nullptr, nullptr);
        };
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, merge, mode), 2U);
    }
}

TEST(MergeMasks, AfterAShortageTheBoxIsWrittenAndTheSlotNull)
{
    TestSupport::FailingAllocator allocator;
    allocator.FailAt(1);
    qArray2 merged = MakeFilled<std::uint8_t>(1, 1, 9).Detach();
    Rect2d<int> rect;
    ExpectThrow(STATUS_OUT_OF_MEMORY, kFunction,
                [&] {
                    MergeMasks({MakeFilled<std::uint8_t>(3, 2, 1)}, {{4, 5, 2, 3}}, &merged, &rect, allocator.Get());
                });
    EXPECT_EQ(merged, nullptr);
    EXPECT_EQ(rect.x, 4);
}

class MergedMasks : public testing::TestWithParam<std::size_t>
{
};

TEST_P(MergedMasks, AgreeWithThePlainLoop)
{
    const TestSupport::WorkerCount workers(GetParam());
    std::mt19937 random(23);
    for (int turn = 0; turn < 40; ++turn)
    {
        const unsigned largest = turn % 10 == 0 ? 400 : 40;
        std::vector<std::uint8_t> expected(std::size_t{900} * 900, 0);
        Masks masks;
        Rects rects;
        std::size_t selected = 0;
        for (unsigned i = 0; i < 1 + random() % 5; ++i)
        {
            const Rect2d<int> rect = {static_cast<int>(random() % 500), static_cast<int>(random() % 500),
                                      static_cast<int>(random() % largest), static_cast<int>(random() % largest)};
            rects.push_back(rect);
            masks.push_back(TestSupport::MakeRandomMask(static_cast<std::size_t>(rect.height),
                                                        static_cast<std::size_t>(rect.width), 0.4, random));
            const std::vector<std::uint8_t> cells = CellsIn<std::uint8_t>(masks.back());
            for (int cell = 0; cell < rect.width * rect.height; ++cell)
            {
                const int place = (rect.y + cell / rect.width) * 900 + rect.x + cell % rect.width;
                std::uint8_t& target = expected[static_cast<std::size_t>(place)];
                const bool isNew = cells[static_cast<std::size_t>(cell)] != 0 && target == 0;
                selected += isNew ? 1 : 0;
                target = isNew ? 1 : target;
            }
        }
        Zo::Object<void*> merged;
        Rect2d<int> rect;
        MergeMasks(masks, rects, merged.Slot(), &rect, nullptr);
        const std::vector<std::uint8_t> cells = CellsIn<std::uint8_t>(merged);
        std::size_t found = 0;
        for (int cell = 0; cell < rect.width * rect.height; ++cell)
        {
            const int place = (rect.y + cell / rect.width) * 900 + rect.x + cell % rect.width;
            const std::uint8_t value = cells[static_cast<std::size_t>(cell)];
            ASSERT_EQ(value, expected[static_cast<std::size_t>(place)]) << "turn " << turn;
            found += value;
        }
        EXPECT_EQ(found, selected) << "turn " << turn;
    }
}

INSTANTIATE_TEST_SUITE_P(Workers, MergedMasks, testing::Values(1, 2, 3, 8, 17));

} // namespace
