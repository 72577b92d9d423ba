#include "support/PngFile.h"

#include "support/FileBytes.h"
#include "support/HeightGrid.h"
#include "support/InputError.h"

#include <opencv2/imgcodecs.hpp>

#include <algorithm>
#include <array>
#include <cstdint>
#include <optional>
#include <png.h>
#include <string_view>
#include <vector>

namespace Examples
{
namespace
{

using Bytes = std::vector<std::uint8_t>;

constexpr std::array<std::uint8_t, 8> kSignature = {0x89, 'P', 'N', 'G', '\r', '\n', 0x1a, '\n'};
constexpr std::size_t kChunkFrame = 12; // length, name and checksum around the data of a chunk
constexpr std::size_t kHeaderEnd = kSignature.size() + kChunkFrame + 13;

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

/** Whether a chunk is one that cells cannot be decoded without. */
bool IsNeeded(std::string_view name)
{
    return name == "IHDR" || name == "IDAT" || name == "IEND";
}

/** The chunks of a grey PNG that its cells are decoded from, or nothing when a chunk is damaged. The others may tell how a
 *  picture is to look on a screen, by which heights would change. */
std::optional<Bytes> NeededChunks(const Bytes& bytes)
{
    if (bytes.size() < kHeaderEnd || !std::equal(kSignature.begin(), kSignature.end(), bytes.begin()))
    {
        return std::nullopt;
    }
    Bytes needed(kSignature.begin(), kSignature.end());
    std::size_t chunk = kSignature.size();
    while (bytes.size() - chunk >= kChunkFrame)
    {
        const std::size_t length = BigEndian(bytes, chunk);
        if (length > bytes.size() - chunk - kChunkFrame)
        {
            return std::nullopt;
        }
        const std::size_t dataEnd = chunk + 8 + length;
        if (BigEndian(bytes, dataEnd) != Checksum(bytes, chunk + 4, dataEnd))
        {
            return std::nullopt;
        }
        const auto at = [&](std::size_t place) { return bytes.begin() + static_cast<std::ptrdiff_t>(place); };
        const std::string name(at(chunk + 4), at(chunk + 8));
        if (IsNeeded(name))
        {
            needed.insert(needed.end(), at(chunk), at(dataEnd + 4));
        }
        if (name == "IEND")
        {
            return needed;
        }
        chunk = dataEnd + 4;
    }
    return std::nullopt;
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
    CellCount(BigEndian(bytes, 20), BigEndian(bytes, 16), path);
}

cv::Mat Decode(const Bytes& bytes, const std::string& path)
{
    png_image image{};
    image.version = PNG_IMAGE_VERSION;
    cv::Mat picture;
    bool isDecoded = png_image_begin_read_from_memory(&image, bytes.data(), bytes.size()) != 0;
    if (isDecoded)
    {
        image.format = PNG_FORMAT_LINEAR_Y; // grey of 16 bits, which are taken as they are
        picture.create(static_cast<int>(image.height), static_cast<int>(image.width), CV_16UC1);
        isDecoded = png_image_finish_read(&image, nullptr, picture.data, 0, nullptr) != 0;
    }
    png_image_free(&image);
    if (!isDecoded)
    {
        throw InputError(path + ": is a damaged PNG file: " + image.message);
    }
    return picture;
}

} // namespace

cv::Mat ReadGrey16Png(const std::string& path)
{
    const std::string file = ReadBytes(path);
    const Bytes bytes(file.begin(), file.end());
    const std::optional<Bytes> chunks = NeededChunks(bytes);
    if (!chunks)
    {
        throw InputError(path + ": is not a PNG file, or is damaged");
    }
    RequireGrey16(bytes, path);
    return Decode(*chunks, path);
}

void WritePng(const std::string& path, const cv::Mat& picture)
{
    Bytes bytes;
    cv::imencode(".png", picture, bytes);
    WriteBytes(path, {bytes.begin(), bytes.end()});
}

} // namespace Examples
