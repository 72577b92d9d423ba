#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Rounding.h"

#include <cmath>

namespace Zvl
{

namespace
{

/** A range of cells along one axis, wide enough that no step of the clipping can overflow. */
struct CellRange
{
    std::int64_t first = 0;
    std::int64_t count = 0;

    std::int64_t End() const { return first + count; }
};

/** Low edge with slack @p slack, in cells. In double, so that positions beyond `int` need no cast. */
double SnapLow(double position, double slack)
{
    const double cell = std::trunc(position);
    if (position > 0.0)
    {
        return cell > position - slack ? cell : cell + 1.0;
    }
    return cell - 1.0 > position - slack ? cell - 1.0 : cell;
}

/** High edge with slack @p slack, in cells. */
double SnapHigh(double position, double slack)
{
    const double cell = std::trunc(position);
    if (position > 0.0)
    {
        return position + slack > cell + 1.0 ? cell + 1.0 : cell;
    }
    return position + slack > cell ? cell : cell - 1.0;
}

/** The cells from @p low to @p high, world units. A low edge that is not a number counts as cell 0 and a high edge
 *  as cell -1, so that together they make an empty range. */
CellRange RangeOf(double low, double high, double offset, double scale, const double* tolerance)
{
    const double lowPosition = (low - offset) / scale;
    const double highPosition = (high - offset) / scale;
    const double first = tolerance == nullptr ? std::ceil(lowPosition) : SnapLow(lowPosition, *tolerance / scale);
    const double last = tolerance == nullptr ? std::floor(highPosition) : SnapHigh(highPosition, *tolerance / scale);
    const std::int64_t firstCell = TruncateToInt(first);
    const std::int64_t lastCell = std::isnan(last) ? -1 : TruncateToInt(last);
    return {firstCell, lastCell - firstCell + 1};
}

/** Cuts off what lies below @p low. */
void ClipBelow(CellRange& range, std::int64_t low)
{
    if (range.first < low)
    {
        range.count = std::max<std::int64_t>(range.count + range.first - low, 0);
        range.first = low;
    }
}

/** Cuts off what lies at @p end or above. */
void ClipAbove(CellRange& range, std::int64_t end)
{
    if (range.End() > end)
    {
        range.count = std::max<std::int64_t>(end - range.first, 0);
    }
}

/** Cuts both axes to [low, end); a range that begins behind the data empties both at once. */
void ClipPlane(CellRange& x, std::int64_t xEnd, CellRange& y, std::int64_t yLow, std::int64_t yEnd)
{
    if (x.first > xEnd - 1 || y.first > yEnd - 1)
    {
        x.count = 0;
        y.count = 0;
        return;
    }
    ClipBelow(x, 0);
    ClipBelow(y, yLow);
    ClipAbove(x, xEnd);
    ClipAbove(y, yEnd);
}

Rect2d<int> RectangleOf(const CellRange& x, const CellRange& y)
{
    const bool empty = x.count == 0 || y.count == 0;
    return {ClampToInt(x.first), ClampToInt(y.first), empty ? 0 : ClampToInt(x.count), empty ? 0 : ClampToInt(y.count)};
}

} // namespace

void GetRegionPixel(std::size_t length, double offset, double scale, const RunLength<double>* region,
                    RunLength<int>* cells, double* tolerance, int clip)
{
    if (region == nullptr || cells == nullptr)
    {
        return;
    }
    CellRange range = RangeOf(region->start, region->start + region->length, offset, scale, tolerance);
    if (clip != 0)
    {
        const std::int64_t end = ClampToInt(length);
        if (range.first > end - 1)
        {
            range.count = 0;
        }
        else
        {
            ClipBelow(range, 0);
            ClipAbove(range, end);
        }
    }
    *cells = {ClampToInt(range.first), ClampToInt(range.count)};
}

void GetRegionPixel(std::size_t width, std::size_t height, const qPoint64f& offset, const qPoint64f& scale,
                    const Region2d<double>* region, Rect2d<int>* cells, qPoint64f* tolerance, int clip)
{
    if (region == nullptr || cells == nullptr)
    {
        return;
    }
    CellRange x = RangeOf(region->x, region->x + region->width, offset.x, scale.x,
                          tolerance == nullptr ? nullptr : &tolerance->x);
    CellRange y = RangeOf(region->y, region->y + region->height, offset.y, scale.y,
                          tolerance == nullptr ? nullptr : &tolerance->y);
    if (clip != 0)
    {
        ClipPlane(x, ClampToInt(width), y, 0, ClampToInt(height));
    }
    *cells = RectangleOf(x, y);
}

void GetRegionPixel(std::size_t width, std::size_t height, const qPoint3d64f& offset, const qPoint3d64f& scale,
                    const Region3d<double>* region, Rect3d<int>* cells, qPoint3d64f* tolerance, int clip)
{
    if (region == nullptr || cells == nullptr)
    {
        return;
    }
    const Region2d<double> plane = {region->x, region->y, region->width, region->height, region->angle};
    qPoint64f planeTolerance = {};
    if (tolerance != nullptr)
    {
        planeTolerance = {tolerance->x, tolerance->y};
    }
    Rect2d<int> rectangle;
    GetRegionPixel(width, height, qPoint64f{offset.x, offset.y}, qPoint64f{scale.x, scale.y}, &plane, &rectangle,
                   tolerance == nullptr ? nullptr : &planeTolerance, clip);
    const CellRange z = RangeOf(region->z, region->z + region->depth, offset.z, scale.z,
                                tolerance == nullptr ? nullptr : &tolerance->z);
    *cells = {rectangle.x, rectangle.y, rectangle.width, rectangle.height, ClampToInt(z.first), ClampToInt(z.count)};
    if (cells->width == 0 || cells->height == 0 || cells->depth == 0)
    {
        cells->width = 0;
        cells->height = 0;
        cells->depth = 0;
    }
}

void GetRegionPixel(const SurfaceInputData* data, const Region3d<double>* region, Rect3d<int>* cells,
                    qPoint3d64f* tolerance, int clip)
{
    if (data != nullptr)
    {
        GetRegionPixel(data->width, data->height, data->offset, data->scale, region, cells, tolerance, clip);
    }
}

void GetRegionXZPixel(std::size_t width, const qPoint64f& offset, const qPoint64f& scale,
                      const Region2d<double>* region, Rect2d<int>* cells, qPoint64f* tolerance, int clip)
{
    if (region == nullptr || cells == nullptr)
    {
        return;
    }
    constexpr std::int64_t lowestHeight = std::numeric_limits<std::int16_t>::min();
    constexpr std::int64_t heightEnd = std::numeric_limits<std::int16_t>::max() + 1;
    CellRange x = RangeOf(region->x, region->x + region->width, offset.x, scale.x,
                          tolerance == nullptr ? nullptr : &tolerance->x);
    CellRange z = RangeOf(region->y, region->y + region->height, offset.y, scale.y,
                          tolerance == nullptr ? nullptr : &tolerance->y);
    if (clip != 0)
    {
        ClipPlane(x, ClampToInt(width), z, lowestHeight, heightEnd);
    }
    *cells = RectangleOf(x, z);
}

} // namespace Zvl
