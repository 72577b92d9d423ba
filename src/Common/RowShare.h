#pragma once

/** @file
 *  The rows of one worker of a parallel job. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstddef>

namespace Zvl
{

/** True for a worker that has no share, however many rows there are: of a small job, the first worker has it all. Such
 *  workers should return before they look anything up, lest a small job take longer with more of them. */
inline bool IsIdle(const qParallelArgs* args)
{
    return args->shareCount != 0 && args->worker >= args->shareCount;
}

/** The worker's share of a number of rows. */
struct RowShare
{
    RowShare(const qParallelArgs* args, std::size_t rows)
        : begin(qParallelArgs_Begin(args, 0, rows)), end(qParallelArgs_End(args, 0, rows))
    {
    }

    std::size_t begin;
    std::size_t end;
};

} // namespace Zvl
