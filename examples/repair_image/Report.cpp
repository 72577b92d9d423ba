#include "repair_image/Report.h"

#include "support/Drawing.h"
#include "support/FalseColours.h"
#include "support/RegionMaker.h"
#include "support/Text.h"
#include "support/Tiles.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <functional>

namespace RepairImage
{
namespace
{

using Examples::Expected;
using Examples::MeasureText;
using Examples::Palette;
using Examples::ResultTable;
using Examples::WriteText;

// Root mean square errors that are fine for the simulated part: a hole across an edge takes from both of its sides.
constexpr double kHeightTolerance = 0.06;    // mm, where heights jump by 1 mm at most
constexpr double kIntensityTolerance = 18.0; // where intensities jump by 165 at most

void AddErrors(const std::string& feature, const std::string& unit, const Errors& errors, double scale,
               const std::optional<Expected>& expected, std::optional<double> milliseconds, ResultTable* table)
{
    const bool isRepaired = errors.repaired > 0;
    table->Add({.feature = feature + " rms",
                .unit = unit,
                .measured = isRepaired ? std::optional(errors.rms * scale) : std::nullopt,
                .expected = expected,
                .kept = errors.repaired,
                .rejected = errors.open,
                .milliseconds = milliseconds});
    table->Add({.feature = "  largest error",
                .unit = unit,
                .measured = isRepaired ? std::optional(errors.largest * scale) : std::nullopt});
}

// ---------------------------------------------------------------------------------------------------------
// Picture

const cv::Scalar& kDropout = Examples::Colours::kFit;
constexpr int kMargin = 20;

/** A picture of cells with a caption, as large as there is room. */
cv::Mat Tile(const cv::Mat& cells, const Zvl::Surface& frame, const std::string& caption)
{
    constexpr double kWidth = 460.0;
    constexpr double kHeight = 345.0;
    constexpr int kCaption = 24;
    const double width = cells.cols * frame.scale.x;
    const double height = cells.rows * frame.scale.y;
    const double zoom = std::min(kWidth / width, kHeight / height);
    const cv::Size size(std::max(1, static_cast<int>(width * zoom)), std::max(1, static_cast<int>(height * zoom)));
    cv::Mat shown;
    cv::resize(cells, shown, size, 0.0, 0.0, size.width < cells.cols ? cv::INTER_AREA : cv::INTER_NEAREST);

    const int breadth = std::max(size.width, Examples::TextWidth(caption));
    cv::Mat tile(kCaption + size.height + kMargin, breadth + kMargin, CV_8UC3, Examples::Colours::kBackground);
    WriteText(tile, caption, 0, kCaption - 8);
    const cv::Rect place({0, kCaption}, size);
    shown.copyTo(tile(place));
    cv::rectangle(tile, place, Examples::Colours::kText);
    return tile;
}

/** A line over tiles: what they show, and the values that the ends of its palette stand for. */
cv::Mat Heading(const std::string& title, Palette palette, const std::string& low, const std::string& high)
{
    const cv::Point kBar(480, 16);
    constexpr int kBaseline = 30;
    constexpr int kGap = 10;
    const cv::Mat bar = Examples::ColourBar(palette, {150, 16});
    cv::Mat heading(kBaseline + kGap, 940, CV_8UC3, Examples::Colours::kBackground);
    WriteText(heading, title, 0, kBaseline, 0.6);
    WriteText(heading, low, kBar.x - kGap, kBaseline, Examples::kTextSize, Examples::Align::Right);
    bar.copyTo(heading(cv::Rect(kBar, bar.size())));
    WriteText(heading, high, kBar.x + bar.cols + kGap, kBaseline);
    return heading;
}

/** Errors up to @p reach in colours. */
cv::Mat PaintErrors(const cv::Mat& cells, double reach)
{
    cv::Mat levels;
    cells.convertTo(levels, CV_8UC1, 127.5 / reach, 127.5);
    cv::Mat painted = Examples::Paint(levels, Palette::Deviations);
    painted.setTo(Examples::Colours::kMissing, cells == Zvl::GetNull<short>());
    return painted;
}

/** What is drawn of surfaces, heights or intensities. */
struct Kind
{
    std::string name;
    std::function<std::string(double counts)> text;
    Palette palette;
    double low; ///< in counts, the ends of the palette
    double high;
    std::function<cv::Mat(const Zvl::Surface& surface)> paint;
    std::function<const Errors&(const Repair& repair)> errors;
};

Kind Intensities()
{
    return {"Intensities",
            [](double counts) { return Examples::NumberText(counts, 1) + " grey"; },
            Palette::Greys,
            0.0,
            255.0,
            [](const Zvl::Surface& surface) { return Examples::Paint(IntensityImage(surface), Palette::Greys); },
            [](const Repair& repair) -> const Errors& { return *repair.intensityErrors; }};
}

Kind Heights(const Zvl::Surface& truth)
{
    const qPlane3d64f level = Examples::PlaneThrough(truth);
    const Examples::HeightRange range = Examples::Widened(Examples::TypicalRange(truth, level, 0.5));
    return {"Heights over their mean plane",
            [scale = truth.scale.z](double counts) { return MeasureText(counts * scale) + " mm"; },
            Palette::Heights,
            range.low / truth.scale.z,
            range.high / truth.scale.z,
            [=](const Zvl::Surface& surface)
            { return Examples::FalseColours(surface, level, range, Palette::Heights); },
            [](const Repair& repair) -> const Errors& { return repair.heightErrors; }};
}

/** The piece and its repairs, and below them the truth and the errors. */
cv::Mat DrawKind(const Kind& kind, const DamagedSurface& piece, const std::vector<Repair>& repairs)
{
    double reach = 1.0; // of the colours
    for (const Repair& repair : repairs)
    {
        reach = std::max(reach, 3.0 * kind.errors(repair).rms);
    }
    cv::Mat damaged = kind.paint(piece.damaged);
    damaged.setTo(kDropout, piece.dropouts);
    std::vector<cv::Mat> images{Tile(damaged, piece.truth, piece.title + ", dropouts in magenta")};
    std::vector<cv::Mat> errors{Tile(kind.paint(piece.truth), piece.truth, "without them")};
    for (const Repair& repair : repairs)
    {
        const Errors& found = kind.errors(repair);
        images.push_back(Tile(kind.paint(repair.surface), piece.truth, repair.method));
        errors.push_back(Tile(PaintErrors(found.cells, reach), piece.truth,
                              found.repaired == 0
                                  ? "nothing repaired"
                                  : "error: rms " + kind.text(found.rms) + ", largest " + kind.text(found.largest)));
    }
    const int columns = static_cast<int>(images.size());
    images.insert(images.end(), errors.begin(), errors.end());
    return Examples::Tiles(
        {Examples::Tiles({Heading(kind.name, kind.palette, kind.text(kind.low), kind.text(kind.high)),
                          Heading("Errors in the dropouts", Palette::Deviations, kind.text(-reach), kind.text(reach))},
                         2),
         Examples::Tiles(images, columns)},
        1);
}

} // namespace

ResultTable Tabulate(const DamagedSurface& piece, const std::vector<Repair>& repairs)
{
    const bool isKnown = piece.origin == Origin::KnownPart;
    const auto expect = [&](double nominal, double tolerance) {
        return isKnown ? std::optional(Expected{nominal, tolerance}) : std::nullopt;
    };
    ResultTable table;
    for (const Repair& repair : repairs)
    {
        const auto repaired = static_cast<double>(repair.heightErrors.repaired);
        const auto open = static_cast<double>(repair.heightErrors.open);
        table.Add({.feature = repair.method + ", repaired",
                   .unit = "%",
                   .measured = 100.0 * repaired / (repaired + open),
                   .expected = expect(100.0, 0.0)});
        AddErrors(repair.method + ", heights", "mm", repair.heightErrors, piece.truth.scale.z,
                  expect(0.0, kHeightTolerance), repair.heightMilliseconds, &table);
        if (repair.intensityErrors)
        {
            AddErrors(repair.method + ", grey", "grey", *repair.intensityErrors, 1.0, expect(0.0, kIntensityTolerance),
                      repair.intensityMilliseconds, &table);
        }
    }
    return table;
}

cv::Mat DrawPicture(const DamagedSurface& piece, const std::vector<Repair>& repairs)
{
    std::vector<cv::Mat> kinds{DrawKind(Heights(piece.truth), piece, repairs)};
    if (HasIntensities(piece.truth))
    {
        kinds.push_back(DrawKind(Intensities(), piece, repairs));
    }
    cv::Mat picture;
    cv::copyMakeBorder(Examples::Tiles(kinds, 1), picture, kMargin, kMargin, kMargin, kMargin, cv::BORDER_CONSTANT,
                       Examples::Colours::kBackground);
    return picture;
}

} // namespace RepairImage
