#pragma once

#include <cstddef>
#include <string>

namespace ZdkPython
{

/** The docstring of @p name, a qualified C++ name: the comment of the public header in Python's terms, with @p ending
 *  behind it for what is different here. Of overloads, @p index tells which one, in the order of the header. An unknown
 *  name throws, so that the module cannot be imported with a hole in its documentation.
 *
 *  The text lives as long as the process. */
const char* Documentation(const std::string& name, std::size_t index = 0, const char* ending = nullptr);

} // namespace ZdkPython
