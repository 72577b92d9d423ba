#include "Geometry/VoronoiArena.h"

#include "Common/Check.h"

namespace Zvl
{

void VoronoiArena::AddBlock(const char* function)
{
    void* memory = allocate(context, kBlockSize);
    if (memory == nullptr)
    {
        ZVL_THROW(function, STATUS_OUT_OF_MEMORY);
    }
    auto* records = static_cast<char*>(memory) + sizeof(VoronoiMemoryBlock);
    newest = new (memory) VoronoiMemoryBlock{kBlockSize - sizeof(VoronoiMemoryBlock), newest, records};
}

void VoronoiArena::FreeBlocks() noexcept
{
    while (newest != nullptr)
    {
        VoronoiMemoryBlock* block = newest;
        newest = block->next;
        release(context, block);
    }
}

} // namespace Zvl
