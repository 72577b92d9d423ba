#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cstddef>
#include <optional>
#include <vector>

namespace MeasureRadius
{

/** The direction of the lines that a map is cut along. */
enum class Direction
{
    AlongX, ///< a section is a row
    AlongY  ///< a section is a column
};

/** The direction in which the surface is more curved: that in which the middle third of the lines lies farther from the
 *  outer two thirds. */
Direction CurvedDirection(const Zvl::Surface& surface);

/** Lines that a map can be cut along: rows or columns. */
std::size_t LineCount(const Zvl::Surface& surface, Direction direction);

/** One line of a map as a profile of its own. */
Zvl::Profile CutSection(const Zvl::Surface& surface, Direction direction, std::size_t line);

/** The circle through one section. x runs along the section, y is the height. */
struct SectionCircle
{
    std::size_t line;
    double position; ///< of the section, across the lines
    qPoint64f center;
    double radius;
    std::vector<qPoint64f> kept;
    std::vector<qPoint64f> rejected;

    /** Distance of a point from the circle; positive outside. */
    double Residual(const qPoint64f& point) const;

    /** Root mean square of the residuals of the kept points. */
    double RootMeanSquare() const;
};

/** Fits a circle to one line of the map and rejects one point in four, since a section may have burrs and shoulders. A
 * line with too few heights, or one that is straight, gives nothing. */
std::optional<SectionCircle> FitSection(const Zvl::Surface& surface, Direction direction, std::size_t line);

} // namespace MeasureRadius
