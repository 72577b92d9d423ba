/** @file The form-tolerance circles. The smallest circle around points in a disc and on a ring beside that of OpenCV; the
 *  minimum zone and the inscribed circle of lobed rings, whose time grows with n log n. */

#include "Fitting/CircleCircumscribed.h"
#include "Fitting/CircleInscribed.h"

#include <ZdkVisionLib/Fitting/Fit.h>

#include <benchmark/benchmark.h>
#include <opencv2/imgproc.hpp>

#include <cmath>
#include <random>
#include <vector>

namespace
{

using Points = std::vector<qPoint64f>;
using MakePoints = Points (*)(std::int64_t count);

Points PolarPoints(std::int64_t count, double smallest, double roughness)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> share(smallest * smallest, 1.0);
    std::normal_distribution<double> noise;
    Points points(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
        const double radius = 10.0 * std::sqrt(share(random)) + 0.1 * std::cos(3.0 * angle) + roughness * noise(random);
        points[i] = {25.0 + radius * std::cos(angle), -40.0 + radius * std::sin(angle)};
    }
    return points;
}

Points Disc(std::int64_t count)
{
    return PolarPoints(count, 0.0, 0.0);
}

Points LobedRing(std::int64_t count)
{
    return PolarPoints(count, 1.0, 0.003);
}

void CircumscribedCircle(benchmark::State& state, MakePoints makePoints)
{
    const Points points = makePoints(state.range(0));
    double radius = 0.0;
    for (auto _ : state)
    {
        Zvl::FitCircle_MCC(points.data(), points.size(), nullptr, &radius, nullptr, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(radius);
    }
    state.counters["radius"] = radius;
}

void PeerOpenCvMinEnclosingCircle(benchmark::State& state, MakePoints makePoints)
{
    std::vector<cv::Point2f> points;
    for (const qPoint64f& p : makePoints(state.range(0)))
    {
        points.emplace_back(static_cast<float>(p.x), static_cast<float>(p.y));
    }
    float radius = 0.0F;
    for (auto _ : state)
    {
        cv::Point2f center;
        cv::minEnclosingCircle(points, center, radius);
        benchmark::DoNotOptimize(radius);
    }
    state.counters["radius"] = static_cast<double>(radius);
}

void InscribedCircle(benchmark::State& state)
{
    const Points points = LobedRing(state.range(0));
    for (auto _ : state)
    {
        double radius = 0.0;
        Zvl::FitCircle_MIC(points.data(), points.size(), nullptr, &radius, nullptr, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(radius);
    }
}

void MinimumZone(benchmark::State& state)
{
    const Points points = LobedRing(state.range(0));
    for (auto _ : state)
    {
        double minRadius = 0.0;
        double maxRadius = 0.0;
        Zvl::FitCircle(points.data(), points.size(), 0.0, Zvl::CIRCLE_MZC, nullptr, &minRadius, &maxRadius, nullptr,
                       nullptr, nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(maxRadius - minRadius);
    }
    state.SetComplexityN(state.range(0));
}

BENCHMARK_CAPTURE(CircumscribedCircle, Disc, Disc)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(PeerOpenCvMinEnclosingCircle, Disc, Disc)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(CircumscribedCircle, Ring, LobedRing)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(PeerOpenCvMinEnclosingCircle, Ring, LobedRing)->Arg(1000)->Arg(10000)->Unit(benchmark::kMicrosecond);
BENCHMARK(InscribedCircle)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);
BENCHMARK(MinimumZone)
    ->Arg(1000)
    ->Arg(10000)
    ->Arg(100000)
    ->Unit(benchmark::kMillisecond)
    ->Complexity(benchmark::oNLogN);

} // namespace
