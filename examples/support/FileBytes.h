#pragma once

#include <string>

namespace Examples
{

/** All bytes of a file.
 *  @throws InputError when it cannot be read, is no regular file, or is larger than 4 GiB */
std::string ReadBytes(const std::string& path);

/** @throws InputError when the file cannot be written */
void WriteBytes(const std::string& path, const std::string& bytes);

} // namespace Examples
