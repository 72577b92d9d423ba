#pragma once

/** @file
 *  The whole program's `new`, which counts what lives and can fail at a chosen call. */

#include <cstddef>

namespace WholeTest
{

/** What `new` has given out on all threads and not taken back. */
struct LiveMemory
{
    std::ptrdiff_t blocks;
    std::ptrdiff_t bytes;
};

LiveMemory LiveOfNew();

/** From now on the @p nth call of `new` on this thread fails (1 is the next one), and with @p onwards all later ones. With
 *  0 none does. */
void FailNewAt(std::size_t nth, bool onwards);

std::size_t CallsOfNew();    ///< on this thread since FailNewAt()
std::size_t FailuresOfNew(); ///< on this thread since FailNewAt()

} // namespace WholeTest
