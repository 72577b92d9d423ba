#pragma once

/** @file
 *  The blocks of items that arrays and lists hold. Items of a class are handles that own one count each, or
 *  null; all other items are plain bytes. */

#include "platform/Object.h"

namespace ZdkPlatform
{

/** Size of @p count items in bytes; false when no memory can be that large. */
bool ItemBytes(const TypeRecord& type, std::size_t count, std::size_t& bytes) noexcept;

/** As above for a grid. Each length has to be possible by itself: two negative extents, taken as sizes, multiply to a
 *  small number, and an extent of 0 hides the other one. */
bool GridBytes(const TypeRecord& type, std::size_t rows, std::size_t columns, std::size_t& bytes) noexcept;

/** Makes a block of @p bytes; 0 bytes need none. Handles in it are null, other items undefined. */
qStatus AllocateItems(Allocator* allocator, const TypeRecord& type, std::size_t bytes, void** data) noexcept;

/** True when a block that holds items of type @p old can take items of type @p type without being replaced: both are plain
 *  and need equally many bytes. */
bool CanStay(const TypeRecord& old, std::size_t oldBytes, const TypeRecord& type, std::size_t bytes) noexcept;

/** Gives up the counts of @p count items and sets them to null; does nothing for plain items. */
void ReleaseItems(const TypeRecord& type, void* items, std::size_t count) noexcept;

/** Throws through the cast failure handler unless each item is plain, null, or a live object of the class. */
void CheckItems(const TypeRecord& type, const void* items, std::size_t count, const char* file, int line);

/** Copies items into new ones; those that are objects are cloned. On failure the copies made so far stay in
 *  @p copies. */
qStatus CloneItems(const TypeRecord& type, void* copies, const void* items, std::size_t count, qAlloc allocator);

/** Copies items into new ones; those that are objects are shared. */
void ShareItems(const TypeRecord& type, void* copies, const void* items, std::size_t count) noexcept;

} // namespace ZdkPlatform
