#pragma once

/** @file What a selected cell becomes, for each item type: `kLayer` and `Cell` tell where the cell lies,
 *  StartRow() takes a row of the window and At() makes the item of one of its columns. */

#include <ZdkVisionLib/Common/Common.h>

#include <vector>

namespace Zvl
{

/** The cell itself. */
template <typename CellType, std::size_t layer>
class PlainCellItems
{
public:
    using Cell = CellType;
    static constexpr std::size_t kLayer = layer;

    PlainCellItems(const Surface& /*surface*/, const Rect2d<int>& /*rect*/) {}

    void StartRow(std::size_t /*row*/) {}
    CellType At(std::size_t /*column*/, CellType cell) const { return cell; }
};

template <typename T>
class CellItems;

template <>
class CellItems<std::uint8_t> : public PlainCellItems<std::uint8_t, 1>
{
public:
    using PlainCellItems::PlainCellItems;
};

template <>
class CellItems<std::int16_t> : public PlainCellItems<std::int16_t, 0>
{
public:
    using PlainCellItems::PlainCellItems;
};

/** The height in world units. */
template <>
class CellItems<double>
{
public:
    using Cell = std::int16_t;
    static constexpr std::size_t kLayer = 0;

    CellItems(const Surface& surface, const Rect2d<int>& /*rect*/) : scale(surface.scale.z), offset(surface.offset.z) {}

    void StartRow(std::size_t /*row*/) {}
    double At(std::size_t /*column*/, std::int16_t cell) const { return cell * scale + offset; }

private:
    double scale;
    double offset;
};

/** Column and row in the surface, and the height count. */
template <>
class CellItems<qPoint3d32s>
{
public:
    using Cell = std::int16_t;
    static constexpr std::size_t kLayer = 0;

    CellItems(const Surface& /*surface*/, const Rect2d<int>& rect) : rect(rect) {}

    void StartRow(std::size_t row) { y = rect.y + static_cast<std::int32_t>(row); }
    qPoint3d32s At(std::size_t column, std::int16_t cell) const
    {
        return {rect.x + static_cast<std::int32_t>(column), y, cell};
    }

private:
    Rect2d<int> rect;
    std::int32_t y = 0;
};

/** The cell's point in world units. */
template <>
class CellItems<qPoint3d64f>
{
public:
    using Cell = std::int16_t;
    static constexpr std::size_t kLayer = 0;

    CellItems(const Surface& surface, const Rect2d<int>& rect)
        : scale(surface.scale), offset(surface.offset), firstRow(rect.y)
    {
        columns.reserve(static_cast<std::size_t>(rect.width));
        for (int column = 0; column < rect.width; ++column)
        {
            columns.push_back((rect.x + column) * scale.x + offset.x);
        }
    }

    void StartRow(std::size_t row) { y = (firstRow + static_cast<double>(row)) * scale.y + offset.y; }
    qPoint3d64f At(std::size_t column, std::int16_t cell) const
    {
        return {columns[column], y, cell * scale.z + offset.z};
    }

private:
    qPoint3d64f scale;
    qPoint3d64f offset;
    double firstRow;
    std::vector<double> columns; ///< world x of each column of the window
    double y = 0.0;
};

} // namespace Zvl
