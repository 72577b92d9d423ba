#include "Utils/MeanOfPoints.h"

#include <cstddef>
#include <cstdint>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Utils/MeanOfPoints.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

/* Why parts of a sum can be added up side by side, although each addition rounds what came before.
 *
 * As long as a sum s stays between two neighbouring powers of two, it is a multiple of the same unit u, the last place
 * there, and s + t is rounded to such a multiple. How far a term moves the sum does not depend on s then, but for one
 * case: a t that lies in the middle between two multiples goes to the even sum. So all sums of the same parity move alike.
 *
 * A block of points is split into segments. For each, two sums start in the middle between the powers of two, an even and
 * an odd one. Afterwards the segments are gone through in order, and each moves the sum as its start of the same parity
 * was moved. Within a power of two, bit patterns count the units.
 *
 * Where the terms could take the sum beyond, they are added one after the other. */

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

#if HWY_TARGET == HWY_SCALAR

std::size_t AddBlocks(std::span<const qPoint64f> /*points*/, qPoint64f& /*sum*/)
{
    return 0; // without vectors, nothing is gained
}

#else

/** The two coordinates of a point, or something for each of them. */
using Pair = hn::FixedTag<double, 2>;
using PairVector = hn::Vec<Pair>;
using PairInts = hn::RebindToSigned<Pair>;
using PairBits = hn::Vec<PairInts>;

#if HWY_MAX_BYTES >= 32 && !HWY_HAVE_SCALABLE
using Reals = hn::FixedTag<double, 4>;
#else
using Reals = Pair;
#endif
using Bits = hn::RebindToSigned<Reals>;
using Vector = hn::Vec<Reals>;
using BitVector = hn::Vec<Bits>;

constexpr std::size_t kPairs = hn::MaxLanes(Reals()) / 2; // in a vector
constexpr std::size_t kVectors = 2;
constexpr std::size_t kSegments = kVectors * kPairs;
constexpr std::size_t kSteps = 16;
constexpr std::size_t kBlock = kSegments * kSteps;

HWY_INLINE PairVector LoadPoint(const qPoint64f& point)
{
    return hn::LoadU(Pair(), &point.x);
}

#if HWY_MAX_BYTES >= 32 && !HWY_HAVE_SCALABLE

template <typename Half>
HWY_INLINE auto Both(const Half& lower, const Half& upper)
{
    return hn::Combine(hn::Twice<hn::DFromV<Half>>(), upper, lower);
}

template <typename Whole>
HWY_INLINE auto FirstPair(const Whole& vector)
{
    return hn::LowerHalf(vector);
}

template <typename Whole>
HWY_INLINE auto LastPair(const Whole& vector)
{
    return hn::UpperHalf(hn::Half<hn::DFromV<Whole>>(), vector);
}

/** A point of each segment. */
HWY_INLINE Vector LoadPoints(const qPoint64f* points)
{
    return Both(LoadPoint(points[0]), LoadPoint(points[kSteps]));
}

#else

template <typename Whole>
HWY_INLINE Whole Both(const Whole& lower, const Whole& /*upper*/)
{
    return lower;
}

template <typename Whole>
HWY_INLINE Whole FirstPair(const Whole& vector)
{
    return vector;
}

template <typename Whole>
HWY_INLINE Whole LastPair(const Whole& vector)
{
    return vector;
}

HWY_INLINE Vector LoadPoints(const qPoint64f* points)
{
    return LoadPoint(*points);
}

#endif

/** By how many units the terms of a segment move an even sum, by how many more they move an odd one, and the sums of their
 *  magnitudes. */
struct PairMoves
{
    PairBits even;
    PairBits more;
    PairVector reach;
};

using SegmentMoves = PairMoves[kSegments];

/** How the segments of a block move even and odd sums that start at the given places. */
HWY_INLINE void MoveByBlock(const qPoint64f* points, const Vector& even, const Vector& odd, SegmentMoves& segments)
{
    const Reals d;
    Vector even0 = even;
    Vector even1 = even;
    Vector odd0 = odd;
    Vector odd1 = odd;
    Vector reach0 = hn::Zero(d);
    Vector reach1 = reach0;
#pragma GCC unroll 1 // else it is split into a loop for each sum
    for (const qPoint64f* end = points + kSteps; points != end; ++points)
    {
        const Vector points0 = LoadPoints(points);
        const Vector points1 = LoadPoints(points + kBlock / kVectors);
        even0 = hn::Add(even0, points0);
        even1 = hn::Add(even1, points1);
        odd0 = hn::Add(odd0, points0);
        odd1 = hn::Add(odd1, points1);
        reach0 = hn::Add(reach0, hn::Abs(points0));
        reach1 = hn::Add(reach1, hn::Abs(points1));
    }
    const auto units = [](const Vector& from, const Vector& to)
    { return hn::Sub(hn::BitCast(Bits(), to), hn::BitCast(Bits(), from)); };
    const auto split = [&](const Vector& evenEnd, const Vector& oddEnd, const Vector& reach, PairMoves* moves)
    {
        const BitVector evenUnits = units(even, evenEnd);
        const BitVector more = hn::Sub(units(odd, oddEnd), evenUnits);
        moves[0] = {FirstPair(evenUnits), FirstPair(more), FirstPair(reach)};
        moves[kPairs - 1] = {LastPair(evenUnits), LastPair(more), LastPair(reach)};
    };
    split(even0, odd0, reach0, segments);
    split(even1, odd1, reach1, segments + kPairs);
}

/** The sum of points to which blocks are added. */
class RunningSum
{
public:
    explicit RunningSum(const qPoint64f& start) : sum(LoadPoint(start)) {}

    /** Adds a block, or its first segments.
     *  @return the number of points that were added */
    std::size_t AddSome(const qPoint64f* points)
    {
        if (plainBlocks > 0)
        {
            --plainBlocks;
            AddPlainly(points, kBlock);
            return kBlock;
        }
        StartAtSum();
        SegmentMoves segments;
        MoveByBlock(points, even, odd, segments);
        if (AddAtOnce(segments))
        {
            inVain = 0;
            return kBlock;
        }
        return AddBySegments(points, segments);
    }

    qPoint64f Sum() const
    {
        qPoint64f point;
        hn::StoreU(sum, Pair(), &point.x);
        return point;
    }

private:
    static PairBits BitsOf(const PairVector& pair) { return hn::BitCast(PairInts(), pair); }
    static PairVector RealsOf(const PairBits& pair) { return hn::BitCast(Pair(), pair); }

    void AddPlainly(const qPoint64f* points, std::size_t count)
    {
        for (std::size_t i = 0; i < count; ++i)
        {
            sum = hn::Add(sum, LoadPoint(points[i]));
        }
    }

    /** Lets the sums of segments start in the middle between the powers of two around the sum. */
    void StartAtSum()
    {
        const PairInts integers;
        constexpr std::int64_t kHalf = 0x0008000000000000; // of the power of two
        constexpr std::int64_t kExponent = 0x7FF0000000000000;
        constexpr std::int64_t kSignAndExponent = ~(2 * kHalf - 1);
        const PairBits bits = BitsOf(sum);
        const PairBits at = hn::Or(hn::And(bits, hn::Set(integers, kSignAndExponent)), hn::Set(integers, kHalf));
        // Mostly, so that a block need not wait for the sum of those before.
        if (hn::AllTrue(integers, hn::Eq(at, start)))
        {
            return;
        }
        const Pair d;
        constexpr double kRounding = 1e-12; // far more than that of the reaches and of the sums on the way
        const PairVector power = RealsOf(hn::And(bits, hn::Set(integers, kExponent)));
        const auto isUsable = hn::Le(power, hn::Set(d, 1e300)); // the multiples below are numbers
        start = at;
        even = Both(RealsOf(at), RealsOf(at));
        odd = hn::BitCast(Reals(), hn::Add(hn::BitCast(Bits(), even), hn::Set(Bits(), 1)));
        sign = hn::CopySign(hn::Set(d, 1.0), sum);
        mostReach = hn::IfThenElse(isUsable, hn::Mul(power, hn::Set(d, 0.5)), hn::Set(d, -1.0));
        least = hn::Mul(power, hn::Set(d, 2.0 * (1.0 + kRounding)));
        most = hn::Mul(power, hn::Set(d, 4.0 * (1.0 - kRounding)));
    }

    /** Moves the sum to @p next if all sums on the way stay between the powers of two, as long as magnitudes add up to
     *  @p reach: half of it and half of the way is the most that they rise, and half of it less half of the way the most
     *  that they fall.
     *  @return whether they do; not with what is not a number */
    bool MoveTo(const PairVector& next, const PairVector& reach)
    {
        const PairVector twice = hn::Mul(hn::Add(sum, next), sign);
        const auto isWithin = hn::And(hn::Le(reach, mostReach), hn::And(hn::Ge(hn::Sub(twice, reach), least),
                                                                        hn::Le(hn::Add(twice, reach), most)));
        if (!hn::AllTrue(Pair(), isWithin))
        {
            return false;
        }
        sum = next;
        return true;
    }

    /** Where moves take a sum of whatever parity. */
    static PairVector Moved(const PairVector& from, const PairMoves& moves)
    {
        const PairInts integers;
        const PairBits bits = BitsOf(from);
        const PairBits isOdd = hn::Sub(hn::Zero(integers), hn::And(bits, hn::Set(integers, 1))); // all bits, or none
        return RealsOf(hn::Add(hn::Add(bits, moves.even), hn::And(moves.more, isOdd)));
    }

    /** Adds a block by the moves of all its segments.
     *  @return false, having done nothing, when these could go too far */
    bool AddAtOnce(const SegmentMoves& segments)
    {
        PairVector next = sum;
        PairVector reach = hn::Zero(Pair());
        for (const PairMoves& moves : segments)
        {
            next = Moved(next, moves);
            reach = hn::Add(reach, moves.reach);
        }
        return MoveTo(next, reach);
    }

    /** Adds the segments of a block one by one: by moves, and the first whose moves could go too far point by point. The
     *  moves of those behind it are from another power of two, as a rule.
     *  @return the number of points that were added */
    std::size_t AddBySegments(const qPoint64f* points, const SegmentMoves& segments)
    {
        std::size_t segment = 0;
        while (segment < kSegments && MoveTo(Moved(sum, segments[segment]), segments[segment].reach))
        {
            ++segment;
        }
        // A sum that is small beside its terms, as that of points around the origin, goes beyond all the time.
        inVain = segment == 0 ? inVain + 1 : 0;
        plainBlocks = inVain > 1 ? 6 : 0;
        if (segment == kSegments)
        {
            return kBlock;
        }
        AddPlainly(points + segment * kSteps, kSteps);
        return (segment + 1) * kSteps;
    }

    PairVector sum;
    PairBits start = hn::Zero(PairInts());
    PairVector sign = hn::Zero(Pair());
    PairVector mostReach = hn::Zero(Pair());
    PairVector least = hn::Zero(Pair());
    PairVector most = hn::Zero(Pair());
    Vector even = hn::Zero(Reals());
    Vector odd = hn::Zero(Reals());
    std::size_t inVain = 0;      ///< so many times in a row, the first segment could not be moved by
    std::size_t plainBlocks = 1; ///< that are to come; at first, the sum is zero
};

/** Adds points to @p sum as long as they fill a block.
 *  @return their number */
std::size_t AddBlocks(std::span<const qPoint64f> points, qPoint64f& sum)
{
    RunningSum running(sum);
    std::size_t added = 0;
    while (points.size() - added >= kBlock)
    {
        added += running.AddSome(&points[added]);
    }
    sum = running.Sum();
    return added;
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(AddBlocks);

qPoint64f SumOfPoints(std::span<const qPoint64f> points)
{
    qPoint64f sum = {0.0, 0.0};
    const std::size_t added = HWY_DYNAMIC_DISPATCH(AddBlocks)(points, sum);
    for (const qPoint64f& point : points.subspan(added))
    {
        sum.x += point.x;
        sum.y += point.y;
    }
    return sum;
}

qPoint64f MeanOfPoints(std::span<const qPoint64f> points)
{
    const qPoint64f sum = SumOfPoints(points);
    const auto count = static_cast<double>(points.size());
    return {sum.x / count, sum.y / count};
}

} // namespace Zvl
#endif
