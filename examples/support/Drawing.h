#pragma once

#include <opencv2/core.hpp>

#include <cmath>
#include <string>

namespace Examples
{

namespace Colours // blue, green, red
{
inline const cv::Scalar kBackground(250, 250, 250);
inline const cv::Scalar kPaper(255, 255, 255);
inline const cv::Scalar kText(40, 40, 40);
inline const cv::Scalar kGrid(225, 225, 225);
inline const cv::Scalar kMissing(45, 45, 45);
inline const cv::Scalar kRegion(255, 255, 255);
inline const cv::Scalar kKept(0, 225, 255);
inline const cv::Scalar kRejected(40, 40, 255);
inline const cv::Scalar kFit(255, 0, 255);
} // namespace Colours

constexpr double kTextSize = 0.45;

/** Which part of a text stands at the given place. */
enum class Align
{
    Left,
    Middle,
    Right
};

/** Writes @p text on the line @p baseline. */
void WriteText(cv::Mat& canvas, const std::string& text, int at, int baseline, double size = kTextSize,
               Align align = Align::Left);

/** Width of a text in pixels. */
int TextWidth(const std::string& text, double size = kTextSize);

/** A step of 1, 2 or 5 times a power of ten that divides @p span, above 0, into at most @p most parts. */
double RoundStep(double span, int most);

/** Short text of a tick at @p value for ticks that are @p step apart. */
std::string TickText(double value, double step);

/** Calls @p draw with each multiple of @p step in [low, high]. */
template <typename Draw>
void ForEachTick(double low, double high, double step, Draw draw)
{
    const double first = std::ceil(low / step - 1e-9);
    const double last = std::floor(high / step + 1e-9);
    for (int tick = 0; tick <= static_cast<int>(last - first); ++tick)
    {
        draw((first + tick) * step);
    }
}

} // namespace Examples
