#pragma once

/** @file
 *  Which points a sphere fit takes out, and in which order. */

#include "Fitting/SphereEquations.h"

#include <vector>

namespace Zvl
{

/** Takes points out of the equations, the farthest first. The input must outlive it. */
class SphereRejection
{
public:
    /** @param batch the most points that one call of Reject() will be asked for */
    SphereRejection(const qPoint3d64f* inputPoints, std::size_t count, std::size_t batch);

    /** Rejects the @p batch points farthest from @p sphere; among equal distances the lowest index goes first. */
    void Reject(const Sphere& sphere, std::size_t batch, SphereEquations& equations);

    /** The points that are left, in input order. */
    std::vector<qPoint3d64f> KeptPoints() const;

    /** The rejected points in order of rejection, within a batch by descending index. */
    std::vector<qPoint3d64f>& OutlierPoints() { return outlierPointsLocal; }

private:
    using ResidualAndIndex = std::pair<double, std::size_t>;

    std::size_t Farthest(const Sphere& sphere) const;
    void FindFarthest(const Sphere& sphere);

    const qPoint3d64f* points;
    std::vector<bool> keptFinal;
    std::vector<ResidualAndIndex> pointDistList;
    std::vector<std::size_t> outlierIndices;
    std::vector<qPoint3d64f> outlierPointsLocal;
};

} // namespace Zvl
