#pragma once

/** @file
 *  The platform's operations: counted objects, element types, arrays, lists, memory, the serializer and
 *  parallel jobs.
 *
 *  Handles are raw `void*`. A *slot* is the address of a handle that a call fills. Unless a comment says
 *  otherwise, every call
 *  - returns a status, of which only #STATUS_OK is success;
 *  - answers a null slot, null item pointer or null data pointer (with a size above 0) with
 *    #STATUS_BAD_PARAMETER;
 *  - throws a `Zo::Exception` through xqApiLib_CastFailHandler() when a handle is null, no longer alive, or
 *    of another class than the call works on;
 *  - leaves its slot and its object as they were when it fails;
 *  - may be made on any thread, as long as no other thread modifies the same object meanwhile.
 *
 *  Another platform may stand behind these declarations: the algorithm library knows nothing else of it. */

#include <ZdkVisionLib/platform/Export.h>

#include <cstddef>
#include <cstdint>

// ---------------------------------------------------------------------------------------------------------
// Handles and status codes

using qObject = void*;     ///< any platform object
using qType = void*;       ///< an element type or an object class
using qAlloc = void*;      ///< an allocator; null stands for the default one
using qArray1 = void*;     ///< one-dimensional array
using qArray2 = void*;     ///< two-dimensional array, row after row
using qArrayList = void*;  ///< growing array
using qMemory = void*;     ///< in-memory stream
using qSerializer = void*; ///< typed writer and reader over a stream
using qThreadPool = void*; ///< worker pool

using qStatus = std::int32_t; ///< the outcome of a call

constexpr qStatus STATUS_OK = 1;               ///< success; every other value is a failure, zero included
constexpr qStatus STATUS_BAD_PARAMETER = -997; ///< null output, null or wrongly typed array, bad index
constexpr qStatus STATUS_NOT_SUPPORTED = -996; ///< operator or type with no implementation
constexpr qStatus STATUS_OUT_OF_MEMORY = -992; ///< memory is exhausted, or the size cannot exist
constexpr qStatus STATUS_ABORTED = -988;       ///< the operation gave up
constexpr qStatus STATUS_BAD_DATA = -984;      ///< the data do not suffice for a result
constexpr qStatus STATUS_MISMATCH = -980;      ///< element type other than the one needed
constexpr qStatus STATUS_END_OF_STREAM = -976; ///< a read runs past the end of its stream or block

// ---------------------------------------------------------------------------------------------------------
// Plain records

/** A point in the plane, single precision. */
struct qPoint32f
{
    float x; ///< along a row
    float y; ///< along a column
};

/** A point in the plane. */
struct qPoint64f
{
    double x; ///< along a row
    double y; ///< along a column
};

/** A position in a grid. */
struct qPoint32s
{
    std::int32_t x; ///< along a row
    std::int32_t y; ///< along a column
};

/** A cell and its height count, or a run of cells (RLEToMask()). */
struct qPoint3d32s
{
    std::int32_t x; ///< along a row
    std::int32_t y; ///< along a column
    std::int32_t z; ///< the height
};

/** A point in space. */
struct qPoint3d64f
{
    double x; ///< along a row
    double y; ///< along a column
    double z; ///< the height
};

/** A plane as a point on it and its normal. */
struct qPlane3d64f
{
    qPoint3d64f point;  ///< any point of it
    qPoint3d64f normal; ///< of length 1 where the library returns it
};

// ---------------------------------------------------------------------------------------------------------
// Element types and object classes

extern ZDK_PLATFORM_EXPORT const qType xxq8u_type;         ///< `std::uint8_t`
extern ZDK_PLATFORM_EXPORT const qType xxq16u_type;        ///< `std::uint16_t`
extern ZDK_PLATFORM_EXPORT const qType xxq16s_type;        ///< `std::int16_t`
extern ZDK_PLATFORM_EXPORT const qType xxq32s_type;        ///< `std::int32_t`
extern ZDK_PLATFORM_EXPORT const qType xxq64s_type;        ///< `std::int64_t`
extern ZDK_PLATFORM_EXPORT const qType xxq64f_type;        ///< `double`
extern ZDK_PLATFORM_EXPORT const qType xxqBool_type;       ///< truth value in a `std::int32_t`
extern ZDK_PLATFORM_EXPORT const qType xxqPoint32s_type;   ///< #qPoint32s
extern ZDK_PLATFORM_EXPORT const qType xxqPoint64f_type;   ///< #qPoint64f
extern ZDK_PLATFORM_EXPORT const qType xxqPoint3d32s_type; ///< #qPoint3d32s
extern ZDK_PLATFORM_EXPORT const qType xxqPoint3d64f_type; ///< #qPoint3d64f

/** Class of every object. As an element type: a handle that owns one count of what it holds, or null. */
extern ZDK_PLATFORM_EXPORT const qType xxqObject_type;
extern ZDK_PLATFORM_EXPORT const qType xxqAlloc_type;      ///< class of allocators
extern ZDK_PLATFORM_EXPORT const qType xxqArray1_type;     ///< class of one-dimensional arrays
extern ZDK_PLATFORM_EXPORT const qType xxqArray2_type;     ///< class of two-dimensional arrays
extern ZDK_PLATFORM_EXPORT const qType xxqArrayList_type;  ///< class of lists
extern ZDK_PLATFORM_EXPORT const qType xxqMemory_type;     ///< class of memory streams
extern ZDK_PLATFORM_EXPORT const qType xxqSerializer_type; ///< class of serializers

/** Bytes of one element of @p type; a null or foreign handle goes to the cast failure handler. */
ZDK_PLATFORM_EXPORT std::size_t qType_Size(qType type);

// ---------------------------------------------------------------------------------------------------------
// Objects

/** Gives up one count of @p object, and disposes of it with the last one. Null is fine and does nothing.
 *  @param form 1 from the destructor and copy assignment of a handle, 0 from a reset; both mean the same
 *         here. */
ZDK_PLATFORM_EXPORT qStatus xqObject_DestroyImpl(qObject object, int form);

/** Fills @p slot with an independent deep copy of @p source, made with @p allocator. Items that are objects
 *  are cloned as well. A null @p source sets the slot to null and succeeds.
 *  @param allocator2 the allocator once more; ignored
 *  @param reserved 0
 *  @return #STATUS_NOT_SUPPORTED for classes without a copy (allocators, streams, serializers);
 *          #STATUS_BAD_DATA when an item is no longer alive, or objects nest deeper than 256 levels (an object
 *          that holds itself would never end) */
ZDK_PLATFORM_EXPORT qStatus xqObject_CloneImpl(qObject* slot, qObject source, qAlloc allocator, qAlloc allocator2,
                                               int reserved);

/** Adds one count, atomically. */
ZDK_PLATFORM_EXPORT qStatus qObject_Share(qObject object);

/** Counts that are held of @p object at this moment; 0 when it is not alive. */
ZDK_PLATFORM_EXPORT std::int32_t qObject_ShareCount(qObject object);

/** True when @p object is alive and of class @p type or derived from it. Any pointer value may be asked
 *  about: memory of a dead or foreign object is never read. */
ZDK_PLATFORM_EXPORT bool xqCastClass_ObjectIs(qObject object, qType type);

/** True when @p object is a live object of the platform. Any pointer value may be asked about. */
ZDK_PLATFORM_EXPORT bool xqCastClass_ObjectIsValid(qObject object);

/** Reports a failed cast: throws a `Zo::Exception` with #STATUS_BAD_PARAMETER, @p file and @p line. The
 *  declared result stands in for the type in platforms whose handler returns. */
ZDK_PLATFORM_EXPORT qType xqApiLib_CastFailHandler(const char* file, int line);

/** Reports a cell access out of range: throws a `Zo::Exception` with #STATUS_BAD_PARAMETER. */
[[noreturn]] ZDK_PLATFORM_EXPORT void xqApiLib_AssertHandler(const char* file, int line);

// ---------------------------------------------------------------------------------------------------------
// Allocators

/** Returns memory of at least @p size bytes, aligned as by `malloc`, or null when there is none. It must not
 *  throw and may be called from any thread. The platform aligns the cells itself, and asks for somewhat more
 *  than their size to have room for that. */
using qAllocAllocateFx = void* (*)(void* context, std::size_t size);

/** Takes back what the allocate callback returned. It must not throw and may be called from any thread. */
using qAllocFreeFx = void (*)(void* context, void* memory);

/** Makes an allocator of a host's own callbacks. Objects made with it hold a count of it, so that it lives as
 *  long as the last of them; @p context must live that long, too. The allocator itself lies in the default
 *  heap. */
ZDK_PLATFORM_EXPORT qStatus qAlloc_Construct(qAlloc* slot, qAllocAllocateFx allocate, qAllocFreeFx release,
                                             void* context);

/** Makes @p allocator the one that null stands for; null brings the built-in one back. Objects that exist keep
 *  the allocator that they were made with. */
ZDK_PLATFORM_EXPORT qStatus qAlloc_SetDefault(qAlloc allocator);

// ---------------------------------------------------------------------------------------------------------
// One-dimensional arrays. Cells start at a multiple of 64 bytes. An array may be empty. Cells of a class are null
// at first, and the array owns one count of each object in them.

/** Makes an array of @p count elements of @p type, contents undefined. A size that cannot exist comes back as
 *  #STATUS_OUT_OF_MEMORY at once. */
ZDK_PLATFORM_EXPORT qStatus qArray1_Construct(qArray1* slot, qType type, std::size_t count, qAlloc allocator);

/** Gives @p array another type and count, contents undefined. The block stays when plain items fill it exactly. */
ZDK_PLATFORM_EXPORT qStatus qArray1_Allocate(qArray1 array, qType type, std::size_t count);

/** Sets all bytes of the cells to 0. */
ZDK_PLATFORM_EXPORT qStatus qArray1_Zero(qArray1 array);

ZDK_PLATFORM_EXPORT std::size_t qArray1_Count(qArray1 array); ///< elements
ZDK_PLATFORM_EXPORT void* qArray1_Data(qArray1 array);        ///< first element; null when there is none
ZDK_PLATFORM_EXPORT qType qArray1_Type(qArray1 array);        ///< element type

// ---------------------------------------------------------------------------------------------------------
// Two-dimensional arrays. Rows follow each other without gaps; the first cell starts at a multiple of 64
// bytes. An array may be empty, with a length that is not 0 in the other direction. Cells of a class are null at
// first, and the array owns one count of each object in them.

/** Makes an array of @p length0 rows and @p length1 columns, contents undefined. A size that cannot exist
 *  comes back as #STATUS_OUT_OF_MEMORY at once. */
ZDK_PLATFORM_EXPORT qStatus qArray2_Construct(qArray2* slot, qType type, std::size_t length0, std::size_t length1,
                                              qAlloc allocator);

/** Gives @p array another type and size, contents undefined. The block stays when plain items fill it exactly. */
ZDK_PLATFORM_EXPORT qStatus qArray2_Allocate(qArray2 array, qType type, std::size_t length0, std::size_t length1);

/** Sets all bytes of the cells to 0. */
ZDK_PLATFORM_EXPORT qStatus qArray2_Zero(qArray2 array);

/** Copies the cell into @p item; a position out of range is #STATUS_BAD_PARAMETER. The count of an object stays
 *  with the array. */
ZDK_PLATFORM_EXPORT qStatus qArray2_Item(qArray2 array, std::size_t row, std::size_t column, void* item);

/** Copies the cell from @p item; a position out of range is #STATUS_BAD_PARAMETER. The array takes over the
 *  count of an item that is an object, and gives up that of the one before. */
ZDK_PLATFORM_EXPORT qStatus qArray2_SetItem(qArray2 array, std::size_t row, std::size_t column, const void* item);

/** Makes @p destination a copy of @p source in type, size and cells. Both may be the same array. Objects in
 *  the cells are shared.
 *  @param reserved 0 */
ZDK_PLATFORM_EXPORT qStatus xqArray2_Assign(qArray2 destination, qArray2 source, int reserved);

/** Rows for @p dimension 0, columns for 1; any other dimension throws through xqApiLib_AssertHandler(). */
ZDK_PLATFORM_EXPORT std::size_t qArray2_Length(qArray2 array, std::size_t dimension);

ZDK_PLATFORM_EXPORT qType qArray2_Type(qArray2 array); ///< element type

/** The head of every object; what it holds is the platform's own. */
struct xqObjectLayout
{
    alignas(std::uint64_t) unsigned char reserved[64]; ///< not for hosts
};

/** How a two-dimensional array lies in memory: the one layout that is open, so that qArray2_At() needs no
 *  call. */
struct xqArray2Layout
{
    xqObjectLayout object; ///< the head
    void* data;            ///< first cell
    std::size_t length0;   ///< rows
    std::size_t length1;   ///< columns
    std::size_t itemSize;  ///< bytes of a cell
};

/** Address of a cell, without a call into the platform. @p array must be a live two-dimensional array, which
 *  is not tested here; a position out of range throws through xqApiLib_AssertHandler(). */
inline void* qArray2_At(qArray2 array, std::size_t row, std::size_t column)
{
    const auto* layout = static_cast<const xqArray2Layout*>(array);
    if (row >= layout->length0 || column >= layout->length1)
    {
        xqApiLib_AssertHandler(__FILE__, __LINE__);
    }
    return static_cast<unsigned char*>(layout->data) + (row * layout->length1 + column) * layout->itemSize;
}

// ---------------------------------------------------------------------------------------------------------
// Lists. Item data start at a multiple of 64 bytes; any call that may grow a list moves its items.

/** Makes a list of @p type with room for @p capacity items and count 0. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Construct(qArrayList* slot, qType type, std::size_t capacity, qAlloc allocator);

/** Appends a copy of @p item, which may lie in the list itself. The list takes over the count of an item that
 *  is an object. Amortised constant time. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Add(qArrayList list, const void* item);

/** Takes the item at @p index out into @p item, with its count if it is an object, and closes the gap. With a
 *  null @p item the item is disposed of. An index out of range is #STATUS_BAD_PARAMETER. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Remove(qArrayList list, std::size_t index, void* item);

/** Removes all items and disposes of those that are objects; the room stays. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Purge(qArrayList list);

/** Makes room for @p capacity items in all; the count is unchanged. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Reserve(qArrayList list, std::size_t capacity);

/** Sets the count. New items are undefined (null if they are objects); objects that fall away are disposed
 *  of. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Resize(qArrayList list, std::size_t count);

/** Clears the bytes of all items, disposing of those that are objects; the count is unchanged. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Zero(qArrayList list);

/** Replaces the contents by a copy of @p count items, which may lie in the list itself. The list takes over the
 *  counts of items that are objects. */
ZDK_PLATFORM_EXPORT qStatus qArrayList_Import(qArrayList list, const void* items, std::size_t count);

ZDK_PLATFORM_EXPORT std::size_t qArrayList_Count(qArrayList list); ///< items
ZDK_PLATFORM_EXPORT void* qArrayList_Data(qArrayList list);        ///< first item; null without room
ZDK_PLATFORM_EXPORT qType qArrayList_Type(qArrayList list);        ///< item type

/** Address of an item; an index at or above the count throws through xqApiLib_AssertHandler(). */
ZDK_PLATFORM_EXPORT void* qArrayList_At(qArrayList list, std::size_t index);

// ---------------------------------------------------------------------------------------------------------
// Memory

/** Copies @p size bytes; overlapping ranges are copied as if through a buffer. */
ZDK_PLATFORM_EXPORT qStatus qMemCopy(void* destination, const void* source, std::size_t size);

/** Sets @p size bytes to @p byte. */
ZDK_PLATFORM_EXPORT qStatus qMemSet(void* destination, std::uint8_t byte, std::size_t size);

/** Reverses the order of @p size bytes in place. */
ZDK_PLATFORM_EXPORT qStatus qMemReverse(void* data, std::size_t size);

/** Copies @p size bytes in reverse order; the ranges must not overlap. */
ZDK_PLATFORM_EXPORT qStatus qMemReverseCopy(void* destination, const void* source, std::size_t size);

/** A random unsigned machine word, uniformly distributed. Each thread has a generator of its own, seeded from
 *  the system. */
ZDK_PLATFORM_EXPORT std::size_t qRandomSize();

/** Makes an empty in-memory stream, which grows as it is written. Reading and writing go on at one common
 *  position.
 *  @param reserved 0 */
ZDK_PLATFORM_EXPORT qStatus qMemory_Construct(qMemory* slot, qAlloc allocator, int reserved);

/** Makes the stream read and write the caller's buffer from @p position on, without a copy. The buffer must
 *  outlive the stream's use of it, and the stream cannot outgrow it: a write that would is
 *  #STATUS_END_OF_STREAM.
 *  @return #STATUS_BAD_PARAMETER unless `position <= length <= capacity`, and when @p data is memory that the
 *          stream itself owns */
ZDK_PLATFORM_EXPORT qStatus qMemory_Attach(qMemory memory, void* data, std::size_t position, std::size_t length,
                                           std::size_t capacity);

ZDK_PLATFORM_EXPORT std::size_t qMemory_Length(qMemory memory); ///< bytes that the stream holds

/** Address of a byte; an offset at or above the length throws through xqApiLib_AssertHandler(). */
ZDK_PLATFORM_EXPORT void* qMemory_At(qMemory memory, std::size_t offset);

// ---------------------------------------------------------------------------------------------------------
// Serializer. Values are little-endian unless the byte-swap flag is set. A block is framed by its length: an
// integer of the size type ahead of the block's bytes, which counts those bytes and, with includeSize, itself.
// Blocks nest. Written bytes are buffered until they are flushed; what was not flushed when the serializer is
// disposed of is lost.

/** Wraps the stream @p stream, of which the serializer holds a count. @param format null */
ZDK_PLATFORM_EXPORT qStatus qSerializer_Construct(qSerializer* slot, qMemory stream, void* format, qAlloc allocator);

/** Makes values big-endian (@p swap not 0) or little-endian (0) from now on, in both directions. */
ZDK_PLATFORM_EXPORT qStatus qSerializer_SetByteSwap(qSerializer serializer, int swap);

/** Opens a block whose length is written as @p sizeType: q8u, q16u, q32s or q64s. */
ZDK_PLATFORM_EXPORT qStatus qSerializer_BeginWrite(qSerializer serializer, qType sizeType, int includeSize);

/** Closes the innermost block and writes its length; #STATUS_BAD_DATA when the length does not fit its type (the
 *  block then stays open), #STATUS_BAD_PARAMETER when no block is open for writing. */
ZDK_PLATFORM_EXPORT qStatus qSerializer_EndWrite(qSerializer serializer);

/** Opens a block for reading; #STATUS_END_OF_STREAM when its length is not there, #STATUS_BAD_DATA when the length is
 *  impossible. A length that points past the end of the stream, or of the enclosing block, is no failure: the block
 *  ends there, and the first value that runs past the end fails. */
ZDK_PLATFORM_EXPORT qStatus qSerializer_BeginRead(qSerializer serializer, qType sizeType, int includeSize);

/** Closes the innermost block and skips what was not read of it; #STATUS_BAD_PARAMETER when no block is open
 *  for reading. */
ZDK_PLATFORM_EXPORT qStatus qSerializer_EndRead(qSerializer serializer);

/** Writes @p count values of 2 to the power @p log2Size bytes each (0 to 3). */
ZDK_PLATFORM_EXPORT qStatus xqSerializer_WritePrimitives(qSerializer serializer, const void* items, std::size_t count,
                                                         int log2Size);

/** Reads @p count values of 2 to the power @p log2Size bytes each (0 to 3); #STATUS_END_OF_STREAM when the
 *  stream or the open block holds fewer, with @p items untouched. */
ZDK_PLATFORM_EXPORT qStatus xqSerializer_ReadPrimitives(qSerializer serializer, void* items, std::size_t count,
                                                        int log2Size);

/** Pushes buffered bytes to the stream. Bytes of an open block stay until the block is closed.
 *  @param whole 1 */
ZDK_PLATFORM_EXPORT qStatus xqSerializer_FlushEx(qSerializer serializer, int whole);

/** Writes a 32-bit integer. */
inline qStatus qSerializer_Write32s(qSerializer serializer, std::int32_t value)
{
    return xqSerializer_WritePrimitives(serializer, &value, 1, 2);
}

/** Writes a 64-bit float. */
inline qStatus qSerializer_Write64f(qSerializer serializer, double value)
{
    return xqSerializer_WritePrimitives(serializer, &value, 1, 3);
}

/** Reads a 32-bit integer. */
inline qStatus qSerializer_Read32s(qSerializer serializer, std::int32_t* value)
{
    return xqSerializer_ReadPrimitives(serializer, value, 1, 2);
}

/** Reads a 64-bit float. */
inline qStatus qSerializer_Read64f(qSerializer serializer, double* value)
{
    return xqSerializer_ReadPrimitives(serializer, value, 1, 3);
}

// ---------------------------------------------------------------------------------------------------------
// Parallel jobs

/** What a callback learns of its worker. */
struct qParallelArgs
{
    qObject target;             ///< the job's target, as given to qParallel_Execute()
    std::size_t worker;         ///< index of the running worker
    std::size_t workerCount;    ///< workers of the job
    std::size_t shareCount = 0; ///< how many of them, from the first on, have a share; 0 says all
};

/** A job's work for one worker. @p sender is null. */
using qParallelFx = qStatus (*)(void* context, void* sender, const qParallelArgs* args);

/** Runs @p callback once for each worker index from 0 below the count of the default pool, on as many threads
 *  as the machine offers, and returns when all have ended. It may be called from many threads at once and from
 *  inside a callback. A job whose target is an array of less than 64 KiB runs on the calling thread alone, and the first
 *  worker has all of it: waking workers, or beginning anew for each, would cost more than it gains. The others run, too,
 *  with an empty share. Workers may run one after the other, so that none may wait for another.
 *  @param target a platform object, as a rule the output array of the job; it may be null
 *  @return #STATUS_OK, or the failing status of the lowest worker index that has one; #STATUS_OUT_OF_MEMORY when
 *          the pool has no memory for its tasks, of which some have then not run
 *  @throws what a callback threw, after all have ended; of several failures, that of the lowest worker index
 *          leaves the call */
ZDK_PLATFORM_EXPORT qStatus qParallel_Execute(qParallelFx callback, void* context, qObject target);

/** First index of the worker's share of [@p from, @p total). The shares of all workers are disjoint, contiguous and in
 *  worker order, and cover the range. Those that have a share differ in size by at most one: a fixed function of the
 *  range and the number of shares. */
ZDK_PLATFORM_EXPORT std::size_t qParallelArgs_Begin(const qParallelArgs* args, std::size_t from, std::size_t total);

/** End (exclusive) of the worker's share of [@p from, @p total). */
ZDK_PLATFORM_EXPORT std::size_t qParallelArgs_End(const qParallelArgs* args, std::size_t from, std::size_t total);

/** The pool that qParallel_Execute() uses. The handle is not counted. */
ZDK_PLATFORM_EXPORT qThreadPool qThreadPool_Default();

/** Workers of @p pool; at first as many as the machine has hardware threads. */
ZDK_PLATFORM_EXPORT std::size_t qThreadPool_Count(qThreadPool pool);

/** Sets the workers of @p pool, 1 to 1024; anything else is #STATUS_BAD_PARAMETER. Jobs that run keep the count
 *  that they started with; a caller that sizes an array by the count must not race with a change of it. */
ZDK_PLATFORM_EXPORT qStatus qThreadPool_SetCount(qThreadPool pool, std::size_t count);
