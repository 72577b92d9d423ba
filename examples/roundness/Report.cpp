#include "roundness/Report.h"

#include "roundness/PolarPlot.h"
#include "support/Drawing.h"
#include "support/Panel.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Roundness
{
namespace
{

using Examples::ResultTable;
using Examples::Symbol;

const cv::Scalar kPoint(120, 120, 120);
const cv::Scalar kTruth(255, 255, 255);
const cv::Scalar kRing(225, 245, 215);

/** How each kind is shown. */
struct Style
{
    cv::Scalar colour;
    const char* text;
};

const std::array<Style, kKinds> kStyles{{{Examples::Colours::kFit, "least-squares circle"},
                                         {{60, 150, 0}, "minimum zone: the narrowest ring around all points"},
                                         {{200, 110, 0}, "inscribed circle: the largest that holds no point"},
                                         {{0, 120, 230}, "circumscribed circle: the smallest around all points"}}};

const Style& StyleOf(const Reference& reference)
{
    return kStyles[static_cast<std::size_t>(reference.kind)];
}

struct Value
{
    std::string feature;
    double value;
};

std::vector<Value> ValuesOf(const Reference& reference)
{
    const std::string name = Name(reference.kind);
    return {{name + ", radius", reference.radius},     {name + ", centre x", reference.center.x},
            {name + ", centre y", reference.center.y}, {name + ", nearest", reference.inner},
            {name + ", farthest", reference.outer},    {name + ", roundness", reference.Roundness()}};
}

const Reference& MiddleOfPlot(const Measurement& measurement)
{
    const auto& references = measurement.references;
    const auto zone = std::find_if(references.begin(), references.end(),
                                   [](const Reference& found) { return found.kind == Kind::MinimumZone; });
    return zone == references.end() ? references.front() : *zone;
}

void DrawReference(const Reference& reference, PolarPlot* plot)
{
    const cv::Scalar& colour = StyleOf(reference).colour;
    if (reference.kind == Kind::MinimumZone)
    {
        plot->Circle(reference.center, reference.inner, colour);
        plot->Circle(reference.center, reference.outer, colour);
        return;
    }
    plot->Circle(reference.center, reference.radius, colour);
}

void DrawForm(const Measurement& measurement, const std::optional<BoreForm>& truth, PolarPlot* plot)
{
    plot->Dots(measurement.kept, kPoint);
    plot->Dots(measurement.rejected, Examples::Colours::kRejected);
    for (const Reference& reference : measurement.references)
    {
        DrawReference(reference, plot);
    }
    if (truth)
    {
        plot->ClosedCurve(truth->Points(), kTruth, 1);
    }
    plot->Labels();
}

Examples::Panel Legend(const Measurement& measurement, bool isFormKnown)
{
    Examples::Panel panel;
    panel.AddLegend(Symbol::Dot, kPoint, "edge point, kept");
    panel.AddLegend(Symbol::Dot, Examples::Colours::kRejected, "edge point, rejected");
    if (isFormKnown)
    {
        panel.AddLegend(Symbol::Line, kTruth, "true form");
    }
    for (const Reference& reference : measurement.references)
    {
        panel.AddLegend(Symbol::Line, StyleOf(reference).colour, StyleOf(reference).text);
    }
    panel.AddText("");
    return panel;
}

} // namespace

ResultTable Tabulate(const Measurement& measurement, const std::optional<BoreForm>& truth)
{
    constexpr double kTolerance = 0.004; // mm; a few points decide, and their noise widens every ring

    ResultTable table;
    for (const Reference& reference : measurement.references)
    {
        const std::vector<Value> nominal =
            truth ? ValuesOf(SearchReference(reference.kind, truth->Points(), truth->center)) : std::vector<Value>{};
        std::size_t index = 0;
        for (const Value& value : ValuesOf(reference))
        {
            Examples::Result result{.feature = value.feature, .unit = "mm", .measured = value.value};
            if (truth)
            {
                result.expected = {nominal[index++].value, kTolerance};
            }
            if (table.Results().empty()) // the first line tells of all
            {
                result.kept = measurement.kept.size();
                result.rejected = measurement.rejected.size();
                result.milliseconds = measurement.milliseconds;
            }
            table.Add(result);
        }
    }
    return table;
}

cv::Mat DrawPicture(const std::string& title, const Measurement& measurement, const std::optional<BoreForm>& truth,
                    const ResultTable& table)
{
    constexpr int kSize = 900;
    constexpr int kLeft = 60;
    constexpr int kTop = 70;
    constexpr int kRight = kLeft + kSize + 60;
    cv::Mat canvas(kTop + kSize + 50, kRight + Examples::Panel::kWidth, CV_8UC3, Examples::Colours::kBackground);
    Examples::WriteText(canvas, title, kLeft, 34, 0.75);

    const Reference& middle = MiddleOfPlot(measurement);
    PolarPlot plot(canvas, {kLeft, kTop, kSize, kSize}, middle.center, {middle.inner, middle.outer}, kRing);
    DrawForm(measurement, truth, &plot);
    Examples::WriteText(canvas,
                        "deviations in um, magnified " + std::to_string(std::lround(plot.Magnification())) +
                            " times, about the centre of: " + Name(middle.kind),
                        kLeft + kSize / 2, kTop + kSize + 30, 0.55, Examples::Align::Middle);

    Examples::Panel panel = Legend(measurement, truth.has_value());
    panel.AddResults(table);
    panel.Draw(canvas, {kRight, kTop});
    return canvas;
}

} // namespace Roundness
