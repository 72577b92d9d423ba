// FitPlane on a 2048 x 2048 map with 10 % missing cells, beside two peers over the same cells: a covariance
// by Eigen as one would write it, and the plain integer loop that defines the result.

#include <ZdkVisionLib/Alignment/RefFrame.h>
#include <ZdkVisionLib/Fitting/Fit.h>

#include <benchmark/benchmark.h>

#include <Eigen/Dense>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

namespace
{

constexpr int kSize = 2048;
constexpr std::size_t kCells = std::size_t{kSize} * kSize;
constexpr Zvl::Rect2d<int> kRect{0, 0, kSize, kSize};

struct Map
{
    Map()
    {
        surface.scale = {0.02, 0.02, 0.0005};
        surface.offset = {-20.0, -20.0, 1.0};
        surface.layers.resize(1);
        Zo::Test(qArray2_Construct(surface.layers[0].Slot(), xxq16s_type, kSize, kSize, nullptr));
        Zo::Test(qArray2_Construct(mask.Slot(), xxq8u_type, kSize, kSize, nullptr));
        heights = static_cast<std::int16_t*>(qArray2_At(surface.layers[0], 0, 0));
        selected = static_cast<std::uint8_t*>(qArray2_At(mask, 0, 0));
        std::mt19937_64 random(1);
        for (std::size_t i = 0; i < kCells; ++i)
        {
            const double plane = 0.8 * static_cast<double>(i % kSize) - 0.3 * static_cast<double>(i / kSize);
            const bool missing = random() % 10 == 0;
            heights[i] = missing ? std::int16_t{-32768} : static_cast<std::int16_t>(plane + double(random() % 40));
            selected[i] = missing ? 0 : 1;
        }
    }

    Zvl::Surface surface;
    Zo::Object<void*> mask;
    std::int16_t* heights;
    std::uint8_t* selected;
};

const Map& TheMap()
{
    static const Map map;
    return map;
}

void CountBytes(benchmark::State& state)
{
    state.SetBytesProcessed(state.iterations() * static_cast<std::int64_t>(kCells * 3));
}

void FitPlane(benchmark::State& state)
{
    const Map& map = TheMap();
    for (auto _ : state)
    {
        qPlane3d64f plane;
        Zvl::FitPlane(map.surface, kRect, map.mask.Get(), &plane);
        benchmark::DoNotOptimize(plane);
    }
    CountBytes(state);
}
BENCHMARK(FitPlane)->Unit(benchmark::kMillisecond);

/** Two passes without a copy of the cells: the mean, then the sum of outer products. */
void PeerEigenCovariance(benchmark::State& state)
{
    const Map& map = TheMap();
    const auto forEachCell = [&map](auto action)
    {
        for (int row = 0; row < kSize; ++row)
        {
            for (int column = 0; column < kSize; ++column)
            {
                const std::size_t i = std::size_t(row) * kSize + std::size_t(column);
                if (map.selected[i] != 0)
                {
                    action(Eigen::Vector3d(column, row, map.heights[i]));
                }
            }
        }
    };
    for (auto _ : state)
    {
        Eigen::Vector3d mean = Eigen::Vector3d::Zero();
        double count = 0.0;
        forEachCell(
            [&](const Eigen::Vector3d& point)
            {
                mean += point;
                count += 1.0;
            });
        mean /= count;
        Eigen::Matrix3d covariance = Eigen::Matrix3d::Zero();
        forEachCell(
            [&](const Eigen::Vector3d& point)
            {
                const Eigen::Vector3d deviation = point - mean;
                covariance.noalias() += deviation * deviation.transpose();
            });
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(covariance);
        benchmark::DoNotOptimize(solver.eigenvectors().col(0).eval());
    }
    CountBytes(state);
}
BENCHMARK(PeerEigenCovariance)->Unit(benchmark::kMillisecond);

/** The usual two lines of Eigen, once the cells are gathered in a matrix; gathering is part of the time. */
void PeerEigenMatrixProduct(benchmark::State& state)
{
    const Map& map = TheMap();
    Eigen::Matrix3Xd points(3, kCells);
    for (auto _ : state)
    {
        Eigen::Index count = 0;
        for (std::size_t i = 0; i < kCells; ++i)
        {
            if (map.selected[i] != 0)
            {
                points.col(count++) << double(i % kSize), double(i / kSize), map.heights[i];
            }
        }
        auto cells = points.leftCols(count);
        const Eigen::Vector3d mean = cells.rowwise().mean();
        cells.colwise() -= mean;
        const Eigen::Matrix3d covariance = cells * cells.transpose();
        const Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d> solver(covariance);
        benchmark::DoNotOptimize(solver.eigenvectors().col(0).eval());
    }
    CountBytes(state);
}
BENCHMARK(PeerEigenMatrixProduct)->Unit(benchmark::kMillisecond);

/** The defining loop, in 64 bits; this map does not need more. */
void PeerPlainLoop(benchmark::State& state)
{
    const Map& map = TheMap();
    for (auto _ : state)
    {
        std::int64_t mean[4] = {};
        for (std::size_t i = 0; i < kCells; ++i)
        {
            if (map.selected[i] != 0)
            {
                mean[0] += 1;
                mean[1] += static_cast<std::int64_t>(i % kSize);
                mean[2] += static_cast<std::int64_t>(i / kSize);
                mean[3] += map.heights[i];
            }
        }
        while (mean[0] > 8192)
        {
            std::transform(mean, mean + 4, mean, [](std::int64_t sum) { return sum >> 1; });
        }
        double products[6] = {};
        std::int64_t sums[6] = {};
        std::size_t counter = 0;
        for (std::size_t i = 0; i < kCells; ++i)
        {
            if (map.selected[i] != 0)
            {
                if (counter++ % 128 == 0)
                {
                    std::transform(sums, sums + 6, products, products,
                                   [](std::int64_t sum, double total) { return total + static_cast<double>(sum); });
                    std::fill(sums, sums + 6, 0);
                }
                const std::int64_t x = static_cast<std::int64_t>(i % kSize) * mean[0] - mean[1];
                const std::int64_t y = static_cast<std::int64_t>(i / kSize) * mean[0] - mean[2];
                const std::int64_t h = map.heights[i] * mean[0] - mean[3];
                sums[0] += x * x;
                sums[1] += x * y;
                sums[2] += x * h;
                sums[3] += y * y;
                sums[4] += y * h;
                sums[5] += h * h;
            }
        }
        benchmark::DoNotOptimize(products);
    }
    CountBytes(state);
}
BENCHMARK(PeerPlainLoop)->Unit(benchmark::kMillisecond);

/** What the memory gives: the bytes of heights and mask, copied once. */
void PeerCopyOfTheCells(benchmark::State& state)
{
    const Map& map = TheMap();
    std::vector<std::int16_t> heights(kCells);
    std::vector<std::uint8_t> mask(kCells);
    for (auto _ : state)
    {
        std::copy_n(map.heights, kCells, heights.begin());
        std::copy_n(map.selected, kCells, mask.begin());
        benchmark::ClobberMemory();
    }
    CountBytes(state);
}
BENCHMARK(PeerCopyOfTheCells)->Unit(benchmark::kMillisecond);

} // namespace
