#include "measure_bore/Report.h"

#include "support/PlaneDistance.h"
#include "support/Text.h"

#include <cmath>

namespace MeasureBore
{
namespace
{

using Examples::Expected;
using Examples::Result;
using Examples::ResultTable;

constexpr double kPi = 3.141592653589793;

/** What is expected where the truth is known, or nothing. */
template <typename Nominal>
std::optional<Expected> Expect(const std::optional<Truth>& truth, Nominal nominal, double tolerance)
{
    return truth ? std::optional(Expected{nominal(*truth), tolerance}) : std::nullopt;
}

void AddDisplacement(const Measurement& measurement, const std::optional<Truth>& truth, ResultTable* table)
{
    if (!measurement.anchor)
    {
        return;
    }
    const Zvl::Anchor& found = *measurement.anchor;
    table->Add({.feature = "displacement x",
                .unit = "mm",
                .measured = found.x,
                .expected = Expect(
                    truth, [](const Truth& t) { return t.pose.displacement.x; }, 0.1),
                .milliseconds = measurement.searchMilliseconds});
    table->Add({.feature = "displacement y",
                .unit = "mm",
                .measured = found.y,
                .expected = Expect(
                    truth, [](const Truth& t) { return t.pose.displacement.y; }, 0.1)});
    table->Add({.feature = "displacement angle",
                .unit = "deg",
                .measured = found.angle,
                .expected = Expect(
                    truth, [](const Truth& t) { return t.pose.displacement.angle; }, 0.3)});
}

void AddPlane(const MeasuredPlane& plane, const std::optional<Truth>& truth, ResultTable* table)
{
    const qPoint3d64f& normal = plane.plane.normal;
    const auto tilt = [](const Truth& t) { return std::atan(std::hypot(t.pose.slopeX, t.pose.slopeY)) * 180.0 / kPi; };
    table->Add({.feature = "plane tilt",
                .unit = "deg",
                .measured = std::atan2(std::hypot(normal.x, normal.y), normal.z) * 180.0 / kPi,
                .expected = Expect(truth, tilt, 0.01),
                .kept = plane.kept,
                .rejected = plane.rejected,
                .milliseconds = plane.milliseconds});
    table->Add({.feature = "plane flatness", .unit = "mm", .measured = plane.flatness});
    if (plane.intensity)
    {
        table->Add({.feature = "plane mean intensity", .unit = "", .measured = plane.intensity});
    }
}

void AddCircle(const MeasuredCircle& circle, const std::optional<Truth>& truth, ResultTable* table)
{
    const auto center = [](const Truth& t) { return Displace(t.pose, t.drawing.bore); };
    table->Add({.feature = "bore radius",
                .unit = "mm",
                .measured = circle.radius,
                .expected = Expect(
                    truth, [](const Truth& t) { return t.drawing.boreRadius; }, 0.01),
                .kept = circle.kept.size(),
                .rejected = circle.rejected.size(),
                .milliseconds = circle.milliseconds});
    table->Add({.feature = "bore centre x",
                .unit = "mm",
                .measured = circle.center.x,
                .expected = Expect(
                    truth, [&](const Truth& t) { return center(t).x; }, 0.01)});
    table->Add({.feature = "bore centre y",
                .unit = "mm",
                .measured = circle.center.y,
                .expected = Expect(
                    truth, [&](const Truth& t) { return center(t).y; }, 0.01)});
    table->Add({.feature = "bore roundness", .unit = "mm", .measured = circle.roundness});
}

/** The seat's place is where the normal through the sphere's centre meets the plate. */
void AddSphere(const MeasuredSphere& sphere, const qPlane3d64f& plane, const std::optional<Truth>& truth,
               ResultTable* table)
{
    const double height = Examples::PlaneDistance(plane, sphere.center);
    const auto place = [](const Truth& t) { return Displace(t.pose, t.drawing.seat); };
    table->Add({.feature = "seat sphere radius",
                .unit = "mm",
                .measured = sphere.radius,
                .expected = Expect(
                    truth, [](const Truth& t) { return t.drawing.seatSphereRadius; }, 0.01),
                .kept = sphere.kept.size(),
                .rejected = sphere.rejected.size(),
                .milliseconds = sphere.milliseconds});
    table->Add({.feature = "seat depth",
                .unit = "mm",
                .measured = sphere.radius - height,
                .expected = Expect(
                    truth, [](const Truth& t) { return t.drawing.seatDepth; }, 0.01)});
    table->Add({.feature = "seat centre x",
                .unit = "mm",
                .measured = sphere.center.x - height * plane.normal.x,
                .expected = Expect(
                    truth, [&](const Truth& t) { return place(t).x; }, 0.01)});
    table->Add({.feature = "seat centre y",
                .unit = "mm",
                .measured = sphere.center.y - height * plane.normal.y,
                .expected = Expect(
                    truth, [&](const Truth& t) { return place(t).y; }, 0.01)});
}

std::vector<qPoint64f> FromAbove(const std::vector<qPoint3d64f>& points)
{
    std::vector<qPoint64f> flat;
    flat.reserve(points.size());
    for (const qPoint3d64f& point : points)
    {
        flat.push_back({point.x, point.y});
    }
    return flat;
}

void DrawRegion(const std::shared_ptr<Zvl::ROI>& region, Examples::MapPicture* picture)
{
    picture->OutlineMask(region->GetBoundingBox(), region->GetMask(), Examples::Colours::kRegion);
}

void DrawCircle(const MeasuredCircle& circle, Examples::MapPicture* picture)
{
    DrawRegion(circle.region, picture);
    picture->Dots(circle.kept, Examples::Colours::kKept, 5.0);
    picture->Dots(circle.rejected, Examples::Colours::kRejected, 5.0);
    picture->Circle(circle.center, circle.radius, Examples::Colours::kFit);
}

void AddPanel(const Measurement& measurement, const ResultTable& table, Examples::MapPicture* picture)
{
    using Examples::Symbol;
    picture->AddLegend(Symbol::Patch, Examples::Colours::kMissing, "no height");
    picture->AddLegend(Symbol::Line, Examples::Colours::kRegion, "border of a region's mask");
    if (measurement.circle)
    {
        picture->AddLegend(Symbol::Dot, Examples::Colours::kKept, "edge point, kept");
        picture->AddLegend(Symbol::Dot, Examples::Colours::kRejected, "point, rejected");
        picture->AddLegend(Symbol::Line, Examples::Colours::kFit, "fitted circle and its centre");
    }
    picture->AddText("");
    picture->AddText("", "measured", measurement.anchor ? "deviation" : "");
    for (const Result& result : table.Results())
    {
        const double measured = result.measured.value_or(0.0);
        picture->AddText(result.feature, Examples::MeasureText(measured) + " " + result.unit,
                         result.expected ? Examples::DeviationText(measured - result.expected->nominal) : "");
    }
    if (!measurement.remark.empty())
    {
        picture->AddText(measurement.remark);
    }
}

} // namespace

ResultTable Tabulate(const Measurement& measurement, const std::optional<Truth>& truth)
{
    ResultTable table;
    AddDisplacement(measurement, truth, &table);
    AddPlane(measurement.plane, truth, &table);
    if (measurement.circle)
    {
        AddCircle(*measurement.circle, truth, &table);
    }
    if (measurement.sphere)
    {
        AddSphere(*measurement.sphere, measurement.plane.plane, truth, &table);
    }
    return table;
}

cv::Mat DrawPicture(const Measurement& measurement, const ResultTable& table)
{
    Examples::MapPicture picture(measurement.surface, measurement.plane.plane, measurement.colours,
                                 measurement.title + ", height over the fitted plane");
    DrawRegion(measurement.plane.region, &picture);
    if (measurement.sphere)
    {
        DrawRegion(measurement.sphere->region, &picture);
        picture.Dots(FromAbove(measurement.sphere->rejected), Examples::Colours::kRejected, 3.0);
    }
    if (measurement.circle)
    {
        DrawCircle(*measurement.circle, &picture);
    }
    AddPanel(measurement, table, &picture);
    if (measurement.circle && !measurement.circle->rejected.empty())
    {
        picture.AddMagnifier(measurement.circle->rejected.front(), 0.25 * measurement.circle->radius,
                             "around the first rejected edge point");
    }
    return picture.Compose();
}

} // namespace MeasureBore
