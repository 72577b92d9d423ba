#pragma once

/** @file
 *  What the items of an array are. */

#include <ZdkVisionLib/platform/ZoVision.h>

#include <algorithm>
#include <array>

namespace Zvl
{

/** True when items of @p type are handles, whose bytes are no data: each owns a count of an object. */
inline bool IsObjectType(qType type)
{
    const std::array<qType, 8> classes = {xxqObject_type,    xxqAlloc_type,  xxqArray1_type,     xxqArray2_type,
                                          xxqArrayList_type, xxqMemory_type, xxqSerializer_type, xxZvSurfaceMsg_type};
    return std::find(classes.begin(), classes.end(), type) != classes.end();
}

} // namespace Zvl
