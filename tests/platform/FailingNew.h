#pragma once

/** @file
 *  Exhausted memory for what allocates with `new`. */

namespace PlatformTest
{

/** While set, this thread gets no memory from `new`. */
extern thread_local bool newFails;

} // namespace PlatformTest
