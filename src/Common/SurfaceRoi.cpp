#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/LayerWindow.h"
#include "Common/MaskKernels.h"
#include "Common/PolygonTests.h"
#include "Common/Rounding.h"
#include "Common/RowShare.h"

#include <cmath>
#include <optional>

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

/** Marks the worker's cells that have a height. Cells beside the reference stay 0. */
qStatus FillSurfaceRows(void* context, void* /*sender*/, const qParallelArgs* args)
{
    if (IsIdle(args))
    {
        return STATUS_OK;
    }
    const auto& receiver = *static_cast<const SurfaceScanReceiver*>(context);
    const Cells<std::uint8_t> mask = CellsOf<std::uint8_t>(args->target);
    const RowShare share(args, mask.rows);
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(receiver.heights);
    const LayerWindow window(receiver.cellOffset, mask.rows, mask.columns, heights.rows, heights.columns);
    const std::size_t end = window.EndRow(share.end);
    for (std::size_t row = window.BeginRow(share.begin); row < end; ++row)
    {
        MarkHeights(heights.Row(window.LayerRow(row)) + window.LayerColumn(), mask.Row(row) + window.columns.first,
                    window.ColumnCount());
    }
    return STATUS_OK;
}

/** Cells in @p distance, to the nearest one; false when there are more than an `int` can tell. */
bool NearestCell(double distance, double scale, int& cell)
{
    const double nearest = RoundHalfAway(distance / scale);
    cell = TruncateToInt(nearest);
    return nearest == cell;
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

/** Rows and columns of layer @p index of @p surface, when it holds cells of type `T`. */
template <typename T>
std::optional<Rect2d<int>> SizeOfLayer(const Surface& surface, std::size_t index)
{
    const Cells<const T> cells = CellsOf<const T>(LayerOf(surface, index));
    return cells.present ? std::optional(Rect2d<int>{0, 0, ClampToInt(cells.columns), ClampToInt(cells.rows)})
                         : std::nullopt;
}

/** The size that a region of type @p type takes its box from: that of the heights, or that of the intensities when there
 *  are heights as well. */
std::optional<Rect2d<int>> ReferenceSize(const Surface& surface, MaskType type)
{
    const std::optional<Rect2d<int>> heights = SizeOfLayer<std::int16_t>(surface, 0);
    return heights.has_value() && type == MaskTypeIntensity ? SizeOfLayer<std::uint8_t>(surface, 1) : heights;
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
    const std::optional<Rect2d<int>> size = ReferenceSize(surface, GetShapeType());
    if (!sameScale || !size.has_value())
    {
        return;
    }
    const Rect2d<int>& reference = *size;
    qPoint32s origin;
    if (!NearestCell(surface.offset.x - offset.x, scale.x, origin.x) ||
        !NearestCell(surface.offset.y - offset.y, scale.y, origin.y))
    {
        return;
    }
    SetBounds({origin.x * scale.x + offset.x, origin.y * scale.y + offset.y, reference.width * surface.scale.x,
               reference.height * surface.scale.y, 0.0});
    if (!NearestCell(boundingBox.x * scale.x + offset.x - surface.offset.x, surface.scale.x, surfaceCellOffset.x) ||
        !NearestCell(boundingBox.y * scale.y + offset.y - surface.offset.y, surface.scale.y, surfaceCellOffset.y))
    {
        boundingBox = {};
        return;
    }
    boundingBox.width =
        CellsLeft(frameWidth, boundingBox.x, static_cast<std::size_t>(reference.width), surfaceCellOffset.x);
    boundingBox.height =
        CellsLeft(frameHeight, boundingBox.y, static_cast<std::size_t>(reference.height), surfaceCellOffset.y);
}

void SurfaceROI::_AssignMaskSliced()
{
    if (mask.Get() == nullptr)
    {
        return;
    }
    SurfaceScanReceiver receiver = {surface.layers[0], surfaceCellOffset};
    ZVL_CHECK("Zvl::SurfaceROI::_AssignMaskSliced", qParallel_Execute(FillSurfaceRows, &receiver, mask));
}

} // namespace Zvl
