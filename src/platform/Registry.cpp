#include "platform/Registry.h"

#include <array>
#include <mutex>
#include <type_traits>

namespace ZdkPlatform
{

namespace
{

/** Where an object lives and what it is. A slot belongs to an object from when its type is set; from when its address
 *  is set, the object can be found. */
struct Slot
{
    std::atomic<const TypeRecord*> type{nullptr};
    std::atomic<const void*> address{nullptr};
};

/** The objects with one hash. Those for which there is no slot are chained through their own headers. Registering thus
 *  allocates nothing and cannot fail, and objects are looked up without a lock as long as there are few of them: threads
 *  that use the same objects do not wait for each other. */
struct alignas(64) Bucket
{
    std::array<Slot, 4> slots{};
};

constexpr unsigned kBucketBits = 14;
constexpr std::size_t kBucketCount = std::size_t{1} << kBucketBits;
constexpr std::size_t kShardCount = 64;

struct alignas(64) Shard
{
    std::mutex mutex;
};

// Constant-initialised and never destroyed: objects may come and go in the static initialisers and destructors
// of a host.
constinit std::array<Bucket, kBucketCount> buckets{};
constinit std::array<std::atomic<ObjectHeader*>, kBucketCount> chains{};
constinit std::array<Shard, kShardCount> shards{}; ///< a chain is changed and followed under the lock of its shard
static_assert(std::is_trivially_destructible_v<Shard>);

std::size_t HashOf(const void* address) noexcept
{
    // Fibonacci hashing: objects start at multiples of 64, so the low bits say nothing.
    const std::uint64_t key = reinterpret_cast<std::uintptr_t>(address) / kCellAlignment;
    return static_cast<std::size_t>((key * 0x9E3779B97F4A7C15U) >> (64U - kBucketBits));
}

std::mutex& MutexOf(std::size_t hash) noexcept
{
    return shards[hash % kShardCount].mutex;
}

/** Takes a free slot for the object, if there is one. */
bool TakeSlot(Bucket& bucket, const ObjectHeader& header) noexcept
{
    for (Slot& slot : bucket.slots)
    {
        const TypeRecord* none = nullptr;
        if (slot.type.load(std::memory_order_relaxed) == nullptr &&
            slot.type.compare_exchange_strong(none, header.type, std::memory_order_acquire, std::memory_order_relaxed))
        {
            slot.address.store(&header, std::memory_order_release);
            return true;
        }
    }
    return false;
}

/** The slot of the object at @p address, or null. Of a live object it stays the same; what other objects come and go
 *  meanwhile makes no difference. */
Slot* FindSlot(Bucket& bucket, const void* address) noexcept
{
    for (Slot& slot : bucket.slots)
    {
        if (slot.address.load(std::memory_order_acquire) == address)
        {
            return &slot;
        }
    }
    return nullptr;
}

void Chain(std::size_t hash, ObjectHeader& header) noexcept
{
    const std::lock_guard lock(MutexOf(hash));
    ObjectHeader* first = chains[hash].load(std::memory_order_relaxed);
    header.previous = nullptr;
    header.next = first;
    if (first != nullptr)
    {
        first->previous = &header;
    }
    chains[hash].store(&header, std::memory_order_release);
}

void Unchain(std::size_t hash, ObjectHeader& header) noexcept
{
    const std::lock_guard lock(MutexOf(hash));
    if (header.previous != nullptr)
    {
        header.previous->next = header.next;
    }
    else
    {
        chains[hash].store(header.next, std::memory_order_relaxed);
    }
    if (header.next != nullptr)
    {
        header.next->previous = header.previous;
    }
}

const TypeRecord* ClassOfChained(std::size_t hash, const void* address) noexcept
{
    if (chains[hash].load(std::memory_order_relaxed) == nullptr)
    {
        return nullptr;
    }
    const std::lock_guard lock(MutexOf(hash));
    for (const ObjectHeader* header = chains[hash].load(std::memory_order_relaxed); header != nullptr;
         header = header->next)
    {
        if (header == address)
        {
            return header->type;
        }
    }
    return nullptr;
}

} // namespace

void Register(ObjectHeader& header) noexcept
{
    const std::size_t hash = HashOf(&header);
    if (!TakeSlot(buckets[hash], header))
    {
        Chain(hash, header);
    }
}

void Unregister(ObjectHeader& header) noexcept
{
    const std::size_t hash = HashOf(&header);
    Slot* slot = FindSlot(buckets[hash], &header);
    if (slot == nullptr)
    {
        Unchain(hash, header);
        return;
    }
    slot->address.store(nullptr, std::memory_order_relaxed);
    slot->type.store(nullptr, std::memory_order_release);
}

const TypeRecord* ClassOfLive(const void* address) noexcept
{
    if (address == nullptr)
    {
        return nullptr;
    }
    const std::size_t hash = HashOf(address);
    const Slot* slot = FindSlot(buckets[hash], address);
    return slot != nullptr ? slot->type.load(std::memory_order_relaxed) : ClassOfChained(hash, address);
}

} // namespace ZdkPlatform
