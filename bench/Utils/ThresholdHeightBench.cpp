/** @file
 *  Height limits on a mask, beside what an OpenCV user composes, and beside a copy of as many bytes. */

#include <ZdkVisionLib/Utils/Utils.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <cstring>
#include <vector>

namespace
{

constexpr std::size_t kCells = std::size_t{Bench::kSide} * Bench::kSide;

// Heights and mask are read, the mask is written.
constexpr std::int64_t kBytesMoved = static_cast<std::int64_t>(kCells * 4);

void ThresholdHeight(benchmark::State& state)
{
    const Zvl::Surface& map = Bench::Map();
    const Zo::Object<void*> mask = Bench::ValidMask();
    for (auto _ : state)
    {
        Zvl::ThresholdHeight(map, -1.0, 3.0, {0, 0, Bench::kSide, Bench::kSide}, mask);
    }
    state.SetBytesProcessed(state.iterations() * kBytesMoved);
}
BENCHMARK(ThresholdHeight)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvInRangeAndBitwiseAnd(benchmark::State& state)
{
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    const Zo::Object<void*> array = Bench::ValidMask();
    cv::Mat mask = Bench::MatOver(array, CV_8U);
    cv::Mat inside;
    for (auto _ : state)
    {
        cv::inRange(heights, cv::Scalar(-1000), cv::Scalar(3000), inside);
        cv::bitwise_and(mask, inside, mask);
    }
    state.SetBytesProcessed(state.iterations() * kBytesMoved);
}
BENCHMARK(OpenCvInRangeAndBitwiseAnd)->Unit(benchmark::kMillisecond)->UseRealTime();

void MemcpyOfAsManyBytes(benchmark::State& state)
{
    std::vector<char> from(kCells * 2, 1);
    std::vector<char> to(kCells * 2);
    for (auto _ : state)
    {
        std::memcpy(to.data(), from.data(), to.size());
        benchmark::ClobberMemory();
    }
    state.SetBytesProcessed(state.iterations() * kBytesMoved);
}
BENCHMARK(MemcpyOfAsManyBytes)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
