#pragma once

/** @file
 *  The ellipse that a ring amounts to. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

/** The sector of an unrotated ellipse whose both axes are the ring's diameters: what the box of a ring is taken from. */
inline EllipticalSector2d<double> EllipseOf(const AnnularSector2d<double>& annulus)
{
    const double inner = annulus.innerRadius * 2.0;
    const double outer = annulus.outerRadius * 2.0;
    return {inner, inner, outer, outer, annulus.startAngle, annulus.angleSpan, 0.0, annulus.center};
}

} // namespace Zvl
