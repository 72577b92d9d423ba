#include "prepare_scan/SimulatedPanel.h"

#include "prepare_scan/Preparation.h"
#include "support/HeightMap.h"
#include "support/SimulatedSensor.h"

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace PrepareScan
{
namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kCell = 0.1;     // mm
constexpr double kCount = 0.0005; // mm per height count
constexpr double kNoise = 0.02;   // mm
constexpr Examples::SimulatedSensor::Faults kFaults{kNoise, 0.02, 0.0, 0.0};
constexpr Examples::SimulatedSensor::Faults kGoldenFaults{0.002, 0.0, 0.0, 0.0}; // the mean of many scans

constexpr qPoint64f kBore{42.0, 20.0}; // mm
constexpr double kBoreRadius = 3.0;
constexpr Flaw kDent{{16.0, 20.0}, -0.15};
constexpr Flaw kBurr{{27.5, 32.0}, 0.12};
constexpr double kFlawRadius = 2.0;

/** 1 in the middle, 0 from the distance @p reach on, and smooth between. */
double Bump(double distance, double reach)
{
    return distance < reach ? 0.5 + 0.5 * std::cos(kPi * distance / reach) : 0.0;
}

double Distance(const qPoint64f& a, const qPoint64f& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

/** The sound panel: crowned, with a bead above the bore and one below. */
std::optional<double> SoundHeight(const qPoint64f& place)
{
    if (Distance(place, kBore) < kBoreRadius)
    {
        return std::nullopt;
    }
    const double beads = Bump(std::abs(place.y - 10.0), 3.0) + Bump(std::abs(place.y - 30.0), 3.0);
    return 0.25 * beads - 0.2 * std::pow((place.x - 30.0) / 30.0, 2);
}

std::optional<double> FlawedHeight(const qPoint64f& place)
{
    std::optional<double> height = SoundHeight(place);
    for (const Flaw& flaw : {kDent, kBurr})
    {
        if (height)
        {
            *height += flaw.height * Bump(Distance(place, flaw.place), kFlawRadius);
        }
    }
    return height;
}

/** A drop of oil, which glares and gives no height. */
struct Drop
{
    qPoint64f place;
    double radius;
};

std::vector<Drop> SprayOil(std::size_t count)
{
    std::mt19937 generator(505);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    std::vector<Drop> drops;
    for (std::size_t drop = 0; drop < count; ++drop)
    {
        const double x = 60.0 * uniform(generator);
        const double y = 40.0 * uniform(generator);
        drops.push_back({{x, y}, 0.1 + 0.35 * uniform(generator)});
    }
    return drops;
}

/** What a sensor looks at, and the grid that it scans. */
struct Scan
{
    std::function<std::optional<double>(const qPoint64f& place)> height;
    std::vector<Drop> drops;
    std::size_t rows;
    std::size_t columns;
    qPoint3d64f offset;

    bool IsOily(const qPoint64f& place) const
    {
        return std::any_of(drops.begin(), drops.end(),
                           [&](const Drop& drop) { return Distance(place, drop.place) < drop.radius; });
    }

    Zvl::Surface Record(Examples::SimulatedSensor sensor) const
    {
        Zvl::Surface scan = Examples::MakeSurface(rows, columns, {kCell, kCell, kCount}, offset, false);
        for (std::size_t row = 0; row < rows; ++row)
        {
            short* heights = Examples::HeightRow(scan, row);
            for (std::size_t column = 0; column < columns; ++column)
            {
                const qPoint64f place{offset.x + static_cast<double>(column) * kCell,
                                      offset.y + static_cast<double>(row) * kCell};
                const std::optional<double> seen = IsOily(place) ? std::nullopt : height(place);
                heights[column] = seen ? sensor.Measure(*seen) : Zvl::GetNull<short>();
            }
        }
        return scan;
    }
};

} // namespace

Zvl::Surface SimulateScan()
{
    const Scan scan{FlawedHeight, SprayOil(250), 400, 600, {0.0, 0.0, 1.0}};
    return scan.Record({501, kFaults, scan.offset.z, kCount});
}

Task KnownPanel(const std::string& title, const Zvl::Surface& scan)
{
    // Both begin a whole number of decimated cells apart, so that their grids coincide once they are decimated.
    const Scan golden{SoundHeight, {}, 460, 680, {-3.6, -2.8, -2.5}};
    Task task;
    task.title = title;
    task.scan = scan;
    task.golden = Preparation(golden.Record({502, kGoldenFaults, golden.offset.z, kCount})).decimated.surface;
    task.goldenName = "golden surface";
    task.limit = 0.04;
    task.truth = Truth{FlawedHeight, kDent, kBurr, kNoise};
    return task;
}

} // namespace PrepareScan
