// Repairs dropouts of a height map, and of the intensities seen with it, by three methods, and tells what each is off by.
// Without arguments the surface is simulated; with --input it is the given map, which has no intensities. The dropouts are
// cut into the surface in both cases, so that what was there is known.

#include "repair_image/Report.h"
#include "repair_image/SimulatedPart.h"
#include "support/Conclusion.h"
#include "support/Program.h"
#include "support/ScanSource.h"

using namespace RepairImage;

namespace
{

bool Measure(const Examples::Options& options, Examples::Progress& progress)
{
    const Zvl::Surface surface = Examples::TakeScan(options, SimulatedPart, progress);
    const DamagedSurface piece = CutDropouts(options.Title("turned part (simulated)"),
                                             options.HasTruth() ? Origin::KnownPart : Origin::File, surface);
    const std::vector<Repair> repairs = RepairAll(piece, progress);
    const Examples::ResultTable table = Tabulate(piece, repairs);
    progress.Begin("drawing");
    return Examples::Conclude(table,
                              "errors are those of the repaired cells among the dropouts that were cut; gap filling "
                              "leaves open what is wide, or has heights on one side only",
                              DrawPicture(piece, repairs), options.output, progress);
}

const Examples::Description kDescription = {
    .name = "repair_image",
    .summary = "repairs dropouts by three methods and tells their errors",
    .task = R"(It cuts drops, scratches and single cells out of a surface, repairs them by both methods of inpainting
and by gap filling, and compares with what was there. The picture shows the repairs and their errors.)",
    .input = R"(An input may show anything of at least 32 x 32 cells. Intensities are repaired only where the surface is
simulated, since files hold none.)",
    .knownPart = R"(The known part is a turned part with a boss and a groove, for which errors have a tolerance.
)"};

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, kDescription, Measure);
}
