#pragma once

/** @file
 *  One mask merged into a larger one, by rows. */

#include <ZdkVisionLib/Common/Common.h>

namespace Zvl
{

/** A mask, and where it lies in the target. */
struct MergeReceiver
{
    /** Mask @p source of the box @p rect, laid into the mask of the box @p target. */
    MergeReceiver(const Zo::Object<void*>& source, const Rect2d<int>& rect, const Rect2d<int>& target);

    Zo::Object<void*> source;
    std::uint64_t width;
    std::uint64_t height;
    std::int32_t column;
    std::int32_t row;
};

/** Job of qParallel_Execute() over a MergeReceiver, with the mask to merge into as its target: stores 1 where either mask has
 *  a cell that is not 0, else 0, in the target's cells under the source. Each worker takes rows of its own. Cells beside the
 *  target are cut off: a box that outlived its mask must not lead outside. */
qStatus MergeMaskRows(void* context, void* sender, const qParallelArgs* args);

} // namespace Zvl
