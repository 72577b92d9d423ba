#pragma once

/** @file
 *  The cells of one direction that a cell of a coarser grid covers. */

#include <cmath>
#include <cstddef>

namespace Zvl
{

/** Cells of a line, each with the share of it that is covered. */
struct CellSpan
{
    std::size_t begin;
    std::size_t end;
    double first; ///< share of cell `begin`
    double last;  ///< share of cell `end - 1`, unless it is the first

    bool IsEmpty() const { return begin == end; }

    double Share(std::size_t cell) const { return cell == begin ? first : cell + 1 == end ? last : 1.0; }
};

/** The cells of a line of @p size that lie from @p from to @p to, which is not below it; none when these lie beyond. */
inline CellSpan SpanBetween(double from, double to, std::size_t size)
{
    const double low = std::floor(from);
    const double high = std::ceil(to);
    if (low >= static_cast<double>(size))
    {
        return {0, 0, 0.0, 0.0};
    }
    const auto begin = static_cast<std::size_t>(low);
    const double first = 1.0 - (from - low);
    if (high > static_cast<double>(size))
    {
        return {begin, size, first, 1.0};
    }
    return {begin, static_cast<std::size_t>(high), first, to - (high - 1.0)};
}

/** The spans of a grid's cells one after the other, by repeated addition of the step. */
class SpanWalk
{
public:
    SpanWalk(double step, std::size_t size) : step(step), to(step), size(size) {}

    CellSpan Next()
    {
        const CellSpan span = SpanBetween(from, to, size);
        from = to;
        to += step;
        return span;
    }

private:
    double step;
    double from = 0.0;
    double to;
    std::size_t size;
};

} // namespace Zvl
