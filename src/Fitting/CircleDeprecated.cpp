#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Check.h"
#include "Fitting/CircleRejection.h"
#include "Fitting/Rejection.h"

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitCircle_Deprecated";
constexpr std::size_t kMinimumPoints = 3;
constexpr double kNull = GetNull<double>();

bool IsPointList(void* list)
{
    return list != nullptr && xqCastClass_ObjectIs(list, xxqArrayList_type) &&
           qArrayList_Type(list) == xxqPoint3d64f_type;
}

/** The two planes that a circle may lie in, by what they make of a point. */
struct Plane
{
    bool isXy;

    qPoint64f InPlane(const qPoint3d64f& point) const { return {point.x, isXy ? point.y : point.z}; }
    double Across(const qPoint3d64f& point) const { return isXy ? point.z : point.y; }

    qPoint3d64f ToSpace(const qPoint64f& point, double across) const
    {
        return isXy ? qPoint3d64f{point.x, point.y, across} : qPoint3d64f{point.x, across, point.y};
    }
};

/** Where the point of input index @p index stands among those that are kept. */
std::size_t PositionAmongKept(const CircleRejection& rejection, std::size_t index)
{
    std::size_t position = 0;
    for (std::size_t i = 0; i < index; ++i)
    {
        position += rejection.Kept(i) ? 1 : 0;
    }
    return position;
}

} // namespace

void FitCircle_Deprecated(void* points, int plane, double outlierPercent, qPoint3d64f* center, double* radius)
{
    ZVL_REQUIRE(kFunction, IsPointList(points) && center != nullptr && radius != nullptr);
    *center = {kNull, kNull, kNull};
    *radius = kNull;
    std::size_t count = qArrayList_Count(points);
    if (count < kMinimumPoints)
    {
        return;
    }

    const Plane projection{plane == 0};
    const auto* data = static_cast<const qPoint3d64f*>(qArrayList_Data(points));
    std::vector<qPoint64f> inPlane(count);
    double across = 0.0;
    for (std::size_t i = 0; i < count; ++i)
    {
        inPlane[i] = projection.InPlane(data[i]);
        across += projection.Across(data[i]);
    }

    CircleRejection rejection(kFunction, inPlane.data(), count);
    const std::size_t toKeep = count - CountToReject(count, outlierPercent, kMinimumPoints);
    while (rejection.Solve())
    {
        *center = projection.ToSpace(rejection.Center(), across / static_cast<double>(count));
        *radius = rejection.Radius();
        if (count == toKeep)
        {
            return;
        }
        const std::size_t position = PositionAmongKept(rejection, rejection.RejectFarthest());
        qPoint3d64f removed{};
        ZVL_CHECK(kFunction, qArrayList_Remove(points, position, &removed));
        across -= projection.Across(removed);
        --count;
    }
    *center = {kNull, kNull, kNull};
    *radius = kNull;
}

} // namespace Zvl
