#include "platform/Arrays.h"

#include <cstring>

namespace ZdkPlatform
{

void DisposeArray1(void* object) noexcept
{
    Array1& array = *static_cast<Array1*>(object);
    ReleaseItems(ItemType(&array), array.data, array.count);
    FreeBytes(HeaderOf(&array).allocator, array.data);
}

qStatus CloneArray1(qObject* slot, void* source, qAlloc allocator)
{
    Array1& original = *static_cast<Array1*>(source);
    const TypeRecord& type = ItemType(&original);
    qArray1 copy = nullptr;
    qStatus status = qArray1_Construct(&copy, HandleOf(&type), original.count, allocator);
    if (status != STATUS_OK)
    {
        return status;
    }
    status = CloneItems(type, static_cast<Array1*>(copy)->data, original.data, original.count, allocator);
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

qStatus qArray1_Construct(qArray1* slot, qType type, std::size_t count, qAlloc allocator)
{
    if (slot == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord& itemType = CheckedType(type, __FILE__, __LINE__);
    Allocator* owner = AcquireAllocator(allocator);
    std::size_t bytes = 0;
    if (!ItemBytes(itemType, count, bytes))
    {
        ReleaseAllocator(owner);
        return STATUS_OUT_OF_MEMORY;
    }
    Draft<Array1> draft(owner, &itemType);
    if (!draft || AllocateItems(draft.Owner(), itemType, bytes, &draft->data) != STATUS_OK)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    draft->count = count;
    return draft.Publish(slot);
}

qStatus qArray1_Allocate(qArray1 array, qType type, std::size_t count)
{
    Array1& target = CastTo<Array1>(array, __FILE__, __LINE__);
    const TypeRecord& itemType = CheckedType(type, __FILE__, __LINE__);
    std::size_t bytes = 0;
    if (!ItemBytes(itemType, count, bytes))
    {
        return STATUS_OUT_OF_MEMORY;
    }
    if (CanStay(ItemType(&target), target.count * ItemType(&target).size, itemType, bytes))
    {
        HeaderOf(&target).itemType = &itemType;
        target.count = count;
        return STATUS_OK;
    }
    void* data = nullptr;
    if (AllocateItems(HeaderOf(&target).allocator, itemType, bytes, &data) != STATUS_OK)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    const Keeper keeper(&target);
    DisposeArray1(&target);
    HeaderOf(&target).itemType = &itemType;
    target.data = data;
    target.count = count;
    return STATUS_OK;
}

qStatus qArray1_Zero(qArray1 array)
{
    Array1& target = CastTo<Array1>(array, __FILE__, __LINE__);
    const Keeper keeper(&target);
    ReleaseItems(ItemType(&target), target.data, target.count);
    return qMemSet(target.data, 0, target.count * ItemType(&target).size);
}

std::size_t qArray1_Count(qArray1 array)
{
    return CastTo<Array1>(array, __FILE__, __LINE__).count;
}

void* qArray1_Data(qArray1 array)
{
    return CastTo<Array1>(array, __FILE__, __LINE__).data;
}

qType qArray1_Type(qArray1 array)
{
    return HandleOf(&ItemType(&CastTo<Array1>(array, __FILE__, __LINE__)));
}
