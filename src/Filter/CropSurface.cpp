#include <ZdkVisionLib/Filter/Filter.h>

#include "Common/Cells.h"
#include "Common/Check.h"

#include <utility>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::CropSurfaceFromROI";

/** Lengths of a two-dimensional array of any element type. */
struct ArraySize
{
    std::size_t rows;
    std::size_t columns;

    bool Contains(const Rect2d<int>& rect) const
    {
        return rect.x >= 0 && rect.y >= 0 &&
               static_cast<std::size_t>(rect.x) + static_cast<std::size_t>(rect.width) <= columns &&
               static_cast<std::size_t>(rect.y) + static_cast<std::size_t>(rect.height) <= rows;
    }
};

Zo::Object<void*> NewLayer(qType type, const Rect2d<int>& rect, void* allocator)
{
    Zo::Object<void*> layer;
    ZVL_CHECK(kFunction, qArray2_Construct(layer.Slot(), type, static_cast<std::size_t>(rect.height),
                                           static_cast<std::size_t>(rect.width), allocator));
    return layer;
}

Zo::Object<void*> CropHeights(void* source, const Rect2d<int>& rect, const Cells<std::uint8_t>& mask, void* allocator)
{
    Zo::Object<void*> croppedHeightmap = NewLayer(xxq16s_type, rect, allocator);
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(source);
    const Cells<std::int16_t> cropped = CellsOf<std::int16_t>(croppedHeightmap);
    for (std::size_t row = 0; row < cropped.rows; ++row)
    {
        const std::int16_t* in = heights.Row(static_cast<std::size_t>(rect.y) + row) + rect.x;
        const std::uint8_t* selected = mask.Row(row);
        std::int16_t* out = cropped.Row(row);
        for (std::size_t column = 0; column < cropped.columns; ++column)
        {
            // Without a branch: all bits of the height for a selected cell, those of the missing height for others.
            const int keep = -static_cast<int>(selected[column] != 0);
            out[column] = static_cast<std::int16_t>((in[column] & keep) | (GetNull<short>() & ~keep));
        }
    }
    return croppedHeightmap;
}

Zo::Object<void*> CropIntensities(const Cells<const std::uint8_t>& intensities, const Rect2d<int>& rect,
                                  void* allocator)
{
    Zo::Object<void*> croppedIntensity = NewLayer(xxq8u_type, rect, allocator);
    const Cells<std::uint8_t> cropped = CellsOf<std::uint8_t>(croppedIntensity);
    for (std::size_t row = 0; row < cropped.rows; ++row)
    {
        ZVL_CHECK(kFunction,
                  qMemCopy(cropped.Row(row), intensities.Row(static_cast<std::size_t>(rect.y) + row) + rect.x,
                           cropped.columns));
    }
    return croppedIntensity;
}

} // namespace

void CropSurfaceFromROI(const Surface& surface, Rect2d<int> rect, Zo::Object<void*> mask, Surface& cropped,
                        void* allocator)
{
    // The result may replace the source, whose layers are needed to the end.
    const Zo::Object<void*> heights(surface.layers.empty() ? Zo::Object<void*>() : surface.layers[0]);
    const Zo::Object<void*> second(surface.layers.size() < 2 ? Zo::Object<void*>() : surface.layers[1]);
    const Cells<std::uint8_t> selection = CellsOf<std::uint8_t>(mask);
    ZVL_REQUIRE(kFunction, selection.HasSizeOf(rect));
    ZVL_REQUIRE(kFunction, heights.Get() != nullptr && xqCastClass_ObjectIs(heights, xxqArray2_type));
    const ArraySize size = {qArray2_Length(heights, 0), qArray2_Length(heights, 1)};
    const Cells<const std::uint8_t> intensities = CellsOf<const std::uint8_t>(second);
    const bool isEmpty = rect.width < 1 || rect.height < 1;
    const bool isCropped = !isEmpty && qArray2_Type(heights) == xxq16s_type;
    ZVL_REQUIRE(kFunction, !isCropped || size.Contains(rect));
    ZVL_REQUIRE(kFunction, !isCropped || !intensities.present ||
                               (intensities.rows == size.rows && intensities.columns == size.columns));

    const qPoint3d64f offset = {rect.x * surface.scale.x + surface.offset.x,
                                rect.y * surface.scale.y + surface.offset.y, surface.offset.z};
    cropped.scale = surface.scale;
    cropped.offset = offset;
    cropped.layers.clear();
    if (isEmpty)
    {
        ZVL_THROW(kFunction, STATUS_OK);
    }
    if (!isCropped)
    {
        ZVL_THROW(kFunction, STATUS_NOT_SUPPORTED);
    }
    cropped.layers.push_back(CropHeights(heights, rect, selection, allocator));
    if (intensities.present)
    {
        cropped.layers.push_back(CropIntensities(intensities, rect, allocator));
    }
}

} // namespace Zvl
