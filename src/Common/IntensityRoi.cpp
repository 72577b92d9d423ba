#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/LayerWindow.h"
#include "Common/MaskKernels.h"
#include "Common/RowShare.h"

namespace Zvl
{

namespace
{

/** What the workers of an intensity range's mask read. */
struct IntensityScanReceiver
{
    Zo::Object<void*> heights;
    Zo::Object<void*> intensities;
    qPoint32s cellOffset;
    std::uint8_t minimum;
    std::uint8_t maximum;
};

/** Marks the worker's cells that have a height and an intensity in the range. Cells beside either layer stay 0. */
qStatus FillIntensityRows(void* context, void* /*sender*/, const qParallelArgs* args)
{
    if (IsIdle(args))
    {
        return STATUS_OK;
    }
    const auto& receiver = *static_cast<const IntensityScanReceiver*>(context);
    const Cells<std::uint8_t> mask = CellsOf<std::uint8_t>(args->target);
    const RowShare share(args, mask.rows);
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(receiver.heights);
    const Cells<const std::uint8_t> intensities = CellsOf<const std::uint8_t>(receiver.intensities);
    const LayerWindow window(receiver.cellOffset, mask.rows, mask.columns, std::min(heights.rows, intensities.rows),
                             std::min(heights.columns, intensities.columns));
    const std::size_t end = window.EndRow(share.end);
    for (std::size_t row = window.BeginRow(share.begin); row < end; ++row)
    {
        const std::size_t layerRow = window.LayerRow(row);
        MarkIntensities(heights.Row(layerRow) + window.LayerColumn(), intensities.Row(layerRow) + window.LayerColumn(),
                        receiver.minimum, receiver.maximum, mask.Row(row) + window.columns.first, window.ColumnCount());
    }
    return STATUS_OK;
}

} // namespace

IntensityROI::IntensityROI(const Surface& surface, std::uint64_t frameWidth, std::uint64_t frameHeight,
                           const qPoint64f& scale, const qPoint64f& offset, std::uint8_t minimum, std::uint8_t maximum,
                           void* allocator)
    : SurfaceROI(surface, frameWidth, frameHeight, scale, offset, allocator), intensityRange{minimum, maximum}
{
}

std::shared_ptr<ROI> IntensityROI::ApplyAnchor(const Anchor& /*anchor*/)
{
    return std::make_shared<IntensityROI>(surface, frameWidth, frameHeight, scale, offset, intensityRange.minimum,
                                          intensityRange.maximum, allocator);
}

MaskType IntensityROI::GetShapeType() const
{
    return MaskTypeIntensity;
}

void IntensityROI::_AssignMaskSliced()
{
    if (mask.Get() == nullptr)
    {
        return;
    }
    IntensityScanReceiver receiver = {surface.layers[0], surface.layers[1], surfaceCellOffset, intensityRange.minimum,
                                      intensityRange.maximum};
    ZVL_CHECK("Zvl::IntensityROI::_AssignMaskSliced", qParallel_Execute(FillIntensityRows, &receiver, mask));
}

} // namespace Zvl
