#include <ZdkVisionLib/Common/Mat.h>

#include "Common/Cells.h"
#include "Common/Rounding.h"
#include <ZdkVisionLib/Utils/Utils.h>
#include <ZdkVisionLib/platform/ZoVision.h>

#include <algorithm>
#include <cmath>

namespace Zvl
{

namespace
{

constexpr int kLowestHeight = std::numeric_limits<std::int16_t>::min();
constexpr int kHighestHeight = std::numeric_limits<std::int16_t>::max();

/** Cells along one axis, the first one counted in the message; none when the count is 0 or below. */
struct CellSpan
{
    int first;
    int count;
};

/** Indices of target cells along one axis, the end excluded. */
struct IndexRange
{
    std::int64_t begin;
    std::int64_t end;

    std::int64_t Count() const { return end - begin; }
    bool Holds(std::int64_t index) const { return begin <= index && index < end; }
};

/** Inclusive range of height counts that are kept; empty when the first is above the second. */
struct CountRange
{
    int lowest;
    int highest;
};

/** The cells of a stretch from @p start, world units. Its length alone gives their number: the far edge, truncated by
 *  itself, may come out one cell off. No cells when @p start is not a number, or when there would be more than the
 *  `int` of a `cv::Mat` counts. */
CellSpan SpanOf(double start, double length, double offset, double scale)
{
    constexpr double tooMany = std::numeric_limits<int>::max() + 1.0;
    const double first = (start - offset) / scale;
    const double count = length / scale;
    const bool countable = !std::isnan(first) && count < tooMany;
    return {TruncateToInt(first), countable ? TruncateToInt(count) : 0};
}

/** The indices within @p span whose cells the message has. Its far edge, computed from world units, may lie below or
 *  above the end of the cells that are there. */
IndexRange SharedIndices(const CellSpan& span, int farEdge, std::size_t available)
{
    const std::int64_t end = std::min(farEdge, ClampToInt(available));
    const std::int64_t count = span.count;
    const std::int64_t begin = std::clamp<std::int64_t>(-std::int64_t{span.first}, 0, count);
    return {begin, std::clamp(end - span.first, begin, count)};
}

/** The counts of the heights from @p z to @p z + @p depth, the low edge truncated and the high one rounded. A limit
 *  that is not a number keeps no height: no comparison with it holds. */
CountRange CountsWithin(double z, double depth, double offset, double scale)
{
    const double lowest = (z - offset) / scale;
    const double highest = RoundHalfAway((z + depth - offset) / scale);
    if (std::isnan(lowest) || std::isnan(highest))
    {
        return {0, -1};
    }
    return {std::max(TruncateToInt(lowest), kLowestHeight), std::min(TruncateToInt(highest), kHighestHeight)};
}

/** Stores the heights that @p kept holds, and 0 for the others. */
void EncodeHeights(const std::int16_t* heights, const CountRange& kept, std::uint16_t* cells, std::int64_t count)
{
    if (kept.lowest > kept.highest)
    {
        std::fill_n(cells, count, std::uint16_t{0});
        return;
    }
    const auto lowest = static_cast<std::int16_t>(kept.lowest); // 16-bit limits: whole vectors of comparisons
    const auto highest = static_cast<std::int16_t>(kept.highest);
    for (std::int64_t index = 0; index < count; ++index)
    {
        const std::int16_t height = heights[index];
        const auto cell = static_cast<std::uint16_t>(height - kLowestHeight);
        cells[index] = height >= lowest && height <= highest ? cell : std::uint16_t{0};
    }
}

/** Where the cells of the target come from, along one axis. */
struct CellSource
{
    int first;         ///< cell of the message for target index 0, not always one that it has
    IndexRange shared; ///< target indices whose cells the message has

    std::size_t CellOf(std::int64_t index) const { return static_cast<std::size_t>(first + index); }
};

/** Fills @p target; cells that the message does not have become 0. */
void EncodeCells(const Cells<const std::int16_t>& heights, const CellSource& rows, const CellSource& columns,
                 const CountRange& kept, cv::Mat& target)
{
    const IndexRange& shared = columns.shared;
    for (int row = 0; row < target.rows; ++row)
    {
        auto* cells = target.ptr<std::uint16_t>(row);
        if (shared.Count() == 0 || !rows.shared.Holds(row))
        {
            std::fill_n(cells, target.cols, std::uint16_t{0});
            continue;
        }
        std::fill_n(cells, shared.begin, std::uint16_t{0});
        EncodeHeights(heights.Row(rows.CellOf(row)) + columns.CellOf(shared.begin), kept, cells + shared.begin,
                      shared.Count());
        std::fill(cells + shared.end, cells + target.cols, std::uint16_t{0});
    }
}

} // namespace

void zvlMat::GetRegionFromMsg(void* message, int index, Region3d<double>* region)
{
    if (message == nullptr || region == nullptr)
    {
        return;
    }
    const qPoint3d64f itemOffset = GetSurfaceItemOffset(message, index);
    const qPoint3d64f cellSize = ZvSurfaceMsg_Scale(message);
    const auto columns = static_cast<double>(ZvSurfaceMsg_Width(message));
    const auto rows = static_cast<double>(ZvSurfaceMsg_Length(message));
    region->x = itemOffset.x;
    region->y = itemOffset.y;
    region->width = columns * cellSize.x;
    region->height = rows * cellSize.y;
    region->z = itemOffset.z + kLowestHeight * cellSize.z;
    region->depth = (kHighestHeight - kLowestHeight) * cellSize.z;
}

zvlMat::zvlMat(void* message, int index, const Region3d<double>* region, int useZLimits, int noClip)
    : scale{0.0, 0.0, 0.0}, offset{0.0, 0.0, 0.0}, state(1)
{
    if (message == nullptr || region == nullptr)
    {
        return;
    }
    Region3d<double> covered;
    GetRegionFromMsg(message, index, &covered);
    Region3d<double> wanted = *region;
    if (noClip == 0)
    {
        RegionClipXY(&covered, &wanted);
    }
    const qPoint3d64f origin = GetSurfaceItemOffset(message, index);
    scale = ZvSurfaceMsg_Scale(message);
    const CellSpan columns = SpanOf(wanted.x, wanted.width, origin.x, scale.x);
    const CellSpan rows = SpanOf(wanted.y, wanted.height, origin.y, scale.y);
    offset = {origin.x + columns.first * scale.x, origin.y + rows.first * scale.y, origin.z};
    if (columns.count <= 0 || rows.count <= 0)
    {
        return;
    }
    cv::Mat target = GetDestinationMat({columns.count, rows.count}); // empty when there is no memory for it
    const Cells<const std::int16_t> source = CellsOf<const std::int16_t>(ZvSurfaceMsg_PointsArray(message, 0));
    const int farColumn = TruncateToInt((covered.x + covered.width - origin.x) / scale.x);
    const int farRow = TruncateToInt((covered.y + covered.height - origin.y) / scale.y);
    const CountRange kept = useZLimits == 0 ? CountRange{kLowestHeight, kHighestHeight}
                                            : CountsWithin(wanted.z, wanted.depth, origin.z, scale.z);
    EncodeCells(source, {rows.first, SharedIndices(rows, farRow, source.rows)},
                {columns.first, SharedIndices(columns, farColumn, source.columns)}, kept, target);
}

} // namespace Zvl
