#include "Scan.h"

#include <vector>

int main()
{
    //! [snippet]
    // A bore of radius 5 mm with three lobes of 0.1 mm, measured at 360 places.
    std::vector<qPoint64f> edge;
    for (int degree = 0; degree < 360; ++degree)
    {
        const double angle = (degree + 0.3) * 3.141592653589793 / 180.0; // no two points with one x or y
        const double radius = 5.0 + 0.1 * std::cos(3.0 * angle);
        edge.push_back({7.0 + radius * std::cos(angle), 4.0 + radius * std::sin(angle)});
    }

    qPoint64f center{};
    double inner = 0.0;
    double outer = 0.0;
    Zvl::FitCircle(edge.data(), edge.size(), 0.0, Zvl::CIRCLE_LSC, &center, &inner, &outer, nullptr, nullptr, nullptr,
                   nullptr, nullptr, nullptr);
    std::printf("least squares: radius %.3f mm about (%.3f, %.3f)\n", inner, center.x, center.y);
    Expect(IsNear(inner, 5.0, 0.01) && inner == outer);

    Zvl::FitCircle(edge.data(), edge.size(), 0.0, Zvl::CIRCLE_MZC, &center, &inner, &outer, nullptr, nullptr, nullptr,
                   nullptr, nullptr, nullptr);
    std::printf("minimum zone:  %.3f mm wide\n", outer - inner);
    Expect(IsNear(outer - inner, 0.2, 0.001));

    // Now a third of the points lies anywhere.
    for (std::size_t index = 0; index < 120; ++index)
    {
        edge[index] = {0.1 * static_cast<double>(index), 0.05 * static_cast<double>(index % 7)};
    }
    double radius = 0.0;
    unsigned seed = 1;
    Zvl::FitCircleByRLTS(edge.data(), edge.size(), 40.0, center, radius, nullptr, &seed, 0);
    std::printf("trimmed:       radius %.2f mm\n", radius);
    Expect(IsNear(radius, 5.0, 0.1) && IsNear(center.x, 7.0, 0.1));
    //! [snippet]
}
