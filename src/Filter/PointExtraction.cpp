#include <ZdkVisionLib/Filter/Filter.h>
#include <ZdkVisionLib/Utils/Utils.h>

#include "Common/Cells.h"
#include "Common/Check.h"
#include "Common/RowShare.h"
#include "Common/SelectedCells.h"
#include "Filter/CellItems.h"

#include <numeric>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::GetPointsFromROI";

/** What the workers share. Each counts its own selected cells in the first job and writes its own stretch of the
 *  list in the second, so that no item is ever moved. */
template <typename T>
struct ExtractionReceiver
{
    using Cell = typename CellItems<T>::Cell;

    const Surface* surface;
    Rect2d<int> rect;
    Cells<std::uint8_t> mask;
    Cells<const Cell> source;
    std::vector<std::size_t> counts; ///< selected cells of each worker; where its stretch begins, from then on
    T* items;
};

/** The stretches are those of a fixed number of workers. A host that changes that number meanwhile must get a
 *  failure, not items in the wrong place. */
bool HasExpectedWorkers(const std::vector<std::size_t>& counts, const qParallelArgs* args)
{
    return args->workerCount == counts.size();
}

template <typename T>
qStatus CountCallback(void* context, void* /*sender*/, const qParallelArgs* args)
{
    auto& receiver = *static_cast<ExtractionReceiver<T>*>(context);
    if (!HasExpectedWorkers(receiver.counts, args))
    {
        return STATUS_ABORTED;
    }
    const RowShare share(args, receiver.mask.rows);
    receiver.counts[args->worker] =
        CountSelected(receiver.mask.Row(share.begin), (share.end - share.begin) * receiver.mask.columns);
    return STATUS_OK;
}

template <typename T>
qStatus ParallelCallback_GetPointsFromROI(void* context, void* /*sender*/, const qParallelArgs* args)
{
    const auto& receiver = *static_cast<const ExtractionReceiver<T>*>(context);
    if (!HasExpectedWorkers(receiver.counts, args))
    {
        return STATUS_ABORTED;
    }
    if (IsIdle(args))
    {
        return STATUS_OK;
    }
    const RowShare share(args, receiver.mask.rows);
    CellItems<T> items(*receiver.surface, receiver.rect);
    T* next = receiver.items + receiver.counts[args->worker];
    for (std::size_t row = share.begin; row < share.end; ++row)
    {
        const auto* cells = receiver.source.Row(static_cast<std::size_t>(receiver.rect.y) + row) + receiver.rect.x;
        items.StartRow(row);
        ForEachSelected(receiver.mask.Row(row), receiver.mask.columns,
                        [&](std::size_t column) { *next++ = items.At(column, cells[column]); });
    }
    return STATUS_OK;
}

} // namespace

template <typename T>
void GetPointsFromROI(const Surface& surface, Rect2d<int> rect, Zo::Object<void*> mask, void** list)
{
    using Receiver = ExtractionReceiver<T>;
    void* layer = LayerOf(surface, CellItems<T>::kLayer);
    Receiver receiver = {&surface, rect,   CellsOf<std::uint8_t>(mask), CellsOf<const typename Receiver::Cell>(layer),
                         {},       nullptr};
    if (list == nullptr || !receiver.mask.HasSizeOf(rect) || !receiver.source.Contains(rect) ||
        (*list != nullptr && qArrayList_Type(*list) != GetqType<T>()))
    {
        return;
    }
    receiver.counts.resize(qThreadPool_Count(qThreadPool_Default()));
    ZVL_CHECK(kFunction, qParallel_Execute(CountCallback<T>, &receiver, layer));
    const std::size_t total = std::accumulate(receiver.counts.begin(), receiver.counts.end(), std::size_t{0});
    std::exclusive_scan(receiver.counts.begin(), receiver.counts.end(), receiver.counts.begin(), std::size_t{0});

    receiver.items = CheckAndReserveqArrayList<T>(list, total, nullptr);
    if (total == 0)
    {
        return;
    }
    ZVL_CHECK(kFunction, qParallel_Execute(ParallelCallback_GetPointsFromROI<T>, &receiver, layer));
    ZVL_CHECK(kFunction, qArrayList_Resize(*list, qArrayList_Count(*list) + total));
}

template ZDK_VISION_EXPORT void GetPointsFromROI<unsigned char>(const Surface&, Rect2d<int>, Zo::Object<void*>, void**);
template ZDK_VISION_EXPORT void GetPointsFromROI<short>(const Surface&, Rect2d<int>, Zo::Object<void*>, void**);
template ZDK_VISION_EXPORT void GetPointsFromROI<double>(const Surface&, Rect2d<int>, Zo::Object<void*>, void**);
template ZDK_VISION_EXPORT void GetPointsFromROI<qPoint3d32s>(const Surface&, Rect2d<int>, Zo::Object<void*>, void**);
template ZDK_VISION_EXPORT void GetPointsFromROI<qPoint3d64f>(const Surface&, Rect2d<int>, Zo::Object<void*>, void**);

} // namespace Zvl
