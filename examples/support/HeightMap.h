#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cstddef>

namespace Examples
{

/** Makes a surface whose layers hold undefined cells. */
Zvl::Surface MakeSurface(std::size_t rows, std::size_t columns, const qPoint3d64f& scale, const qPoint3d64f& offset,
                         bool withIntensity);

std::size_t Rows(const Zvl::Surface& surface);
std::size_t Columns(const Zvl::Surface& surface);

/** First height of a row. */
short* HeightRow(const Zvl::Surface& surface, std::size_t row);

/** First intensity of a row; the surface must have intensities. */
unsigned char* IntensityRow(const Zvl::Surface& surface, std::size_t row);

constexpr bool IsMissing(short height)
{
    return height == Zvl::GetNull<short>();
}

/** The world point of a cell. */
qPoint3d64f WorldPoint(const Zvl::Surface& surface, std::size_t row, std::size_t column);

} // namespace Examples
