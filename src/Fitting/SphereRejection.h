#pragma once

/** @file
 *  Which points a sphere fit takes out, and in which order. */

#include "Fitting/SphereEquations.h"

#include <span>
#include <vector>

namespace Zvl
{

/** Takes points out of the equations, the farthest first. The input must outlive it. */
class SphereRejection
{
public:
    SphereRejection(const qPoint3d64f* inputPoints, std::size_t count);

    /** Rejects the @p batch points farthest from @p sphere; among equal distances the lowest index goes first. */
    void Reject(const Sphere& sphere, std::size_t batch, SphereEquations& equations);

    /** The points that are left, in input order. */
    std::vector<qPoint3d64f> KeptPoints() const;

    /** The rejected points in order of rejection, within a batch by descending index. */
    std::vector<qPoint3d64f> OutlierPoints() const;

private:
    void Measure(const Sphere& sphere);
    std::size_t Farthest() const;
    void FindFarthest(std::size_t batch);

    std::span<const qPoint3d64f> points;
    std::vector<double> residuals;           ///< of the kept points; less than any residual for the others
    std::vector<double> ordered;             ///< the same while the limit of a batch is selected
    std::vector<std::size_t> outlierIndices; ///< of the batch
    std::vector<std::size_t> rejected;       ///< all indices so far, in order of rejection
};

} // namespace Zvl
