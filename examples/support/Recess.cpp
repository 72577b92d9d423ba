#include "support/Recess.h"

#include "support/HeightMap.h"
#include "support/PlaneDistance.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace Examples
{
namespace
{

constexpr double kPi = 3.141592653589793;

cv::Mat DeepCells(const Zvl::Surface& surface, const qPlane3d64f& plane, double depth)
{
    cv::Mat deep(static_cast<int>(Rows(surface)), static_cast<int>(Columns(surface)), CV_8UC1);
    for (std::size_t row = 0; row < Rows(surface); ++row)
    {
        const short* heights = HeightRow(surface, row);
        auto* isDeep = deep.ptr<unsigned char>(static_cast<int>(row));
        for (std::size_t column = 0; column < Columns(surface); ++column)
        {
            isDeep[column] =
                IsMissing(heights[column]) || PlaneDistance(plane, WorldPoint(surface, row, column)) < -depth;
        }
    }
    return deep;
}

/** Counts of one connected place while it is walked over. */
struct MissingCount
{
    const Zvl::Surface& surface;
    const cv::Mat& labels;

    int In(int label, const cv::Rect& box) const
    {
        int missing = 0;
        for (int row = box.y; row < box.y + box.height; ++row)
        {
            const short* heights = HeightRow(surface, static_cast<std::size_t>(row));
            for (int column = box.x; column < box.x + box.width; ++column)
            {
                missing += labels.at<int>(row, column) == label && IsMissing(heights[column]) ? 1 : 0;
            }
        }
        return missing;
    }
};

bool TouchesBorder(const cv::Rect& box, const cv::Size& map)
{
    return box.x == 0 || box.y == 0 || box.x + box.width == map.width || box.y + box.height == map.height;
}

} // namespace

std::vector<Recess> FindRecesses(const Zvl::Surface& surface, const qPlane3d64f& plane, double depth,
                                 double smallestShare)
{
    const cv::Mat deep = DeepCells(surface, plane, depth);
    cv::Mat labels;
    cv::Mat statistics;
    cv::Mat centroids;
    const int count = cv::connectedComponentsWithStats(deep, labels, statistics, centroids, 4, CV_32S);

    std::vector<Recess> recesses;
    for (int label = 1; label < count; ++label) // label 0 is what is not deep
    {
        const int* numbers = statistics.ptr<int>(label);
        const cv::Rect box(numbers[cv::CC_STAT_LEFT], numbers[cv::CC_STAT_TOP], numbers[cv::CC_STAT_WIDTH],
                           numbers[cv::CC_STAT_HEIGHT]);
        const double area = numbers[cv::CC_STAT_AREA];
        if (area < smallestShare * static_cast<double>(deep.total()) || TouchesBorder(box, deep.size()))
        {
            continue;
        }
        const double longer = std::max(box.width * surface.scale.x, box.height * surface.scale.y);
        const double cellArea = surface.scale.x * surface.scale.y;
        recesses.push_back({{surface.offset.x + centroids.at<double>(label, 0) * surface.scale.x,
                             surface.offset.y + centroids.at<double>(label, 1) * surface.scale.y},
                            std::sqrt(area * cellArea / kPi),
                            area * cellArea / (kPi / 4.0 * longer * longer),
                            MissingCount{surface, labels}.In(label, box) / area});
    }
    std::sort(recesses.begin(), recesses.end(),
              [](const Recess& left, const Recess& right) { return left.radius > right.radius; });
    return recesses;
}

} // namespace Examples
