#include "support/PlyFile.h"

#include "support/ByteOrder.h"
#include "support/FileBytes.h"
#include "support/HeightMap.h"
#include "support/InputError.h"
#include "support/PlyHeader.h"
#include "support/PointGrid.h"
#include "support/Tokens.h"

#include <algorithm>
#include <array>
#include <cmath>

namespace Examples
{
namespace
{

/** The numbers after the header, one after the other. */
class Numbers
{
public:
    Numbers(const PlyHeader& header, const std::string& filePath)
        : order(header.order), rest(header.data), words(header.data), path(filePath)
    {
    }

    double Next(PlyType type)
    {
        if (!order)
        {
            return NextWord();
        }
        switch (type)
        {
        case PlyType::Int8:
            return Load<std::int8_t>();
        case PlyType::UInt8:
            return Load<std::uint8_t>();
        case PlyType::Int16:
            return Load<std::int16_t>();
        case PlyType::UInt16:
            return Load<std::uint16_t>();
        case PlyType::Int32:
            return Load<std::int32_t>();
        case PlyType::UInt32:
            return Load<std::uint32_t>();
        case PlyType::Float32:
            return Load<float>();
        case PlyType::Float64:
            return Load<double>();
        }
        return 0.0; // not reached
    }

private:
    double NextWord()
    {
        const std::string_view word = words.Next();
        const std::optional<double> number = ParseNumber(word);
        if (!number)
        {
            throw InputError(path + (word.empty() ? ": is cut off within its points"
                                                  : ": a number is expected, but found " + Quoted(word)));
        }
        return *number;
    }

    template <typename T>
    double Load()
    {
        if (rest.size() < sizeof(T))
        {
            throw InputError(path + ": is cut off within its points");
        }
        const T number = LoadNumber<T>(rest, *order);
        rest.remove_prefix(sizeof(T));
        return number;
    }

    std::optional<std::endian> order;
    std::string_view rest;
    Tokens words;
    std::string path;
};

/** Passes over a list. */
void SkipList(const PlyProperty& property, Numbers* numbers)
{
    constexpr double kMost = 1e18; // far more than any file holds
    const double length = numbers->Next(*property.length);
    const std::uint64_t items = length > 0.0 ? static_cast<std::uint64_t>(std::min(length, kMost)) : 0;
    for (std::uint64_t item = 0; item < items; ++item)
    {
        numbers->Next(property.type);
    }
}

/** Reads the numbers of an element, and keeps those of the properties that are asked for. */
template <std::size_t N>
std::array<double, N> ReadElement(const PlyElement& element, const std::array<std::size_t, N>& kept, Numbers* numbers)
{
    std::array<double, N> result{};
    for (std::size_t index = 0; index < element.properties.size(); ++index)
    {
        const PlyProperty& property = element.properties[index];
        if (property.length)
        {
            SkipList(property, numbers);
            continue;
        }
        const double number = numbers->Next(property.type);
        for (std::size_t place = 0; place < N; ++place)
        {
            result[place] = kept[place] == index ? number : result[place];
        }
    }
    return result;
}

std::size_t PropertyIndex(const PlyElement& element, const std::string& name, const std::string& path)
{
    for (std::size_t index = 0; index < element.properties.size(); ++index)
    {
        if (element.properties[index].name == name && !element.properties[index].length)
        {
            return index;
        }
    }
    throw InputError(path + ": its vertices have no " + name);
}

std::vector<qPoint3d64f> ReadVertices(const PlyElement& element, Numbers* numbers, const std::string& path)
{
    const std::array<std::size_t, 3> coordinates = {
        PropertyIndex(element, "x", path), PropertyIndex(element, "y", path), PropertyIndex(element, "z", path)};
    CellCount(1, element.count, path);
    std::vector<qPoint3d64f> points;
    for (std::uint64_t vertex = 0; vertex < element.count; ++vertex)
    {
        const auto [x, y, z] = ReadElement(element, coordinates, numbers);
        if (std::isfinite(x) && std::isfinite(y))
        {
            points.push_back({x, y, std::isfinite(z) ? z : kMissingHeight});
        }
    }
    return points;
}

std::vector<qPoint3d64f> ReadPoints(const PlyHeader& header, const std::string& path)
{
    Numbers numbers(header, path);
    for (const PlyElement& element : header.elements)
    {
        if (element.name == "vertex")
        {
            return ReadVertices(element, &numbers, path);
        }
        for (std::uint64_t index = 0; index < element.count && !element.properties.empty(); ++index)
        {
            ReadElement<0>(element, {}, &numbers);
        }
    }
    throw InputError(path + ": holds no vertices");
}

} // namespace

Zvl::Surface ReadPly(const std::string& path)
{
    const std::string bytes = ReadBytes(path);
    return ToSurface(GridOfPoints(ReadPoints(ReadPlyHeader(bytes, path), path), path), path);
}

void WritePly(const std::string& path, const Zvl::Surface& map)
{
    std::string data;
    std::size_t count = 0;
    for (std::size_t row = 0; row < Rows(map); ++row)
    {
        for (std::size_t column = 0; column < Columns(map); ++column)
        {
            if (!IsMissing(HeightRow(map, row)[column]))
            {
                const qPoint3d64f point = WorldPoint(map, row, column);
                for (const double coordinate : {point.x, point.y, point.z})
                {
                    AppendLittleEndian(coordinate, &data);
                }
                ++count;
            }
        }
    }
    WriteBytes(path, "ply\nformat binary_little_endian 1.0\ncomment millimetres\nelement vertex " +
                         std::to_string(count) +
                         "\nproperty double x\nproperty double y\nproperty double z\nend_header\n" + data);
}

} // namespace Examples
