#include "Fitting/CircleMinimumZone.h"

#include "Fitting/CircleCircumscribed.h"
#include "Fitting/CircleInscribed.h"
#include "Fitting/ZoneExchange.h"
#include "Fitting/ZoneOutputs.h"

namespace Zvl
{

namespace
{

constexpr int kMostExchanges = 1000;

/** A circle with the zone about its centre and the points on it. */
struct Seed
{
    Zone zone;
    std::vector<qPoint64f> controlPoints;
};

using FitSeed = void (*)(const qPoint64f*, std::size_t, qPoint64f*, double*, double*, double*, std::vector<qPoint64f>*,
                         std::vector<qPoint64f>*, std::vector<qPoint64f>*);

Seed SeedOf(FitSeed fit, const qPoint64f* points, std::size_t count)
{
    Seed seed;
    Zone& zone = seed.zone;
    fit(points, count, &zone.center, nullptr, &zone.maxDistance, &zone.minDistance, &zone.maxDistPoints,
        &zone.minDistPoints, &seed.controlPoints);
    zone.roundness = zone.maxDistance - zone.minDistance;
    return seed;
}

Zone Exchange(const qPoint64f* points, std::size_t count, ZoneControls controls)
{
    Zone zone;
    for (int iteration = 0;; ++iteration)
    {
        FindBestFour(controls, zone);
        if (iteration > kMostExchanges)
        {
            zone.roundness = std::numeric_limits<double>::max();
            return zone;
        }
        if (!AddViolators(points, count, zone, controls))
        {
            return zone;
        }
    }
}

} // namespace

void FitCircle_MZC(const qPoint64f* points, std::size_t count, qPoint64f* center, double* minRadius, double* maxRadius,
                   std::vector<qPoint64f>* maxDistPoints, std::vector<qPoint64f>* minDistPoints)
{
    const auto write = [&](const Zone& zone)
    {
        WriteTo(center, zone.center);
        WriteTo(minRadius, zone.minDistance);
        WriteTo(maxRadius, zone.maxDistance);
        WriteTo(maxDistPoints, zone.maxDistPoints);
        WriteTo(minDistPoints, zone.minDistPoints);
    };
    write({});
    const Seed inscribed = SeedOf(&FitCircle_MIC, points, count);
    if (inscribed.zone.center.x == GetNull<double>())
    {
        return;
    }
    const Seed circumscribed = SeedOf(&FitCircle_MCC, points, count);
    if (circumscribed.zone.center.x == GetNull<double>())
    {
        return;
    }
    Zone zone = Exchange(points, count, {circumscribed.controlPoints, inscribed.controlPoints});
    for (const Seed* seed : {&inscribed, &circumscribed})
    {
        if (seed->zone.roundness < zone.roundness)
        {
            zone = seed->zone;
        }
    }
    write(zone);
}

} // namespace Zvl
