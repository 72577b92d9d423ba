//! [program]
#include "Scan.h"

#include <atomic>

/** Memory that the host keeps account of. Callbacks may be called from any thread, and must not throw. */
struct Account
{
    std::atomic<long> blocks{0};
    std::atomic<std::size_t> bytes{0};
};

void* Allocate(void* context, std::size_t size)
{
    auto* account = static_cast<Account*>(context);
    void* memory = std::malloc(size);
    if (memory != nullptr)
    {
        ++account->blocks;
        account->bytes += size;
    }
    return memory; // null is fine: the call that needs it then fails with STATUS_OUT_OF_MEMORY
}

void Free(void* context, void* memory)
{
    --static_cast<Account*>(context)->blocks;
    std::free(memory);
}

int main()
{
    Account account; // must outlive all objects made from it
    {
        Zo::Object<void*> allocator;
        Zo::Test(qAlloc_Construct(allocator.Slot(), Allocate, Free, &account));

        // What takes an allocator makes its results with it. The result keeps the allocator alive.
        const Zvl::Surface scan = MakeScan([](double x, double) { return x; });
        const Zvl::Surface coarse = Zvl::SurfaceDecimate(scan, {80, 60}, {0.0, 0.0}, allocator);
        std::printf("%ld blocks in use for %zu x %zu cells\n", account.blocks.load(),
                    qArray2_Length(coarse.layers[0], 1), qArray2_Length(coarse.layers[0], 0));
        Expect(account.blocks > 0 && account.bytes >= sizeof(short) * 80 * 60);
        allocator.Reset();
        Expect(account.blocks > 0);
    }
    std::printf("%ld blocks in use at the end\n", account.blocks.load());
    Expect(account.blocks == 0);
}
//! [program]
