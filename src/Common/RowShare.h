#pragma once

/** @file
 *  The rows of one worker of a parallel job. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstddef>

namespace Zvl
{

/** The worker's share of a number of rows. Of a small job the first worker has it all: workers with an empty share should
 *  return before they prepare anything. */
struct RowShare
{
    RowShare(const qParallelArgs* args, std::size_t rows)
        : begin(qParallelArgs_Begin(args, 0, rows)), end(qParallelArgs_End(args, 0, rows))
    {
    }

    bool IsEmpty() const { return begin >= end; }

    std::size_t begin;
    std::size_t end;
};

} // namespace Zvl
