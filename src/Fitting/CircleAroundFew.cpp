#include "Fitting/CircleAroundFew.h"

#include "Fitting/OuterPoints.h"

#include <algorithm>
#include <limits>
#include <utility>

namespace Zvl
{

namespace
{

constexpr int kMostAttempts = 4;
constexpr std::size_t kMostCircles = 20; // on one way; a pass over the points looks at each

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

/** True when one of the discs lies within the circle by the margin. */
bool HasOneWithin(std::span<const Disc> discs, const ShrinkingCircle& circle, double margin)
{
    return std::any_of(discs.begin(), discs.end(),
                       [&](const Disc& disc)
                       { return Distance(disc.center, circle.center) + disc.radius <= circle.radius - margin; });
}

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

/** How the steps around some of the points have ended. */
struct Spread
{
    ShrinkingCircle circle;
    std::vector<Disc> way; ///< the circles from the first to the last
    bool isProven;         ///< that the points that were left out had no part in any of them
};

/** Takes the steps with some of the points.
 *  @param around all others lie in each of these discs; with none, nothing is proven
 *  @return nothing when there is no way to go on */
std::optional<Spread> SpreadSome(std::vector<DistPoint> some, const qPoint64f& mean, std::span<const Disc> around)
{
    Spread spread = {CircleAround(mean, std::move(some)), {}, true};
    ShrinkingCircle& circle = spread.circle;
    // When the first circle holds a disc, it is the one around all points, and these lengths hold for them, too.
    const Lengths lengths = LengthsOf(circle);
    const auto arriveAt = [&](const ShrinkingCircle& reached)
    {
        spread.way.push_back({reached.center, reached.radius});
        spread.isProven = spread.isProven && HasOneWithin(around, reached, lengths.margin);
    };
    const auto inspect = [&](const ShrinkingWay& way, const ShrinkingCircle& reached)
    {
        arriveAt(reached);
        spread.isProven = spread.isProven && StepProof(way, reached, lengths).Holds();
        return spread.way.size() < kMostCircles;
    };
    arriveAt(circle);
    const Spreading ending = ShrinkUntilSpread(circle, inspect);
    const bool isDone = ending == Spreading::Done || ending == Spreading::DoneOnDiameter;
    return isDone ? std::optional(std::move(spread)) : std::nullopt;
}

/** The circles of a way, smaller by an allowance. */
std::vector<Disc> DiscsWithin(std::vector<Disc> way, double allowance)
{
    for (Disc& disc : way)
    {
        disc.radius -= allowance;
    }
    return way;
}

/** How deep inside of the last circle the outermost eighth of the points lies. */
double DepthOfEighth(const Spread& spread)
{
    std::vector<double> depths;
    depths.reserve(spread.circle.pDistances.size());
    for (const DistPoint& item : spread.circle.pDistances)
    {
        depths.push_back(spread.circle.radius - Distance(item.point, spread.circle.center));
    }
    const auto eighth = depths.begin() + static_cast<std::ptrdiff_t>(depths.size() / 8);
    std::nth_element(depths.begin(), eighth, depths.end());
    return std::max(*eighth, 0.0);
}

/** The points of the circle, and of each group the one that lies farthest from its centre. */
std::vector<DistPoint> WithFarthest(ShrinkingCircle circle, std::span<const qPoint64f> points)
{
    std::vector<DistPoint> items = std::move(circle.pDistances);
    const std::vector<DistPoint> farthest = FarthestOfGroups(points, circle.center);
    items.insert(items.end(), farthest.begin(), farthest.end());
    return items;
}

} // namespace

std::optional<ShrinkingCircle> SpreadAroundFew(std::span<const qPoint64f> points, const qPoint64f& mean,
                                               std::vector<DistPoint> outer)
{
    std::optional<Spread> spread = SpreadSome(std::move(outer), mean, {});
    if (!spread.has_value())
    {
        return std::nullopt;
    }
    const double least = 8.0 * LengthsOf(spread->circle).margin;
    double allowance = least + 0.3 * DepthOfEighth(*spread);
    for (int attempt = 0; attempt < kMostAttempts; ++attempt)
    {
        const std::vector<Disc> discs = DiscsWithin(spread->way, allowance);
        if (auto few = PointsBeyond(points, discs, 512 + points.size() / 16))
        {
            spread = SpreadSome(std::move(*few), mean, discs);
        }
        else
        {
            spread = SpreadSome(WithFarthest(std::move(spread->circle), points), mean, {});
            allowance = least;
        }
        if (!spread.has_value() || spread->isProven)
        {
            break;
        }
    }
    return spread.has_value() && spread->isProven ? std::optional(std::move(spread->circle)) : std::nullopt;
}

} // namespace Zvl
