#include "support/MapPicture.h"

#include "support/HeightMap.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <cmath>

namespace Examples
{
namespace
{

constexpr int kFine = 3;  // the map is drawn so many times as large as it is shown
constexpr int kLeft = 80; // margins around the map
constexpr int kTop = 74;
constexpr int kBottom = 60;
constexpr int kBarGap = 24; // between map and colour bar
constexpr int kBarWidth = 22;
constexpr int kPanelGap = 110; // between the left ends of colour bar and panel
constexpr int kLineHeight = Panel::kLineHeight;
constexpr double kTitleSize = 0.75;
constexpr int kMagnifierSize = 340;
constexpr std::size_t kShortestBorder = 120; // in pixels of the finer map

} // namespace

MapPicture::MapPicture(const Zvl::Surface& surface, const qPlane3d64f& reference, const HeightRange& heightRange,
                       const std::string& titleText, const MapStyle& style)
    : scale(surface.scale),
      offset(surface.offset),
      range(Widened(heightRange)),
      title(titleText),
      palette(style.palette)
{
    const double columns = static_cast<double>(Columns(surface));
    const double rows = static_cast<double>(Rows(surface));
    const double pixelsPerUnit = std::min(style.room.width / (columns * scale.x), style.room.height / (rows * scale.y));
    const cv::Size size(kFine * std::max(1, static_cast<int>(std::lround(columns * scale.x * pixelsPerUnit))),
                        kFine * std::max(1, static_cast<int>(std::lround(rows * scale.y * pixelsPerUnit))));
    zoomX = size.width / columns;
    zoomY = size.height / rows;

    const cv::Mat cells = FalseColours(surface, reference, range, palette);
    cv::resize(cells, map, size, 0.0, 0.0, zoomX < 1.0 ? cv::INTER_AREA : cv::INTER_NEAREST);
}

/** Cell (0, 0) covers the pixels from 0 to the zoom; a world point of a cell is the middle of its pixels. */
cv::Point2d MapPicture::Pixel(const qPoint64f& world) const
{
    return {((world.x - offset.x) / scale.x + 0.5) * zoomX - 0.5, ((world.y - offset.y) / scale.y + 0.5) * zoomY - 0.5};
}

void MapPicture::OutlineMask(const Zvl::Rect2d<int>& box, void* mask, const cv::Scalar& colour)
{
    if (mask == nullptr)
    {
        return;
    }
    // A frame of empty cells around the mask closes borders at its edges.
    cv::Mat cells = cv::Mat::zeros(box.height + 2, box.width + 2, CV_8UC1);
    const cv::Mat view(box.height, box.width, CV_8UC1, qArray2_At(mask, 0, 0));
    view.copyTo(cells(cv::Rect(1, 1, box.width, box.height)));
    cv::Mat zoomed;
    cv::resize(cells, zoomed, {}, zoomX, zoomY, cv::INTER_NEAREST);
    std::vector<std::vector<cv::Point>> borders;
    const cv::Point corner(static_cast<int>(std::lround((box.x - 1) * zoomX)),
                           static_cast<int>(std::lround((box.y - 1) * zoomY)));
    cv::findContours(zoomed, borders, cv::RETR_LIST, cv::CHAIN_APPROX_NONE, corner);
    for (const std::vector<cv::Point>& border : borders)
    {
        if (border.size() > kShortestBorder) // single dropped cells would only clutter the picture
        {
            cv::polylines(map, border, true, Colours::kMissing, 3 * kFine, cv::LINE_AA);
            cv::polylines(map, border, true, colour, kFine, cv::LINE_AA);
        }
    }
}

void MapPicture::Dots(const std::vector<qPoint64f>& points, const cv::Scalar& colour, double size)
{
    const int radius = std::max(1, static_cast<int>(size * kFine / 2.0));
    for (const qPoint64f& point : points)
    {
        cv::circle(map, Pixel(point), radius, colour, cv::FILLED, cv::LINE_AA);
    }
}

void MapPicture::Circle(const qPoint64f& center, double radius, const cv::Scalar& colour)
{
    constexpr int kSubPixelBits = 4;
    constexpr double kSubPixels = 1 << kSubPixelBits;
    const cv::Point2d middle = Pixel(center);
    const cv::Size2d axes(radius / scale.x * zoomX, radius / scale.y * zoomY);
    cv::ellipse(map, cv::Point(middle * kSubPixels), cv::Size(axes * kSubPixels), 0.0, 0.0, 360.0, colour, 2,
                cv::LINE_AA, kSubPixelBits);
    cv::drawMarker(map, middle, colour, cv::MARKER_CROSS, 16 * kFine, 2 * kFine, cv::LINE_AA);
}

void MapPicture::Line(const qPoint64f& from, const qPoint64f& to, const cv::Scalar& colour)
{
    cv::line(map, Pixel(from), Pixel(to), colour, kFine, cv::LINE_AA);
}

void MapPicture::AddLegend(Symbol symbol, const cv::Scalar& colour, const std::string& text)
{
    panel.AddLegend(symbol, colour, text);
}

void MapPicture::AddText(const std::string& name, const std::string& number, const std::string& remark)
{
    panel.AddText(name, number, remark);
}

void MapPicture::AddResults(const ResultTable& table)
{
    panel.AddResults(table);
}

void MapPicture::AddMagnifier(const qPoint64f& center, double reach, const std::string& caption)
{
    const cv::Point2d low = Pixel({center.x - reach, center.y - reach});
    const cv::Point2d high = Pixel({center.x + reach, center.y + reach});
    magnified = cv::Rect(cv::Point(low), cv::Point(high)) & cv::Rect(0, 0, map.cols, map.rows);
    magnifierCaption = caption;
}

cv::Mat MapPicture::Compose() const
{
    cv::Mat shown;
    cv::resize(map, shown, {map.cols / kFine, map.rows / kFine}, 0.0, 0.0, cv::INTER_AREA);

    const int panelWidth = PanelHeight() > 0 ? Panel::kWidth : 0;
    const int width =
        kLeft + std::max(shown.cols + kBarGap + kPanelGap + panelWidth, TextWidth(title, kTitleSize) + kBarGap);
    const int height = kTop + std::max(shown.rows, PanelHeight()) + kBottom;
    cv::Mat canvas(height, width, CV_8UC3, Colours::kBackground);
    WriteText(canvas, title, kLeft, 34, kTitleSize);
    shown.copyTo(canvas(cv::Rect(kLeft, kTop, shown.cols, shown.rows)));
    DrawAxes(canvas);
    DrawColourBar(canvas);
    DrawPanel(canvas);
    return canvas;
}

int MapPicture::PanelHeight() const
{
    return panel.Height() + (magnified.empty() ? 0 : kMagnifierSize + 2 * kLineHeight);
}

void MapPicture::DrawAxes(cv::Mat& canvas) const
{
    const int right = kLeft + map.cols / kFine;
    const int bottom = kTop + map.rows / kFine;
    cv::rectangle(canvas, cv::Point(kLeft - 1, kTop - 1), cv::Point(right, bottom), Colours::kText);

    const double columns = map.cols / zoomX;
    const double stepX = RoundStep(columns * scale.x, std::clamp((right - kLeft) / 60, 2, 10));
    ForEachTick(offset.x, offset.x + (columns - 1.0) * scale.x, stepX,
                [&](double x)
                {
                    const int at = kLeft + static_cast<int>(std::lround(Pixel({x, offset.y}).x / kFine));
                    cv::line(canvas, {at, bottom}, {at, bottom + 6}, Colours::kText);
                    WriteText(canvas, TickText(x, stepX), at, bottom + 22, kTextSize, Align::Middle);
                });
    WriteText(canvas, "x / mm", (kLeft + right) / 2, bottom + 46, 0.5, Align::Middle);

    const double rows = map.rows / zoomY;
    const double stepY = RoundStep(rows * scale.y, std::max(2, (bottom - kTop) / 60));
    ForEachTick(offset.y, offset.y + (rows - 1.0) * scale.y, stepY,
                [&](double y)
                {
                    const int at = kTop + static_cast<int>(std::lround(Pixel({offset.x, y}).y / kFine));
                    cv::line(canvas, {kLeft - 7, at}, {kLeft - 1, at}, Colours::kText);
                    WriteText(canvas, TickText(y, stepY), kLeft - 12, at + 5, kTextSize, Align::Right);
                });
    WriteText(canvas, "y / mm", kLeft - 12, kTop - 10, 0.5, Align::Right);
}

void MapPicture::DrawColourBar(cv::Mat& canvas) const
{
    const int left = kLeft + map.cols / kFine + kBarGap;
    const int height = map.rows / kFine;
    cv::Mat bar;
    cv::rotate(ColourBar(palette, {height, kBarWidth}), bar, cv::ROTATE_90_COUNTERCLOCKWISE);
    bar.copyTo(canvas(cv::Rect(left, kTop, kBarWidth, height)));
    cv::rectangle(canvas, cv::Rect(left - 1, kTop - 1, kBarWidth + 2, height + 2), Colours::kText);

    // Small heights are told in micrometres.
    const bool fine = std::max(std::abs(range.low), std::abs(range.high)) < 0.1;
    const double unit = fine ? 1e-3 : 1.0;
    const double step = RoundStep((range.high - range.low) / unit, std::max(2, height / 50));
    ForEachTick(range.low / unit, range.high / unit, step,
                [&](double value)
                {
                    const double part = (value * unit - range.low) / (range.high - range.low);
                    const int at = kTop + static_cast<int>(std::lround((1.0 - part) * (height - 1)));
                    cv::line(canvas, {left + kBarWidth, at}, {left + kBarWidth + 5, at}, Colours::kText);
                    WriteText(canvas, TickText(value, step), left + kBarWidth + 9, at + 5);
                });
    WriteText(canvas, fine ? "height / um" : "height / mm", left - 10, kTop - 10, 0.5);
}

void MapPicture::DrawPanel(cv::Mat& canvas) const
{
    const cv::Point corner(kLeft + map.cols / kFine + kBarGap + kPanelGap, kTop);
    panel.Draw(canvas, corner);
    if (!magnified.empty())
    {
        DrawMagnifier(canvas, corner.y + kLineHeight / 2 + panel.Height());
    }
}

void MapPicture::DrawMagnifier(cv::Mat& canvas, int top) const
{
    const int left = kLeft + map.cols / kFine + kBarGap + kPanelGap;
    WriteText(canvas, magnifierCaption, left, top + kLineHeight / 2 + 5);
    cv::Mat view;
    const int longest = std::max(magnified.width, magnified.height);
    cv::resize(map(magnified), view,
               {std::max(1, magnified.width * kMagnifierSize / longest),
                std::max(1, magnified.height * kMagnifierSize / longest)},
               0.0, 0.0, cv::INTER_LINEAR);
    const cv::Rect place(left, top + kLineHeight + 4, view.cols, view.rows);
    view.copyTo(canvas(place));
    cv::rectangle(canvas, place, Colours::kText);

    const cv::Point origin(kLeft, kTop);
    cv::rectangle(canvas, magnified.tl() / kFine + origin, magnified.br() / kFine + origin, Colours::kText, 2);
}

} // namespace Examples
