#include "support/EdgeSearch.h"

#include <cmath>
#include <optional>

namespace Examples
{
namespace
{

struct Cell
{
    int column;
    int row;
};

/** The mask of a region, addressed by cells of the surface. */
class Mask
{
public:
    explicit Mask(Zvl::ROI& region) : box(region.GetBoundingBox()), cells(region.GetMask()) {}

    bool IsInBox(const Cell& cell) const
    {
        return cell.column >= box.x && cell.column < box.x + box.width && cell.row >= box.y &&
               cell.row < box.y + box.height;
    }

    bool IsSet(const Cell& cell) const
    {
        return IsInBox(cell) &&
               *static_cast<const unsigned char*>(qArray2_At(cells, static_cast<std::size_t>(cell.row - box.y),
                                                             static_cast<std::size_t>(cell.column - box.x))) != 0;
    }

private:
    Zvl::Rect2d<int> box;
    Zo::Object<void*> cells;
};

/** Walks from @p start by @p step to the first set cell. A start on a set cell, or outside, meets no edge. */
std::optional<Cell> FirstSetCell(const Mask& mask, const Cell& start, const Cell& step)
{
    if (mask.IsSet(start))
    {
        return std::nullopt;
    }
    for (Cell cell = start; mask.IsInBox(cell); cell = {cell.column + step.column, cell.row + step.row})
    {
        if (mask.IsSet(cell))
        {
            return cell;
        }
    }
    return std::nullopt;
}

class Search
{
public:
    explicit Search(Zvl::ROI& ring) : mask(ring) {}

    void From(const Cell& start, const Cell& step)
    {
        if (const std::optional<Cell> hit = FirstSetCell(mask, start, step))
        {
            steps.push_back({hit->column, hit->row, step.column, step.row});
        }
    }

    std::vector<EdgeStep> steps;

private:
    Mask mask;
};

} // namespace

std::vector<EdgeStep> FindInnerEdge(Zvl::ROI& ring, const Zvl::Surface& surface)
{
    if (ring.GetMask() == nullptr)
    {
        return {};
    }
    const Zvl::Region2d<double>& extent = ring.GetBoundingRegion();
    const double centerX = (extent.x + extent.width / 2.0 - surface.offset.x) / surface.scale.x;
    const double centerY = (extent.y + extent.height / 2.0 - surface.offset.y) / surface.scale.y;
    const Cell center{static_cast<int>(std::lround(centerX)), static_cast<int>(std::lround(centerY))};
    // A little less than half of the ring's own radius times the square root of 2, since the edge lies inside it.
    const int reachX = static_cast<int>(0.3 * extent.width / surface.scale.x);
    const int reachY = static_cast<int>(0.3 * extent.height / surface.scale.y);

    Search search(ring);
    for (int row = center.row - reachY; row <= center.row + reachY; ++row)
    {
        search.From({center.column, row}, {1, 0});
        search.From({center.column, row}, {-1, 0});
    }
    for (int column = center.column - reachX; column <= center.column + reachX; ++column)
    {
        search.From({column, center.row}, {0, 1});
        search.From({column, center.row}, {0, -1});
    }
    return search.steps;
}

qPoint64f PointOn(const Zvl::Surface& surface, const EdgeStep& step, double share)
{
    return {surface.offset.x + (step.column - share * step.columnStep) * surface.scale.x,
            surface.offset.y + (step.row - share * step.rowStep) * surface.scale.y};
}

} // namespace Examples
