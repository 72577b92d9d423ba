#include "Geometry/VoronoiSweep.h"

#include "Geometry/VoronoiCells.h"
#include "Geometry/VoronoiClip.h"

#include <cmath>
#include <utility>

namespace Zvl
{

void VoronoiSweep::Run()
{
    std::size_t next = 1; // the first site is the beach line's only arc at the start
    for (;;)
    {
        const bool hasSite = next < internal.sites.size();
        if (hasSite && (queue.Empty() || ComesBefore(internal.sites[next].p, {queue.Top().vertex.x, queue.Top().y})))
        {
            MeetSite(internal.sites[next++]);
        }
        else if (!queue.Empty())
        {
            MeetCircle();
        }
        else
        {
            break;
        }
    }
    FinishBeach();
}

/** A new arc splits the one above the site. Both of its ends move along the bisector of the two sites. */
void VoronoiSweep::MeetSite(VoronoiSite& site)
{
    VoronoiHalfEdge* left = beach.FindArc(site.p, internal.min, internal.max);
    VoronoiHalfEdge* right = left->right;
    VoronoiSite* bottom = left->edge != nullptr ? left->edge->sites[1 - left->direction] : internal.sites.data();
    VoronoiEdge* edge = NewEdge(bottom, &site);
    VoronoiHalfEdge* leftEnd = beach.InsertAfter(left, edge, kLeft);
    VoronoiHalfEdge* rightEnd = beach.InsertAfter(leftEnd, edge, kRight);
    beach.SearchFrom(right);
    ScheduleMeeting(left, site.p);
    ScheduleMeeting(rightEnd, site.p);
}

/** An arc vanishes: its two ends meet in a vertex, from which a new edge goes on. */
void VoronoiSweep::MeetCircle()
{
    VoronoiHalfEdge* left = queue.Pop();
    VoronoiHalfEdge* right = left->right;
    VoronoiHalfEdge* leftNeighbor = left->left;
    VoronoiHalfEdge* rightNeighbor = right->right;
    VoronoiSite* bottom = left->edge->sites[left->direction];
    VoronoiSite* top = right->edge->sites[1 - right->direction];
    const qPoint64f vertex = left->vertex;

    EndEdge(*left->edge, left->direction, vertex);
    EndEdge(*right->edge, right->direction, vertex);
    beach.SearchFrom(rightNeighbor);
    queue.Remove(right);

    std::int32_t direction = kLeft;
    if (bottom->p.y > top->p.y)
    {
        std::swap(bottom, top);
        direction = kRight;
    }
    VoronoiEdge* edge = NewEdge(bottom, top);
    VoronoiHalfEdge* added = beach.ReplacePair(left, edge, direction);
    EndEdge(*edge, 1 - direction, vertex);
    ScheduleMeeting(leftNeighbor, bottom->p);
    ScheduleMeeting(added, bottom->p);
}

/** Queues the event at which @p left meets its right neighbour, when they do. */
void VoronoiSweep::ScheduleMeeting(VoronoiHalfEdge* left, const qPoint64f& site)
{
    const std::optional<qPoint64f> meeting = VoronoiIntersect(*left, *left->right);
    if (meeting.has_value())
    {
        const double dx = site.x - meeting->x;
        const double dy = site.y - meeting->y;
        queue.Remove(left);
        left->vertex = *meeting;
        left->y = meeting->y + std::sqrt(dx * dx + dy * dy);
        queue.Push(left);
    }
}

VoronoiEdge* VoronoiSweep::NewEdge(VoronoiSite* first, VoronoiSite* second)
{
    auto* edge = internal.arena.New<VoronoiEdge>("Zvl::GenerateVoronoi");
    edge->next = internal.edges;
    internal.edges = edge;
    edge->sites[0] = first;
    edge->sites[1] = second;
    edge->pos[0] = kVoronoiNullPoint;
    edge->pos[1] = kVoronoiNullPoint;

    const double dx = second->p.x - first->p.x;
    const double dy = second->p.y - first->p.y;
    const double c = dx * (first->p.x + dx * 0.5) + dy * (first->p.y + dy * 0.5);
    const bool isSteep = dx * dx > dy * dy || dy == 0.0; // squares of the smallest numbers vanish
    edge->line = isSteep ? VoronoiLine{1.0, dy / dx} : VoronoiLine{dx / dy, 1.0};
    edge->c = c / (isSteep ? dx : dy);
    return edge;
}

void VoronoiSweep::EndEdge(VoronoiEdge& edge, std::int32_t side, const qPoint64f& vertex)
{
    edge.pos[side] = vertex;
    if (!IsNullPoint(edge.pos[1 - side]))
    {
        FinishEdge(internal, edge);
    }
}

/** Finishes the edges that go to infinity. An edge that does so on both sides has two half-edges on the beach line, and
 *  no open end any more when the second one is met. */
void VoronoiSweep::FinishBeach()
{
    for (VoronoiHalfEdge* halfEdge = beach.LeftEnd()->right; halfEdge != beach.RightEnd(); halfEdge = halfEdge->right)
    {
        VoronoiEdge& edge = *halfEdge->edge;
        if (IsNullPoint(edge.pos[0]) || IsNullPoint(edge.pos[1]))
        {
            FinishEdge(internal, edge);
        }
    }
}

} // namespace Zvl
