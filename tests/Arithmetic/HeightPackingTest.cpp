#include "Arithmetic/HeightPacking.h"

#include "Arithmetic/PlainArithmetic.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace Zvl;
using Heights = std::vector<std::int16_t>;
using WideHeights = std::vector<std::int32_t>;
using PlainArithmetic::kNull32;
using TestSupport::CellsIn;
using TestSupport::kMissing;

constexpr char kFunction[] = "Zvl::Arithmetics::ConvertSurface32sTo16s";

/** A surface of 32-bit heights with a z scale of 0.5 and a z offset of 100. */
Surface MakeWide(std::size_t rows, std::size_t columns, const WideHeights& heights)
{
    Surface surface;
    surface.scale = {0.1, 0.2, 0.5};
    surface.offset = {1.0, 2.0, 100.0};
    surface.layers.emplace_back();
    Zo::Test(qArray2_Construct(surface.layers[0].Slot(), xxq32s_type, rows, columns, nullptr));
    for (std::size_t i = 0; i < heights.size(); ++i)
    {
        Zo::Test(qArray2_SetItem(surface.layers[0], i / columns, i % columns, &heights[i]));
    }
    return surface;
}

/** The result for a row of heights, which is expected to have the given z mapping. */
Heights PackRow(const WideHeights& heights, double zScale, double zOffset)
{
    const Surface packed = ConvertSurface32sTo16s(MakeWide(1, heights.size(), heights));
    EXPECT_EQ(packed.scale.x, 0.1);
    EXPECT_EQ(packed.scale.y, 0.2);
    EXPECT_EQ(packed.scale.z, zScale);
    EXPECT_EQ(packed.offset.x, 1.0);
    EXPECT_EQ(packed.offset.y, 2.0);
    EXPECT_EQ(packed.offset.z, zOffset);
    EXPECT_EQ(packed.layers.size(), 1U);
    return CellsIn<std::int16_t>(packed.layers[0]);
}

TEST(HeightPacking, HeightsThatFitKeepTheirFrame)
{
    EXPECT_EQ(PackRow({-32768, -1, 0, 32767, kNull32}, 0.5, 100.0), (Heights{-32768, -1, 0, 32767, kMissing}));
}

TEST(HeightPacking, NullsAloneFit)
{
    EXPECT_EQ(PackRow({kNull32, kNull32, kNull32}, 0.5, 100.0), Heights(3, kMissing));
}

TEST(HeightPacking, HeightsTooHighOrTooLowAreShiftedToTheMiddle)
{
    EXPECT_EQ(PackRow({65534}, 0.5, 32867.0), Heights{0});
    EXPECT_EQ(PackRow({40000, 40003, kNull32}, 0.5, 20100.5), (Heights{-1, 2, kMissing}));
    EXPECT_EQ(PackRow({-40000, -40003, kNull32}, 0.5, -19900.5), (Heights{1, -2, kMissing}));
}

TEST(HeightPacking, AMissingHeightOfOneSourceIsShiftedAsAnOrdinaryOne)
{
    EXPECT_EQ(PackRow({-32768, -40000, kNull32}, 0.5, -18092.0), (Heights{3616, -3616, kMissing}));
}

TEST(HeightPacking, ARangeOf16BitsIsShiftedAndALargerOneRescaled)
{
    // The middle of 0 and 65535 is rounded down, so that the highest height is clamped.
    EXPECT_EQ(PackRow({0, 65535, 65534}, 0.5, 16483.5), (Heights{-32767, 32767, 32767}));
    EXPECT_EQ(PackRow({-65536, -1, kNull32}, 0.5, -16284.0), (Heights{-32768, 32767, kMissing}));
    // From 0 to 65536 counts of half a unit: 32768 units, of which the middle is 16384.
    EXPECT_EQ(PackRow({0, 65536, 32768, kNull32}, 32768.0 / 65535.0, 16484.0), (Heights{-32767, 32767, 0, kMissing}));
}

TEST(HeightPacking, SumsOfHeightsBeyond31BitsDoNotOverflow)
{
    EXPECT_EQ(PackRow({2000000000, 2000000010}, 0.5, 1000000102.5), (Heights{-5, 5}));
    EXPECT_EQ(PackRow({-2147483647, -2147483645}, 0.5, -1073741723.0), (Heights{-1, 1}));
    EXPECT_EQ(PackRow({1073741823, -1073741824, 0}, 2147483647.0 / 2.0 / 65535.0, 99.75), (Heights{32767, -32767, 0}));
}

TEST(HeightPacking, ADifferenceThatWrapsAroundIn32BitsCountsAsNarrow)
{
    // 2147483647 - -2147483647 is 2^32 - 2, or -2 in 32 bits: shifted about the middle, 0, and clamped.
    EXPECT_EQ(PackRow({2147483647, -2147483647, 0, kNull32, 7}, 0.5, 100.0), (Heights{32767, -32768, 0, kMissing, 7}));
    // 2^31, the least difference that wraps around; the middle of 2147450880 and -32768 is 1073709056.
    EXPECT_EQ(PackRow({2147450880, -32768, 1073709000}, 0.5, 536854628.0), (Heights{32767, -32768, -56}));
}

TEST(HeightPacking, HeightsWithoutACountInTheNewScaleAreMissing)
{
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const double zScale : {0.0, nan, std::numeric_limits<double>::infinity(), 1e-320})
    {
        WideHeights heights(40, 100000);
        heights.front() = -100000;
        heights.back() = -100000;
        Surface wide = MakeWide(1, heights.size(), heights);
        wide.scale.z = zScale;
        EXPECT_EQ(CellsIn<std::int16_t>(ConvertSurface32sTo16s(wide).layers[0]), Heights(40, kMissing));
    }
}

TEST(HeightPacking, WhereTheOffsetSwallowsTheShiftHeightsAreClamped)
{
    const auto packFar = [](std::int32_t first, std::int32_t last)
    {
        WideHeights heights(40, first);
        heights.back() = last;
        heights.front() = last;
        Surface far = MakeWide(1, heights.size(), heights);
        far.offset.z = 1e30;
        const Surface packed = ConvertSurface32sTo16s(far);
        EXPECT_EQ(packed.offset.z, 1e30);
        return CellsIn<std::int16_t>(packed.layers[0]);
    };
    EXPECT_EQ(packFar(40000, 40001), Heights(40, 32767));
    EXPECT_EQ(packFar(-100000, -40000), Heights(40, -32768));
    Heights expected(40, 10000);
    expected.front() = 32767;
    expected.back() = 32767;
    EXPECT_EQ(packFar(10000, 40000), expected);
}

TEST(HeightPacking, TheSecondLayerIsSharedAndOthersDropped)
{
    Surface wide = MakeWide(1, 1, {5});
    wide.layers.push_back(TestSupport::MakeFilled<std::uint8_t>(2, 2, 9));
    wide.layers.push_back(TestSupport::MakeFilled<std::uint8_t>(2, 2, 8));
    const Surface packed = ConvertSurface32sTo16s(wide);
    ASSERT_EQ(packed.layers.size(), 2U);
    EXPECT_EQ(packed.layers[1].Get(), wide.layers[1].Get());
    wide.layers[1].Reset();
    const Surface withNull = ConvertSurface32sTo16s(wide);
    ASSERT_EQ(withNull.layers.size(), 2U);
    EXPECT_EQ(withNull.layers[1].Get(), nullptr);
}

TEST(HeightPacking, RandomHeightsOfEveryRangeAgreeWithPlainLoops)
{
    std::mt19937 random(5);
    for (int i = 0; i < 3000; ++i)
    {
        const std::size_t rows = 1 + random() % 4;
        const std::size_t columns = 1 + random() % 70;
        const std::int64_t range = std::int64_t{1} << (random() % 33);
        const std::int64_t middle = static_cast<std::int32_t>(random()) / (1 << (random() % 31));
        WideHeights heights(rows * columns);
        for (std::int32_t& height : heights)
        {
            const std::int64_t value = middle + static_cast<std::int64_t>(random()) % range - range / 2;
            height = random() % 6 == 0
                         ? kNull32
                         : static_cast<std::int32_t>(std::clamp<std::int64_t>(value, -2147483647, 2147483647));
        }
        Surface wide = MakeWide(rows, columns, heights);
        wide.scale.z = random() % 2 == 0 ? 0.001 : 0.37;
        wide.offset.z = random() % 2 == 0 ? 0.0 : -77.7;
        double scale = wide.scale.z;
        double offset = wide.offset.z;
        const auto expected = PlainArithmetic::Pack({rows, columns, heights}, scale, offset);
        const Surface packed = ConvertSurface32sTo16s(wide);
        ASSERT_EQ(CellsIn<std::int16_t>(packed.layers[0]), expected.cells) << i;
        ASSERT_EQ(packed.scale.z, scale);
        ASSERT_EQ(packed.offset.z, offset);
    }
}

TEST(HeightPacking, AxesBeyond16BitsAreReachedInPart)
{
    const auto pack = [](std::size_t count)
    {
        // Only a cell that is not reached would call for a shift.
        WideHeights heights(count, 7);
        heights.back() = 100000;
        const Heights row = PackRow(heights, 0.5, 100.0);
        const Surface column = ConvertSurface32sTo16s(MakeWide(count, 1, heights));
        EXPECT_EQ(CellsIn<std::int16_t>(column.layers[0]), row);
        return row;
    };
    EXPECT_EQ(pack(32768), Heights(32768, kMissing));
    Heights expected(65546, kMissing);
    std::fill_n(expected.begin(), 10, std::int16_t{7});
    EXPECT_EQ(pack(65546), expected);
}

TEST(HeightPacking, OnlyHeightsOf32BitsAreTaken)
{
    const auto refused = [](const Surface& surface)
    { TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, kFunction, [&] { ConvertSurface32sTo16s(surface); }); };
    Surface surface;
    refused(surface);
    surface.layers.emplace_back();
    refused(surface);
    refused(TestSupport::MakeSurface(1, 1, {5}));
    Zo::Test(qArray1_Construct(surface.layers[0].Slot(), xxq32s_type, 4, nullptr));
    refused(surface);
}

TEST(HeightPacking, AnArrayWithoutCellsGivesAnotherOne)
{
    const Surface packed = ConvertSurface32sTo16s(MakeWide(0, 5, {}));
    EXPECT_EQ(qArray2_Length(packed.layers[0], 0), 0U);
    EXPECT_EQ(qArray2_Length(packed.layers[0], 1), 5U);
}

TEST(HeightPacking, ExhaustedMemoryIsThrown)
{
    const Surface wide = MakeWide(2, 2, {1, 2, 3, 4});
    EXPECT_GT(TestSupport::ExpectEachFailureThrown(kFunction, [&] { ConvertSurface32sTo16s(wide); }), 0U);
    EXPECT_GT(TestSupport::ExpectEachFailureThrown(
                  kFunction, [&] { ConvertSurface32sTo16s(wide); }, TestSupport::Failing::OnlyNth),
              0U);
}

} // namespace
