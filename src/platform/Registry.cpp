#include "platform/Registry.h"

#include <array>
#include <mutex>
#include <type_traits>

namespace ZdkPlatform
{

namespace
{

// The chains run through the objects' own headers, so that registering allocates nothing and cannot fail.
constexpr unsigned kBucketBits = 14;
constexpr std::size_t kBucketCount = std::size_t{1} << kBucketBits;
constexpr std::size_t kShardCount = 64;

struct alignas(64) Shard
{
    std::mutex mutex;
};

// Constant-initialised and never destroyed: objects may come and go in the static initialisers and destructors
// of a host.
constinit std::array<ObjectHeader*, kBucketCount> buckets{};
constinit std::array<Shard, kShardCount> shards{};
static_assert(std::is_trivially_destructible_v<Shard>);

std::size_t BucketOf(const void* address) noexcept
{
    // Fibonacci hashing: objects start at multiples of 64, so the low bits say nothing.
    const std::uint64_t key = reinterpret_cast<std::uintptr_t>(address) / kCellAlignment;
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> (64U - kBucketBits));
}

std::mutex& MutexOf(std::size_t bucket) noexcept
{
    return shards[bucket % kShardCount].mutex;
}

} // namespace

void Register(ObjectHeader& header) noexcept
{
    const std::size_t bucket = BucketOf(&header);
    const std::lock_guard lock(MutexOf(bucket));
    ObjectHeader*& first = buckets[bucket];
    header.previous = nullptr;
    header.next = first;
    if (first != nullptr)
    {
        first->previous = &header;
    }
    first = &header;
}

void Unregister(ObjectHeader& header) noexcept
{
    const std::size_t bucket = BucketOf(&header);
    const std::lock_guard lock(MutexOf(bucket));
    (header.previous != nullptr ? header.previous->next : buckets[bucket]) = header.next;
    if (header.next != nullptr)
    {
        header.next->previous = header.previous;
    }
}

const TypeRecord* ClassOfLive(const void* address) noexcept
{
    const std::size_t bucket = BucketOf(address);
    const std::lock_guard lock(MutexOf(bucket));
    for (const ObjectHeader* header = buckets[bucket]; header != nullptr; header = header->next)
    {
        if (header == address)
        {
            return header->type;
        }
    }
    return nullptr;
}

} // namespace ZdkPlatform
