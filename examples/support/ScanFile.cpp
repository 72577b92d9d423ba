#include "support/ScanFile.h"

#include "support/AsciiGridFile.h"
#include "support/InputError.h"
#include "support/PictureMap.h"
#include "support/PlyFile.h"
#include "support/PngFile.h"
#include "support/Text.h"
#include "support/TiffFile.h"
#include "support/X3pFile.h"

#include <algorithm>
#include <array>
#include <filesystem>

namespace Examples
{
namespace
{

/** A kind of file that knows how its heights lie in the world. */
struct MapKind
{
    const char* extension;
    Zvl::Surface (*read)(const std::string& path);
    void (*write)(const std::string& path, const Zvl::Surface& map);
};

/** A kind of file that holds counts alone. */
struct PictureKind
{
    const char* extension;
    cv::Mat (*read)(const std::string& path);
    void (*write)(const std::string& path, const cv::Mat& picture);
};

constexpr std::array<MapKind, 3> kMapKinds = {
    {{".asc", ReadAsciiGrid, WriteAsciiGrid}, {".ply", ReadPly, WritePly}, {".x3p", ReadX3p, WriteX3p}}};

constexpr std::array<PictureKind, 3> kPictureKinds = {{{".png", ReadGrey16Png, WritePng},
                                                       {".tif", ReadGrey16Tiff, WriteGrey16Tiff},
                                                       {".tiff", ReadGrey16Tiff, WriteGrey16Tiff}}};

/** The kind of a file, or null. */
template <typename Kinds>
const typename Kinds::value_type* KindOf(const std::string& path, const Kinds& kinds)
{
    const std::string extension = LowerCase(std::filesystem::path(path).extension().string());
    const auto* kind =
        std::find_if(kinds.begin(), kinds.end(), [&](const auto& known) { return extension == known.extension; });
    return kind == kinds.end() ? nullptr : kind;
}

} // namespace

std::string MappingPath(const std::string& path, const std::optional<std::string>& given)
{
    return given ? *given : std::filesystem::path(path).replace_extension(".json").string();
}

bool NeedsMapping(const std::string& path)
{
    return KindOf(path, kPictureKinds) != nullptr;
}

void RequireScanFile(const std::string& path)
{
    if (KindOf(path, kPictureKinds) == nullptr && KindOf(path, kMapKinds) == nullptr)
    {
        throw InputError(path + ": must be a .png, .tif, .tiff, .asc, .ply or .x3p file");
    }
}

Zvl::Surface ReadScan(const std::string& path, const std::optional<std::string>& mapping)
{
    RequireScanFile(path);
    if (const PictureKind* kind = KindOf(path, kPictureKinds))
    {
        const cv::Mat picture = kind->read(path);
        return MapOfPicture(picture, ReadMapping(MappingPath(path, mapping)), path);
    }
    return KindOf(path, kMapKinds)->read(path);
}

void WriteScan(const std::string& path, const Zvl::Surface& scan)
{
    RequireScanFile(path);
    if (const PictureKind* kind = KindOf(path, kPictureKinds))
    {
        kind->write(path, PictureOfMap(scan));
        WriteMapping(MappingPath(path, std::nullopt), {scan.scale, scan.offset});
        return;
    }
    KindOf(path, kMapKinds)->write(path, scan);
}

} // namespace Examples
