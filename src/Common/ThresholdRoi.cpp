#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Cells.h"

namespace Zvl
{

void ThresholdHeight(const Surface& surface, double min, double max, ROI& roi)
{
    if (LayerOf(surface, 0) == nullptr)
    {
        return;
    }
    const Zo::Object<void*> mask = roi.GetMask();
    const Rect2d<int> box = roi.GetBoundingBox();
    ThresholdHeight(surface, min, max, box, mask);
}

} // namespace Zvl
