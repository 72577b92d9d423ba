// FitCircle with 10 % rejection, beside a QR decomposition by Eigen in each pass. The argument is the number
// of points; 10,000 points are 1001 passes.

#include <ZdkVisionLib/Fitting/Fit.h>

#include <benchmark/benchmark.h>

#include <Eigen/Dense>

#include <cmath>
#include <random>
#include <vector>

namespace
{

std::vector<qPoint64f> NoisyCircle(std::int64_t count)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
    std::normal_distribution<double> noise(0.0, 0.05);
    std::vector<qPoint64f> points(static_cast<std::size_t>(count));
    for (qPoint64f& point : points)
    {
        const double a = angle(random);
        const double r = 10.0 + noise(random);
        point = {25.0 + r * std::cos(a), -40.0 + r * std::sin(a)};
    }
    return points;
}

void FitCircle(benchmark::State& state)
{
    const std::vector<qPoint64f> points = NoisyCircle(state.range(0));
    for (auto _ : state)
    {
        qPoint64f center;
        double radius = 0.0;
        Zvl::FitCircle(points.data(), points.size(), 10.0, Zvl::CIRCLE_LSC, &center, &radius, nullptr, nullptr, nullptr,
                       nullptr, nullptr, nullptr, nullptr);
        benchmark::DoNotOptimize(radius);
    }
}
BENCHMARK(FitCircle)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

void PeerEigenQrPerPass(benchmark::State& state)
{
    const std::vector<qPoint64f> points = NoisyCircle(state.range(0));
    for (auto _ : state)
    {
        Eigen::MatrixX3d matrix(points.size(), 3);
        Eigen::VectorXd rightSide(points.size());
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            const auto row = static_cast<Eigen::Index>(i);
            matrix.row(row) << 2.0 * points[i].x, 2.0 * points[i].y, 1.0;
            rightSide(row) = points[i].x * points[i].x + points[i].y * points[i].y;
        }
        Eigen::Index count = matrix.rows();
        const Eigen::Index kept = count - count / 10;
        double radius = 0.0;
        for (;;)
        {
            const Eigen::Vector3d solution = matrix.topRows(count).colPivHouseholderQr().solve(rightSide.head(count));
            radius = std::sqrt(solution(2) + solution.head<2>().squaredNorm());
            if (count == kept)
            {
                break;
            }
            const Eigen::Array2d center = 2.0 * solution.head<2>().array();
            Eigen::Index farthest = 0;
            ((((matrix.topRows(count).leftCols<2>().rowwise() - center.matrix().transpose()) / 2.0)
                  .rowwise()
                  .norm()
                  .array() -
              radius)
                 .abs())
                .maxCoeff(&farthest);
            // The order of the rows matters to nobody here, so that the last one may take the gap.
            --count;
            matrix.row(farthest) = matrix.row(count);
            rightSide(farthest) = rightSide(count);
        }
        benchmark::DoNotOptimize(radius);
    }
}
BENCHMARK(PeerEigenQrPerPass)->Arg(1000)->Arg(10000)->Unit(benchmark::kMillisecond);

} // namespace
