#pragma once

#include <pybind11/pybind11.h>

#include <mutex>

namespace ZdkPython
{

/** Regions fill their caches when they are asked, and compositions ask their members, which others may hold, too: one
 *  thread at a time may use regions of any kind. */
inline std::mutex regionMutex;

/** Calls @p work on regions, with the interpreter free for other threads. A thread waits for the regions only after it has
 *  let go of the interpreter, and takes the interpreter back only without the regions, so that no two wait for each
 *  other. */
template <typename Work>
auto WithRegions(const Work& work) -> decltype(work())
{
    const pybind11::gil_scoped_release free;
    const std::lock_guard lock(regionMutex);
    return work();
}

/** A member function that is called by way of WithRegions(); what it returns by reference is copied under the lock. */
template <typename Result, typename Class, typename... Arguments>
auto Locked(Result (Class::*call)(Arguments...))
{
    return [call](Class& self, std::decay_t<Arguments>... arguments) -> std::decay_t<Result>
    {
        return WithRegions([&]() -> std::decay_t<Result> { return (self.*call)(arguments...); });
    };
}

template <typename Result, typename Class, typename... Arguments>
auto Locked(Result (Class::*call)(Arguments...) const)
{
    return [call](const Class& self, std::decay_t<Arguments>... arguments) -> std::decay_t<Result>
    {
        return WithRegions([&]() -> std::decay_t<Result> { return (self.*call)(arguments...); });
    };
}

} // namespace ZdkPython
