/** @file Masks of regions that cover most of the map, beside OpenCV's drawing of the same shapes. Each turn
 *  makes a fresh mask, as a region does whenever its frame changes. */

#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <vector>

namespace
{

constexpr double kPi = 3.141592653589793;
constexpr int kVertices = 100;

/** A star around the middle of the map, in cells. */
std::vector<cv::Point2d> Star()
{
    std::vector<cv::Point2d> star;
    for (int i = 0; i < kVertices; ++i)
    {
        const double angle = 2.0 * kPi * i / kVertices;
        const double radius = i % 2 == 0 ? 1000.3 : 700.7;
        star.emplace_back(1023.7 + radius * std::cos(angle), 1023.9 + radius * std::sin(angle));
    }
    return star;
}

void RebuildMask(benchmark::State& state, Zvl::SingleROI& roi)
{
    for (auto _ : state)
    {
        roi.SetScale(Bench::kScale);
        benchmark::DoNotOptimize(roi.GetMask().Get());
    }
}

void PolygonMask(benchmark::State& state)
{
    std::vector<qPoint64f> corners;
    for (const cv::Point2d& corner : Star())
    {
        corners.push_back(
            {corner.x * Bench::kScale.x + Bench::kOffset.x, corner.y * Bench::kScale.y + Bench::kOffset.y});
    }
    Zvl::PolygonROI roi(corners.data(), corners.size(), Bench::kSide, Bench::kSide, Bench::kScale, Bench::kOffset,
                        nullptr);
    RebuildMask(state, roi);
}
BENCHMARK(PolygonMask)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvFillPoly(benchmark::State& state)
{
    std::vector<std::vector<cv::Point>> polygons(1);
    for (const cv::Point2d& corner : Star())
    {
        polygons[0].emplace_back(cvRound(corner.x), cvRound(corner.y));
    }
    for (auto _ : state)
    {
        cv::Mat mask = cv::Mat::zeros(Bench::kSide, Bench::kSide, CV_8U);
        cv::fillPoly(mask, polygons, cv::Scalar(1));
        benchmark::DoNotOptimize(mask.data);
    }
}
BENCHMARK(OpenCvFillPoly)->Unit(benchmark::kMillisecond)->UseRealTime();

void EllipseMask(benchmark::State& state)
{
    Zvl::EllipseROI roi(0.24, 0.24, 0.0, 0.0, 12.0, 18.0, 0.0, 360.0, 30.0, Bench::kSide, Bench::kSide, Bench::kScale,
                        Bench::kOffset, nullptr);
    RebuildMask(state, roi);
}
BENCHMARK(EllipseMask)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvEllipse(benchmark::State& state)
{
    for (auto _ : state)
    {
        cv::Mat mask = cv::Mat::zeros(Bench::kSide, Bench::kSide, CV_8U);
        cv::ellipse(mask, {1024, 1024}, {900, 600}, 30.0, 0.0, 360.0, cv::Scalar(1), cv::FILLED);
        benchmark::DoNotOptimize(mask.data);
    }
}
BENCHMARK(OpenCvEllipse)->Unit(benchmark::kMillisecond)->UseRealTime();

void RingSectorMask(benchmark::State& state)
{
    Zvl::CircleROI roi(0.24, 0.24, 5.0, 9.0, 20.0, 250.0, Bench::kSide, Bench::kSide, Bench::kScale, Bench::kOffset,
                       nullptr);
    RebuildMask(state, roi);
}
BENCHMARK(RingSectorMask)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
