#include <ZdkVisionLib/platform/qApi.h>

#include <algorithm>
#include <chrono>
#include <cstring>
#include <exception>
#include <random>

namespace
{

/** True when @p pointer may stand for @p size bytes. */
bool IsRange(const void* pointer, std::size_t size)
{
    return size == 0 || (pointer != nullptr && size <= static_cast<std::size_t>(PTRDIFF_MAX));
}

std::mt19937_64 SeededGenerator()
{
    try
    {
        std::random_device device;
        std::seed_seq seed{device(), device(), device(), device()};
        return std::mt19937_64(seed);
    }
    catch (const std::exception&) // the system has no source of randomness
    {
        const auto now = std::chrono::steady_clock::now().time_since_epoch().count();
        return std::mt19937_64(static_cast<std::uint64_t>(now));
    }
}

} // namespace

qStatus qMemCopy(void* destination, const void* source, std::size_t size)
{
    if (!IsRange(destination, size) || !IsRange(source, size))
    {
        return STATUS_BAD_PARAMETER;
    }
    if (size != 0)
    {
        std::memmove(destination, source, size);
    }
    return STATUS_OK;
}

qStatus qMemSet(void* destination, std::uint8_t byte, std::size_t size)
{
    if (!IsRange(destination, size))
    {
        return STATUS_BAD_PARAMETER;
    }
    if (size != 0)
    {
        std::memset(destination, byte, size);
    }
    return STATUS_OK;
}

qStatus qMemReverse(void* data, std::size_t size)
{
    if (!IsRange(data, size))
    {
        return STATUS_BAD_PARAMETER;
    }
    auto* bytes = static_cast<unsigned char*>(data);
    std::reverse(bytes, bytes + size);
    return STATUS_OK;
}

qStatus qMemReverseCopy(void* destination, const void* source, std::size_t size)
{
    if (!IsRange(destination, size) || !IsRange(source, size))
    {
        return STATUS_BAD_PARAMETER;
    }
    const auto* bytes = static_cast<const unsigned char*>(source);
    std::reverse_copy(bytes, bytes + size, static_cast<unsigned char*>(destination));
    return STATUS_OK;
}

std::size_t qRandomSize()
{
    thread_local std::mt19937_64 generator = SeededGenerator();
    return static_cast<std::size_t>(generator());
}
