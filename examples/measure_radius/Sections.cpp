#include "measure_radius/Sections.h"

#include "support/HeightMap.h"

#include <cmath>

namespace MeasureRadius
{
namespace
{

constexpr double kRejectedPercent = 25.0;
constexpr double kSmallestShare = 0.4; // of a line's cells that must have a height

std::size_t LineLength(const Zvl::Surface& surface, Direction direction)
{
    return direction == Direction::AlongX ? Examples::Columns(surface) : Examples::Rows(surface);
}

short HeightAt(const Zvl::Surface& surface, Direction direction, std::size_t line, std::size_t cell)
{
    return direction == Direction::AlongX ? Examples::HeightRow(surface, line)[cell]
                                          : Examples::HeightRow(surface, cell)[line];
}

/** Mean height of the cells [begin, end) of all lines, in counts; 0 when all are missing. */
double MeanHeight(const Zvl::Surface& surface, Direction direction, std::size_t begin, std::size_t end)
{
    double sum = 0.0;
    std::size_t count = 0;
    for (std::size_t line = 0; line < LineCount(surface, direction); ++line)
    {
        for (std::size_t cell = begin; cell < end; ++cell)
        {
            const short height = HeightAt(surface, direction, line, cell);
            if (!Examples::IsMissing(height))
            {
                sum += height;
                ++count;
            }
        }
    }
    return count == 0 ? 0.0 : sum / static_cast<double>(count);
}

/** How far the middle third lies over the outer two. A tilt does not count: it lifts one outer third and lowers the
 * other by the same. */
double Sag(const Zvl::Surface& surface, Direction direction)
{
    const std::size_t length = LineLength(surface, direction);
    const std::size_t third = length / 3;
    const double outer =
        (MeanHeight(surface, direction, 0, third) + MeanHeight(surface, direction, length - third, length)) / 2.0;
    return std::abs(MeanHeight(surface, direction, third, length - third) - outer);
}

/** World points of the cells that have a height. */
std::vector<qPoint64f> Points(const Zvl::Profile& profile)
{
    const auto* heights = static_cast<const short*>(qArray1_Data(profile.layers[0]));
    std::vector<qPoint64f> points;
    for (std::size_t cell = 0; cell < qArray1_Count(profile.layers[0]); ++cell)
    {
        if (!Examples::IsMissing(heights[cell]))
        {
            points.push_back({profile.offset.x + static_cast<double>(cell) * profile.scale.x,
                              profile.offset.y + heights[cell] * profile.scale.y});
        }
    }
    return points;
}

} // namespace

Direction CurvedDirection(const Zvl::Surface& surface)
{
    return Sag(surface, Direction::AlongX) >= Sag(surface, Direction::AlongY) ? Direction::AlongX : Direction::AlongY;
}

std::size_t LineCount(const Zvl::Surface& surface, Direction direction)
{
    return direction == Direction::AlongX ? Examples::Rows(surface) : Examples::Columns(surface);
}

Zvl::Profile CutSection(const Zvl::Surface& surface, Direction direction, std::size_t line)
{
    const bool alongX = direction == Direction::AlongX;
    const qPoint3d64f& offset = surface.offset;
    const qPoint3d64f& scale = surface.scale;
    Zvl::Profile section({alongX ? offset.x : offset.y, offset.z}, {alongX ? scale.x : scale.y, scale.z});

    const std::size_t length = LineLength(surface, direction);
    const std::size_t layer = section.AddLayer(xxq16s_type, length, nullptr);
    auto* heights = static_cast<short*>(qArray1_Data(section.layers[layer]));
    for (std::size_t cell = 0; cell < length; ++cell)
    {
        heights[cell] = HeightAt(surface, direction, line, cell);
    }
    return section;
}

double SectionCircle::Residual(const qPoint64f& point) const
{
    return std::hypot(point.x - center.x, point.y - center.y) - radius;
}

double SectionCircle::RootMeanSquare() const
{
    double sum = 0.0;
    for (const qPoint64f& point : kept)
    {
        sum += Residual(point) * Residual(point);
    }
    return std::sqrt(sum / static_cast<double>(kept.size()));
}

std::optional<SectionCircle> FitSection(const Zvl::Surface& surface, Direction direction, std::size_t line)
{
    const std::vector<qPoint64f> points = Points(CutSection(surface, direction, line));
    const auto fewest = static_cast<std::size_t>(kSmallestShare * static_cast<double>(LineLength(surface, direction)));
    if (points.size() < 3 || points.size() < fewest)
    {
        return std::nullopt;
    }
    const bool alongX = direction == Direction::AlongX;
    SectionCircle circle{};
    circle.line = line;
    circle.position = alongX ? surface.offset.y + static_cast<double>(line) * surface.scale.y
                             : surface.offset.x + static_cast<double>(line) * surface.scale.x;
    try
    {
        Zvl::FitCircle(points.data(), points.size(), kRejectedPercent, Zvl::CIRCLE_LSC, &circle.center, &circle.radius,
                       nullptr, nullptr, nullptr, nullptr, nullptr, &circle.kept, &circle.rejected);
    }
    catch (const Zo::Exception&) // points on one straight line
    {
        return std::nullopt;
    }
    return circle;
}

} // namespace MeasureRadius
