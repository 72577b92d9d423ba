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
template <typename Integer>
HeightSums<Integer> NewSums(Zo::Object<void*>& owner, std::size_t count, void* alloc)
{
    const qType type = sizeof(Integer) == sizeof(std::int32_t) ? xxq32s_type : xxq64s_type;
    ZVL_CHECK(kFunction, qArray2_Construct(owner.Slot(), type, 2, count, alloc));
    return {static_cast<Integer*>(qArray2_At(owner, 0, 0)), static_cast<Integer*>(qArray2_At(owner, 1, 0))};
}

/** Slides the box down the map. The sums of its columns go along; their prefix sums over a padded row give any box of
 *  that row by a difference. Neither needs the padded map or a table of its size. */
template <typename Integer>
class SlidingBox
{
public:
    SlidingBox(const Cells<const std::int16_t>& map, std::size_t halfWidth, std::size_t halfHeight, void* alloc)
        : heights(map),
          halfX(halfWidth),
          halfY(halfHeight),
          columns(NewSums<Integer>(columnOwner, map.columns, alloc)),
          prefix(NewSums<Integer>(prefixOwner, map.columns + 2 * halfX, alloc))
    {
        ZVL_CHECK(kFunction, qArray2_Zero(columnOwner));
        ZVL_CHECK(kFunction, qArray1_Construct(nullOwner.Slot(), xxq16s_type, map.columns, alloc));
        nulls = static_cast<std::int16_t*>(qArray1_Data(nullOwner));
        std::fill_n(nulls, map.columns, GetNull<short>());
        for (std::size_t padded = 1; padded < 2 * halfY; ++padded)
        {
            Move(PaddedRow(padded), nulls);
        }
    }

    /** Moves the box on to the row after the first ones or the last call, and writes the means of that row. */
    void Average(std::size_t row, std::int16_t* out)
    {
        // Of the padded rows the box has those after `row` up to `row + 2 * halfY`.
        Move(PaddedRow(row + 2 * halfY), row == 0 ? nulls : PaddedRow(row));
        ExtendBeyondTheMap(columns.heights, prefix.heights);
        ExtendBeyondTheMap(columns.cells, prefix.cells);
        DivideRow(prefix, 2 * halfX, heights.Row(row), out, heights.columns);
    }

private:
    const std::int16_t* PaddedRow(std::size_t position) const
    {
        return heights.Row(MirroredIndex(position, halfY, heights.rows));
    }

    void Move(const std::int16_t* entering, const std::int16_t* leaving)
    {
        MoveColumnSums(entering, leaving, heights.columns, columns, {prefix.heights + halfX, prefix.cells + halfX});
    }

    /** From the sums up to each column of the map to those of the padded row: on either side the columns follow mirrored. */
    void ExtendBeyondTheMap(const Integer* ofColumns, Integer* upTo) const
    {
        Integer* first = upTo + halfX;
        Integer* last = first + heights.columns - 1;
        first[-1] = 0;
        for (std::size_t column = 0; column + 1 < halfX; ++column)
        {
            upTo[halfX - 2 - column] = Difference(upTo[halfX - 1 - column], ofColumns[column]);
        }
        for (std::size_t column = 0; column < halfX; ++column)
        {
            last[column + 1] = Sum(last[column], ofColumns[heights.columns - 1 - column]);
        }
    }

    Zo::Object<void*> columnOwner;
    Zo::Object<void*> prefixOwner;
    Zo::Object<void*> nullOwner;
    Cells<const std::int16_t> heights;
    std::size_t halfX;
    std::size_t halfY;
    HeightSums<Integer> columns; ///< of the box's rows, for each column of the map
    HeightSums<Integer> prefix;  ///< of these, over the padded row
    std::int16_t* nulls = nullptr;
};

template <typename Integer>
void SmoothRows(const Cells<const std::int16_t>& heights, std::size_t halfX, std::size_t halfY, void* alloc,
                const Cells<std::int16_t>& out)
{
    SlidingBox<Integer> box(heights, halfX, halfY, alloc);
    for (std::size_t row = 0; row < out.rows; ++row)
    {
        box.Average(row, out.Row(row));
    }
}

} // namespace

template <typename T>
Zo::Object<void*> SmoothFullArray2(const Zo::Object<void*>& array, int width, int height, void* alloc)
{
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(array);
    ZVL_REQUIRE(kFunction, heights.present && width >= 1 && height >= 1 &&
                               static_cast<std::size_t>(width) < heights.columns &&
                               static_cast<std::size_t>(height) < heights.rows);
    CheckPads(heights.rows, heights.columns, width / 2, height / 2);

    const auto halfX = static_cast<std::size_t>(width / 2);
    const auto halfY = static_cast<std::size_t>(height / 2);
    Zo::Object<void*> mean;
    ZVL_CHECK(kFunction, qArray2_Construct(mean.Slot(), xxq16s_type, heights.rows, heights.columns, alloc));
    const bool isSmallBox = 2 * halfX * 2 * halfY <= kMostCellsOf32Bits;
    const auto smoothRows = isSmallBox ? SmoothRows<std::int32_t> : SmoothRows<std::int64_t>;
    smoothRows(heights, halfX, halfY, alloc, CellsOf<std::int16_t>(mean));
    return mean;
}

template ZDK_VISION_EXPORT Zo::Object<void*> SmoothFullArray2<short>(const Zo::Object<void*>&, int, int, void*);

} // namespace Zvl
