#include "Filter/SurfaceFilterKernel.h"

#include "Filter/SurfaceFilterStrips.h"

#include <ZdkVisionLib/Common/Common.h>

#include <algorithm>
#include <array>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/SurfaceFilterKernel.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace
{

#if HWY_TARGET == HWY_SCALAR

/** Without vectors there is nothing to be gained from strips. */
void AverageAllStrips(const BoxMean& mean, void* /*bytes*/)
{
    AverageLineByLine(mean);
}

#else

namespace hn = hwy::HWY_NAMESPACE;

using Wide = hn::CappedTag<std::int32_t, kMostLanes>;
using Narrow = hn::Rebind<std::int16_t, Wide>;
using Low = hn::Rebind<std::uint16_t, Wide>;
using Real = hn::Rebind<float, Wide>;
using Tile = hn::FixedTag<std::int16_t, kTile>;
using WideVector = hn::VFromD<Wide>;
using TileRow = hn::VFromD<Tile>;

HWY_INLINE WideVector LoadCells(const std::int16_t* cells)
{
    return hn::PromoteTo(Wide(), hn::LoadU(Narrow(), cells));
}

HWY_INLINE auto IsNull(WideVector cells)
{
    return hn::Eq(cells, hn::Set(Wide(), GetNull<short>()));
}

/** Stores the low 16 bits of each lane. */
HWY_INLINE void StoreLow(WideVector cells, std::int16_t* out)
{
    const auto low = hn::TruncateTo(Low(), hn::BitCast(hn::Rebind<std::uint32_t, Wide>(), cells));
    hn::StoreU(hn::BitCast(Narrow(), low), Narrow(), out);
}

/** Calls `step(cell, stretch, target)` for stretches of a row of @p width cells, from `cell` on, with their windows and
 *  their place in @p row. The last one may overlap the one before. Everything goes by value, so that it can stay in
 *  registers while cells are written. */
template <typename Step>
HWY_INLINE void ForEachStretch(std::size_t width, WindowSums sums, std::int16_t* row, Step step)
{
    const std::size_t lanes = hn::Lanes(Wide());
    std::size_t cell = 0;
    for (; cell + lanes <= width; cell += lanes)
    {
        step(cell, WindowSums{sums.raw + cell, sums.counts + cell}, row + cell);
    }
    if (cell < width)
    {
        step(width - lanes, WindowSums{sums.raw + cell, sums.counts + cell}, row + width - lanes);
    }
}

/** `sum / count` of positive counts, truncated toward zero, in the low 16 bits of each lane, where a float holds each sum
 *  exactly. A quotient that is no integer then lies further below the next one than rounding can lift it. */
HWY_INLINE WideVector DivideExact(WideVector sum, WideVector count)
{
    const Real real;
    const auto quotient = hn::Trunc(hn::Div(hn::ConvertTo(real, sum), hn::ConvertTo(real, count)));
    // From 2^23 to 2^24 the last bit of a float is worth one, which makes an integer of its low bits.
    constexpr float kUnits = 1.5F * 8388608.0F;
    return hn::BitCast(Wide(), hn::Add(quotient, hn::Set(real, kUnits)));
}

/** The same for any sum: with all roundings the quotient, at most 32767, is less than one off, which shows in what it
 *  leaves of the sum. */
HWY_INLINE WideVector DivideAny(WideVector sum, WideVector count)
{
    const Wide wide;
    const auto zero = hn::Zero(wide);
    const auto magnitude = hn::Abs(sum);
    const auto guess = hn::And(DivideExact(magnitude, count), hn::Set(wide, 0xffff));
    const auto rest = hn::Sub(magnitude, hn::Mul(guess, count));
    const auto tooHigh = hn::VecFromMask(wide, hn::Lt(rest, zero)); // -1 where it is
    const auto highEnough = hn::VecFromMask(wide, hn::Lt(rest, count));
    // One is added where the rest still holds the count.
    const auto quotient = hn::Add(hn::Add(guess, tooHigh), hn::Add(highEnough, hn::Set(wide, 1)));
    return hn::IfThenElse(hn::Lt(sum, zero), hn::Neg(quotient), quotient);
}

/** The running mean of lines that lie side by side: row r holds their cells r, one row follows the other. */
class RunningMean
{
public:
    RunningMean(const std::int16_t* source, std::int16_t* result, std::size_t length, std::size_t lines,
                std::uint32_t size, bool keep, const WindowSums& windowSums, const WorkingMemory& memory)
        : in(source),
          out(result),
          rows(length),
          width(lines),
          // A window of twice the line holds the whole line wherever it stands.
          window(std::min<std::size_t>(size, 2 * length + 1)),
          keepNulls(keep),
          isExact(std::min(window, length) <= kMostExactCells),
          sums(windowSums),
          nulls(memory.nulls),
          zeros(memory.zeros)
    {
        std::fill_n(sums.raw, RoundUp(width, kMostLanes), 0);
        std::fill_n(sums.counts, RoundUp(width, kMostLanes), 0);
    }

    /** Writes the means of all rows whose windows lie in the first @p available rows. */
    void Feed(std::size_t available)
    {
        const std::size_t ahead = window / 2;
        for (; primed < std::min(ahead, available); ++primed)
        {
            const std::int16_t* added = in + primed * width;
            const std::int16_t* none = nulls;
            ForEachStretch(width, sums, out,
                           [=](std::size_t cell, const WindowSums& stretch, std::int16_t* /*target*/) HWY_ATTR
                           { Exchange(added + cell, none + cell, stretch); });
        }
        for (; row < rows && std::min(row + ahead, rows - 1) < available; ++row)
        {
            const std::size_t entering = row + ahead;
            const std::int16_t* added = entering < rows ? in + entering * width : nulls;
            const std::int16_t* removed = entering >= window ? in + (entering - window) * width : nulls;
            const std::int16_t* centre = keepNulls ? in + row * width : zeros;
            isExact ? Step<true>(added, removed, centre) : Step<false>(added, removed, centre);
        }
    }

private:
    /** Moves the windows of a stretch by one row, and gives their sums. A missing height counts as -32768 in the raw sum,
     *  and as many times as cells are missing; what lies outside the lines is missing, too. The raw sum may wrap around,
     *  but the sum proper fits again. */
    static HWY_INLINE WideVector Exchange(const std::int16_t* added, const std::int16_t* removed,
                                          const WindowSums& stretch)
    {
        const Wide wide;
        const auto entering = LoadCells(added);
        const auto leaving = LoadCells(removed);
        const auto raw = hn::Add(hn::LoadU(wide, stretch.raw), hn::Sub(entering, leaving));
        // A mask is -1 in its lanes.
        const auto change = hn::Sub(hn::VecFromMask(wide, IsNull(entering)), hn::VecFromMask(wide, IsNull(leaving)));
        const auto count = hn::Add(hn::LoadU(wide, stretch.counts), change);
        hn::StoreU(raw, wide, stretch.raw);
        hn::StoreU(count, wide, stretch.counts);
        return hn::Sub(raw, hn::ShiftLeft<15>(count));
    }

    template <bool exact>
    void Step(const std::int16_t* added, const std::int16_t* removed, const std::int16_t* centre)
    {
        const Wide wide;
        const auto one = hn::Set(wide, 1);
        ForEachStretch(width, sums, out + row * width,
                       [=](std::size_t cell, const WindowSums& stretch, std::int16_t* target) HWY_ATTR
                       {
                           const auto sum = Exchange(added + cell, removed + cell, stretch);
                           const auto count = hn::LoadU(wide, stretch.counts);
                           const auto divisor = hn::Max(count, one);
                           const auto mean = exact ? DivideExact(sum, divisor) : DivideAny(sum, divisor);
                           const auto missing = hn::Or(hn::Lt(count, one), IsNull(LoadCells(centre + cell)));
                           StoreLow(hn::IfThenElse(missing, hn::Set(wide, GetNull<short>()), mean), target);
                       });
    }

    const std::int16_t* in;
    std::int16_t* out;
    std::size_t rows;
    std::size_t width;
    std::size_t window;
    bool keepNulls;
    bool isExact;
    WindowSums sums;
    const std::int16_t* nulls;
    const std::int16_t* zeros;
    std::size_t primed = 0;
    std::size_t row = 0;
};

/** Writes column c of the tile whose rows start at `from(r)` to `to(c)`. */
template <typename From, typename To>
HWY_INLINE void TransposeTile(From from, To to)
{
    const Tile tile;
    const TileRow a0 = hn::LoadU(tile, from(0));
    const TileRow a1 = hn::LoadU(tile, from(1));
    const TileRow a2 = hn::LoadU(tile, from(2));
    const TileRow a3 = hn::LoadU(tile, from(3));
    const TileRow a4 = hn::LoadU(tile, from(4));
    const TileRow a5 = hn::LoadU(tile, from(5));
    const TileRow a6 = hn::LoadU(tile, from(6));
    const TileRow a7 = hn::LoadU(tile, from(7));
    // Each round rotates the six bits of a cell's place (three of the row, three of the column) by one.
    const TileRow b0 = hn::InterleaveLower(tile, a0, a4);
    const TileRow b1 = hn::InterleaveUpper(tile, a0, a4);
    const TileRow b2 = hn::InterleaveLower(tile, a1, a5);
    const TileRow b3 = hn::InterleaveUpper(tile, a1, a5);
    const TileRow b4 = hn::InterleaveLower(tile, a2, a6);
    const TileRow b5 = hn::InterleaveUpper(tile, a2, a6);
    const TileRow b6 = hn::InterleaveLower(tile, a3, a7);
    const TileRow b7 = hn::InterleaveUpper(tile, a3, a7);
    const TileRow c0 = hn::InterleaveLower(tile, b0, b4);
    const TileRow c1 = hn::InterleaveUpper(tile, b0, b4);
    const TileRow c2 = hn::InterleaveLower(tile, b1, b5);
    const TileRow c3 = hn::InterleaveUpper(tile, b1, b5);
    const TileRow c4 = hn::InterleaveLower(tile, b2, b6);
    const TileRow c5 = hn::InterleaveUpper(tile, b2, b6);
    const TileRow c6 = hn::InterleaveLower(tile, b3, b7);
    const TileRow c7 = hn::InterleaveUpper(tile, b3, b7);
    hn::StoreU(hn::InterleaveLower(tile, c0, c4), tile, to(0));
    hn::StoreU(hn::InterleaveUpper(tile, c0, c4), tile, to(1));
    hn::StoreU(hn::InterleaveLower(tile, c1, c5), tile, to(2));
    hn::StoreU(hn::InterleaveUpper(tile, c1, c5), tile, to(3));
    hn::StoreU(hn::InterleaveLower(tile, c2, c6), tile, to(4));
    hn::StoreU(hn::InterleaveUpper(tile, c2, c6), tile, to(5));
    hn::StoreU(hn::InterleaveLower(tile, c3, c7), tile, to(6));
    hn::StoreU(hn::InterleaveUpper(tile, c3, c7), tile, to(7));
}

/** Calls `visit(column, row)` for tiles that cover a strip. The last tiles of a row of tiles may overlap. */
template <typename Visit>
HWY_INLINE void ForEachTile(std::size_t columns, Visit visit)
{
    for (std::size_t row = 0; row < kStripRows; row += kTile)
    {
        for (std::size_t column = 0; column < columns; column += kTile)
        {
            visit(std::min(column, columns - kTile), row);
        }
    }
}

/** Averages the strip of rows from @p first on. Transposed, its rows lie side by side. */
void AverageStrip(const BoxMean& mean, std::size_t first, const WorkingMemory& memory)
{
    const std::size_t columns = mean.columns;
    std::array<const std::int16_t*, kStripRows> in;
    std::array<std::int16_t*, kStripRows> out;
    for (std::size_t i = 0; i < kStripRows; ++i)
    {
        const bool isThere = first + i < mean.rows;
        in[i] = isThere ? mean.in + (first + i) * columns : memory.zeros;
        out[i] = isThere ? mean.between + (first + i) * columns : memory.spare;
    }
    ForEachTile(columns,
                [&](std::size_t column, std::size_t row) HWY_ATTR
                {
                    TransposeTile([&](std::size_t i) { return in[row + i] + column; },
                                  [&](std::size_t i) { return memory.source + (column + i) * kStripRows + row; });
                });
    RunningMean rows(memory.source, memory.result, columns, kStripRows, mean.windowX, mean.keepNulls, memory.strip,
                     memory);
    rows.Feed(columns);
    ForEachTile(columns,
                [&](std::size_t column, std::size_t row) HWY_ATTR
                {
                    TransposeTile([&](std::size_t i) { return memory.result + (column + i) * kStripRows + row; },
                                  [&](std::size_t i) { return out[row + i] + column; });
                });
}

/** The pass along the columns follows the other one strip by strip, while its rows are still in the cache. It is never
 *  ahead of it, so that it writes no row of the map that is still to be read. */
void AverageAllStrips(const BoxMean& mean, void* bytes)
{
    const WorkingMemory memory(mean, bytes);
    std::fill_n(memory.nulls, std::max(mean.columns, kStripRows), GetNull<short>());
    std::fill_n(memory.zeros, std::max(mean.columns, kStripRows), std::int16_t{0});
    RunningMean columns(mean.between, mean.out, mean.rows, mean.columns, mean.windowY, mean.keepNulls, memory.columns,
                        memory);
    for (std::size_t first = 0; first < mean.rows; first += kStripRows)
    {
        AverageStrip(mean, first, memory);
        columns.Feed(std::min(first + kStripRows, mean.rows));
    }
}

#endif

} // namespace

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(AverageAllStrips);

bool CanAverageInStrips(const BoxMean& mean)
{
    return mean.rows >= kMostLanes && mean.columns >= kMostLanes &&
           std::min<std::size_t>(mean.windowX, mean.columns) <= kMostCells &&
           std::min<std::size_t>(mean.windowY, mean.rows) <= kMostCells;
}

std::size_t BytesForStrips(const BoxMean& mean)
{
    return WorkingMemory(mean, nullptr).bytes;
}

void AverageInStrips(const BoxMean& mean, void* memory)
{
    HWY_DYNAMIC_DISPATCH(AverageAllStrips)(mean, memory);
}

} // namespace Zvl
#endif
