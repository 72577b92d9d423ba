#include "Geometry/RotatedBounds.h"

#include "Alignment/Degrees.h"
#include "Common/Check.h"
#include "Geometry/ConvexChain.h"
#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::GetRotatedBounds";

constexpr int kSteps = 1800; ///< directions of half a turn
constexpr int kCoarseStep = 10;
constexpr int kPerpendicular = kSteps / 2; ///< from a direction to the one at a right angle
static_assert(kPerpendicular % kCoarseStep == 0, "the coarse pass must visit both directions of a rectangle");

constexpr double kDegreesPerStep = 180.0 / kSteps;
constexpr double kCellUnits = 10.0;      ///< a cell's width before the fixed point
constexpr double kFixedPoint = 8192.0;   ///< 13 fractional bits
constexpr double kLongestReach = 0x1p61; ///< projections below it leave room for their sums and differences

// Extents of large maps take more than 32 bits, so that their product overflows 64.
__extension__ using Area = __int128;

using Chains = std::array<std::span<const qPoint32s>, 2>;

double DegreesOf(int direction)
{
    return direction * kDegreesPerStep;
}

double RadiansOf(int direction)
{
    return ToRadians(DegreesOf(direction));
}

/** @p value, which a 64-bit integer can hold, rounded half away from zero. */
std::int64_t RoundToFixedPoint(double value)
{
    return static_cast<std::int64_t>(value > 0.0 ? value + 0.5 : value - 0.5);
}

bool IsPoint(const qPoint32s& point)
{
    return point.x != GetNull<int>() && point.y != GetNull<int>();
}

/** The largest magnitude of each coordinate, at least 1; nothing when there are no points. */
std::optional<qPoint64f> FarthestOf(const Chains& chains)
{
    std::optional<qPoint64f> farthest;
    for (const std::span<const qPoint32s> chain : chains)
    {
        for (const qPoint32s& point : chain)
        {
            if (IsPoint(point))
            {
                const qPoint64f before = farthest.value_or(qPoint64f{1.0, 1.0});
                farthest = {std::max(before.x, std::fabs(point.x)), std::max(before.y, std::fabs(point.y))};
            }
        }
    }
    return farthest;
}

/** One entry for each direction. */
class DirectionTable
{
public:
    explicit DirectionTable(void* allocator)
    {
        ZVL_CHECK(kFunction, qArray1_Construct(array.Slot(), xxq64s_type, kSteps, allocator));
        entries = static_cast<std::int64_t*>(qArray1_Data(array));
    }

    std::int64_t& operator[](int direction) { return entries[direction]; }
    std::int64_t operator[](int direction) const { return entries[direction]; }

private:
    Zo::Object<void*> array;
    std::int64_t* entries = nullptr;
};

/** World sizes in the units of the projections. */
struct FixedPointScale
{
    double x; ///< a cell along X
    double y; ///< a cell along Y
    double unitsPerWorld;

    explicit FixedPointScale(const qPoint64f& scale)
    {
        const double factor = kCellUnits / scale.x;
        x = scale.x * factor * kFixedPoint;
        y = scale.y * factor * kFixedPoint;
        unitsPerWorld = kFixedPoint * factor;
    }

    /** True when the projections of points up to @p farthest are far from the ends of 64 bits. False for what is not a
     *  number. */
    bool CanProject(const qPoint64f& farthest) const
    {
        // One more for the rounding of the table's entries.
        return farthest.x * (std::fabs(x) + 1.0) + farthest.y * (std::fabs(y) + 1.0) < kLongestReach;
    }
};

/** The ranges of the points' projections on the directions. */
class Projections
{
public:
    explicit Projections(void* allocator) : sine(allocator), cosine(allocator), minimum(allocator), maximum(allocator)
    {
    }

    void FillTables(const FixedPointScale& scale)
    {
        for (int direction = 0; direction < kSteps; ++direction)
        {
            const double radians = RadiansOf(direction);
            cosine[direction] = RoundToFixedPoint(scale.x * std::cos(radians));
            sine[direction] = RoundToFixedPoint(scale.y * std::sin(radians));
        }
    }

    /** Finds the range of the projections on @p direction and on the one at a right angle to it. */
    void MeasurePair(const Chains& chains, int direction)
    {
        Measure(chains, direction);
        Measure(chains, direction + kPerpendicular);
    }

    /** Area of the rectangle along a measured @p direction. */
    Area AreaAlong(int direction) const { return Area{Extent(direction)} * Area{Extent(direction + kPerpendicular)}; }

    std::int64_t Extent(int direction) const { return maximum[direction] - minimum[direction]; }
    std::int64_t TwiceMiddle(int direction) const { return maximum[direction] + minimum[direction]; }

private:
    void Measure(const Chains& chains, int direction)
    {
        const std::int64_t perColumn = cosine[direction];
        const std::int64_t perRow = sine[direction];
        std::int64_t lowest = std::numeric_limits<std::int64_t>::max();
        std::int64_t highest = -lowest;
        for (const std::span<const qPoint32s> chain : chains)
        {
            for (const qPoint32s& point : chain)
            {
                if (IsPoint(point))
                {
                    const std::int64_t projection = point.x * perColumn + point.y * perRow;
                    lowest = std::min(lowest, projection);
                    highest = std::max(highest, projection);
                }
            }
        }
        minimum[direction] = lowest;
        maximum[direction] = highest;
    }

    DirectionTable sine;
    DirectionTable cosine;
    DirectionTable minimum;
    DirectionTable maximum;
};

/** The direction of smallest area so far. */
struct Best
{
    int direction;
    Area area;

    void Compete(const Projections& projections, int candidate)
    {
        const Area candidateArea = projections.AreaAlong(candidate);
        if (candidateArea < area)
        {
            *this = {candidate, candidateArea};
        }
    }
};

/** The direction of the smallest rectangle, in its first quarter turn. */
int FindDirection(Projections& projections, const Chains& chains)
{
    projections.MeasurePair(chains, 0);
    Best best = {0, projections.AreaAlong(0)};
    for (int direction = kCoarseStep; direction < kPerpendicular; direction += kCoarseStep)
    {
        projections.MeasurePair(chains, direction);
        best.Compete(projections, direction);
    }
    const int coarse = best.direction;
    for (int step = 1 - kCoarseStep; step < kCoarseStep; ++step)
    {
        // Just below 0 lie the perpendiculars of the directions just below a right angle.
        const int direction = coarse + step < 0 ? coarse + step + kPerpendicular : coarse + step;
        projections.MeasurePair(chains, direction);
        best.Compete(projections, direction);
    }
    return best.direction;
}

/** The sides of the rectangle that run along one direction, in world units. */
struct Side
{
    double degrees;
    double cosine;
    double sine;
    double extent;
    double middle; ///< projection of the rectangle's centre

    Side(const Projections& projections, int direction, double unitsPerWorld)
        : degrees(DegreesOf(direction)),
          cosine(std::cos(RadiansOf(direction))),
          sine(std::sin(RadiansOf(direction))),
          extent(static_cast<double>(projections.Extent(direction)) / unitsPerWorld),
          middle(static_cast<double>(projections.TwiceMiddle(direction)) / (2.0 * unitsPerWorld))
    {
    }
};

/** The point that both sides project on their middles. */
qPoint64f Crossing(const Side& a, const Side& b)
{
    const double x = (a.middle * b.sine - b.middle * a.sine) / (a.cosine * b.sine - b.cosine * a.sine);
    const Side& steeper = std::fabs(a.sine) > std::fabs(b.sine) ? a : b;
    return {x, (steeper.middle - x * steeper.cosine) / steeper.sine};
}

/** The extents run from cell centre to cell centre; what is missing to a cell's edges is the way through one cell. */
void AddCellExtent(Side& a, Side& b, const qPoint64f& scale)
{
    const bool upright = a.degrees == 0.0;
    a.extent += upright ? scale.x : std::min(scale.x / a.cosine, scale.y / a.sine);
    b.extent += upright ? scale.y : std::min(-scale.x / b.cosine, scale.y / b.sine);
}

} // namespace

void GetRotatedBounds(Zo::Object<void*> leftChain, Zo::Object<void*> rightChain, const double* offset,
                      const double* scale, double* center, double* size, double* angle, void* allocator)
{
    ZVL_REQUIRE(kFunction, IsChain(leftChain) && IsChain(rightChain));
    ZVL_REQUIRE(kFunction, offset != nullptr && scale != nullptr);
    ZVL_REQUIRE(kFunction, center != nullptr && size != nullptr && angle != nullptr);
    Projections projections(allocator);
    const qPoint64f cell = {scale[0], scale[1]};
    const qPoint64f origin = {offset[0], offset[1]};
    center[0] = center[1] = size[0] = size[1] = *angle = GetNull<double>();

    const Chains chains = {PointsOf(leftChain), PointsOf(rightChain)};
    const FixedPointScale fixedPoint(cell);
    const std::optional<qPoint64f> farthest = FarthestOf(chains);
    if (!farthest || !fixedPoint.CanProject(*farthest))
    {
        return;
    }
    projections.FillTables(fixedPoint);
    const int direction = FindDirection(projections, chains);

    Side a(projections, direction, fixedPoint.unitsPerWorld);
    Side b(projections, direction + kPerpendicular, fixedPoint.unitsPerWorld);
    AddCellExtent(a, b, cell);
    const Side& longer = a.extent >= b.extent ? a : b;
    const Side& shorter = a.extent >= b.extent ? b : a;
    const qPoint64f middle = Crossing(a, b);
    *angle = longer.degrees;
    size[0] = shorter.extent;
    size[1] = longer.extent;
    center[0] = middle.x + origin.x;
    center[1] = middle.y + origin.y;
}

} // namespace Zvl
