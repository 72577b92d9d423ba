/** @file
 *  Box means of the map, beside what an OpenCV user composes from box filters or integral images, and beside a blur that
 *  knows no missing heights. One thread each. */

#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

namespace
{

constexpr std::int64_t kCells = std::int64_t{Bench::kSide} * Bench::kSide;

/** OpenCV on one thread for as long as it lives. */
class OneThread
{
public:
    OneThread() : previous(cv::getNumThreads()) { cv::setNumThreads(1); }
    ~OneThread() { cv::setNumThreads(previous); }
    OneThread(const OneThread&) = delete;
    OneThread& operator=(const OneThread&) = delete;

private:
    int previous;
};

void SurfaceFilterAverage(benchmark::State& state)
{
    const auto window = static_cast<std::size_t>(state.range(0));
    const Zo::Object<void*>& heights = Bench::Map().layers[0]; // made here when it is the first, and not in the loop
    const Zo::Object<void*> out = Bench::NewArray(xxq16s_type);
    for (auto _ : state)
    {
        Zvl::SurfaceFilter(heights, out, nullptr).Average({window, window}, 1);
    }
    state.SetItemsProcessed(state.iterations() * kCells);
}
BENCHMARK(SurfaceFilterAverage)->Arg(3)->Arg(15)->Arg(31)->Arg(301)->Unit(benchmark::kMillisecond);

/** Zero for missing heights, a sum of the heights and one of the cells, their quotient, and missing heights again. */
void OpenCvTwoBoxFilters(benchmark::State& state)
{
    const OneThread oneThread;
    const cv::Size window(static_cast<int>(state.range(0)), static_cast<int>(state.range(0)));
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    cv::Mat valid;
    cv::Mat missing;
    cv::Mat filled;
    cv::Mat sums;
    cv::Mat counts;
    cv::Mat mean;
    for (auto _ : state)
    {
        cv::compare(heights, cv::Scalar(Zvl::GetNull<short>()), missing, cv::CMP_EQ);
        heights.copyTo(filled);
        filled.setTo(0, missing);
        cv::bitwise_not(missing, valid);
        valid.convertTo(valid, CV_8U, 1.0 / 255.0);
        cv::boxFilter(filled, sums, CV_32F, window, {-1, -1}, false, cv::BORDER_CONSTANT);
        cv::boxFilter(valid, counts, CV_32F, window, {-1, -1}, false, cv::BORDER_CONSTANT);
        cv::divide(sums, counts, sums);
        sums.convertTo(mean, CV_16S);
        mean.setTo(Zvl::GetNull<short>(), missing);
    }
    state.SetItemsProcessed(state.iterations() * kCells);
}
BENCHMARK(OpenCvTwoBoxFilters)->Arg(3)->Arg(15)->Arg(31)->Arg(301)->Unit(benchmark::kMillisecond);

void OpenCvBlur(benchmark::State& state)
{
    const OneThread oneThread;
    const cv::Size window(static_cast<int>(state.range(0)), static_cast<int>(state.range(0)));
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    cv::Mat mean;
    for (auto _ : state)
    {
        cv::blur(heights, mean, window);
    }
    state.SetItemsProcessed(state.iterations() * kCells);
}
BENCHMARK(OpenCvBlur)->Arg(3)->Arg(15)->Arg(31)->Arg(301)->Unit(benchmark::kMillisecond);

void SmoothFullArray2(benchmark::State& state)
{
    const int window = static_cast<int>(state.range(0));
    const Zo::Object<void*>& heights = Bench::Map().layers[0];
    for (auto _ : state)
    {
        const Zo::Object<void*> mean = Zvl::SmoothFullArray2<short>(heights, window, window, nullptr);
        benchmark::DoNotOptimize(mean.Get());
    }
    state.SetItemsProcessed(state.iterations() * kCells);
}
BENCHMARK(SmoothFullArray2)->Arg(3)->Arg(31)->Arg(301)->Unit(benchmark::kMillisecond);

/** The box means from two integral images of the padded map. */
void OpenCvIntegralAndLookUp(benchmark::State& state)
{
    const OneThread oneThread;
    const int half = static_cast<int>(state.range(0)) / 2;
    const int side = 2 * half;
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    cv::Mat missing;
    cv::Mat filled;
    cv::Mat valid;
    cv::Mat sums;
    cv::Mat counts;
    cv::Mat mean(heights.size(), CV_16S);
    for (auto _ : state)
    {
        cv::copyMakeBorder(heights, filled, half, half, half, half, cv::BORDER_REFLECT);
        cv::compare(filled, cv::Scalar(Zvl::GetNull<short>()), missing, cv::CMP_EQ);
        filled.setTo(0, missing);
        filled.convertTo(filled, CV_32F); // integral() takes no 16-bit cells
        cv::bitwise_not(missing, valid);
        valid.convertTo(valid, CV_8U, 1.0 / 255.0);
        cv::integral(filled, sums, CV_64F);
        cv::integral(valid, counts, CV_32S);
        for (int row = 0; row < heights.rows; ++row)
        {
            const auto* in = heights.ptr<std::int16_t>(row);
            const auto* top = sums.ptr<double>(row + 1) + 1;
            const auto* bottom = sums.ptr<double>(row + side + 1) + 1;
            const auto* topCount = counts.ptr<int>(row + 1) + 1;
            const auto* bottomCount = counts.ptr<int>(row + side + 1) + 1;
            auto* out = mean.ptr<std::int16_t>(row);
            for (int column = 0; column < heights.cols; ++column)
            {
                const int end = column + side;
                const double sum = bottom[end] + top[column] - top[end] - bottom[column];
                const int count = bottomCount[end] + topCount[column] - topCount[end] - bottomCount[column];
                out[column] = in[column] == Zvl::GetNull<short>()
                                  ? in[column]
                                  : static_cast<std::int16_t>(static_cast<int>(sum / count));
            }
        }
        benchmark::DoNotOptimize(mean.data);
    }
    state.SetItemsProcessed(state.iterations() * kCells);
}
BENCHMARK(OpenCvIntegralAndLookUp)->Arg(3)->Arg(31)->Arg(301)->Unit(benchmark::kMillisecond);

} // namespace
