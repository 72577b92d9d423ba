#pragma once

/** @file
 *  The structures of the memory stream and the serializer. */

#include "platform/Object.h"

namespace ZdkPlatform
{

/** Bytes that grow at their end, in the memory of the object that they belong to. */
struct ByteStore
{
    unsigned char* data;
    std::size_t size;
    std::size_t capacity;
};

/** Makes room for @p more bytes after the present ones; false when there is no memory. */
bool MakeRoom(Allocator* allocator, ByteStore& store, std::size_t more) noexcept;

/** Reads and writes its own store, or a buffer that the caller lent it. */
struct Memory
{
    xqObjectLayout object;
    ByteStore store; ///< the bytes; its memory is the stream's own unless `lent`
    std::size_t position;
    bool lent;
};

/** Writes at the position of the stream, which grows as far as it can. */
qStatus WriteBytes(Memory& stream, const void* bytes, std::size_t size) noexcept;

struct Serializer
{
    xqObjectLayout object;
    Memory* stream;        ///< counted
    bool swap;             ///< values are big-endian
    ByteStore pending;     ///< bytes written and not yet flushed
    ByteStore writeBlocks; ///< stack of OpenWrite
    ByteStore readBlocks;  ///< stack of the ends of open blocks, as positions in the stream
};

template <>
inline constexpr TypeId kClassOf<Memory> = TypeId::Memory;
template <>
inline constexpr TypeId kClassOf<Serializer> = TypeId::Serializer;

} // namespace ZdkPlatform
