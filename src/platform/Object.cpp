#include "platform/Object.h"

#include "platform/Registry.h"

#include <ZdkVisionLib/platform/ZoApi.h>

namespace ZdkPlatform
{

namespace
{

// A list may hold lists. Deeper nests than this one are a cycle or a mistake; copying them would exhaust the
// stack.
constexpr int kMostNestedClones = 256;

thread_local int cloneDepth = 0;

// Objects whose count fell to zero while another one is being destroyed wait here, linked by `next`, so that
// a long chain of nested lists does not exhaust the stack.
thread_local ObjectHeader* waiting = nullptr;
thread_local bool destroying = false;

} // namespace

bool IsDerived(const TypeRecord* type, const TypeRecord* base) noexcept
{
    while (type != nullptr && type != base)
    {
        type = type->parent;
    }
    return type != nullptr;
}

void CheckClass(qObject handle, TypeId id, const char* file, int line)
{
    if (!IsDerived(ClassOfLive(handle), RecordOf(id)))
    {
        xqApiLib_CastFailHandler(file, line);
    }
}

void DestroyUnregistered(ObjectHeader& header) noexcept
{
    if (header.type->dispose != nullptr)
    {
        header.type->dispose(&header);
    }
    Allocator* owner = header.allocator;
    FreeBytes(owner, &header);
    ReleaseAllocator(owner);
}

void ReleaseCount(ObjectHeader& header) noexcept
{
    if (header.count.fetch_sub(1) != 1)
    {
        return;
    }
    Unregister(header);
    header.next = waiting;
    waiting = &header;
    if (destroying)
    {
        return;
    }
    destroying = true;
    while (waiting != nullptr)
    {
        ObjectHeader& next = *waiting;
        waiting = next.next;
        DestroyUnregistered(next);
    }
    destroying = false;
}

void ReleaseHandle(qObject handle) noexcept
{
    if (handle != nullptr && ClassOfLive(handle) != nullptr)
    {
        ReleaseCount(HeaderOf(handle));
    }
}

qStatus CloneObject(qObject* slot, qObject source, qAlloc allocator)
{
    if (source == nullptr)
    {
        *slot = nullptr;
        return STATUS_OK;
    }
    CheckClass(source, TypeId::Object, __FILE__, __LINE__);
    const auto clone = HeaderOf(source).type->clone;
    if (clone == nullptr)
    {
        return STATUS_NOT_SUPPORTED;
    }
    if (cloneDepth == kMostNestedClones)
    {
        return STATUS_BAD_DATA;
    }
    struct Level
    {
        Level() { ++cloneDepth; }
        ~Level() { --cloneDepth; }
    } level;
    return clone(slot, source, allocator);
}

} // namespace ZdkPlatform

using namespace ZdkPlatform;

qStatus xqObject_DestroyImpl(qObject object, int /*form*/)
{
    if (object != nullptr)
    {
        CheckClass(object, TypeId::Object, __FILE__, __LINE__);
        ReleaseCount(HeaderOf(object));
    }
    return STATUS_OK;
}

qStatus xqObject_CloneImpl(qObject* slot, qObject source, qAlloc allocator, qAlloc /*allocator2*/, int /*reserved*/)
{
    return slot == nullptr ? STATUS_BAD_PARAMETER : CloneObject(slot, source, allocator);
}

qStatus qObject_Share(qObject object)
{
    CheckClass(object, TypeId::Object, __FILE__, __LINE__);
    HeaderOf(object).count.fetch_add(1);
    return STATUS_OK;
}

std::int32_t qObject_ShareCount(qObject object)
{
    return ClassOfLive(object) == nullptr ? 0 : HeaderOf(object).count.load();
}

bool xqCastClass_ObjectIs(qObject object, qType type)
{
    const TypeRecord& base = CheckedType(type, __FILE__, __LINE__);
    return IsDerived(ClassOfLive(object), &base);
}

bool xqCastClass_ObjectIsValid(qObject object)
{
    return ClassOfLive(object) != nullptr;
}

qType xqApiLib_CastFailHandler(const char* file, int line)
{
    throw Zo::Exception(line, file, STATUS_BAD_PARAMETER, nullptr,
                        "the handle is null, no longer alive, or not of the class that is needed");
}

void xqApiLib_AssertHandler(const char* file, int line)
{
    throw Zo::Exception(line, file, STATUS_BAD_PARAMETER, nullptr, "an index is out of range");
}
