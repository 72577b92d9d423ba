#include <ZdkVisionLib/platform/qVision.h>

qStatus qL3dTransform3d_Identity(qL3dTransform3d* transform)
{
    if (transform == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    *transform = {{1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0}};
    return STATUS_OK;
}
