#include "profile_gauge/Line.h"

#include <cmath>

namespace ProfileGauge
{

double Line::Distance(const qPoint64f& from) const
{
    return direction.x * (from.y - point.y) - direction.y * (from.x - point.x);
}

qPoint64f Line::At(double x) const
{
    return {x, point.y + direction.y / direction.x * (x - point.x)};
}

double Line::Degrees() const
{
    return std::atan2(direction.y, direction.x) * 180.0 / 3.141592653589793;
}

std::optional<Line> LineThrough(const std::vector<qPoint64f>& points)
{
    const qPoint64f mean = Mean(points);
    double alongX = 0.0;
    double alongY = 0.0;
    double mixed = 0.0;
    for (const qPoint64f& point : points)
    {
        const qPoint64f away{point.x - mean.x, point.y - mean.y};
        alongX += away.x * away.x;
        alongY += away.y * away.y;
        mixed += away.x * away.y;
    }
    if (!(alongX + alongY > 0.0))
    {
        return std::nullopt;
    }
    const double angle = 0.5 * std::atan2(2.0 * mixed, alongX - alongY); // of the longer principal axis
    return Line{mean, {std::cos(angle), std::sin(angle)}};
}

qPoint64f Mean(const std::vector<qPoint64f>& points)
{
    qPoint64f sum{0.0, 0.0};
    for (const qPoint64f& point : points)
    {
        sum.x += point.x;
        sum.y += point.y;
    }
    const auto count = static_cast<double>(points.size());
    return {sum.x / count, sum.y / count};
}

} // namespace ProfileGauge
