#include "support/PlyHeader.h"

#include "support/InputError.h"
#include "support/Tokens.h"

#include <array>
#include <charconv>
#include <utility>

namespace Examples
{
namespace
{

/** Reads the header line by line. */
class HeaderReader
{
public:
    HeaderReader(std::string_view bytes, const std::string& filePath) : rest(bytes), path(filePath) {}

    PlyHeader Read()
    {
        if (NextLine() != "ply")
        {
            Refuse("is not a PLY file");
        }
        ReadFormat();
        while (ReadStatement())
        {
        }
        header.data = rest;
        return std::move(header);
    }

private:
    [[noreturn]] void Refuse(const std::string& why) const { throw InputError(path + ": " + why); }

    /** The next line without its end, which may be that of another system. */
    std::string_view NextLine()
    {
        const std::size_t end = rest.find('\n');
        if (end == std::string_view::npos)
        {
            Refuse("is not a PLY file, or its header is cut off");
        }
        std::string_view line = rest.substr(0, end);
        rest.remove_prefix(end + 1);
        line.remove_suffix(!line.empty() && line.back() == '\r' ? 1 : 0);
        return line;
    }

    void ReadFormat()
    {
        const std::string_view line = NextLine();
        Tokens words(line);
        const std::string_view key = words.Next();
        const std::string_view format = words.Next();
        if (key != "format" || words.Next() != "1.0" ||
            (format != "ascii" && format != "binary_little_endian" && format != "binary_big_endian"))
        {
            Refuse("has a format of PLY that cannot be read: " + Quoted(line));
        }
        if (format != "ascii")
        {
            header.order = format == "binary_big_endian" ? std::endian::big : std::endian::little;
        }
    }

    /** False at the end of the header. */
    bool ReadStatement()
    {
        const std::string_view line = NextLine();
        Tokens words(line);
        const std::string_view key = words.Next();
        if (key == "element")
        {
            const std::string_view name = words.Next();
            header.elements.push_back({std::string(name), CountOf(words.Next()), {}});
        }
        else if (key == "property" && !header.elements.empty())
        {
            header.elements.back().properties.push_back(PropertyOf(&words));
        }
        else if (key != "comment" && key != "obj_info" && key != "end_header")
        {
            Refuse("has a header line that is not known: " + Quoted(line));
        }
        return key != "end_header";
    }

    std::uint64_t CountOf(std::string_view word) const
    {
        std::uint64_t count = 0;
        const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), count);
        if (error != std::errc() || end != word.data() + word.size())
        {
            Refuse("the count of an element must be a whole number, but is " + Quoted(word));
        }
        return count;
    }

    PlyProperty PropertyOf(Tokens* words) const
    {
        std::string_view type = words->Next();
        std::optional<PlyType> length;
        if (type == "list")
        {
            length = TypeOf(words->Next());
            type = words->Next();
        }
        const PlyType itemType = TypeOf(type);
        return {std::string(words->Next()), itemType, length};
    }

    PlyType TypeOf(std::string_view word) const
    {
        constexpr std::array<std::pair<std::string_view, PlyType>, 16> kTypes = {{
            {"char", PlyType::Int8},
            {"int8", PlyType::Int8},
            {"uchar", PlyType::UInt8},
            {"uint8", PlyType::UInt8},
            {"short", PlyType::Int16},
            {"int16", PlyType::Int16},
            {"ushort", PlyType::UInt16},
            {"uint16", PlyType::UInt16},
            {"int", PlyType::Int32},
            {"int32", PlyType::Int32},
            {"uint", PlyType::UInt32},
            {"uint32", PlyType::UInt32},
            {"float", PlyType::Float32},
            {"float32", PlyType::Float32},
            {"double", PlyType::Float64},
            {"float64", PlyType::Float64},
        }};
        for (const auto& [name, type] : kTypes)
        {
            if (name == word)
            {
                return type;
            }
        }
        Refuse("has a property of unknown type " + Quoted(word));
    }

    std::string_view rest;
    std::string path;
    PlyHeader header;
};

} // namespace

PlyHeader ReadPlyHeader(std::string_view bytes, const std::string& path)
{
    return HeaderReader(bytes, path).Read();
}

} // namespace Examples
