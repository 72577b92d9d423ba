#include "roundness/SimulatedBore.h"

#include "support/HeightMap.h"
#include "support/SimulatedSensor.h"

#include <algorithm>
#include <cmath>

namespace Roundness
{
namespace
{

constexpr double kPi = 3.141592653589793;
constexpr std::size_t kCells = 550;               // along rows and columns
constexpr qPoint3d64f kScale{0.02, 0.02, 0.0005}; // mm
constexpr qPoint3d64f kSlope{0.004, -0.003, 0.0}; // of the plate
constexpr Examples::SimulatedSensor::Faults kFaults{0.001, 0.01, 0.0, 0.0};

/** How far two burrs stand in from the edge. */
double Burr(double angle)
{
    constexpr double kHalfWidth = 0.015; // rad
    return std::min(std::abs(angle + 1.45), std::abs(angle - 0.25)) < kHalfWidth ? 0.15 : 0.0;
}

} // namespace

double BoreForm::RadiusAt(double angle) const
{
    return radius + oval * std::cos(2.0 * (angle - 0.7)) + threeLobes * std::cos(3.0 * (angle - 0.4)) +
           fiveLobes * std::cos(5.0 * (angle - 0.1));
}

std::vector<qPoint64f> BoreForm::Points() const
{
    constexpr int kPoints = 720;
    std::vector<qPoint64f> points;
    for (int point = 0; point < kPoints; ++point)
    {
        const double angle = 2.0 * kPi * point / kPoints;
        points.push_back({center.x + RadiusAt(angle) * std::cos(angle), center.y + RadiusAt(angle) * std::sin(angle)});
    }
    return points;
}

Zvl::Surface SimulateScan(const BoreForm& form)
{
    Zvl::Surface scan = Examples::MakeSurface(kCells, kCells, kScale, {0.0, 0.0, 0.0}, false);
    Examples::SimulatedSensor sensor(310, kFaults, 0.0, kScale.z);
    for (std::size_t row = 0; row < kCells; ++row)
    {
        short* heights = Examples::HeightRow(scan, row);
        for (std::size_t column = 0; column < kCells; ++column)
        {
            const double x = static_cast<double>(column) * kScale.x;
            const double y = static_cast<double>(row) * kScale.y;
            const double angle = std::atan2(y - form.center.y, x - form.center.x);
            const double fromEdge =
                std::hypot(x - form.center.x, y - form.center.y) - (form.RadiusAt(angle) - Burr(angle));
            // The chamfer is as wide inside of the section as outside; further in nothing is seen.
            const double height = kSlope.x * x + kSlope.y * y + std::min(0.0, fromEdge - form.section);
            heights[column] = sensor.Measure(height, fromEdge < -form.section ? 1.0 : 0.0);
        }
    }
    return scan;
}

} // namespace Roundness
