#include "platform/Arrays.h"

#include <ZdkVisionLib/platform/ZoVision.h>

#include <algorithm>
#include <limits>

namespace ZdkPlatform
{

struct SurfaceMessage
{
    xqObjectLayout object;
    qArray2 cells;   ///< counted; q16s
    qArray1 offsets; ///< counted; one qPoint3d64f per item
    qPoint3d64f scale;
};

template <>
inline constexpr TypeId kClassOf<SurfaceMessage> = TypeId::SurfaceMessage;

void DisposeSurfaceMessage(void* object) noexcept
{
    const SurfaceMessage& message = *static_cast<SurfaceMessage*>(object);
    ReleaseHandle(message.cells);
    ReleaseHandle(message.offsets);
}

qStatus CloneSurfaceMessage(qObject* slot, void* source, qAlloc allocator)
{
    const SurfaceMessage& original = *static_cast<SurfaceMessage*>(source);
    Draft<SurfaceMessage> draft(AcquireAllocator(allocator));
    if (!draft)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    draft->scale = original.scale;
    qStatus status = CloneObject(&draft->cells, original.cells, allocator);
    if (status == STATUS_OK)
    {
        status = CloneObject(&draft->offsets, original.offsets, allocator);
    }
    return status == STATUS_OK ? draft.Publish(slot) : status;
}

namespace
{

constexpr std::int16_t kMissing = std::numeric_limits<std::int16_t>::min();

/** The cells. A caller has their handle, too, so that it may no longer be alive. */
const Array2& CellsOf(const SurfaceMessage& message)
{
    return CastTo<Array2>(message.cells, __FILE__, __LINE__);
}

/** The offset of an item, or null when there is no such item. */
qPoint3d64f* OffsetOf(const SurfaceMessage& message, int index)
{
    const Array1& offsets = *static_cast<const Array1*>(message.offsets);
    if (index < 0 || static_cast<std::size_t>(index) >= offsets.count)
    {
        return nullptr;
    }
    return static_cast<qPoint3d64f*>(offsets.data) + index;
}

} // namespace

} // namespace ZdkPlatform

using namespace ZdkPlatform;

qStatus ZvSurfaceMsg_Construct(ZvSurfaceMsg* slot, std::size_t length, std::size_t width, std::size_t itemCount,
                               qAlloc allocator)
{
    if (slot == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    Draft<SurfaceMessage> draft(AcquireAllocator(allocator));
    if (!draft)
    {
        return STATUS_OUT_OF_MEMORY;
    }
    draft->scale = {1.0, 1.0, 1.0};
    qStatus status = qArray2_Construct(&draft->cells, xxq16s_type, length, width, allocator);
    if (status == STATUS_OK)
    {
        status = qArray1_Construct(&draft->offsets, xxqPoint3d64f_type, itemCount, allocator);
    }
    if (status != STATUS_OK)
    {
        return status;
    }
    const Array2& cells = CellsOf(*draft);
    std::fill_n(static_cast<std::int16_t*>(cells.data), length * width, kMissing);
    qArray1_Zero(draft->offsets);
    return draft.Publish(slot);
}

qStatus ZvSurfaceMsg_SetScale(ZvSurfaceMsg message, const qPoint3d64f* scale)
{
    SurfaceMessage& target = CastTo<SurfaceMessage>(message, __FILE__, __LINE__);
    return qMemCopy(&target.scale, scale, sizeof(target.scale));
}

qStatus ZvSurfaceMsg_SetOffset(ZvSurfaceMsg message, int index, const qPoint3d64f* offset)
{
    const SurfaceMessage& target = CastTo<SurfaceMessage>(message, __FILE__, __LINE__);
    return qMemCopy(OffsetOf(target, index), offset, sizeof(*offset));
}

std::size_t ZvSurfaceMsg_Width(ZvSurfaceMsg message)
{
    return CellsOf(CastTo<SurfaceMessage>(message, __FILE__, __LINE__)).length1;
}

std::size_t ZvSurfaceMsg_Length(ZvSurfaceMsg message)
{
    return CellsOf(CastTo<SurfaceMessage>(message, __FILE__, __LINE__)).length0;
}

qPoint3d64f ZvSurfaceMsg_Scale(ZvSurfaceMsg message)
{
    return CastTo<SurfaceMessage>(message, __FILE__, __LINE__).scale;
}

qStatus ZvSurfaceMsg_OffsetForRef(ZvSurfaceMsg message, int index, qPoint3d64f* offset)
{
    const SurfaceMessage& source = CastTo<SurfaceMessage>(message, __FILE__, __LINE__);
    return qMemCopy(offset, OffsetOf(source, index), sizeof(*offset));
}

qArray2 ZvSurfaceMsg_PointsArray(ZvSurfaceMsg message, int index)
{
    const SurfaceMessage& source = CastTo<SurfaceMessage>(message, __FILE__, __LINE__);
    return OffsetOf(source, index) == nullptr ? nullptr : source.cells;
}
