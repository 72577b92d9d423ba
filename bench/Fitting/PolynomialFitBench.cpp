// FitPolynomial of 10,000 points beside a QR decomposition of their powers by Eigen. The argument is the degree.

#include <ZdkVisionLib/Fitting/Fit.h>

#include <benchmark/benchmark.h>

#include <Eigen/Dense>

#include <random>
#include <vector>

namespace
{

std::vector<qPoint64f> NoisyParabola()
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> along(-2.0, 2.0);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::vector<qPoint64f> points(10000);
    for (qPoint64f& point : points)
    {
        const double x = along(random);
        point = {x, 0.3 * x * x - x + 12.0 + noise(random)};
    }
    return points;
}

void FitPolynomial(benchmark::State& state)
{
    const std::vector<qPoint64f> points = NoisyParabola();
    const auto degree = static_cast<std::size_t>(state.range(0));
    std::vector<double> coefficients(degree + 1);
    for (auto _ : state)
    {
        benchmark::DoNotOptimize(Zvl::FitPolynomial(points.data(), points.size(), degree, coefficients.data()));
    }
}
BENCHMARK(FitPolynomial)->Arg(2)->Arg(5)->Unit(benchmark::kMicrosecond);

void PeerEigenPolynomialQr(benchmark::State& state)
{
    const std::vector<qPoint64f> points = NoisyParabola();
    const Eigen::Index degree = state.range(0);
    for (auto _ : state)
    {
        Eigen::MatrixXd powers(points.size(), degree + 1);
        Eigen::VectorXd y(points.size());
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            const auto row = static_cast<Eigen::Index>(i);
            powers(row, 0) = 1.0;
            for (Eigen::Index j = 1; j <= degree; ++j)
            {
                powers(row, j) = powers(row, j - 1) * points[i].x;
            }
            y(row) = points[i].y;
        }
        const Eigen::VectorXd coefficients = powers.householderQr().solve(y);
        benchmark::DoNotOptimize(coefficients(0));
    }
}
BENCHMARK(PeerEigenPolynomialQr)->Arg(2)->Arg(5)->Unit(benchmark::kMicrosecond);

} // namespace
