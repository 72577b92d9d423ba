#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cstddef>
#include <string>

namespace Examples
{

/** Makes a surface whose layers hold undefined cells. */
Zvl::Surface MakeSurface(std::size_t rows, std::size_t columns, const qPoint3d64f& scale, const qPoint3d64f& offset,
                         bool withIntensity);

/** Reads a height map: a grey PNG of 16 bits (stored value = height count + 32768, 0 = missing) and a JSON object with
 *  "scale" and "offset", arrays of three numbers.
 *  @throws InputError when a file cannot be read, is no such PNG or JSON, or when all heights are missing */
Zvl::Surface LoadHeightMap(const std::string& pngPath, const std::string& jsonPath);

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
