#pragma once

#include "prepare_scan/Task.h"

namespace PrepareScan
{

/** Simulates the scan of a pressed panel with two beads, a bore, a dent and a burr: noise and dropouts. Every call gives the
 *  same scan. */
Zvl::Surface SimulateScan();

/** The comparison of this scan, or of another one of the same panel, with a golden surface that was made from a sound
 *  panel. */
Task KnownPanel(const std::string& title, const Zvl::Surface& scan);

} // namespace PrepareScan
