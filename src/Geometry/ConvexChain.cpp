#include "Geometry/ConvexChain.h"

#include "Common/Check.h"

#include <cstdint>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::AddConvex";

// Differences of 32-bit coordinates take 33 bits, and their products more than 64.
__extension__ using Wide = __int128;

/** @p to minus @p from. */
std::int64_t Difference(std::int32_t from, std::int32_t to)
{
    return std::int64_t{to} - from;
}

/** True when @p middle stays: it lies strictly outside of the line from @p before to @p after. */
bool IsConvex(const qPoint32s& before, const qPoint32s& middle, const qPoint32s& after, bool left)
{
    const std::int64_t outward = left ? -1 : 1;
    const std::int64_t middleX = outward * Difference(before.x, middle.x);
    const std::int64_t afterX = outward * Difference(before.x, after.x);
    const std::int64_t middleY = Difference(before.y, middle.y);
    const std::int64_t afterY = Difference(before.y, after.y);
    return Wide{middleY} * afterX < Wide{afterY} * middleX;
}

} // namespace

void AddConvex(Zo::Object<void*> chain, const qPoint32s* point, int left)
{
    ZVL_REQUIRE(kFunction, IsChain(chain) && point != nullptr);
    const qPoint32s added = *point;
    const std::span<const qPoint32s> points = PointsOf(chain);
    std::size_t kept = points.size();
    while (kept >= 2 && !IsConvex(points[kept - 2], points[kept - 1], added, left != 0))
    {
        --kept;
    }
    if (kept < points.size())
    {
        ZVL_CHECK(kFunction, qArrayList_Resize(chain, kept));
    }
    ZVL_CHECK(kFunction, qArrayList_Add(chain, &added));
}

} // namespace Zvl
