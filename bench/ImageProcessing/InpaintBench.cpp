/** @file
 *  Repair of 8-bit images with many small holes, and with one large one: the cells repaired per second, which should
 *  neither fall with the image nor with the hole. */

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include <benchmark/benchmark.h>

#include <cmath>
#include <random>

namespace
{

cv::Mat Image(int side)
{
    std::mt19937 random(7);
    cv::Mat image(side, side, CV_8UC1);
    for (int i = 0; i < side; ++i)
    {
        for (int j = 0; j < side; ++j)
        {
            const double level = 120.0 + 80.0 * std::sin(0.02 * i) * std::cos(0.03 * j);
            image.at<std::uint8_t>(i, j) = static_cast<std::uint8_t>(level + static_cast<double>(random() % 8));
        }
    }
    return image;
}

/** Spots of 21 cells, 3 % of the image. */
cv::Mat Spots(int side)
{
    std::mt19937 random(8);
    cv::Mat mask(side, side, CV_8UC1, cv::Scalar(0));
    for (int spot = side * side * 3 / 100 / 21; spot > 0; --spot)
    {
        const int row = static_cast<int>(random() % static_cast<unsigned>(side - 5));
        const int column = static_cast<int>(random() % static_cast<unsigned>(side - 5));
        mask(cv::Rect(column + 1, row, 3, 5)).setTo(255);
        mask(cv::Rect(column, row + 1, 5, 3)).setTo(255);
    }
    return mask;
}

/** One hole of a quarter of the image. */
cv::Mat Block(int side)
{
    cv::Mat mask(side, side, CV_8UC1, cv::Scalar(0));
    mask(cv::Rect(side / 4, side / 4, side / 2, side / 2)).setTo(255);
    return mask;
}

void Repair(benchmark::State& state, cv::Mat (*holes)(int), int method)
{
    const auto side = static_cast<int>(state.range(0));
    cv::Mat image = Image(side);
    cv::Mat mask = holes(side);
    cv::Mat repaired;
    for (auto _ : state)
    {
        Zvl::Inpaint(image, mask, repaired, static_cast<double>(state.range(1)), method);
    }
    state.SetItemsProcessed(state.iterations() * cv::countNonZero(mask));
}

void Sizes(benchmark::internal::Benchmark* bench)
{
    bench->ArgNames({"side", "range"})->ArgsProduct({{256, 1024, 2048}, {3, 5, 20}})->Unit(benchmark::kMillisecond);
}
BENCHMARK_CAPTURE(Repair, SpotsTelea, Spots, Zvl::CV_INPAINT_TELEA)->Apply(Sizes);
BENCHMARK_CAPTURE(Repair, SpotsNavierStokes, Spots, Zvl::CV_INPAINT_NS)->Apply(Sizes);
BENCHMARK_CAPTURE(Repair, BlockTelea, Block, Zvl::CV_INPAINT_TELEA)->Apply(Sizes);
BENCHMARK_CAPTURE(Repair, BlockNavierStokes, Block, Zvl::CV_INPAINT_NS)->Apply(Sizes);

} // namespace
