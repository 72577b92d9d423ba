// Lines, circles, spheres, planes and polynomials.

#include "Chart.h"
#include "Pictures.h"

#include "Fitting/CircleCircumscribed.h"
#include "Fitting/CircleInscribed.h"
#include "Geometry/Voronoi.h"
#include "snippets/Scan.h"

#include <array>
#include <random>
#include <string>

namespace Pictures
{
namespace
{

constexpr double kPi = 3.141592653589793;

/** An edge with lobes and some roughness. */
std::vector<qPoint64f> LobedEdge(int count, double lobes)
{
    std::mt19937 generator(11);
    std::normal_distribution<double> rough(0.0, 0.06);
    std::vector<qPoint64f> points;
    for (int index = 0; index < count; ++index)
    {
        const double angle = 2.0 * kPi * (index + 0.31) / count;
        const double radius = 4.0 + lobes * std::cos(3.0 * angle) + rough(generator);
        points.push_back({radius * std::cos(angle), radius * std::sin(angle)});
    }
    return points;
}

} // namespace

Svg LineFits()
{
    std::mt19937 generator(5);
    std::normal_distribution<double> noise(0.0, 0.1);
    std::vector<qPoint64f> points;
    for (int index = 0; index < 90; ++index)
    {
        const double x = 0.11 * index;
        points.push_back({x, 1.0 + 0.35 * x + noise(generator) + (index % 4 == 3 ? 0.4 * x + 0.8 : 0.0)});
    }
    double slope = 0.0;
    double intercept = 0.0;
    Svg svg(760, 360);
    Chart chart(svg, {45, 40, 460, 280}, "A line, and a quarter of the points above it", {0.0, 10.0}, {0.0, 10.0});
    chart.Dots(points, "dot-ink", 2.5);
    const auto draw = [&](double at, const std::string& style, const std::string& name)
    {
        chart.Curve({{0.0, intercept}, {10.0, 10.0 * slope + intercept}}, style);
        svg.Line({530, at}, {560, at}, style);
        svg.Text({570, at + 5}, name);
    };
    Zvl::FitLine(points.data(), nullptr, points.size(), &slope, &intercept);
    draw(80, "line blue dashed", "FitLine");
    Zvl::FitLineIterative(points.data(), points.size(), 25.0, &slope, &intercept, nullptr, nullptr);
    draw(110, "line orange", "FitLineIterative, 25 %");
    Zvl::FitLineRansac(points.data(), points.size(), 0.0, 500, 0.2, &slope, &intercept);
    draw(140, "line green thick dashed", "FitLineRansac");
    return svg;
}

Svg CircleFits()
{
    const std::vector<qPoint64f> edge = LobedEdge(120, 0.25);
    Svg svg(760, 420);
    Chart chart(svg, {45, 40, 350, 350}, "The edge of a bore with three lobes", {-5.0, 5.0}, {-5.0, 5.0});
    chart.Dots(edge, "dot-ink", 2.2);
    const auto legend = [&](double at, const std::string& style, const std::string& name, const std::string& detail)
    {
        svg.Line({420, at}, {450, at}, style);
        svg.Text({460, at + 5}, name);
        svg.Text({460, at + 23}, detail, "text small");
    };
    qPoint64f center{};
    double radius = 0.0;
    double outer = 0.0;
    Zvl::FitCircle(edge.data(), edge.size(), 0.0, Zvl::CIRCLE_LSC, &center, &radius, nullptr, nullptr, nullptr, nullptr,
                   nullptr, nullptr, nullptr);
    chart.Circle(center, radius, "line blue");
    legend(70, "line blue", "least squares", "radius " + Fixed(radius, 3));
    Zvl::FitCircle(edge.data(), edge.size(), 0.0, Zvl::CIRCLE_MZC, &center, &radius, &outer, nullptr, nullptr, nullptr,
                   nullptr, nullptr, nullptr);
    chart.Circle(center, radius, "line orange");
    chart.Circle(center, outer, "line orange");
    legend(130, "line orange", "minimum zone", "width " + Fixed(outer - radius, 3));
    Zvl::FitCircle_MIC(edge.data(), edge.size(), &center, &radius, nullptr, nullptr, nullptr, nullptr, nullptr);
    chart.Circle(center, radius, "line green dashed");
    legend(190, "line green dashed", "maximum inscribed", "radius " + Fixed(radius, 3));
    Zvl::FitCircle_MCC(edge.data(), edge.size(), &center, &radius, nullptr, nullptr, nullptr, nullptr, nullptr);
    chart.Circle(center, radius, "line dashed");
    legend(250, "line dashed", "minimum circumscribed", "radius " + Fixed(radius, 3));
    svg.Text({420, 320}, "The last two are steps on the way to the minimum", "text small");
    svg.Text({420, 338}, "zone; hosts get the ring between its circles.", "text small");
    return svg;
}

Svg VoronoiCells()
{
    const std::vector<qPoint64f> edge = LobedEdge(26, 0.5);
    const Zvl::VoronoiRect view = {{-6.0, -6.0}, {6.0, 6.0}};
    Zvl::VoronoiDiagram diagram;
    Zvl::GenerateVoronoi(static_cast<int>(edge.size()), edge.data(), &view, &diagram);
    Zvl::BuildVoronoiVertices(&diagram);
    Svg svg(760, 420);
    Chart chart(svg, {45, 40, 350, 350}, "Voronoi diagram of edge points", {-6.0, 6.0}, {-6.0, 6.0});
    for (const Zvl::VoronoiSite& site : Zvl::SitesOf(diagram))
    {
        for (const Zvl::VoronoiGraphEdge* border = site.edges; border != nullptr; border = border->next)
        {
            chart.Curve({border->pos[0], border->pos[1]}, "line blue thin");
        }
    }
    std::vector<qPoint64f> corners;
    for (const Zvl::VoronoiVertex* vertex = Zvl::FirstVoronoiVertex(&diagram); vertex != nullptr; vertex = vertex->next)
    {
        if (std::hypot(vertex->pos.x, vertex->pos.y) < 3.0)
        {
            corners.push_back(vertex->pos);
        }
    }
    Zvl::FreeVoronoi(&diagram);
    qPoint64f center{};
    double radius = 0.0;
    Zvl::FitCircle_MIC(edge.data(), edge.size(), &center, &radius, nullptr, nullptr, nullptr, nullptr, nullptr);
    chart.Dots(corners, "dot-blue", 2.5);
    chart.Circle(center, radius, "line orange");
    chart.Dots({center}, "dot-orange", 4);
    chart.Dots(edge, "dot-ink", 3);
    svg.Circle({430, 70}, 3, "dot-ink");
    svg.Text({450, 75}, "edge points, each with its cell");
    svg.Circle({430, 100}, 2.5, "dot-blue");
    svg.Text({450, 105}, "corners of cells, as far from three points");
    svg.Circle({430, 130}, 4, "dot-orange");
    svg.Text({450, 135}, "the corner that is farthest from them:");
    svg.Text({450, 155}, "the centre of the largest empty circle");
    return svg;
}

Svg TrimmedCircle()
{
    std::mt19937 generator(2);
    std::normal_distribution<double> rough(0.0, 0.05);
    std::uniform_real_distribution<double> anywhere(-5.0, 5.0);
    std::vector<qPoint64f> points;
    for (int index = 0; index < 70; ++index)
    {
        const double angle = 0.9 + 2.2 * index / 70.0;
        const double radius = 3.5 + rough(generator);
        points.push_back({radius * std::cos(angle), radius * std::sin(angle) - 1.0});
    }
    for (int index = 0; index < 50; ++index)
    {
        points.push_back({anywhere(generator), 0.1 * anywhere(generator) - 5.0});
    }
    qPoint64f center{};
    double radius = 0.0;
    Svg svg(760, 420);
    Chart chart(svg, {45, 40, 350, 350}, "An arc among points of other things", {-6.0, 6.0}, {-7.0, 5.0});
    Zvl::FitCircle(points.data(), points.size(), 42.0, Zvl::CIRCLE_LSC, &center, &radius, nullptr, nullptr, nullptr,
                   nullptr, nullptr, nullptr, nullptr);
    chart.Circle(center, radius, "line blue dashed");
    unsigned seed = 1;
    std::vector<int> outliers(points.size());
    Zvl::FitCircleByRLTS(points.data(), points.size(), 42.0, center, radius, outliers.data(), &seed, 0);
    for (std::size_t index = 0; index < points.size(); ++index)
    {
        chart.Dots({points[index]}, outliers[index] != 0 ? "dot-orange" : "dot-ink", 2.5);
    }
    chart.Circle(center, radius, "line green thick");
    svg.Line({420, 70}, {450, 70}, "line blue dashed");
    svg.Text({460, 75}, "FitCircle, the 42 % farthest rejected");
    svg.Line({420, 100}, {450, 100}, "line green thick");
    svg.Text({460, 105}, "FitCircleByRLTS, 42 %: radius " + Fixed(radius, 3));
    svg.Circle({435, 130}, 3, "dot-orange");
    svg.Text({460, 135}, "what it rejected");
    return svg;
}

Svg SphereAndPlane()
{
    std::mt19937 generator(9);
    std::normal_distribution<double> noise(0.0, 0.03);
    const Zvl::Surface scan = MakeScan(
        [&](double x, double y)
        {
            const double square = 25.0 - (x - 8.0) * (x - 8.0) - (y - 6.0) * (y - 6.0);
            const double ball = square > 0.0 ? std::sqrt(square) - 1.0 : 0.0;
            return std::fmax(1.0 + 0.02 * x, ball) + noise(generator);
        });
    Zvl::CircleROI cap({8.0, 6.0}, 0.0, 3.2, 0.0, 360.0, kColumns, kRows, kCell, kOrigin, nullptr);
    qPoint3d64f center{};
    double radius = 0.0;
    std::vector<qPoint3d64f> points;
    Zvl::FitSphere(scan, cap.GetBoundingBox(), cap.GetMask(), &center, &radius, points, nullptr, 2.0, nullptr, nullptr,
                   4);
    Zvl::RectangleROI plate(0.0, 0.0, 2.5, 11.9, 0.0, kColumns, kRows, kCell, kOrigin, nullptr);
    qPlane3d64f plane{};
    Zvl::FitPlane(scan, plate.GetBoundingBox(), plate.GetMask(), &plane);

    Svg svg(760, 410);
    Chart chart(svg, {45, 40, 480, 330}, "The row through the middle", {0.0, 16.0}, {-6.2, 4.8});
    std::vector<qPoint64f> row;
    std::vector<qPoint64f> onPlane;
    for (std::size_t column = 0; column < kColumns; ++column)
    {
        const double x = static_cast<double>(column) * kCell.x;
        row.push_back({x, HeightAt(scan, 60, column) * kCount});
        onPlane.push_back(
            {x, plane.point.z -
                    (plane.normal.x * (x - plane.point.x) + plane.normal.y * (6.0 - plane.point.y)) / plane.normal.z});
    }
    chart.Dots(row, "dot-ink", 1.6);
    chart.Curve(onPlane, "line blue");
    chart.Circle({center.x, center.z}, radius, "line orange");
    chart.Dots({{center.x, center.z}}, "dot-orange", 4);
    svg.Line({550, 70}, {580, 70}, "line orange");
    svg.Text({590, 75}, "FitSphere");
    svg.Text({590, 95}, "radius " + Fixed(radius, 3), "text small");
    svg.Line({550, 125}, {580, 125}, "line blue");
    svg.Text({590, 130}, "FitPlane");
    svg.Text({590, 150}, "slope " + Fixed(-plane.normal.x / plane.normal.z, 3), "text small");
    return svg;
}

Svg Polynomials()
{
    std::mt19937 generator(4);
    std::normal_distribution<double> noise(0.0, 0.08);
    std::vector<qPoint64f> points;
    for (int index = 0; index <= 60; ++index)
    {
        const double x = -3.0 + 0.1 * index;
        points.push_back({x, 0.15 * x * x * x - 0.8 * x + 0.5 + noise(generator)});
    }
    Svg svg(760, 330);
    Chart chart(svg, {45, 40, 480, 250}, "Degrees 1, 2 and 3 through the same points", {-3.0, 3.0}, {-2.0, 3.0});
    chart.Dots(points, "dot-ink", 2);
    const char* const styles[] = {"line blue dashed", "line green dashed", "line orange thick"};
    for (std::size_t degree = 1; degree <= 3; ++degree)
    {
        std::array<double, 4> coefficients{};
        Zvl::FitPolynomial(points.data(), points.size(), degree, coefficients.data());
        std::vector<qPoint64f> curve;
        for (int index = 0; index <= 120; ++index)
        {
            const double x = -3.0 + 0.05 * index;
            curve.push_back({x, Zvl::CalculatePolynomialValue(coefficients.data(), degree, x)});
        }
        const char* const style = styles[degree - 1];
        chart.Curve(curve, style);
        const double at = 40.0 + 30.0 * static_cast<double>(degree);
        svg.Line({550, at}, {580, at}, style);
        svg.Text({590, at + 5}, "degree " + std::to_string(degree));
    }
    return svg;
}

} // namespace Pictures
