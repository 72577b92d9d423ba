#pragma once

/** @file
 *  The height map that all benchmarks run on: 2048 x 2048 cells of a tilted, rough plate, 10 % of them missing. */

#include <ZdkVisionLib/Common/Common.h>

#include <opencv2/core.hpp>

#include <cmath>
#include <random>

namespace Bench
{

constexpr int kSide = 2048;
constexpr qPoint64f kScale = {0.01, 0.01};
constexpr qPoint64f kOffset = {-10.0, -10.0};

inline Zo::Object<void*> NewArray(qType type, int rows = kSide, int columns = kSide)
{
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), type, static_cast<std::size_t>(rows), static_cast<std::size_t>(columns),
                               nullptr));
    return array;
}

/** A `cv::Mat` header over the cells of an array. */
inline cv::Mat MatOver(void* array, int type)
{
    return cv::Mat(static_cast<int>(qArray2_Length(array, 0)), static_cast<int>(qArray2_Length(array, 1)), type,
                   qArray2_At(array, 0, 0));
}

inline const Zvl::Surface& Map()
{
    static const Zvl::Surface map = []
    {
        Zvl::Surface surface;
        surface.scale = {kScale.x, kScale.y, 0.001};
        surface.offset = {kOffset.x, kOffset.y, 0.0};
        surface.layers.push_back(NewArray(xxq16s_type));
        auto* cells = static_cast<std::int16_t*>(qArray2_At(surface.layers[0], 0, 0));
        std::mt19937 random(1);
        std::bernoulli_distribution missing(0.1);
        std::normal_distribution<double> roughness(0.0, 20.0);
        for (int row = 0; row < kSide; ++row)
        {
            for (int column = 0; column < kSide; ++column)
            {
                const double height = 2.0 * column - 1.5 * row + roughness(random);
                *cells++ = missing(random) ? Zvl::GetNull<short>() : static_cast<std::int16_t>(std::lround(height));
            }
        }
        return surface;
    }();
    return map;
}

/** A mask over the whole map that holds 1 wherever there is a height. */
inline Zo::Object<void*> ValidMask()
{
    Zo::Object<void*> mask = NewArray(xxq8u_type);
    const cv::Mat heights = MatOver(Map().layers[0], CV_16S);
    cv::Mat cells = MatOver(mask, CV_8U);
    cv::Mat valid;
    cv::compare(heights, cv::Scalar(Zvl::GetNull<short>()), valid, cv::CMP_NE);
    cv::bitwise_and(valid, cv::Scalar(1), cells);
    return mask;
}

} // namespace Bench
