//! [program]
#include "Scan.h"

#include <vector>

/** A plate at 2 mm with a bore of radius 2.5 mm about (7.2, 6.3); the sensor sees nothing in the bore. */
Zvl::Surface ScanOfPlate()
{
    return MakeScan([](double x, double y) { return std::hypot(x - 7.2, y - 6.3) < 2.5 ? std::nan("") : 2.0; });
}

bool IsMissing(const Zvl::Surface& scan, std::size_t row, std::size_t column)
{
    return HeightAt(scan, row, column) == Zvl::GetNull<short>();
}

/** The places half way between a cell with a height and a neighbour without one, along rows and columns. */
std::vector<qPoint64f> EdgeOfHole(const Zvl::Surface& scan)
{
    std::vector<qPoint64f> edge;
    const auto add = [&](double row, double column) {
        edge.push_back({scan.offset.x + column * scan.scale.x, scan.offset.y + row * scan.scale.y});
    };
    for (std::size_t row = 1; row < kRows; ++row)
    {
        for (std::size_t column = 1; column < kColumns; ++column)
        {
            if (IsMissing(scan, row, column) != IsMissing(scan, row, column - 1))
            {
                add(static_cast<double>(row), static_cast<double>(column) - 0.5);
            }
            if (IsMissing(scan, row, column) != IsMissing(scan, row - 1, column))
            {
                add(static_cast<double>(row) - 0.5, static_cast<double>(column));
            }
        }
    }
    return edge;
}

int main()
{
    const std::vector<qPoint64f> edge = EdgeOfHole(ScanOfPlate());

    // The circle through the edge, without the tenth of the points that are farthest from it.
    qPoint64f center{};
    double radius = 0.0;
    std::vector<qPoint64f> rejected;
    Zvl::FitCircle(edge.data(), edge.size(), 10.0, Zvl::CIRCLE_LSC, &center, &radius, nullptr, nullptr, nullptr,
                   nullptr, nullptr, nullptr, &rejected);
    std::printf("hole about (%.2f, %.2f), radius %.2f mm, from %zu edge points\n", center.x, center.y, radius,
                edge.size() - rejected.size());
    Expect(IsNear(center.x, 7.2, 0.02) && IsNear(center.y, 6.3, 0.02) && IsNear(radius, 2.5, 0.03));
}
//! [program]
