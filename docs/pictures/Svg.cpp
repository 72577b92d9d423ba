#include "Svg.h"

#include <cmath>
#include <fstream>
#include <iomanip>
#include <stdexcept>

namespace Pictures
{
namespace
{

const char* const kStyle = R"(
svg { color-scheme: light dark; background: var(--paper); }
svg { --ink: #24292f; --grid: #ccd3da; --paper: #ffffff; --blue: #0b62a8; --orange: #c2540a; --green: #1a7f37;
      --missing: #57606a; }
@media (prefers-color-scheme: dark) {
svg { --ink: #d7dde4; --grid: #3c454f; --paper: #0d1117; --blue: #6cb6ff; --orange: #ffa657; --green: #57d364;
      --missing: #8b949e; }
}
.text { font: 14px system-ui, sans-serif; fill: var(--ink); stroke: none; }
.small { font-size: 12px; }
.strong { font-weight: 600; }
.middle { text-anchor: middle; }
.end { text-anchor: end; }
.line { stroke: var(--ink); stroke-width: 1.5; fill: none; }
.grid { stroke: var(--grid); stroke-width: 1; fill: none; }
.paper { fill: var(--paper); stroke: var(--ink); stroke-width: 1.5; }
.blue { stroke: var(--blue); }
.orange { stroke: var(--orange); }
.green { stroke: var(--green); }
.thick { stroke-width: 2.5; }
.thin { stroke-width: 0.8; }
.dashed { stroke-dasharray: 5 4; }
.fill-blue { fill: var(--blue); fill-opacity: 0.25; stroke: none; }
.fill-orange { fill: var(--orange); fill-opacity: 0.25; stroke: none; }
.fill-green { fill: var(--green); fill-opacity: 0.25; stroke: none; }
.dot-ink { fill: var(--ink); }
.dot-blue { fill: var(--blue); }
.dot-orange { fill: var(--orange); }
.dot-green { fill: var(--green); }
.missing { fill: var(--missing); stroke: none; }
)";

std::string Escaped(const std::string& text)
{
    std::string escaped;
    for (const char character : text)
    {
        switch (character)
        {
        case '<':
            escaped += "&lt;";
            break;
        case '&':
            escaped += "&amp;";
            break;
        default:
            escaped += character;
        }
    }
    return escaped;
}

} // namespace

std::string Fixed(double value, int decimals)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

Svg::Svg(double widthInPixels, double heightInPixels) : width(widthInPixels), height(heightInPixels)
{
    content.precision(5);
}

void Svg::Line(const qPoint64f& from, const qPoint64f& to, const std::string& style)
{
    Path({from, to}, style);
}

void Svg::Arrow(const qPoint64f& from, const qPoint64f& to, const std::string& style)
{
    constexpr double kTip = 9.0;
    const double direction = std::atan2(to.y - from.y, to.x - from.x);
    const auto wing = [&](double turn) {
        return qPoint64f{to.x - kTip * std::cos(direction + turn), to.y - kTip * std::sin(direction + turn)};
    };
    Line(from, to, style);
    Path({wing(0.4), to, wing(-0.4)}, style);
}

void Svg::Rectangle(const Place& place, const std::string& style)
{
    content << "<rect class='" << style << "' x='" << place.x << "' y='" << place.y << "' width='" << place.width
            << "' height='" << place.height << "'/>\n";
}

void Svg::Patch(const Place& place, const std::string& colour)
{
    content << "<rect fill='" << colour << "' x='" << place.x << "' y='" << place.y << "' width='" << place.width
            << "' height='" << place.height << "'/>\n";
}

void Svg::Circle(const qPoint64f& center, double radius, const std::string& style)
{
    content << "<circle class='" << style << "' cx='" << center.x << "' cy='" << center.y << "' r='" << radius
            << "'/>\n";
}

void Svg::Path(const std::vector<qPoint64f>& points, const std::string& style, bool isClosed)
{
    content << '<' << (isClosed ? "polygon" : "polyline") << " class='" << style << "' points='";
    for (const qPoint64f& point : points)
    {
        content << point.x << ',' << point.y << ' ';
    }
    content << "'/>\n";
}

void Svg::Text(const qPoint64f& at, const std::string& text, const std::string& style)
{
    content << "<text class='" << style << "' x='" << at.x << "' y='" << at.y << "'>" << Escaped(text) << "</text>\n";
}

void Svg::Write(const std::filesystem::path& path) const
{
    std::ofstream file(path);
    file << "<svg xmlns='http://www.w3.org/2000/svg' width='" << width << "' height='" << height << "' viewBox='0 0 "
         << width << ' ' << height << "'>\n<style>" << kStyle << "</style>\n"
         << content.str() << "</svg>\n";
    file.close();
    if (!file)
    {
        throw std::runtime_error(path.string() + ": cannot be written");
    }
}

} // namespace Pictures
