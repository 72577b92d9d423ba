#include "Common/MatSupport.h"

#include <algorithm>
#include <random>

namespace
{

using namespace Zvl;
using MatTest::Region;

std::vector<double> FieldsOf(const Region& region)
{
    return {region.x, region.y, region.width, region.height, region.angle, region.z, region.depth};
}

void ExpectRegion(const Region& region, const Region& expected)
{
    EXPECT_EQ(FieldsOf(region), FieldsOf(expected));
}

// x, y, width, height, angle, z, depth
const Region kLeft = {0.0, 10.0, 4.0, 8.0, 30.0, -1.0, 2.0};
const Region kRight = {3.0, 12.0, 5.0, 2.0, 60.0, 0.0, 0.5};

TEST(MatRegions, OverlapIsWhatBothHold)
{
    Region result;
    zvlMat::ComputeOverlappingRegion(&kLeft, &kRight, &result);
    ExpectRegion(result, {3.0, 12.0, 1.0, 2.0, 30.0, 0.0, 0.5});
    zvlMat::ComputeOverlappingRegion(&kRight, &kLeft, &result);
    ExpectRegion(result, {3.0, 12.0, 1.0, 2.0, 60.0, 0.0, 0.5});
}

TEST(MatRegions, ContainerHoldsBoth)
{
    Region result;
    zvlMat::ComputeContainerRegion(&kLeft, &kRight, &result);
    ExpectRegion(result, {0.0, 10.0, 8.0, 8.0, 30.0, -1.0, 2.0});
    zvlMat::ComputeContainerRegion(&kRight, &kLeft, &result);
    ExpectRegion(result, {0.0, 10.0, 8.0, 8.0, 60.0, -1.0, 2.0});
}

TEST(MatRegions, TheResultMayBeEitherOfTheTwo)
{
    Region first = kLeft;
    zvlMat::ComputeOverlappingRegion(&first, &kRight, &first);
    ExpectRegion(first, {3.0, 12.0, 1.0, 2.0, 30.0, 0.0, 0.5});
    Region second = kRight; // keeps its own angle
    zvlMat::ComputeOverlappingRegion(&kLeft, &second, &second);
    ExpectRegion(second, {3.0, 12.0, 1.0, 2.0, 60.0, 0.0, 0.5});

    first = kLeft;
    zvlMat::ComputeContainerRegion(&first, &kRight, &first);
    ExpectRegion(first, {0.0, 10.0, 8.0, 8.0, 30.0, -1.0, 2.0});
    second = kRight;
    zvlMat::ComputeContainerRegion(&kLeft, &second, &second);
    ExpectRegion(second, {0.0, 10.0, 8.0, 8.0, 60.0, -1.0, 2.0});
}

TEST(MatRegions, OneRegionAloneStaysAsItIs)
{
    Region region = {1.0, 2.0, -3.0, -4.0, 5.0, 6.0, -7.0};
    const Region before = region;
    zvlMat::ComputeOverlappingRegion(&region, &region, &region);
    ExpectRegion(region, before);
    zvlMat::ComputeContainerRegion(&region, &region, &region);
    ExpectRegion(region, before);
}

TEST(MatRegions, WithANullNothingHappens)
{
    Region result = kRight;
    for (const auto compute : {&zvlMat::ComputeOverlappingRegion, &zvlMat::ComputeContainerRegion})
    {
        compute(nullptr, &kLeft, &result);
        compute(&kLeft, nullptr, &result);
        compute(nullptr, &result, &result);
        compute(&kLeft, &kRight, nullptr);
        compute(nullptr, nullptr, nullptr);
    }
    ExpectRegion(result, kRight);
}

TEST(MatRegions, RegionsThatTouchShareNoSizeAndThoseApartLess)
{
    const Region left = {0.0, 0.0, 2.0, 2.0, 0.0, 0.0, 2.0};
    const Region right = {2.0, 0.0, 2.0, 2.0, 0.0, 5.0, 2.0};
    Region result;
    zvlMat::ComputeOverlappingRegion(&left, &right, &result);
    ExpectRegion(result, {2.0, 0.0, 0.0, 2.0, 0.0, 5.0, -3.0});
    zvlMat::ComputeOverlappingRegion(&right, &left, &result);
    ExpectRegion(result, {2.0, 0.0, 0.0, 2.0, 0.0, 5.0, -3.0});
}

TEST(MatRegions, ValuesThatAreNotNumbersChangeNothing)
{
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    const Region nowhere = {notANumber, notANumber, 1.0, 1.0, 0.0, notANumber, 1.0};
    Region result;
    zvlMat::ComputeOverlappingRegion(&kLeft, &nowhere, &result);
    ExpectRegion(result, kLeft);
    zvlMat::ComputeContainerRegion(&kLeft, &nowhere, &result);
    ExpectRegion(result, kLeft);
}

/** A stretch between two whole positions: sums and differences of such are exact. */
struct Stretch
{
    double begin;
    double end;
};

TEST(MatRegions, RandomRegionsShareAndSpanTheirIntervals)
{
    std::mt19937 random(20);
    std::uniform_int_distribution<int> position(-20, 20);
    std::uniform_int_distribution<int> length(0, 20);
    const auto stretch = [&]
    {
        const double begin = position(random);
        return Stretch{begin, begin + length(random)};
    };
    const auto regionOf = [](const Stretch& x, const Stretch& y, const Stretch& z)
    { return Region{x.begin, y.begin, x.end - x.begin, y.end - y.begin, 0.0, z.begin, z.end - z.begin}; };
    const auto shared = [](const Stretch& a, const Stretch& b) {
        return Stretch{std::max(a.begin, b.begin), std::min(a.end, b.end)};
    };
    const auto spanned = [](const Stretch& a, const Stretch& b) {
        return Stretch{std::min(a.begin, b.begin), std::max(a.end, b.end)};
    };
    for (int round = 0; round < 1000; ++round)
    {
        const Stretch a[3] = {stretch(), stretch(), stretch()};
        const Stretch b[3] = {stretch(), stretch(), stretch()};
        const Region first = regionOf(a[0], a[1], a[2]);
        const Region second = regionOf(b[0], b[1], b[2]);
        Region result;
        zvlMat::ComputeOverlappingRegion(&first, &second, &result);
        ExpectRegion(result, regionOf(shared(a[0], b[0]), shared(a[1], b[1]), shared(a[2], b[2])));
        zvlMat::ComputeContainerRegion(&first, &second, &result);
        ExpectRegion(result, regionOf(spanned(a[0], b[0]), spanned(a[1], b[1]), spanned(a[2], b[2])));
    }
}

} // namespace
