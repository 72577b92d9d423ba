#include "profile_gauge/Report.h"

#include "support/Drawing.h"
#include "support/Panel.h"
#include "support/Plot.h"
#include "support/Statistics.h"
#include "support/Text.h"

#include <algorithm>
#include <cmath>

namespace ProfileGauge
{
namespace
{

using Examples::Expected;
using Examples::Plot;
using Examples::ResultTable;
using Examples::Symbol;

const cv::Scalar kItem(170, 170, 170);
const cv::Scalar kLand(200, 110, 0);
const cv::Scalar kWall(60, 150, 0);
const cv::Scalar kFloor(0, 120, 230);
const cv::Scalar& kResult = Examples::Colours::kFit;
const cv::Scalar& kTruth = Examples::Colours::kText;

/** A measured value and the true one, as fields of a reading and of a groove. */
struct Feature
{
    std::string name;
    double Reading::*measured;
    double Groove::*truth;
};

const Feature kWidth{"width", &Reading::width, &Groove::width};
const Feature kDepth{"depth", &Reading::depth, &Groove::depth};

std::vector<double> Measured(const Survey& survey, const Feature& feature)
{
    std::vector<double> values;
    for (const std::optional<Reading>& reading : survey.readings)
    {
        if (reading)
        {
            values.push_back((*reading).*feature.measured);
        }
    }
    return values;
}

std::vector<double> True(const std::vector<Groove>& truth, const Feature& feature)
{
    std::vector<double> values;
    std::transform(truth.begin(), truth.end(), std::back_inserter(values),
                   [&](const Groove& groove) { return groove.*feature.truth; });
    return values;
}

/** Largest amount by which a line scan is off the truth. */
double WorstDeviation(const std::vector<Groove>& truth, const Survey& survey, const Feature& feature)
{
    double worst = 0.0;
    for (std::size_t scan = 0; scan < truth.size(); ++scan)
    {
        if (const std::optional<Reading>& reading = survey.readings[scan])
        {
            worst = std::max(worst, std::abs((*reading).*feature.measured - truth[scan].*feature.truth));
        }
    }
    return worst;
}

void AddFeature(const Recording& recording, const Survey& survey, const Feature& feature, ResultTable* table)
{
    constexpr double kMeanTolerance = 0.001; // mm
    constexpr double kScanTolerance = 0.008;

    const Examples::Statistics found(Measured(survey, feature));
    std::optional<Expected> mean;
    std::optional<Expected> spread;
    if (recording.truth)
    {
        const Examples::Statistics truth(True(*recording.truth, feature));
        mean = Expected{truth.mean, kMeanTolerance};
        spread = Expected{truth.deviation, kMeanTolerance};
    }
    table->Add({.feature = feature.name + ", mean", .unit = "mm", .measured = found.mean, .expected = mean});
    table->Add({.feature = "  standard deviation", .unit = "mm", .measured = found.deviation, .expected = spread});
    table->Add({.feature = "  smallest", .unit = "mm", .measured = found.low});
    table->Add({.feature = "  largest", .unit = "mm", .measured = found.high});
    if (recording.truth)
    {
        table->Add({.feature = "  worst error of a scan",
                    .unit = "mm",
                    .measured = WorstDeviation(*recording.truth, survey, feature),
                    .expected = {{0.0, kScanTolerance}}});
    }
}

// ---------------------------------------------------------------------------------------------------------
// Picture

void DrawRegion(const Zvl::RoiProfile& region, const cv::Scalar& colour, Plot* plot)
{
    if (const auto* composed = dynamic_cast<const Zvl::ComposedRoiProfile*>(&region))
    {
        std::for_each(composed->Begin(), composed->End(),
                      [&](const auto& member) { DrawRegion(*member, colour, plot); });
    }
    if (const auto* polygon = dynamic_cast<const Zvl::PolygonRoiProfile*>(&region))
    {
        std::vector<qPoint64f> corners;
        for (const Zvl::Point2d<double>& corner : polygon->GetShape())
        {
            corners.push_back({corner.x, corner.y});
        }
        plot->Curve(corners, colour);
    }
}

/** A region's outline, and the items in it. */
void DrawPlace(const Zvl::Profile& scan, Zvl::RoiProfile& region, const cv::Scalar& colour, Plot* plot)
{
    DrawRegion(region, colour, plot);
    plot->Dots(PointsIn(scan, region), colour, 2);
}

/** Land and floor as lines, and the two dimensions between them. */
void DrawResult(const Reading& reading, const Groove& drawing, Plot* plot)
{
    const qPoint64f& left = reading.leftEdge;
    const qPoint64f& right = reading.rightEdge;
    const qPoint64f middle = reading.land.At((left.x + right.x) / 2.0);
    const qPoint64f& along = reading.land.direction;
    const auto place = [&](double across, double up) {
        return qPoint64f{middle.x + across * along.x - up * along.y, middle.y + across * along.y + up * along.x};
    };
    const double reach = (drawing.width + drawing.draft) / 2.0 + 0.5 * drawing.land;
    plot->Curve({place(-reach, 0.0), place(reach, 0.0)}, kResult, 2);
    plot->Curve({place(0.0, 0.0), place(0.0, -reading.depth)}, kResult, 2);
    plot->Curve({left, right}, kResult, 2);
    plot->Dots({left, right}, kResult, 5);
    // On both sides of the line of the depth, and on both sides of that of the width.
    plot->Label(place(0.0, -0.45 * reading.depth), "width " + Examples::MeasureText(reading.width) + " mm",
                Examples::Align::Right);
    plot->Label(place(0.0, -0.75 * reading.depth), "depth " + Examples::MeasureText(reading.depth) + " mm",
                Examples::Align::Left);
}

void PlotScan(cv::Mat& canvas, const cv::Rect& area, const Recording& recording, const Survey& survey,
              std::size_t index)
{
    const Groove& groove = recording.drawing;
    const Reading& reading = *survey.readings[index];
    const Zvl::Profile& scan = recording.scans[index].profile;
    const qPoint64f middle = reading.land.At((reading.leftEdge.x + reading.rightEdge.x) / 2.0);
    const double across = (0.75 * groove.width + groove.draft / 2.0 + groove.land);
    const double up = groove.depth;
    Plot plot(canvas, area, "line scan at y = " + Examples::NumberText(recording.scans[index].position, 3) + " mm",
              {"x / mm", middle.x - across, middle.x + across},
              {"height / mm", middle.y - 1.6 * up, middle.y + 0.6 * up});
    std::vector<qPoint64f> points = PointsOf(scan);
    points.erase(std::remove_if(points.begin(), points.end(),
                                [&](const qPoint64f& point) { return std::abs(point.x - middle.x) > across; }),
                 points.end());
    plot.Dots(points, kItem, 2);
    DrawPlace(scan, *reading.regions.lands, kLand, &plot);
    DrawPlace(scan, *reading.regions.leftWall, kWall, &plot);
    DrawPlace(scan, *reading.regions.rightWall, kWall, &plot);
    DrawPlace(scan, *reading.regions.floor, kFloor, &plot);
    DrawResult(reading, groove, &plot);
}

/** The index of the middle one of the scans that were measured. */
std::size_t MiddleReading(const Survey& survey)
{
    std::vector<std::size_t> measured;
    for (std::size_t index = 0; index < survey.readings.size(); ++index)
    {
        if (survey.readings[index])
        {
            measured.push_back(index);
        }
    }
    return measured[measured.size() / 2];
}

/** The values of one feature along the groove. */
void PlotFeature(cv::Mat& canvas, const cv::Rect& area, const Recording& recording, const Survey& survey,
                 const Feature& feature)
{
    std::vector<qPoint64f> found;
    std::vector<qPoint64f> truth;
    for (std::size_t index = 0; index < recording.scans.size(); ++index)
    {
        const double position = recording.scans[index].position;
        if (survey.readings[index])
        {
            found.push_back({position, (*survey.readings[index]).*feature.measured});
        }
        if (recording.truth)
        {
            truth.push_back({position, (*recording.truth)[index].*feature.truth});
        }
    }
    const Examples::Statistics values(Measured(survey, feature));
    const double margin = 0.1 * (values.high - values.low);
    Plot plot(canvas, area, feature.name + " along the groove",
              {"y / mm", recording.scans.front().position, recording.scans.back().position},
              {feature.name + " / mm", (values.low - margin), (values.high + margin)});
    plot.Curve(truth, kTruth);
    plot.Dots(found, kResult, 3);
}

} // namespace

ResultTable Tabulate(const Recording& recording, const Survey& survey)
{
    const std::size_t measured = Measured(survey, kWidth).size();
    const std::size_t all = survey.readings.size();
    const std::optional<Expected> share = recording.truth ? std::optional(Expected{100.0, 0.0}) : std::nullopt;
    ResultTable table;
    table.Add({.feature = "line scans measured",
               .unit = "%",
               .measured = 100.0 * static_cast<double>(measured) / static_cast<double>(all),
               .expected = share,
               .kept = measured,
               .rejected = all - measured,
               .milliseconds = survey.milliseconds});
    AddFeature(recording, survey, kWidth, &table);
    AddFeature(recording, survey, kDepth, &table);
    return table;
}

cv::Mat DrawPicture(const Recording& recording, const Survey& survey, const ResultTable& table)
{
    constexpr int kRight = 1160; // end of the diagrams
    cv::Mat canvas(990, kRight + 40 + Examples::Panel::kWidth, CV_8UC3, Examples::Colours::kBackground);
    Examples::WriteText(canvas, recording.title, 90, 34, 0.75);
    PlotScan(canvas, {90, 110, kRight - 90, 460}, recording, survey, MiddleReading(survey));
    PlotFeature(canvas, {90, 680, 480, 250}, recording, survey, kWidth);
    PlotFeature(canvas, {680, 680, kRight - 680, 250}, recording, survey, kDepth);

    Examples::Panel panel;
    panel.AddLegend(Symbol::Dot, kItem, "item of the scan, in no region");
    panel.AddLegend(Symbol::Dot, kLand, "region of the lands, and its items");
    panel.AddLegend(Symbol::Dot, kWall, "regions of the walls");
    panel.AddLegend(Symbol::Dot, kFloor, "region of the floor");
    panel.AddLegend(Symbol::Line, kResult, "line of the lands, width at half depth, depth");
    panel.AddText("");
    panel.AddResults(table);
    panel.Draw(canvas, {kRight + 40, 110});
    return canvas;
}

} // namespace ProfileGauge
