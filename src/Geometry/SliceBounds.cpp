#include <ZdkVisionLib/Geometry/Geometry.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/Rounding.h"
#include "Geometry/ConvexChain.h"
#include "Geometry/RotatedBounds.h"
#include "Geometry/RowExtent.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::GetBoundingBox";

bool HasNull(const qPoint3d64f& point)
{
    constexpr double null = GetNull<double>();
    return point.x == null || point.y == null || point.z == null;
}

/** The cells of a slice. */
struct SliceCells
{
    Cells<const std::int16_t> heights;
    Cells<const std::uint8_t> mask;
    Rect2d<int> rect;

    explicit SliceCells(const SurfaceSlice& slice)
        : heights(CellsOf<const std::int16_t>(LayerOf(slice.surface, 0))),
          mask(CellsOf<const std::uint8_t>(slice.mask)),
          rect(slice.rect)
    {
    }

    bool Fit() const { return heights.Contains(rect) && mask.HasSizeOf(rect); }

    /** Of a row of the mask; columns count from the rectangle's first. */
    std::optional<RowExtent> ExtentOfRow(std::size_t row) const
    {
        const std::int16_t* rowHeights = heights.Row(static_cast<std::size_t>(rect.y) + row) + rect.x;
        return ExtentOfSelected(mask.Row(row), rowHeights, mask.columns);
    }
};

bool HasMappedCells(const SurfaceSlice& slice)
{
    return !HasNull(slice.surface.offset) && !HasNull(slice.surface.scale) && SliceCells(slice).Fit();
}

/** A shift in cells. */
struct Shift
{
    std::int64_t x;
    std::int64_t y;
};

/** From cells of @p surface to those of @p first, whose scale both are taken to have; none when they are the same. */
Shift ShiftBetween(const Surface& first, const Surface& surface)
{
    return {TruncateToInt((surface.offset.x - first.offset.x) / first.scale.x),
            TruncateToInt((surface.offset.y - first.offset.y) / first.scale.y)};
}

/** From the lowest to the highest index of the selected cells on one axis; empty at first. */
struct IndexRange
{
    std::int64_t minimum = std::numeric_limits<int>::max();
    std::int64_t maximum = std::numeric_limits<int>::min();

    bool Empty() const { return maximum < minimum; }

    void Include(std::int64_t lowest, std::int64_t highest)
    {
        minimum = std::min(minimum, lowest);
        maximum = std::max(maximum, highest);
    }

    double Size(double scale) const { return static_cast<double>(maximum - minimum + 1) * scale; }

    double Center(double offset, double scale) const
    {
        return offset + (static_cast<double>(minimum) - 0.5) * scale + Size(scale) / 2;
    }
};

/** What the selected cells of all slices span, in cells of the first slice. */
class SliceExtent
{
public:
    SliceExtent(std::size_t rows, void* allocator)
    {
        ZVL_CHECK(kFunction, qArrayList_Construct(leftChain.Slot(), xxqPoint32s_type, rows, allocator));
        ZVL_CHECK(kFunction, qArrayList_Construct(rightChain.Slot(), xxqPoint32s_type, rows, allocator));
    }

    void Add(const SliceCells& cells, const Shift& shift)
    {
        const Shift corner = {cells.rect.x + shift.x, cells.rect.y + shift.y};
        for (std::size_t row = 0; row < cells.mask.rows; ++row)
        {
            if (const std::optional<RowExtent> extent = cells.ExtentOfRow(row))
            {
                z.Include(extent->lowest, extent->highest);
                AddRow(ClampToInt(corner.x + static_cast<std::int64_t>(extent->first)),
                       ClampToInt(corner.x + static_cast<std::int64_t>(extent->last)),
                       ClampToInt(corner.y + static_cast<std::int64_t>(row)));
            }
        }
    }

    bool Empty() const { return x.Empty(); }

    /** The box along the axes. */
    Region3d<double> UprightBox(const Surface& surface) const
    {
        Region3d<double> box;
        box.x = x.Center(surface.offset.x, surface.scale.x);
        box.y = y.Center(surface.offset.y, surface.scale.y);
        box.width = x.Size(surface.scale.x);
        box.height = y.Size(surface.scale.y);
        box.angle = 90.0;
        IncludeHeights(surface, box);
        return box;
    }

    /** The box of smallest area. */
    Region3d<double> RotatedBox(const Surface& surface, void* allocator) const
    {
        const double offset[] = {surface.offset.x, surface.offset.y};
        const double scale[] = {surface.scale.x, surface.scale.y};
        double center[2];
        double size[2];
        double angle = 0.0;
        GetRotatedBounds(leftChain, rightChain, offset, scale, center, size, &angle, allocator);
        Region3d<double> box;
        box.x = center[0];
        box.y = center[1];
        box.width = size[0];
        box.height = size[1];
        // From [0, 180) to above -90 up to 90. A null stays.
        box.angle = angle > 90.0 ? angle - 180.0 : angle;
        IncludeHeights(surface, box);
        return box;
    }

private:
    void AddRow(int first, int last, int row)
    {
        const qPoint32s left = {first, row};
        const qPoint32s right = {last, row};
        AddConvex(leftChain, &left, 1);
        AddConvex(rightChain, &right, 0);
        x.Include(first, last);
        y.Include(row, row);
    }

    void IncludeHeights(const Surface& surface, Region3d<double>& box) const
    {
        box.z = z.Center(surface.offset.z, surface.scale.z);
        box.depth = z.Size(surface.scale.z);
    }

    Zo::Object<void*> leftChain;
    Zo::Object<void*> rightChain;
    IndexRange x;
    IndexRange y;
    IndexRange z;
};

std::size_t RowsOf(const std::vector<SurfaceSlice>& slices)
{
    std::size_t rows = 0;
    for (const SurfaceSlice& slice : slices)
    {
        const SliceCells cells(slice);
        rows += cells.Fit() ? cells.heights.rows : 0;
    }
    return rows;
}

} // namespace

Region3d<double> GetBoundingBox(const std::vector<SurfaceSlice>& slices, int rotated, void* allocator)
{
    if (slices.empty() || !HasMappedCells(slices[0]))
    {
        return {};
    }
    const Surface& first = slices[0].surface;
    SliceExtent extent(RowsOf(slices), allocator);
    const auto count = static_cast<std::uint8_t>(slices.size()); // a list knows up to 255 slices
    for (std::uint8_t index = 0; index < count; ++index)
    {
        const SliceCells cells(slices[index]);
        if (cells.Fit())
        {
            extent.Add(cells, ShiftBetween(first, slices[index].surface));
        }
    }
    if (extent.Empty())
    {
        return {};
    }
    return rotated != 0 ? extent.RotatedBox(first, allocator) : extent.UprightBox(first);
}

} // namespace Zvl
