#pragma once

/** @file
 *  Typed views of one-dimensional cell arrays, and of the items of a profile. They borrow the array. */

#include "Common/Cells.h"
#include "Common/ItemTypes.h"

#include <cstring>

namespace Zvl
{

/** The cells of a one-dimensional array. */
template <typename T>
struct LineCells
{
    T* data = nullptr;
    std::size_t count = 0;
};

inline bool IsLine(void* array)
{
    return array != nullptr && xqCastClass_ObjectIs(array, xxqArray1_type);
}

/** The cells of @p array; none when the handle is null, dead, of another class or of another element type. */
template <typename T>
LineCells<T> LineCellsOf(void* array)
{
    if (!IsLine(array) || qArray1_Type(array) != CellType<T>())
    {
        return {};
    }
    return {static_cast<T*>(qArray1_Data(array)), qArray1_Count(array)};
}

/** Counts of one item of a profile that is not uniform. */
struct CountPair
{
    std::int16_t x;
    std::int16_t z;
};

/** The pairs of counts that the bytes of an array make, four bytes each, whatever its items are. */
struct PairCells
{
    CountPair At(std::size_t index) const
    {
        CountPair pair;
        std::memcpy(&pair, data + index * sizeof(CountPair), sizeof(CountPair));
        return pair;
    }

    const unsigned char* data = nullptr;
    std::size_t count = 0; ///< whole pairs
};

/** The pairs in @p array; none when the handle is null, dead or of another class, or its items are handles. */
inline PairCells PairCellsOf(void* array)
{
    if (!IsLine(array) || IsObjectType(qArray1_Type(array)))
    {
        return {};
    }
    const std::size_t bytes = qArray1_Count(array) * qType_Size(qArray1_Type(array));
    return {static_cast<const unsigned char*>(qArray1_Data(array)), bytes / sizeof(CountPair)};
}

} // namespace Zvl
