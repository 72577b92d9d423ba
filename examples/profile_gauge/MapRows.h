#pragma once

#include "profile_gauge/Recording.h"

namespace ProfileGauge
{

/** Rows of a height map as line scans across a groove, which is taught from the mean of all rows: it is where that is
 *  deepest.
 *  @throws std::runtime_error when the mean shows no groove */
Recording MapRows(const std::string& title, const Zvl::Surface& map);

/** One row of a map as line scan. */
LineScan RowScan(const Zvl::Surface& map, std::size_t row);

} // namespace ProfileGauge
