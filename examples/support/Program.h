#pragma once

#include "support/Options.h"
#include "support/Progress.h"

namespace Examples
{

/** The frame of an example's main(): reads the options, prints help when it is asked for, otherwise runs @p measure, and
 *  turns what it throws into one line on the error stream.
 *  @param measure returns true when all measured values are as they should be
 *  @return the exit code: 0; 1 when a value is off or the measurement failed; 2 for bad input */
int RunProgram(int argumentCount, char** arguments, const Description& description,
               bool (*measure)(const Options& options, Progress& progress));

} // namespace Examples
