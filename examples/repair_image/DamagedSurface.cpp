#include "repair_image/DamagedSurface.h"

#include "support/HeightMap.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <random>
#include <stdexcept>

namespace RepairImage
{
namespace
{

constexpr int kEdge = 4; // cells around the surface that no dropout reaches, so that all have known cells around them
constexpr int kSmallest = 32; // cells along a side of a surface that drops and scratches fit into

/** Where heights drop out of a surface of this size: 255, otherwise 0. */
cv::Mat DropoutPattern(const cv::Size& size)
{
    constexpr int kDrops = 30;
    constexpr int kScratches = 6;
    constexpr double kSingle = 0.01; // share of single cells
    const int unit = std::min(size.width, size.height) / kSmallest;

    std::mt19937 generator(701);
    std::uniform_real_distribution<double> uniform(0.0, 1.0);
    const auto place = [&]
    {
        const double x = uniform(generator) * size.width;
        const double y = uniform(generator) * size.height;
        return cv::Point2d(x, y);
    };
    cv::Mat pattern = cv::Mat::zeros(size, CV_8UC1);
    for (int drop = 0; drop < kDrops; ++drop)
    {
        const cv::Point center = place();
        cv::circle(pattern, center, static_cast<int>(unit * (0.3 + 0.9 * uniform(generator))), 255, cv::FILLED);
    }
    for (int scratch = 0; scratch < kScratches; ++scratch)
    {
        const cv::Point2d from = place();
        cv::line(pattern, from, 0.6 * from + 0.4 * place(), 255, 1 + unit / 4);
    }
    cv::Mat single(size, CV_64FC1);
    std::generate(single.begin<double>(), single.end<double>(), [&] { return uniform(generator); });
    pattern.setTo(255, single < kSingle);

    cv::Mat clear(size, CV_8UC1, cv::Scalar(255));
    clear(cv::Rect(kEdge, kEdge, size.width - 2 * kEdge, size.height - 2 * kEdge)) = 0;
    pattern.setTo(0, clear);
    return pattern;
}

} // namespace

DamagedSurface CutDropouts(const std::string& title, Origin origin, const Zvl::Surface& truth)
{
    const cv::Mat heights = HeightImage(truth);
    if (std::min(heights.rows, heights.cols) < kSmallest)
    {
        throw std::runtime_error("the map has too few rows or columns to cut dropouts into it");
    }
    const cv::Mat isPresent = heights != Zvl::GetNull<short>();
    const cv::Mat dropouts = DropoutPattern(heights.size()) & isPresent;
    if (cv::countNonZero(dropouts) == 0)
    {
        throw std::runtime_error("the map has no heights where dropouts are cut into it");
    }
    DamagedSurface piece{title, origin, truth, Copy(truth), dropouts};
    HeightImage(piece.damaged).setTo(Zvl::GetNull<short>(), dropouts);
    if (HasIntensities(truth))
    {
        IntensityImage(piece.damaged).setTo(0, dropouts);
    }
    return piece;
}

cv::Mat HeightImage(const Zvl::Surface& surface)
{
    return {static_cast<int>(Examples::Rows(surface)), static_cast<int>(Examples::Columns(surface)), CV_16SC1,
            Examples::HeightRow(surface, 0)};
}

cv::Mat IntensityImage(const Zvl::Surface& surface)
{
    return {static_cast<int>(Examples::Rows(surface)), static_cast<int>(Examples::Columns(surface)), CV_8UC1,
            Examples::IntensityRow(surface, 0)};
}

bool HasIntensities(const Zvl::Surface& surface)
{
    return surface.layers.size() > 1;
}

Zvl::Surface Copy(const Zvl::Surface& surface)
{
    Zvl::Surface copy = Examples::MakeSurface(Examples::Rows(surface), Examples::Columns(surface), surface.scale,
                                              surface.offset, HasIntensities(surface));
    for (std::size_t layer = 0; layer < copy.layers.size(); ++layer)
    {
        Zo::Test(xqArray2_Assign(copy.layers[layer], surface.layers[layer], 0));
    }
    return copy;
}

} // namespace RepairImage
