#pragma once

/** @file
 *  Typed views of the platform's cell arrays: the class and the element type are looked at once, the cells are
 *  then read and written through row pointers. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstdint>
#include <type_traits>

namespace Zvl
{

/** The platform's type handle of a cell type. */
template <typename T>
inline qType CellType()
{
    using Cell = std::remove_const_t<T>;
    if constexpr (std::is_same_v<Cell, std::uint8_t>)
    {
        return xxq8u_type;
    }
    else if constexpr (std::is_same_v<Cell, std::int16_t>)
    {
        return xxq16s_type;
    }
    else
    {
        static_assert(std::is_same_v<Cell, double>);
        return xxq64f_type;
    }
}

/** The cells of a two-dimensional array; without data when there is no such array. It borrows the array. */
template <typename T>
struct Cells
{
    T* data = nullptr;
    std::size_t rows = 0;
    std::size_t columns = 0;
    bool present = false; ///< the array exists and holds cells of type `T`

    T* Row(std::size_t row) const noexcept { return data + row * columns; }

    /** True when @p rect has a positive size and lies inside the array. */
    bool Contains(const Rect2d<int>& rect) const noexcept
    {
        return present && rect.x >= 0 && rect.y >= 0 && rect.width > 0 && rect.height > 0 &&
               static_cast<std::size_t>(rect.x) + static_cast<std::size_t>(rect.width) <= columns &&
               static_cast<std::size_t>(rect.y) + static_cast<std::size_t>(rect.height) <= rows;
    }

    /** True when the array is as large as @p rect. */
    bool HasSizeOf(const Rect2d<int>& rect) const noexcept
    {
        return present && rect.width >= 0 && rect.height >= 0 && static_cast<std::size_t>(rect.width) == columns &&
               static_cast<std::size_t>(rect.height) == rows;
    }
};

/** The cells of @p array; not present when the handle is null, dead, of another class or of another element
 *  type. */
template <typename T>
Cells<T> CellsOf(void* array)
{
    Cells<T> cells;
    if (array == nullptr || !xqCastClass_ObjectIs(array, xxqArray2_type) || qArray2_Type(array) != CellType<T>())
    {
        return cells;
    }
    cells.present = true;
    cells.rows = qArray2_Length(array, 0);
    cells.columns = qArray2_Length(array, 1);
    if (cells.rows != 0 && cells.columns != 0)
    {
        cells.data = static_cast<T*>(qArray2_At(array, 0, 0));
    }
    return cells;
}

/** The raw handle of layer @p index of @p surface, or null when there is no such layer. */
inline void* LayerOf(const Surface& surface, std::size_t index)
{
    return index < surface.layers.size() ? surface.layers[index].Get() : nullptr;
}

} // namespace Zvl
