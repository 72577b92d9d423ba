// Measures the roundness of a bore: its edge in a section below the face, the four reference circles of its form, and the
// roundness about the centre of each. Without arguments the scan is simulated and the form is known; with --input the bore is
// the largest round recess of the given map.

#include "roundness/BoreEdge.h"
#include "roundness/Report.h"
#include "support/Conclusion.h"
#include "support/Program.h"
#include "support/ScanSource.h"
#include "support/Text.h"

#include <algorithm>

using namespace Roundness;

namespace
{

bool Measure(const Examples::Options& options, Examples::Progress& progress)
{
    const BoreForm form;
    const auto truth = options.HasTruth() ? std::optional(form) : std::nullopt;
    const Zvl::Surface map = Examples::TakeScan(
        options, [&] { return SimulateScan(form); }, progress);
    // Of a map nothing is known. The corner of a chamfer is blurred over a cell: at 45 degrees the section is clear of it.
    const double depth = truth ? truth->section : std::max(map.scale.x, map.scale.y);
    progress.Begin("searching the edge");
    const std::vector<qPoint64f> edge = FindBoreEdge(map, depth);
    progress.Begin("fitting the circles of reference");
    const Measurement measurement = MeasureRoundness(edge);

    const Examples::ResultTable table = Tabulate(measurement, truth);
    const std::string title = options.Title("bore with lobes (simulated)") + ", section " +
                              Examples::MeasureText(depth) + " mm below the face";
    const std::string remark =
        "least squares and minimum zone are fitted, inscribed and circumscribed searched; nearest "
        "and farthest are the radii of the circles about the same centre" +
        measurement.remark;
    progress.Begin("drawing");
    return Examples::Conclude(table, remark, DrawPicture(title, measurement, truth, table), options.output, progress);
}

const Examples::Description kDescription = {
    .name = "roundness",
    .summary = "tells the roundness of a bore from four circles of reference",
    .task = R"(It finds the edge of a bore between the cells, in a section below the face, and tells its roundness
about the centres of the least-squares, minimum-zone, inscribed and circumscribed circles. The
picture is a polar plot of the magnified form.)",
    .input = R"(An input should show a bore, or another round recess, in a face around it; the largest is measured, one
cell below the face.)",
    .knownPart = R"(The known part is a bore with lobes and a chamfer, measured 0.1 mm below the face.
)"};

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, kDescription, Measure);
}
