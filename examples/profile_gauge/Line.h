#pragma once

#include <ZdkVisionLib/platform/qApi.h>

#include <optional>
#include <vector>

namespace ProfileGauge
{

/** A straight line in the plane of a line scan. */
struct Line
{
    qPoint64f point;
    qPoint64f direction; ///< of unit length; x is not below 0

    /** Signed distance of @p from the line; above it is positive. */
    double Distance(const qPoint64f& from) const;

    /** Where the line has this x; the line must not be upright. */
    qPoint64f At(double x) const;

    double Degrees() const;
};

/** The line of the least sum of squared distances, or nothing for points that all coincide. */
std::optional<Line> LineThrough(const std::vector<qPoint64f>& points);

qPoint64f Mean(const std::vector<qPoint64f>& points);

} // namespace ProfileGauge
