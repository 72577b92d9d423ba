#pragma once

/** @file
 *  The outputs that the inscribed and the circumscribed circle share. */

#include "Fitting/CircleThroughPoints.h"
#include "Fitting/ZoneGeometry.h"

namespace Zvl
{

/** Sets an output when it is wanted. */
template <typename T>
void WriteTo(T* output, const T& value)
{
    if (output != nullptr)
    {
        *output = value;
    }
}

/** Where a circle goes; each pointer may be null. */
struct ZoneOutputs
{
    qPoint64f* center;
    double* radius;
    double* maxDistance;
    double* minDistance;
    std::vector<qPoint64f>* maxDistPoints;
    std::vector<qPoint64f>* minDistPoints;
    std::vector<qPoint64f>* controlPoints;

    /** Every number null and every vector empty. */
    void Clear() const { WriteAll(kZoneNullPoint, GetNull<double>(), {}); }

    /** The circle through three points. It has all of them on it. */
    void WriteCircleThrough(const qPoint64f* points) const
    {
        qPoint64f middle;
        double distance;
        CircleThroughPoints(points, &middle, &distance);
        WriteAll(middle, distance, {points, points + 3});
    }

    void WriteAll(const qPoint64f& middle, double distance, const std::vector<qPoint64f>& points) const
    {
        WriteTo(center, middle);
        for (double* output : {radius, maxDistance, minDistance})
        {
            WriteTo(output, distance);
        }
        for (std::vector<qPoint64f>* output : {maxDistPoints, minDistPoints, controlPoints})
        {
            WriteTo(output, points);
        }
    }
};

} // namespace Zvl
