#include "support/PictureMap.h"

#include "support/HeightMap.h"
#include "support/InputError.h"

#include <algorithm>

namespace Examples
{
namespace
{

constexpr int kZeroCount = 32768; // the stored value of count 0; the lowest count, which is missing, is stored as 0

} // namespace

Zvl::Surface MapOfPicture(const cv::Mat& picture, const Mapping& mapping, const std::string& path)
{
    if (cv::countNonZero(picture) == 0)
    {
        throw InputError(path + ": the map is empty, all heights are missing");
    }
    Zvl::Surface map = MakeSurface(static_cast<std::size_t>(picture.rows), static_cast<std::size_t>(picture.cols),
                                   mapping.scale, mapping.offset, false);
    for (int row = 0; row < picture.rows; ++row)
    {
        const auto* stored = picture.ptr<std::uint16_t>(row);
        std::transform(stored, stored + picture.cols, HeightRow(map, static_cast<std::size_t>(row)),
                       [](std::uint16_t value) { return static_cast<short>(value - kZeroCount); });
    }
    return map;
}

cv::Mat PictureOfMap(const Zvl::Surface& map)
{
    cv::Mat picture(static_cast<int>(Rows(map)), static_cast<int>(Columns(map)), CV_16UC1);
    for (int row = 0; row < picture.rows; ++row)
    {
        const short* counts = HeightRow(map, static_cast<std::size_t>(row));
        std::transform(counts, counts + picture.cols, picture.ptr<std::uint16_t>(row),
                       [](short count) { return static_cast<std::uint16_t>(count + kZeroCount); });
    }
    return picture;
}

} // namespace Examples
