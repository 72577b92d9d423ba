/** @file Operations on whole masks, beside OpenCV's on the same cells. Outputs are reused on both sides, except where the
 *  operation makes a fresh one by its contract. */

#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>

#include <memory>

namespace
{

/** A mask over the whole map in which about every second cell is 1. */
Zo::Object<void*> RandomMask(std::uint64_t seed)
{
    Zo::Object<void*> mask = Bench::NewArray(xxq8u_type);
    cv::Mat cells = Bench::MatOver(mask, CV_8U);
    cv::RNG(seed).fill(cells, cv::RNG::UNIFORM, 0, 2);
    return mask;
}

void MaskOperationOr(benchmark::State& state)
{
    const Zo::Object<void*> a = RandomMask(1);
    const Zo::Object<void*> b = RandomMask(2);
    Zo::Object<void*> result = Bench::NewArray(xxq8u_type);
    qArray2 out = result.Get();
    for (auto _ : state)
    {
        Zvl::MaskOperation(a, b, Zvl::MaskOperationOr, &out, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(MaskOperationOr)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvBitwiseOr(benchmark::State& state)
{
    const Zo::Object<void*> first = RandomMask(1);
    const Zo::Object<void*> second = RandomMask(2);
    const cv::Mat a = Bench::MatOver(first, CV_8U);
    const cv::Mat b = Bench::MatOver(second, CV_8U);
    cv::Mat result(Bench::kSide, Bench::kSide, CV_8U);
    for (auto _ : state)
    {
        cv::bitwise_or(a, b, result);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(OpenCvBitwiseOr)->Unit(benchmark::kMillisecond)->UseRealTime();

void MergeTwoMasks(benchmark::State& state)
{
    const std::vector<Zo::Object<void*>> masks = {RandomMask(1), RandomMask(2)};
    const std::vector<Zvl::Rect2d<int>> rects(2, {0, 0, Bench::kSide, Bench::kSide});
    for (auto _ : state)
    {
        Zo::Object<void*> merged;
        Zvl::MergeMasks(masks, rects, merged.Slot(), nullptr, nullptr);
        benchmark::DoNotOptimize(merged.Get());
    }
}
BENCHMARK(MergeTwoMasks)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvBitwiseOrIntoAFreshMask(benchmark::State& state)
{
    const Zo::Object<void*> first = RandomMask(1);
    const Zo::Object<void*> second = RandomMask(2);
    const cv::Mat a = Bench::MatOver(first, CV_8U);
    const cv::Mat b = Bench::MatOver(second, CV_8U);
    for (auto _ : state)
    {
        cv::Mat result = cv::Mat::zeros(Bench::kSide, Bench::kSide, CV_8U);
        cv::bitwise_or(a, result, result);
        cv::bitwise_or(b, result, result);
        benchmark::DoNotOptimize(result.data);
    }
}
BENCHMARK(OpenCvBitwiseOrIntoAFreshMask)->Unit(benchmark::kMillisecond)->UseRealTime();

/** A disc that is almost as large as the map. */
std::shared_ptr<Zvl::CircleROI> Disc()
{
    return std::make_shared<Zvl::CircleROI>(qPoint64f{0.24, 0.24}, 0.0, 10.2, 0.0, 360.0, Bench::kSide, Bench::kSide,
                                            Bench::kScale, Bench::kOffset, nullptr);
}

void ApplyMaskOfADisc(benchmark::State& state)
{
    const std::shared_ptr<Zvl::CircleROI> disc = Disc();
    Zvl::Surface out;
    for (auto _ : state)
    {
        Zvl::ApplyMask(Bench::Map(), disc, &out, nullptr);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(ApplyMaskOfADisc)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvCopyToWithAMask(benchmark::State& state)
{
    const std::shared_ptr<Zvl::CircleROI> disc = Disc();
    const Zvl::Rect2d<int> box = disc->GetBoundingBox();
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S)({box.x, box.y, box.width, box.height});
    const cv::Mat mask = Bench::MatOver(disc->GetMask(), CV_8U);
    cv::Mat out(box.height, box.width, CV_16S);
    for (auto _ : state)
    {
        out.setTo(Zvl::GetNull<short>());
        heights.copyTo(out, mask);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(OpenCvCopyToWithAMask)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
