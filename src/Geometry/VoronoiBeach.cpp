#include "Geometry/VoronoiBeach.h"

namespace Zvl
{

namespace
{

/** The search for an arc is a walk from the last insertion to the first change of sides. On a beach line of more breakpoints
 *  than this the index is faster. It finds a change, which is the only one unless rounding has put breakpoints out of order,
 *  as it does between sites that are almost on one line. */
constexpr std::int32_t kShortBeach = 256;

/** A beach line that has become shorter than this is no longer listed in the index. */
constexpr std::int32_t kUnlistedBeach = kShortBeach / 2;

/** Breakpoints on either side of a change that must agree with it before it is taken for the only one. */
constexpr int kNear = 4;

/** IsRightOf() for a steep bisector, `x + b y = c`, which is above or below the site's parabola in most cases by its
 *  slope alone. */
bool IsAboveSteep(const VoronoiHalfEdge& halfEdge, const qPoint64f& p, double dx, double dy, bool isRight)
{
    const double slope = halfEdge.line.b;
    bool above;
    bool decided;
    if ((!isRight && slope < 0.0) || (isRight && slope >= 0.0))
    {
        above = dy >= slope * dx;
        decided = above;
    }
    else
    {
        above = p.x + p.y * slope > halfEdge.c;
        above = slope < 0.0 ? !above : above;
        decided = !above;
    }
    if (!decided)
    {
        const double between = halfEdge.top.x - halfEdge.edge->sites[0]->p.x;
        above = between * dy * (1.0 + 2.0 * dx / between + slope * slope) > slope * (dx * dx - dy * dy);
        above = slope < 0.0 ? !above : above;
    }
    return above;
}

/** IsRightOf() for a flat bisector, `a x + y = c`: the distance to the bisector's point at p.x decides. */
bool IsAboveFlat(const VoronoiHalfEdge& halfEdge, const qPoint64f& p, double dx)
{
    const double y = halfEdge.c - halfEdge.line.a * p.x;
    const double toPoint = p.y - y;
    const double toSite = y - halfEdge.top.y;
    return toPoint * toPoint > dx * dx + toSite * toSite;
}

} // namespace

bool IsRightOf(const VoronoiHalfEdge& halfEdge, const qPoint64f& p)
{
    const qPoint64f& top = halfEdge.top;
    const bool isRight = p.x > top.x;
    if (isRight == (halfEdge.direction == kLeft))
    {
        return isRight;
    }
    const double dx = p.x - top.x;
    const bool above =
        halfEdge.line.a == 1.0 ? IsAboveSteep(halfEdge, p, dx, p.y - top.y, isRight) : IsAboveFlat(halfEdge, p, dx);
    return above == (halfEdge.direction == kLeft);
}

VoronoiBeach::VoronoiBeach(VoronoiArena& memory, VoronoiBeachRun** tableMemory)
    : arena(memory), index(memory, tableMemory), leftEnd(New()), rightEnd(New())
{
    leftEnd->right = rightEnd;
    rightEnd->left = leftEnd;
}

VoronoiHalfEdge* VoronoiBeach::FindArc(const qPoint64f& p, const qPoint64f& min, const qPoint64f& max) const
{
    if (size > kShortBeach)
    {
        VoronoiHalfEdge* found =
            index.FindLast([&p](const VoronoiHalfEdge* halfEdge) { return IsRightOf(*halfEdge, p); });
        found = found != nullptr ? found : leftEnd;
        if (IsOnlyChangeNear(found, p))
        {
            return found;
        }
    }
    VoronoiHalfEdge* start = lastInserted;
    if (start == nullptr)
    {
        start = (max.x - min.x) / 2.0 > p.x ? leftEnd : rightEnd;
    }
    if (start == rightEnd || (start != leftEnd && !IsRightOf(*start, p)))
    {
        do
        {
            start = start->left;
        } while (start != leftEnd && !IsRightOf(*start, p));
        return start;
    }
    do
    {
        start = start->right;
    } while (start != rightEnd && IsRightOf(*start, p));
    return start->left;
}

bool VoronoiBeach::IsOnlyChangeNear(const VoronoiHalfEdge* found, const qPoint64f& p) const
{
    const VoronoiHalfEdge* before = found;
    const VoronoiHalfEdge* after = found->right;
    for (int i = 0; i < kNear; ++i)
    {
        if ((before != leftEnd && !IsRightOf(*before, p)) || (after != rightEnd && IsRightOf(*after, p)))
        {
            return false;
        }
        before = before != leftEnd ? before->left : before;
        after = after != rightEnd ? after->right : after;
    }
    return true;
}

VoronoiHalfEdge* VoronoiBeach::InsertAfter(VoronoiHalfEdge* previous, VoronoiEdge* edge, std::int32_t direction)
{
    VoronoiHalfEdge* added = New();
    added->PutOn(*edge, direction);
    if (isListed)
    {
        index.InsertAfter(previous == leftEnd ? nullptr : previous, added);
    }
    LinkAfter(previous, added);
    ++size;
    if (!isListed && size > kShortBeach)
    {
        List();
    }
    return added;
}

VoronoiHalfEdge* VoronoiBeach::ReplacePair(VoronoiHalfEdge* halfEdge, VoronoiEdge* edge, std::int32_t direction)
{
    VoronoiHalfEdge* previous = halfEdge->left;
    VoronoiHalfEdge* second = halfEdge->right;
    VoronoiHalfEdge* added = New();
    added->PutOn(*edge, direction);
    if (isListed)
    {
        VoronoiBeachIndex::Replace(halfEdge, added);
        index.Remove(second);
    }
    Unlink(halfEdge);
    Unlink(second);
    LinkAfter(previous, added);
    --size;
    if (isListed && size < kUnlistedBeach)
    {
        index.Clear();
        isListed = false;
    }
    return added;
}

/** Lists the breakpoints in the index, which is empty. */
void VoronoiBeach::List()
{
    const VoronoiHalfEdge* previous = nullptr;
    for (VoronoiHalfEdge* halfEdge = leftEnd->right; halfEdge != rightEnd; halfEdge = halfEdge->right)
    {
        index.InsertAfter(previous, halfEdge);
        previous = halfEdge;
    }
    isListed = true;
}

VoronoiHalfEdge* VoronoiBeach::New()
{
    VoronoiHalfEdge* halfEdge = free;
    if (halfEdge != nullptr)
    {
        free = halfEdge->right;
        *halfEdge = {};
    }
    else
    {
        halfEdge = arena.New<VoronoiHalfEdge>("Zvl::GenerateVoronoi");
    }
    return halfEdge;
}

void VoronoiBeach::LinkAfter(VoronoiHalfEdge* previous, VoronoiHalfEdge* added)
{
    added->left = previous;
    added->right = previous->right;
    previous->right->left = added;
    previous->right = added;
}

void VoronoiBeach::Unlink(VoronoiHalfEdge* removed)
{
    removed->left->right = removed->right;
    removed->right->left = removed->left;
    removed->right = free;
    free = removed;
}

} // namespace Zvl
