#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/MaskKernels.h"

#include <algorithm>

namespace Zvl
{

namespace
{

constexpr char kFunction[] = "Zvl::ApplyMask";

/** The layers that are read. */
struct InputLayers
{
    Cells<const std::int16_t> heights;
    Cells<const std::uint8_t> intensities;
};

/** The typed layers of @p in, whose intensities are not present when it has none. */
InputLayers LayersOf(const Surface& in)
{
    const InputLayers layers = {CellsOf<const std::int16_t>(LayerOf(in, 0)),
                                CellsOf<const std::uint8_t>(LayerOf(in, 1))};
    ZVL_REQUIRE(kFunction, layers.heights.present);
    if (LayerOf(in, 1) != nullptr)
    {
        ZVL_REQUIRE(kFunction, layers.intensities.present && layers.intensities.rows == layers.heights.rows &&
                                   layers.intensities.columns == layers.heights.columns);
    }
    return layers;
}

/** True when nobody who still reads @p layer would see it overwritten. */
bool IsFree(void* layer, const Surface& in, void* mask)
{
    return layer != mask && std::none_of(in.layers.begin(), in.layers.end(),
                                         [&](const Zo::Object<void*>& used) { return used.Get() == layer; });
}

/** Makes layer @p index of @p out an array of `T` as large as @p box: the one that is there, if it is free and fits, or a
 *  new one. */
template <typename T>
Cells<T> ProvideLayer(Surface& out, std::size_t index, const Rect2d<int>& box, const Surface& in, void* mask,
                      void* allocator)
{
    void* present = LayerOf(out, index);
    const Cells<T> cells = CellsOf<T>(present);
    if (cells.HasSizeOf(box) && IsFree(present, in, mask))
    {
        return cells;
    }
    Zo::Object<void*> made;
    ZVL_CHECK(kFunction, qArray2_Construct(made.Slot(), CellType<T>(), static_cast<std::size_t>(box.height),
                                           static_cast<std::size_t>(box.width), allocator));
    if (index < out.layers.size())
    {
        out.layers[index] = std::move(made);
    }
    else
    {
        out.layers.push_back(std::move(made));
    }
    return CellsOf<T>(out.layers[index]);
}

/** Copies the window of @p in that @p box tells to @p out, where @p mask selects, and stores @p missing elsewhere. */
template <typename T>
void CopyWindow(const Cells<const T>& in, const Rect2d<int>& box, const Cells<const std::uint8_t>& mask, T missing,
                const Cells<T>& out)
{
    for (std::size_t row = 0; row < out.rows; ++row)
    {
        const std::size_t selectable = row < mask.rows ? std::min(mask.columns, out.columns) : 0;
        if (selectable != 0)
        {
            CopySelected(in.Row(static_cast<std::size_t>(box.y) + row) + box.x, mask.Row(row), out.Row(row),
                         selectable);
        }
        std::fill(out.Row(row) + selectable, out.Row(row) + out.columns, missing);
    }
}

} // namespace

// The region is held while it is applied: its owner may let go of it in an allocator's callback.
// NOLINTNEXTLINE(performance-unnecessary-value-param)
void ApplyMask(const Surface& in, std::shared_ptr<ROI> roi, Surface* out, void* allocator)
{
    if (roi == nullptr || in.layers.empty() || (in.layers.size() == 1 && in.layers[0].Get() == nullptr))
    {
        return;
    }
    ZVL_REQUIRE(kFunction, out != nullptr);
    const Surface source = in; // shares the layers, for the case that `out` is `in`
    const InputLayers layers = LayersOf(source);
    out->scale = source.scale;
    out->offset = source.offset;

    const Rect2d<int> box = roi->GetBoundingBox();
    const Zo::Object<void*> mask = roi->GetMask();
    if (box.width <= 0 || box.height <= 0)
    {
        return;
    }
    ZVL_REQUIRE(kFunction, layers.heights.Contains(box));
    out->offset.x = box.x * source.scale.x + source.offset.x;
    out->offset.y = box.y * source.scale.y + source.offset.y;

    // The box of a composition may have outlived its mask: the mask's own size says what it selects.
    const Cells<const std::uint8_t> selected = CellsOf<const std::uint8_t>(mask);
    const Cells<std::int16_t> heights = ProvideLayer<std::int16_t>(*out, 0, box, source, mask, allocator);
    if (layers.intensities.present)
    {
        const Cells<std::uint8_t> intensities = ProvideLayer<std::uint8_t>(*out, 1, box, source, mask, allocator);
        CopyWindow<std::uint8_t>(layers.intensities, box, selected, 0, intensities);
    }
    CopyWindow<std::int16_t>(layers.heights, box, selected, GetNull<short>(), heights);
}

} // namespace Zvl
