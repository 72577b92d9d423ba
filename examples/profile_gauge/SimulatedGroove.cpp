#include "profile_gauge/SimulatedGroove.h"

#include "profile_gauge/MapRows.h"
#include "support/HeightMap.h"
#include "support/InputError.h"
#include "support/SimulatedSensor.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <random>

namespace ProfileGauge
{
namespace
{

constexpr std::size_t kScans = 60;
constexpr std::size_t kItems = 600;
constexpr qPoint3d64f kScale{0.02, 0.5, 0.001}; // mm
constexpr qPoint3d64f kOffset{-6.0, 0.0, 5.0};  // the groove is expected in the middle of the line
constexpr Examples::SimulatedSensor::Faults kFaults{0.006, 0.01, 0.003, 2.0};
constexpr double kWallDropouts = 0.25;

constexpr Groove kDrawing{.width = 3.0, .depth = 1.2, .draft = 0.35, .land = 1.5, .play = 0.6};
constexpr double kPlateHeight = 5.0;

/** The outline of the part under one line scan: points from left to right. */
using Outline = std::array<qPoint64f, 6>;

Outline OutlineOf(const Groove& groove, const Zvl::RefFrame& place)
{
    constexpr double kFar = 50.0;
    const double top = (groove.width + groove.draft) / 2.0;
    const double bottom = (groove.width - groove.draft) / 2.0;
    Outline outline{
        {{-kFar, 0.0}, {-top, 0.0}, {-bottom, -groove.depth}, {bottom, -groove.depth}, {top, 0.0}, {kFar, 0.0}}};
    std::transform(outline.begin(), outline.end(), outline.begin(),
                   [&](const qPoint64f& corner) { return place.Apply(corner); });
    return outline;
}

void Scan(const Outline& outline, Examples::SimulatedSensor* sensor, short* heights)
{
    for (std::size_t item = 0; item < kItems; ++item)
    {
        const double x = kOffset.x + static_cast<double>(item) * kScale.x;
        const auto* to =
            std::find_if(outline.begin(), outline.end(), [x](const qPoint64f& corner) { return corner.x > x; });
        const auto* from = to - 1;
        const double slope = (to->y - from->y) / (to->x - from->x);
        heights[item] = sensor->Measure(from->y + slope * (x - from->x), std::abs(slope) > 1.0 ? kWallDropouts : 0.0);
    }
}

/** The groove under scan @p index. */
Groove GrooveUnder(std::size_t index)
{
    const double along = static_cast<double>(index) / static_cast<double>(kScans - 1);
    Groove groove = kDrawing;
    groove.width += 0.06 * along;
    groove.depth += 0.03 * std::sin(9.0 * along);
    return groove;
}

} // namespace

Zvl::Surface SimulateScans()
{
    Zvl::Surface scans = Examples::MakeSurface(kScans, kItems, kScale, kOffset, false);
    std::mt19937 generator(307);
    std::uniform_real_distribution<double> tremble(-1.0, 1.0);
    Examples::SimulatedSensor sensor(303, kFaults, kOffset.z, kScale.z);
    for (std::size_t index = 0; index < kScans; ++index)
    {
        const double x = 0.4 * tremble(generator);
        const double height = kPlateHeight + 0.15 * tremble(generator);
        Zvl::RefFrame place;
        place.SetFrame({x, height, 0.0}, 1.0 * tremble(generator));
        Scan(OutlineOf(GrooveUnder(index), place), &sensor, Examples::HeightRow(scans, index));
    }
    return scans;
}

Recording KnownGroove(const std::string& title, const Zvl::Surface& scans)
{
    if (Examples::Rows(scans) != kScans)
    {
        throw Examples::InputError(title + ": has " + std::to_string(Examples::Rows(scans)) +
                                   " rows, but the known part has " + std::to_string(kScans) + " line scans");
    }
    Recording recording{title, {}, kDrawing, {0.0, kPlateHeight, Zvl::GetNull<double>(), 0.0}, std::vector<Groove>{}};
    for (std::size_t index = 0; index < kScans; ++index)
    {
        recording.truth->push_back(GrooveUnder(index));
        recording.scans.push_back(RowScan(scans, index));
    }
    return recording;
}

} // namespace ProfileGauge
