#include "platform/Arrays.h"

#include <cstring>

namespace ZdkPlatform
{

namespace
{

std::size_t CellCount(const Array2& array)
{
    return array.length0 * array.length1;
}

void SetShape(Array2& array, const TypeRecord& type, std::size_t length0, std::size_t length1) noexcept
{
    HeaderOf(&array).itemType = &type;
    array.length0 = length0;
    array.length1 = length1;
    array.itemSize = type.size;
}

/** Puts a new block with its type and size in place of what the array holds. */
void Replace(Array2& array, const TypeRecord& type, std::size_t length0, std::size_t length1, void* data) noexcept
{
    const Keeper keeper(&array);
    DisposeArray2(&array);
    SetShape(array, type, length0, length1);
    array.data = data;
}

/** The cell, or null when the position is out of range. */
void* CellAt(const Array2& array, std::size_t row, std::size_t column)
{
    if (row >= array.length0 || column >= array.length1)
    {
        return nullptr;
    }
    return static_cast<unsigned char*>(array.data) + (row * array.length1 + column) * array.itemSize;
}

// Clearing this much takes longer than to wake the workers; they also find the cells in their own caches
// afterwards.
constexpr std::size_t kSharedZeroBytes = std::size_t{1024} * 1024;

/** Clears the worker's share of the bytes of an array. */
qStatus ZeroShare(void* context, void* /*sender*/, const qParallelArgs* args)
{
    const auto& array = *static_cast<const Array2*>(context);
    const std::size_t bytes = CellCount(array) * array.itemSize;
    const std::size_t begin = qParallelArgs_Begin(args, 0, bytes);
    std::memset(static_cast<unsigned char*>(array.data) + begin, 0, qParallelArgs_End(args, 0, bytes) - begin);
    return STATUS_OK;
}

} // namespace

void DisposeArray2(void* object) noexcept
{
    Array2& array = *static_cast<Array2*>(object);
    ReleaseItems(ItemType(&array), array.data, CellCount(array));
    FreeBytes(HeaderOf(&array).allocator, array.data);
}

qStatus CloneArray2(qObject* slot, void* source, qAlloc allocator)
{
    Array2& original = *static_cast<Array2*>(source);
    const TypeRecord& type = ItemType(&original);
    qArray2 copy = nullptr;
    qStatus status = qArray2_Construct(&copy, HandleOf(&type), original.length0, original.length1, allocator);
    if (status != STATUS_OK)
    {
        return status;
    }
    status = CloneItems(type, static_cast<Array2*>(copy)->data, original.data, CellCount(original), allocator);
    if (status != STATUS_OK)
    {
        ReleaseHandle(copy);
        return status;
    }
    *slot = copy;
    return STATUS_OK;
}

} // namespace ZdkPlatform

using namespace ZdkPlatform;

qStatus qArray2_Construct(qArray2* slot, qType type, std::size_t length0, std::size_t length1, qAlloc allocator)
{
    if (slot == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord& itemType = CheckedType(type, __FILE__, __LINE__);
    Allocator* owner = AcquireAllocator(allocator);
    std::size_t bytes = 0;
    if (!GridBytes(itemType, length0, length1, bytes))
    {
        ReleaseAllocator(owner);
        return STATUS_OUT_OF_MEMORY;
    }
    Draft<Array2> draft(owner, &itemType);
    if (!draft || AllocateItems(draft.Owner(), itemType, bytes, &draft->data) != STATUS_OK)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    draft->length0 = length0;
    draft->length1 = length1;
    draft->itemSize = itemType.size;
    return draft.Publish(slot);
}

qStatus qArray2_Allocate(qArray2 array, qType type, std::size_t length0, std::size_t length1)
{
    Array2& target = CastTo<Array2>(array, __FILE__, __LINE__);
    const TypeRecord& itemType = CheckedType(type, __FILE__, __LINE__);
    std::size_t bytes = 0;
    if (!GridBytes(itemType, length0, length1, bytes))
    {
        return STATUS_OUT_OF_MEMORY;
    }
    if (CanStay(ItemType(&target), CellCount(target) * target.itemSize, itemType, bytes))
    {
        SetShape(target, itemType, length0, length1);
        return STATUS_OK;
    }
    void* data = nullptr;
    if (AllocateItems(HeaderOf(&target).allocator, itemType, bytes, &data) != STATUS_OK)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    Replace(target, itemType, length0, length1, data);
    return STATUS_OK;
}

qStatus qArray2_Zero(qArray2 array)
{
    Array2& target = CastTo<Array2>(array, __FILE__, __LINE__);
    const Keeper keeper(&target);
    ReleaseItems(ItemType(&target), target.data, CellCount(target));
    const std::size_t bytes = CellCount(target) * target.itemSize;
    return bytes < kSharedZeroBytes ? qMemSet(target.data, 0, bytes) : qParallel_Execute(ZeroShare, &target, array);
}

qStatus qArray2_Item(qArray2 array, std::size_t row, std::size_t column, void* item)
{
    const Array2& source = CastTo<Array2>(array, __FILE__, __LINE__);
    const void* cell = CellAt(source, row, column);
    return cell == nullptr ? STATUS_BAD_PARAMETER : qMemCopy(item, cell, source.itemSize);
}

qStatus qArray2_SetItem(qArray2 array, std::size_t row, std::size_t column, const void* item)
{
    Array2& target = CastTo<Array2>(array, __FILE__, __LINE__);
    void* cell = CellAt(target, row, column);
    if (cell == nullptr || item == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord& type = ItemType(&target);
    if (!type.isClass)
    {
        return qMemCopy(cell, item, type.size);
    }
    CheckItems(type, item, 1, __FILE__, __LINE__);
    const Keeper keeper(&target);
    ReleaseHandle(std::exchange(*static_cast<qObject*>(cell), *static_cast<const qObject*>(item)));
    return STATUS_OK;
}

qStatus xqArray2_Assign(qArray2 destination, qArray2 source, int /*reserved*/)
{
    Array2& target = CastTo<Array2>(destination, __FILE__, __LINE__);
    Array2& original = CastTo<Array2>(source, __FILE__, __LINE__);
    const TypeRecord& type = ItemType(&original);
    const std::size_t bytes = CellCount(original) * type.size;
    const bool sameShape =
        &type == &ItemType(&target) && original.length0 == target.length0 && original.length1 == target.length1;
    if (&target == &original || (sameShape && !type.isClass))
    {
        return qMemCopy(target.data, original.data, bytes);
    }
    void* data = nullptr;
    if (AllocateItems(HeaderOf(&target).allocator, type, bytes, &data) != STATUS_OK)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    ShareItems(type, data, original.data, CellCount(original));
    Replace(target, type, original.length0, original.length1, data);
    return STATUS_OK;
}

std::size_t qArray2_Length(qArray2 array, std::size_t dimension)
{
    const Array2& source = CastTo<Array2>(array, __FILE__, __LINE__);
    if (dimension > 1)
    {
        xqApiLib_AssertHandler(__FILE__, __LINE__);
    }
    return dimension == 0 ? source.length0 : source.length1;
}

qType qArray2_Type(qArray2 array)
{
    return HandleOf(&ItemType(&CastTo<Array2>(array, __FILE__, __LINE__)));
}
