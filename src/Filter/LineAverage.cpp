#include "Filter/LineFilters.h"
#include "Filter/LineMeans.h"
#include "Filter/LineWindow.h"

#include <memory>
#include <new>

namespace Zvl
{

namespace
{

/** The running sum and count of the valid cells in a window. */
class RunningMean
{
public:
    void Add(std::int16_t cell)
    {
        if (cell != kMissingHeight)
        {
            sum += cell;
            ++count;
        }
    }

    void Remove(std::int16_t cell)
    {
        if (cell != kMissingHeight)
        {
            sum -= cell;
            --count;
        }
    }

    /** A double holds both operands, and no quotient of such integers lies so close below the next integer that it
     *  would be rounded up to it. Division of doubles is the faster one. */
    std::int16_t Value() const
    {
        return count < 1 ? kMissingHeight
                         : static_cast<std::int16_t>(static_cast<double>(sum) / static_cast<double>(count));
    }

private:
    std::int64_t sum = 0;
    std::int64_t count = 0;
};

/** Averages a line in pieces, each with all cells that its windows see. A piece is no shorter than a window, so that few
 *  cells are seen from two of them.
 *  @return false when there is no memory for it; nothing is written then */
bool AverageInPieces(const HeightLine& line, const MeanWindow& window)
{
    struct alignas(64) CacheLine
    {
        std::byte bytes[64];
    };
    constexpr std::size_t kShortest = 4096;
    const std::size_t piece = std::min(std::max(kShortest, window.Cells()), line.size);
    const std::size_t seen = std::min(window.behind + piece + window.ahead, line.size);
    const std::size_t summed = CellsOfPrefixSums(window, seen);
    MemoryParts needed(nullptr);
    needed.TakeSums(summed);
    const std::unique_ptr<CacheLine[]> memory(new (std::nothrow) CacheLine[needed.Used() / sizeof(CacheLine)]);
    if (memory == nullptr)
    {
        return false;
    }
    const HeightSums sums = MemoryParts(memory.get()).TakeSums(summed);
    for (std::size_t first = 0; first < line.size; first += piece)
    {
        const std::int16_t* cells = line.source + first;
        const std::size_t count = std::min(piece, line.size - first);
        const std::size_t before = std::min(first, window.behind);
        const std::size_t after = std::min(line.size - first - count, window.ahead);
        const MeanStretch stretch = {cells - before, before + count + after, before, count, cells};
        AverageStretch(stretch, window, false, 0, sums, reinterpret_cast<std::uint16_t*>(line.result + first));
    }
    return true;
}

} // namespace

void AverageLine(const HeightLine& line, std::size_t window)
{
    const std::size_t half = std::min(window / 2, line.size);
    const MeanWindow cells = {half, half};
    if (CanAverageInVectors(std::min(cells.Cells(), line.size)) && AverageInPieces(line, cells))
    {
        return;
    }
    RunningMean mean;
    SlideWindow(line, window, mean);
}

} // namespace Zvl
