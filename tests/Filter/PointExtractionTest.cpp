#include <ZdkVisionLib/Filter/Filter.h>

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

#include <cstring>

namespace
{

using namespace Zvl;
using TestSupport::kMissing;
using TestSupport::MakeArray;
using TestSupport::MakeFilled;

/** The items of a list of `T`. */
template <typename T>
std::vector<T> ItemsOf(void* list)
{
    EXPECT_EQ(qArrayList_Type(list), GetqType<T>());
    const T* items = static_cast<const T*>(qArrayList_Data(list));
    return std::vector<T>(items, items + qArrayList_Count(list));
}

template <typename T>
std::vector<T> Extract(const Surface& surface, const Rect2d<int>& rect, const Zo::Object<void*>& mask)
{
    Zo::Object<void*> list;
    GetPointsFromROI<T>(surface, rect, mask, list.Slot());
    EXPECT_NE(list.Get(), nullptr);
    return list.Get() == nullptr ? std::vector<T>() : ItemsOf<T>(list);
}

Surface SmallSurface()
{
    Surface surface = TestSupport::MakeSurface(2, 3, {1, 2, kMissing, 4, -5, 6});
    surface.layers.push_back(MakeArray<std::uint8_t>(2, 3, {11, 12, 13, 14, 15, 16}));
    surface.scale = {0.5, 2.0, 0.25};
    surface.offset = {10.0, 20.0, 30.0};
    return surface;
}

TEST(GetPointsFromROI, GivesTheItemOfEachType)
{
    const Surface surface = SmallSurface();
    const Rect2d<int> rect = {1, 0, 2, 2};
    const Zo::Object<void*> mask = MakeArray<std::uint8_t>(2, 2, {1, 0, 7, 1});
    EXPECT_EQ(Extract<unsigned char>(surface, rect, mask), (std::vector<unsigned char>{12, 15, 16}));
    EXPECT_EQ(Extract<short>(surface, rect, mask), (std::vector<short>{2, -5, 6}));
    EXPECT_EQ(Extract<double>(surface, rect, mask), (std::vector<double>{30.5, 28.75, 31.5}));
    const auto cells = Extract<qPoint3d32s>(surface, rect, mask);
    ASSERT_EQ(cells.size(), 3U);
    EXPECT_TRUE(cells[0].x == 1 && cells[0].y == 0 && cells[0].z == 2);
    EXPECT_TRUE(cells[2].x == 2 && cells[2].y == 1 && cells[2].z == 6);
    const auto points = Extract<qPoint3d64f>(surface, rect, mask);
    ASSERT_EQ(points.size(), 3U);
    EXPECT_TRUE(points[0].x == 10.5 && points[0].y == 20.0 && points[0].z == 30.5);
    EXPECT_TRUE(points[2].x == 11.0 && points[2].y == 22.0 && points[2].z == 31.5);
}

TEST(GetPointsFromROI, AMissingHeightThatIsSelectedGivesAnItem)
{
    EXPECT_EQ(Extract<short>(SmallSurface(), {2, 0, 1, 1}, MakeFilled<std::uint8_t>(1, 1, 1)),
              (std::vector<short>{kMissing}));
}

TEST(GetPointsFromROI, AppendsToTheListThatIsThere)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 1, nullptr));
    const short first = 99;
    Zo::Test(qArrayList_Add(list, &first));
    void* raw = list.Get();
    GetPointsFromROI<short>(SmallSurface(), {0, 0, 2, 2}, MakeFilled<std::uint8_t>(2, 2, 1), &raw);
    EXPECT_EQ(raw, list.Get());
    EXPECT_EQ(ItemsOf<short>(list), (std::vector<short>{99, 1, 2, 4, -5}));
}

TEST(GetPointsFromROI, ASelectionOfNoCellStillMakesTheList)
{
    EXPECT_TRUE(Extract<qPoint3d64f>(SmallSurface(), {0, 0, 2, 2}, MakeFilled<std::uint8_t>(2, 2, 0)).empty());
}

TEST(GetPointsFromROI, UnfitInputLeavesTheListUntouched)
{
    const Surface surface = SmallSurface();
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(2, 2, 1);
    void* list = nullptr;
    GetPointsFromROI<short>(surface, {0, 0, 2, 2}, Zo::Object<void*>(), &list);
    GetPointsFromROI<short>(surface, {0, 0, 2, 2}, MakeFilled<std::int16_t>(2, 2, 1), &list);
    GetPointsFromROI<short>(surface, {0, 0, 1, 2}, mask, &list);
    GetPointsFromROI<short>(surface, {0, 0, 0, 2}, MakeFilled<std::uint8_t>(2, 0, 1), &list);
    GetPointsFromROI<short>(surface, {0, 0, -2, -2}, mask, &list);
    GetPointsFromROI<short>(surface, {2, 0, 2, 2}, mask, &list);
    GetPointsFromROI<short>(surface, {0, 1, 2, 2}, mask, &list);
    GetPointsFromROI<short>(surface, {-1, 0, 2, 2}, mask, &list);
    GetPointsFromROI<short>(surface, {2147483647, 2147483647, 2, 2}, mask, &list);
    GetPointsFromROI<short>(Surface(), {0, 0, 2, 2}, mask, &list);
    Surface odd = SmallSurface();
    odd.layers[0].Reset();
    GetPointsFromROI<qPoint3d64f>(odd, {0, 0, 2, 2}, mask, &list);
    odd.layers[0] = MakeFilled<std::uint8_t>(2, 3, 1);
    GetPointsFromROI<double>(odd, {0, 0, 2, 2}, mask, &list);
    odd.layers.resize(1);
    GetPointsFromROI<unsigned char>(odd, {0, 0, 2, 2}, mask, &list);
    odd.layers.emplace_back();
    GetPointsFromROI<unsigned char>(odd, {0, 0, 2, 2}, mask, &list);
    EXPECT_EQ(list, nullptr);
    EXPECT_NO_THROW(GetPointsFromROI<short>(surface, {0, 0, 2, 2}, mask, nullptr));
}

TEST(GetPointsFromROI, AListOfAnotherTypeIsLeftAlone)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq64f_type, 1, nullptr));
    void* raw = list.Get();
    GetPointsFromROI<short>(SmallSurface(), {0, 0, 2, 2}, MakeFilled<std::uint8_t>(2, 2, 1), &raw);
    EXPECT_EQ(raw, list.Get());
    EXPECT_EQ(qArrayList_Count(list), 0U);
}

TEST(GetPointsFromROI, ADeadListEndsLoudly)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 1, nullptr));
    void* dead = list.Get();
    list.Reset();
    EXPECT_THROW(GetPointsFromROI<short>(SmallSurface(), {0, 0, 2, 2}, MakeFilled<std::uint8_t>(2, 2, 1), &dead),
                 Zo::Exception);
}

/** Window, mask and surface of a random turn. */
struct Selection
{
    Surface surface;
    Rect2d<int> rect;
    Zo::Object<void*> mask;
};

Selection RandomSelection(std::mt19937& random, std::size_t least)
{
    const std::size_t rows = least + random() % 40;
    const std::size_t columns = least + random() % 40;
    Selection selection;
    selection.surface = TestSupport::MakeRandomSurface(rows, columns, 0.1, random);
    selection.surface.scale = {0.37, 0.53, 0.011};
    selection.surface.offset = {-3.7, 12.9, 0.77};
    selection.rect.x = static_cast<int>(random() % columns);
    selection.rect.y = static_cast<int>(random() % rows);
    selection.rect.width = 1 + static_cast<int>(random() % (columns - static_cast<std::size_t>(selection.rect.x)));
    selection.rect.height = 1 + static_cast<int>(random() % (rows - static_cast<std::size_t>(selection.rect.y)));
    const double shares[] = {0.0, 0.05, 0.5, 0.97, 1.0};
    selection.mask =
        TestSupport::MakeRandomMask(static_cast<std::size_t>(selection.rect.height),
                                    static_cast<std::size_t>(selection.rect.width), shares[random() % 5], random);
    return selection;
}

std::vector<qPoint3d64f> PlainPoints(const Selection& selection)
{
    const auto& [surface, rect, mask] = selection;
    std::vector<qPoint3d64f> points;
    for (int row = 0; row < rect.height; ++row)
    {
        for (int column = 0; column < rect.width; ++column)
        {
            const auto maskRow = static_cast<std::size_t>(row);
            const auto maskColumn = static_cast<std::size_t>(column);
            if (*static_cast<std::uint8_t*>(qArray2_At(mask, maskRow, maskColumn)) == 0)
            {
                continue;
            }
            const int x = rect.x + column;
            const int y = rect.y + row;
            const int v = *static_cast<std::int16_t*>(
                qArray2_At(surface.layers[0], static_cast<std::size_t>(y), static_cast<std::size_t>(x)));
            points.push_back({x * surface.scale.x + surface.offset.x, y * surface.scale.y + surface.offset.y,
                              v * surface.scale.z + surface.offset.z});
        }
    }
    return points;
}

class ExtractedPoints : public testing::TestWithParam<std::size_t>
{
};

TEST_P(ExtractedPoints, AgreeWithThePlainLoopInItsOrder)
{
    const TestSupport::WorkerCount workers(GetParam());
    std::mt19937 random(31);
    for (int turn = 0; turn < 300; ++turn)
    {
        // Layers from 64 KiB on are shared out among the workers.
        const Selection selection = RandomSelection(random, turn % 50 == 0 ? 200 : 1);
        const auto expected = PlainPoints(selection);
        const auto points = Extract<qPoint3d64f>(selection.surface, selection.rect, selection.mask);
        ASSERT_EQ(points.size(), expected.size());
        if (!points.empty())
        {
            ASSERT_EQ(std::memcmp(points.data(), expected.data(), points.size() * sizeof(points[0])), 0)
                << "turn " << turn;
        }
    }
}

INSTANTIATE_TEST_SUITE_P(Workers, ExtractedPoints, testing::Values(1, 2, 3, 8, 17));

TEST(GetPointsFromROI, EveryShortageOfMemoryIsThrown)
{
    const Surface surface = SmallSurface();
    const Zo::Object<void*> mask = MakeFilled<std::uint8_t>(2, 2, 1);
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        EXPECT_GE(TestSupport::ExpectEachFailureThrown(
                      "Zvl::CheckAndReserveqArrayList",
                      [&]
                      {
                          void* list = nullptr;
                          try
                          {
                              GetPointsFromROI<double>(surface, {0, 0, 2, 2}, mask, &list);
                          }
                          catch (const Zo::Exception&)
                          {
                              EXPECT_EQ(list, nullptr);
                              throw;
                          }
                          xqObject_DestroyImpl(list, 1);
                      },
                      mode),
                  2U);
    }
}

TEST(GetPointsFromROI, AListThatCannotGrowKeepsItsItems)
{
    TestSupport::FailingAllocator allocator;
    {
        Zo::Object<void*> list;
        Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 1, allocator.Get()));
        const short item = 7;
        Zo::Test(qArrayList_Add(list, &item));
        allocator.FailAt(1);
        void* raw = list.Get();
        std::mt19937 random(5);
        const Surface surface = TestSupport::MakeRandomSurface(50, 50, 0.0, random);
        TestSupport::ExpectThrow(
            STATUS_OUT_OF_MEMORY, "Zvl::CheckAndReserveqArrayList",
            [&] {
                GetPointsFromROI<short>(surface, {0, 0, 50, 50}, MakeFilled<std::uint8_t>(50, 50, 1), &raw);
            });
        EXPECT_EQ(ItemsOf<short>(list), (std::vector<short>{7}));
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
