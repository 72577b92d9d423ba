#pragma once

/** @file
 *  The one door to the task scheduler. */

#include <cstddef>

namespace ZdkPlatform
{

/** Calls `run(context, index)` once for each index below @p count, on as many threads as the machine offers, and returns
 *  when all calls have ended. @p run must not throw. A thread that waits for the end takes no work from outside of this
 *  call, since that could take a lock which the thread holds already.
 *  @throws std::bad_alloc when the scheduler has no memory; some calls may then have been made */
void RunOnWorkers(std::size_t count, void (*run)(void* context, std::size_t index), void* context);

} // namespace ZdkPlatform
