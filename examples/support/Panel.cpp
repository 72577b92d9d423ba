#include "support/Panel.h"

#include "support/Drawing.h"
#include "support/Text.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>

namespace Examples
{
namespace
{

constexpr int kNumberColumn = 320; // where the columns end
constexpr int kRemarkColumn = 440;

} // namespace

void Panel::AddLegend(Symbol symbol, const cv::Scalar& colour, const std::string& text)
{
    entries.push_back({true, symbol, colour, text, {}, {}});
}

void Panel::AddText(const std::string& name, const std::string& number, const std::string& remark)
{
    entries.push_back({false, Symbol::Line, {}, name, number, remark});
}

void Panel::AddResults(const ResultTable& table)
{
    const auto isKnown = [](const Result& result) { return result.expected.has_value(); };
    const bool anyKnown = std::any_of(table.Results().begin(), table.Results().end(), isKnown);
    AddText("", "measured", anyKnown ? "deviation" : "");
    for (const Result& result : table.Results())
    {
        AddText(result.feature, result.measured ? MeasureText(*result.measured) + " " + result.unit : "-",
                result.measured && result.expected ? DeviationText(*result.measured - result.expected->nominal) : "");
    }
}

void Panel::Draw(cv::Mat& canvas, const cv::Point& corner) const
{
    int line = corner.y + kLineHeight / 2;
    for (const Entry& entry : entries)
    {
        if (entry.isLegend)
        {
            DrawSymbol(canvas, entry, {corner.x + 14, line});
        }
        WriteText(canvas, entry.text, entry.isLegend ? corner.x + 38 : corner.x, line + 5);
        WriteText(canvas, entry.number, corner.x + kNumberColumn, line + 5, kTextSize, Align::Right);
        WriteText(canvas, entry.remark, corner.x + kRemarkColumn, line + 5, kTextSize, Align::Right);
        line += kLineHeight;
    }
}

/** The overlays are bright, so they are shown on the dark of a missing cell. */
void Panel::DrawSymbol(cv::Mat& canvas, const Entry& entry, const cv::Point& middle)
{
    const cv::Rect patch(middle.x - 14, middle.y - 9, 28, 18);
    cv::rectangle(canvas, patch, entry.symbol == Symbol::Patch ? entry.colour : Colours::kMissing, cv::FILLED);
    if (entry.symbol == Symbol::Line)
    {
        cv::line(canvas, {middle.x - 10, middle.y}, {middle.x + 10, middle.y}, entry.colour, 2);
    }
    if (entry.symbol == Symbol::Dot)
    {
        cv::circle(canvas, middle, 3, entry.colour, cv::FILLED, cv::LINE_AA);
    }
}

} // namespace Examples
