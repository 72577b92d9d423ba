#include "compose_regions/HoleSearch.h"

#include "support/RegionMaker.h"
#include "support/Text.h"

#include <stdexcept>

namespace ComposeRegions
{

qPoint64f FindHole(const Zvl::Surface& scan, const qPoint64f& expected, double reach, double radius, double floor)
{
    constexpr double kPi = 3.141592653589793;
    constexpr double kHeights = 0.3; // mm to both sides of the floor

    const auto window = Examples::RegionMaker(scan).Ring({0.0, reach, 0.0, 360.0, expected});
    Zvl::ThresholdHeight(scan, floor - kHeights, floor + kHeights, *window);
    Zo::Object<void*> list;
    Zvl::GetPointsFromROI<qPoint3d64f>(scan, window->GetBoundingBox(), window->GetMask(), list.Slot());

    const std::size_t count = list.Get() == nullptr ? 0 : qArrayList_Count(list);
    if (static_cast<double>(count) * scan.scale.x * scan.scale.y < 0.5 * kPi * radius * radius)
    {
        throw std::runtime_error("no hole is found around x = " + Examples::NumberText(expected.x, 1) +
                                 ", y = " + Examples::NumberText(expected.y, 1));
    }
    const auto* points = static_cast<const qPoint3d64f*>(qArrayList_Data(list));
    qPoint64f sum{0.0, 0.0};
    for (std::size_t index = 0; index < count; ++index)
    {
        sum.x += points[index].x;
        sum.y += points[index].y;
    }
    return {sum.x / static_cast<double>(count), sum.y / static_cast<double>(count)};
}

} // namespace ComposeRegions
