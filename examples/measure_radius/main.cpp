// Measures the radius of a curved surface: cuts a height map into sections across the curve and fits a circle to each.
// Without arguments it simulates the scan of a cylinder, whose radius is known; with --map it measures the given map.

#include "measure_radius/Report.h"
#include "measure_radius/Sections.h"
#include "measure_radius/SimulatedCylinder.h"
#include "support/HeightMap.h"
#include "support/Program.h"
#include "support/Stopwatch.h"

#include <algorithm>
#include <iostream>
#include <stdexcept>

using namespace MeasureRadius;

namespace
{

constexpr std::size_t kSections = 16;

Measurement MeasureMap(const std::string& title, const Zvl::Surface& surface)
{
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
    }
    if (result.circles.empty())
    {
        throw std::runtime_error("no section gives a circle: too few heights, or not curved");
    }
    result.milliseconds = stopwatch.Milliseconds();
    return result;
}

bool Measure(const Examples::Options& options)
{
    const Measurement measurement = options.map
                                        ? MeasureMap(options.map->png.substr(options.map->png.find_last_of('/') + 1),
                                                     Examples::LoadHeightMap(options.map->png, options.map->json))
                                        : MeasureMap("Cylinder (simulated scan)", SimulateCylinder());
    const Examples::ResultTable table =
        Tabulate(measurement, options.map ? std::nullopt : std::optional(kNominalRadius));

    table.Print(std::cout);
    if (measurement.skipped > 0)
    {
        std::cout << measurement.skipped << " sections have too few heights, or are straight\n";
    }
    const bool isFine = table.PrintVerdict(std::cout);
    WritePicture(measurement, options.output);
    std::cout << "picture: " << options.output << '\n';
    return isFine;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, "measure_radius.png", Measure);
}
