#pragma once

/** @file
 *  What all objects share: the header with the count, checked casts, and construction. */

#include "platform/Types.h"

#include <atomic>
#include <new>
#include <utility>

namespace ZdkPlatform
{

constexpr std::size_t kCellAlignment = 64;

struct Allocator;

/** The head of every object. It lives in the bytes of the object's first member, an xqObjectLayout. */
struct ObjectHeader
{
    std::atomic<std::int32_t> count{1};
    const TypeRecord* type = nullptr;
    const TypeRecord* itemType = nullptr; ///< of arrays and lists
    Allocator* allocator = nullptr;       ///< counted; null for the built-in heap
    ObjectHeader* next = nullptr;         ///< chain of the registry
    ObjectHeader* previous = nullptr;
};

static_assert(sizeof(ObjectHeader) <= sizeof(xqObjectLayout));
static_assert(alignof(ObjectHeader) <= alignof(xqObjectLayout));

/** The header of a live object or of one under construction. */
inline ObjectHeader& HeaderOf(void* object)
{
    return *std::launder(static_cast<ObjectHeader*>(object));
}

/** Class of the objects that a structure describes; specialised beside each structure. */
template <typename T>
inline constexpr TypeId kClassOf = TypeId::Object;

/** True when @p type is @p base or derives from it. */
bool IsDerived(const TypeRecord* type, const TypeRecord* base) noexcept;

/** Throws through the cast failure handler unless @p handle is a live object of class @p id. */
void CheckClass(qObject handle, TypeId id, const char* file, int line);

/** The structure behind a handle, whose class is checked first. */
template <typename T>
T& CastTo(qObject handle, const char* file, int line)
{
    CheckClass(handle, kClassOf<T>, file, line);
    return *static_cast<T*>(handle);
}

/** Gives up one count, and disposes of the object with the last one. */
void ReleaseCount(ObjectHeader& header) noexcept;

/** Gives up one count of what a slot holds: an object, null, or something that is no longer alive. */
void ReleaseHandle(qObject handle) noexcept;

/** Deep copy of a live object or of null. */
qStatus CloneObject(qObject* slot, qObject source, qAlloc allocator);

/** Gives up what an object owns, and its memory. It must not be registered. */
void DestroyUnregistered(ObjectHeader& header) noexcept;

/** Memory of @p size bytes that starts at a multiple of #kCellAlignment, or null. */
void* AllocateBytes(Allocator* allocator, std::size_t size) noexcept;

/** Gives memory of AllocateBytes() back; null does nothing. */
void FreeBytes(Allocator* allocator, void* memory) noexcept;

/** The allocator behind a handle with one more count of it; null stands for the built-in heap. */
Allocator* AcquireAllocator(qAlloc handle);

void ReleaseAllocator(Allocator* allocator) noexcept;

/** Keeps an object alive in a scope. */
class Keeper
{
public:
    explicit Keeper(void* object) : header(HeaderOf(object)) { header.count.fetch_add(1); }
    ~Keeper() { ReleaseCount(header); }
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;

private:
    ObjectHeader& header;
};

/** An object under construction: nobody sees it until it is published, and without that it is destroyed. */
template <typename T>
class Draft
{
public:
    /** @param owner the object's allocator, as of AcquireAllocator(); its count moves into the object */
    explicit Draft(Allocator* owner, const TypeRecord* itemType = nullptr)
    {
        void* memory = AllocateBytes(owner, sizeof(T));
        if (memory == nullptr)
        {
            ReleaseAllocator(owner);
            return;
        }
        object = new (memory) T{};
        ObjectHeader* header = new (memory) ObjectHeader{};
        header->type = RecordOf(kClassOf<T>);
        header->itemType = itemType;
        header->allocator = owner;
    }

    Draft(const Draft&) = delete;
    Draft& operator=(const Draft&) = delete;

    ~Draft()
    {
        if (object != nullptr)
        {
            DestroyUnregistered(HeaderOf(object));
        }
    }

    /** False when there was no memory. */
    explicit operator bool() const noexcept { return object != nullptr; }
    T* operator->() const noexcept { return object; }
    T& operator*() const noexcept { return *object; }
    Allocator* Owner() const { return HeaderOf(object).allocator; }

    /** Makes the object known, and gives its first count to the slot. */
    qStatus Publish(qObject* slot) noexcept;

private:
    T* object = nullptr;
};

/** Puts an object into the registry of live objects. */
void Register(ObjectHeader& header) noexcept;

template <typename T>
qStatus Draft<T>::Publish(qObject* slot) noexcept
{
    Register(HeaderOf(object));
    *slot = std::exchange(object, nullptr);
    return STATUS_OK;
}

} // namespace ZdkPlatform
