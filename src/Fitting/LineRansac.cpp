#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Check.h"
#include "Fitting/LineDistance.h"
#include "Fitting/LineSums.h"

#include <algorithm>
#include <cmath>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::FitLineRansac";
constexpr double kLeastSample = 3.0;
constexpr double kRandomWords = 18446744073709551616.0; // 2^64

Zo::Object<void*> MakePointList(std::size_t capacity)
{
    Zo::Object<void*> list;
    ZVL_CHECK(kFunction, qArrayList_Construct(list.Slot(), xxqPoint64f_type, capacity, nullptr));
    return list;
}

/** Fills @p sample with points drawn with replacement. */
void Draw(const qPoint64f* points, std::size_t count, qPoint64f* sample, std::size_t size)
{
    const double scale = static_cast<double>(count) / kRandomWords;
    for (std::size_t i = 0; i < size; ++i)
    {
        const double index = static_cast<double>(qRandomSize()) * scale;
        // The largest words become 2^64 as a double, and their index the count.
        sample[i] = points[std::min(static_cast<std::size_t>(index), count - 1)];
    }
}

bool IsNear(const qPoint64f& point, const Line& line, double threshold)
{
    return threshold > PointToLineDistance(&point, line.slope, line.intercept, nullptr, nullptr);
}

std::size_t CountNear(const qPoint64f* points, std::size_t count, const Line& line, double threshold)
{
    std::size_t near = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        near += IsNear(points[i], line, threshold) ? 1 : 0;
    }
    return near;
}

} // namespace

void FitLineRansac(const qPoint64f* points, std::size_t count, double sampleRatio, std::size_t iterations,
                   double threshold, double* slope, double* intercept)
{
    ZVL_REQUIRE(kFunction, slope != nullptr && intercept != nullptr);
    const double ratio = std::clamp(sampleRatio, 0.0, 1.0);
    const double wanted = std::max(kLeastSample, static_cast<double>(count) * ratio);
    // Compared as doubles: the nearest one of a large count may be more than a size can hold.
    if (points == nullptr || wanted > static_cast<double>(count))
    {
        ZVL_THROW(kFunction, 0);
    }
    const std::size_t sampleSize = wanted < static_cast<double>(count) ? static_cast<std::size_t>(wanted) : count;

    const Zo::Object<void*> hypoInliners = MakePointList(sampleSize);
    const Zo::Object<void*> consensusSet = MakePointList(sampleSize);
    ZVL_CHECK(kFunction, qArrayList_Resize(hypoInliners, sampleSize));
    auto* sample = static_cast<qPoint64f*>(qArrayList_Data(hypoInliners));
    std::size_t best = 0;
    for (std::size_t iteration = 0; iteration < iterations; ++iteration)
    {
        Draw(points, count, sample, sampleSize);
        const Line line = SolveLine(SumPoints(sample, nullptr, sampleSize), sample, nullptr, sampleSize);
        // A null line would reach points near the origin, where its distance is a quotient of two overflows.
        const std::size_t near = line.slope == GetNull<double>() ? 0 : CountNear(points, count, line, threshold);
        if (best < near)
        {
            best = near;
            ZVL_CHECK(kFunction, qArrayList_Resize(consensusSet, near));
            std::copy_if(points, points + count, static_cast<qPoint64f*>(qArrayList_Data(consensusSet)),
                         [&](const qPoint64f& point) { return IsNear(point, line, threshold); });
            FitLine(static_cast<const qPoint64f*>(qArrayList_Data(consensusSet)), nullptr, near, slope, intercept);
        }
    }
}

} // namespace Zvl
