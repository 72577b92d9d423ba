#pragma once

/** @file
 *  Square maps of any size, parts or mirrored repetitions of the map of all benchmarks, and masks over them. */

#include "support/BenchMap.h"

namespace Survey
{

/** Heights, a tenth of them missing. */
const Zvl::Surface& Scan(int side);

/** The scan with random intensities. */
Zvl::Surface ScanWithIntensities(int side);

/** The scan's heights with zeros in place of the missing ones. */
Zo::Object<void*> WholeHeights(int side);

/** A mask in which about every second cell is 1. */
Zo::Object<void*> RandomMask(int side, std::uint64_t seed);

/** A mask that holds 1 wherever the scan has a height. */
Zo::Object<void*> ValidMask(int side);

/** A world length for a length in cells, or a position for one in cells. */
double Length(double cells);
qPoint64f Position(double column, double row);

/** The cells of an array of q16s or q8u. */
cv::Mat Heights(const Zo::Object<void*>& array);
cv::Mat Bytes(const Zo::Object<void*>& array);

} // namespace Survey
