// FitSphere with 10 % rejection of 100,000 points in 10 passes, and without rejection, beside normal
// equations and their solution by Eigen for the one pass that both have in common.

#include <ZdkVisionLib/Fitting/Fit.h>

#include <benchmark/benchmark.h>

#include <Eigen/Dense>

#include <cmath>
#include <random>
#include <vector>

namespace
{

constexpr std::size_t kPoints = 100000;

const std::vector<qPoint3d64f>& NoisySphere()
{
    static const std::vector<qPoint3d64f> points = []
    {
        std::mt19937_64 random(1);
        std::normal_distribution<double> normal;
        std::vector<qPoint3d64f> sphere(kPoints);
        for (qPoint3d64f& point : sphere)
        {
            const Eigen::Vector3d direction =
                Eigen::Vector3d(normal(random), normal(random), normal(random)).normalized();
            const double r = 12.0 + 0.05 * normal(random);
            point = {3.0 + r * direction.x(), -4.0 + r * direction.y(), 5.0 + r * direction.z()};
        }
        return sphere;
    }();
    return points;
}

void FitSphere(benchmark::State& state)
{
    const std::vector<qPoint3d64f>& points = NoisySphere();
    for (auto _ : state)
    {
        qPoint3d64f center;
        double radius = 0.0;
        Zvl::FitSphere(points.data(), points.size(), &center, &radius, nullptr, static_cast<double>(state.range(0)),
                       nullptr, nullptr, 10);
        benchmark::DoNotOptimize(radius);
    }
}
BENCHMARK(FitSphere)->ArgName("percent")->Arg(0)->Arg(10)->Unit(benchmark::kMillisecond);

void PeerEigenNormalEquations(benchmark::State& state)
{
    const std::vector<qPoint3d64f>& points = NoisySphere();
    for (auto _ : state)
    {
        Eigen::Matrix4d matrix = Eigen::Matrix4d::Zero();
        Eigen::Vector4d vector = Eigen::Vector4d::Zero();
        for (const qPoint3d64f& point : points)
        {
            const Eigen::Vector4d row(point.x, point.y, point.z, 1.0);
            matrix.noalias() += row * row.transpose();
            vector += row * row.head<3>().squaredNorm();
        }
        const Eigen::Vector4d solution = matrix.inverse() * vector;
        benchmark::DoNotOptimize(std::sqrt(solution(3) + solution.head<3>().squaredNorm() / 4.0));
    }
}
BENCHMARK(PeerEigenNormalEquations)->Unit(benchmark::kMillisecond);

} // namespace
