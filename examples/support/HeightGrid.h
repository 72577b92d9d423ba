#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace Examples
{

constexpr std::uint64_t kMostCells = std::uint64_t{1} << 27; ///< of a map from a file; twice a gigabyte of heights

constexpr double kMissingHeight = std::numeric_limits<double>::quiet_NaN();

/** Heights of the cells of a map in millimetres, as files hold them that know no counts. */
struct HeightGrid
{
    std::size_t rows;
    std::size_t columns;
    qPoint64f scale;             ///< size of a cell in mm
    qPoint64f offset;            ///< place of the first cell in mm
    std::vector<double> heights; ///< row after row; NaN where missing
};

/** The product of two sizes of a map.
 *  @throws InputError when the map has no cell, or more than can be read */
std::size_t CellCount(std::uint64_t rows, std::uint64_t columns, const std::string& path);

/** Makes a map of 16-bit counts. Heights that are whole steps, as sensors deliver them, and that 16 bits hold, keep these
 *  steps. Otherwise a step is 1/65534 of the range of the heights, and of 1 nm when all are the same.
 *  @param path names the file in errors
 *  @throws InputError when all heights are missing, one is infinite, or the mapping is out of range */
Zvl::Surface ToSurface(const HeightGrid& grid, const std::string& path);

/** The mapping of a map, as all files must have it: cells and counts from 1e-12 to 1e6, offsets up to 1e9.
 *  @throws InputError otherwise */
void RequireMapping(const qPoint3d64f& scale, const qPoint3d64f& offset, const std::string& path);

} // namespace Examples
