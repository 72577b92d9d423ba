#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <array>

namespace ComposeRegions
{

/** The part as drawn, in millimetres, with its corner in the origin and its underside at height 0. */
struct PartDrawing
{
    double width = 60.0;
    double height = 22.0;
    double faceHeight = 3.0;

    std::array<qPoint64f, 3> holes = {qPoint64f{4.0, 4.0}, qPoint64f{56.0, 5.0}, qPoint64f{29.0, 18.5}};
    double holeRadius = 1.5;
    double holeFloor = 1.8; ///< height

    double sealHeight = 3.4;

    /** The shapes of the seal, each narrower by @p margin on all sides. @{ */
    Zvl::AnnularSector2d<double> Ring(double margin) const;
    Zvl::EllipticalSector2d<double> Ellipse(double margin) const;
    Zvl::Region2d<double> Channel(double margin) const;
    Zvl::Region2d<double> Pad(double margin) const;
    /** @} */

    /** True on the seal, or so far inside it. */
    bool IsOnSeal(const qPoint64f& place, double margin) const;

    /** True in one of the two ports, where one sees through the part. */
    bool IsInPort(const qPoint64f& place) const;

    bool IsInHole(const qPoint64f& place) const;
    bool IsOnPlate(const qPoint64f& place) const;

    /** Area of the seal that is @p margin inside, summed over squares of 0.02 mm. */
    double SealArea(double margin) const;
};

} // namespace ComposeRegions
