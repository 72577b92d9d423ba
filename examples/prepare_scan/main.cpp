// Prepares a noisy scan with dropouts for comparison with a golden surface: closes its gaps, smooths it, decimates it,
// and takes the difference. Without arguments the scan is simulated and its flaws are known; with --map the given map is
// the scan, and the golden surface is its mean over boxes of an eighth of its size, so that what is smaller shows.

#include "prepare_scan/Comparison.h"
#include "prepare_scan/Report.h"
#include "prepare_scan/SimulatedPanel.h"
#include "support/Conclusion.h"
#include "support/HeightMap.h"
#include "support/Program.h"
#include "support/Text.h"

#include <algorithm>

using namespace PrepareScan;

namespace
{

Task MapTask(const Examples::Options::MapFiles& files)
{
    Task task;
    task.title = Examples::FileName(files.png);
    task.scan = Examples::LoadHeightMap(files.png, files.json);
    const Zvl::Surface prepared = Preparation(task.scan).decimated.surface;
    const std::size_t window =
        std::max<std::size_t>(3, std::min(Examples::Rows(prepared), Examples::Columns(prepared)) / 8);
    task.golden = Smooth(prepared, window, true);
    task.goldenName = "map, averaged over " + std::to_string(window) + " x " + std::to_string(window) + " cells";
    return task;
}

bool Measure(const Examples::Options& options)
{
    const Task task = options.map ? MapTask(*options.map) : SimulatedPanel();
    const Comparison comparison = Compare(task);
    const Examples::ResultTable table = Tabulate(task, comparison);
    return Examples::Conclude(table, "compared with the " + task.goldenName, DrawPicture(task, comparison, table),
                              options.output);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, "prepare_scan.png", Measure);
}
