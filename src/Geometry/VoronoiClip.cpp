#include "Geometry/VoronoiClip.h"

#include <algorithm>

namespace Zvl
{

namespace
{

/** A line `v = c - slope u`, and the range of u and v. */
struct Window
{
    double slope;
    double c;
    double minU;
    double maxU;
    double minV;
    double maxV;
};

struct End
{
    double u;
    double v;
};

/** The line at u, or where it leaves the range of v. */
End EndAt(const Window& window, double u)
{
    const double v = window.c - window.slope * u;
    if (v > window.maxV)
    {
        return {(window.c - window.maxV) / window.slope, window.maxV};
    }
    if (v < window.minV)
    {
        return {(window.c - window.minV) / window.slope, window.minV};
    }
    return {u, v};
}

struct Ends
{
    End first;
    End second;
};

/** @param low,high where the edge begins and ends along u; null at infinity */
Ends Clip(const Window& window, const double* low, const double* high)
{
    const double first = low != nullptr ? std::min(std::max(window.minU, *low), window.maxU) : window.minU;
    const double second = high != nullptr ? std::max(std::min(window.maxU, *high), window.minU) : window.maxU;
    return {EndAt(window, first), EndAt(window, second)};
}

} // namespace

bool ClipEdge(VoronoiEdge& edge, const qPoint64f& min, const qPoint64f& max)
{
    const VoronoiLine line = edge.line;
    const int low = line.a == 1.0 && line.b >= 0.0 ? 1 : 0;
    const qPoint64f* lowEnd = IsNullPoint(edge.pos[low]) ? nullptr : &edge.pos[low];
    const qPoint64f* highEnd = IsNullPoint(edge.pos[1 - low]) ? nullptr : &edge.pos[1 - low];
    if (line.a == 1.0)
    {
        const Ends ends = Clip({line.b, edge.c, min.y, max.y, min.x, max.x}, lowEnd != nullptr ? &lowEnd->y : nullptr,
                               highEnd != nullptr ? &highEnd->y : nullptr);
        edge.pos[0] = {ends.first.v, ends.first.u};
        edge.pos[1] = {ends.second.v, ends.second.u};
    }
    else
    {
        const Ends ends = Clip({line.a, edge.c, min.x, max.x, min.y, max.y}, lowEnd != nullptr ? &lowEnd->x : nullptr,
                               highEnd != nullptr ? &highEnd->x : nullptr);
        edge.pos[0] = {ends.first.u, ends.first.v};
        edge.pos[1] = {ends.second.u, ends.second.v};
    }
    return edge.pos[0].x != edge.pos[1].x || edge.pos[0].y != edge.pos[1].y;
}

} // namespace Zvl
