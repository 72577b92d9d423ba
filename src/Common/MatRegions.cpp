#include <ZdkVisionLib/Common/Mat.h>

namespace Zvl
{

namespace
{

void ClipAxis(double boundStart, double boundLength, double& start, double& length)
{
    if (boundStart > start)
    {
        length -= boundStart - start;
        start = boundStart;
    }
    if (start + length > boundStart + boundLength)
    {
        length = boundStart + boundLength - start;
    }
}

void WidenAxis(double boundStart, double boundLength, double& start, double& length)
{
    if (start > boundStart)
    {
        length += start - boundStart;
        start = boundStart;
    }
    if (boundStart + boundLength > start + length)
    {
        length = boundStart + boundLength - start;
    }
}

/** Copies one of two regions to @p result, which may be one of them.
 *  @return the other one, or null when there is nothing to compute */
const Region3d<double>* CopyOne(const Region3d<double>* a, const Region3d<double>* b, Region3d<double>* result)
{
    if (a == nullptr || b == nullptr || result == nullptr || (result == a && result == b))
    {
        return nullptr;
    }
    if (result == b)
    {
        return a;
    }
    *result = *a;
    return b;
}

} // namespace

void zvlMat::RegionClipXY(const Region3d<double>* bound, Region3d<double>* region)
{
    ClipAxis(bound->x, bound->width, region->x, region->width);
    ClipAxis(bound->y, bound->height, region->y, region->height);
}

void zvlMat::RegionMergeXY(const Region3d<double>* bound, Region3d<double>* region)
{
    WidenAxis(bound->x, bound->width, region->x, region->width);
    WidenAxis(bound->y, bound->height, region->y, region->height);
}

void zvlMat::ComputeOverlappingRegion(const Region3d<double>* a, const Region3d<double>* b, Region3d<double>* result)
{
    if (const Region3d<double>* other = CopyOne(a, b, result); other != nullptr)
    {
        RegionClipXY(other, result);
        ClipAxis(other->z, other->depth, result->z, result->depth);
    }
}

void zvlMat::ComputeContainerRegion(const Region3d<double>* a, const Region3d<double>* b, Region3d<double>* result)
{
    if (const Region3d<double>* other = CopyOne(a, b, result); other != nullptr)
    {
        RegionMergeXY(other, result);
        WidenAxis(other->z, other->depth, result->z, result->depth);
    }
}

} // namespace Zvl
