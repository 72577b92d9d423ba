#include "Filter/SurfaceDecimateRows.h"

#include "Common/Check.h"
#include "Common/Rounding.h"
#include "Filter/SurfaceDecimateKernel.h"
#include "Filter/SurfaceDecimateSpan.h"

#include <array>
#include <bit>
#include <limits>
#include <utility>

namespace Zvl
{

namespace
{

struct CellMean
{
    std::int16_t height = GetNull<short>();
    std::uint8_t intensity = 0;
};

/** The mean of one rectangle, its cells taken row after row: the order of summation that the result is defined by. */
CellMean MeanOfArea(const SourceLayers& source, const CellSpan& rows, const CellSpan& columns)
{
    double heights = 0.0;
    double weights = 0.0;
    double intensities = 0.0;
    for (std::size_t y = rows.begin; y < rows.end; ++y)
    {
        const double wy = rows.Share(y);
        const std::int16_t* row = source.heights.Row(y);
        for (std::size_t x = columns.begin; x < columns.end; ++x)
        {
            if (row[x] != GetNull<short>())
            {
                const double wx = columns.Share(x);
                heights += row[x] * wx * wy;
                weights += wx * wy;
                intensities += source.intensities.present ? source.intensities.Row(y)[x] * wx * wy : 0.0;
            }
        }
    }
    if (weights == 0.0)
    {
        return {};
    }
    return {static_cast<std::int16_t>(TruncateToInt(RoundHalfAway(heights / weights))),
            static_cast<std::uint8_t>(TruncateToInt(intensities / weights + 0.5))};
}

/** True when all shares are of few binary digits. */
bool HasShortShares(double step)
{
    return step <= 1048576.0 && step * 1024.0 == std::trunc(step * 1024.0);
}

/** How far a quotient of sums may be from that of the sums in their proper order; negative when all of them are
 *  exact. */
double LargestDeviation(const SourceLayers& source, Point2d<double> step)
{
    const double cells = (std::min(step.x, static_cast<double>(source.heights.columns)) + 2.0) *
                         (std::min(step.y, static_cast<double>(source.heights.rows)) + 2.0);
    if (HasShortShares(step.x) && HasShortShares(step.y) && cells <= 262144.0)
    {
        return -1.0; // 15 bits of height, 20 of both shares, 18 of the number of cells
    }
    // Each of two sums of n terms, in either order, is off by no more than n + 3 roundings of its magnitude; a division
    // and the addition of a half follow. Twice as much is taken.
    constexpr double rounding = std::numeric_limits<double>::epsilon() / 2.0;
    return 32768.0 * rounding * 8.0 * (cells + 8.0);
}

/** The walk over the rows of the coarser grid. Columns are summed first, for all cells of a row at once; the sums of a
 *  cell's columns follow. Means that this order may round otherwise than the proper one are taken anew. */
class RowDecimator
{
public:
    RowDecimator(const char* function, const SourceLayers& source, const TargetLayers& target, Point2d<double> step,
                 void* alloc);

    void FillRow(std::size_t row, const CellSpan& rows);

private:
    void FindSpans(const char* function, double step, void* alloc);
    void MakeRoom(const char* function, void* alloc);
    void FindShares(double* shares);
    std::size_t Halve(std::size_t row, const CellSpan& rows);
    void SumRows(const CellSpan& rows);
    void StoreMeans(std::size_t row, const CellSpan& rows);
    void StoreExactly(std::size_t row, const CellSpan& rows, std::size_t begin, std::size_t end);

    const SourceLayers& source;
    const TargetLayers& target;
    double deviation;
    bool halves;                 ///< cells of two by two whole cells
    Zo::Object<void*> spanArray; ///< memory of #spans
    Zo::Object<void*> sumArray;  ///< memory of the shares and of all sums
    CellSpan* spans = nullptr;   ///< the columns that each cell of a row covers
    std::size_t covered = 0;     ///< columns of the source up to the last one that is covered
    CellTaps taps = {};          ///< of the cells up to the last one that covers anything
    AreaSums columnSums = {};    ///< of the rows that are covered
    AreaSums cellSums = {};
};

RowDecimator::RowDecimator(const char* function, const SourceLayers& source, const TargetLayers& target,
                           Point2d<double> step, void* alloc)
    : source(source), target(target), deviation(LargestDeviation(source, step)), halves(step.x == 2.0 && step.y == 2.0)
{
    FindSpans(function, step.x, alloc);
    if (!halves)
    {
        MakeRoom(function, alloc);
    }
}

void RowDecimator::FindSpans(const char* function, double step, void* alloc)
{
    const std::size_t columns = target.heights.columns;
    ZVL_CHECK(function, qArray1_Construct(spanArray.Slot(), xxq8u_type, columns * sizeof(CellSpan), alloc));
    spans = static_cast<CellSpan*>(qArray1_Data(spanArray));
    taps.spans = spans;
    SpanWalk walk(step, source.heights.columns);
    for (std::size_t cell = 0; cell < columns; ++cell)
    {
        const CellSpan span = walk.Next();
        spans[cell] = span;
        covered = std::max(covered, span.end);
        taps.count = std::max(taps.count, span.end - span.begin);
        taps.cells = span.IsEmpty() ? taps.cells : cell + 1;
    }
}

void RowDecimator::MakeRoom(const char* function, void* alloc)
{
    const std::size_t blocks = (target.heights.columns + kMeanBlock - 1) / kMeanBlock;
    const std::size_t cellRoom = 2 * blocks * kMeanBlock;
    const std::size_t columnRoom = 2 * (covered + taps.count); // taps reach beyond the last column
    const std::size_t shareRoom = taps.cells * taps.count;
    const std::size_t layers = source.intensities.present ? 2 : 1;
    ZVL_CHECK(function,
              qArray1_Construct(sumArray.Slot(), xxq64f_type, layers * (cellRoom + columnRoom) + shareRoom, alloc));
    ZVL_CHECK(function, qArray1_Zero(sumArray));
    auto* next = static_cast<double*>(qArray1_Data(sumArray));
    const auto take = [&next](std::size_t items) { return std::exchange(next, next + items); };
    cellSums.heights = take(cellRoom);
    columnSums.heights = take(columnRoom);
    if (source.intensities.present)
    {
        cellSums.intensities = take(cellRoom);
        columnSums.intensities = take(columnRoom);
    }
    FindShares(take(shareRoom));
}

void RowDecimator::FindShares(double* shares)
{
    taps.shares = shares;
    for (std::size_t cell = 0; cell < taps.cells; ++cell)
    {
        const CellSpan& span = spans[cell];
        for (std::size_t column = span.begin; column < span.end; ++column)
        {
            shares[cell * taps.count + column - span.begin] = span.Share(column);
        }
    }
}

void RowDecimator::FillRow(std::size_t row, const CellSpan& rows)
{
    if (halves)
    {
        StoreExactly(row, rows, Halve(row, rows), target.heights.columns);
        return;
    }
    SumRows(rows);
    SumTaps(taps, columnSums.heights, cellSums.heights);
    if (source.intensities.present)
    {
        SumTaps(taps, columnSums.intensities, cellSums.intensities);
    }
    StoreMeans(row, rows);
}

/** The means of the row's first cells, as far as there are two whole rows and vectors of whole columns for them;
 *  returns their number. */
std::size_t RowDecimator::Halve(std::size_t row, const CellSpan& rows)
{
    if (rows.end - rows.begin != 2)
    {
        return 0;
    }
    const std::size_t count = std::min(target.heights.columns, source.heights.columns / 2);
    const RowPair heights = {source.heights.Row(rows.begin), source.heights.Row(rows.begin + 1)};
    if (source.intensities.present)
    {
        HalveIntensities(heights, source.intensities.Row(rows.begin), source.intensities.Row(rows.begin + 1), count,
                         target.intensities.Row(row));
    }
    return HalveHeights(heights, count, target.heights.Row(row));
}

void RowDecimator::SumRows(const CellSpan& rows)
{
    std::array<double, RowBand::kMostRows> shares = {};
    std::size_t row = rows.begin;
    do
    {
        const std::size_t count = std::min(RowBand::kMostRows, rows.end - row);
        for (std::size_t i = 0; i < count; ++i)
        {
            shares[i] = rows.Share(row + i);
        }
        const RowBand band = {source.heights.Row(row),
                              source.intensities.present ? source.intensities.Row(row) : nullptr,
                              source.heights.columns, count, shares.data()};
        SumColumns(band, covered, row == rows.begin, columnSums);
        row += count;
    } while (row < rows.end);
}

void RowDecimator::StoreMeans(std::size_t row, const CellSpan& rows)
{
    std::array<std::int16_t, kMeanBlock> means;
    const std::size_t columns = target.heights.columns;
    for (std::size_t first = 0; first < columns; first += kMeanBlock)
    {
        const std::size_t count = std::min(kMeanBlock, columns - first);
        std::uint64_t doubtful = RoundMeans(cellSums.heights + 2 * first, deviation, GetNull<short>(), means.data());
        std::copy_n(means.data(), count, target.heights.Row(row) + first);
        if (source.intensities.present)
        {
            doubtful |= RoundMeans(cellSums.intensities + 2 * first, deviation, 0, means.data());
            std::transform(means.data(), means.data() + count, target.intensities.Row(row) + first,
                           [](std::int16_t mean) { return static_cast<std::uint8_t>(mean); });
        }
        for (; doubtful != 0; doubtful &= doubtful - 1)
        {
            const std::size_t column = first + static_cast<std::size_t>(std::countr_zero(doubtful));
            StoreExactly(row, rows, column, std::min(column + 1, columns));
        }
    }
}

void RowDecimator::StoreExactly(std::size_t row, const CellSpan& rows, std::size_t begin, std::size_t end)
{
    for (std::size_t column = begin; column < end; ++column)
    {
        const CellMean mean = MeanOfArea(source, rows, spans[column]);
        target.heights.Row(row)[column] = mean.height;
        if (target.intensities.present)
        {
            target.intensities.Row(row)[column] = mean.intensity;
        }
    }
}

} // namespace

void DecimateRows(const char* function, const SourceLayers& source, const TargetLayers& target, Point2d<double> step,
                  void* alloc)
{
    RowDecimator decimator(function, source, target, step, alloc);
    SpanWalk walk(step.y, source.heights.rows);
    for (std::size_t row = 0; row < target.heights.rows; ++row)
    {
        decimator.FillRow(row, walk.Next());
    }
}

} // namespace Zvl
