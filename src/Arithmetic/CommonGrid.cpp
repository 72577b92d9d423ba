#include "Arithmetic/CommonGrid.h"

#include "Common/Check.h"
#include "Common/Rounding.h"

namespace Zvl
{

namespace
{

constexpr char kFunction[] = "Zvl::Arithmetics::getBoundaries";

/** A range of world positions along an axis. */
struct Extent
{
    double start;
    double end;
};

Extent ExtentOf(double offset, double scale, std::uint64_t count)
{
    return {offset, offset + static_cast<double>(count) * scale};
}

Extent CommonExtent(ArithmeticLogic logic, const Extent& a, const Extent& b)
{
    switch (logic)
    {
    case ArithmeticLogic::Intersection:
        return {std::max(a.start, b.start), std::min(a.end, b.end)};
    case ArithmeticLogic::Union:
        return {std::min(a.start, b.start), std::max(a.end, b.end)};
    }
    return {a.start, a.start};
}

/** @p distance in cells, to the nearest whole one. */
double CellsIn(double distance, double scale)
{
    const double cells = RoundHalfAway(distance / scale);
    ZVL_REQUIRE(kFunction, std::isfinite(cells));
    return cells;
}

/** @p cells as an unsigned number: a negative one wraps round, to a size that no array can have. */
std::uint64_t CountOf(double cells)
{
    constexpr double limit = 4611686018427387904.0; // 2^62: no array can have as many cells of two bytes
    return static_cast<std::uint64_t>(static_cast<std::int64_t>(std::clamp(cells, -limit, limit)));
}

/** The low 16 bits of the whole number @p cells, however large it is. */
std::int16_t LowBitsOf(double cells)
{
    return static_cast<std::int16_t>(static_cast<std::int32_t>(std::fmod(cells, 65536.0)));
}

GridAxis CommonAxis(ArithmeticLogic logic, double scale, const Extent& extent0, const Extent& extent1)
{
    const Extent common = CommonExtent(logic, extent0, extent1);
    return {common.start, CountOf(CellsIn(common.end - common.start, scale)),
            LowBitsOf(CellsIn(common.start - extent0.start, scale)),
            LowBitsOf(CellsIn(common.start - extent1.start, scale))};
}

} // namespace

CommonGrid getBoundaries(ArithmeticLogic logic, const qPoint3d64f& scale, const qPoint3d64f& offset0,
                         const GridSize& size0, const qPoint3d64f& offset1, const GridSize& size1)
{
    return {
        CommonAxis(logic, scale.x, ExtentOf(offset0.x, scale.x, size0.columns),
                   ExtentOf(offset1.x, scale.x, size1.columns)),
        CommonAxis(logic, scale.y, ExtentOf(offset0.y, scale.y, size0.rows), ExtentOf(offset1.y, scale.y, size1.rows))};
}

std::size_t ReachableOf(std::uint64_t count)
{
    return static_cast<std::size_t>(std::max<std::int16_t>(static_cast<std::int16_t>(count), 0));
}

} // namespace Zvl
