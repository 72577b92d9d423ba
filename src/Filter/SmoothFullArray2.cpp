#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Filter/PadArray2.h"
#include "Filter/SmoothFullArray2Kernel.h"

#include <algorithm>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::SmoothFullArray2";

/** An array of @p count sums, which @p owner holds. */
HeightSums NewSums(Zo::Object<void*>& owner, std::size_t count, void* alloc)
{
    ZVL_CHECK(kFunction, qArray2_Construct(owner.Slot(), xxq64s_type, 2, count, alloc));
    return {static_cast<std::int64_t*>(qArray2_At(owner, 0, 0)), static_cast<std::int64_t*>(qArray2_At(owner, 1, 0))};
}

/** Slides the box down the map. The sums of its columns go along; their prefix sums over a padded row give any box of
 *  that row by a difference. Neither needs the padded map or a table of its size. */
class SlidingBox
{
public:
    SlidingBox(const Cells<const std::int16_t>& map, std::size_t halfWidth, std::size_t halfHeight, void* alloc)
        : heights(map),
          halfX(halfWidth),
          halfY(halfHeight),
          columns(NewSums(columnOwner, map.columns, alloc)),
          prefix(NewSums(prefixOwner, map.columns + 2 * halfX, alloc))
    {
        ZVL_CHECK(kFunction, qArray2_Zero(columnOwner));
        ZVL_CHECK(kFunction, qArray1_Construct(nullOwner.Slot(), xxq16s_type, map.columns, alloc));
        nulls = static_cast<std::int16_t*>(qArray1_Data(nullOwner));
        std::fill_n(nulls, map.columns, GetNull<short>());
        for (std::size_t padded = 1; padded < 2 * halfY; ++padded)
        {
            MoveColumnSums(PaddedRow(padded), nulls, columns, map.columns);
        }
    }

    /** Moves the box on to the row after the first ones or the last call, and writes the means of that row. */
    void Average(std::size_t row, std::int16_t* out)
    {
        // Of the padded rows the box has those after `row` up to `row + 2 * halfY`.
        MoveColumnSums(PaddedRow(row + 2 * halfY), row == 0 ? nulls : PaddedRow(row), columns, heights.columns);
        SumPrefixes();
        DivideRow(prefix, 2 * halfX, heights.Row(row), out, heights.columns);
    }

private:
    const std::int16_t* PaddedRow(std::size_t position) const
    {
        return heights.Row(MirroredIndex(position, halfY, heights.rows));
    }

    void SumPrefixes()
    {
        std::int64_t sum = 0;
        std::int64_t cells = 0;
        for (std::size_t padded = 0; padded < heights.columns + 2 * halfX; ++padded)
        {
            const std::size_t column = MirroredIndex(padded, halfX, heights.columns);
            sum += columns.heights[column];
            cells += columns.cells[column];
            prefix.heights[padded] = sum;
            prefix.cells[padded] = cells;
        }
    }

    Zo::Object<void*> columnOwner;
    Zo::Object<void*> prefixOwner;
    Zo::Object<void*> nullOwner;
    Cells<const std::int16_t> heights;
    std::size_t halfX;
    std::size_t halfY;
    HeightSums columns; ///< of the box's rows, for each column of the map
    HeightSums prefix;  ///< of these, over the padded row
    std::int16_t* nulls = nullptr;
};

} // namespace

template <typename T>
Zo::Object<void*> SmoothFullArray2(const Zo::Object<void*>& array, int width, int height, void* alloc)
{
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(array);
    ZVL_REQUIRE(kFunction, heights.present && width >= 1 && height >= 1 &&
                               static_cast<std::size_t>(width) < heights.columns &&
                               static_cast<std::size_t>(height) < heights.rows);
    CheckPads(heights.rows, heights.columns, width / 2, height / 2);

    SlidingBox box(heights, static_cast<std::size_t>(width / 2), static_cast<std::size_t>(height / 2), alloc);
    Zo::Object<void*> mean;
    ZVL_CHECK(kFunction, qArray2_Construct(mean.Slot(), xxq16s_type, heights.rows, heights.columns, alloc));
    const Cells<std::int16_t> out = CellsOf<std::int16_t>(mean);
    for (std::size_t row = 0; row < out.rows; ++row)
    {
        box.Average(row, out.Row(row));
    }
    return mean;
}

template ZDK_VISION_EXPORT Zo::Object<void*> SmoothFullArray2<short>(const Zo::Object<void*>&, int, int, void*);

} // namespace Zvl
