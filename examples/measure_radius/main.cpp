// Measures the radius of a curved surface: cuts a height map into sections across the curve and fits a circle to each.
// Without arguments it simulates the scan of a cylinder, whose radius is known; with --input it measures the given map.

#include "measure_radius/Report.h"
#include "measure_radius/Sections.h"
#include "measure_radius/SimulatedCylinder.h"
#include "support/Conclusion.h"
#include "support/Program.h"
#include "support/ScanSource.h"
#include "support/Stopwatch.h"

#include <algorithm>
#include <stdexcept>

using namespace MeasureRadius;

namespace
{

constexpr std::size_t kSections = 16;

Measurement MeasureMap(const std::string& title, const Zvl::Surface& surface, Examples::Progress& progress)
{
    progress.Begin("fitting circles to sections");
    const Examples::Stopwatch stopwatch;
    Measurement result{title, surface, CurvedDirection(surface), {}, 0, 0.0};
    const std::size_t lines = LineCount(surface, result.direction);
    const std::size_t sections = std::min(kSections, lines);
    for (std::size_t section = 0; section < sections; ++section)
    {
        // The middle line of each of the equal strips that the map is divided into.
        const std::size_t line = (2 * section + 1) * lines / (2 * sections);
        if (std::optional<SectionCircle> circle = FitSection(surface, result.direction, line))
        {
            result.circles.push_back(std::move(*circle));
        }
        else
        {
            ++result.skipped;
        }
        progress.Reached(section + 1, sections);
    }
    if (result.circles.empty())
    {
        throw std::runtime_error("no section gives a circle: too few heights, or not curved");
    }
    result.milliseconds = stopwatch.Milliseconds();
    return result;
}

bool Measure(const Examples::Options& options, Examples::Progress& progress)
{
    const Zvl::Surface scan = Examples::TakeScan(options, SimulateCylinder, progress);
    const Measurement measurement = MeasureMap(options.Title("Cylinder (simulated scan)"), scan, progress);
    const Examples::ResultTable table =
        Tabulate(measurement, options.HasTruth() ? std::optional(kNominalRadius) : std::nullopt);
    const std::string remark = measurement.skipped > 0 ? std::to_string(measurement.skipped) +
                                                             " sections have too few heights, or are straight"
                                                       : "";
    progress.Begin("drawing");
    return Examples::Conclude(table, remark, DrawPicture(measurement), options.output, progress);
}

const Examples::Description kDescription = {
    .name = "measure_radius",
    .summary = "measures the radius of a curved surface",
    .task = R"(It cuts a map into 16 sections across the direction in which the surface is curved, and fits a circle
to each. The picture shows the map with its sections, some sections with their circles, what keeps
the heights from the circles, and the radii.)",
    .input = R"(An input should show a part of a cylinder that lies along x or y.)",
    .knownPart = R"(The known part is a cylinder of radius 5 mm.
)"};

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, kDescription, Measure);
}
