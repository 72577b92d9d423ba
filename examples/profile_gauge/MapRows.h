#pragma once

#include "profile_gauge/Recording.h"
#include "support/Program.h"

namespace ProfileGauge
{

/** Rows of a height map as line scans across a groove, which is taught from the mean of all rows: it is where that is
 *  deepest.
 *  @throws Examples::InputError when the files cannot be used
 *  @throws std::runtime_error when the mean shows no groove */
Recording MapRows(const Examples::Options::MapFiles& files);

} // namespace ProfileGauge
