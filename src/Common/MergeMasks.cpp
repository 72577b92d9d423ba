#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/MergeRows.h"
#include "Common/NewMask.h"
#include "Common/Unite.h"

namespace Zvl
{

namespace
{

constexpr char kFunction[] = "Zvl::MergeMasks";

bool HasShapeOf(const Zo::Object<void*>& mask, const Rect2d<int>& rect)
{
    if (mask.Get() == nullptr)
    {
        return rect.width == 0 && rect.height == 0;
    }
    return CellsOf<const std::uint8_t>(mask).HasSizeOf(rect);
}

/** True when @p part lies in @p whole: a union that is larger than 32 bits can tell was cut. */
bool Holds(const Rect2d<int>& whole, const Rect2d<int>& part)
{
    const bool empty = part.width < 1 || part.height < 1;
    return empty || (std::int64_t{part.x} + part.width <= std::int64_t{whole.x} + whole.width &&
                     std::int64_t{part.y} + part.height <= std::int64_t{whole.y} + whole.height);
}

} // namespace

void MergeMasks(const std::vector<Zo::Object<void*>>& masks, const std::vector<Rect2d<int>>& rects, qArray2* merged,
                Rect2d<int>* mergedRect, void* allocator)
{
    ZVL_REQUIRE(kFunction, masks.size() == rects.size());
    Rect2d<int> tmpMergedBBox;
    for (std::size_t i = 0; i < masks.size(); ++i)
    {
        ZVL_REQUIRE(kFunction, HasShapeOf(masks[i], rects[i]));
        Unite(tmpMergedBBox, rects[i]);
    }
    for (const Rect2d<int>& rect : rects)
    {
        ZVL_REQUIRE(kFunction, Holds(tmpMergedBBox, rect));
    }
    if (masks.empty())
    {
        return;
    }
    if (mergedRect != nullptr)
    {
        *mergedRect = tmpMergedBBox;
    }
    if (merged == nullptr)
    {
        return;
    }
    // The slot may be that of one of the masks: they are held until the union is made.
    const std::vector<Zo::Object<void*>> sources = masks; // NOLINT(performance-unnecessary-copy-initialization)
    DropHeld(kFunction, *merged);
    Zo::Object<void*> made = NewMask(kFunction, tmpMergedBBox, allocator);
    for (std::size_t i = 0; i < sources.size(); ++i)
    {
        if (sources[i].Get() != nullptr)
        {
            MergeReceiver receiver(sources[i], rects[i], tmpMergedBBox);
            qParallel_Execute(MergeMaskRows, &receiver, made);
        }
    }
    *merged = made.Detach();
}

} // namespace Zvl
