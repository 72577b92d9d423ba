#include "ScratchFolder.h"
#include "support/ByteOrder.h"

#include <opencv2/imgcodecs.hpp>

#include <map>
#include <zlib.h>

namespace ExampleFiles
{
namespace
{

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kMapping = R"({"scale": [0.5, 2, 0.001], "offset": [10, 0, 5], "unit": "mm"})";

/** A picture file whose scale and offset lie beside it. */
class PictureFile : public ScratchFolder
{
protected:
    PictureFile() { File("map.json", kMapping); }

    std::string Encoded(const std::string& extension, const cv::Mat& picture) const
    {
        std::string path = PathOf("map" + extension);
        cv::imwrite(path, picture);
        return path;
    }
};

template <typename T>
std::string Ordered(T number, bool isBig)
{
    std::string bytes;
    Examples::AppendLittleEndian(number, &bytes);
    return isBig ? std::string(bytes.rbegin(), bytes.rend()) : bytes;
}

/** The entries of a TIFF file of one strip, of which tests exchange some: tag and short value. */
using TiffTags = std::map<std::uint16_t, std::uint16_t>;

const TiffTags kGrey16 = {{256, 3}, {257, 2}, {258, 16}, {259, 1}, {262, 1}, {273, 8}, {277, 1}, {278, 2}, {279, 12}};

/** A TIFF of 12 bytes of cells, which come before the entries. */
std::string Tiff(const TiffTags& tags, bool isBig)
{
    std::string bytes = (isBig ? "MM" : "II") + Ordered<std::uint16_t>(42, isBig) + Ordered<std::uint32_t>(20, isBig);
    for (const int stored : {32768, 0, 32769, 33768, 1, 65535})
    {
        bytes += Ordered(static_cast<std::uint16_t>(stored), isBig);
    }
    bytes += Ordered(static_cast<std::uint16_t>(tags.size()), isBig);
    for (const auto& [tag, value] : tags)
    {
        bytes += Ordered(tag, isBig) + Ordered<std::uint16_t>(3, isBig) + Ordered<std::uint32_t>(1, isBig) +
                 Ordered(value, isBig) + Ordered<std::uint16_t>(0, isBig);
    }
    return bytes + Ordered<std::uint32_t>(0, isBig);
}

TiffTags With(std::uint16_t tag, std::uint16_t value)
{
    TiffTags tags = kGrey16;
    tags[tag] = value;
    return tags;
}

TEST_F(PictureFile, TiffIsReadInBothByteOrders)
{
    for (const bool isBig : {false, true})
    {
        const Zvl::Surface map = Read("map.tif", Tiff(kGrey16, isBig));
        ExpectPlane(map, {0.5, 2.0}, {10.0, 0.0}, 0.0);
        ExpectMap(map, {{5.0, kMissing, 5.001}, {6.0, 5.0 - 32.767, 5.0 + 32.767}}, 1e-9);
    }
}

TEST_F(PictureFile, TiffOfAnotherKindIsRefused)
{
    const auto refused = [&](const TiffTags& tags, const std::string& text)
    { ExpectRefusal(File("map.tif", Tiff(tags, false)), text); };
    refused(With(258, 8), "must be a grey TIFF of 16 bits without sign, but has 1 x 8 bits");
    refused(With(277, 3), "but has 3 x 16 bits");
    refused(With(339, 2), "must be a grey TIFF"); // with a sign
    refused(With(339, 3), "must be a grey TIFF"); // of half precision
    refused(With(262, 0), "must be a grey TIFF"); // white is 0
    refused(With(259, 7), "packed without loss"); // as photographs are
    TiffTags tiled = kGrey16;
    tiled.merge(TiffTags{{322, 16}, {323, 16}, {324, 8}, {325, 12}});
    refused(tiled, "in strips");
}

TEST_F(PictureFile, TiffThatDoesNotHoldItsCellsIsRefused)
{
    const auto refused = [&](const TiffTags& tags, const std::string& text)
    { ExpectRefusal(File("map.tif", Tiff(tags, false)), text); };
    refused(With(257, 60000), "is damaged");
    refused(With(256, 0), ": ");
    refused(With(273, 60000), "is damaged");
    refused(With(259, 5), "is damaged");
    refused(With(259, 8), "is damaged");
    TiffTags huge = With(256, 65535);
    huge[257] = 65535;
    refused(huge, "cells; 1 to");
    ExpectRefusal(File("map.tif", "II*"), "is not a TIFF file");
    ExpectRefusal(Encoded(".tif", cv::Mat::zeros(4, 4, CV_16UC1)), "all heights are missing");
}

TEST_F(PictureFile, PngOfAnotherKindIsRefused)
{
    ExpectRefusal(Encoded(".png", cv::Mat::ones(4, 4, CV_8UC1)), "16 bits, but has 8 bits");
    ExpectRefusal(Encoded(".png", cv::Mat::ones(4, 4, CV_16UC3)), "colours or transparency");
    ExpectRefusal(Encoded(".png", cv::Mat::zeros(4, 4, CV_16UC1)), "all heights are missing");
}

/** A PNG chunk around its data. */
std::string Chunk(const std::string& name, const std::string& data)
{
    const std::string sealed = name + data;
    const auto sum = static_cast<std::uint32_t>(
        crc32(0, reinterpret_cast<const unsigned char*>(sealed.data()), static_cast<unsigned>(sealed.size())));
    return Ordered(static_cast<std::uint32_t>(data.size()), true) + sealed + Ordered(sum, true);
}

/** A PNG of 2 x 1 cells, whose packed rows are given, and of a further chunk. */
std::string Png(const std::string& rows, const std::string& further = "")
{
    const std::string header = Ordered<std::uint32_t>(2, true) + Ordered<std::uint32_t>(1, true);
    return "\x89PNG\r\n\x1a\n" + Chunk("IHDR", header + std::string("\x10\0\0\0\0", 5)) + further +
           Chunk("IDAT", rows) + Chunk("IEND", "");
}

/** Rows as they are, in a zlib stream that does not pack. */
std::string Unpacked(const std::string& rows)
{
    const auto sum = static_cast<std::uint32_t>(
        adler32(1, reinterpret_cast<const unsigned char*>(rows.data()), static_cast<unsigned>(rows.size())));
    const auto length = static_cast<std::uint16_t>(rows.size());
    return std::string("\x78\x01\x01", 3) + Ordered(length, false) +
           Ordered(static_cast<std::uint16_t>(~length), false) + rows + Ordered(sum, true);
}

TEST_F(PictureFile, PngHoldsHeightsWhateverItTellsOfColours)
{
    const std::string rows("\0\x80\x01\x83\xe8", 5); // no filter, and the counts 1 and 1000
    ExpectMap(Read("map.png", Png(Unpacked(rows))), {{5.001, 6.0}}, 1e-9);
    const std::string gamma = Chunk("gAMA", Ordered<std::uint32_t>(45455, true));
    ExpectMap(Read("map.png", Png(Unpacked(rows), gamma + Chunk("tRNS", std::string("\x80\x01", 2)))), {{5.001, 6.0}},
              1e-9);
}

TEST_F(PictureFile, PngThatIsDamagedBehindItsChecksumsIsRefusedInOneLine)
{
    testing::internal::CaptureStderr();
    for (const std::string& rows :
         {std::string(), std::string("nonsense"), Unpacked("\x01"), Unpacked(std::string("\x77\x80\x01\x83\xe8", 5))})
    {
        ExpectRefusal(File("map.png", Png(rows)), "damaged PNG file");
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
}

TEST_F(PictureFile, MappingIsRefusedWhenItIsNotSound)
{
    Encoded(".png", cv::Mat::ones(4, 4, CV_16UC1));
    const auto refused = [&](const std::string& json, const std::string& text)
    {
        File("map.json", json);
        ExpectRefusal(PathOf("map.png"), text);
    };
    refused("", "is not valid JSON");
    refused(std::string(1000000, '['), "is not valid JSON");
    refused("\xff\xfe", "is not valid JSON");
    refused("[1, 2]", "must hold a JSON object");
    refused(R"({"scale": [1, 1, 1], "offset": [0, 0, null]})", "must be an array of three numbers");
    refused(R"({"scale": [1, 1, 1, 1], "offset": [0, 0, 0]})", "must be an array of three numbers");
    refused(R"({"scale": [1, 1, -1], "offset": [0, 0, 0]})", "the scale must lie between");
    refused(R"({"scale": [1, 1e7, 1], "offset": [0, 0, 0]})", "the scale must lie between");
    refused(R"({"scale": [1, 1, 1], "offset": [0, 1e10, 0]})", "the offset must lie between");
}

} // namespace
} // namespace ExampleFiles
