#include "platform/Streams.h"

#include <algorithm>
#include <bit>
#include <cstring>
#include <limits>

namespace ZdkPlatform
{

namespace
{

static_assert(std::endian::native == std::endian::little, "values are stored as they stand in memory");

// Bytes that gather before they go to the stream by themselves.
constexpr std::size_t kFlushThreshold = std::size_t{64} * 1024;

/** The length field of a block. */
struct LengthField
{
    std::size_t size = 0;      ///< bytes; 0 when the type is none for lengths
    std::uint64_t largest = 0; ///< largest length that it holds
};

LengthField LengthFieldOf(const TypeRecord* type)
{
    if (type == RecordOf(TypeId::Q8u))
    {
        return {1, std::numeric_limits<std::uint8_t>::max()};
    }
    if (type == RecordOf(TypeId::Q16u))
    {
        return {2, std::numeric_limits<std::uint16_t>::max()};
    }
    if (type == RecordOf(TypeId::Q32s))
    {
        return {4, std::numeric_limits<std::int32_t>::max()};
    }
    if (type == RecordOf(TypeId::Q64s))
    {
        return {8, std::numeric_limits<std::int64_t>::max()};
    }
    return {};
}

struct OpenWrite
{
    std::size_t start; ///< where the length field stands among the pending bytes
    LengthField field;
    bool includeSize;
};

template <typename T>
std::size_t Depth(const ByteStore& stack)
{
    return stack.size / sizeof(T);
}

/** Record @p index of a stack. The stack is raw memory, so records are copied in and out. */
template <typename T>
T RecordAt(const ByteStore& stack, std::size_t index)
{
    T record;
    std::memcpy(&record, stack.data + index * sizeof(T), sizeof(T));
    return record;
}

template <typename T>
T Top(const ByteStore& stack)
{
    return RecordAt<T>(stack, Depth<T>(stack) - 1);
}

template <typename T>
void Pop(ByteStore& stack)
{
    stack.size -= sizeof(T);
}

/** Pushes onto a stack that has room. */
template <typename T>
void Push(ByteStore& stack, const T& record)
{
    std::memcpy(stack.data + stack.size, &record, sizeof(T));
    stack.size += sizeof(T);
}

Allocator* AllocatorOf(Serializer& serializer)
{
    return HeaderOf(&serializer).allocator;
}

/** Copies values into or out of the byte order of the stream. */
void CopyValues(bool swap, unsigned char* destination, const unsigned char* source, std::size_t count,
                std::size_t valueSize)
{
    if (count == 0)
    {
        return;
    }
    if (!swap || valueSize == 1)
    {
        std::memmove(destination, source, count * valueSize);
        return;
    }
    for (std::size_t offset = 0; offset < count * valueSize; offset += valueSize)
    {
        qMemReverseCopy(destination + offset, source + offset, valueSize);
    }
}

/** Appends values to the pending bytes, which have room. */
void Append(Serializer& serializer, const void* items, std::size_t count, std::size_t valueSize)
{
    ByteStore& pending = serializer.pending;
    CopyValues(serializer.swap, pending.data + pending.size, static_cast<const unsigned char*>(items), count,
               valueSize);
    pending.size += count * valueSize;
}

/** Sends all pending bytes ahead of the outermost open block to the stream. */
qStatus Flush(Serializer& serializer)
{
    ByteStore& pending = serializer.pending;
    ByteStore& blocks = serializer.writeBlocks;
    const std::size_t ready = blocks.size == 0 ? pending.size : RecordAt<OpenWrite>(blocks, 0).start;
    const qStatus status = WriteBytes(*serializer.stream, pending.data, ready);
    if (status != STATUS_OK || ready == 0)
    {
        return status;
    }
    pending.size -= ready;
    std::memmove(pending.data, pending.data + ready, pending.size);
    for (std::size_t index = 0; index < Depth<OpenWrite>(blocks); ++index)
    {
        OpenWrite block = RecordAt<OpenWrite>(blocks, index);
        block.start -= ready;
        std::memcpy(blocks.data + index * sizeof(OpenWrite), &block, sizeof(OpenWrite));
    }
    return STATUS_OK;
}

/** Bytes from the stream's position to the end of the stream or of the innermost open block. */
std::size_t Remaining(const Serializer& serializer)
{
    const Memory& stream = *serializer.stream;
    std::size_t end = stream.store.size;
    if (serializer.readBlocks.size != 0)
    {
        end = std::min(end, Top<std::size_t>(serializer.readBlocks));
    }
    return end > stream.position ? end - stream.position : 0;
}

/** The unsigned value of a length field at the stream's position. */
std::uint64_t PeekLength(const Serializer& serializer, std::size_t size)
{
    const Memory& stream = *serializer.stream;
    unsigned char bytes[8] = {};
    CopyValues(serializer.swap, bytes, stream.store.data + stream.position, 1, size);
    std::uint64_t length = 0;
    std::memcpy(&length, bytes, sizeof(length));
    return length;
}

} // namespace

void DisposeSerializer(void* object) noexcept
{
    Serializer& serializer = *static_cast<Serializer*>(object);
    Allocator* allocator = AllocatorOf(serializer);
    FreeBytes(allocator, serializer.pending.data);
    FreeBytes(allocator, serializer.writeBlocks.data);
    FreeBytes(allocator, serializer.readBlocks.data);
    ReleaseHandle(serializer.stream);
}

} // namespace ZdkPlatform

using namespace ZdkPlatform;

qStatus qSerializer_Construct(qSerializer* slot, qMemory stream, void* /*format*/, qAlloc allocator)
{
    if (slot == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    Memory& memory = CastTo<Memory>(stream, __FILE__, __LINE__);
    Draft<Serializer> draft(AcquireAllocator(allocator));
    if (!draft)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    HeaderOf(&memory).count.fetch_add(1);
    draft->stream = &memory;
    return draft.Publish(slot);
}

qStatus qSerializer_SetByteSwap(qSerializer serializer, int swap)
{
    CastTo<Serializer>(serializer, __FILE__, __LINE__).swap = swap != 0;
    return STATUS_OK;
}

qStatus qSerializer_BeginWrite(qSerializer serializer, qType sizeType, int includeSize)
{
    Serializer& target = CastTo<Serializer>(serializer, __FILE__, __LINE__);
    const LengthField field = LengthFieldOf(&CheckedType(sizeType, __FILE__, __LINE__));
    if (field.size == 0)
    {
        return STATUS_BAD_PARAMETER;
    }
    Allocator* allocator = AllocatorOf(target);
    if (!MakeRoom(allocator, target.pending, field.size) || !MakeRoom(allocator, target.writeBlocks, sizeof(OpenWrite)))
    {
        return STATUS_OUT_OF_MEMORY;
    }
    Push(target.writeBlocks, OpenWrite{target.pending.size, field, includeSize != 0});
    std::memset(target.pending.data + target.pending.size, 0, field.size);
    target.pending.size += field.size;
    return STATUS_OK;
}

qStatus qSerializer_EndWrite(qSerializer serializer)
{
    Serializer& target = CastTo<Serializer>(serializer, __FILE__, __LINE__);
    if (target.writeBlocks.size == 0)
    {
        return STATUS_BAD_PARAMETER;
    }
    const auto block = Top<OpenWrite>(target.writeBlocks);
    const std::uint64_t length = target.pending.size - block.start - (block.includeSize ? 0 : block.field.size);
    if (length > block.field.largest)
    {
        return STATUS_BAD_DATA;
    }
    unsigned char bytes[sizeof(length)];
    std::memcpy(bytes, &length, sizeof(length));
    CopyValues(target.swap, target.pending.data + block.start, bytes, 1, block.field.size);
    Pop<OpenWrite>(target.writeBlocks);
    return STATUS_OK;
}

qStatus qSerializer_BeginRead(qSerializer serializer, qType sizeType, int includeSize)
{
    Serializer& target = CastTo<Serializer>(serializer, __FILE__, __LINE__);
    const LengthField field = LengthFieldOf(&CheckedType(sizeType, __FILE__, __LINE__));
    if (field.size == 0)
    {
        return STATUS_BAD_PARAMETER;
    }
    const std::size_t remaining = Remaining(target);
    if (remaining < field.size)
    {
        return STATUS_END_OF_STREAM;
    }
    const std::uint64_t length = PeekLength(target, field.size);
    const std::size_t counted = includeSize != 0 ? field.size : 0;
    if (length > field.largest || length < counted)
    {
        return STATUS_BAD_DATA;
    }
    if (!MakeRoom(AllocatorOf(target), target.readBlocks, sizeof(std::size_t)))
    {
        return STATUS_OUT_OF_MEMORY;
    }
    // Of a block that was cut short, what is there can be read: the first value that is not fails.
    const std::uint64_t present = std::min<std::uint64_t>(length - counted, remaining - field.size);
    target.stream->position += field.size;
    Push(target.readBlocks, target.stream->position + static_cast<std::size_t>(present));
    return STATUS_OK;
}

qStatus qSerializer_EndRead(qSerializer serializer)
{
    Serializer& target = CastTo<Serializer>(serializer, __FILE__, __LINE__);
    if (target.readBlocks.size == 0)
    {
        return STATUS_BAD_PARAMETER;
    }
    Memory& stream = *target.stream;
    stream.position = std::min(Top<std::size_t>(target.readBlocks), stream.store.size);
    Pop<std::size_t>(target.readBlocks);
    return STATUS_OK;
}

qStatus xqSerializer_WritePrimitives(qSerializer serializer, const void* items, std::size_t count, int log2Size)
{
    Serializer& target = CastTo<Serializer>(serializer, __FILE__, __LINE__);
    if (log2Size < 0 || log2Size > 3 || (items == nullptr && count != 0))
    {
        return STATUS_BAD_PARAMETER;
    }
    const std::size_t valueSize = std::size_t{1} << log2Size;
    if (count > static_cast<std::size_t>(PTRDIFF_MAX) / valueSize)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    if (count * valueSize > target.pending.capacity - target.pending.size)
    {
        if (target.writeBlocks.size == 0 && target.pending.size >= kFlushThreshold)
        {
            const qStatus status = Flush(target);
            if (status != STATUS_OK)
            {
                return status;
            }
        }
        if (!MakeRoom(AllocatorOf(target), target.pending, count * valueSize))
        {
            return STATUS_OUT_OF_MEMORY;
        }
    }
    Append(target, items, count, valueSize);
    return STATUS_OK;
}

qStatus xqSerializer_ReadPrimitives(qSerializer serializer, void* items, std::size_t count, int log2Size)
{
    Serializer& target = CastTo<Serializer>(serializer, __FILE__, __LINE__);
    if (log2Size < 0 || log2Size > 3 || (items == nullptr && count != 0))
    {
        return STATUS_BAD_PARAMETER;
    }
    const std::size_t valueSize = std::size_t{1} << log2Size;
    if (count > Remaining(target) / valueSize)
    {
        return STATUS_END_OF_STREAM;
    }
    Memory& stream = *target.stream;
    CopyValues(target.swap, static_cast<unsigned char*>(items), stream.store.data + stream.position, count, valueSize);
    stream.position += count * valueSize;
    return STATUS_OK;
}

qStatus xqSerializer_FlushEx(qSerializer serializer, int /*whole*/)
{
    return Flush(CastTo<Serializer>(serializer, __FILE__, __LINE__));
}
