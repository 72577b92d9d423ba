#include "Cells.h"
#include "Pictures.h"

#include "snippets/Scan.h"

#include <array>
#include <string>

namespace Pictures
{
namespace
{

/** Fills the rows of a worker's share with the worker's number. */
qStatus SignRows(void*, void*, const qParallelArgs* args)
{
    const std::size_t rows = qArray2_Length(args->target, 0);
    for (std::size_t row = qParallelArgs_Begin(args, 0, rows); row < qParallelArgs_End(args, 0, rows); ++row)
    {
        for (std::size_t column = 0; column < qArray2_Length(args->target, 1); ++column)
        {
            *static_cast<short*>(qArray2_At(args->target, row, column)) = static_cast<short>(args->worker);
        }
    }
    return STATUS_OK;
}

} // namespace

Svg Shares()
{
    Svg svg(760, 270);
    const std::array<std::size_t, 3> workerCounts = {2, 3, 5};
    double x = 15;
    for (const std::size_t workers : workerCounts)
    {
        Zo::Test(qThreadPool_SetCount(qThreadPool_Default(), workers));
        const Zvl::Surface scan = MakeScan([](double, double) { return 0.0; }, 14, 20);
        Zo::Test(qParallel_Execute(SignRows, nullptr, scan.layers[0]));
        Cells cells(svg, {x, 45}, 11, 14, 20);
        cells.Heights(scan.layers[0], {0.0, 4.0});
        svg.Text({x, 35}, std::to_string(workers) + " workers", "text strong");
        x += 250;
    }
    svg.Text({15, 235},
             "14 rows: shares are contiguous, in the order of the workers, and differ by one row at most. They",
             "text small");
    svg.Text({15, 253}, "depend on the range and the worker count alone, never on timing.", "text small");
    return svg;
}

} // namespace Pictures
