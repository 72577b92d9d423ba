#include "Filter/PadArray2.h"

#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include "Common/Check.h"
#include "Common/ItemTypes.h"

#include <algorithm>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::PadArray2";

bool IsPad(int pad, std::size_t length)
{
    return pad >= 1 && static_cast<std::size_t>(pad) <= length;
}

/** Whether the cells of @p array are as wide as a `T` and may be copied as such. */
template <typename T>
bool HasCellsLike(qArray2 array)
{
    if (array == nullptr || !xqCastClass_ObjectIs(array, xxqArray2_type))
    {
        return false;
    }
    const qType type = qArray2_Type(array);
    return qType_Size(type) == sizeof(T) && !IsObjectType(type);
}

} // namespace

void CheckPads(std::size_t rows, std::size_t columns, int padX, int padY)
{
    ZVL_REQUIRE(kFunction, IsPad(padX, columns) && IsPad(padY, rows));
}

template <typename T>
Zo::Object<void*> PadArray2(const Zo::Object<void*>& array, int padX, int padY, void* alloc)
{
    ZVL_REQUIRE(kFunction, HasCellsLike<T>(array));
    const std::size_t rows = qArray2_Length(array, 0);
    const std::size_t columns = qArray2_Length(array, 1);
    CheckPads(rows, columns, padX, padY);
    const auto left = static_cast<std::size_t>(padX);
    const auto top = static_cast<std::size_t>(padY);
    const std::size_t paddedRows = rows + 2 * top;
    const std::size_t paddedColumns = columns + 2 * left;

    Zo::Object<void*> padded;
    ZVL_CHECK(kFunction, qArray2_Construct(padded.Slot(), qArray2_Type(array), paddedRows, paddedColumns, alloc));
    const T* cells = static_cast<const T*>(qArray2_At(array, 0, 0));
    T* paddedCells = static_cast<T*>(qArray2_At(padded, 0, 0));
    for (std::size_t row = 0; row < paddedRows; ++row)
    {
        const T* in = cells + MirroredIndex(row, top, rows) * columns;
        T* out = paddedCells + row * paddedColumns;
        std::reverse_copy(in, in + left, out);
        ZVL_CHECK(kFunction, qMemCopy(out + left, in, columns * sizeof(T)));
        std::reverse_copy(in + columns - left, in + columns, out + left + columns);
    }
    return padded;
}

template ZDK_VISION_EXPORT Zo::Object<void*> PadArray2<unsigned char>(const Zo::Object<void*>&, int, int, void*);
template ZDK_VISION_EXPORT Zo::Object<void*> PadArray2<short>(const Zo::Object<void*>&, int, int, void*);
template ZDK_VISION_EXPORT Zo::Object<void*> PadArray2<int>(const Zo::Object<void*>&, int, int, void*);

} // namespace Zvl
