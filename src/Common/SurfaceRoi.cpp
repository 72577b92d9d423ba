#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/PolygonTests.h"
#include "Common/Rounding.h"

#include <cmath>

namespace Zvl
{

namespace
{

/** What the workers of a surface's mask read. */
struct SurfaceScanReceiver
{
    Zo::Object<void*> heights;
    qPoint32s cellOffset;
};

/** Marks the worker's cells that have a height. */
qStatus FillSurfaceRows(void* context, void* /*sender*/, const qParallelArgs* args)
{
    const auto& receiver = *static_cast<const SurfaceScanReceiver*>(context);
    const Cells<std::uint8_t> mask = CellsOf<std::uint8_t>(args->target);
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(receiver.heights);
    const std::size_t end = qParallelArgs_End(args, 0, mask.rows);
    for (std::size_t row = qParallelArgs_Begin(args, 0, mask.rows); row < end; ++row)
    {
        const std::int16_t* in =
            heights.Row(static_cast<std::size_t>(receiver.cellOffset.y) + row) + receiver.cellOffset.x;
        std::uint8_t* out = mask.Row(row);
        for (std::size_t column = 0; column < mask.columns; ++column)
        {
            out[column] = in[column] != GetNull<short>() ? 1 : 0;
        }
    }
    return STATUS_OK;
}

/** Cells from a position of the frame to the reference's origin, to the nearest one. */
int NearestCell(double distance, double scale)
{
    return TruncateToInt(RoundHalfAway(distance / scale));
}

/** The lesser of the cells that frame and reference have left. Compared without sign, so that a difference below zero
 *  counts as very large; what is stored is cut to 32 bits. */
int CellsLeft(std::uint64_t frame, int position, std::size_t reference, int referencePosition)
{
    const std::uint64_t ofFrame = frame - static_cast<std::uint64_t>(static_cast<std::int64_t>(position));
    const std::uint64_t ofReference =
        reference - static_cast<std::uint64_t>(static_cast<std::int64_t>(referencePosition));
    return static_cast<int>(static_cast<std::uint32_t>(std::min(ofFrame, ofReference)));
}

/** Size of the reference's cells that a region of type @p type reads; no cells unless all layers that it needs are there
 *  and agree. */
Rect2d<int> ReferenceSize(const Surface& surface, MaskType type)
{
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(LayerOf(surface, 0));
    bool usable = heights.present;
    if (type == MaskTypeIntensity)
    {
        const Cells<const std::uint8_t> intensities = CellsOf<const std::uint8_t>(LayerOf(surface, 1));
        usable =
            usable && intensities.present && intensities.rows == heights.rows && intensities.columns == heights.columns;
    }
    return usable ? Rect2d<int>{0, 0, ClampToInt(heights.columns), ClampToInt(heights.rows)} : Rect2d<int>{};
}

} // namespace

SurfaceROI::SurfaceROI(const Surface& surface, std::uint64_t frameWidth, std::uint64_t frameHeight,
                       const qPoint64f& scale, const qPoint64f& offset, void* allocator)
    : SingleROI(frameWidth, frameHeight, scale, offset, allocator),
      surface(surface),
      surfaceCellOffset{GetNull<int>(), GetNull<int>()}
{
}

std::shared_ptr<ROI> SurfaceROI::ApplyAnchor(const Anchor& /*anchor*/)
{
    return std::make_shared<SurfaceROI>(surface, frameWidth, frameHeight, scale, offset, allocator);
}

MaskType SurfaceROI::GetShapeType() const
{
    return MaskTypeSurface;
}

std::shared_ptr<ROI> SurfaceROI::DeepCopy() const
{
    Surface copy;
    copy.scale = surface.scale;
    copy.offset = surface.offset;
    for (const Zo::Object<void*>& layer : surface.layers)
    {
        copy.layers.emplace_back();
        ZVL_CHECK("Zvl::SurfaceROI::DeepCopy",
                  xqObject_CloneImpl(copy.layers.back().Slot(), layer, allocator, allocator, 0));
    }
    return std::make_shared<SurfaceROI>(copy, frameWidth, frameHeight, scale, offset, allocator);
}

const Surface& SurfaceROI::GetShape() const
{
    return surface;
}

void SurfaceROI::_CalculateBoundingBox()
{
    RequireMapping("Zvl::SurfaceROI::_CalculateBoundingBox");
    _InitializeBoundingBox();
    const bool sameScale = std::fabs(scale.x - surface.scale.x) < kGeometricTolerance &&
                           std::fabs(scale.y - surface.scale.y) < kGeometricTolerance;
    const Rect2d<int> reference = ReferenceSize(surface, GetShapeType());
    if (!sameScale || reference.width == 0 || reference.height == 0)
    {
        return;
    }
    const double x = NearestCell(surface.offset.x - offset.x, scale.x) * scale.x + offset.x;
    const double y = NearestCell(surface.offset.y - offset.y, scale.y) * scale.y + offset.y;
    SetBounds({x, y, reference.width * surface.scale.x, reference.height * surface.scale.y, 0.0});

    surfaceCellOffset.x = NearestCell(boundingBox.x * scale.x + offset.x - surface.offset.x, surface.scale.x);
    surfaceCellOffset.y = NearestCell(boundingBox.y * scale.y + offset.y - surface.offset.y, surface.scale.y);
    boundingBox.width =
        CellsLeft(frameWidth, boundingBox.x, static_cast<std::size_t>(reference.width), surfaceCellOffset.x);
    boundingBox.height =
        CellsLeft(frameHeight, boundingBox.y, static_cast<std::size_t>(reference.height), surfaceCellOffset.y);
    // Beside the reference there is nothing to read.
    const Rect2d<std::int64_t> read = {surfaceCellOffset.x, surfaceCellOffset.y, boundingBox.width, boundingBox.height};
    const bool inReference = read.x >= 0 && read.y >= 0 && read.x + read.width <= reference.width &&
                             read.y + read.height <= reference.height;
    if (!inReference || read.width <= 0 || read.height <= 0)
    {
        boundingBox.width = 0;
        boundingBox.height = 0;
    }
}

void SurfaceROI::_AssignMaskSliced()
{
    if (mask.Get() == nullptr)
    {
        return;
    }
    const Rect2d<int> read = {surfaceCellOffset.x, surfaceCellOffset.y, boundingBox.width, boundingBox.height};
    ZVL_REQUIRE("Zvl::SurfaceROI::_AssignMaskSliced", CellsOf<const std::int16_t>(LayerOf(surface, 0)).Contains(read));
    SurfaceScanReceiver receiver = {surface.layers[0], surfaceCellOffset};
    ZVL_CHECK("Zvl::SurfaceROI::_AssignMaskSliced", qParallel_Execute(FillSurfaceRows, &receiver, mask));
}

} // namespace Zvl
