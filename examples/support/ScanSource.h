#pragma once

#include "support/Options.h"
#include "support/Progress.h"

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <functional>

namespace Examples
{

/** The scan to measure: read from the input file, or else simulated. Saves it where that is asked for, and tells in a line
 *  what was read.
 *  @throws InputError when a file cannot be used */
Zvl::Surface TakeScan(const Options& options, const std::function<Zvl::Surface()>& simulate, Progress& progress);

} // namespace Examples
