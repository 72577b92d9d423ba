// Repairs dropouts of a height map, and of the intensities seen with it, by three methods, and tells what each is off by.
// Without arguments the surface is simulated; with --map it is the given map, which has no intensities. The dropouts are
// cut into the surface in both cases, so that what was there is known.

#include "repair_image/Report.h"
#include "repair_image/SimulatedPart.h"
#include "support/Conclusion.h"
#include "support/HeightMap.h"
#include "support/Program.h"
#include "support/Text.h"

using namespace RepairImage;

namespace
{

bool Measure(const Examples::Options& options)
{
    const DamagedSurface piece = options.map
                                     ? CutDropouts(Examples::FileName(options.map->png), Origin::File,
                                                   Examples::LoadHeightMap(options.map->png, options.map->json))
                                     : CutDropouts("turned part (simulated)", Origin::Simulated, SimulatedPart());
    const std::vector<Repair> repairs = RepairAll(piece);
    return Examples::Conclude(
        Tabulate(piece, repairs),
        "errors are those of the repaired cells among the dropouts that were cut; gap filling leaves open "
        "what is wide, or has heights on one side only",
        DrawPicture(piece, repairs), options.output);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, "repair_image.png", Measure);
}
