#pragma once

#include "survey/Operation.h"

namespace Survey
{

/** The most bytes of the heap that were in use at one time during @p action, beyond those in use before it. Of all
 *  threads; the program's `malloc` and its kin count while this runs. What a library maps by itself is not seen. */
double PeakHeapBytes(const Action& action);

} // namespace Survey
