#include "measure_radius/Report.h"

#include "support/MapPicture.h"
#include "support/Plot.h"
#include "support/Text.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace MeasureRadius
{
namespace
{

using Examples::Expected;

constexpr double kSectionTolerance = 0.05; // mm, of one section's radius in the simulated scan
constexpr double kMeanTolerance = 0.01;

const std::array<cv::Scalar, 3> kSectionColours = {cv::Scalar(200, 110, 0), cv::Scalar(60, 150, 0),
                                                   cv::Scalar(0, 120, 230)};

const char* AlongName(const Measurement& measurement)
{
    return measurement.direction == Direction::AlongX ? "x" : "y";
}

const char* AcrossName(const Measurement& measurement)
{
    return measurement.direction == Direction::AlongX ? "y" : "x";
}

/** Circles at about a quarter, half and three quarters of the way across the map. */
std::vector<const SectionCircle*> Chosen(const Measurement& measurement)
{
    std::vector<const SectionCircle*> chosen;
    for (std::size_t quarter = 1; quarter <= kSectionColours.size(); ++quarter)
    {
        chosen.push_back(&measurement.circles[measurement.circles.size() * quarter / 4]);
    }
    return chosen;
}

std::vector<qPoint64f> Residuals(const SectionCircle& circle, const std::vector<qPoint64f>& points)
{
    std::vector<qPoint64f> residuals;
    residuals.reserve(points.size());
    for (const qPoint64f& point : points)
    {
        residuals.push_back({point.x, 1000.0 * circle.Residual(point)});
    }
    return residuals;
}

/** The arc of the circle over [low, high], on the side where the points lie. */
std::vector<qPoint64f> Arc(const SectionCircle& circle, double low, double high)
{
    const bool isConvex = circle.kept.front().y > circle.center.y;
    std::vector<qPoint64f> arc;
    for (int step = 0; step <= 200; ++step)
    {
        const double x = low + (high - low) * step / 200.0;
        const double square = circle.radius * circle.radius - (x - circle.center.x) * (x - circle.center.x);
        if (square >= 0.0)
        {
            arc.push_back({x, circle.center.y + (isConvex ? 1.0 : -1.0) * std::sqrt(square)});
        }
    }
    return arc;
}

/** Extremes of the points along one coordinate, a little widened. */
template <typename Coordinate>
Examples::Plot::Axis AxisOver(const std::string& label, const std::vector<qPoint64f>& points, Coordinate coordinate)
{
    const auto [low, high] = std::minmax_element(points.begin(), points.end(),
                                                 [&](const qPoint64f& left, const qPoint64f& right)
                                                 { return coordinate(left) < coordinate(right); });
    const double margin = 0.05 * (coordinate(*high) - coordinate(*low));
    return {label, coordinate(*low) - margin, coordinate(*high) + margin};
}

double X(const qPoint64f& point)
{
    return point.x;
}

double Y(const qPoint64f& point)
{
    return point.y;
}

std::vector<qPoint64f> AllPoints(const std::vector<const SectionCircle*>& circles)
{
    std::vector<qPoint64f> points;
    for (const SectionCircle* circle : circles)
    {
        points.insert(points.end(), circle->kept.begin(), circle->kept.end());
        points.insert(points.end(), circle->rejected.begin(), circle->rejected.end());
    }
    return points;
}

void PlotSections(cv::Mat& canvas, const cv::Rect& area, const Measurement& measurement)
{
    const std::vector<const SectionCircle*> chosen = Chosen(measurement);
    const std::vector<qPoint64f> points = AllPoints(chosen);
    const auto along = AxisOver(std::string(AlongName(measurement)) + " / mm", points, X);
    Examples::Plot plot(canvas, area, "three sections and their circles", along, AxisOver("height / mm", points, Y));
    for (std::size_t index = 0; index < chosen.size(); ++index)
    {
        plot.Dots(chosen[index]->rejected, Examples::Colours::kRejected, 1);
        plot.Dots(chosen[index]->kept, kSectionColours[index], 2);
        plot.Curve(Arc(*chosen[index], along.low, along.high), Examples::Colours::kFit);
    }
}

void PlotResiduals(cv::Mat& canvas, const cv::Rect& area, const Measurement& measurement)
{
    const std::vector<const SectionCircle*> chosen = Chosen(measurement);
    double reach = 0.0;
    for (const SectionCircle* circle : chosen)
    {
        reach = std::max(reach, 6000.0 * circle->RootMeanSquare());
    }
    const auto along = AxisOver(std::string(AlongName(measurement)) + " / mm", AllPoints(chosen), X);
    Examples::Plot plot(canvas, area, "distance from the circle", along, {"residual / um", -reach, reach});
    for (std::size_t index = 0; index < chosen.size(); ++index)
    {
        plot.Dots(Residuals(*chosen[index], chosen[index]->rejected), Examples::Colours::kRejected, 1);
        plot.Dots(Residuals(*chosen[index], chosen[index]->kept), kSectionColours[index], 1);
    }
}

void PlotRadii(cv::Mat& canvas, const cv::Rect& area, const Measurement& measurement)
{
    std::vector<qPoint64f> radii;
    for (const SectionCircle& circle : measurement.circles)
    {
        radii.push_back({circle.position, circle.radius});
    }
    const RadiusStatistics statistics(measurement.circles);
    const auto across = AxisOver(std::string(AcrossName(measurement)) + " of the section / mm", radii, X);
    Examples::Plot plot(canvas, area, "radius of each section, and the median", across,
                        AxisOver("radius / mm", radii, Y));
    plot.Curve({{across.low, statistics.median}, {across.high, statistics.median}}, Examples::Colours::kFit);
    plot.Dots(radii, Examples::Colours::kText, 4);
}

/** A plane through all heights, for the colours. */
qPlane3d64f ReferencePlane(const Zvl::Surface& surface)
{
    Zvl::SurfaceInputData data;
    Zvl::RetrieveSurfaceInputData(surface, &data);
    const qPoint64f scale{data.scale.x, data.scale.y};
    const qPoint64f offset{data.offset.x, data.offset.y};
    Zvl::RectangleROI whole(offset, static_cast<double>(data.width - 1) * scale.x,
                            static_cast<double>(data.height - 1) * scale.y, 0.0, data.width, data.height, scale, offset,
                            nullptr);
    Zvl::ThresholdHeight(surface, Zvl::GetNull<double>(), Zvl::GetNull<double>(), whole);
    qPlane3d64f plane{};
    Zvl::FitPlane(surface, whole.GetBoundingBox(), whole.GetMask(), &plane);
    return plane;
}

cv::Mat DrawMap(const Measurement& measurement)
{
    const qPlane3d64f plane = ReferencePlane(measurement.surface);
    Examples::MapPicture picture(measurement.surface, plane, Examples::TypicalRange(measurement.surface, plane, 0.5),
                                 measurement.title + ", height over the fitted plane");
    const std::vector<const SectionCircle*> chosen = Chosen(measurement);
    for (const SectionCircle& circle : measurement.circles)
    {
        const auto [low, high] = std::minmax_element(circle.kept.begin(), circle.kept.end(),
                                                     [](const qPoint64f& a, const qPoint64f& b) { return a.x < b.x; });
        const double at = circle.position;
        const bool alongX = measurement.direction == Direction::AlongX;
        picture.Line(alongX ? qPoint64f{low->x, at} : qPoint64f{at, low->x},
                     alongX ? qPoint64f{high->x, at} : qPoint64f{at, high->x}, Examples::Colours::kRegion);
    }

    const RadiusStatistics statistics(measurement.circles);
    picture.AddLegend(Examples::Symbol::Patch, Examples::Colours::kMissing, "no height");
    picture.AddLegend(Examples::Symbol::Line, Examples::Colours::kRegion, "section, as far as its points were kept");
    picture.AddLegend(Examples::Symbol::Line, Examples::Colours::kFit, "fitted circle, median radius");
    picture.AddLegend(Examples::Symbol::Dot, Examples::Colours::kRejected, "point, rejected");
    for (std::size_t index = 0; index < chosen.size(); ++index)
    {
        picture.AddLegend(Examples::Symbol::Dot, kSectionColours[index],
                          std::string("point kept, section at ") + AcrossName(measurement) + " = " +
                              Examples::NumberText(chosen[index]->position, 3) + " mm");
    }
    picture.AddText("");
    picture.AddText("median radius", Examples::MeasureText(statistics.median) + " mm");
    picture.AddText("mean radius", Examples::MeasureText(statistics.mean) + " mm");
    picture.AddText("standard deviation", Examples::MeasureText(statistics.deviation) + " mm");
    picture.AddText("sections", std::to_string(measurement.circles.size()));
    return picture.Compose();
}

} // namespace

RadiusStatistics::RadiusStatistics(const std::vector<SectionCircle>& circles)
{
    std::vector<double> radii;
    radii.reserve(circles.size());
    for (const SectionCircle& circle : circles)
    {
        radii.push_back(circle.radius);
    }
    std::sort(radii.begin(), radii.end());
    const auto count = static_cast<double>(radii.size());
    range = radii.back() - radii.front();
    middleHalf = radii[(3 * (radii.size() - 1) + 2) / 4] - radii[(radii.size() - 1) / 4];
    median = (radii[(radii.size() - 1) / 2] + radii[radii.size() / 2]) / 2.0;
    mean = std::accumulate(radii.begin(), radii.end(), 0.0) / count;
    double squares = 0.0;
    for (const double radius : radii)
    {
        squares += (radius - mean) * (radius - mean);
    }
    deviation = radii.size() > 1 ? std::sqrt(squares / (count - 1.0)) : 0.0;
}

Examples::ResultTable Tabulate(const Measurement& measurement, std::optional<double> nominalRadius)
{
    const auto expect = [&](double tolerance) {
        return nominalRadius ? std::optional(Expected{*nominalRadius, tolerance}) : std::nullopt;
    };

    Examples::ResultTable table;
    for (const SectionCircle& circle : measurement.circles)
    {
        table.Add({.feature = std::string("radius at ") + AcrossName(measurement) + " = " +
                              Examples::NumberText(circle.position, 3),
                   .unit = "mm",
                   .measured = circle.radius,
                   .expected = expect(kSectionTolerance),
                   .kept = circle.kept.size(),
                   .rejected = circle.rejected.size()});
    }
    const RadiusStatistics statistics(measurement.circles);
    table.Add({.feature = "mean radius",
               .unit = "mm",
               .measured = statistics.mean,
               .expected = expect(kMeanTolerance),
               .milliseconds = measurement.milliseconds});
    table.Add({.feature = "median radius", .unit = "mm", .measured = statistics.median});
    table.Add({.feature = "spread: standard deviation", .unit = "mm", .measured = statistics.deviation});
    table.Add({.feature = "spread: middle half", .unit = "mm", .measured = statistics.middleHalf});
    table.Add({.feature = "spread: all sections", .unit = "mm", .measured = statistics.range});
    return table;
}

cv::Mat DrawPicture(const Measurement& measurement)
{
    constexpr int kPlotHeight = 340;
    constexpr int kPlotTop = 70;
    constexpr int kPlotBottom = 60;
    constexpr int kPlotMargin = 90;

    const cv::Mat map = DrawMap(measurement);
    cv::Mat canvas(map.rows + kPlotTop + kPlotHeight + kPlotBottom, map.cols, CV_8UC3, Examples::Colours::kBackground);
    map.copyTo(canvas(cv::Rect(0, 0, map.cols, map.rows)));

    const int share = map.cols / 3;
    const auto area = [&](int index)
    { return cv::Rect(index * share + kPlotMargin, map.rows + kPlotTop, share - kPlotMargin - 20, kPlotHeight); };
    PlotSections(canvas, area(0), measurement);
    PlotResiduals(canvas, area(1), measurement);
    PlotRadii(canvas, area(2), measurement);
    return canvas;
}

} // namespace MeasureRadius
