#include "support/Plot.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace Examples
{
namespace
{

/** An axis of no length would divide by zero. */
Plot::Axis Widened(const Plot::Axis& axis)
{
    const double reach = std::max(1.0, 1e-3 * std::abs(axis.low)); // what 1 is added to may be too large to change
    return axis.high > axis.low ? axis : Plot::Axis{axis.label, axis.low - reach, axis.low + reach};
}

} // namespace

Plot::Plot(cv::Mat& target, const cv::Rect& place, const std::string& title, const Axis& acrossAxis, const Axis& upAxis)
    : canvas(target), area(place), across(Widened(acrossAxis)), up(Widened(upAxis))
{
    const int bottom = area.y + area.height;
    cv::rectangle(canvas, area, Colours::kPaper, cv::FILLED);

    const double stepAcross = RoundStep(across.high - across.low, std::max(2, area.width / 70));
    ForEachTick(across.low, across.high, stepAcross,
                [&](double value)
                {
                    const int at = Pixel({value, up.low}).x;
                    cv::line(canvas, {at, area.y}, {at, bottom}, Colours::kGrid);
                    WriteText(canvas, TickText(value, stepAcross), at, bottom + 18, kTextSize, Align::Middle);
                });
    const double stepUp = RoundStep(up.high - up.low, std::max(2, area.height / 40));
    ForEachTick(up.low, up.high, stepUp,
                [&](double value)
                {
                    const int at = Pixel({across.low, value}).y;
                    cv::line(canvas, {area.x, at}, {area.x + area.width, at}, Colours::kGrid);
                    WriteText(canvas, TickText(value, stepUp), area.x - 8, at + 5, kTextSize, Align::Right);
                });

    cv::rectangle(canvas, area, Colours::kText);
    WriteText(canvas, across.label, area.x + area.width / 2, bottom + 40, kTextSize, Align::Middle);
    WriteText(canvas, up.label, area.x - 50, area.y - 10);
    WriteText(canvas, title, area.x + area.width / 2, area.y - 34, 0.55, Align::Middle);
}

void Plot::Dots(const std::vector<qPoint64f>& points, const cv::Scalar& colour, int radius)
{
    for (const qPoint64f& point : points)
    {
        cv::circle(canvas, Pixel(point), radius, colour, cv::FILLED, cv::LINE_AA);
    }
}

void Plot::Curve(const std::vector<qPoint64f>& points, const cv::Scalar& colour, int thickness)
{
    for (std::size_t next = 1; next < points.size(); ++next)
    {
        if (IsInside(points[next - 1]) && IsInside(points[next]))
        {
            cv::line(canvas, Pixel(points[next - 1]), Pixel(points[next]), colour, thickness, cv::LINE_AA);
        }
    }
}

void Plot::Label(const qPoint64f& place, const std::string& text, Align align)
{
    constexpr int kGap = 8;
    const cv::Point at = Pixel(place);
    WriteText(canvas, text, at.x + (align == Align::Right ? -kGap : kGap), at.y - kGap, kTextSize, align);
}

bool Plot::IsInside(const qPoint64f& point) const
{
    return point.x >= across.low && point.x <= across.high && point.y >= up.low && point.y <= up.high;
}

cv::Point Plot::Pixel(const qPoint64f& point) const
{
    const double x = std::clamp((point.x - across.low) / (across.high - across.low), 0.0, 1.0);
    const double y = std::clamp((point.y - up.low) / (up.high - up.low), 0.0, 1.0);
    return {area.x + static_cast<int>(std::lround(x * area.width)),
            area.y + area.height - static_cast<int>(std::lround(y * area.height))};
}

} // namespace Examples
