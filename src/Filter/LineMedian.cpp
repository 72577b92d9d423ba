#include "Filter/LineFilters.h"
#include "Filter/LineRunningMedian.h"
#include "Filter/LineSmallMedian.h"
#include "Filter/LineWindow.h"

#include <array>

namespace Zvl
{

namespace
{

/** Short windows, block by block; beyond the ends of the line all is missing. */
void MedianOfShortWindows(const HeightLine& line, std::size_t window)
{
    constexpr std::size_t kBlock = 1024;
    const std::size_t half = window / 2;
    std::array<std::int16_t, kBlock + kLongestSmallWindow + kSmallMedianSlack> cells;
    std::array<std::int16_t, kBlock + kSmallMedianSlack> medians;
    cells.fill(kMissingHeight);
    for (std::size_t first = 0; first < line.size; first += kBlock)
    {
        const std::size_t count = std::min(kBlock, line.size - first);
        const std::size_t begin = first - std::min(first, half);
        const std::size_t end = first + std::min(count + half, line.size - first);
        std::int16_t* start = cells.data() + (half - (first - begin));
        std::fill(std::copy(line.source + begin, line.source + end, start), cells.data() + cells.size(),
                  kMissingHeight);
        SmallMedians(cells.data(), window, medians.data(), count);
        std::copy_n(medians.data(), count, line.result + first);
    }
}

/** Windows of any length. */
void MedianOfLongWindows(const HeightLine& line, std::size_t window)
{
    const HeightSpan span = SpanOf(line.source, line.size);
    if (span.Empty())
    {
        std::fill_n(line.result, line.size, kMissingHeight);
        return;
    }
    RunningMedian median(span);
    SlideWindow(line, window, median);
}

} // namespace

void MedianLine(const HeightLine& line, std::size_t window)
{
    if (window <= kLongestSmallWindow)
    {
        MedianOfShortWindows(line, window);
    }
    else
    {
        MedianOfLongWindows(line, window);
    }
}

} // namespace Zvl
