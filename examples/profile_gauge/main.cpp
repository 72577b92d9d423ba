// Measures width and depth of a groove in one line scan after the other, in regions of interest over profiles that follow
// the part. Without arguments the scans are simulated and the groove is known; with --input the rows of the given map are
// the scans, and the groove is where they are deepest.

#include "profile_gauge/MapRows.h"
#include "profile_gauge/Report.h"
#include "profile_gauge/SimulatedGroove.h"
#include "support/Conclusion.h"
#include "support/Program.h"
#include "support/ScanSource.h"
#include "support/Stopwatch.h"

#include <algorithm>
#include <stdexcept>

using namespace ProfileGauge;

namespace
{

Survey MeasureAll(const Recording& recording, Examples::Progress& progress)
{
    progress.Begin("measuring line scans");
    const Gauge gauge(recording.drawing, recording.expected, recording.scans.front().profile);
    const Examples::Stopwatch stopwatch;
    Survey survey{};
    for (const LineScan& scan : recording.scans)
    {
        survey.readings.push_back(gauge.Measure(scan.profile));
        progress.Reached(survey.readings.size(), recording.scans.size());
    }
    survey.milliseconds = stopwatch.Milliseconds();

    if (std::none_of(survey.readings.begin(), survey.readings.end(),
                     [](const auto& reading) { return reading.has_value(); }))
    {
        throw std::runtime_error("no line scan shows the whole groove");
    }
    return survey;
}

bool Measure(const Examples::Options& options, Examples::Progress& progress)
{
    const Zvl::Surface scans = Examples::TakeScan(options, SimulateScans, progress);
    const std::string title = options.Title("groove of a plate (simulated)");
    const Recording recording = options.HasTruth() ? KnownGroove(title, scans) : MapRows(title, scans);
    const Survey survey = MeasureAll(recording, progress);
    const Examples::ResultTable table = Tabulate(recording, survey);
    progress.Begin("drawing");
    return Examples::Conclude(table, "", DrawPicture(recording, survey, table), options.output, progress);
}

const Examples::Description kDescription = {
    .name = "profile_gauge",
    .summary = "measures width and depth of a groove in one line scan after the other",
    .task = R"(It locates the part in each line scan, moves regions of interest over profiles there, and measures in
them. The picture shows one line scan with its regions, and width and depth along the groove.)",
    .input = R"(The rows of an input are the line scans, of which up to 60 are measured. They should show a groove,
which is taken to be where their mean is deepest.)",
    .knownPart = R"(The known part is a plate in 60 line scans, with a groove that gets wider and waves in its depth.
)"};

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, kDescription, Measure);
}
