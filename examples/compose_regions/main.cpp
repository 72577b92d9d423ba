// Unites several shapes and a reference surface into one region, finds by three features how the part is displaced in
// the next scan, moves the region there, and masks the scan with it. Without arguments both scans are simulated; with
// --input the given map is the first scan, and the same map, displaced, the next one.

#include "compose_regions/DisplacedMap.h"
#include "compose_regions/Report.h"
#include "compose_regions/SimulatedPart.h"
#include "support/Conclusion.h"
#include "support/Program.h"
#include "support/ScanSource.h"

#include <filesystem>

using namespace ComposeRegions;

namespace
{

/** The file of the next scan: `part-next.x3p` beside `part.x3p`. */
std::optional<std::string> NextFile(const std::optional<std::string>& file)
{
    if (!file)
    {
        return std::nullopt;
    }
    const std::filesystem::path path = *file;
    return path.parent_path() / (path.stem().string() + "-next" + path.extension().string());
}

/** The known part: both scans are simulated, or both come from files. */
Scene KnownScene(const Examples::Options& options, Examples::Progress& progress)
{
    Examples::Options next = options;
    next.input = NextFile(options.input);
    next.save = NextFile(options.save);
    const Zvl::Surface first = Examples::TakeScan(options, SimulateReferenceScan, progress);
    const Zvl::Surface second = Examples::TakeScan(next, SimulateNextScan, progress);
    progress.Begin("searching the holes");
    return KnownPart(options.Title("cover plate (simulated)"), first, second);
}

/** A map of which nothing is known, and the same map, displaced. */
Scene UnknownScene(const Examples::Options& options, Examples::Progress& progress)
{
    const Zvl::Surface map = Examples::TakeScan(options, nullptr, progress);
    progress.Begin("searching distinct places");
    return DisplacedMap(options.Title(""), map);
}

bool Measure(const Examples::Options& options, Examples::Progress& progress)
{
    const Scene scene = options.HasTruth() ? KnownScene(options, progress) : UnknownScene(options, progress);
    progress.Begin("moving regions");
    const Inspection inspection = Inspect(scene);
    const Examples::ResultTable table = Tabulate(scene, inspection);
    progress.Begin("drawing");
    return Examples::Conclude(table,
                              "the anchor moves shapes; the reference surface is data and stays where it was seen",
                              DrawPicture(scene, inspection, table), options.output, progress);
}

const Examples::Description kDescription = {
    .name = "compose_regions",
    .summary = "moves a united region to where a part lies in the next scan",
    .task = R"(It unites shapes and a reference surface, finds by three matched features how the part is displaced
in the next scan, moves the union there and masks the scan with it. Shapes follow the part; a
reference surface is data and stays. The picture shows both scans with the regions, and what the mask
leaves.)",
    .input = R"(An input should show three distinct places. It is the first scan; the next one is made from it, by a
shift and a turn, which are checked.)",
    .knownPart = R"(The known part is a cover plate in two scans: that of --input, and for part.x3p the next one in
part-next.x3p. --save-input writes both.
)"};

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, kDescription, Measure);
}
