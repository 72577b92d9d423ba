#pragma once

#include <bit>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Examples
{

/** The types of the numbers in a PLY file. */
enum class PlyType
{
    Int8,
    UInt8,
    Int16,
    UInt16,
    Int32,
    UInt32,
    Float32,
    Float64
};

struct PlyProperty
{
    std::string name;
    PlyType type;
    std::optional<PlyType> length; ///< of a list: the type of the number before its items
};

struct PlyElement
{
    std::string name;
    std::uint64_t count;
    std::vector<PlyProperty> properties;
};

/** What a PLY file says about itself before its data. */
struct PlyHeader
{
    std::optional<std::endian> order; ///< of binary data; nothing for text
    std::vector<PlyElement> elements;
    std::string_view data;
};

/** @param bytes of the file; the result refers to them
 *  @throws InputError when they do not begin with a PLY header */
PlyHeader ReadPlyHeader(std::string_view bytes, const std::string& path);

} // namespace Examples
