#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <string>

namespace Examples
{

/** Reads a surface in the X3P format of ISO 25178-72: a ZIP archive of `main.xml` and mostly a binary file of heights. The
 *  axes x and y must be incremental, and there must be one layer. Heights are of any of the four types; those of integer
 *  types count increments of the z axis. NaN, and what the file of valid points or an empty datum marks, is missing.
 *  Metres become millimetres.
 *  @throws InputError when the file is no such surface, or its data do not have the checksum that it tells */
Zvl::Surface ReadX3p(const std::string& path);

/** Writes the counts of a map as 16-bit integers, and which of them are valid.
 *  @throws InputError when the file cannot be written */
void WriteX3p(const std::string& path, const Zvl::Surface& map);

} // namespace Examples
