#pragma once

/** @file
 *  The normal equations of an algebraic sphere, which points are added to and taken from. */

#include "Fitting/SphereSums.h"

namespace Zvl
{

struct Sphere
{
    qPoint3d64f center;
    double radius;
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
