#pragma once

/** @file
 *  Scan conversion of a polygon, one worker's rows at a time. */

#include "Common/MaskRow.h"
#include "Common/PolygonTests.h"

namespace Zvl
{

/** What the workers of a polygon's mask read; each record outlives the job. */
struct PolygonScanReceiver
{
    const Rect2d<int>* boundingBox;
    const qPoint64f* scale;
    const qPoint64f* offset;
    const std::vector<Point2d<double>>* polygonPoints;
    const Region2d<double>* boundingRegion;
};

/** Worker of a parallel job whose context is a PolygonScanReceiver and whose target is the zeroed mask. */
qStatus FillPolygonRows(void* context, void* sender, const qParallelArgs* args);

} // namespace Zvl
