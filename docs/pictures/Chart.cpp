#include "Chart.h"

#include <cmath>
#include <sstream>

namespace Pictures
{
namespace
{

/** 1, 2 or 5 times a power of ten that divides @p length into at most 8 parts. */
double TickStep(double length)
{
    const double power = std::pow(10.0, std::floor(std::log10(length / 8.0)));
    for (const double factor : {1.0, 2.0, 5.0})
    {
        if (length / (factor * power) <= 8.0)
        {
            return factor * power;
        }
    }
    return 10.0 * power;
}

std::string TickText(double value)
{
    std::ostringstream text;
    text << (std::abs(value) < 1e-9 ? 0.0 : value);
    return text.str();
}

template <typename Draw>
void ForEachTick(const Range& range, Draw draw)
{
    const double step = TickStep(range.high - range.low);
    const auto first = static_cast<int>(std::ceil(range.low / step - 1e-9));
    const auto last = static_cast<int>(std::floor(range.high / step + 1e-9));
    for (int tick = first; tick <= last; ++tick)
    {
        draw(tick * step);
    }
}

} // namespace

Chart::Chart(Svg& target, const Place& area, const std::string& title, const Range& across, const Range& up)
    : svg(target), place(area), x(across), y(up)
{
    const double bottom = place.y + place.height;
    ForEachTick(x,
                [&](double value)
                {
                    const double at = At({value, y.low}).x;
                    svg.Line({at, place.y}, {at, bottom}, "grid");
                    svg.Text({at, bottom + 16.0}, TickText(value), "text small middle");
                });
    ForEachTick(y,
                [&](double value)
                {
                    const double at = At({x.low, value}).y;
                    svg.Line({place.x, at}, {place.x + place.width, at}, "grid");
                    svg.Text({place.x - 6.0, at + 4.0}, TickText(value), "text small end");
                });
    svg.Rectangle(place, "line");
    svg.Text({place.x, place.y - 8.0}, title, "text strong");
}

qPoint64f Chart::At(const qPoint64f& world) const
{
    return {place.x + (world.x - x.low) / (x.high - x.low) * place.width,
            place.y + (y.high - world.y) / (y.high - y.low) * place.height};
}

double Chart::Length(double worldLength) const
{
    return worldLength / (x.high - x.low) * place.width;
}

void Chart::Dots(const std::vector<qPoint64f>& points, const std::string& style, double radius)
{
    for (const qPoint64f& point : points)
    {
        svg.Circle(At(point), radius, style);
    }
}

void Chart::Curve(const std::vector<qPoint64f>& points, const std::string& style)
{
    std::vector<qPoint64f> pixels;
    pixels.reserve(points.size());
    for (const qPoint64f& point : points)
    {
        pixels.push_back(At(point));
    }
    svg.Path(pixels, style);
}

void Chart::Circle(const qPoint64f& center, double radius, const std::string& style)
{
    svg.Circle(At(center), Length(radius), style);
}

} // namespace Pictures
