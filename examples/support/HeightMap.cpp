#include "support/HeightMap.h"

#include "support/InputError.h"
#include "support/PngFile.h"

#include <nlohmann/json.hpp>

#include <cmath>
#include <fstream>

namespace Examples
{
namespace
{

constexpr double kSmallestStep = 1e-12; // far beyond any sensor, in mm; the bounds keep all that follows finite
constexpr double kLargestStep = 1e6;

qPoint3d64f ReadTriple(const nlohmann::json& object, const std::string& key, const std::string& path)
{
    const auto found = object.find(key);
    if (found == object.end())
    {
        throw InputError(path + ": key \"" + key + "\" is missing");
    }
    const auto isFinite = [](const nlohmann::json& item)
    { return item.is_number() && std::isfinite(item.get<double>()); };
    if (!found->is_array() || found->size() != 3 || !isFinite((*found)[0]) || !isFinite((*found)[1]) ||
        !isFinite((*found)[2]))
    {
        throw InputError(path + ": \"" + key + "\" must be an array of three numbers");
    }
    return {(*found)[0].get<double>(), (*found)[1].get<double>(), (*found)[2].get<double>()};
}

void ReadMapping(const std::string& path, qPoint3d64f* scale, qPoint3d64f* offset)
{
    std::ifstream file(path);
    if (!file)
    {
        throw InputError(path + ": cannot be opened");
    }
    nlohmann::json object;
    try
    {
        object = nlohmann::json::parse(file);
    }
    catch (const nlohmann::json::exception& error)
    {
        throw InputError(path + ": is not valid JSON: " + error.what());
    }
    if (!object.is_object())
    {
        throw InputError(path + ": must hold a JSON object");
    }
    *scale = ReadTriple(object, "scale", path);
    *offset = ReadTriple(object, "offset", path);
    for (const double step : {scale->x, scale->y, scale->z})
    {
        if (!(step >= kSmallestStep && step <= kLargestStep))
        {
            throw InputError(path + ": the numbers of \"scale\" must lie between 1e-12 and 1e6");
        }
    }
}

/** Stored 0 becomes -32768, which is the missing height. */
bool CopyHeights(const cv::Mat& stored, const Zvl::Surface& surface)
{
    bool anyHeight = false;
    for (int row = 0; row < stored.rows; ++row)
    {
        const auto* from = stored.ptr<std::uint16_t>(row);
        short* to = HeightRow(surface, static_cast<std::size_t>(row));
        for (int column = 0; column < stored.cols; ++column)
        {
            to[column] = static_cast<short>(from[column] - 32768);
            anyHeight = anyHeight || !IsMissing(to[column]);
        }
    }
    return anyHeight;
}

} // namespace

Zvl::Surface MakeSurface(std::size_t rows, std::size_t columns, const qPoint3d64f& scale, const qPoint3d64f& offset,
                         bool withIntensity)
{
    Zvl::Surface surface;
    surface.scale = scale;
    surface.offset = offset;
    surface.layers.resize(withIntensity ? 2 : 1);
    Zo::Test(qArray2_Construct(surface.layers[0].Slot(), xxq16s_type, rows, columns, nullptr));
    if (withIntensity)
    {
        Zo::Test(qArray2_Construct(surface.layers[1].Slot(), xxq8u_type, rows, columns, nullptr));
    }
    return surface;
}

Zvl::Surface LoadHeightMap(const std::string& pngPath, const std::string& jsonPath)
{
    qPoint3d64f scale;
    qPoint3d64f offset;
    const cv::Mat stored = ReadGrey16Png(pngPath);
    ReadMapping(jsonPath, &scale, &offset);
    Zvl::Surface surface =
        MakeSurface(static_cast<std::size_t>(stored.rows), static_cast<std::size_t>(stored.cols), scale, offset, false);
    if (!CopyHeights(stored, surface))
    {
        throw InputError(pngPath + ": the map is empty, all heights are missing");
    }
    return surface;
}

std::size_t Rows(const Zvl::Surface& surface)
{
    return qArray2_Length(surface.layers[0], 0);
}

std::size_t Columns(const Zvl::Surface& surface)
{
    return qArray2_Length(surface.layers[0], 1);
}

short* HeightRow(const Zvl::Surface& surface, std::size_t row)
{
    return static_cast<short*>(qArray2_At(surface.layers[0], row, 0));
}

unsigned char* IntensityRow(const Zvl::Surface& surface, std::size_t row)
{
    return static_cast<unsigned char*>(qArray2_At(surface.layers[1], row, 0));
}

qPoint3d64f WorldPoint(const Zvl::Surface& surface, std::size_t row, std::size_t column)
{
    const qPoint3d64f& scale = surface.scale;
    const qPoint3d64f& offset = surface.offset;
    return {offset.x + static_cast<double>(column) * scale.x, offset.y + static_cast<double>(row) * scale.y,
            offset.z + HeightRow(surface, row)[column] * scale.z};
}

} // namespace Examples
