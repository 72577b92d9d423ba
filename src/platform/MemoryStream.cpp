#include "platform/Streams.h"

#include <algorithm>
#include <cstring>

namespace ZdkPlatform
{

namespace
{

constexpr std::size_t kFirstCapacity = 256;

/** True when @p data lies in the memory that the stream itself owns. */
bool IsOwnMemory(const Memory& stream, const void* data)
{
    const std::uintptr_t offset =
        reinterpret_cast<std::uintptr_t>(data) - reinterpret_cast<std::uintptr_t>(stream.store.data);
    return !stream.lent && data != nullptr && offset < stream.store.capacity;
}

} // namespace

bool MakeRoom(Allocator* allocator, ByteStore& store, std::size_t more) noexcept
{
    if (more <= store.capacity - store.size)
    {
        return true;
    }
    std::size_t needed = 0;
    if (__builtin_add_overflow(store.size, more, &needed) || needed > static_cast<std::size_t>(PTRDIFF_MAX))
    {
        return false;
    }
    const std::size_t capacity = std::max({needed, store.capacity + store.capacity / 2, kFirstCapacity});
    auto* data = static_cast<unsigned char*>(AllocateBytes(allocator, capacity));
    if (data == nullptr)
    {
        return false;
    }
    if (store.size != 0)
    {
        std::memcpy(data, store.data, store.size);
    }
    FreeBytes(allocator, store.data);
    store.data = data;
    store.capacity = capacity;
    return true;
}

qStatus WriteBytes(Memory& stream, const void* bytes, std::size_t size) noexcept
{
    ByteStore& store = stream.store;
    const std::size_t overwritten = std::min(size, store.size - stream.position);
    const std::size_t appended = size - overwritten;
    if (stream.lent && appended > store.capacity - store.size)
    {
        return STATUS_END_OF_STREAM;
    }
    if (!stream.lent && !MakeRoom(HeaderOf(&stream).allocator, store, appended))
    {
        return STATUS_OUT_OF_MEMORY;
    }
    if (size != 0)
    {
        std::memmove(store.data + stream.position, bytes, size);
        stream.position += size;
        store.size += appended;
    }
    return STATUS_OK;
}

void DisposeMemory(void* object) noexcept
{
    Memory& stream = *static_cast<Memory*>(object);
    if (!stream.lent)
    {
        FreeBytes(HeaderOf(&stream).allocator, stream.store.data);
    }
}

} // namespace ZdkPlatform

using namespace ZdkPlatform;

qStatus qMemory_Construct(qMemory* slot, qAlloc allocator, int /*reserved*/)
{
    if (slot == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    Draft<Memory> draft(AcquireAllocator(allocator));
    return draft ? draft.Publish(slot) : STATUS_OUT_OF_MEMORY;
}

qStatus qMemory_Attach(qMemory memory, void* data, std::size_t position, std::size_t length, std::size_t capacity)
{
    Memory& stream = CastTo<Memory>(memory, __FILE__, __LINE__);
    const bool isRange = capacity == 0 || (data != nullptr && capacity <= static_cast<std::size_t>(PTRDIFF_MAX));
    if (!isRange || position > length || length > capacity || IsOwnMemory(stream, data))
    {
        return STATUS_BAD_PARAMETER;
    }
    DisposeMemory(&stream);
    stream.store = {static_cast<unsigned char*>(data), length, capacity};
    stream.position = position;
    stream.lent = true;
    return STATUS_OK;
}

std::size_t qMemory_Length(qMemory memory)
{
    return CastTo<Memory>(memory, __FILE__, __LINE__).store.size;
}

void* qMemory_At(qMemory memory, std::size_t offset)
{
    const Memory& stream = CastTo<Memory>(memory, __FILE__, __LINE__);
    if (offset >= stream.store.size)
    {
        xqApiLib_AssertHandler(__FILE__, __LINE__);
    }
    return stream.store.data + offset;
}
