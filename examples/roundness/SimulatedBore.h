#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <vector>

namespace Roundness
{

/** A bore as it was made: a circle with three lobes, as a chuck of three jaws leaves them, five finer ones, and a
 *  little oval. */
struct BoreForm
{
    qPoint64f center = {5.3, 5.7}; // mm
    double radius = 4.0;
    double oval = 0.008; ///< amplitudes
    double threeLobes = 0.030;
    double fiveLobes = 0.012;
    double section = 0.1; ///< the form is that of the chamfer, so far below the face

    double RadiusAt(double angle) const;

    /** Half a degree apart. */
    std::vector<qPoint64f> Points() const;
};

/** Simulates the scan of a tilted plate with the bore, which has a chamfer of 45 degrees: noise, dropouts, and two burrs
 *  that stand in from the edge. Every call gives the same scan. */
Zvl::Surface SimulateScan(const BoreForm& form);

} // namespace Roundness
