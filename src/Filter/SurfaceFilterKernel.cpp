#include "Filter/SurfaceFilterKernel.h"

#include "Filter/ColumnMeans.h"

namespace Zvl
{

namespace
{

/** The cells of a line of @p length cells that a window of @p size cells can meet. An even size reaches one cell further
 *  ahead. */
MeanWindow WindowOf(std::size_t size, std::size_t length)
{
    return {std::min(size - size / 2 - 1, length), std::min(size / 2, length)};
}

/** The sizes, sums and rows of a box mean. */
struct WorkingMemory
{
    WorkingMemory(const BoxMean& mean, void* memory)
        : parts(memory),
          windowX(WindowOf(mean.windowX, mean.columns)),
          windowY(WindowOf(mean.windowY, mean.rows)),
          width(RoundUp(mean.columns, kMostLanes) + kMostLanes),
          keptRows(std::min(windowY.Cells() + 1, mean.rows)),
          prefixSums(parts.TakeSums(CellsOfPrefixSums(windowX, mean.columns))),
          columnSums(parts.TakeSums(width)),
          nothing(parts.Take<std::uint16_t>(width)),
          between(parts.Take<std::uint16_t>(keptRows * width))
    {
    }

    /** The means along row @p row, shifted, as long as a window can meet them. */
    std::uint16_t* MeansOfRow(std::size_t row) const { return between + row % keptRows * width; }

    MemoryParts parts;
    MeanWindow windowX;
    MeanWindow windowY;
    std::size_t width; ///< of a row of means, rarely a power of two, lest all rows meet in the same places of the cache
    std::size_t keptRows;
    HeightSums prefixSums;
    HeightSums columnSums;
    std::uint16_t* nothing; ///< a row of missing heights
    std::uint16_t* between;
};

} // namespace

bool CanAverageInVectors(const BoxMean& mean)
{
    constexpr std::size_t kNarrowest = 12; // less than that is sooner done cell by cell
    return mean.windowX != 0 && mean.windowY != 0 && mean.rows != 0 && mean.columns >= kNarrowest &&
           CanAverageInVectors(std::max(std::min<std::size_t>(mean.windowX, mean.columns),
                                        std::min<std::size_t>(mean.windowY, mean.rows)));
}

std::size_t BytesForVectors(const BoxMean& mean)
{
    return WorkingMemory(mean, nullptr).parts.Used();
}

void AverageInVectors(const BoxMean& mean, void* memory)
{
    const WorkingMemory working(mean, memory);
    const auto [behind, ahead] = working.windowY;
    const std::size_t cells = std::min(working.windowY.Cells(), mean.rows);
    const std::size_t columns = mean.columns;
    const std::size_t lastRow = mean.rows - 1;
    std::fill_n(working.columnSums.even, working.width / 2, 0);
    std::fill_n(working.columnSums.odd, working.width / 2, 0);
    std::fill_n(working.columnSums.counts, working.width, std::uint16_t{0});
    std::fill_n(working.nothing, working.width, std::uint16_t{0});
    for (std::size_t entering = 0; entering <= lastRow + ahead; ++entering)
    {
        if (entering <= lastRow)
        {
            const std::int16_t* row = mean.in + entering * columns;
            const std::int16_t* next = entering < lastRow ? row + columns : row;
            AverageStretch({row, columns, 0, columns, next}, working.windowX, mean.keepNulls, kHeightShift,
                           working.prefixSums, working.MeansOfRow(entering));
        }
        const bool isLeaving = entering > ahead + behind;
        const ColumnStep step = {entering <= lastRow ? working.MeansOfRow(entering) : working.nothing,
                                 isLeaving ? working.MeansOfRow(entering - ahead - behind - 1) : working.nothing,
                                 working.columnSums, columns};
        if (entering < ahead)
        {
            MoveColumns(step);
            continue;
        }
        const std::size_t centre = entering - ahead; // no row that is still to be read
        std::int16_t* means = mean.out + centre * columns;
        AverageColumns(step, cells, working.MeansOfRow(centre), mean.keepNulls, means,
                       centre < lastRow ? means + columns : means);
    }
}

} // namespace Zvl
