#include <ZdkVisionLib/Utils/Utils.h>
#include <ZdkVisionLib/platform/ZoVision.h>

#include "Common/Cells.h"
#include "Common/Check.h"

namespace Zvl
{

void RetrieveSurfaceInputData(const Surface& surface, SurfaceInputData* data)
{
    ZVL_REQUIRE("Zvl::RetrieveSurfaceInputData", data != nullptr);
    void* heights = LayerOf(surface, 0);
    ZVL_REQUIRE("Zvl::RetrieveSurfaceInputData", heights == nullptr || xqCastClass_ObjectIs(heights, xxqArray2_type));
    *data = {0, 0, surface.offset, surface.scale, nullptr, LayerOf(surface, 1)};
    if (heights != nullptr)
    {
        data->height = qArray2_Length(heights, 0);
        data->width = qArray2_Length(heights, 1);
        data->heightArray = heights;
    }
}

qPoint3d64f GetSurfaceItemOffset(void* message, int index)
{
    ZVL_REQUIRE("Zvl::GetSurfaceItemOffset", message != nullptr);
    qPoint3d64f offset = {GetNull<double>(), GetNull<double>(), GetNull<double>()};
    ZVL_CHECK("Zvl::GetSurfaceItemOffset", ZvSurfaceMsg_OffsetForRef(message, index, &offset));
    return offset;
}

} // namespace Zvl
