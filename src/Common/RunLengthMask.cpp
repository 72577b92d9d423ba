#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "Common/Check.h"
#include "Common/NewMask.h"

#include <algorithm>
#include <cstring>
#include <limits>

namespace Zvl
{

namespace
{

constexpr char kFunction[] = "Zvl::RLEToMask";

/** A run of cells in a row, as the list holds it. */
struct Run
{
    std::int32_t row;
    std::int32_t column;
    std::int32_t length;
};

/** Extremes of the runs, wide enough for the end of every run. */
struct Extent
{
    std::int64_t firstColumn = std::numeric_limits<std::int32_t>::max();
    std::int64_t lastEnd = std::numeric_limits<std::int32_t>::min();
    std::int64_t firstRow = std::numeric_limits<std::int32_t>::max();
    std::int64_t lastRow = std::numeric_limits<std::int32_t>::min();
};

Run RunAt(const unsigned char* runs, std::size_t index)
{
    Run run;
    std::memcpy(&run, runs + index * sizeof(run), sizeof(run));
    return run;
}

/** The box of the runs. The end of a run lies one behind its last cell already; counting it as a cell once more makes the
 *  box one column wider than the runs, which hosts rely on. */
Rect2d<int> BoxOf(const unsigned char* runs, std::size_t count)
{
    Extent extent;
    for (std::size_t i = 0; i < count; ++i)
    {
        const Run run = RunAt(runs, i);
        ZVL_REQUIRE(kFunction, run.length >= 0);
        extent.firstColumn = std::min<std::int64_t>(extent.firstColumn, run.column);
        extent.lastEnd = std::max<std::int64_t>(extent.lastEnd, std::int64_t{run.column} + run.length);
        extent.firstRow = std::min<std::int64_t>(extent.firstRow, run.row);
        extent.lastRow = std::max<std::int64_t>(extent.lastRow, run.row);
    }
    const std::int64_t width = extent.lastEnd - extent.firstColumn + 1;
    const std::int64_t height = extent.lastRow - extent.firstRow + 1;
    constexpr std::int64_t largest = std::numeric_limits<std::int32_t>::max();
    ZVL_REQUIRE(kFunction, width <= largest && height <= largest);
    return {static_cast<int>(extent.firstColumn), static_cast<int>(extent.firstRow), static_cast<int>(width),
            static_cast<int>(height)};
}

} // namespace

void RLEToMask(qArrayList runs, qArray2* mask, Rect2d<int>* rect, void* allocator)
{
    if (runs == nullptr || (mask == nullptr && rect == nullptr))
    {
        return;
    }
    ZVL_REQUIRE(kFunction, xqCastClass_ObjectIs(runs, xxqArrayList_type));
    const std::size_t count = qArrayList_Count(runs);
    if (count == 0)
    {
        return;
    }
    ZVL_REQUIRE(kFunction, qType_Size(qArrayList_Type(runs)) == sizeof(Run));
    const auto* records = static_cast<const unsigned char*>(qArrayList_Data(runs));
    const Rect2d<int> box = BoxOf(records, count);
    if (rect != nullptr)
    {
        *rect = box;
    }
    if (mask == nullptr)
    {
        return;
    }
    // The slot may be that of the runs: they are held until all are written.
    Zo::Test(qObject_Share(runs));
    const Zo::Object<void*> held = runs;
    DropHeld(kFunction, *mask);
    Zo::Object<void*> made = NewMask(kFunction, box, allocator);
    constexpr std::uint8_t enabledValue = 1;
    for (std::size_t i = 0; i < count; ++i)
    {
        const Run run = RunAt(records, i);
        const auto row = static_cast<std::size_t>(std::int64_t{run.row} - box.y);
        const auto column = static_cast<std::size_t>(std::int64_t{run.column} - box.x);
        std::memset(qArray2_At(made, row, column), enabledValue, static_cast<std::size_t>(run.length));
    }
    *mask = made.Detach();
}

} // namespace Zvl
