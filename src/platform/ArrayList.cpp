#include "platform/Arrays.h"

#include <algorithm>
#include <cstring>
#include <functional>

namespace ZdkPlatform
{

namespace
{

constexpr std::size_t kFirstCapacity = 8;

void* ItemAt(const ArrayList& list, const TypeRecord& type, std::size_t index)
{
    return static_cast<unsigned char*>(list.data) + index * type.size;
}

/** Makes a block for @p capacity items. */
qStatus MakeBlock(ArrayList& list, std::size_t capacity, void** data)
{
    std::size_t bytes = 0;
    const TypeRecord& type = ItemType(&list);
    return ItemBytes(type, capacity, bytes) ? AllocateItems(HeaderOf(&list).allocator, type, bytes, data)
                                            : STATUS_OUT_OF_MEMORY;
}

/** Puts a block in place of the list's own, whose memory is given back. */
void AdoptBlock(ArrayList& list, void* data, std::size_t capacity)
{
    FreeBytes(HeaderOf(&list).allocator, list.data);
    list.data = data;
    list.capacity = capacity;
}

/** Makes a block for @p capacity items that begins with those of the list. */
qStatus MakeLargerBlock(ArrayList& list, std::size_t capacity, void** data)
{
    const qStatus status = MakeBlock(list, capacity, data);
    if (status == STATUS_OK && list.count != 0)
    {
        std::memcpy(*data, list.data, list.count * ItemType(&list).size);
    }
    return status;
}

/** Room to ask for when @p needed items no longer fit: growth by halves, so that adding is amortised. */
std::size_t GrownCapacity(const ArrayList& list, std::size_t needed)
{
    return std::max({needed, list.capacity + list.capacity / 2, kFirstCapacity});
}

/** Gives up the counts of the items from @p first to the end of the list. */
void ReleaseTail(ArrayList& list, std::size_t first)
{
    const TypeRecord& type = ItemType(&list);
    if (type.isClass && first < list.count)
    {
        const Keeper keeper(&list);
        ReleaseItems(type, ItemAt(list, type, first), list.count - first);
    }
}

/** Replaces the items of a list of objects. The new items are laid down before the old ones are released,
 *  since they may be the same. */
qStatus ImportObjects(ArrayList& list, const void* items, std::size_t count)
{
    const TypeRecord& type = ItemType(&list);
    void* data = nullptr;
    const std::size_t capacity = std::max(count, list.capacity);
    const qStatus status = MakeBlock(list, capacity, &data);
    if (status != STATUS_OK)
    {
        return status;
    }
    if (count != 0)
    {
        std::memcpy(data, items, count * type.size);
    }
    const Keeper keeper(&list);
    ReleaseTail(list, 0);
    AdoptBlock(list, data, capacity);
    list.count = count;
    return STATUS_OK;
}

qStatus ImportPlain(ArrayList& list, const void* items, std::size_t count)
{
    const TypeRecord& type = ItemType(&list);
    if (count <= list.capacity)
    {
        if (count != 0)
        {
            std::memmove(list.data, items, count * type.size);
        }
    }
    else
    {
        void* data = nullptr;
        const qStatus status = MakeBlock(list, count, &data);
        if (status != STATUS_OK)
        {
            return status;
        }
        std::memcpy(data, items, count * type.size);
        AdoptBlock(list, data, count);
    }
    list.count = count;
    return STATUS_OK;
}

} // namespace

void DisposeArrayList(void* object) noexcept
{
    ArrayList& list = *static_cast<ArrayList*>(object);
    ReleaseItems(ItemType(&list), list.data, list.count);
    FreeBytes(HeaderOf(&list).allocator, list.data);
}

qStatus CloneArrayList(qObject* slot, void* source, qAlloc allocator)
{
    ArrayList& original = *static_cast<ArrayList*>(source);
    const TypeRecord& type = ItemType(&original);
    qArrayList copy = nullptr;
    qStatus status = qArrayList_Construct(&copy, HandleOf(&type), original.count, allocator);
    if (status != STATUS_OK)
    {
        return status;
    }
    ArrayList& list = *static_cast<ArrayList*>(copy);
    list.count = original.count;
    status = CloneItems(type, list.data, original.data, original.count, allocator);
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

qStatus qArrayList_Construct(qArrayList* slot, qType type, std::size_t capacity, qAlloc allocator)
{
    if (slot == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord& itemType = CheckedType(type, __FILE__, __LINE__);
    Allocator* owner = AcquireAllocator(allocator);
    std::size_t bytes = 0;
    if (!ItemBytes(itemType, capacity, bytes))
    {
        ReleaseAllocator(owner);
        return STATUS_OUT_OF_MEMORY;
    }
    Draft<ArrayList> draft(owner, &itemType);
    if (!draft || AllocateItems(draft.Owner(), itemType, bytes, &draft->data) != STATUS_OK)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    draft->capacity = capacity;
    return draft.Publish(slot);
}

qStatus qArrayList_Add(qArrayList list, const void* item)
{
    ArrayList& target = CastTo<ArrayList>(list, __FILE__, __LINE__);
    if (item == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord& type = ItemType(&target);
    CheckItems(type, item, 1, __FILE__, __LINE__);
    if (target.count < target.capacity)
    {
        std::memmove(ItemAt(target, type, target.count), item, type.size);
    }
    else
    {
        const std::size_t capacity = GrownCapacity(target, target.count + 1);
        void* data = nullptr;
        const qStatus status = MakeLargerBlock(target, capacity, &data);
        if (status != STATUS_OK)
        {
            return status;
        }
        // The item may lie in the old block, which therefore goes last.
        std::memcpy(static_cast<unsigned char*>(data) + target.count * type.size, item, type.size);
        AdoptBlock(target, data, capacity);
    }
    ++target.count;
    return STATUS_OK;
}

qStatus qArrayList_Remove(qArrayList list, std::size_t index, void* item)
{
    ArrayList& target = CastTo<ArrayList>(list, __FILE__, __LINE__);
    if (index >= target.count)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord& type = ItemType(&target);
    void* removed = ItemAt(target, type, index);
    const Keeper keeper(&target);
    if (item != nullptr)
    {
        std::memmove(item, removed, type.size);
    }
    else
    {
        ReleaseItems(type, removed, 1);
    }
    std::memmove(removed, ItemAt(target, type, index + 1), (target.count - index - 1) * type.size);
    --target.count;
    return STATUS_OK;
}

qStatus qArrayList_Purge(qArrayList list)
{
    return qArrayList_Resize(list, 0);
}

qStatus qArrayList_Reserve(qArrayList list, std::size_t capacity)
{
    ArrayList& target = CastTo<ArrayList>(list, __FILE__, __LINE__);
    if (capacity <= target.capacity)
    {
        return STATUS_OK;
    }
    void* data = nullptr;
    const qStatus status = MakeLargerBlock(target, capacity, &data);
    if (status == STATUS_OK)
    {
        AdoptBlock(target, data, capacity);
    }
    return status;
}

qStatus qArrayList_Resize(qArrayList list, std::size_t count)
{
    ArrayList& target = CastTo<ArrayList>(list, __FILE__, __LINE__);
    if (count > target.capacity)
    {
        const qStatus status = qArrayList_Reserve(list, GrownCapacity(target, count));
        if (status != STATUS_OK)
        {
            return status;
        }
    }
    const TypeRecord& type = ItemType(&target);
    if (type.isClass && count > target.count)
    {
        // Room that Remove() vacated may still hold stale handles.
        std::memset(ItemAt(target, type, target.count), 0, (count - target.count) * type.size);
    }
    const Keeper keeper(&target);
    ReleaseTail(target, count);
    target.count = count;
    return STATUS_OK;
}

qStatus qArrayList_Zero(qArrayList list)
{
    ArrayList& target = CastTo<ArrayList>(list, __FILE__, __LINE__);
    const Keeper keeper(&target);
    ReleaseTail(target, 0);
    return qMemSet(target.data, 0, target.count * ItemType(&target).size);
}

qStatus qArrayList_Import(qArrayList list, const void* items, std::size_t count)
{
    ArrayList& target = CastTo<ArrayList>(list, __FILE__, __LINE__);
    if (items == nullptr && count != 0)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord& type = ItemType(&target);
    std::size_t bytes = 0;
    if (!ItemBytes(type, count, bytes))
    {
        return STATUS_OUT_OF_MEMORY;
    }
    CheckItems(type, items, count, __FILE__, __LINE__);
    return type.isClass ? ImportObjects(target, items, count) : ImportPlain(target, items, count);
}

std::size_t qArrayList_Count(qArrayList list)
{
    return CastTo<ArrayList>(list, __FILE__, __LINE__).count;
}

void* qArrayList_Data(qArrayList list)
{
    return CastTo<ArrayList>(list, __FILE__, __LINE__).data;
}

qType qArrayList_Type(qArrayList list)
{
    return HandleOf(&ItemType(&CastTo<ArrayList>(list, __FILE__, __LINE__)));
}

void* qArrayList_At(qArrayList list, std::size_t index)
{
    const ArrayList& target = CastTo<ArrayList>(list, __FILE__, __LINE__);
    if (index >= target.count)
    {
        xqApiLib_AssertHandler(__FILE__, __LINE__);
    }
    return ItemAt(target, *HeaderOf(list).itemType, index);
}
