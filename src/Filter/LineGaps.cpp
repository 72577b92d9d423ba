#include "Filter/LineFilters.h"
#include "Filter/MissingCells.h"

namespace Zvl
{

namespace
{

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
        if (gap > maxGap)
        {
            return;
        }
        const std::int64_t rise = line.result[next] - line.result[last];
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
                line.result[i] = static_cast<std::int16_t>(line.result[last] + step);
            }
        }
    }

private:
    void FillFlat(std::size_t last, std::size_t next, std::size_t from) const
    {
        for (std::size_t i = last + 1; i < next; ++i)
        {
            line.result[i] = line.result[from];
        }
    }

    const HeightLine& line;
    std::int64_t maxGap;
    std::int64_t maxSlope;
    bool fillHigh;
};

} // namespace

/** Results may be written over the source, whose cells are therefore read for the last time by the copy: a filled cell is
 *  not looked at again, and the others keep their value. */
void FillLineGaps(const HeightLine& line, int maxGap, int maxSlope, bool fillHigh)
{
    if (!CopyAndLook(line.source, line.result, line.size))
    {
        return;
    }
    const GapFiller filler(line, maxGap, maxSlope, fillHigh);
    ForEachMissingRun(line.result, line.size,
                      [&](std::size_t begin, std::size_t end)
                      {
                          if (begin > 0 && end < line.size)
                          {
                              filler.Close(begin - 1, end);
                          }
                      });
}

} // namespace Zvl
