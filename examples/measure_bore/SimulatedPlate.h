#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

namespace MeasureBore
{

/** The part as drawn, in millimetres: a plate with its corner in the origin, a bore through it, and a ball seat, which
 * is a part of a sphere sunk into the plate. */
struct PlateDrawing
{
    double width = 40.0;
    double height = 30.0;
    qPoint64f bore = {12.0, 15.0};
    double boreRadius = 6.0;
    qPoint64f seat = {29.5, 15.0};
    double seatSphereRadius = 8.0;
    double seatDepth = 1.5;
};

/** How the part lies under the sensor: a turn about the origin, then a shift, and a tilt. */
struct PlatePose
{
    Zvl::Anchor displacement;
    double slopeX; ///< rise of the plate per millimetre
    double slopeY;
};

/** A place of the drawing where it lies under the sensor. */
qPoint64f Displace(const PlatePose& pose, const qPoint64f& drawn);

/** Simulates the scan of the plate by a laser line sensor: noise, spikes of stray light, dropouts at the edges, a chip
 * at the rim of the bore, and the shadow that the wall of the bore casts on the table underneath. Layer 0 holds the
 *  heights, layer 1 the intensities. Every call gives the same scan. */
Zvl::Surface SimulateScan(const PlateDrawing& drawing, const PlatePose& pose);

} // namespace MeasureBore
