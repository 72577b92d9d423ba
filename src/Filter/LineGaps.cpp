#include "Filter/LineFilters.h"

#include <cstring>

namespace Zvl
{

namespace
{

/** Cells that are copied at once where none is missing. */
constexpr std::size_t kStretch = 64;

/** True when no cell is missing: the null is the lowest value. */
bool StretchIsWhole(const std::int16_t* cells)
{
    std::int16_t lowest = cells[0];
    for (std::size_t i = 1; i < kStretch; ++i)
    {
        lowest = std::min(lowest, cells[i]);
    }
    return lowest != kMissingHeight;
}

/** Closes gaps as its limits say. */
class GapFiller
{
public:
    GapFiller(const HeightLine& line, int maxGap, int maxSlope, bool fillHigh)
        : line(line), maxGap(maxGap), maxSlope(maxSlope), fillHigh(fillHigh)
    {
    }

    /** Fills the results between the valid cells @p last and @p next, if the gap is short enough. */
    void Close(std::size_t last, std::size_t next) const
    {
        const auto gap = static_cast<std::int64_t>(next - last);
        if (gap <= 1 || gap > maxGap)
        {
            return;
        }
        const std::int64_t rise = line.source[next] - line.source[last];
        if (rise > maxSlope * gap)
        {
            FillFlat(last, next, fillHigh ? next : last);
        }
        else if (rise < -maxSlope * gap)
        {
            FillFlat(last, next, fillHigh ? last : next);
        }
        else
        {
            for (std::size_t i = last + 1; i < next; ++i)
            {
                const std::int64_t step = static_cast<std::int64_t>(i - last) * rise / gap;
                line.result[i] = static_cast<std::int16_t>(line.source[last] + step);
            }
        }
    }

private:
    void FillFlat(std::size_t last, std::size_t next, std::size_t from) const
    {
        for (std::size_t i = last + 1; i < next; ++i)
        {
            line.result[i] = line.source[from];
        }
    }

    const HeightLine& line;
    std::int64_t maxGap;
    std::int64_t maxSlope;
    bool fillHigh;
};

} // namespace

/** Results may be written over the source: a filled cell is not read again, and the others keep their value. */
void FillLineGaps(const HeightLine& line, int maxGap, int maxSlope, bool fillHigh)
{
    const GapFiller filler(line, maxGap, maxSlope, fillHigh);
    bool started = false;
    std::size_t last = 0;
    std::size_t i = 0;
    while (i < line.size)
    {
        const bool afterValid = started && last + 1 == i;
        if (afterValid && i % kStretch == 0 && line.size - i >= kStretch && StretchIsWhole(line.source + i))
        {
            std::memmove(line.result + i, line.source + i, kStretch * sizeof(std::int16_t)); // to itself, in one buffer
            i += kStretch;
            last = i - 1;
            continue;
        }
        line.result[i] = line.source[i];
        if (line.source[i] != kMissingHeight)
        {
            if (started)
            {
                filler.Close(last, i);
            }
            started = true;
            last = i;
        }
        ++i;
    }
}

} // namespace Zvl
