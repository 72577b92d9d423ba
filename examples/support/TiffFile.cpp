#include "support/TiffFile.h"

#include "support/HeightGrid.h"
#include "support/InputError.h"

#include <tiffio.h>

#include <algorithm>
#include <array>
#include <cstdarg>
#include <filesystem>
#include <memory>

namespace Examples
{
namespace
{

constexpr std::array<int, 6> kCodings = {COMPRESSION_NONE,    COMPRESSION_LZW,           COMPRESSION_PACKBITS,
                                         COMPRESSION_DEFLATE, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_LZMA};

struct TiffCloser
{
    void operator()(TIFF* file) const { TIFFClose(file); }
};
using TiffFile = std::unique_ptr<TIFF, TiffCloser>;

/** The library's messages mean little to a user and would be printed. */
int KeepQuiet(TIFF*, void*, const char*, const char*, va_list)
{
    return 1;
}

TiffFile Open(const std::string& path, const char* mode)
{
    const std::unique_ptr<TIFFOpenOptions, void (*)(TIFFOpenOptions*)> options(TIFFOpenOptionsAlloc(),
                                                                               TIFFOpenOptionsFree);
    TIFFOpenOptionsSetErrorHandlerExtR(options.get(), KeepQuiet, nullptr);
    TIFFOpenOptionsSetWarningHandlerExtR(options.get(), KeepQuiet, nullptr);
    TIFFOpenOptionsSetMaxSingleMemAlloc(options.get(), tmsize_t{1} << 30);
    return TiffFile(TIFFOpenExt(path.c_str(), mode, options.get()));
}

template <typename T>
T Tag(const TiffFile& file, std::uint32_t tag)
{
    T value{};
    TIFFGetFieldDefaulted(file.get(), tag, &value);
    return value;
}

void RequireGrey16(const TiffFile& file, const std::string& path)
{
    const auto bits = Tag<std::uint16_t>(file, TIFFTAG_BITSPERSAMPLE);
    const auto samples = Tag<std::uint16_t>(file, TIFFTAG_SAMPLESPERPIXEL);
    const auto format = Tag<std::uint16_t>(file, TIFFTAG_SAMPLEFORMAT);
    const auto meaning = Tag<std::uint16_t>(file, TIFFTAG_PHOTOMETRIC);
    if (bits != 16 || samples != 1 || format != SAMPLEFORMAT_UINT || meaning != PHOTOMETRIC_MINISBLACK)
    {
        throw InputError(path + ": must be a grey TIFF of 16 bits without sign, but has " + std::to_string(samples) +
                         " x " + std::to_string(bits) + " bits, or they mean something else");
    }
    const int coding = Tag<std::uint16_t>(file, TIFFTAG_COMPRESSION);
    if (TIFFIsTiled(file.get()) != 0 || std::find(kCodings.begin(), kCodings.end(), coding) == kCodings.end())
    {
        throw InputError(path + ": must be a TIFF in strips, packed without loss or not at all");
    }
}

} // namespace

cv::Mat ReadGrey16Tiff(const std::string& path)
{
    const TiffFile file = std::filesystem::is_regular_file(path) ? Open(path, "r") : nullptr;
    if (!file)
    {
        throw InputError(path + ": cannot be read, or is not a TIFF file");
    }
    RequireGrey16(file, path);
    const auto rows = Tag<std::uint32_t>(file, TIFFTAG_IMAGELENGTH);
    const auto columns = Tag<std::uint32_t>(file, TIFFTAG_IMAGEWIDTH);
    CellCount(rows, columns, path);
    cv::Mat picture(static_cast<int>(rows), static_cast<int>(columns), CV_16UC1);
    for (std::uint32_t row = 0; row < rows; ++row)
    {
        if (TIFFScanlineSize64(file.get()) != std::uint64_t{2} * columns ||
            TIFFReadScanline(file.get(), picture.ptr(static_cast<int>(row)), row, 0) != 1)
        {
            throw InputError(path + ": is damaged, row " + std::to_string(row) + " cannot be read");
        }
    }
    return picture;
}

void WriteGrey16Tiff(const std::string& path, const cv::Mat& picture)
{
    TiffFile file = Open(path, "w");
    bool isWritten = file != nullptr;
    if (isWritten)
    {
        TIFFSetField(file.get(), TIFFTAG_IMAGEWIDTH, static_cast<std::uint32_t>(picture.cols));
        TIFFSetField(file.get(), TIFFTAG_IMAGELENGTH, static_cast<std::uint32_t>(picture.rows));
        TIFFSetField(file.get(), TIFFTAG_BITSPERSAMPLE, 16);
        TIFFSetField(file.get(), TIFFTAG_SAMPLESPERPIXEL, 1);
        TIFFSetField(file.get(), TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_MINISBLACK);
        TIFFSetField(file.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
        TIFFSetField(file.get(), TIFFTAG_COMPRESSION, COMPRESSION_ADOBE_DEFLATE);
        TIFFSetField(file.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(file.get(), 0));
    }
    cv::Mat line; // the library may change the bytes that it is given
    for (int row = 0; isWritten && row < picture.rows; ++row)
    {
        picture.row(row).copyTo(line);
        isWritten = TIFFWriteScanline(file.get(), line.data, static_cast<std::uint32_t>(row), 0) == 1;
    }
    if (!isWritten || TIFFFlush(file.get()) != 1)
    {
        throw InputError(path + ": cannot be written");
    }
}

} // namespace Examples
