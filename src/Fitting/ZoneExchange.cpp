#include "Fitting/ZoneExchange.h"

namespace Zvl
{

namespace
{

enum class Place
{
    Below,
    Inside,
    Above
};

Place PlaceOf(double distance, double minDistance, double maxDistance)
{
    if (minDistance - distance > kZoneEpsilon)
    {
        return Place::Below;
    }
    return distance - maxDistance > kZoneEpsilon ? Place::Above : Place::Inside;
}

/** Indices of the points that stay when the one at @p leftOut goes; of two points none goes. */
std::array<std::size_t, 2> Staying(std::size_t leftOut)
{
    return {leftOut == 0 ? std::size_t{1} : std::size_t{0}, leftOut <= 1 ? std::size_t{2} : std::size_t{1}};
}

constexpr std::size_t kNone = 2; // the index to leave out of two points, so that both stay

class BestFour
{
public:
    explicit BestFour(ZoneControls& lists) : controls(lists) {}

    void TryAll(Zone& zone)
    {
        const std::size_t outerSize = controls.outer.size();
        const std::size_t innerSize = controls.inner.size();
        const bool isHandled = outerSize >= 2 && outerSize <= 3 && innerSize >= 2 && innerSize <= 3;
        if (!isHandled || outerSize + innerSize == 4)
        {
            return;
        }
        for (std::size_t outer = outerSize == 3 ? 0 : kNone; outer < 3; ++outer)
        {
            for (std::size_t inner = innerSize == 3 ? 0 : kNone; inner < 3; ++inner)
            {
                Try(outer, inner);
            }
        }
        if (hasBest)
        {
            zone = best;
            Drop(controls.outer, bestOuter);
            Drop(controls.inner, bestInner);
        }
    }

private:
    void Try(std::size_t leftOutOuter, std::size_t leftOutInner)
    {
        const auto [o0, o1] = Staying(leftOutOuter);
        const auto [i0, i1] = Staying(leftOutInner);
        const qPoint64f outer[2] = {controls.outer[o0], controls.outer[o1]};
        const qPoint64f inner[2] = {controls.inner[i0], controls.inner[i1]};
        const std::optional<qPoint64f> center =
            Intersection(Bisector(outer[0], outer[1]), Bisector(inner[0], inner[1]));
        if (!center.has_value())
        {
            return;
        }
        const double maxDistance = Distance(*center, outer[0]);
        const double minDistance = Distance(*center, inner[0]);
        const auto isHeld = [&](const std::vector<qPoint64f>& points, std::size_t index)
        {
            return index >= points.size() ||
                   PlaceOf(Distance(*center, points[index]), minDistance, maxDistance) == Place::Inside;
        };
        const double roundness = maxDistance - minDistance;
        if (roundness < best.roundness && isHeld(controls.outer, leftOutOuter) && isHeld(controls.inner, leftOutInner))
        {
            best = {*center, minDistance, maxDistance, roundness, {outer[0], outer[1]}, {inner[0], inner[1]}};
            bestOuter = leftOutOuter;
            bestInner = leftOutInner;
            hasBest = true;
        }
    }

    static void Drop(std::vector<qPoint64f>& points, std::size_t index)
    {
        if (index < points.size())
        {
            points.erase(points.begin() + static_cast<std::ptrdiff_t>(index));
        }
    }

    ZoneControls& controls;
    Zone best;
    std::size_t bestOuter = kNone;
    std::size_t bestInner = kNone;
    bool hasBest = false;
};

} // namespace

void FindBestFour(ZoneControls& controls, Zone& zone)
{
    BestFour(controls).TryAll(zone);
}

bool AddViolators(const qPoint64f* points, std::size_t count, const Zone& zone, ZoneControls& controls)
{
    const qPoint64f* above = nullptr;
    const qPoint64f* below = nullptr;
    double farthest = zone.maxDistance;
    double nearest = zone.minDistance;
    for (std::size_t i = 0; i < count; ++i)
    {
        const double distance = Distance(points[i], zone.center);
        const Place place = PlaceOf(distance, zone.minDistance, zone.maxDistance);
        if (place == Place::Above && distance > farthest)
        {
            above = &points[i];
            farthest = distance;
        }
        else if (place == Place::Below && distance < nearest)
        {
            below = &points[i];
            nearest = distance;
        }
    }
    if (above != nullptr)
    {
        controls.outer.push_back(*above);
    }
    if (below != nullptr)
    {
        controls.inner.push_back(*below);
    }
    return above != nullptr || below != nullptr;
}

} // namespace Zvl
