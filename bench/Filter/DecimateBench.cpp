/** @file
 *  The map on a coarser grid, beside cv::resize, which takes area means likewise but does not know missing heights. */

#include <ZdkVisionLib/Filter/SurfaceDecimate.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>

#include <opencv2/imgproc.hpp>

namespace
{

/** The ratio as a whole number of hundredths. */
double RatioOf(const benchmark::State& state)
{
    return static_cast<double>(state.range(0)) / 100.0;
}

void Decimate(benchmark::State& state, const Zvl::Surface& surface)
{
    const double ratio = RatioOf(state);
    for (auto _ : state)
    {
        const Zvl::Surface coarse = Zvl::SurfaceDecimate(surface, {0, 0}, {ratio, ratio}, nullptr);
        benchmark::DoNotOptimize(coarse.layers.data());
    }
}

void SurfaceDecimate(benchmark::State& state)
{
    Decimate(state, Bench::Map());
}
BENCHMARK(SurfaceDecimate)->Arg(9)->Arg(25)->Arg(37)->Arg(50)->Arg(80)->Unit(benchmark::kMillisecond);

void SurfaceDecimateWithIntensities(benchmark::State& state)
{
    Zvl::Surface surface = Bench::Map();
    surface.layers.push_back(Bench::NewArray(xxq8u_type));
    cv::Mat cells = Bench::MatOver(surface.layers[1], CV_8U);
    cv::randu(cells, 0, 256);
    Decimate(state, surface);
}
BENCHMARK(SurfaceDecimateWithIntensities)->Arg(37)->Arg(50)->Unit(benchmark::kMillisecond);

void OpenCvResizeArea(benchmark::State& state)
{
    cv::setNumThreads(1);
    const double ratio = RatioOf(state);
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    for (auto _ : state)
    {
        cv::Mat coarse;
        cv::resize(heights, coarse, cv::Size(), ratio, ratio, cv::INTER_AREA);
        benchmark::DoNotOptimize(coarse.data);
    }
}
BENCHMARK(OpenCvResizeArea)->Arg(9)->Arg(25)->Arg(37)->Arg(50)->Arg(80)->Unit(benchmark::kMillisecond);

} // namespace
