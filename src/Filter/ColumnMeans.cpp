#include "Filter/ColumnMeans.h"

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/ColumnMeans.cpp"
#include <hwy/cache_control.h>
#include <hwy/foreach_target.h>

#include "Filter/MeanVectors.h"

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

#if HWY_TARGET == HWY_SCALAR

void Move(const ColumnStep& /*step*/) {}

void Average(const ColumnStep& /*step*/, std::size_t /*cells*/, const std::uint16_t* /*centre*/, bool /*keepNulls*/,
             std::uint16_t* /*means*/, const std::uint16_t* /*next*/)
{
}

#else

struct ColumnWindows
{
    WideVector even;
    WideVector odd;
    NarrowVector counts;
};

/** Moves the windows of the columns from @p column on. */
HWY_INLINE ColumnWindows MoveAt(const ColumnStep& step, std::size_t column)
{
    const Wide wide;
    const Narrow narrow;
    const auto one = hn::Set(narrow, 1);
    std::int32_t* evenSums = step.sums.even + column / 2;
    std::int32_t* oddSums = step.sums.odd + column / 2;
    std::uint16_t* counts = step.sums.counts + column;
    const auto added = hn::LoadU(narrow, step.added + column);
    const auto removed = hn::LoadU(narrow, step.removed + column);
    const ColumnWindows windows = {
        hn::Add(hn::LoadU(wide, evenSums), hn::Sub(Even(added), Even(removed))),
        hn::Add(hn::LoadU(wide, oddSums), hn::Sub(Odd(added), Odd(removed))),
        hn::Add(hn::LoadU(narrow, counts), hn::Sub(hn::Min(added, one), hn::Min(removed, one)))};
    hn::StoreU(windows.even, wide, evenSums);
    hn::StoreU(windows.odd, wide, oddSums);
    hn::StoreU(windows.counts, narrow, counts);
    return windows;
}

void Move(const ColumnStep& step)
{
    for (std::size_t column = 0; column < step.columns; column += hn::Lanes(Narrow()))
    {
        MoveAt(step, column);
    }
}

template <Reach reach>
HWY_INLINE NarrowVector AverageAt(const Means<reach>& quotients, const ColumnStep& step, const std::uint16_t* centre,
                                  bool keepNulls, std::size_t column)
{
    const ColumnWindows windows = MoveAt(step, column);
    const auto means = quotients.FromSums(windows.even, windows.odd, windows.counts);
    return keepNulls ? KeepNulls(means, hn::LoadU(Narrow(), centre + column), 0) : means;
}

template <Reach reach>
void AverageAs(const ColumnStep& columnStep, const std::uint16_t* centre, bool keepNulls, std::uint16_t* means,
               const std::uint16_t* next)
{
    // By value, so that it can stay in registers while cells are written.
    const ColumnStep step = columnStep;
    const Means<reach> quotients(0);
    const std::size_t lanes = hn::Lanes(Narrow());
    std::size_t column = 0;
    for (; column + lanes <= step.columns; column += lanes)
    {
        hwy::Prefetch(next + column);
        hn::StoreU(AverageAt<reach>(quotients, step, centre, keepNulls, column), Narrow(), means + column);
    }
    if (column < step.columns)
    {
        StoreFirst(AverageAt<reach>(quotients, step, centre, keepNulls, column), means + column, step.columns - column);
    }
}

void Average(const ColumnStep& step, std::size_t cells, const std::uint16_t* centre, bool keepNulls,
             std::uint16_t* means, const std::uint16_t* next)
{
    const Reach reach = ReachOf(cells);
    const auto average = reach == Reach::Few      ? AverageAs<Reach::Few>
                         : reach == Reach::Short  ? AverageAs<Reach::Short>
                         : reach == Reach::Medium ? AverageAs<Reach::Medium>
                                                  : AverageAs<Reach::Long>;
    average(step, centre, keepNulls, means, next);
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(Move);
HWY_EXPORT(Average);

void MoveColumns(const ColumnStep& step)
{
    HWY_DYNAMIC_DISPATCH(Move)(step);
}

void AverageColumns(const ColumnStep& step, std::size_t cells, const std::uint16_t* centre, bool keepNulls,
                    std::int16_t* means, const std::int16_t* next)
{
    HWY_DYNAMIC_DISPATCH(Average)
    (step, cells, centre, keepNulls, reinterpret_cast<std::uint16_t*>(means),
     reinterpret_cast<const std::uint16_t*>(next));
}

} // namespace Zvl
#endif
