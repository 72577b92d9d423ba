#include "Fitting/OuterPoints.h"

#include <algorithm>
#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/OuterPoints.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

using Reals = hn::ScalableTag<double>;
using Vector = hn::Vec<Reals>;

constexpr std::size_t kGroups = 128;

/** The coordinates of as many points as a vector holds, and the squares of their distances from a centre. */
struct Measured
{
    Vector x;
    Vector y;
    Vector square;
};

HWY_INLINE Measured Measure(const qPoint64f* points, const Vector& centerX, const Vector& centerY)
{
    Measured measured;
    hn::LoadInterleaved2(Reals(), &points->x, measured.x, measured.y);
    const auto x = hn::Sub(measured.x, centerX);
    const auto y = hn::Sub(measured.y, centerY);
    measured.square = hn::Add(hn::Mul(x, x), hn::Mul(y, y));
    return measured;
}

/** A group is what passes through one lane of a stretch of vectors.
 *  @param farthest room for an entry for each lane of each stretch
 *  @return the number of points in whole vectors; the others are in no group */
std::size_t GroupWholeVectors(const qPoint64f* points, std::size_t count, const qPoint64f& center, DistPoint* farthest,
                              std::size_t& groups)
{
    const Reals d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t whole = count / lanes * lanes;
    const std::size_t stretch = (whole + kGroups - 1) / kGroups * lanes; // so that there are no more than kGroups lanes
    const auto centerX = hn::Set(d, center.x);
    const auto centerY = hn::Set(d, center.y);
    groups = 0;
    for (std::size_t begin = 0; begin < whole; begin += stretch)
    {
        Measured best = Measure(points + begin, centerX, centerY);
        const std::size_t end = std::min(begin + stretch, whole);
        for (std::size_t i = begin + lanes; i < end; i += lanes)
        {
            const Measured next = Measure(points + i, centerX, centerY);
            const auto isFarther = hn::Gt(next.square, best.square);
            best.x = hn::IfThenElse(isFarther, next.x, best.x);
            best.y = hn::IfThenElse(isFarther, next.y, best.y);
            best.square = hn::Max(best.square, next.square);
        }
        hn::StoreInterleaved3(best.x, best.y, best.square, d, &farthest[groups].point.x);
        groups += lanes;
    }
    return whole;
}

/** Puts the points of whole vectors with @p square or more to @p beyond, which has room for @p most.
 *  @return the number of points in whole vectors
 *  @param found the number of points that were put; more than @p most when there was not room for all */
std::size_t SelectWholeVectors(const qPoint64f* points, std::size_t count, const qPoint64f& center, double square,
                               DistPoint* beyond, std::size_t most, std::size_t& found)
{
    const Reals d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t whole = count / lanes * lanes;
    const auto centerX = hn::Set(d, center.x);
    const auto centerY = hn::Set(d, center.y);
    const auto bound = hn::Set(d, square);
    HWY_ALIGN double squares[hn::MaxLanes(Reals())];
    found = 0;
    for (std::size_t i = 0; i < whole; i += lanes)
    {
        const Measured measured = Measure(points + i, centerX, centerY);
        if (hn::AllFalse(d, hn::Ge(measured.square, bound)))
        {
            continue;
        }
        hn::Store(measured.square, d, squares);
        for (std::size_t lane = 0; lane < lanes; ++lane)
        {
            if (squares[lane] >= square && found++ < most)
            {
                beyond[found - 1] = {points[i + lane], 0.0};
            }
        }
    }
    return whole;
}

/** @return the number of points in whole vectors
 *  @param smallest the least square among them */
std::size_t SmallestOfWholeVectors(const qPoint64f* points, std::size_t count, const qPoint64f& center,
                                   double& smallest)
{
    const Reals d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t whole = count / lanes * lanes;
    const auto centerX = hn::Set(d, center.x);
    const auto centerY = hn::Set(d, center.y);
    auto least = hn::Set(d, std::numeric_limits<double>::infinity());
    for (std::size_t i = 0; i < whole; i += lanes)
    {
        least = hn::Min(least, Measure(points + i, centerX, centerY).square);
    }
    smallest = hn::GetLane(hn::MinOfLanes(d, least));
    return whole;
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(GroupWholeVectors);
HWY_EXPORT(SelectWholeVectors);
HWY_EXPORT(SmallestOfWholeVectors);

namespace
{

constexpr std::size_t kMostGroups = 256; // room for the 128 groups, however the lanes fill up

double SquaredDistance(const qPoint64f& a, const qPoint64f& b)
{
    const double x = a.x - b.x;
    const double y = a.y - b.y;
    return x * x + y * y;
}

} // namespace

std::vector<DistPoint> FarthestOfGroups(std::span<const qPoint64f> points, const qPoint64f& center)
{
    std::vector<DistPoint> farthest(kMostGroups);
    std::size_t groups = 0;
    const std::size_t whole =
        HWY_DYNAMIC_DISPATCH(GroupWholeVectors)(points.data(), points.size(), center, farthest.data(), groups);
    farthest.resize(groups);
    for (const qPoint64f& point : points.subspan(whole))
    {
        farthest.push_back({point, SquaredDistance(point, center)});
    }
    return farthest;
}

std::optional<std::vector<DistPoint>> PointsBeyond(std::span<const qPoint64f> points, const qPoint64f& center,
                                                   double distance, std::size_t most)
{
    const double square = distance > 0.0 ? distance * distance : 0.0;
    std::vector<DistPoint> beyond(most);
    std::size_t found = 0;
    const std::size_t whole = HWY_DYNAMIC_DISPATCH(SelectWholeVectors)(points.data(), points.size(), center, square,
                                                                       beyond.data(), most, found);
    if (found > most)
    {
        return std::nullopt;
    }
    beyond.resize(found);
    for (const qPoint64f& point : points.subspan(whole))
    {
        if (SquaredDistance(point, center) >= square)
        {
            beyond.push_back({point, 0.0});
        }
    }
    return beyond;
}

DistPoint NearestPoint(std::span<const qPoint64f> points, const qPoint64f& center)
{
    double square = 0.0;
    const std::size_t whole =
        HWY_DYNAMIC_DISPATCH(SmallestOfWholeVectors)(points.data(), points.size(), center, square);
    for (const qPoint64f& point : points.subspan(whole))
    {
        square = std::min(square, SquaredDistance(point, center));
    }
    // Several squares can have the same root, so that the first of the nearest need not have the least square.
    const double distance = std::sqrt(square);
    const double farther = square * (1.0 + 1e-14);
    const auto nearest = std::find_if(points.begin(), points.end(),
                                      [&](const qPoint64f& point)
                                      {
                                          const double other = SquaredDistance(point, center);
                                          return other <= farther && std::sqrt(other) == distance;
                                      });
    return {*nearest, distance};
}

} // namespace Zvl
#endif
