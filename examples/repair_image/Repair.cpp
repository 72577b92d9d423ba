#include "repair_image/Repair.h"

#include "support/FalseColours.h"
#include "support/GapLimits.h"
#include "support/Stopwatch.h"

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include <algorithm>
#include <cmath>

namespace RepairImage
{
namespace
{

constexpr short kMissing = Zvl::GetNull<short>();
constexpr double kRange = 5.0; // cells around a hole that its cells are made of

/** Repairs an image in its place. Returns the milliseconds that it took. */
double InpaintCells(cv::Mat image, cv::Mat holes, Zvl::InpaintMethod method)
{
    // At the edge of an image its holes are read as well, and a reserved count would show there.
    image.setTo(cv::mean(image, ~holes), holes);
    const Examples::Stopwatch stopwatch;
    Zvl::Inpaint(image, holes, image, kRange, method);
    return stopwatch.Milliseconds();
}

Repair Inpaint(const DamagedSurface& piece, const std::string& name, Zvl::InpaintMethod method)
{
    Repair repair{name, Copy(piece.damaged), 0.0, {}, {}, {}};
    const cv::Mat holes = Examples::MissingCells(piece.damaged);
    repair.heightMilliseconds = InpaintCells(HeightImage(repair.surface), holes, method);
    if (HasIntensities(piece.damaged))
    {
        repair.intensityMilliseconds = InpaintCells(IntensityImage(repair.surface), holes, method);
    }
    return repair;
}

/** Interpolates heights and intensities from the ends of each gap. */
Repair FillGaps(const DamagedSurface& piece)
{
    constexpr double kSteepest = 80.0;
    const Zvl::Surface& damaged = piece.damaged;
    const int longest = std::min(piece.dropouts.rows, piece.dropouts.cols) / 4;
    const Zvl::SurfaceFillGapParams limits = Examples::GapLimits(damaged, longest, kSteepest);
    Repair repair{"gap filling", damaged, 0.0, {}, {}, {}};
    Zo::Object<void*> intensities = HasIntensities(damaged) ? damaged.layers[1] : Zo::Object<void*>();
    const Examples::Stopwatch stopwatch;
    Zvl::SurfaceFillGapXY(limits, damaged.layers[0], intensities, repair.surface.layers[0], intensities, nullptr);
    repair.heightMilliseconds = stopwatch.Milliseconds();
    if (HasIntensities(damaged))
    {
        repair.surface.layers[1] = intensities;
    }
    return repair;
}

/** Compares the dropouts of two images; in the cells of @p open nothing was repaired. */
Errors Compare(const cv::Mat& repaired, const cv::Mat& truth, const cv::Mat& dropouts, const cv::Mat& open)
{
    cv::Mat cells = cv::Mat::zeros(truth.size(), CV_16SC1);
    cv::subtract(repaired, truth, cells, dropouts, CV_16S);
    cells = cv::max(cells, kMissing + 1); // the lowest count is no error
    const cv::Mat compared = dropouts & ~open;
    const auto count = static_cast<std::size_t>(cv::countNonZero(compared));
    const double rms = cv::norm(cells, cv::NORM_L2, compared) / std::sqrt(static_cast<double>(count));
    const double largest = cv::norm(cells, cv::NORM_INF, compared);
    cells.setTo(kMissing, open);
    return {cells, count, static_cast<std::size_t>(cv::countNonZero(dropouts)) - count, rms, largest};
}

Repair WithErrors(Repair repair, const DamagedSurface& piece)
{
    const cv::Mat open = Examples::MissingCells(repair.surface);
    repair.heightErrors = Compare(HeightImage(repair.surface), HeightImage(piece.truth), piece.dropouts, open);
    if (HasIntensities(piece.truth))
    {
        repair.intensityErrors =
            Compare(IntensityImage(repair.surface), IntensityImage(piece.truth), piece.dropouts, open);
    }
    return repair;
}

} // namespace

std::vector<Repair> RepairAll(const DamagedSurface& piece, Examples::Progress& progress)
{
    constexpr std::size_t kMethods = 3;
    std::vector<Repair> repairs;
    const auto add = [&](const Repair& repair)
    {
        repairs.push_back(WithErrors(repair, piece));
        progress.Reached(repairs.size(), kMethods);
    };
    progress.Begin("repairing");
    add(Inpaint(piece, "Navier-Stokes", Zvl::CV_INPAINT_NS));
    add(Inpaint(piece, "Telea", Zvl::CV_INPAINT_TELEA));
    add(FillGaps(piece));
    return repairs;
}

} // namespace RepairImage
