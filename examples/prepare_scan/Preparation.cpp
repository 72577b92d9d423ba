#include "prepare_scan/Preparation.h"

#include "support/GapLimits.h"
#include "support/HeightMap.h"
#include "support/Stopwatch.h"

namespace PrepareScan
{
namespace
{

template <typename Function>
Step Timed(Function function)
{
    const Examples::Stopwatch stopwatch;
    const Zvl::Surface surface = function();
    return {surface, stopwatch.Milliseconds()};
}

/** Closes short gaps between heights; where the slope across a gap is too steep for one face, from its lower end. */
Zvl::Surface FillGaps(const Zvl::Surface& scan)
{
    constexpr double kSteepest = 45.0;
    Zvl::Surface filled = scan;
    Zo::Object<void*> noIntensity;
    Zvl::SurfaceFillGapXY(Examples::GapLimits(scan, Preparation::kLongestGap, kSteepest), scan.layers[0], noIntensity,
                          filled.layers[0], noIntensity, nullptr);
    return filled;
}

} // namespace

Preparation::Preparation(const Zvl::Surface& scan)
    : filled(Timed([&] { return FillGaps(scan); })),
      smoothed(Timed([&] { return Smooth(filled.surface, kWindow, false); })),
      decimated(Timed(
          [&] {
              return Zvl::SurfaceDecimate(smoothed.surface, {0, 0}, {0.5, 0.5}, nullptr);
          }))
{
}

Zvl::Surface Smooth(const Zvl::Surface& scan, std::size_t window, bool closesHoles)
{
    Zvl::Surface smooth =
        Examples::MakeSurface(Examples::Rows(scan), Examples::Columns(scan), scan.scale, scan.offset, false);
    Zvl::SurfaceFilter(scan.layers[0], smooth.layers[0], nullptr).Average({window, window}, closesHoles ? 0 : 1);
    return smooth;
}

Step Difference(const Zvl::Surface& prepared, const Zvl::Surface& golden)
{
    Zvl::Surface first = prepared;
    Zvl::Surface second = golden;
    return Timed(
        [&]
        {
            Zvl::Surface difference;
            Zvl::Arithmetics::Apply(Zvl::ArithmeticOperator::Subtract, Zvl::ArithmeticLogic::Intersection, first,
                                    second, difference);
            return difference;
        });
}

} // namespace PrepareScan
