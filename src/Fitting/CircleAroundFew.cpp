#include "Fitting/CircleAroundFew.h"

#include "Fitting/OuterPoints.h"

#include <algorithm>
#include <utility>

namespace Zvl
{

namespace
{

constexpr int kMostAttempts = 3;

/** Lengths that the proof compares. */
struct Lengths
{
    double size;   ///< of everything that is computed with: coordinates, and distances several times over
    double margin; ///< so far inside of a circle, a point has no part in it
};

Lengths LengthsOf(const ShrinkingCircle& first)
{
    // A centre comes out of a division by a determinant that can be as small as the tolerance: what is rounded at 1e-16 of
    // the size, some ten times, becomes an error of 1e-8 of the size. A sixteenth of the margin is more than that.
    const double size = std::max(std::fabs(first.center.x), std::fabs(first.center.y)) + 5.0 * first.radius;
    return {size, 1e-6 * size + 32.0 * kZoneEpsilon};
}

/** The points that a shortlist leaves out lie all within a circle. */
struct LeftOut
{
    qPoint64f center;
    double radius;

    bool LiesWithin(const qPoint64f& aroundCenter, double aroundRadius, double margin) const
    {
        return Distance(center, aroundCenter) + radius <= aroundRadius - margin;
    }
};

/** Why a step takes up the same point when others are left out.
 *
 *  The centre moves along a line and is at the place s; the circle goes through a pivot a. How far a point p is outside,
 *  `f(p, s) = |p - c(s)|² - |a - c(s)|²`, changes at a constant rate with s. No point is outside at the beginning. The
 *  step takes up a point w where it comes to the border.
 *
 *  A point q that was left out lies inside by the margin at the beginning and at the end of the step. As f(q, s) is
 *  straight, q is at the border only before the beginning or beyond the end, and by so much that rounding does not bring
 *  its centre back. In the latter case f(w, s) is positive there: w is outside of the circle through q, and q is not taken
 *  up. For this the rate of w must be more than what rounding makes of zero. When the way is gone to its end, between two
 *  points, no q has been at the border at all. */
class StepProof
{
public:
    StepProof(const ShrinkingWay& taken, const ShrinkingCircle& reached, const Lengths& lengthsUsed)
        : way(taken), circle(reached), lengths(lengthsUsed)
    {
    }

    bool Holds() const
    {
        return circle.radius >= way.radius / 2.0 && BeginsOnLine() &&
               (EndsOnDiameter() || std::any_of(circle.tempControlPoints.begin(), circle.tempControlPoints.end(),
                                                [this](const DistPoint& item) { return KeepsOthersOut(item.point); }));
    }

private:
    /** The circle begins in the family of circles that the step goes through. */
    bool BeginsOnLine() const
    {
        const double x = way.center.x - way.line.point.x;
        const double y = way.center.y - way.line.point.y;
        return std::fabs(x * way.line.direction.y - y * way.line.direction.x) <= lengths.margin / 16.0;
    }

    bool EndsOnDiameter() const { return circle.center.x == way.limit.x && circle.center.y == way.limit.y; }

    bool WasOnCircle(const qPoint64f& point) const
    {
        return std::any_of(way.onCircle.begin(), way.onCircle.end(),
                           [&point](const DistPoint& item) { return IsSamePoint(item.point, point); });
    }

    /** True for a point that came to the border in the step and leaves the circle soon enough beyond. */
    bool KeepsOthersOut(const qPoint64f& point) const
    {
        const qPoint64f& pivot = way.pivots[0];
        const qPoint64f& direction = way.line.direction;
        const double forward =
            (way.limit.x - way.center.x) * direction.x + (way.limit.y - way.center.y) * direction.y < 0.0 ? -1.0 : 1.0;
        const double rate = -2.0 * forward * ((point.x - pivot.x) * direction.x + (point.y - pivot.y) * direction.y);
        const double offBorder = std::fabs(Distance(point, circle.center) - circle.radius);
        const double rounding = offBorder + 1e-14 * lengths.size;
        return rate * lengths.margin >= 64.0 * way.radius * rounding && !WasOnCircle(point);
    }

    const ShrinkingWay& way;
    const ShrinkingCircle& circle;
    const Lengths& lengths;
};

/** The circle around the farthest points of groups, as a guess, and how far from its centre those points lie at least
 *  that the steps can depend on. */
struct Guess
{
    qPoint64f center;
    double outside;
};

std::optional<Guess> GuessAround(ShrinkingCircle circle)
{
    struct Visited
    {
        qPoint64f center;
        double radius;
    };
    std::vector<Visited> visited = {{circle.center, circle.radius}};
    const auto visit = [&visited](const ShrinkingWay& /*way*/, const ShrinkingCircle& reached)
    {
        visited.push_back({reached.center, reached.radius});
        return true;
    };
    if (ShrinkUntilSpread(circle, visit) == Spreading::Stuck)
    {
        return std::nullopt;
    }
    Guess guess = {circle.center, circle.radius};
    for (const Visited& step : visited)
    {
        guess.outside = std::min(guess.outside, step.radius - Distance(step.center, circle.center));
    }
    return guess;
}

/** Takes the steps without the points that are left out.
 *  @return nothing when a circle comes too near to those, or proves nothing about them */
std::optional<ShrinkingCircle> SpreadWithout(const LeftOut& leftOut, std::span<const qPoint64f> points,
                                             const qPoint64f& mean, const Lengths& lengths)
{
    auto few = PointsBeyond(points, leftOut.center, leftOut.radius, 512 + points.size() / 16);
    if (!few.has_value())
    {
        return std::nullopt;
    }
    ShrinkingCircle circle = CircleAround(mean, std::move(*few));
    if (!leftOut.LiesWithin(circle.center, circle.radius, lengths.margin))
    {
        return std::nullopt;
    }
    const auto isProven = [&](const ShrinkingWay& way, const ShrinkingCircle& reached)
    {
        return leftOut.LiesWithin(reached.center, reached.radius, lengths.margin) &&
               StepProof(way, reached, lengths).Holds();
    };
    const Spreading ending = ShrinkUntilSpread(circle, isProven);
    const bool isDone = ending == Spreading::Done || ending == Spreading::DoneOnDiameter;
    return isDone ? std::optional(std::move(circle)) : std::nullopt;
}

} // namespace

std::optional<ShrinkingCircle> SpreadAroundFew(std::span<const qPoint64f> points, const qPoint64f& mean)
{
    const ShrinkingCircle first = CircleAround(mean, FarthestOfGroups(points, mean));
    const Lengths lengths = LengthsOf(first);
    const std::optional<Guess> guess = GuessAround(first);
    if (!guess.has_value())
    {
        return std::nullopt;
    }
    double allowance = 8.0 * lengths.margin + (first.radius - guess->outside) * 0.25;
    for (int attempt = 0; attempt < kMostAttempts; ++attempt)
    {
        if (auto circle = SpreadWithout({guess->center, guess->outside - allowance}, points, mean, lengths))
        {
            return circle;
        }
        allowance *= 4.0;
    }
    return std::nullopt;
}

} // namespace Zvl
