// Unites several shapes and a reference surface into one region, finds by three features how the part is displaced in
// the next scan, moves the region there, and masks the scan with it. Without arguments both scans are simulated; with
// --map the given map is the first scan, and the same map, displaced, the next one.

#include "compose_regions/DisplacedMap.h"
#include "compose_regions/Report.h"
#include "compose_regions/SimulatedPart.h"
#include "support/Conclusion.h"
#include "support/Program.h"

using namespace ComposeRegions;

namespace
{

bool Measure(const Examples::Options& options)
{
    const Scene scene = options.map ? DisplacedMap(*options.map) : SimulatedPart();
    const Inspection inspection = Inspect(scene);
    const Examples::ResultTable table = Tabulate(scene, inspection);
    return Examples::Conclude(table,
                              "the anchor moves shapes; the reference surface is data and stays where it was seen",
                              DrawPicture(scene, inspection, table), options.output);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, "compose_regions.png", Measure);
}
