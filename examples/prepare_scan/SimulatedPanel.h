#pragma once

#include "prepare_scan/Task.h"

namespace PrepareScan
{

/** A pressed panel with two beads and a bore, scanned with noise and dropouts. It has a dent and a burr, which the sound
 *  panel that the golden surface was made from does not have. */
Task SimulatedPanel();

} // namespace PrepareScan
