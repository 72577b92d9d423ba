#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <string>

namespace Examples
{

/** Reads a PLY point cloud, ascii or binary of either byte order, whose vertices have x, y and z in millimetres and lie on
 *  a grid. Vertices whose x or y is not finite are left out, those whose z is not are missing heights; other elements and
 *  properties are not read.
 *  @throws InputError when the file is no such cloud */
Zvl::Surface ReadPly(const std::string& path);

/** Writes the cells of a map that have a height as vertices, binary, lowest byte first, of double precision.
 *  @throws InputError when the file cannot be written */
void WritePly(const std::string& path, const Zvl::Surface& map);

} // namespace Examples
