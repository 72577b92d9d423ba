#include "support/X3pFile.h"

#include "support/ByteOrder.h"
#include "support/HeightGrid.h"
#include "support/HeightMap.h"
#include "support/InputError.h"
#include "support/Tokens.h"
#include "support/X3pDescription.h"
#include "support/ZipFile.h"

#include <algorithm>
#include <array>
#include <md5.h>
#include <string_view>

namespace Examples
{
namespace
{

constexpr double kMillimetres = 1000.0; // in a metre
constexpr const char* kMainFile = "main.xml";

std::string Checksum(const std::string& bytes)
{
    std::array<char, MD5_DIGEST_STRING_LENGTH> text{};
    MD5Data(reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size(), text.data());
    return text.data();
}

bool IsSameChecksum(const std::string& told, const std::string& found)
{
    return std::equal(told.begin(), told.end(), found.begin(), found.end(),
                      [](char a, char b) { return (a >= 'A' && a <= 'F' ? a + ('a' - 'A') : a) == b; });
}

/** Reads a file of the archive that must have so many bytes. */
std::string ReadMember(const ZipFile& archive, const std::string& name, const std::string& checksum, std::uint64_t size,
                       const std::string& path)
{
    std::string bytes = archive.Read(name, size);
    if (bytes.size() != size)
    {
        throw InputError(path + ": " + name + " has " + std::to_string(bytes.size()) + " bytes, not the " +
                         std::to_string(size) + " of its cells");
    }
    if (!checksum.empty() && !IsSameChecksum(checksum, Checksum(bytes)))
    {
        throw InputError(path + ": " + name + " does not have the MD5 checksum that main.xml tells");
    }
    return bytes;
}

std::uint64_t SizeOf(char dataType)
{
    return dataType == 'I' ? 2 : dataType == 'D' ? 8 : 4;
}

double Load(std::string_view bytes, char dataType)
{
    switch (dataType)
    {
    case 'I':
        return LoadNumber<std::int16_t>(bytes, std::endian::little);
    case 'L':
        return LoadNumber<std::int32_t>(bytes, std::endian::little);
    case 'F':
        return LoadNumber<float>(bytes, std::endian::little);
    default:
        return LoadNumber<double>(bytes, std::endian::little);
    }
}

std::vector<double> ReadNumbers(const ZipFile& archive, const X3pDescription& surface, const std::string& path)
{
    const std::uint64_t cells = surface.rows * surface.columns;
    const std::uint64_t size = SizeOf(surface.z.dataType);
    const std::string bytes = ReadMember(archive, surface.pointFile, surface.pointChecksum, cells * size, path);
    std::vector<double> numbers(cells);
    for (std::size_t cell = 0; cell < cells; ++cell)
    {
        numbers[cell] = Load(std::string_view(bytes).substr(cell * size), surface.z.dataType);
    }
    return numbers;
}

/** The numbers of a list; an empty datum is a missing height. */
std::vector<double> ParseNumbers(const X3pDescription& surface, const std::string& path)
{
    if (surface.data.size() != surface.rows * surface.columns)
    {
        throw InputError(path + ": holds " + std::to_string(surface.data.size()) + " of " +
                         std::to_string(surface.rows * surface.columns) + " heights");
    }
    std::vector<double> numbers;
    numbers.reserve(surface.data.size());
    for (const std::string& datum : surface.data)
    {
        const std::optional<double> number = datum.empty() ? kMissingHeight : ParseNumber(datum);
        if (!number)
        {
            throw InputError(path + ": a datum must be a number, but is " + Quoted(datum));
        }
        numbers.push_back(*number);
    }
    return numbers;
}

/** Clears the cells whose bit is not set; the first cell has the lowest bit of the first byte. */
void ClearInvalid(const std::string& bits, std::vector<double>* heights)
{
    for (std::size_t cell = 0; cell < heights->size(); ++cell)
    {
        if ((static_cast<unsigned char>(bits[cell / 8]) >> (cell % 8) & 1U) == 0)
        {
            (*heights)[cell] = kMissingHeight;
        }
    }
}

/** Floating-point numbers are metres; integers count increments. */
void ScaleHeights(const X3pAxis& axis, std::vector<double>* heights)
{
    const bool isCount = axis.dataType == 'I' || axis.dataType == 'L';
    const double factor = isCount ? axis.increment : 1.0;
    std::transform(heights->begin(), heights->end(), heights->begin(),
                   [&](double number) { return kMillimetres * (axis.offset + factor * number); });
}

X3pDescription Describe(const Zvl::Surface& map)
{
    X3pDescription result;
    result.x = {true, 'D', map.scale.x / kMillimetres, map.offset.x / kMillimetres};
    result.y = {true, 'D', map.scale.y / kMillimetres, map.offset.y / kMillimetres};
    result.z = {false, 'I', map.scale.z / kMillimetres, map.offset.z / kMillimetres};
    result.columns = Columns(map);
    result.rows = Rows(map);
    result.pointFile = "bindata/data.bin";
    result.validFile = "bindata/valid.bin";
    return result;
}

} // namespace

Zvl::Surface ReadX3p(const std::string& path)
{
    constexpr std::uint64_t kMostText = std::uint64_t{1} << 28;
    const ZipFile archive(path);
    const X3pDescription surface = ParseX3p(archive.Read(kMainFile, kMostText), path);
    HeightGrid grid{};
    grid.rows = surface.rows;
    grid.columns = surface.columns;
    grid.scale = {kMillimetres * surface.x.increment, kMillimetres * surface.y.increment};
    grid.offset = {kMillimetres * surface.x.offset, kMillimetres * surface.y.offset};
    grid.heights = surface.pointFile.empty() ? ParseNumbers(surface, path) : ReadNumbers(archive, surface, path);
    if (!surface.validFile.empty())
    {
        const std::uint64_t size = (surface.rows * surface.columns + 7) / 8;
        ClearInvalid(ReadMember(archive, surface.validFile, surface.validChecksum, size, path), &grid.heights);
    }
    ScaleHeights(surface.z, &grid.heights);
    return ToSurface(grid, path);
}

void WriteX3p(const std::string& path, const Zvl::Surface& map)
{
    std::string points;
    std::string valid((Rows(map) * Columns(map) + 7) / 8, '\0');
    std::size_t cell = 0;
    for (std::size_t row = 0; row < Rows(map); ++row)
    {
        for (std::size_t column = 0; column < Columns(map); ++column, ++cell)
        {
            const short count = HeightRow(map, row)[column];
            AppendLittleEndian(count, &points);
            const unsigned bit = IsMissing(count) ? 0U : 1U << (cell % 8);
            valid[cell / 8] = static_cast<char>(static_cast<unsigned char>(valid[cell / 8]) | bit);
        }
    }
    X3pDescription surface = Describe(map);
    surface.pointChecksum = Checksum(points);
    surface.validChecksum = Checksum(valid);
    const std::string text = X3pText(surface);
    WriteZip(path, {{kMainFile, text},
                    {surface.pointFile, points},
                    {surface.validFile, valid},
                    {"md5checksum.hex", Checksum(text) + " *" + kMainFile + "\n"}});
}

} // namespace Examples
