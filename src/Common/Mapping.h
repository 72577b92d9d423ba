#pragma once

/** @file
 *  The mapping of a frame, as the regions of both families use it. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

/** World units by which a cell's centre may lie outside a region and still belong to its box. */
constexpr double kBoxTolerance = 0.0005;

/** False when a field of the mapping is null, the sign of a frame that was never set. */
inline bool IsMappingSet(const qPoint64f& scale, const qPoint64f& offset)
{
    constexpr double null = GetNull<double>();
    return offset.x != null && offset.y != null && scale.x != null && scale.y != null;
}

} // namespace Zvl
