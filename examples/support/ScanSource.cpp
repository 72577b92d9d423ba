#include "support/ScanSource.h"

#include "support/FalseColours.h"
#include "support/HeightMap.h"
#include "support/ScanFile.h"
#include "support/Text.h"

#include <iostream>

namespace Examples
{
namespace
{

/** Size, cells, step of the heights and share of missing ones. */
void Describe(const std::string& path, const Zvl::Surface& scan)
{
    const double missing = cv::countNonZero(MissingCells(scan));
    const double cells = static_cast<double>(Rows(scan)) * static_cast<double>(Columns(scan));
    std::cout << FileName(path) << ": " << Columns(scan) << " x " << Rows(scan) << " cells of "
              << StepText(scan.scale.x) << " x " << StepText(scan.scale.y) << " mm, heights in steps of "
              << StepText(scan.scale.z) << " mm, " << NumberText(100.0 * missing / cells, 1) << " % missing\n";
}

} // namespace

Zvl::Surface TakeScan(const Options& options, const std::function<Zvl::Surface()>& simulate, Progress& progress)
{
    Zvl::Surface scan;
    if (options.input)
    {
        progress.Begin("reading " + FileName(*options.input));
        scan = ReadScan(*options.input, options.mapping);
        progress.End();
        Describe(*options.input, scan);
    }
    else
    {
        progress.Begin("simulating the scan");
        scan = simulate();
    }
    if (options.save)
    {
        progress.Begin("writing " + FileName(*options.save));
        WriteScan(*options.save, scan);
    }
    return scan;
}

} // namespace Examples
