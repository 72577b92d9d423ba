// FitCircleByRLTS at 50 % outliers among 2,000 points, beside the definition written down with the standard library:
// errors and indices in pairs, selected twice in each of the 69 trials.

#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/CircleAlgebraic.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <random>
#include <utility>
#include <vector>

namespace
{

constexpr std::size_t kPoints = 2000;
constexpr std::size_t kKept = kPoints / 2;
constexpr int kTrials = 69;

const std::vector<qPoint64f>& HalfACircle()
{
    static const std::vector<qPoint64f> points = []
    {
        std::mt19937_64 random(1);
        std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
        std::uniform_real_distribution<double> box(-30.0, 30.0);
        std::normal_distribution<double> noise(0.0, 0.05);
        std::vector<qPoint64f> mixed(kPoints);
        for (std::size_t i = 0; i < kPoints; ++i)
        {
            const double a = angle(random);
            const double r = 10.0 + noise(random);
            mixed[i] = i % 2 == 0 ? qPoint64f{box(random), box(random)} : qPoint64f{r * std::cos(a), r * std::sin(a)};
        }
        return mixed;
    }();
    return points;
}

void FitCircleByRlts(benchmark::State& state)
{
    const std::vector<qPoint64f>& points = HalfACircle();
    unsigned seed = 1;
    for (auto _ : state)
    {
        qPoint64f center;
        double radius = 0.0;
        Zvl::FitCircleByRLTS(points.data(), points.size(), 50.0, center, radius, nullptr, &seed,
                             static_cast<int>(state.range(0)));
        benchmark::DoNotOptimize(radius);
    }
}
BENCHMARK(FitCircleByRlts)->ArgName("weights")->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

using ErrorAndIndex = std::pair<double, std::size_t>;

/** The errors from a circle, the kept ones first. */
void Select(const std::vector<qPoint64f>& points, const qPoint64f& center, double radius,
            std::vector<ErrorAndIndex>& errors)
{
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const double x = points[i].x - center.x;
        const double y = points[i].y - center.y;
        const double error = std::sqrt(x * x + y * y) - radius;
        errors[i] = {error * error, i};
    }
    std::nth_element(errors.begin(), errors.begin() + kKept, errors.end());
}

void PeerDefinition(benchmark::State& state)
{
    const std::vector<qPoint64f>& points = HalfACircle();
    std::vector<ErrorAndIndex> errors(points.size());
    std::vector<qPoint64f> nearest(kKept);
    for (auto _ : state)
    {
        std::srand(1);
        double best = 1e308;
        for (int trial = 0; trial < kTrials; ++trial)
        {
            qPoint64f sample[3];
            for (qPoint64f& point : sample)
            {
                point = points[static_cast<std::size_t>(std::rand()) % points.size()];
            }
            qPoint64f center;
            double radius = 0.0;
            Zvl::FitCircleAlgebraic(sample, 3, &center, &radius);
            Select(points, center, radius, errors);
            std::transform(errors.begin(), errors.begin() + kKept, nearest.begin(),
                           [&points](const ErrorAndIndex& error) { return points[error.second]; });
            Zvl::FitCircleAlgebraic(nearest.data(), kKept, &center, &radius);
            Select(points, center, radius, errors);
            double score = 0.0;
            for (std::size_t i = 0; i < kKept; ++i)
            {
                score += errors[i].first;
            }
            best = std::min(best, score);
        }
        benchmark::DoNotOptimize(best);
    }
}
BENCHMARK(PeerDefinition)->Unit(benchmark::kMillisecond);

} // namespace
