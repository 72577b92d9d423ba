#pragma once

/** @file
 *  The beach line: the breakpoints from left to right, between two ends that have no edge. */

#include "Geometry/VoronoiBeachIndex.h"

#include <optional>

namespace Zvl
{

/** A linked list of half-edges. Half-edges that have left it are used again. */
class VoronoiBeach
{
public:
    /** @param tableMemory room for VoronoiBeachIndex::TableSize() pointers */
    VoronoiBeach(VoronoiArena& memory, VoronoiBeachRun** tableMemory);

    VoronoiHalfEdge* LeftEnd() const { return leftEnd; }
    VoronoiHalfEdge* RightEnd() const { return rightEnd; }

    /** The half-edge left of the arc above @p p, or the left end. */
    VoronoiHalfEdge* FindArc(const qPoint64f& p, const qPoint64f& min, const qPoint64f& max) const;

    /** Lets the next search begin at @p halfEdge. */
    void SearchFrom(VoronoiHalfEdge* halfEdge) { lastInserted = halfEdge; }

    VoronoiHalfEdge* InsertAfter(VoronoiHalfEdge* previous, VoronoiEdge* edge, std::int32_t direction);

    /** Removes @p halfEdge and its right neighbour, between which an arc has vanished, and puts a half-edge on @p edge in
     *  their place. */
    VoronoiHalfEdge* ReplacePair(VoronoiHalfEdge* halfEdge, VoronoiEdge* edge, std::int32_t direction);

private:
    /** True when the breakpoints near @p found agree that those left of it, and it, are left of @p p, and no others. */
    bool IsOnlyChangeNear(const VoronoiHalfEdge* found, const qPoint64f& p) const;

    void List();
    VoronoiHalfEdge* New();
    void LinkAfter(VoronoiHalfEdge* previous, VoronoiHalfEdge* added);
    void Unlink(VoronoiHalfEdge* removed);

    VoronoiArena& arena;
    VoronoiBeachIndex index;
    bool isListed = false;           // in the index
    std::int32_t size = 0;           // number of breakpoints
    VoronoiHalfEdge* free = nullptr; // linked by `right`
    VoronoiHalfEdge* leftEnd;
    VoronoiHalfEdge* rightEnd;
    VoronoiHalfEdge* lastInserted = nullptr;
};

/** True when @p p, a point on the sweep line, lies right of the breakpoint. The breakpoint itself is not computed: p is
 *  compared with the parabola that the arc of the upper site and the bisector describe. */
bool IsRightOf(const VoronoiHalfEdge& halfEdge, const qPoint64f& p);

/** Bisectors whose squared determinant is below this count as parallel. */
inline constexpr double kVoronoiParallelBelow = 9.99999993922529e-9;

/** Where two neighbouring breakpoints meet, if they do. */
inline std::optional<qPoint64f> VoronoiIntersect(const VoronoiHalfEdge& left, const VoronoiHalfEdge& right)
{
    if (left.edge == nullptr || right.edge == nullptr || left.edge->sites[1] == right.edge->sites[1])
    {
        return std::nullopt;
    }
    const double d = left.line.a * right.line.b - left.line.b * right.line.a;
    if (d * d < kVoronoiParallelBelow)
    {
        return std::nullopt;
    }
    const qPoint64f crossing = {(left.c * right.line.b - right.c * left.line.b) / d,
                                (left.line.a * right.c - right.line.a * left.c) / d};
    const VoronoiHalfEdge& lower = ComesBefore(left.top, right.top) ? left : right;
    const bool isRight = crossing.x >= lower.top.x;
    return isRight == (lower.direction == kLeft) ? std::nullopt : std::optional(crossing);
}

} // namespace Zvl
