#pragma once

/** @file
 *  Records of element types and object classes: what a type handle points to. */

#include <ZdkVisionLib/platform/qApi.h>

namespace ZdkPlatform
{

/** An element type or an object class. An item of a class is a handle that owns one count, or null. */
struct TypeRecord
{
    const char* name;
    std::size_t size; ///< bytes of one item
    bool isClass = false;
    const TypeRecord* parent = nullptr; ///< class that this one derives from

    /** Gives up what the object owns, but not its own memory; null when it owns nothing. The object may be
     *  built in part. */
    void (*dispose)(void* object) noexcept = nullptr;

    /** Makes a deep copy; null when the class has none. */
    qStatus (*clone)(qObject* slot, void* source, qAlloc allocator) = nullptr;
};

enum class TypeId : std::size_t
{
    Q8u,
    Q16u,
    Q16s,
    Q32s,
    Q64s,
    Q64f,
    Bool,
    Point32s,
    Point64f,
    Point3d32s,
    Point3d64f,
    Object,
    Alloc,
    Array1,
    Array2,
    ArrayList,
    Memory,
    Serializer,
    SurfaceMessage,
    Count
};

extern const TypeRecord kTypeRecords[static_cast<std::size_t>(TypeId::Count)];

inline const TypeRecord* RecordOf(TypeId id)
{
    return &kTypeRecords[static_cast<std::size_t>(id)];
}

/** The record behind a type handle, or null when the handle is none of the platform's. A foreign handle is
 *  never read. */
const TypeRecord* FindType(qType type) noexcept;

/** The record behind a type handle; a null or foreign one goes to the cast failure handler. */
const TypeRecord& CheckedType(qType type, const char* file, int line);

inline qType HandleOf(const TypeRecord* record)
{
    return const_cast<TypeRecord*>(record);
}

// What the object classes add; each stands beside its class.
void DisposeArray1(void* object) noexcept;
void DisposeArray2(void* object) noexcept;
void DisposeArrayList(void* object) noexcept;
void DisposeMemory(void* object) noexcept;
void DisposeSerializer(void* object) noexcept;
void DisposeSurfaceMessage(void* object) noexcept;
qStatus CloneArray1(qObject* slot, void* source, qAlloc allocator);
qStatus CloneArray2(qObject* slot, void* source, qAlloc allocator);
qStatus CloneArrayList(qObject* slot, void* source, qAlloc allocator);
qStatus CloneSurfaceMessage(qObject* slot, void* source, qAlloc allocator);

} // namespace ZdkPlatform
