/** @file The box around the selected cells of a map, turned and along the axes, beside what an OpenCV user composes:
 *  the list of selected cells and the smallest rectangle around them. */

#include <ZdkVisionLib/Geometry/Geometry.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <random>
#include <vector>

namespace
{

/** A disc of 900 cells about the middle of the map. */
Zo::Object<void*> Disc()
{
    Zo::Object<void*> mask = Bench::NewArray(xxq8u_type);
    cv::Mat cells = Bench::MatOver(mask, CV_8U);
    cells.setTo(0);
    cv::circle(cells, {1024, 1024}, 900, cv::Scalar(1), cv::FILLED);
    return mask;
}

/** Every other cell, by chance. */
Zo::Object<void*> RandomHalf()
{
    Zo::Object<void*> mask = Bench::NewArray(xxq8u_type);
    auto* cells = static_cast<std::uint8_t*>(qArray2_At(mask, 0, 0));
    std::mt19937 random(2);
    for (int i = 0; i < Bench::kSide * Bench::kSide; ++i)
    {
        cells[i] = random() % 2 == 0 ? 1 : 0;
    }
    return mask;
}

using MakeMask = Zo::Object<void*> (*)();

void BoundingBox(benchmark::State& state, MakeMask makeMask, int rotated)
{
    Zvl::SurfaceSlice slice;
    slice.surface = Bench::Map();
    slice.rect = {0, 0, Bench::kSide, Bench::kSide};
    slice.mask = makeMask();
    const std::vector<Zvl::SurfaceSlice> slices = {slice};
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(Zvl::GetBoundingBox(slices, rotated, nullptr));
    }
}
BENCHMARK_CAPTURE(BoundingBox, DiscTurned, Disc, 1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(BoundingBox, DiscUpright, Disc, 0)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(BoundingBox, RandomHalfTurned, RandomHalf, 1)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(BoundingBox, RandomHalfUpright, RandomHalf, 0)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvFindNonZeroAndMinAreaRect(benchmark::State& state, MakeMask makeMask)
{
    const Zo::Object<void*> mask = makeMask();
    const cv::Mat cells = Bench::MatOver(mask, CV_8U);
    for (auto _ : state)
    {
        std::vector<cv::Point> selected;
        cv::findNonZero(cells, selected);
        benchmark::DoNotOptimize(cv::minAreaRect(selected));
    }
}
BENCHMARK_CAPTURE(OpenCvFindNonZeroAndMinAreaRect, Disc, Disc)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(OpenCvFindNonZeroAndMinAreaRect, RandomHalf, RandomHalf)
    ->Unit(benchmark::kMillisecond)
    ->UseRealTime();

/** The heights' extremes of the selected cells, which our box holds as well. */
void OpenCvMinMaxLoc(benchmark::State& state, MakeMask makeMask)
{
    const Zo::Object<void*> mask = makeMask();
    const cv::Mat cells = Bench::MatOver(mask, CV_8U);
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    for (auto _ : state)
    {
        double lowest = 0.0;
        double highest = 0.0;
        cv::minMaxLoc(heights, &lowest, &highest, nullptr, nullptr, cells);
        benchmark::DoNotOptimize(lowest + highest);
    }
}
BENCHMARK_CAPTURE(OpenCvMinMaxLoc, Disc, Disc)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
