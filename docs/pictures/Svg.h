#pragma once

#include <ZdkVisionLib/platform/qApi.h>

#include <filesystem>
#include <sstream>
#include <string>
#include <vector>

namespace Pictures
{

/** A number with so many decimals. */
std::string Fixed(double value, int decimals);

/** A rectangle of the picture, in pixels; y points down. */
struct Place
{
    double x;
    double y;
    double width;
    double height;
};

/** A drawing as an SVG file. Styles are names of classes, several of them with spaces between; the file brings their
 *  colours along, for light and for dark pages. */
class Svg
{
public:
    Svg(double width, double height);

    void Line(const qPoint64f& from, const qPoint64f& to, const std::string& style);
    void Arrow(const qPoint64f& from, const qPoint64f& to, const std::string& style);
    void Rectangle(const Place& place, const std::string& style);

    /** Fills a rectangle with a colour such as "rgb(0,0,0)". */
    void Patch(const Place& place, const std::string& colour);
    void Circle(const qPoint64f& center, double radius, const std::string& style);
    void Path(const std::vector<qPoint64f>& points, const std::string& style, bool isClosed = false);
    void Text(const qPoint64f& at, const std::string& text, const std::string& style = "text");

    /** @throws std::runtime_error when the file cannot be written */
    void Write(const std::filesystem::path& path) const;

private:
    std::ostringstream content;
    double width;
    double height;
};

} // namespace Pictures
