#include "Common/Unite.h"

#include "support/Surfaces.h"

#include <limits>

namespace
{

using namespace Zvl;
using TestSupport::ExpectRect;

/** @p whole after it was united with @p part. */
Rect2d<int> United(Rect2d<int> whole, const Rect2d<int>& part)
{
    Unite(whole, part);
    return whole;
}

TEST(Unite, ExtendsABoxOnEachSide)
{
    const Rect2d<int> whole = {10, 20, 4, 3};
    ExpectRect(United(whole, {8, 20, 3, 2}), 8, 20, 6, 3);
    ExpectRect(United(whole, {12, 21, 5, 1}), 10, 20, 7, 3);
    ExpectRect(United(whole, {11, 15, 1, 1}), 10, 15, 4, 8);
    ExpectRect(United(whole, {11, 22, 1, 9}), 10, 20, 4, 11);
    ExpectRect(United(whole, {11, 21, 1, 1}), 10, 20, 4, 3);
    ExpectRect(United(whole, {0, 0, 100, 100}), 0, 0, 100, 100);
}

TEST(Unite, AnEmptyBoxAddsNothingAndAnEmptyWholeTakesAll)
{
    ExpectRect(United({10, 20, 4, 3}, {0, 0, 0, 5}), 10, 20, 4, 3);
    ExpectRect(United({10, 20, 4, 3}, {0, 0, 5, -1}), 10, 20, 4, 3);
    ExpectRect(United({10, 20, 0, 0}, {-5, 6, 2, 1}), -5, 6, 2, 1);
    // A whole of some width is no empty whole, though it has no height.
    ExpectRect(United({10, 20, 4, 0}, {12, 21, 5, 1}), 10, 20, 7, 2);
}

TEST(Unite, AUnionBeyondTheRangeOfIntIsCut)
{
    constexpr int lowest = std::numeric_limits<int>::min();
    constexpr int highest = std::numeric_limits<int>::max();
    ExpectRect(United({lowest, 0, 2, 1}, {highest, 0, 5, 1}), lowest, 0, highest, 1);
}

TEST(Unite, ExtendsASegment)
{
    RunLength<int> whole;
    Unite(whole, {7, 0});
    EXPECT_EQ(whole.length, 0);
    Unite(whole, {7, 2});
    Unite(whole, {3, 1});
    EXPECT_EQ(whole.start, 3);
    EXPECT_EQ(whole.length, 6);
    Unite(whole, {100, -4});
    Unite(whole, {8, 4});
    EXPECT_EQ(whole.start, 3);
    EXPECT_EQ(whole.length, 9);
}

TEST(Unite, ExtendsARangeOfDoubles)
{
    double start = 1.0;
    double length = 2.0;
    ExtendRange(start, length, -0.5, 1.0);
    EXPECT_EQ(start, -0.5);
    EXPECT_EQ(length, 3.5);
    ExtendRange(start, length, 2.0, 2.25);
    EXPECT_EQ(start, -0.5);
    EXPECT_EQ(length, 4.75);
}

} // namespace
