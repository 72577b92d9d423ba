/** @file Masks of regions that are given by a reference surface, beside OpenCV's limits on the same cells. Each turn makes a
 *  fresh mask. */

#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>

namespace
{

constexpr std::uint8_t kMinimum = 60;
constexpr std::uint8_t kMaximum = 190;

/** The map with random intensities. */
const Zvl::Surface& Reference()
{
    static const Zvl::Surface reference = []
    {
        Zvl::Surface surface = Bench::Map();
        surface.layers.push_back(Bench::NewArray(xxq8u_type));
        cv::Mat cells = Bench::MatOver(surface.layers[1], CV_8U);
        cv::randu(cells, 0, 256);
        return surface;
    }();
    return reference;
}

void RebuildMask(benchmark::State& state, Zvl::SingleROI& roi)
{
    for (auto _ : state)
    {
        roi.SetScale(Bench::kScale);
        benchmark::DoNotOptimize(roi.GetMask().Get());
    }
}

/** The heights that are not missing, 255 each, as OpenCV makes them in a fresh matrix. */
cv::Mat Valid()
{
    cv::Mat valid;
    cv::inRange(Bench::MatOver(Reference().layers[0], CV_16S), -32767, 32767, valid);
    return valid;
}

void SurfaceMask(benchmark::State& state)
{
    Zvl::SurfaceROI roi(Reference(), Bench::kSide, Bench::kSide, Bench::kScale, Bench::kOffset, nullptr);
    RebuildMask(state, roi);
}
BENCHMARK(SurfaceMask)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvInRange(benchmark::State& state)
{
    for (auto _ : state)
    {
        const cv::Mat valid = Valid();
        benchmark::DoNotOptimize(valid.data);
    }
}
BENCHMARK(OpenCvInRange)->Unit(benchmark::kMillisecond)->UseRealTime();

void IntensityMask(benchmark::State& state)
{
    Zvl::IntensityROI roi(Reference(), Bench::kSide, Bench::kSide, Bench::kScale, Bench::kOffset, kMinimum, kMaximum,
                          nullptr);
    RebuildMask(state, roi);
}
BENCHMARK(IntensityMask)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvInRangeOfBoth(benchmark::State& state)
{
    const cv::Mat intensities = Bench::MatOver(Reference().layers[1], CV_8U);
    for (auto _ : state)
    {
        cv::Mat mask;
        cv::inRange(intensities, kMinimum, kMaximum, mask);
        cv::bitwise_and(mask, Valid(), mask);
        benchmark::DoNotOptimize(mask.data);
    }
}
BENCHMARK(OpenCvInRangeOfBoth)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
