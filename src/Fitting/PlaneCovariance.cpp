#include "Fitting/PlaneCovariance.h"

#include "Common/SelectedCells.h"
#include "Fitting/CellSums.h"

#include <algorithm>

namespace Zvl
{

namespace
{

__extension__ using Wide = __int128;

constexpr std::int64_t kMostCellsOfMean = 8192;
constexpr std::size_t kCellsPerGroup = 128;
static_assert(kCellsPerGroup <= kMostMomentCells);

/** Number of selected cells, and sums of their columns, rows and heights. */
template <typename Integer>
struct MeanSums
{
    Integer cells = 0;
    Integer columns = 0;
    Integer rows = 0;
    Integer heights = 0;
};

/** The stretch of row @p row of the rectangle that begins at its column @p column. */
RowStretch StretchOf(const SelectedCells& cells, std::size_t row, std::size_t column, std::size_t length)
{
    const std::size_t surfaceRow = static_cast<std::size_t>(cells.rect.y) + row;
    const std::size_t surfaceColumn = static_cast<std::size_t>(cells.rect.x) + column;
    return {cells.heights.Row(surfaceRow) + surfaceColumn, cells.mask.Row(row) + column, length,
            cells.mask.columns - column};
}

MeanSums<Wide> SumMean(const SelectedCells& cells)
{
    MeanSums<Wide> total;
    for (std::size_t row = 0; row < cells.mask.rows; ++row)
    {
        const Wide surfaceRow = Wide{cells.rect.y} + static_cast<Wide>(row);
        for (std::size_t column = 0; column < cells.mask.columns; column += kLongestSumStretch)
        {
            const std::size_t length = std::min(kLongestSumStretch, cells.mask.columns - column);
            const CellSums sums = SumCells(StretchOf(cells, row, column, length));
            const Wide surfaceColumn = Wide{cells.rect.x} + static_cast<Wide>(column);
            total.cells += sums.cells;
            total.columns += sums.columns + sums.cells * surfaceColumn;
            total.rows += sums.cells * surfaceRow;
            total.heights += sums.heights;
        }
    }
    return total;
}

/** Halves all sums until few enough cells are left; rounds down, also below zero. */
MeanSums<std::int64_t> Halved(MeanSums<Wide> sums)
{
    while (sums.cells > kMostCellsOfMean)
    {
        sums.cells >>= 1;
        sums.columns >>= 1;
        sums.rows >>= 1;
        sums.heights >>= 1;
    }
    return {static_cast<std::int64_t>(sums.cells), static_cast<std::int64_t>(sums.columns),
            static_cast<std::int64_t>(sums.rows), static_cast<std::int64_t>(sums.heights)};
}

/** Conversion from 64 bits rounds to the same double and takes one instruction. */
double ToDouble(Wide value)
{
    const auto narrow = static_cast<std::int64_t>(value);
    return narrow == value ? static_cast<double>(narrow) : static_cast<double>(value);
}

/** Products of the deviations of a group of cells. They need more than 64 bits: a missing height under a set
 *  mask cell deviates by up to 65535 * 8192. */
class ProductSums
{
public:
    ProductSums(const MeanSums<std::int64_t>& sums, const qPoint3d64f& worldScale)
        : mean(sums), scale(worldScale), inverse(1.0 / static_cast<double>(sums.cells))
    {
    }

    /** Adds the cells of a stretch that begins at @p column of row @p row, expanding
     *  (n u + a)(n v + b) = n² u v + n b u + n a v + a b under the sums. */
    void Add(const CellMoments& moments, std::int64_t column, std::int64_t row)
    {
        const std::int64_t n = mean.cells;
        const Wide squaredN = Wide{n} * n;
        const std::int64_t a = n * column - mean.columns;
        const std::int64_t dy = n * row - mean.rows;
        const std::int64_t b = -mean.heights;
        const std::int64_t nu = n * moments.columns;
        const std::int64_t nh = n * moments.heights;
        const Wide dx = nu + Wide{a} * moments.cells;
        const Wide dh = nh + Wide{b} * moments.cells;
        xx += squaredN * moments.squaredColumns + Wide{a} * nu + a * dx;
        xy += dx * dy;
        xh += squaredN * moments.columnsTimesHeights + Wide{b} * nu + a * dh;
        yy += Wide{dy} * dy * moments.cells;
        yh += dh * dy;
        hh += squaredN * moments.squaredHeights + Wide{b} * nh + b * dh;
    }

    void FlushAll(std::array<double, 9>& target)
    {
        ForEach([&](Wide& sum, std::size_t item, std::size_t mirrored, double first, double second)
                { Flush(sum, target, item, mirrored, first, second); });
    }

    void FlushNonZero(std::array<double, 9>& target)
    {
        ForEach(
            [&](Wide& sum, std::size_t item, std::size_t mirrored, double first, double second)
            {
                if (sum != 0)
                {
                    Flush(sum, target, item, mirrored, first, second);
                }
            });
    }

private:
    /** Calls @p action with each sum, its two items in the matrix, and its two scale factors. */
    template <typename Action>
    void ForEach(Action action)
    {
        action(xx, 0, 0, scale.x, scale.x);
        action(xy, 1, 3, scale.x, scale.y);
        action(xh, 2, 6, scale.x, scale.z);
        action(yy, 4, 4, scale.y, scale.y);
        action(yh, 5, 7, scale.y, scale.z);
        action(hh, 8, 8, scale.z, scale.z);
    }

    void Flush(Wide& sum, std::array<double, 9>& target, std::size_t item, std::size_t mirrored, double first,
               double second) const
    {
        target[item] += ToDouble(sum) * inverse * first * second;
        target[mirrored] = target[item];
        sum = 0;
    }

    MeanSums<std::int64_t> mean;
    qPoint3d64f scale;
    double inverse;
    Wide xx = 0;
    Wide xy = 0;
    Wide xh = 0;
    Wide yy = 0;
    Wide yh = 0;
    Wide hh = 0;
};

/** How far a share of a row reaches, and how many cells it selects. */
struct Share
{
    std::size_t length = 0;
    std::size_t selected = 0;
};

/** The next share of @p mask: at least one column and at most @p limit, with no more than @p room selected
 *  cells, and fewer only when the limit is reached. */
Share TakeShare(const std::uint8_t* mask, std::size_t limit, std::size_t room)
{
    Share share;
    while (share.length + 8 <= limit)
    {
        const std::size_t selected = CountOfEight(mask + share.length);
        if (share.selected + selected > room)
        {
            break;
        }
        share.selected += selected;
        share.length += 8;
    }
    while (share.length < limit && share.selected < room)
    {
        share.selected += mask[share.length] != 0 ? 1 : 0;
        ++share.length;
    }
    return share;
}

void SumProducts(const SelectedCells& cells, ProductSums& sums, std::array<double, 9>& target)
{
    std::size_t inGroup = 0;
    for (std::size_t row = 0; row < cells.mask.rows; ++row)
    {
        const std::int64_t surfaceRow = std::int64_t{cells.rect.y} + static_cast<std::int64_t>(row);
        for (std::size_t column = 0; column < cells.mask.columns;)
        {
            // A full group is flushed only when one more cell turns up: what is left at the end is treated
            // apart.
            const bool full = inGroup == kCellsPerGroup;
            const std::size_t limit = std::min(kLongestMomentStretch, cells.mask.columns - column);
            const Share share = TakeShare(cells.mask.Row(row) + column, limit, kCellsPerGroup - (full ? 0 : inGroup));
            if (share.selected > 0)
            {
                if (full)
                {
                    sums.FlushAll(target);
                    inGroup = 0;
                }
                sums.Add(SumMoments(StretchOf(cells, row, column, share.length)),
                         std::int64_t{cells.rect.x} + static_cast<std::int64_t>(column), surfaceRow);
                inGroup += share.selected;
            }
            column += share.length;
        }
    }
    sums.FlushNonZero(target);
}

} // namespace

bool SumCovariance(const SelectedCells& cells, const qPoint3d64f& scale, const qPoint3d64f& offset,
                   PlaneCovariance& covariance)
{
    const MeanSums<Wide> sums = SumMean(cells);
    if (sums.cells <= 3)
    {
        return false;
    }
    const MeanSums<std::int64_t> mean = Halved(sums);
    covariance.productSums.fill(0.0);
    ProductSums products(mean, scale);
    SumProducts(cells, products, covariance.productSums);

    const double inverse = 1.0 / static_cast<double>(mean.cells);
    covariance.mean = {static_cast<double>(mean.columns) * inverse * scale.x + offset.x,
                       static_cast<double>(mean.rows) * inverse * scale.y + offset.y,
                       static_cast<double>(mean.heights) * inverse * scale.z + offset.z};
    return true;
}

} // namespace Zvl
