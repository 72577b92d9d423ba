#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <string>

namespace Examples
{

/** How the cells of a map and its counts lie in the world, in millimetres. */
struct Mapping
{
    qPoint3d64f scale;
    qPoint3d64f offset;
};

/** Reads a JSON object with "scale" and "offset", arrays of three numbers; other keys are not read.
 *  @throws InputError when the file holds no such object, or a number is out of range */
Mapping ReadMapping(const std::string& path);

/** @throws InputError when the file cannot be written */
void WriteMapping(const std::string& path, const Mapping& mapping);

} // namespace Examples
