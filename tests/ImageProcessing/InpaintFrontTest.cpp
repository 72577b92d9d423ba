#include "ImageProcessing/InpaintFront.h"

#include <gtest/gtest.h>

namespace
{

using namespace Zvl;

/** When the front comes to the middle of a cross of neighbours; a hole has the time #kNever. */
struct Cross
{
    float up = kNever;
    float left = kNever;
    float right = kNever;
    float down = kNever;
};

float ArrivalIn(const Cross& cross)
{
    const cv::Mat_<float> times =
        (cv::Mat_<float>(3, 3) << 0, cross.up, 0, cross.left, kNever, cross.right, 0, cross.down, 0);
    const auto state = [](float time) { return time == kNever ? CELL_HOLE : CELL_FRONT; };
    const cv::Mat_<std::uint8_t> states =
        (cv::Mat_<std::uint8_t>(3, 3) << CELL_SETTLED, state(cross.up), CELL_SETTLED, state(cross.left), CELL_HOLE,
         state(cross.right), CELL_SETTLED, state(cross.down), CELL_SETTLED);
    return ArrivalAt(states, times, {1, 1});
}

TEST(InpaintFront, ComesAStepAfterASingleNeighbour)
{
    EXPECT_EQ(ArrivalIn({.left = 3.0F}), 4.0F);
    EXPECT_EQ(ArrivalIn({.up = 5.0F, .down = 2.5F}), 3.5F);
    EXPECT_EQ(ArrivalIn({.up = 5.0F, .right = 2.5F}), 3.5F);
}

TEST(InpaintFront, ComesEarlierBetweenTwoAtARightAngle)
{
    EXPECT_EQ(ArrivalIn({.left = 2.0F, .down = 2.0F}), static_cast<float>((4.0 + std::sqrt(2.0)) * 0.5));
    EXPECT_EQ(ArrivalIn({.left = 2.0F, .down = 2.5F}), static_cast<float>((4.5 + std::sqrt(1.75)) * 0.5));
}

// The times of two holes at a right angle count as they stand, which is too late to matter to all but the longest march.
TEST(InpaintFront, IsNeverMoreThanAStepBehindTwoHolesAtARightAngle)
{
    EXPECT_EQ(ArrivalIn({.left = 999999.0F}), 1000000.0F);
    EXPECT_EQ(ArrivalIn({.left = 1000000.5F}), 1000001.0F);
    EXPECT_EQ(ArrivalIn({.up = 1000700.0F, .left = 1000700.0F}), 1000001.0F);
    // Without two holes at a right angle there is no such time.
    EXPECT_EQ(ArrivalIn({.left = 1000700.0F, .right = 1000800.0F}), 1000701.0F);
}

} // namespace
