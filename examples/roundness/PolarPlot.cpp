#include "roundness/PolarPlot.h"

#include "support/Drawing.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace Roundness
{
namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kBaseShare = 2.0 / 3.0; // of the plot's radius is that of the middle circle
constexpr double kMicrometre = 1e-3;
constexpr int kFineBits = 4; // of a fine pixel
constexpr double kFine = 1 << kFineBits;

} // namespace

PolarPlot::PolarPlot(cv::Mat& target, const cv::Rect& place, const qPoint64f& plotCenter, const Ring& ring,
                     const cv::Scalar& colour)
    : canvas(target),
      middle(place.x + place.width / 2.0, place.y + place.height / 2.0),
      border(place.width / 2.0),
      center(plotCenter),
      base((ring.inner + ring.outer) / 2.0),
      reach(std::max(0.9 * (ring.outer - ring.inner), 1e-6 * base)), // a perfect circle has no ring
      step(Examples::RoundStep(2.0 * reach, 8))
{
    DrawRing(base + reach, Examples::Colours::kPaper, cv::FILLED);
    DrawRing(ring.outer, colour, cv::FILLED);
    DrawRing(ring.inner, Examples::Colours::kPaper, cv::FILLED);
    Examples::ForEachTick(-reach, reach, step,
                          [this](double deviation) { DrawRing(base + deviation, Examples::Colours::kGrid, 1); });
    DrawRing(base + reach, Examples::Colours::kText, 1);
}

double PolarPlot::Magnification() const
{
    return (1.0 - kBaseShare) / kBaseShare * base / reach;
}

void PolarPlot::Dots(const std::vector<qPoint64f>& points, const cv::Scalar& colour)
{
    constexpr int kDot = 3 << kFineBits;
    for (const qPoint64f& point : points)
    {
        cv::circle(canvas, Pixel(point), kDot, colour, cv::FILLED, cv::LINE_AA, kFineBits);
    }
}

void PolarPlot::ClosedCurve(const std::vector<qPoint64f>& points, const cv::Scalar& colour, int thickness)
{
    std::vector<cv::Point> pixels;
    std::transform(points.begin(), points.end(), std::back_inserter(pixels),
                   [this](const qPoint64f& point) { return Pixel(point); });
    cv::polylines(canvas, pixels, true, colour, thickness, cv::LINE_AA, kFineBits);
}

void PolarPlot::Circle(const qPoint64f& circleCenter, double radius, const cv::Scalar& colour)
{
    std::vector<qPoint64f> points;
    for (int degree = 0; degree < 360; ++degree)
    {
        const double angle = degree * kPi / 180.0;
        points.push_back({circleCenter.x + radius * std::cos(angle), circleCenter.y + radius * std::sin(angle)});
    }
    ClosedCurve(points, colour, 2);
}

void PolarPlot::Labels()
{
    Examples::ForEachTick(-reach, reach, step,
                          [this](double deviation)
                          {
                              const std::string text = Examples::TickText(deviation / kMicrometre, step / kMicrometre);
                              Examples::WriteText(canvas, text, static_cast<int>(middle.x) + 4,
                                                  static_cast<int>(middle.y - PixelRadius(base + deviation)) - 4);
                          });
}

double PolarPlot::PixelRadius(double distance) const
{
    const double share = kBaseShare + (1.0 - kBaseShare) * (distance - base) / reach;
    return border * std::clamp(share, 0.0, 1.0);
}

cv::Point PolarPlot::Pixel(const qPoint64f& point) const
{
    const double x = point.x - center.x;
    const double y = point.y - center.y;
    const double away = std::hypot(x, y);
    const double share = away > 0.0 ? PixelRadius(away) / away : 0.0;
    return {static_cast<int>(std::lround(kFine * (middle.x + share * x))),
            static_cast<int>(std::lround(kFine * (middle.y + share * y)))};
}

void PolarPlot::DrawRing(double distance, const cv::Scalar& colour, int thickness)
{
    cv::circle(canvas, Pixel(center), static_cast<int>(std::lround(kFine * PixelRadius(distance))), colour, thickness,
               cv::LINE_AA, kFineBits);
}

} // namespace Roundness
