// Measures the roundness of a bore: its edge in a section below the face, the four reference circles of its form, and the
// roundness about the centre of each. Without arguments the scan is simulated and the form is known; with --map the bore is
// the largest round recess of the given map.

#include "roundness/BoreEdge.h"
#include "roundness/Report.h"
#include "support/Conclusion.h"
#include "support/HeightMap.h"
#include "support/Program.h"
#include "support/Text.h"

#include <algorithm>

using namespace Roundness;

namespace
{

bool Measure(const Examples::Options& options)
{
    const auto truth = options.map ? std::nullopt : std::optional<BoreForm>(BoreForm{});
    const Zvl::Surface map =
        truth ? SimulateScan(*truth) : Examples::LoadHeightMap(options.map->png, options.map->json);
    // Of a map nothing is known. The corner of a chamfer is blurred over a cell: at 45 degrees the section is clear of it.
    const double depth = truth ? truth->section : std::max(map.scale.x, map.scale.y);
    const Measurement measurement = MeasureRoundness(FindBoreEdge(map, depth));

    const Examples::ResultTable table = Tabulate(measurement, truth);
    const std::string title = (truth ? "bore with lobes (simulated)" : Examples::FileName(options.map->png)) +
                              ", section " + Examples::MeasureText(depth) + " mm below the face";
    const std::string remark =
        "least squares and minimum zone are fitted, inscribed and circumscribed searched; nearest "
        "and farthest are the radii of the circles about the same centre" +
        measurement.remark;
    return Examples::Conclude(table, remark, DrawPicture(title, measurement, truth, table), options.output);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, "roundness.png", Measure);
}
