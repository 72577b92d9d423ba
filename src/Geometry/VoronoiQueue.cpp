#include "Geometry/VoronoiQueue.h"

#include "Common/Check.h"

namespace Zvl
{

namespace
{

bool SortsAfter(const VoronoiHalfEdge* a, const VoronoiHalfEdge* b)
{
    return a->y > b->y || (a->y == b->y && a->vertex.x > b->vertex.x);
}

} // namespace

void VoronoiQueue::Push(VoronoiHalfEdge* added)
{
    if (numitems >= maxnumitems)
    {
        ZVL_THROW("Zvl::GenerateVoronoi", STATUS_ABORTED);
    }
    MoveUp(added, numitems++);
}

VoronoiHalfEdge* VoronoiQueue::Pop()
{
    VoronoiHalfEdge* lowest = items[1];
    VoronoiHalfEdge* last = items[--numitems];
    if (!Empty())
    {
        MoveDown(last, 1);
    }
    return lowest;
}

void VoronoiQueue::Remove(const VoronoiHalfEdge* removed)
{
    if (Empty() || removed->pqpos == 0)
    {
        return;
    }
    VoronoiHalfEdge* last = items[--numitems];
    if (removed->pqpos == numitems)
    {
        return;
    }
    if (SortsAfter(removed, last))
    {
        MoveUp(last, removed->pqpos);
    }
    else
    {
        MoveDown(last, removed->pqpos);
    }
}

void VoronoiQueue::Place(VoronoiHalfEdge* item, std::int32_t position)
{
    items[position] = item;
    item->pqpos = position;
}

void VoronoiQueue::MoveUp(VoronoiHalfEdge* item, std::int32_t position)
{
    while (position > 1 && SortsAfter(items[position / 2], item))
    {
        Place(items[position / 2], position);
        position /= 2;
    }
    Place(item, position);
}

void VoronoiQueue::MoveDown(VoronoiHalfEdge* item, std::int32_t position)
{
    while (2 * position < numitems)
    {
        std::int32_t child = 2 * position;
        if (child + 1 < numitems && SortsAfter(items[child], items[child + 1]))
        {
            ++child;
        }
        if (!SortsAfter(item, items[child]))
        {
            break;
        }
        Place(items[child], position);
        position = child;
    }
    Place(item, position);
}

} // namespace Zvl
