#pragma once

/** @file
 *  Fills the mask of an elliptical or annular sector, one worker's rows at a time. */

#include "Common/MaskRow.h"

namespace Zvl
{

/** What the workers of a sector's mask read; each record outlives the job. */
struct SectorScanReceiver
{
    const Rect2d<int>* boundingBox;
    const qPoint64f* scale;
    const qPoint64f* offset;
    const EllipticalSector2d<double>* ellipse; ///< used when `annulus` is null
    const AnnularSector2d<double>* annulus;
};

/** Worker of a parallel job whose context is a SectorScanReceiver and whose target is the zeroed mask. */
qStatus FillSectorRows(void* context, void* sender, const qParallelArgs* args);

} // namespace Zvl
