#include "Fitting/SphereEquations.h"

#include <ZdkVisionLib/platform/qVision.h>

#include "Common/Check.h"

#include <algorithm>
#include <cmath>
#include <functional>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitSphere";
constexpr double kSmallestDeterminant = 1.1920928955078125e-07;

double* Entries(const Zo::Object<void*>& array)
{
    return static_cast<double*>(qArray2_At(array, 0, 0));
}

} // namespace

SphereEquations::SphereEquations(void* workAllocator) : allocator(workAllocator)
{
    Construct(pMat, kSphereUnknowns);
    Construct(pVec, 1);
    ZVL_CHECK(kFunction, qArray2_Zero(pMat));
    ZVL_CHECK(kFunction, qArray2_Zero(pVec));
}

void SphereEquations::Add(const qPoint3d64f* points, std::size_t count)
{
    AddContributions(points, count, sums);
}

void SphereEquations::Subtract(const qPoint3d64f& point)
{
    sums.Combine(SphereContribution(point), std::minus<>());
}

void SphereEquations::PrepareSolve()
{
    Construct(solution, 1);
    Construct(pMatInverse, kSphereUnknowns);
}

Sphere SphereEquations::Solve()
{
    Store();
    double determinant = 0.0;
    ZVL_CHECK(kFunction, qMatrix_Invert(pMat, pMatInverse, &determinant));
    if (std::fabs(determinant) < kSmallestDeterminant)
    {
        ZVL_THROW(kFunction, STATUS_NOT_SUPPORTED);
    }
    ZVL_CHECK(kFunction, qMatrix_Mul64f(pMatInverse, pVec, solution));
    const double* values = Entries(solution);
    const qPoint3d64f center{values[0] / 2, values[1] / 2, values[2] / 2};
    const double squaredRadius = values[3] + (center.x * center.x + center.y * center.y + center.z * center.z);
    if (!(squaredRadius >= 0.0))
    {
        ZVL_THROW(kFunction, 0);
    }
    return {center, std::sqrt(squaredRadius)};
}

void SphereEquations::Construct(Zo::Object<void*>& array, std::size_t columns) const
{
    ZVL_CHECK(kFunction, qArray2_Construct(array.Slot(), xxq64f_type, kSphereUnknowns, columns, allocator));
}

/** Writes the sums where the platform's routines read them. */
void SphereEquations::Store() const
{
    for (std::size_t row = 0; row < kSphereUnknowns; ++row)
    {
        std::copy_n(sums.matrix[row], kSphereUnknowns, Entries(pMat) + row * kSphereUnknowns);
    }
    std::copy_n(sums.vector, kSphereUnknowns, Entries(pVec));
}

} // namespace Zvl
