/** @file
 *  Filters over a line of 100,000 cells of the map, beside plain loops and OpenCV's filters on the same cells. OpenCV's
 *  know no missing cells: beside them stands the line without any. */

#include <ZdkVisionLib/Filter/ProfileFilter.h>

#include "support/BenchMap.h"

#include <opencv2/imgproc.hpp>

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>
#include <vector>

namespace
{

constexpr std::size_t kCells = 100000;
constexpr std::int16_t kMissing = Zvl::GetNull<short>();

/** The first cells of the map, row after row; a tenth of them is missing. */
const std::vector<std::int16_t>& LineWithGaps()
{
    static const std::vector<std::int16_t> line = []
    {
        const auto* cells = static_cast<const std::int16_t*>(qArray2_At(Bench::Map().layers[0], 0, 0));
        return std::vector<std::int16_t>(cells, cells + kCells);
    }();
    return line;
}

/** The same line with its gaps filled. */
const std::vector<std::int16_t>& WholeLine()
{
    static const std::vector<std::int16_t> line = []
    {
        std::vector<std::int16_t> filled(kCells);
        Zvl::ProfileFilter(LineWithGaps().data(), kCells, filled.data(), nullptr).FillGap(100, 10000, 0);
        std::replace(filled.begin(), filled.end(), kMissing, std::int16_t{0});
        return filled;
    }();
    return line;
}

const std::vector<std::int16_t>& LineOf(benchmark::State& state)
{
    return state.range(1) != 0 ? LineWithGaps() : WholeLine();
}

/** Runs `operation(filter)` from one buffer to another, again and again. */
template <typename Operation>
void RunFilter(benchmark::State& state, const std::vector<std::int16_t>& line, Operation operation)
{
    std::vector<std::int16_t> result(kCells);
    for (auto _ : state)
    {
        Zvl::ProfileFilter filter(line.data(), kCells, result.data(), nullptr);
        operation(filter);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCells));
}

/** Runs `filter(source, result)` over images of one row. */
template <typename Filter>
void RunOpenCv(benchmark::State& state, Filter filter)
{
    cv::setNumThreads(1);
    std::vector<std::int16_t> line = WholeLine();
    const cv::Mat source(1, static_cast<int>(kCells), CV_16S, line.data());
    cv::Mat result;
    for (auto _ : state)
    {
        filter(source, result);
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCells));
}

void Windows(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgNames({"window", "gaps"})->ArgsProduct({{5, 51, 501}, {0, 1}})->Unit(benchmark::kMicrosecond);
}

void WindowsOfOpenCv(benchmark::internal::Benchmark* benchmark)
{
    benchmark->ArgName("window")->Arg(5)->Arg(51)->Arg(501)->Unit(benchmark::kMicrosecond);
}

void Median(benchmark::State& state)
{
    const auto window = static_cast<std::size_t>(state.range(0));
    RunFilter(state, LineOf(state), [=](Zvl::ProfileFilter& filter) { filter.Median(window, 0); });
}
BENCHMARK(Median)->Apply(Windows);

/** The valid cells of each window, selected anew. */
void PlainMedian(benchmark::State& state)
{
    const std::ptrdiff_t half = state.range(0) / 2;
    const std::vector<std::int16_t>& line = LineOf(state);
    const auto size = static_cast<std::ptrdiff_t>(kCells);
    std::vector<std::int16_t> result(kCells);
    std::vector<std::int16_t> window;
    for (auto _ : state)
    {
        for (std::ptrdiff_t i = 0; i < size; ++i)
        {
            window.clear();
            std::copy_if(line.begin() + std::max<std::ptrdiff_t>(i - half, 0),
                         line.begin() + std::min(i + half + 1, size), std::back_inserter(window),
                         [](std::int16_t cell) { return cell != kMissing; });
            const auto middle = window.begin() + static_cast<std::ptrdiff_t>(window.size() / 2);
            std::nth_element(window.begin(), middle, window.end());
            result[static_cast<std::size_t>(i)] = window.empty() ? kMissing : *middle;
        }
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCells));
}
BENCHMARK(PlainMedian)->Apply(Windows);

/** A square window, since there is no other; 5 is the largest for cells of 16 bits. */
void OpenCvMedianBlur(benchmark::State& state)
{
    RunOpenCv(state, [](const cv::Mat& source, cv::Mat& result) { cv::medianBlur(source, result, 5); });
}
BENCHMARK(OpenCvMedianBlur)->Unit(benchmark::kMicrosecond);

void Average(benchmark::State& state)
{
    const auto window = static_cast<std::size_t>(state.range(0));
    RunFilter(state, LineOf(state), [=](Zvl::ProfileFilter& filter) { filter.Average(window, 0); });
}
BENCHMARK(Average)->Apply(Windows);

void OpenCvBlur(benchmark::State& state)
{
    const int window = static_cast<int>(state.range(0));
    RunOpenCv(state,
              [=](const cv::Mat& source, cv::Mat& result) {
                  cv::blur(source, result, {window, 1}, {-1, -1}, cv::BORDER_REPLICATE);
              });
}
BENCHMARK(OpenCvBlur)->Apply(WindowsOfOpenCv);

void Gaussian(benchmark::State& state)
{
    const auto window = static_cast<std::size_t>(state.range(0));
    RunFilter(state, LineOf(state), [=](Zvl::ProfileFilter& filter) { filter.Gaussian(window, 0.0, 0); });
}
BENCHMARK(Gaussian)->Apply(Windows);

/** Weights in single precision. */
void OpenCvGaussianBlur(benchmark::State& state)
{
    const int window = static_cast<int>(state.range(0));
    RunOpenCv(state,
              [=](const cv::Mat& source, cv::Mat& result) {
                  cv::GaussianBlur(source, result, {window, 1}, 0.0, 0.0, cv::BORDER_REPLICATE);
              });
}
BENCHMARK(OpenCvGaussianBlur)->Apply(WindowsOfOpenCv);

void FillGap(benchmark::State& state)
{
    const std::vector<std::int16_t>& line = state.range(0) != 0 ? LineWithGaps() : WholeLine();
    RunFilter(state, line, [](Zvl::ProfileFilter& filter) { filter.FillGap(20, 100, 0); });
}
BENCHMARK(FillGap)->ArgName("gaps")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

void PlainCopy(benchmark::State& state)
{
    std::vector<std::int16_t> result(kCells);
    for (auto _ : state)
    {
        std::memcpy(result.data(), WholeLine().data(), kCells * sizeof(std::int16_t));
        benchmark::ClobberMemory();
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCells));
}
BENCHMARK(PlainCopy)->Unit(benchmark::kMicrosecond);

void Percentile(benchmark::State& state)
{
    const auto type = static_cast<Zvl::ProfileFilter::PercentileType>(state.range(0));
    RunFilter(state, LineWithGaps(), [=](Zvl::ProfileFilter& filter) { filter.Percentile(5.0, 95.0, type); });
}
BENCHMARK(Percentile)->ArgName("type")->Arg(0)->Arg(1)->Unit(benchmark::kMicrosecond);

/** The valid cells, sorted. */
void PlainSort(benchmark::State& state)
{
    for (auto _ : state)
    {
        std::vector<std::int16_t> cells = LineWithGaps();
        std::sort(cells.begin(), cells.end());
        benchmark::DoNotOptimize(cells.data());
    }
    state.SetItemsProcessed(state.iterations() * static_cast<std::int64_t>(kCells));
}
BENCHMARK(PlainSort)->Unit(benchmark::kMicrosecond);

} // namespace
