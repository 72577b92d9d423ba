#pragma once

/** @file
 *  The sums behind an algebraic sphere. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

constexpr std::size_t kSphereUnknowns = 4;

/** What one point adds to the equations: the outer product of (x, y, z, 1) with itself, and (x, y, z, 1)
 *  times the squared distance from the origin. Both triangles are summed, with equal bits: whole rows add up
 *  as vectors. */
struct SphereContribution
{
    SphereContribution() = default;

    explicit SphereContribution(const qPoint3d64f& point)
    {
        const double terms[kSphereUnknowns] = {point.x, point.y, point.z, 1.0};
        const double square = point.x * point.x + point.y * point.y + point.z * point.z;
        for (std::size_t row = 0; row < kSphereUnknowns; ++row)
        {
            for (std::size_t column = 0; column < kSphereUnknowns; ++column)
            {
                matrix[row][column] = terms[row] * terms[column];
            }
            vector[row] = terms[row] * square;
        }
    }

    /** Replaces each entry by the outcome of @p operation on it and the entry of @p other. */
    template <typename Operation>
    void Combine(const SphereContribution& other, Operation operation)
    {
        for (std::size_t row = 0; row < kSphereUnknowns; ++row)
        {
            for (std::size_t column = 0; column < kSphereUnknowns; ++column)
            {
                matrix[row][column] = operation(matrix[row][column], other.matrix[row][column]);
            }
            vector[row] = operation(vector[row], other.vector[row]);
        }
    }

    double matrix[kSphereUnknowns][kSphereUnknowns] = {};
    double vector[kSphereUnknowns] = {};
};

/** Adds what each point contributes, one point after the other. */
void AddContributions(const qPoint3d64f* points, std::size_t count, SphereContribution& sums);

} // namespace Zvl
