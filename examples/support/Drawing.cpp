#include "support/Drawing.h"

#include "support/Text.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace Examples
{
namespace
{

constexpr int kFont = cv::FONT_HERSHEY_SIMPLEX;

} // namespace

void WriteText(cv::Mat& canvas, const std::string& text, int at, int baseline, double size, Align align)
{
    const int width = TextWidth(text, size);
    const int left = at - (align == Align::Left ? 0 : align == Align::Middle ? width / 2 : width);
    cv::putText(canvas, text, {left, baseline}, kFont, size, Colours::kText, 1, cv::LINE_AA);
}

int TextWidth(const std::string& text, double size)
{
    return cv::getTextSize(text, kFont, size, 1, nullptr).width;
}

double RoundStep(double span, int most)
{
    const double power = std::pow(10.0, std::floor(std::log10(span / most)));
    for (const double factor : {1.0, 2.0, 5.0})
    {
        if (span / (factor * power) <= most)
        {
            return factor * power;
        }
    }
    return 10.0 * power;
}

std::string TickText(double value, double step)
{
    const int decimals = std::clamp(static_cast<int>(std::ceil(-std::log10(step) - 1e-9)), 0, 9);
    return NumberText(std::abs(value) < step / 2.0 ? 0.0 : value, decimals);
}

} // namespace Examples
