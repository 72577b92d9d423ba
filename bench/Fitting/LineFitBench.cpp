// FitLine beside cv::fitLine, both by least squares over 10,000 points, and FitLineIterative with 10 % rejection beside
// the definition: a fresh line and all distances in each of the 1001 passes.

#include <ZdkVisionLib/Fitting/Fit.h>

#include <benchmark/benchmark.h>

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <random>
#include <vector>

namespace
{

constexpr std::size_t kPoints = 10000;

std::vector<qPoint64f> NoisyLine(std::size_t count)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> along(-50.0, 50.0);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::vector<qPoint64f> points(count);
    for (qPoint64f& point : points)
    {
        const double x = along(random);
        point = {x, 0.3 * x + 12.0 + noise(random)};
    }
    return points;
}

void FitLine(benchmark::State& state)
{
    const std::vector<qPoint64f> points = NoisyLine(kPoints);
    for (auto _ : state)
    {
        double slope = 0.0;
        double intercept = 0.0;
        Zvl::FitLine(points.data(), nullptr, points.size(), &slope, &intercept);
        benchmark::DoNotOptimize(slope);
    }
}
BENCHMARK(FitLine)->Unit(benchmark::kMicrosecond);

void PeerOpenCvFitLine(benchmark::State& state)
{
    std::vector<cv::Point2f> points;
    for (const qPoint64f& point : NoisyLine(kPoints))
    {
        points.emplace_back(static_cast<float>(point.x), static_cast<float>(point.y));
    }
    for (auto _ : state)
    {
        cv::Vec4f line;
        cv::fitLine(points, line, cv::DIST_L2, 0.0, 0.01, 0.01);
        benchmark::DoNotOptimize(line);
    }
}
BENCHMARK(PeerOpenCvFitLine)->Unit(benchmark::kMicrosecond);

void FitLineIterative(benchmark::State& state)
{
    const std::vector<qPoint64f> points = NoisyLine(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
    {
        double slope = 0.0;
        double intercept = 0.0;
        Zvl::FitLineIterative(points.data(), points.size(), 10.0, &slope, &intercept, nullptr, nullptr);
        benchmark::DoNotOptimize(slope);
    }
}
BENCHMARK(FitLineIterative)->Arg(1000)->Arg(kPoints)->Arg(100000)->Unit(benchmark::kMillisecond);

void PeerFreshLinePerPass(benchmark::State& state)
{
    const std::vector<qPoint64f> points = NoisyLine(static_cast<std::size_t>(state.range(0)));
    for (auto _ : state)
    {
        std::vector<int> rejected(points.size());
        double slope = 0.0;
        double intercept = 0.0;
        Zvl::FitLine(points.data(), rejected.data(), points.size(), &slope, &intercept);
        for (std::size_t pass = 0; pass < points.size() / 10; ++pass)
        {
            const double length = std::sqrt(slope * slope + 1.0);
            double largest = -1.0;
            std::size_t farthest = 0;
            for (std::size_t i = 0; i < points.size(); ++i)
            {
                const double distance = std::fabs(slope * points[i].x - points[i].y + intercept) / length;
                if (rejected[i] == 0 && distance > largest)
                {
                    largest = distance;
                    farthest = i;
                }
            }
            rejected[farthest] = 1;
            Zvl::FitLine(points.data(), rejected.data(), points.size(), &slope, &intercept);
        }
        benchmark::DoNotOptimize(slope);
    }
}
BENCHMARK(PeerFreshLinePerPass)->Arg(1000)->Arg(kPoints)->Unit(benchmark::kMillisecond);

} // namespace
