#include "repair_image/SimulatedPart.h"

#include "support/HeightMap.h"
#include "support/SimulatedSensor.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace RepairImage
{
namespace
{

constexpr std::size_t kRows = 240;
constexpr std::size_t kColumns = 320;
constexpr double kCell = 0.1;    // mm
constexpr double kCount = 0.001; // mm per height count
constexpr double kGrain = 2.0;   // standard deviation of an intensity
constexpr qPoint3d64f kOffset{0.0, 0.0, 5.0};
constexpr Examples::SimulatedSensor::Faults kFaults{0.002, 0.0, 0.0, 0.0};

constexpr qPoint64f kBoss{11.0, 12.0}; // mm
constexpr double kBossRadius = 6.0;
constexpr double kBossHeight = 1.0;
constexpr double kGroove = 25.0; // where its middle line is
constexpr double kGrooveWidth = 2.5;
constexpr double kGrooveDepth = 0.6;
constexpr double kWall = 0.5; // width of a wall in a map of heights

double FromBoss(double x, double y)
{
    return std::hypot(x - kBoss.x, y - kBoss.y);
}

/** 1 up to half a wall's width before @p edge, 0 from half of it behind on. */
double Wall(double at, double edge)
{
    return std::clamp(0.5 + (edge - at) / kWall, 0.0, 1.0);
}

double Height(double x, double y)
{
    const double crown = 0.5 * std::cos(x / 12.0) * std::cos((y - 12.0) / 10.0);
    const double boss = kBossHeight * Wall(FromBoss(x, y), kBossRadius);
    return crown + boss - kGrooveDepth * Wall(std::abs(x - kGroove), kGrooveWidth / 2.0);
}

/** The boss shows marks of the turning tool, and a dark stripe is printed over all. */
double Intensity(double x, double y)
{
    constexpr double kPitch = 1.5; // mm, of the marks
    const double away = FromBoss(x, y);
    const double marks = away < kBossRadius ? 45.0 * std::sin(2.0 * 3.141592653589793 * away / kPitch) : 35.0;
    const bool isStripe = std::abs(0.5 * x + y - 19.0) < 1.3;
    return isStripe ? 45.0 : 150.0 + marks + 0.8 * x;
}

} // namespace

Zvl::Surface SimulatedPart()
{
    Zvl::Surface part = Examples::MakeSurface(kRows, kColumns, {kCell, kCell, kCount}, kOffset, true);
    Examples::SimulatedSensor sensor(703, kFaults, kOffset.z, kCount);
    std::mt19937 generator(702);
    std::normal_distribution<double> grain(0.0, kGrain);
    for (std::size_t row = 0; row < kRows; ++row)
    {
        short* heights = Examples::HeightRow(part, row);
        unsigned char* intensities = Examples::IntensityRow(part, row);
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            const double x = kOffset.x + static_cast<double>(column) * kCell;
            const double y = kOffset.y + static_cast<double>(row) * kCell;
            heights[column] = sensor.Measure(Height(x, y));
            const double intensity = std::round(Intensity(x, y) + grain(generator));
            intensities[column] = static_cast<unsigned char>(std::clamp(intensity, 1.0, 255.0));
        }
    }
    return part;
}

} // namespace RepairImage
