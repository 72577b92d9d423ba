#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <string>
#include <vector>

namespace Roundness
{

/** The circles that the form of a bore is told from. */
enum class Kind
{
    LeastSquares,
    MinimumZone,  ///< the circle in the middle of the narrowest ring that holds all points
    Inscribed,    ///< the largest circle that holds no point: the plug that just enters the bore
    Circumscribed ///< the smallest circle that holds all points
};

constexpr int kKinds = 4;

std::string Name(Kind kind);

/** A reference circle, and the largest inscribed and smallest circumscribed circle about the same centre. */
struct Reference
{
    Kind kind;
    qPoint64f center;
    double radius;
    double inner; ///< distance of the nearest point from the centre
    double outer; ///< of the farthest one

    double Roundness() const { return outer - inner; }
};

/** Searches the best centre of a reference within the spread of the distances about @p start, by dividing intervals of x
 *  and y. It is there, and the only one, for points all around whose distances differ little beside the radius. */
Reference SearchReference(Kind kind, const std::vector<qPoint64f>& points, const qPoint64f& start);

/** What was measured on the edge of a bore. */
struct Measurement
{
    std::vector<qPoint64f> kept;
    std::vector<qPoint64f> rejected;
    std::vector<Reference> references; ///< first that of least squares; that of the minimum zone may be missing
    double milliseconds;
    std::string remark; ///< a line more that says why it is missing
};

/** Rejects 1.5 percent of the points, those farthest from their least-squares circle, for burrs and dirt, and finds the
 *  reference circles of the others. Least squares and minimum zone are fitted by the library, the others searched.
 *  @throws std::runtime_error for less than 3 points
 *  @throws Zo::Exception when the points determine no circle */
Measurement MeasureRoundness(const std::vector<qPoint64f>& edge);

} // namespace Roundness
