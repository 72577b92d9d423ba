#include "platform/Items.h"

#include "platform/Registry.h"

#include <cstring>

namespace ZdkPlatform
{

bool ItemBytes(const TypeRecord& type, std::size_t count, std::size_t& bytes) noexcept
{
    return !__builtin_mul_overflow(count, type.size, &bytes) && bytes <= static_cast<std::size_t>(PTRDIFF_MAX);
}

bool GridBytes(const TypeRecord& type, std::size_t rows, std::size_t columns, std::size_t& bytes) noexcept
{
    constexpr std::size_t kLongest = PTRDIFF_MAX;
    std::size_t count = 0;
    return rows <= kLongest && columns <= kLongest && !__builtin_mul_overflow(rows, columns, &count) &&
           ItemBytes(type, count, bytes);
}

qStatus AllocateItems(Allocator* allocator, const TypeRecord& type, std::size_t bytes, void** data) noexcept
{
    *data = nullptr;
    if (bytes == 0)
    {
        return STATUS_OK;
    }
    *data = AllocateBytes(allocator, bytes);
    if (*data == nullptr)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    if (type.isClass)
    {
        std::memset(*data, 0, bytes);
    }
    return STATUS_OK;
}

bool CanStay(const TypeRecord& old, std::size_t oldBytes, const TypeRecord& type, std::size_t bytes) noexcept
{
    return !old.isClass && !type.isClass && oldBytes == bytes;
}

void ReleaseItems(const TypeRecord& type, void* items, std::size_t count) noexcept
{
    if (type.isClass)
    {
        auto* handles = static_cast<qObject*>(items);
        for (std::size_t index = 0; index < count; ++index)
        {
            ReleaseHandle(std::exchange(handles[index], nullptr));
        }
    }
}

void CheckItems(const TypeRecord& type, const void* items, std::size_t count, const char* file, int line)
{
    if (type.isClass)
    {
        const auto* handles = static_cast<const qObject*>(items);
        for (std::size_t index = 0; index < count; ++index)
        {
            if (handles[index] != nullptr && !IsDerived(ClassOfLive(handles[index]), &type))
            {
                xqApiLib_CastFailHandler(file, line);
            }
        }
    }
}

qStatus CloneItems(const TypeRecord& type, void* copies, const void* items, std::size_t count, qAlloc allocator)
{
    if (count == 0)
    {
        return STATUS_OK;
    }
    if (!type.isClass)
    {
        std::memcpy(copies, items, count * type.size);
        return STATUS_OK;
    }
    for (std::size_t index = 0; index < count; ++index)
    {
        qObject item = static_cast<const qObject*>(items)[index];
        if (item != nullptr && ClassOfLive(item) == nullptr)
        {
            return STATUS_BAD_DATA;
        }
        const qStatus status = CloneObject(static_cast<qObject*>(copies) + index, item, allocator);
        if (status != STATUS_OK)
        {
            return status;
        }
    }
    return STATUS_OK;
}

void ShareItems(const TypeRecord& type, void* copies, const void* items, std::size_t count) noexcept
{
    if (count == 0)
    {
        return;
    }
    std::memcpy(copies, items, count * type.size);
    if (type.isClass)
    {
        auto* handles = static_cast<qObject*>(copies);
        for (std::size_t index = 0; index < count; ++index)
        {
            if (ClassOfLive(handles[index]) == nullptr)
            {
                handles[index] = nullptr;
            }
            else
            {
                HeaderOf(handles[index]).count.fetch_add(1);
            }
        }
    }
}

} // namespace ZdkPlatform
