#include "platform/WorkerPool.h"

#include <oneapi/tbb/parallel_for.h>
#include <oneapi/tbb/task_arena.h>

namespace ZdkPlatform
{

void RunOnWorkers(std::size_t count, void (*run)(void* context, std::size_t index), void* context)
{
    const auto runPart = [run, context](const tbb::blocked_range<std::size_t>& part)
    {
        for (std::size_t index = part.begin(); index != part.end(); ++index)
        {
            run(context, index);
        }
    };
    tbb::this_task_arena::isolate(
        [&]
        {
            const tbb::blocked_range<std::size_t> all(0, count, 1);
            tbb::parallel_for(all, runPart, tbb::simple_partitioner());
        });
}

} // namespace ZdkPlatform
