#pragma once

#include "survey/Operation.h"

namespace Survey
{

/** How much more two host threads get done at once than one alone, each with maps of @p side x @p side cells and results of
 *  its own, on one worker: 2 where neither waits for the other. Medians are taken of @p samples. */
double CallersGain(const Operation& operation, int side, int samples);

} // namespace Survey
