#include "Filter/SurfaceFillGapSteps.h"

#include <cstdlib>

namespace Zvl
{

namespace
{

/** A gap with heights at both ends, as indices into the map's cells. */
struct Gap
{
    std::size_t left;  ///< the height before the gap
    std::size_t right; ///< the height behind it
    std::size_t stride;
    std::int64_t span; ///< strides from one to the other
};

/** From one end to the other in whole counts, truncated toward the left end. */
template <typename T>
void Interpolate(const FilledLayer<T>& layer, const Gap& gap)
{
    const std::int64_t start = layer.in[gap.left];
    const std::int64_t rise = layer.in[gap.right] - start;
    for (std::int64_t step = 1; step < gap.span; ++step)
    {
        layer.out[gap.left + static_cast<std::size_t>(step) * gap.stride] =
            static_cast<T>(start + rise * step / gap.span);
    }
}

template <typename T>
void FillFlat(const FilledLayer<T>& layer, const Gap& gap, T value)
{
    for (std::size_t cell = gap.left + gap.stride; cell != gap.right; cell += gap.stride)
    {
        layer.out[cell] = value;
    }
}

void Close(const GapMap& map, const Gap& gap, std::int64_t slope)
{
    const std::int16_t left = map.heights.in[gap.left];
    const std::int16_t right = map.heights.in[gap.right];
    if (std::abs(right - left) <= slope * gap.span)
    {
        Interpolate(map.heights, gap);
        if (map.intensities.in != nullptr)
        {
            Interpolate(map.intensities, gap);
        }
        return;
    }
    const bool takesLeft = map.fillHigh ? left > right : left < right;
    const std::size_t source = takesLeft ? gap.left : gap.right;
    FillFlat(map.heights, gap, map.heights.in[source]);
    if (map.intensities.in != nullptr)
    {
        FillFlat(map.intensities, gap, map.intensities.in[source]);
    }
}

/** The missing cells above @p cell in its column, up to one more than @p most; as many when they reach the edge. */
std::int64_t MissingAbove(const GapMap& map, std::size_t cell, std::int64_t most)
{
    std::int64_t run = 0;
    while (run <= most)
    {
        if (cell < map.columns)
        {
            return most + 1;
        }
        cell -= map.columns;
        if (map.heights.in[cell] != GetNull<short>())
        {
            break;
        }
        ++run;
    }
    return run;
}

} // namespace

void FillGapRows(const GapMap& map, const GapLimit& limit)
{
    for (std::size_t row = 0; row < map.rows; ++row)
    {
        if (!map.CopyRow(row))
        {
            continue;
        }
        const std::size_t first = row * map.columns;
        ForEachMissingRun(map.heights.in + first, map.columns,
                          [&](std::size_t begin, std::size_t end)
                          {
                              const auto run = static_cast<std::int64_t>(end - begin);
                              if (begin > 0 && end < map.columns && run <= limit.gap)
                              {
                                  Close(map, {first + begin - 1, first + end, 1, run + 1}, limit.slope);
                              }
                          });
    }
}

/** Row after row, for the sake of the cache: a gap is closed when the walk meets the height below it. */
void FillGapColumns(const GapMap& map, const GapLimit& limit)
{
    const auto closeAbove = [&](std::size_t missing)
    {
        const std::size_t cell = missing + map.columns;
        if (map.heights.in[cell] == GetNull<short>())
        {
            return;
        }
        const std::int64_t run = MissingAbove(map, cell, limit.gap);
        if (run <= limit.gap)
        {
            const std::size_t above = cell - static_cast<std::size_t>(run + 1) * map.columns;
            Close(map, {above, cell, map.columns, run + 1}, limit.slope);
        }
    };
    bool isMissingAbove = false;
    for (std::size_t row = 0; row < map.rows; ++row)
    {
        const bool isMissing = map.CopyRow(row);
        if (isMissingAbove)
        {
            const std::size_t above = (row - 1) * map.columns;
            ForEachMarkWord(map.heights.in + above, map.columns,
                            [&](std::uint64_t missing, std::size_t column)
                            { ForEachSetBit(missing, above + column, closeAbove); });
        }
        isMissingAbove = isMissing;
    }
}

} // namespace Zvl
