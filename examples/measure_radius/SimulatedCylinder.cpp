#include "measure_radius/SimulatedCylinder.h"

#include "support/HeightMap.h"

#include <cmath>
#include <random>
#include <vector>

namespace MeasureRadius
{
namespace
{

constexpr std::size_t kRows = 220;
constexpr std::size_t kColumns = 700;
constexpr double kCell = 0.005;      // mm
constexpr double kCount = 0.00001;   // mm per height count
constexpr double kNoise = 0.0005;    // mm, standard deviation of a height
constexpr double kStriation = 0.001; // mm, standard deviation from column to column
constexpr double kFall = 0.01;       // of the axis, mm per mm
constexpr double kBurrWidth = 0.12;  // mm
constexpr double kBurrHeight = 0.04; // mm
constexpr std::size_t kClusters = 45;

/** A disc of missing cells. */
struct Cluster
{
    double x;
    double y;
    double radius;
};

class Cylinder
{
public:
    Cylinder()
    {
        std::uniform_real_distribution<double> uniform(0.0, 1.0);
        std::normal_distribution<double> striation(0.0, kStriation);
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            striations.push_back(striation(generator));
        }
        for (std::size_t cluster = 0; cluster < kClusters; ++cluster)
        {
            clusters.push_back({uniform(generator) * kColumns * kCell, uniform(generator) * kRows * kCell,
                                0.02 + 0.06 * uniform(generator)});
        }
    }

    short Height(std::size_t row, std::size_t column)
    {
        const double x = static_cast<double>(column) * kCell;
        const double y = static_cast<double>(row) * kCell;
        if (IsMissing(x, y))
        {
            return Zvl::GetNull<short>();
        }
        constexpr double kMiddle = (kColumns - 1) * kCell / 2.0;
        const double away = x - kMiddle;
        double height = std::sqrt(kNominalRadius * kNominalRadius - away * away) - kNominalRadius;
        height += striations[column] + noise(generator) - kFall * y;
        if (kMiddle - std::abs(away) < kBurrWidth)
        {
            height += kBurrHeight * (1.0 - (kMiddle - std::abs(away)) / kBurrWidth);
        }
        if (uniform(generator) < 0.002)
        {
            height += 0.02 * uniform(generator);
        }
        return static_cast<short>(std::lround(height / kCount));
    }

private:
    bool IsMissing(double x, double y)
    {
        for (const Cluster& cluster : clusters)
        {
            if (std::hypot(x - cluster.x, y - cluster.y) < cluster.radius)
            {
                return true;
            }
        }
        return uniform(generator) < 0.004;
    }

    std::mt19937 generator{731}; // every run is to give the same scan
    std::uniform_real_distribution<double> uniform{0.0, 1.0};
    std::normal_distribution<double> noise{0.0, kNoise};
    std::vector<double> striations;
    std::vector<Cluster> clusters;
};

} // namespace

Zvl::Surface SimulateCylinder()
{
    Zvl::Surface scan = Examples::MakeSurface(kRows, kColumns, {kCell, kCell, kCount}, {0.0, 0.0, 0.0}, false);
    Cylinder cylinder;
    for (std::size_t row = 0; row < kRows; ++row)
    {
        short* heights = Examples::HeightRow(scan, row);
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            heights[column] = cylinder.Height(row, column);
        }
    }
    return scan;
}

} // namespace MeasureRadius
