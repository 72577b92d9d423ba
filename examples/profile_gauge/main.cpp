// Measures width and depth of a groove in one line scan after the other, in regions of interest over profiles that follow
// the part. Without arguments the scans are simulated and the groove is known; with --map the rows of the given map are
// the scans, and the groove is where they are deepest.

#include "profile_gauge/MapRows.h"
#include "profile_gauge/Report.h"
#include "profile_gauge/SimulatedGroove.h"
#include "support/Conclusion.h"
#include "support/Program.h"
#include "support/Stopwatch.h"

#include <algorithm>
#include <stdexcept>

using namespace ProfileGauge;

namespace
{

Survey MeasureAll(const Recording& recording)
{
    const Gauge gauge(recording.drawing, recording.expected, recording.scans.front().profile);
    const Examples::Stopwatch stopwatch;
    Survey survey{};
    for (const LineScan& scan : recording.scans)
    {
        survey.readings.push_back(gauge.Measure(scan.profile));
    }
    survey.milliseconds = stopwatch.Milliseconds();

    if (std::none_of(survey.readings.begin(), survey.readings.end(),
                     [](const auto& reading) { return reading.has_value(); }))
    {
        throw std::runtime_error("no line scan shows the whole groove");
    }
    return survey;
}

bool Measure(const Examples::Options& options)
{
    const Recording recording = options.map ? MapRows(*options.map) : SimulatedGroove();
    const Survey survey = MeasureAll(recording);
    const Examples::ResultTable table = Tabulate(recording, survey);
    return Examples::Conclude(table, "", DrawPicture(recording, survey, table), options.output);
}

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, "profile_gauge.png", Measure);
}
