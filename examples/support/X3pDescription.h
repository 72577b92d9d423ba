#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace Examples
{

/** One axis of an X3P file: a value is `offset + number * increment`, in metres. */
struct X3pAxis
{
    bool isIncremental = true;
    char dataType = 'D'; ///< I and L: integers of 16 and 32 bits; F and D: floating point of 32 and 64 bits
    double increment = 1.0;
    double offset = 0.0;
};

/** What the main.xml of an X3P file says. */
struct X3pDescription
{
    X3pAxis x;
    X3pAxis y;
    X3pAxis z;
    std::uint64_t columns = 0;
    std::uint64_t rows = 0;

    std::string pointFile; ///< name of the heights in the archive; empty when they stand in #data
    std::string pointChecksum;
    std::string validFile; ///< name of the valid points; may be empty
    std::string validChecksum;
    std::vector<std::string> data; ///< heights as text, where they stand in main.xml
};

/** @throws InputError when the text is no description of a surface on a grid */
X3pDescription ParseX3p(const std::string& xml, const std::string& path);

/** The main.xml of a description whose data are files of the archive. */
std::string X3pText(const X3pDescription& description);

} // namespace Examples
