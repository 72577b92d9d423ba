#pragma once

/** @file
 *  The normal equations of an algebraic sphere, which points are added to and taken from. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

struct Sphere
{
    qPoint3d64f center;
    double radius;
};

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

/** The normal equations `pMat X = pVec` of the kept points. Failures are those of FitSphere() and bear its name. */
class SphereEquations
{
public:
    /** Equations of no point. @param workAllocator of all matrices */
    explicit SphereEquations(void* workAllocator);

    void Add(const qPoint3d64f* points, std::size_t count);

    /** Takes a point that was added out again; the sums keep their rounding errors. */
    void Subtract(const qPoint3d64f& point);

    /** Constructs what Solve() needs besides the equations. */
    void PrepareSolve();

    /** The sphere of the points that are in. */
    Sphere Solve();

private:
    void Construct(Zo::Object<void*>& array, std::size_t columns) const;
    void Store() const;

    void* allocator;
    SphereContribution sums;
    Zo::Object<void*> pMat;
    Zo::Object<void*> pVec;
    Zo::Object<void*> solution;
    Zo::Object<void*> pMatInverse;
};

} // namespace Zvl
