/** @file Voronoi diagrams of uniform sites and of a rough ring, beside Boost.Polygon (a diagram of sites on whole
 *  coordinates) and CGAL (the Delaunay triangulation, the diagram's dual). A peer that is not installed is left out. */

#include "Geometry/Voronoi.h"

#include <benchmark/benchmark.h>

#ifdef BENCH_BOOST_POLYGON
#include <boost/polygon/voronoi.hpp>
#endif
#ifdef BENCH_CGAL
#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#endif

#include <cmath>
#include <random>
#include <vector>

namespace
{

using Points = std::vector<qPoint64f>;
using MakePoints = Points (*)(std::int64_t count);

Points Uniform(std::int64_t count)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(0.0, 1000.0);
    Points points(static_cast<std::size_t>(count));
    for (qPoint64f& p : points)
    {
        p = {coordinate(random), coordinate(random)};
    }
    return points;
}

Points Ring(std::int64_t count)
{
    std::mt19937_64 random(2);
    std::normal_distribution<double> roughness(0.0, 0.05);
    Points points(static_cast<std::size_t>(count));
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
        const double radius = 400.0 + 4.0 * std::cos(5.0 * angle) + roughness(random);
        points[i] = {500.0 + radius * std::cos(angle), 500.0 + radius * std::sin(angle)};
    }
    return points;
}

void Voronoi(benchmark::State& state, MakePoints makePoints)
{
    const Points points = makePoints(state.range(0));
    for (auto _ : state)
    {
        Zvl::VoronoiOwner diagram;
        Zvl::GenerateVoronoi(static_cast<std::int32_t>(points.size()), points.data(), nullptr, diagram.Get());
        Zvl::BuildVoronoiVertices(diagram.Get());
        benchmark::DoNotOptimize(Zvl::FirstVoronoiVertex(diagram.Get()));
    }
}

#ifdef BENCH_BOOST_POLYGON
void PeerBoostVoronoi(benchmark::State& state, MakePoints makePoints)
{
    constexpr double kCellsPerUnit = 1e6;
    std::vector<boost::polygon::point_data<int>> points;
    for (const qPoint64f& p : makePoints(state.range(0)))
    {
        points.emplace_back(static_cast<int>(p.x * kCellsPerUnit), static_cast<int>(p.y * kCellsPerUnit));
    }
    for (auto _ : state)
    {
        boost::polygon::voronoi_diagram<double> diagram;
        boost::polygon::construct_voronoi(points.begin(), points.end(), &diagram);
        benchmark::DoNotOptimize(diagram.num_vertices());
    }
}
#endif

#ifdef BENCH_CGAL
void PeerCgalDelaunay(benchmark::State& state, MakePoints makePoints)
{
    using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;
    std::vector<Kernel::Point_2> points;
    for (const qPoint64f& p : makePoints(state.range(0)))
    {
        points.emplace_back(p.x, p.y);
    }
    for (auto _ : state)
    {
        CGAL::Delaunay_triangulation_2<Kernel> triangulation;
        triangulation.insert(points.begin(), points.end());
        benchmark::DoNotOptimize(triangulation.number_of_faces());
    }
}
#endif

void Sizes(benchmark::internal::Benchmark* benchmark)
{
    benchmark->Arg(1000)->Arg(10000)->Arg(100000)->Unit(benchmark::kMillisecond);
}

BENCHMARK_CAPTURE(Voronoi, Uniform, Uniform)->Apply(Sizes);
BENCHMARK_CAPTURE(Voronoi, Ring, Ring)->Apply(Sizes);
#ifdef BENCH_BOOST_POLYGON
BENCHMARK_CAPTURE(PeerBoostVoronoi, Uniform, Uniform)->Apply(Sizes);
BENCHMARK_CAPTURE(PeerBoostVoronoi, Ring, Ring)->Apply(Sizes);
#endif
#ifdef BENCH_CGAL
BENCHMARK_CAPTURE(PeerCgalDelaunay, Uniform, Uniform)->Apply(Sizes);
BENCHMARK_CAPTURE(PeerCgalDelaunay, Ring, Ring)->Apply(Sizes);
#endif

} // namespace
