#pragma once

#include "support/Drawing.h"

#include <ZdkVisionLib/platform/qApi.h>

#include <opencv2/core.hpp>

#include <string>
#include <vector>

namespace Examples
{

/** A diagram with two axes. */
class Plot
{
public:
    struct Axis
    {
        std::string label;
        double low;
        double high;
    };

    /** An empty diagram in the @p place of @p target, with ticks and labels around it. */
    Plot(cv::Mat& target, const cv::Rect& place, const std::string& title, const Axis& acrossAxis, const Axis& upAxis);

    /** Points outside the range are drawn at the border. */
    void Dots(const std::vector<qPoint64f>& points, const cv::Scalar& colour, int radius);

    /** Parts outside the range are left out. */
    void Curve(const std::vector<qPoint64f>& points, const cv::Scalar& colour, int thickness = 1);

    /** Writes @p text a little above @p place, to its left or right. */
    void Label(const qPoint64f& place, const std::string& text, Align align);

private:
    bool IsInside(const qPoint64f& point) const;
    cv::Point Pixel(const qPoint64f& point) const;

    cv::Mat canvas;
    cv::Rect area;
    Axis across;
    Axis up;
};

} // namespace Examples
