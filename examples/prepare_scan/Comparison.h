#pragma once

#include "prepare_scan/Preparation.h"
#include "prepare_scan/Task.h"

#include <cstddef>

namespace PrepareScan
{

/** A scan, prepared and compared. */
struct Comparison
{
    Preparation prepared;
    Step difference;
    double rms;   ///< of the difference
    double limit; ///< beyond which a deviation is a flaw
    std::size_t flawedCells;
    double reach;             ///< world distance from the peak of a flaw within which cells belong to it
    std::optional<Flaw> dent; ///< the deepest one, if any is beyond the limit
    std::optional<Flaw> burr; ///< the highest one
};

Comparison Compare(const Task& task);

} // namespace PrepareScan
