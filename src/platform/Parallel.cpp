#include "platform/Arrays.h"
#include "platform/Registry.h"
#include "platform/WorkerPool.h"

#include <algorithm>
#include <exception>
#include <limits>
#include <mutex>
#include <new>
#include <thread>

namespace
{

using namespace ZdkPlatform;

constexpr std::size_t kMostWorkers = 1024;

// Waking the workers costs some microseconds; one thread writes this many bytes in less. Even without that, what a share
// begins with costs more than is gained.
constexpr std::size_t kSmallTargetBytes = std::size_t{64} * 1024;

struct ThreadPool
{
    std::atomic<std::size_t> count{0}; ///< 0 until somebody sets it
};

constinit ThreadPool defaultPool;

ThreadPool& CheckedPool(qThreadPool pool)
{
    if (pool != &defaultPool)
    {
        xqApiLib_CastFailHandler(__FILE__, __LINE__);
    }
    return defaultPool;
}

std::size_t HardwareThreads()
{
    static const std::size_t count =
        std::clamp(static_cast<std::size_t>(std::thread::hardware_concurrency()), std::size_t{1}, kMostWorkers);
    return count;
}

/** True when the target is an array so small that its job is not worth a second thread. Of other objects
 *  nothing is known. */
bool IsSmall(qObject target, const TypeRecord* type)
{
    if (type == RecordOf(TypeId::Array1))
    {
        return static_cast<const Array1*>(target)->count * ItemType(target).size < kSmallTargetBytes;
    }
    if (type == RecordOf(TypeId::Array2))
    {
        const auto& array = *static_cast<const Array2*>(target);
        return array.length0 * array.length1 * array.itemSize < kSmallTargetBytes;
    }
    return false;
}

/** One job: its callback, and the failure of the lowest worker that has one. */
class Job
{
public:
    Job(qParallelFx jobCallback, void* jobContext, qObject jobTarget, std::size_t jobWorkers, std::size_t jobShares)
        : callback(jobCallback), context(jobContext), target(jobTarget), workers(jobWorkers), shares(jobShares)
    {
    }

    /** Runs one worker after the other on this thread. */
    void RunHere()
    {
        for (std::size_t worker = 0; worker < workers; ++worker)
        {
            Run(worker);
        }
    }

    /** Spreads the workers over the pool's threads. */
    void RunOnPool()
    {
        published.store(true, std::memory_order_release);
        RunOnWorkers(
            workers,
            [](void* job, std::size_t worker)
            {
                Job& self = *static_cast<Job*>(job);
                // The pool orders these accesses by itself; tools that cannot look into it see the order through
                // these two atomics.
                static_cast<void>(self.published.load(std::memory_order_acquire));
                self.Run(worker);
                self.ended.fetch_add(1, std::memory_order_release);
            },
            this);
        static_cast<void>(ended.load(std::memory_order_acquire));
    }

    /** The job's result: throws what the lowest failing worker threw, or returns its status. */
    qStatus Result() const
    {
        if (exception)
        {
            std::rethrow_exception(exception);
        }
        return status;
    }

private:
    void Run(std::size_t worker) noexcept
    {
        try
        {
            const qParallelArgs args{target, worker, workers, shares};
            const qStatus workerStatus = callback(context, nullptr, &args);
            if (workerStatus != STATUS_OK)
            {
                Fail(worker, workerStatus, nullptr);
            }
        }
        catch (...)
        {
            Fail(worker, STATUS_ABORTED, std::current_exception());
        }
    }

    void Fail(std::size_t worker, qStatus workerStatus, std::exception_ptr thrown) noexcept
    {
        const std::lock_guard lock(failure);
        if (worker < failedWorker)
        {
            failedWorker = worker;
            status = workerStatus;
            exception.swap(thrown);
        }
    }

    qParallelFx callback;
    void* context;
    qObject target;
    std::size_t workers;
    std::size_t shares;
    std::atomic<bool> published{false};
    std::atomic<std::size_t> ended{0};

    std::mutex failure;
    std::size_t failedWorker = std::numeric_limits<std::size_t>::max();
    qStatus status = STATUS_OK;
    std::exception_ptr exception;
};

/** First index of the share of that number, or the end of them all: the first `size % shares` shares are larger by one. */
std::size_t ShareBegin(const qParallelArgs* args, std::size_t from, std::size_t total, std::size_t share)
{
    const std::size_t size = total > from ? total - from : 0;
    const std::size_t shares = args->shareCount == 0 ? args->workerCount : args->shareCount;
    if (share >= shares)
    {
        return from + size;
    }
    return from + size / shares * share + std::min(share, size % shares);
}

void CheckArgs(const qParallelArgs* args)
{
    if (args == nullptr || args->worker >= args->workerCount)
    {
        xqApiLib_AssertHandler(__FILE__, __LINE__);
    }
}

} // namespace

qStatus qParallel_Execute(qParallelFx callback, void* context, qObject target)
{
    if (callback == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    const TypeRecord* type = nullptr;
    if (target != nullptr)
    {
        CheckClass(target, TypeId::Object, __FILE__, __LINE__);
        type = HeaderOf(target).type;
    }
    const std::size_t workers = qThreadPool_Count(&defaultPool);
    const bool isSmall = IsSmall(target, type);
    Job job(callback, context, target, workers, isSmall ? 1 : workers);
    if (workers == 1 || HardwareThreads() == 1 || isSmall)
    {
        job.RunHere();
        return job.Result();
    }
    try
    {
        job.RunOnPool();
    }
    catch (const std::bad_alloc&) // from the pool itself
    {
        return STATUS_OUT_OF_MEMORY;
    }
    return job.Result();
}

std::size_t qParallelArgs_Begin(const qParallelArgs* args, std::size_t from, std::size_t total)
{
    CheckArgs(args);
    return ShareBegin(args, from, total, args->worker);
}

std::size_t qParallelArgs_End(const qParallelArgs* args, std::size_t from, std::size_t total)
{
    CheckArgs(args);
    return ShareBegin(args, from, total, args->worker + 1);
}

qThreadPool qThreadPool_Default()
{
    return &defaultPool;
}

std::size_t qThreadPool_Count(qThreadPool pool)
{
    const std::size_t count = CheckedPool(pool).count.load(std::memory_order_relaxed);
    return count == 0 ? HardwareThreads() : count;
}

qStatus qThreadPool_SetCount(qThreadPool pool, std::size_t count)
{
    ThreadPool& target = CheckedPool(pool);
    if (count == 0 || count > kMostWorkers)
    {
        return STATUS_BAD_PARAMETER;
    }
    target.count.store(count, std::memory_order_relaxed);
    return STATUS_OK;
}
