#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Rounding.h"
#include "support/Surfaces.h"

namespace
{

using namespace Zvl;
using Mask = std::vector<std::uint8_t>;
using TestSupport::CellsIn;
using TestSupport::kMissing;
using TestSupport::kNull;

/** The result over the heights of one row, starting from a mask of ones. */
Mask Threshold(const std::vector<std::int16_t>& heights, double minimum, double maximum, double scale = 1.0,
               double offset = 0.0)
{
    Surface surface = TestSupport::MakeSurface(1, heights.size(), heights);
    surface.scale.z = scale;
    surface.offset.z = offset;
    Zo::Object<void*> mask = TestSupport::MakeFilled<std::uint8_t>(1, heights.size(), 1);
    ThresholdHeight(surface, minimum, maximum, {0, 0, static_cast<int>(heights.size()), 1}, mask);
    return CellsIn<std::uint8_t>(mask);
}

TEST(ThresholdHeight, KeepsHeightsWithinInclusiveLimits)
{
    EXPECT_EQ(Threshold({9, 10, 15, 20, 21, kMissing}, 10.0, 20.0), (Mask{0, 1, 1, 1, 0, 0}));
}

TEST(ThresholdHeight, LimitsAreRoundedHalfAwayFromZero)
{
    // 2.5 counts become 3, -2.5 become -3.
    EXPECT_EQ(Threshold({2, 3, 4}, 2.5, 3.4), (Mask{0, 1, 0}));
    EXPECT_EQ(Threshold({-4, -3, -2}, -2.5, 0.0), (Mask{0, 1, 1}));
    // World limits 10.0 and 11.0 at a scale of 0.25 and an offset of 9.0 are the counts 4 and 8.
    EXPECT_EQ(Threshold({3, 4, 8, 9}, 10.0, 11.0, 0.25, 9.0), (Mask{0, 1, 1, 0}));
}

TEST(ThresholdHeight, OneNullLimitSwitchesOffBoth)
{
    EXPECT_EQ(Threshold({-30000, kMissing, 30000}, kNull, 5.0), (Mask{1, 0, 1}));
    EXPECT_EQ(Threshold({-30000, kMissing, 30000}, 5.0, kNull), (Mask{1, 0, 1}));
    EXPECT_EQ(Threshold({-30000, kMissing, 30000}, kNull, kNull), (Mask{1, 0, 1}));
}

TEST(ThresholdHeight, LimitsBeyondTheCountsAreTheNearestCounts)
{
    const double infinity = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Threshold({-32767, 0, 32767, kMissing}, -1e300, 1e300), (Mask{1, 1, 1, 0}));
    EXPECT_EQ(Threshold({-32767, 0, 32767, kMissing}, -infinity, infinity), (Mask{1, 1, 1, 0}));
    EXPECT_EQ(Threshold({-32767, 0, 32767}, 1e300, 1e300), (Mask{0, 0, 0}));
    EXPECT_EQ(Threshold({-32767, 0, 32767}, 40000.0, 50000.0), (Mask{0, 0, 0}));
    EXPECT_EQ(Threshold({-32767, 0, 32767, kMissing}, -40000.0, -32767.0), (Mask{1, 0, 0, 0}));
    // The missing height is never kept, even by a limit that reaches it.
    EXPECT_EQ(Threshold({kMissing, -32767}, -32768.0, -32768.0), (Mask{0, 0}));
    EXPECT_EQ(Threshold({5, 6}, 6.0, 5.0), (Mask{0, 0}));
}

TEST(ThresholdHeight, ALimitThatIsNotANumberKeepsNothing)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(Threshold({-5, 0, 5}, notANumber, 10.0), (Mask{0, 0, 0}));
    EXPECT_EQ(Threshold({-5, 0, 5}, -10.0, notANumber), (Mask{0, 0, 0}));
    EXPECT_EQ(Threshold({-5, 0, 5}, 0.0, 10.0, 0.0), (Mask{0, 0, 0}));   // 0 / 0
    EXPECT_EQ(Threshold({-5, 0, 5}, -10.0, 10.0, 0.0), (Mask{1, 1, 1})); // minus and plus infinity
}

TEST(ThresholdHeight, NeverSetsACellAndKeepsItsValue)
{
    Surface surface = TestSupport::MakeSurface(1, 4, {5, 5, 50, 5});
    Zo::Object<void*> mask = TestSupport::MakeArray<std::uint8_t>(1, 4, {0, 1, 1, 200});
    ThresholdHeight(surface, 0.0, 10.0, {0, 0, 4, 1}, mask);
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), (Mask{0, 1, 0, 200}));
}

TEST(ThresholdHeight, UnfitInputLeavesTheMaskAsItWas)
{
    std::mt19937 random(7);
    const Surface surface = TestSupport::MakeRandomSurface(4, 5, 1.0, random);
    const Zo::Object<void*> mask = TestSupport::MakeFilled<std::uint8_t>(2, 3, 1);
    const Mask untouched(6, 1);
    for (const Rect2d<int>& rect :
         {Rect2d<int>{3, 0, 3, 2}, Rect2d<int>{0, 3, 3, 2}, Rect2d<int>{-1, 0, 3, 2}, Rect2d<int>{0, -1, 3, 2},
          Rect2d<int>{0, 0, 2, 3}, Rect2d<int>{0, 0, -3, -2}, Rect2d<int>{2147483647, 2147483647, 3, 2}})
    {
        EXPECT_NO_THROW(ThresholdHeight(surface, 0.0, 1.0, rect, mask));
        EXPECT_EQ(CellsIn<std::uint8_t>(mask), untouched);
    }
    const Rect2d<int> fit = {0, 0, 3, 2};
    EXPECT_NO_THROW(ThresholdHeight(Surface(), 0.0, 1.0, fit, mask));
    Surface odd;
    odd.layers.emplace_back();
    EXPECT_NO_THROW(ThresholdHeight(odd, 0.0, 1.0, fit, mask));
    odd.layers[0] = TestSupport::MakeFilled<std::uint8_t>(4, 5, 0);
    EXPECT_NO_THROW(ThresholdHeight(odd, 0.0, 1.0, fit, mask));
    EXPECT_EQ(CellsIn<std::uint8_t>(mask), untouched);

    EXPECT_NO_THROW(ThresholdHeight(surface, 0.0, 1.0, fit, Zo::Object<void*>()));
    const Zo::Object<void*> wide = TestSupport::MakeFilled<std::int16_t>(2, 3, 1);
    EXPECT_NO_THROW(ThresholdHeight(surface, 0.0, 1.0, fit, wide));
    EXPECT_EQ(CellsIn<std::int16_t>(wide), std::vector<std::int16_t>(6, 1));
}

/** The defining loop. */
void PlainThreshold(const Surface& surface, double minimum, double maximum, const Rect2d<int>& rect, Mask& mask)
{
    const bool noLimits = minimum == kNull || maximum == kNull;
    const int minimumRaw = TruncateToInt(RoundHalfAway((minimum - surface.offset.z) / surface.scale.z));
    const int maximumRaw = TruncateToInt(RoundHalfAway((maximum - surface.offset.z) / surface.scale.z));
    const std::vector<std::int16_t> heights = CellsIn<std::int16_t>(surface.layers[0]);
    const std::size_t columns = qArray2_Length(surface.layers[0], 1);
    for (int row = 0; row < rect.height; ++row)
    {
        for (int column = 0; column < rect.width; ++column)
        {
            const int height =
                heights[static_cast<std::size_t>(rect.y + row) * columns + static_cast<std::size_t>(rect.x + column)];
            std::uint8_t& cell = mask[static_cast<std::size_t>(row * rect.width + column)];
            const bool stays = height != kMissing && (noLimits || (minimumRaw <= height && height <= maximumRaw));
            if (cell != 0 && !stays)
            {
                cell = 0;
            }
        }
    }
}

TEST(ThresholdHeight, AgreesWithTheDefiningLoop)
{
    std::mt19937 random(11);
    for (int round = 0; round < 300; ++round)
    {
        const std::size_t rows = 1 + random() % 12;
        const std::size_t columns = 1 + random() % 150;
        Surface surface = TestSupport::MakeRandomSurface(rows, columns, 0.1, random);
        surface.scale.z = 0.01 + 0.001 * static_cast<double>(random() % 100);
        surface.offset.z = static_cast<double>(random() % 100) - 50.0;
        const int x = static_cast<int>(random() % columns);
        const int y = static_cast<int>(random() % rows);
        const Rect2d<int> rect = {x, y, 1 + static_cast<int>(random() % (columns - static_cast<std::size_t>(x))),
                                  1 + static_cast<int>(random() % (rows - static_cast<std::size_t>(y)))};
        std::uniform_real_distribution<double> limit(-1500.0, 1500.0);
        const double minimum = round % 10 == 0 ? kNull : limit(random);
        const double maximum = limit(random);
        const Zo::Object<void*> mask = TestSupport::MakeRandomMask(static_cast<std::size_t>(rect.height),
                                                                   static_cast<std::size_t>(rect.width), 0.8, random);
        Mask expected = CellsIn<std::uint8_t>(mask);
        PlainThreshold(surface, minimum, maximum, rect, expected);
        ThresholdHeight(surface, minimum, maximum, rect, mask);
        ASSERT_EQ(CellsIn<std::uint8_t>(mask), expected) << "round " << round;
    }
}

} // namespace
