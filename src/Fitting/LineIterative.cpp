#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Check.h"
#include "Fitting/LineRejection.h"
#include "Fitting/Rejection.h"

#include <cmath>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitLineIterative";
constexpr std::size_t kMinimumPoints = 2;

/** CountToReject() for a percentage that may be negative: as a number without sign, less than none is more than
 *  all. */
std::size_t LinePointsToReject(std::size_t count, double percent)
{
    const double wanted = std::trunc((percent / 100.0) * static_cast<double>(count));
    return wanted < 0.0 ? count - kMinimumPoints : CountToReject(count, percent, kMinimumPoints);
}

} // namespace

void FitLineIterative(const qPoint64f* points, std::size_t count, double outlierPercent, double* slope,
                      double* intercept, void** outliers, void* allocator)
{
    ZVL_REQUIRE(kFunction, slope != nullptr && intercept != nullptr);
    *slope = GetNull<double>();
    *intercept = GetNull<double>();
    ZVL_REQUIRE(kFunction, count >= kMinimumPoints);

    Zo::Object<void*> pointList;
    Zo::Object<void*> arrOutliersInternal;
    ZVL_CHECK(kFunction, qArrayList_Construct(pointList.Slot(), xxqPoint64f_type, count, allocator));
    ZVL_CHECK(kFunction, qArrayList_Import(pointList, points, count));
    ZVL_CHECK(kFunction, qArrayList_Construct(arrOutliersInternal.Slot(), xxqBool_type, 0, allocator));
    ZVL_CHECK(kFunction, qArrayList_Resize(arrOutliersInternal, count));
    ZVL_CHECK(kFunction, qArrayList_Zero(arrOutliersInternal));
    const auto* copies = static_cast<const qPoint64f*>(qArrayList_Data(pointList));
    auto* flags = static_cast<int*>(qArrayList_Data(arrOutliersInternal));

    const std::size_t toReject = LinePointsToReject(count, outlierPercent);
    if (toReject > 0)
    {
        LineRejection rejection(copies, flags, count);
        std::size_t rejected = 0;
        while (rejected < toReject && rejection.RejectFarthest())
        {
            ++rejected;
        }
    }
    FitLine(copies, flags, count, slope, intercept);
    if (outliers != nullptr)
    {
        *outliers = arrOutliersInternal.Detach();
    }
}

} // namespace Zvl
