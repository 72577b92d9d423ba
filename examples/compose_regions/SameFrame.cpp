#include "compose_regions/SameFrame.h"

#include "support/HeightMap.h"
#include "support/InputError.h"

#include <cmath>

namespace ComposeRegions
{
namespace
{

bool IsSameSize(double left, double right)
{
    constexpr double kRounding = 1e-6;
    return std::abs(left - right) <= kRounding * right;
}

} // namespace

Zvl::Surface InFrameOf(const Zvl::Surface& reference, const Zvl::Surface& scan)
{
    if (!IsSameSize(scan.scale.x, reference.scale.x) || !IsSameSize(scan.scale.y, reference.scale.y))
    {
        throw Examples::InputError("the cells of the two scans are of different sizes");
    }
    const std::size_t rows = Examples::Rows(reference);
    const std::size_t columns = Examples::Columns(reference);
    const double firstColumn = std::round((reference.offset.x - scan.offset.x) / scan.scale.x);
    const double firstRow = std::round((reference.offset.y - scan.offset.y) / scan.scale.y);
    const auto isWithin = [](double index, std::size_t count)
    { return index >= 0.0 && index < static_cast<double>(count); };

    Zvl::Surface framed = Examples::MakeSurface(rows, columns, {reference.scale.x, reference.scale.y, scan.scale.z},
                                                {reference.offset.x, reference.offset.y, scan.offset.z}, false);
    for (std::size_t row = 0; row < rows; ++row)
    {
        const double fromRow = firstRow + static_cast<double>(row);
        const bool isRow = isWithin(fromRow, Examples::Rows(scan));
        const short* from = isRow ? Examples::HeightRow(scan, static_cast<std::size_t>(fromRow)) : nullptr;
        short* to = Examples::HeightRow(framed, row);
        for (std::size_t column = 0; column < columns; ++column)
        {
            const double fromColumn = firstColumn + static_cast<double>(column);
            const bool isCell = isRow && isWithin(fromColumn, Examples::Columns(scan));
            to[column] = isCell ? from[static_cast<std::size_t>(fromColumn)] : Zvl::GetNull<short>();
        }
    }
    return framed;
}

} // namespace ComposeRegions
