#include "Fitting/OuterPoints.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cstdint>
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

/** At most 32 bytes: points begin anywhere in a cache line, and wider loads would all cross its end. */
using Reals = hn::CappedTag<double, 4>;
using Vector = hn::Vec<Reals>;

constexpr std::size_t kGroups = 48; // enough to show every side, and few for steps around them

/** The coordinates of points in the lanes. */
struct Coordinates
{
    Vector x;
    Vector y;
};

HWY_INLINE Coordinates LoadInOrder(const qPoint64f* points)
{
    Coordinates coordinates;
    hn::LoadInterleaved2(Reals(), &points->x, coordinates.x, coordinates.y);
    return coordinates;
}

/** As LoadInOrder(), but with the points in whatever lanes they get to soonest. */
HWY_INLINE Coordinates LoadUnordered(const qPoint64f* points)
{
#if HWY_TARGET == HWY_SCALAR
    return LoadInOrder(points);
#else
    const Reals d;
    const auto first = hn::LoadU(d, &points->x);
    const auto second = hn::LoadU(d, &points->x + hn::Lanes(d));
    return {hn::InterleaveLower(d, first, second), hn::InterleaveUpper(d, first, second)};
#endif
}

/** The squares of the distances from centres. */
HWY_INLINE Vector SquaresFrom(const Coordinates& points, const Vector& centerX, const Vector& centerY)
{
    const auto x = hn::Sub(points.x, centerX);
    const auto y = hn::Sub(points.y, centerY);
    return hn::Add(hn::Mul(x, x), hn::Mul(y, y));
}

/** Places on a circle, a golden angle from one lane to the next, and from the last lane to the first of the next vector, so
 *  that they are spread evenly however many there are. */
class PlacesAround
{
public:
    PlacesAround(const qPoint64f& middle, double radius) : middleX(hn::Set(d, middle.x)), middleY(hn::Set(d, middle.y))
    {
        constexpr double kCosine = -0.7373688780783197;
        constexpr double kSine = 0.6754902942615238;
        HWY_ALIGN double x[hn::MaxLanes(Reals())];
        HWY_ALIGN double y[hn::MaxLanes(Reals())];
        qPoint64f direction = {1.0, 0.0};
        for (std::size_t lane = 0; lane < hn::Lanes(d); ++lane)
        {
            x[lane] = radius * direction.x;
            y[lane] = radius * direction.y;
            direction = {kCosine * direction.x - kSine * direction.y, kSine * direction.x + kCosine * direction.y};
        }
        offsetX = hn::Load(d, x);
        offsetY = hn::Load(d, y);
        cosine = hn::Set(d, direction.x);
        sine = hn::Set(d, direction.y);
    }

    Coordinates Next()
    {
        const Coordinates places = {hn::Add(middleX, offsetX), hn::Add(middleY, offsetY)};
        const auto turnedX = hn::Sub(hn::Mul(cosine, offsetX), hn::Mul(sine, offsetY));
        offsetY = hn::Add(hn::Mul(sine, offsetX), hn::Mul(cosine, offsetY));
        offsetX = turnedX;
        return places;
    }

private:
    Reals d;
    Vector middleX;
    Vector middleY;
    Vector offsetX;
    Vector offsetY;
    Vector cosine; // of the turn from one vector to the next
    Vector sine;
};

/** A group is what passes through one lane of a stretch of vectors. Each looks from a place of its own at a distance of
 *  @p offset from @p middle, and so at another side of the points.
 *  @param farthest gets the farthest point of each group; it has room for each lane of each stretch
 *  @return the number of points in whole vectors; the others are in no group */
std::size_t GroupWholeVectors(std::span<const qPoint64f> points, const qPoint64f& middle, double offset,
                              DistPoint* farthest, std::size_t& groups)
{
    const Reals d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t whole = points.size() / lanes * lanes;
    const std::size_t stretch = (whole + kGroups - 1) / kGroups * lanes; // so that there are no more than kGroups lanes
    PlacesAround around(middle, offset);
    groups = 0;
    for (std::size_t begin = 0; begin < whole; begin += stretch)
    {
        const Coordinates places = around.Next();
        Coordinates best = places;
        auto bestSquares = hn::Set(d, -1.0);
        const std::size_t end = std::min(begin + stretch, whole);
        for (std::size_t i = begin; i < end; i += lanes)
        {
            const Coordinates next = LoadUnordered(&points[i]);
            const auto squares = SquaresFrom(next, places.x, places.y);
            const auto areFarther = hn::Gt(squares, bestSquares);
            best.x = hn::IfThenElse(areFarther, next.x, best.x);
            best.y = hn::IfThenElse(areFarther, next.y, best.y);
            bestSquares = hn::Max(bestSquares, squares); // sooner known than by a choice
        }
        hn::StoreInterleaved3(best.x, best.y, bestSquares, d, &farthest[groups].point.x);
        groups += lanes;
    }
    return whole;
}

/** True for each lane at or beyond the square of one of the bounds. */
HWY_INLINE hn::Mask<Reals> AreBeyond(const Coordinates& points, std::span<const DistPoint> bounds)
{
    const Reals d;
    auto areBeyond = hn::Ne(points.x, points.x);
    for (const DistPoint& bound : bounds)
    {
        const auto squares = SquaresFrom(points, hn::Set(d, bound.point.x), hn::Set(d, bound.point.y));
        areBeyond = hn::Or(areBeyond, hn::Ge(squares, hn::Set(d, bound.value)));
    }
    return areBeyond;
}

/** Puts the points of whole vectors that are beyond one of the bounds, centres with squares, to @p beyond, which has room
 *  for all. The core lies within all bounds, and most points within it.
 *  @return the number of points in whole vectors
 *  @param found the number of points that were put */
std::size_t SelectWholeVectors(std::span<const qPoint64f> points, const DistPoint& core,
                               std::span<const DistPoint> bounds, DistPoint* beyond, std::size_t& found)
{
    const Reals d;
    const std::size_t lanes = hn::Lanes(d);
    const std::size_t whole = points.size() / lanes * lanes;
    const auto coreX = hn::Set(d, core.point.x);
    const auto coreY = hn::Set(d, core.point.y);
    const auto coreSquare = hn::Set(d, core.value);
    std::uint8_t bits[8] = {}; // StoreMaskBits() wants room for eight bytes
    found = 0;
    for (std::size_t i = 0; i < whole; i += lanes)
    {
        const auto squares = SquaresFrom(LoadUnordered(&points[i]), coreX, coreY);
        if (hn::AllFalse(d, hn::Ge(squares, coreSquare)))
        {
            continue;
        }
        hn::StoreMaskBits(d, AreBeyond(LoadInOrder(&points[i]), bounds), bits);
        for (unsigned rest = bits[0]; rest != 0; rest &= rest - 1)
        {
            beyond[found++] = {points[i + static_cast<std::size_t>(std::countr_zero(rest))], 0.0};
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
        least = hn::Min(least, SquaresFrom(LoadUnordered(points + i), centerX, centerY));
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

constexpr std::size_t kAtOnce = 512;     // a multiple of any number of lanes
constexpr std::size_t kMostGroups = 128; // room for the 48 groups, however the lanes fill up

double SquaredDistance(const qPoint64f& a, const qPoint64f& b)
{
    const double x = a.x - b.x;
    const double y = a.y - b.y;
    return x * x + y * y;
}

double SquareOfPositive(double radius)
{
    return radius > 0.0 ? radius * radius : 0.0;
}

/** A centre and the square of a radius: what is nearer lies in all discs, however their borders are rounded. */
DistPoint CoreOf(std::span<const Disc> discs)
{
    const qPoint64f& center = discs.back().center;
    double radius = discs.back().radius;
    for (const Disc& disc : discs)
    {
        radius = std::min(radius, disc.radius - Distance(disc.center, center));
    }
    const double rounding = 1e-9 * (std::fabs(center.x) + std::fabs(center.y) + radius);
    return {center, SquareOfPositive(radius - rounding)};
}

struct Bounds
{
    qPoint64f least;
    qPoint64f most;
};

/** The bounds of some of the points. Clouds end flat: few points tell the middle of the bounds better than they tell the
 *  mean. */
Bounds BoundsOfSome(std::span<const qPoint64f> points)
{
    constexpr std::size_t kSome = 128;
    constexpr std::uint64_t kGoldenRatio = 0x9E3779B9; // of 2^32
    const std::size_t some = std::min(points.size(), kSome);
    const std::size_t stride = points.size() / some;
    Bounds bounds = {points[0], points[0]};
    for (std::size_t i = 0; i < some; ++i)
    {
        // At another place in each stride, lest they are all of one column of a map.
        const std::size_t place = i * kGoldenRatio % (1ULL << 32) * stride >> 32;
        const qPoint64f& point = points[i * stride + place];
        bounds.least = {std::min(bounds.least.x, point.x), std::min(bounds.least.y, point.y)};
        bounds.most = {std::max(bounds.most.x, point.x), std::max(bounds.most.y, point.y)};
    }
    return bounds;
}

std::vector<DistPoint> FarthestAround(const qPoint64f& middle, double offset, std::span<const qPoint64f> points)
{
    std::vector<DistPoint> farthest(kMostGroups);
    std::size_t groups = 0;
    const std::size_t whole = HWY_DYNAMIC_DISPATCH(GroupWholeVectors)(points, middle, offset, farthest.data(), groups);
    farthest.resize(groups);
    for (const qPoint64f& point : points.subspan(whole))
    {
        farthest.push_back({point, SquaredDistance(point, middle)});
    }
    return farthest;
}

} // namespace

std::vector<DistPoint> OutermostPoints(std::span<const qPoint64f> points)
{
    const Bounds bounds = BoundsOfSome(points);
    // More than the middle is off, lest most groups look at one side; but not by much, as they look for the farthest.
    const double offset = 0.02 * std::max(bounds.most.x - bounds.least.x, bounds.most.y - bounds.least.y);
    return FarthestAround(Middle(bounds.least, bounds.most), offset, points);
}

std::vector<DistPoint> FarthestOfGroups(std::span<const qPoint64f> points, const qPoint64f& center)
{
    return FarthestAround(center, 0.0, points);
}

std::optional<std::vector<DistPoint>> PointsBeyond(std::span<const qPoint64f> points, std::span<const Disc> discs,
                                                   std::size_t most)
{
    std::vector<DistPoint> bounds;
    for (const Disc& disc : discs)
    {
        bounds.push_back({disc.center, SquareOfPositive(disc.radius)});
    }
    const DistPoint core = CoreOf(discs);
    std::vector<DistPoint> selected;
    std::array<DistPoint, kAtOnce> beyond;
    std::span<const qPoint64f> rest = points;
    for (std::size_t whole = kAtOnce; whole == kAtOnce; rest = rest.subspan(whole))
    {
        std::size_t found = 0;
        const auto some = rest.first(std::min(kAtOnce, rest.size()));
        whole = HWY_DYNAMIC_DISPATCH(SelectWholeVectors)(some, core, bounds, beyond.data(), found);
        selected.insert(selected.end(), beyond.begin(), beyond.begin() + static_cast<std::ptrdiff_t>(found));
        if (selected.size() > most)
        {
            return std::nullopt;
        }
    }
    for (const qPoint64f& point : rest)
    {
        if (std::any_of(bounds.begin(), bounds.end(),
                        [&point](const DistPoint& bound)
                        { return SquaredDistance(point, bound.point) >= bound.value; }))
        {
            selected.push_back({point, 0.0});
        }
    }
    return selected;
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
