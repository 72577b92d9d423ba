#pragma once

/** @file
 *  A `malloc` that can fail at a chosen call. The linker leads the calls of the libraries and of the tests through here;
 *  those of other libraries are not met. */

#include <cstddef>

namespace WholeTest
{

/** From now on the @p nth call of `malloc` on this thread fails (1 is the next one), and with @p onwards all later ones.
 *  With 0 none does. */
void FailMallocAt(std::size_t nth, bool onwards);

std::size_t FailuresOfMalloc(); ///< on this thread since FailMallocAt()

} // namespace WholeTest
