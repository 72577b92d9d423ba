#pragma once

#include "Svg.h"

#include <string>
#include <vector>

namespace Pictures
{

struct Range
{
    double low;
    double high;
};

/** A diagram with two axes, in world units; y points up. */
class Chart
{
public:
    Chart(Svg& target, const Place& area, const std::string& title, const Range& across, const Range& up);

    qPoint64f At(const qPoint64f& world) const;
    double Length(double worldLength) const; ///< along x, in pixels

    void Dots(const std::vector<qPoint64f>& points, const std::string& style, double radius = 2.5);
    void Curve(const std::vector<qPoint64f>& points, const std::string& style);
    void Circle(const qPoint64f& center, double radius, const std::string& style);

private:
    Svg& svg;
    Place place;
    Range x;
    Range y;
};

} // namespace Pictures
