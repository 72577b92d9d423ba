#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Cells.h"
#include "Common/Check.h"

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

/** Marks the worker's cells that have a height and an intensity in the range. */
qStatus FillIntensityRows(void* context, void* /*sender*/, const qParallelArgs* args)
{
    const auto& receiver = *static_cast<const IntensityScanReceiver*>(context);
    const Cells<std::uint8_t> mask = CellsOf<std::uint8_t>(args->target);
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(receiver.heights);
    const Cells<const std::uint8_t> intensities = CellsOf<const std::uint8_t>(receiver.intensities);
    const std::size_t end = qParallelArgs_End(args, 0, mask.rows);
    for (std::size_t row = qParallelArgs_Begin(args, 0, mask.rows); row < end; ++row)
    {
        const std::size_t referenceRow = static_cast<std::size_t>(receiver.cellOffset.y) + row;
        const std::int16_t* height = heights.Row(referenceRow) + receiver.cellOffset.x;
        const std::uint8_t* intensity = intensities.Row(referenceRow) + receiver.cellOffset.x;
        std::uint8_t* out = mask.Row(row);
        for (std::size_t column = 0; column < mask.columns; ++column)
        {
            const bool inRange = intensity[column] >= receiver.minimum && intensity[column] <= receiver.maximum;
            out[column] = height[column] != GetNull<short>() && inRange ? 1 : 0;
        }
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
    const Rect2d<int> read = {surfaceCellOffset.x, surfaceCellOffset.y, boundingBox.width, boundingBox.height};
    ZVL_REQUIRE("Zvl::IntensityROI::_AssignMaskSliced",
                CellsOf<const std::int16_t>(LayerOf(surface, 0)).Contains(read) &&
                    CellsOf<const std::uint8_t>(LayerOf(surface, 1)).Contains(read));
    IntensityScanReceiver receiver = {surface.layers[0], surface.layers[1], surfaceCellOffset, intensityRange.minimum,
                                      intensityRange.maximum};
    ZVL_CHECK("Zvl::IntensityROI::_AssignMaskSliced", qParallel_Execute(FillIntensityRows, &receiver, mask));
}

} // namespace Zvl
