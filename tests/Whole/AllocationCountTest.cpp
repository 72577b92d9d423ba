/** @file
 *  Memory is asked for by the call, not by the row or cell: a map of sixteen times the cells costs as many allocations, but
 *  for lists that grow by doubling. */

#include "Whole/CountedNew.h"
#include "Whole/Program.h"

#include "support/FailingAllocator.h"
#include "support/Surfaces.h"

namespace
{

using namespace WholeTest;

/** How often @p operation asks `new` and the platform's allocator for memory. */
std::size_t AllocationsOf(Operation operation, const World& world, TestSupport::FailingAllocator& allocator)
{
    Digests digests;
    allocator.FailNever();
    FailNewAt(0, false);
    operation(world, digests);
    return CallsOfNew() + allocator.Allocations();
}

TEST(Allocations, AreAsManyForALargeMapAsForASmallOne)
{
    const TestSupport::WorkerCount oneWorker(1);
    TestSupport::FailingAllocator allocator;
    allocator.MakeDefault();
    const World small(96, 128);
    const World large(384, 512);
    for (std::size_t i = 0; i < Operations().size(); ++i)
    {
        const std::size_t few = AllocationsOf(Operations()[i], small, allocator);
        const std::size_t most = AllocationsOf(Operations()[i], large, allocator);
        EXPECT_GT(few, 0U);
        EXPECT_LT(most, few + 20) << "operations " << i << " with " << few << " allocations";
    }
}

} // namespace
