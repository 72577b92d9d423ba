#include "support/PngFile.h"

#include "support/InputError.h"

#include <opencv2/imgcodecs.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <fstream>
#include <iterator>
#include <vector>

namespace Examples
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

constexpr std::array<std::uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr std::size_t kChunkFrame = 12; // length, name and checksum around the data of a chunk
constexpr std::size_t kHeaderEnd = kSignature.size() + kChunkFrame + 13;
constexpr std::uint64_t kMostCells = std::uint64_t{1} << 28;

std::uint32_t BigEndian(const Bytes& bytes, std::size_t position)
{
    return static_cast<std::uint32_t>(bytes[position] << 24U | bytes[position + 1] << 16U | bytes[position + 2] << 8U |
                                      bytes[position + 3]);
}

/** The checksum of PNG chunks: CRC-32 as in ISO 3309. */
std::uint32_t Checksum(const Bytes& bytes, std::size_t begin, std::size_t end)
{
    std::uint32_t sum = 0xffffffffU;
    for (std::size_t position = begin; position < end; ++position)
    {
        sum ^= bytes[position];
        for (int bit = 0; bit < 8; ++bit)
        {
            sum = (sum >> 1U) ^ ((sum & 1U) != 0 ? 0xedb88320U : 0U);
        }
    }
    return ~sum;
}

/** Walks the chunks up to the end mark. The decoder would report damage on the error stream by itself, in lines that
 *  mean little to a user; so it only gets sound files. */
bool IsSoundPng(const Bytes& bytes)
{
    if (bytes.size() < kHeaderEnd || !std::equal(kSignature.begin(), kSignature.end(), bytes.begin()))
    {
        return false;
    }
    std::size_t chunk = kSignature.size();
    while (bytes.size() - chunk >= kChunkFrame)
    {
        const std::size_t length = BigEndian(bytes, chunk);
        if (length > bytes.size() - chunk - kChunkFrame)
        {
            return false;
        }
        const std::size_t dataEnd = chunk + 8 + length;
        if (BigEndian(bytes, dataEnd) != Checksum(bytes, chunk + 4, dataEnd))
        {
            return false;
        }
        if (std::equal(bytes.begin() + static_cast<std::ptrdiff_t>(chunk) + 4,
                       bytes.begin() + static_cast<std::ptrdiff_t>(chunk) + 8, "IEND"))
        {
            return true;
        }
        chunk = dataEnd + 4;
    }
    return false;
}

void RequireGrey16(const Bytes& bytes, const std::string& path)
{
    const int bitDepth = bytes[24];
    const int colourType = bytes[25];
    if (bitDepth != 16 || colourType != 0)
    {
        throw InputError(path + ": must be a grey PNG of 16 bits, but has " +
                         (colourType == 0 ? std::to_string(bitDepth) + " bits" : "colours or transparency"));
    }
    const std::uint64_t cells = std::uint64_t{BigEndian(bytes, 16)} * BigEndian(bytes, 20);
    if (cells == 0 || cells > kMostCells)
    {
        throw InputError(path + ": has " + std::to_string(cells) + " cells; 1 to " + std::to_string(kMostCells) +
                         " can be read");
    }
}

} // namespace

cv::Mat ReadGrey16Png(const std::string& path)
{
    std::ifstream file(path, std::ios::binary);
    const Bytes bytes{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
    if (!file)
    {
        throw InputError(path + ": cannot be read");
    }
    if (!IsSoundPng(bytes))
    {
        throw InputError(path + ": is not a PNG file, or is damaged");
    }
    RequireGrey16(bytes, path);
    cv::Mat picture = cv::imdecode(bytes, cv::IMREAD_UNCHANGED);
    if (picture.type() != CV_16UC1)
    {
        throw InputError(path + ": cannot be decoded as a grey PNG of 16 bits");
    }
    return picture;
}

void WritePng(const std::string& path, const cv::Mat& picture)
{
    Bytes bytes;
    cv::imencode(".png", picture, bytes);
    std::ofstream file(path, std::ios::binary);
    file.write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
    {
        throw InputError(path + ": cannot be written");
    }
}

} // namespace Examples
