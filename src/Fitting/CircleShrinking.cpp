#include "Fitting/CircleShrinking.h"

#include "Fitting/BisectorCrossings.h"

#include <algorithm>
#include <array>
#include <limits>
#include <utility>

namespace Zvl
{

namespace
{

/** A circle through the pivots and one more point. */
struct Candidate
{
    qPoint64f point;
    qPoint64f center;
    double radius;
};

bool IsStrictlyBetween(double value, double a, double b)
{
    return std::min(a, b) < value && value < std::max(a, b);
}

/** A bound below which every squared distance is that of a smaller distance, however it is rounded. It saves the roots
 *  of nearly all points. */
double SquareBelow(double distance)
{
    constexpr double kHasAllDigits = 1e-200;
    const double square = distance * distance;
    return square > kHasAllDigits ? square * (1.0 - 1e-14) : 0.0;
}

/** Tells whether a point is one of several, which are ordered by x for the purpose. */
class PointSet
{
public:
    explicit PointSet(std::vector<DistPoint> members) : points(std::move(members))
    {
        std::sort(points.begin(), points.end(),
                  [](const DistPoint& a, const DistPoint& b) { return a.point.x < b.point.x; });
    }

    bool Contains(const qPoint64f& p) const
    {
        auto point = std::lower_bound(points.begin(), points.end(), p.x - 2.0 * kZoneEpsilon,
                                      [](const DistPoint& member, double x) { return member.point.x < x; });
        for (; point != points.end() && point->point.x <= p.x + 2.0 * kZoneEpsilon; ++point)
        {
            if (IsSamePoint(point->point, p))
            {
                return true;
            }
        }
        return false;
    }

private:
    std::vector<DistPoint> points;
};

class ShrinkingStep
{
public:
    ShrinkingStep(ShrinkingCircle& shrinking, std::span<const qPoint64f> fixed, const ZoneLine& path,
                  const qPoint64f& end)
        : circle(shrinking), pivots(fixed), line(path), limit(end), taken(shrinking.tempControlPoints)
    {
    }

    Shrinking Run()
    {
        const DistPoint* outsider = nullptr;
        for (std::size_t tried = 0; tried < circle.pDistances.size(); ++tried)
        {
            const std::optional<Candidate> candidate = CandidateThrough(tried);
            if (!candidate.has_value())
            {
                continue;
            }
            if (outsider != nullptr && IsOutside(outsider->point, *candidate))
            {
                continue;
            }
            const DistPoint* farthest = FarthestOutside(*candidate);
            if (farthest == nullptr)
            {
                Adopt(*candidate);
                return Shrinking::TookUpPoint;
            }
            outsider = farthest;
        }
        if (pivots.size() < 2)
        {
            return Shrinking::Failed;
        }
        LeaveDistances();
        circle.center = Middle(pivots[0], pivots[1]);
        circle.radius = Distance(pivots[0], pivots[1]) / 2.0;
        circle.tempControlPoints = {{pivots[0], 0.0}, {pivots[1], 0.0}};
        return Shrinking::CameToEnd;
    }

private:
    std::optional<Candidate> CandidateThrough(std::size_t index)
    {
        const std::size_t block = index / kBlock * kBlock;
        if (block != crossedBlock)
        {
            CrossBlock(block);
        }
        for (std::size_t pivot = 0; pivot < pivots.size(); ++pivot)
        {
            const qPoint64f center = {crossings[pivot].x[index - block], crossings[pivot].y[index - block]};
            if (IsStrictlyBetween(center.x, limit.x, circle.center.x) &&
                IsStrictlyBetween(center.y, limit.y, circle.center.y))
            {
                // Asked last: nearly all points have a centre elsewhere, or are none of those on the circle.
                const qPoint64f& point = circle.pDistances[index].point;
                return taken.Contains(point) ? std::nullopt
                                             : std::optional<Candidate>({point, center, Distance(center, pivots[0])});
            }
        }
        return std::nullopt;
    }

    /** Finds where the centres would be for the points of a block. */
    void CrossBlock(std::size_t block)
    {
        const std::size_t count = std::min(kBlock, circle.pDistances.size() - block);
        for (std::size_t pivot = 0; pivot < pivots.size(); ++pivot)
        {
            CrossBisectors(&circle.pDistances[block], count, pivots[pivot], line, crossings[pivot].x.data(),
                           crossings[pivot].y.data());
        }
        crossedBlock = block;
    }

    /** Points that define the circle are on it, whatever rounding says. */
    bool IsOn(const qPoint64f& point, const Candidate& candidate) const
    {
        return IsSamePoint(point, candidate.point) ||
               std::any_of(pivots.begin(), pivots.end(),
                           [&point](const qPoint64f& pivot) { return IsSamePoint(point, pivot); });
    }

    bool IsOutside(const qPoint64f& point, const Candidate& candidate) const
    {
        return Distance(point, candidate.center) > candidate.radius && !IsOn(point, candidate);
    }

    const DistPoint* FarthestOutside(const Candidate& candidate) const
    {
        const DistPoint* farthest = nullptr;
        double distance = candidate.radius;
        double nearerBelow = SquareBelow(distance);
        for (const DistPoint& item : circle.pDistances)
        {
            const double x = item.point.x - candidate.center.x;
            const double y = item.point.y - candidate.center.y;
            if (x * x + y * y < nearerBelow)
            {
                continue;
            }
            const double d = Distance(item.point, candidate.center);
            if (d > distance && !IsOn(item.point, candidate))
            {
                farthest = &item;
                distance = d;
                nearerBelow = SquareBelow(distance);
            }
        }
        return farthest;
    }

    double DistanceFrom(const Candidate& candidate, const qPoint64f& point) const
    {
        return IsOn(point, candidate) ? candidate.radius : Distance(point, candidate.center);
    }

    void Adopt(const Candidate& candidate)
    {
        circle.center = candidate.center;
        circle.radius = candidate.radius;
        circle.tempControlPoints.clear();
        for (DistPoint& item : circle.pDistances)
        {
            item.value = DistanceFrom(candidate, item.point);
            if (std::fabs(candidate.radius - item.value) < kZoneEpsilon)
            {
                circle.tempControlPoints.push_back(item);
            }
        }
    }

    /** Each circle that was tried in vain leaves the distances of the points ahead of the first one outside of it. From
     *  the last circle backwards, each sets those that the later ones have not reached. */
    void LeaveDistances()
    {
        std::vector<DistPoint>& items = circle.pDistances;
        std::size_t reached = 0;
        std::size_t blocking = 0; // never behind what is reached: a circle that leaves it out sets nothing
        for (std::size_t tried = items.size(); tried > 0; --tried)
        {
            const std::optional<Candidate> candidate = CandidateThrough(tried - 1);
            if (!candidate.has_value() || IsOutside(items[blocking].point, *candidate))
            {
                continue;
            }
            std::size_t first = 0;
            while (!IsOutside(items[first].point, *candidate))
            {
                ++first;
            }
            for (std::size_t i = reached; i < first; ++i)
            {
                items[i].value = DistanceFrom(*candidate, items[i].point);
            }
            reached = std::max(reached, first);
            blocking = first;
        }
    }

    static constexpr std::size_t kBlock = 256;
    static constexpr std::size_t kNoBlock = std::numeric_limits<std::size_t>::max();

    struct Crossings
    {
        std::array<double, kBlock> x;
        std::array<double, kBlock> y;
    };

    ShrinkingCircle& circle;
    std::span<const qPoint64f> pivots; // one or two
    const ZoneLine& line;
    qPoint64f limit;
    PointSet taken;
    std::size_t crossedBlock = kNoBlock;
    std::array<Crossings, 2> crossings; // of the points of that block, for each pivot
};

} // namespace

Shrinking Shrink(ShrinkingCircle& circle, std::span<const qPoint64f> pivots, const ZoneLine& line,
                 const qPoint64f& limit)
{
    return ShrinkingStep(circle, pivots, line, limit).Run();
}

} // namespace Zvl
