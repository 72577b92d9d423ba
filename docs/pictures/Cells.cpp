#include "Cells.h"

#include <algorithm>
#include <cmath>
#include <string>

namespace Pictures
{
namespace
{

struct Colour
{
    double red;
    double green;
    double blue;
};

// Equally bright steps from dark to light, which also tell low from high without colours.
constexpr Colour kPalette[] = {{68, 30, 110}, {59, 82, 139}, {33, 144, 141}, {94, 201, 98}, {246, 226, 60}};
constexpr int kLevels = 32;

std::string ColourOf(int level)
{
    const double position = 4.0 * level / (kLevels - 1);
    const int lower = std::min(static_cast<int>(position), 3);
    const double part = position - lower;
    const Colour& from = kPalette[lower];
    const Colour& to = kPalette[lower + 1];
    const auto mixed = [part](double low, double high)
    { return std::to_string(std::lround(low + part * (high - low))); };
    return "rgb(" + mixed(from.red, to.red) + "," + mixed(from.green, to.green) + "," + mixed(from.blue, to.blue) + ")";
}

constexpr int kMissingLevel = -1;

int LevelOf(short height, const Range& range)
{
    if (height == Zvl::GetNull<short>())
    {
        return kMissingLevel;
    }
    const double part = (height - range.low) / (range.high - range.low);
    return static_cast<int>(std::lround(std::clamp(part, 0.0, 1.0) * (kLevels - 1)));
}

} // namespace

Cells::Cells(Svg& target, const qPoint64f& upperLeft, double size, std::size_t rows, std::size_t columns)
    : svg(target), corner(upperLeft), pixels(size), rowCount(rows), columnCount(columns)
{
}

Place Cells::Cell(double row, double column) const
{
    return {corner.x + column * pixels, corner.y + row * pixels, pixels, pixels};
}

qPoint64f Cells::Centre(double row, double column) const
{
    return {corner.x + (column + 0.5) * pixels, corner.y + (row + 0.5) * pixels};
}

void Cells::Grid()
{
    const double right = corner.x + static_cast<double>(columnCount) * pixels;
    const double bottom = corner.y + static_cast<double>(rowCount) * pixels;
    for (std::size_t row = 0; row <= rowCount; ++row)
    {
        const double at = corner.y + static_cast<double>(row) * pixels;
        svg.Line({corner.x, at}, {right, at}, "grid");
    }
    for (std::size_t column = 0; column <= columnCount; ++column)
    {
        const double at = corner.x + static_cast<double>(column) * pixels;
        svg.Line({at, corner.y}, {at, bottom}, "grid");
    }
}

void Cells::Heights(void* array, const Range& range)
{
    for (std::size_t row = 0; row < rowCount; ++row)
    {
        const auto* heights = static_cast<const short*>(qArray2_At(array, row, 0));
        for (std::size_t first = 0; first < columnCount;)
        {
            // Neighbours of one colour are one rectangle, slightly too large, so that no seams show.
            const int level = LevelOf(heights[first], range);
            std::size_t end = first + 1;
            while (end < columnCount && LevelOf(heights[end], range) == level)
            {
                ++end;
            }
            Place place = Cell(static_cast<double>(row), static_cast<double>(first));
            place.width = static_cast<double>(end - first) * pixels + (end < columnCount ? 0.5 : 0.0);
            place.height += row + 1 < rowCount ? 0.5 : 0.0;
            if (level == kMissingLevel)
            {
                svg.Rectangle(place, "missing");
            }
            else
            {
                svg.Patch(place, ColourOf(level));
            }
            first = end;
        }
    }
}

void Cells::Mask(void* mask, int row, int column, const std::string& style)
{
    for (std::size_t r = 0; mask != nullptr && r < qArray2_Length(mask, 0); ++r)
    {
        for (std::size_t c = 0; c < qArray2_Length(mask, 1); ++c)
        {
            if (*static_cast<const unsigned char*>(qArray2_At(mask, r, c)) != 0)
            {
                svg.Rectangle(Cell(row + static_cast<double>(r), column + static_cast<double>(c)), style);
            }
        }
    }
}

void Cells::Box(const Zvl::Rect2d<int>& box, const std::string& style)
{
    svg.Rectangle({corner.x + box.x * pixels, corner.y + box.y * pixels, box.width * pixels, box.height * pixels},
                  style);
}

} // namespace Pictures
