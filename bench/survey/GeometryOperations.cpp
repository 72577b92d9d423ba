#include "survey/Maps.h"
#include "survey/Operation.h"

#include "Geometry/Voronoi.h"

#include <ZdkVisionLib/Geometry/Geometry.h>

#include <opencv2/imgproc.hpp>

#ifdef BENCH_BOOST_POLYGON
#include <boost/polygon/voronoi.hpp>
#endif
#ifdef BENCH_CGAL
#include <CGAL/Delaunay_triangulation_2.h>
#include <CGAL/Exact_predicates_inexact_constructions_kernel.h>
#include <CGAL/Triangulation_face_base_with_info_2.h>
#endif

namespace Survey
{

namespace
{

using Points = std::vector<qPoint64f>;

Case TurnedBox(int side)
{
    Zvl::SurfaceSlice slice;
    slice.surface = Scan(side);
    slice.rect = {0, 0, side, side};
    slice.mask = Bench::NewArray(xxq8u_type, side, side);
    cv::Mat cells = Bytes(slice.mask);
    cells.setTo(0);
    cv::circle(cells, {side / 2, side / 2}, side * 9 / 20, cv::Scalar(1), cv::FILLED);
    const double selected = cv::countNonZero(cells);
    const auto ours = [slices = std::vector<Zvl::SurfaceSlice>{slice}]
    { Keep(Zvl::GetBoundingBox(slices, 1, nullptr)); };
    const auto peer = [cells]
    {
        std::vector<cv::Point> found;
        cv::findNonZero(cells, found);
        Keep(cv::minAreaRect(found));
    };
    return {.ours = ours,
            .peers = {{"`cv::findNonZero` and `cv::minAreaRect`, without heights", peer}},
            .items = Square(side),
            .bytesMoved = Square(side) + 2.0 * selected}; // the whole mask and the selected heights
}

Points UniformSites(int side)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> coordinate(0.0, 1000.0);
    Points sites(ManyPoints(side));
    for (qPoint64f& site : sites)
    {
        site = {coordinate(random), coordinate(random)};
    }
    return sites;
}

/** A lobed, rough ring, as a measured edge gives it. */
Points RingOfSites(int side)
{
    std::mt19937_64 random(2);
    std::normal_distribution<double> roughness(0.0, 0.05);
    Points sites(ManyPoints(side));
    for (std::size_t i = 0; i < sites.size(); ++i)
    {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(sites.size());
        const double radius = 400.0 + 4.0 * std::cos(5.0 * angle) + roughness(random);
        sites[i] = {500.0 + radius * std::cos(angle), 500.0 + radius * std::sin(angle)};
    }
    return sites;
}

#ifdef BENCH_BOOST_POLYGON
/** Its sites have whole coordinates. */
Peer BoostVoronoi(const Points& sites)
{
    std::vector<boost::polygon::point_data<int>> points;
    for (const qPoint64f& site : sites)
    {
        points.emplace_back(static_cast<int>(site.x * 1e6), static_cast<int>(site.y * 1e6));
    }
    return {"Boost.Polygon", [points]
            {
                boost::polygon::voronoi_diagram<double> diagram;
                boost::polygon::construct_voronoi(points.begin(), points.end(), &diagram);
                Keep(diagram.num_vertices());
            }};
}
#endif

#ifdef BENCH_CGAL
using Kernel = CGAL::Exact_predicates_inexact_constructions_kernel;

std::vector<Kernel::Point_2> InKernel(const Points& sites)
{
    std::vector<Kernel::Point_2> points;
    for (const qPoint64f& site : sites)
    {
        points.emplace_back(site.x, site.y);
    }
    return points;
}

/** The triangulation that the diagram is the dual of. */
Peer CgalDelaunay(const Points& sites)
{
    return {"CGAL, Delaunay triangulation alone", [points = InKernel(sites)]
            {
                CGAL::Delaunay_triangulation_2<Kernel> triangulation;
                triangulation.insert(points.begin(), points.end());
                Keep(triangulation.number_of_faces());
            }};
}

/** The triangulation, and of its dual the vertices and the cells, which are left open at the border. */
Peer CgalVoronoi(const Points& sites)
{
    using Face = CGAL::Triangulation_face_base_with_info_2<Kernel::Point_2, Kernel>;
    using Structure = CGAL::Triangulation_data_structure_2<CGAL::Triangulation_vertex_base_2<Kernel>, Face>;
    using Triangulation = CGAL::Delaunay_triangulation_2<Kernel, Structure>;
    return {"CGAL, Delaunay triangulation and open cells", [points = InKernel(sites)]
            {
                Triangulation triangulation;
                triangulation.insert(points.begin(), points.end());
                for (const auto& face : triangulation.finite_face_handles())
                {
                    face->info() = triangulation.dual(face);
                }
                std::vector<Kernel::Point_2> corners;
                std::vector<std::size_t> ends;
                corners.reserve(6 * points.size());
                ends.reserve(points.size());
                for (const auto& vertex : triangulation.finite_vertex_handles())
                {
                    const auto begin = triangulation.incident_faces(vertex);
                    auto face = begin;
                    do
                    {
                        if (!triangulation.is_infinite(face))
                        {
                            corners.push_back(face->info());
                        }
                    } while (++face != begin);
                    ends.push_back(corners.size());
                }
                Keep(corners.size() + ends.size());
            }};
}
#endif

Case Voronoi(const Points& sites)
{
    const auto ours = [sites]
    {
        Zvl::VoronoiOwner diagram;
        Zvl::GenerateVoronoi(static_cast<std::int32_t>(sites.size()), sites.data(), nullptr, diagram.Get());
        Zvl::BuildVoronoiVertices(diagram.Get());
        Keep(Zvl::FirstVoronoiVertex(diagram.Get()));
    };
    std::vector<Peer> peers;
#ifdef BENCH_BOOST_POLYGON
    peers.push_back(BoostVoronoi(sites));
#endif
#ifdef BENCH_CGAL
    peers.push_back(CgalVoronoi(sites));
    peers.push_back(CgalDelaunay(sites));
#endif
    return {.ours = ours, .peers = peers, .items = static_cast<double>(sites.size())};
}

} // namespace

std::vector<Operation> GeometryOperations()
{
    return {
        {"`GetBoundingBox` of a disc, turned", "cells", false, TurnedBox},
        {"Voronoi diagram, uniform sites", "sites", false, [](int side) { return Voronoi(UniformSites(side)); }},
        {"Voronoi diagram, rough ring", "sites", false, [](int side) { return Voronoi(RingOfSites(side)); }},
    };
}

} // namespace Survey
