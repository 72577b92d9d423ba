#include "Common/MergeRows.h"

#include "Common/Cells.h"
#include "Common/LayerWindow.h"
#include "Common/MaskKernels.h"
#include "Common/Rounding.h"
#include "Common/RowShare.h"

namespace Zvl
{

namespace
{

std::int32_t Distance(int from, int to)
{
    return ClampToInt(std::int64_t{to} - from);
}

} // namespace

MergeReceiver::MergeReceiver(const Zo::Object<void*>& source, const Rect2d<int>& rect, const Rect2d<int>& target)
    : source(source),
      width(static_cast<std::uint64_t>(std::max(rect.width, 0))),
      height(static_cast<std::uint64_t>(std::max(rect.height, 0))),
      column(Distance(target.x, rect.x)),
      row(Distance(target.y, rect.y))
{
}

qStatus MergeMaskRows(void* context, void* /*sender*/, const qParallelArgs* args)
{
    if (IsIdle(args))
    {
        return STATUS_OK;
    }
    const auto& receiver = *static_cast<const MergeReceiver*>(context);
    const Cells<const std::uint8_t> source = CellsOf<const std::uint8_t>(receiver.source);
    const std::size_t rows = std::min<std::uint64_t>(source.rows, receiver.height);
    const RowShare share(args, rows);
    const Cells<std::uint8_t> target = CellsOf<std::uint8_t>(args->target);
    const LayerWindow window({receiver.column, receiver.row}, rows, std::min(source.columns, receiver.width),
                             target.rows, target.columns);
    const std::size_t end = window.EndRow(share.end);
    for (std::size_t row = window.BeginRow(share.begin); row < end; ++row)
    {
        MergeCells(source.Row(row) + window.columns.first, target.Row(window.LayerRow(row)) + window.LayerColumn(),
                   window.ColumnCount());
    }
    return STATUS_OK;
}

} // namespace Zvl
