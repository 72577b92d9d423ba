#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <string>

namespace Examples
{

/** Reads an ASCII grid: a header of `ncols`, `nrows`, `xllcorner` or `xllcenter`, `yllcorner` or `yllcenter`, `cellsize`
 *  (or `dx` and `dy` for cells that are not square) and perhaps `NODATA_value`, then the heights, the row of the largest y
 *  first. Lengths are taken as millimetres. Heights of the value NODATA_value or "nan" are missing.
 *  @throws InputError when the file is no such grid */
Zvl::Surface ReadAsciiGrid(const std::string& path);

/** Writes the heights of a map as ASCII grid, with digits enough to find the counts again.
 *  @throws InputError when the file cannot be written */
void WriteAsciiGrid(const std::string& path, const Zvl::Surface& map);

} // namespace Examples
