#pragma once

#include <ZdkVisionLib/platform/qApi.h>

#include <opencv2/core.hpp>

#include <vector>

namespace Roundness
{

/** A form in polar coordinates: a point keeps its direction from the centre, and what its distance has over that of a
 *  middle circle is magnified. */
class PolarPlot
{
public:
    /** Where the form lies: between two circles about the plot's centre. */
    struct Ring
    {
        double inner;
        double outer;
    };

    /** A plot in the square @p place of @p target with a scale and the filled @p ring. */
    PolarPlot(cv::Mat& target, const cv::Rect& place, const qPoint64f& plotCenter, const Ring& ring,
              const cv::Scalar& colour);

    /** How many times as large as the middle circle deviations are drawn. */
    double Magnification() const;

    /** Points beyond the plot are drawn at its border, or in its centre. */
    void Dots(const std::vector<qPoint64f>& points, const cv::Scalar& colour);
    void ClosedCurve(const std::vector<qPoint64f>& points, const cv::Scalar& colour, int thickness);
    void Circle(const qPoint64f& circleCenter, double radius, const cv::Scalar& colour);

    /** Writes the deviation at each ring of the scale, in micrometres, over what was drawn. */
    void Labels();

private:
    double PixelRadius(double distance) const;

    /** In parts of a pixel. */
    cv::Point Pixel(const qPoint64f& point) const;
    void DrawRing(double distance, const cv::Scalar& colour, int thickness);

    cv::Mat canvas;
    cv::Point2d middle;
    double border;
    qPoint64f center;
    double base;  ///< radius of the middle circle
    double reach; ///< deviation at the border
    double step;  ///< of the scale
};

} // namespace Roundness
