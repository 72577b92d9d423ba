// Prepares a noisy scan with dropouts for comparison with a golden surface: closes its gaps, smooths it, decimates it,
// and takes the difference. Without arguments the scan is simulated and its flaws are known; with --input the given map is
// the scan, and the golden surface is its mean over boxes of an eighth of its size, so that what is smaller shows.

#include "prepare_scan/Comparison.h"
#include "prepare_scan/Report.h"
#include "prepare_scan/SimulatedPanel.h"
#include "support/Conclusion.h"
#include "support/HeightMap.h"
#include "support/Program.h"
#include "support/ScanSource.h"

#include <algorithm>

using namespace PrepareScan;

namespace
{

Task MapTask(const std::string& title, const Zvl::Surface& map)
{
    Task task;
    task.title = title;
    task.scan = map;
    const Zvl::Surface prepared = Preparation(task.scan).decimated.surface;
    const std::size_t window =
        std::max<std::size_t>(3, std::min(Examples::Rows(prepared), Examples::Columns(prepared)) / 8);
    task.golden = Smooth(prepared, window, true);
    task.goldenName = "map, averaged over " + std::to_string(window) + " x " + std::to_string(window) + " cells";
    return task;
}

bool Measure(const Examples::Options& options, Examples::Progress& progress)
{
    const Zvl::Surface scan = Examples::TakeScan(options, SimulateScan, progress);
    const std::string title = options.Title("pressed panel (simulated)");
    progress.Begin("making the golden surface");
    const Task task = options.HasTruth() ? KnownPanel(title, scan) : MapTask(title, scan);
    progress.Begin("preparing and comparing");
    const Comparison comparison = Compare(task);
    const Examples::ResultTable table = Tabulate(task, comparison);
    progress.Begin("drawing");
    return Examples::Conclude(table, "compared with the " + task.goldenName, DrawPicture(task, comparison, table),
                              options.output, progress);
}

const Examples::Description kDescription = {
    .name = "prepare_scan",
    .summary = "prepares a scan for comparison and finds what deviates from a golden surface",
    .task = R"(It fills gaps, smooths, decimates, subtracts the golden surface and finds the deepest dent and the
highest burr in the difference. The picture shows the scan after each step, and the difference.)",
    .input = R"(An input may show anything. The golden surface is its mean over boxes of an eighth of its size, so that
what is smaller shows.)",
    .knownPart =
        R"(The known part is a pressed panel with a dent and a burr; its golden surface comes from a sound panel.
)"};

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, kDescription, Measure);
}
