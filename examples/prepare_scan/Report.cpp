#include "prepare_scan/Report.h"

#include "support/HeightMap.h"
#include "support/MapPicture.h"
#include "support/RegionMaker.h"
#include "support/Text.h"
#include "support/Tiles.h"

#include <algorithm>
#include <cmath>

namespace PrepareScan
{
namespace
{

using Examples::Expected;
using Examples::MapPicture;
using Examples::NumberText;
using Examples::ResultTable;

std::size_t CellCount(const Zvl::Surface& surface)
{
    return Examples::Rows(surface) * Examples::Columns(surface);
}

std::size_t MissingCount(const Zvl::Surface& surface)
{
    return static_cast<std::size_t>(cv::countNonZero(Examples::MissingCells(surface)));
}

double Percent(std::size_t part, std::size_t whole)
{
    return 100.0 * static_cast<double>(part) / static_cast<double>(whole);
}

/** How the heights of a simulated scan differ from those of the part. */
struct Faults
{
    Faults(const Zvl::Surface& surface, const Truth& truth)
    {
        double squares = 0.0;
        std::size_t seen = 0;
        for (std::size_t row = 0; row < Examples::Rows(surface); ++row)
        {
            for (std::size_t column = 0; column < Examples::Columns(surface); ++column)
            {
                const bool isMissing = Examples::IsMissing(Examples::HeightRow(surface, row)[column]);
                const qPoint3d64f point = Examples::WorldPoint(surface, row, column);
                const std::optional<double> height = truth.height({point.x, point.y});
                openings += height ? 0 : 1;
                openMissing += !height && isMissing ? 1 : 0;
                dropouts += height && isMissing ? 1 : 0;
                if (height && !isMissing)
                {
                    squares += std::pow(point.z - *height, 2);
                    ++seen;
                }
            }
        }
        noise = std::sqrt(squares / static_cast<double>(seen));
    }

    std::size_t openings = 0;    ///< cells where the part is open
    std::size_t openMissing = 0; ///< those of them without a height, as it should be
    std::size_t dropouts = 0;    ///< cells of the part without a height
    double noise;                ///< root of the mean square error
};

/** What is known of each step when the part is. */
void AddChecks(const Task& task, const Preparation& prepared, ResultTable* table)
{
    const Truth& truth = *task.truth;
    const Faults scanned(task.scan, truth);
    const Faults filled(prepared.filled.surface, truth);
    const Faults smoothed(prepared.smoothed.surface, truth);
    const Faults decimated(prepared.decimated.surface, truth);
    table->Add({.feature = "dropouts filled",
                .unit = "%",
                .measured = Percent(scanned.dropouts - filled.dropouts, scanned.dropouts),
                .expected = {{100.0, 0.1}},
                .kept = scanned.dropouts - filled.dropouts,
                .rejected = filled.dropouts});
    table->Add({.feature = "bore left open",
                .unit = "%",
                .measured = Percent(filled.openMissing, filled.openings),
                .expected = {{100.0, 1.0}}});
    table->Add({.feature = "noise of the scan, rms",
                .unit = "mm",
                .measured = scanned.noise,
                .expected = {{truth.noise, 0.0005}}});
    const double averaged = truth.noise / Preparation::kWindow; // the root of the cells in the box
    table->Add({.feature = "noise, smoothed, rms",
                .unit = "mm",
                .measured = smoothed.noise,
                .expected = {{averaged, 0.0005}}});
    table->Add({.feature = "noise, decimated, rms",
                .unit = "mm",
                .measured = decimated.noise,
                .expected = {{averaged, 0.0005}}});
}

void AddFlaw(const std::string& name, const std::optional<Flaw>& found, const Flaw* truth, ResultTable* table)
{
    const auto add = [&](const std::string& feature, double tolerance, const auto& value)
    {
        table->Add({.feature = feature,
                    .unit = "mm",
                    .measured = found ? std::optional(value(*found)) : std::nullopt,
                    .expected = truth != nullptr ? std::optional(Expected{value(*truth), tolerance}) : std::nullopt});
    };
    add(name, 0.012, [](const Flaw& flaw) { return flaw.height; });
    add("  x", 0.1, [](const Flaw& flaw) { return flaw.place.x; });
    add("  y", 0.1, [](const Flaw& flaw) { return flaw.place.y; });
}

// ---------------------------------------------------------------------------------------------------------
// Picture

const cv::Size kRoom(640, 430);

std::string TimeText(const Step& step)
{
    return " (" + NumberText(step.milliseconds, 2) + " ms)";
}

std::string SizeText(const Zvl::Surface& surface)
{
    return std::to_string(Examples::Columns(surface)) + " x " + std::to_string(Examples::Rows(surface)) + " cells";
}

std::string MissingText(const Zvl::Surface& surface)
{
    return NumberText(Percent(MissingCount(surface), CellCount(surface)), 1) + " % missing";
}

cv::Mat DrawDifference(const Task& task, const Comparison& comparison)
{
    const qPlane3d64f zero{{0.0, 0.0, 0.0}, {0.0, 0.0, 1.0}};
    const double reach = 3.0 * comparison.limit;
    MapPicture picture(comparison.difference.surface, zero, {-reach, reach},
                       "4  difference to the " + task.goldenName + TimeText(comparison.difference),
                       {Examples::Palette::Deviations, kRoom});
    for (const std::optional<Flaw>& flaw : {comparison.dent, comparison.burr})
    {
        if (flaw)
        {
            picture.Circle(flaw->place, comparison.reach, Examples::Colours::kFit);
        }
    }
    return picture.Compose();
}

void AddFrame(const std::string& name, const Zvl::Surface& surface, Examples::Panel* panel)
{
    const qPoint3d64f& offset = surface.offset;
    panel->AddText(name, SizeText(surface));
    panel->AddText("  offset / mm",
                   NumberText(offset.x, 3) + ", " + NumberText(offset.y, 3) + ", " + NumberText(offset.z, 3));
}

cv::Mat DrawPanel(const Task& task, const Comparison& comparison, const ResultTable& table)
{
    Examples::Panel panel;
    panel.AddLegend(Examples::Symbol::Patch, Examples::Colours::kMissing, "no height");
    panel.AddLegend(Examples::Symbol::Line, Examples::Colours::kFit, "largest deviation below and above the limit");
    panel.AddText("");
    AddFrame("prepared scan", comparison.prepared.decimated.surface, &panel);
    AddFrame("golden surface", task.golden, &panel);
    panel.AddText("");
    panel.AddResults(table);
    const cv::Point corner(80, 74); // level with the map beside it
    cv::Mat canvas(corner.y + panel.Height() + Examples::Panel::kLineHeight, corner.x + Examples::Panel::kWidth,
                   CV_8UC3, Examples::Colours::kBackground);
    panel.Draw(canvas, corner);
    return canvas;
}

} // namespace

ResultTable Tabulate(const Task& task, const Comparison& comparison)
{
    const Preparation& prepared = comparison.prepared;
    ResultTable table;
    const auto addMissing =
        [&](const std::string& feature, const Zvl::Surface& surface, std::optional<double> milliseconds)
    {
        const std::size_t missing = MissingCount(surface);
        const std::size_t cells = CellCount(surface);
        table.Add({.feature = feature,
                   .unit = "%",
                   .measured = Percent(missing, cells),
                   .kept = cells - missing,
                   .rejected = missing,
                   .milliseconds = milliseconds});
    };
    const auto addStep = [&](const std::string& feature, const Step& step)
    { addMissing(feature, step.surface, step.milliseconds); };
    addMissing("scan, cells missing", task.scan, std::nullopt);
    addStep("1 filled, missing", prepared.filled);
    addStep("2 smoothed, missing", prepared.smoothed);
    addStep("3 decimated, missing", prepared.decimated);
    addStep("4 difference, missing", comparison.difference);
    if (task.truth)
    {
        AddChecks(task, prepared, &table);
    }
    table.Add({.feature = "difference, rms", .unit = "mm", .measured = comparison.rms});
    table.Add({.feature = "  limit", .unit = "mm", .measured = comparison.limit});
    table.Add({.feature = "  beyond the limit",
               .unit = "%",
               .measured = Percent(comparison.flawedCells, CellCount(comparison.difference.surface))});
    AddFlaw("deepest dent", comparison.dent, task.truth ? &task.truth->dent : nullptr, &table);
    AddFlaw("highest burr", comparison.burr, task.truth ? &task.truth->burr : nullptr, &table);
    return table;
}

cv::Mat DrawPicture(const Task& task, const Comparison& comparison, const ResultTable& table)
{
    const Preparation& prepared = comparison.prepared;
    const qPlane3d64f level = Examples::PlaneThrough(prepared.decimated.surface);
    const Examples::HeightRange range = Examples::TypicalRange(task.scan, level, 0.5);
    const auto draw = [&](const Zvl::Surface& surface, const std::string& title) {
        return MapPicture(surface, level, range, title, {Examples::Palette::Heights, kRoom}).Compose();
    };
    const std::string window = std::to_string(Preparation::kWindow);
    const Step& filled = prepared.filled;
    const Step& smoothed = prepared.smoothed;
    const Step& decimated = prepared.decimated;
    return Examples::Tiles(
        {draw(task.scan, task.title + ": scan, " + MissingText(task.scan)),
         draw(filled.surface, "1  filled: " + MissingText(filled.surface) + TimeText(filled)),
         draw(smoothed.surface, "2  smoothed: " + window + " x " + window + " cells" + TimeText(smoothed)),
         draw(decimated.surface, "3  decimated: " + SizeText(decimated.surface) + TimeText(decimated)),
         DrawDifference(task, comparison), DrawPanel(task, comparison, table)},
        2);
}

} // namespace PrepareScan
