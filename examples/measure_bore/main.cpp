// Measures a bore from a height map: from the scan to a region, its points, and a circle. Without arguments it
// simulates the scan of a plate, whose values are known; with --input it measures what it finds in the given map.

#include "measure_bore/Features.h"
#include "measure_bore/Report.h"
#include "measure_bore/SimulatedPlate.h"
#include "support/Conclusion.h"
#include "support/PlaneDistance.h"
#include "support/Program.h"
#include "support/Recess.h"
#include "support/ScanSource.h"
#include "support/Stopwatch.h"
#include "support/Text.h"

#include <algorithm>
#include <cmath>
#include <exception>
#include <stdexcept>

using namespace MeasureBore;

namespace
{

constexpr double kPi = 3.141592653589793;

// ---------------------------------------------------------------------------------------------------------
// A plate whose drawing is known

double Away(const Examples::Recess& recess, const qPoint64f& place)
{
    return std::hypot(recess.center.x - place.x, recess.center.y - place.y);
}

const Examples::Recess& Nearest(const std::vector<Examples::Recess>& recesses, const qPoint64f& place)
{
    const auto nearest = std::min_element(recesses.begin(), recesses.end(),
                                          [&](const Examples::Recess& left, const Examples::Recess& right)
                                          { return Away(left, place) < Away(right, place); });
    if (nearest == recesses.end() || Away(*nearest, place) > 4.0)
    {
        throw std::runtime_error("the part was not found under the sensor");
    }
    return *nearest;
}

/** The displacement that brings the two recesses of the drawing to where they were found. */
Zvl::Anchor Locate(const PlateDrawing& drawing, const std::vector<Examples::Recess>& recesses)
{
    const qPoint64f bore = Nearest(recesses, drawing.bore).center;
    const qPoint64f seat = Nearest(recesses, drawing.seat).center;
    const double turn = std::atan2(seat.y - bore.y, seat.x - bore.x) -
                        std::atan2(drawing.seat.y - drawing.bore.y, drawing.seat.x - drawing.bore.x);
    Zvl::Anchor anchor;
    anchor.x = bore.x - (drawing.bore.x * std::cos(turn) - drawing.bore.y * std::sin(turn));
    anchor.y = bore.y - (drawing.bore.x * std::sin(turn) + drawing.bore.y * std::cos(turn));
    anchor.angle = turn * 180.0 / kPi;
    return anchor;
}

/** The plate's face as drawn, at a distance from its border. */
std::shared_ptr<Zvl::ROI> FaceRegion(const PlateDrawing& drawing, double border, const Frame& frame)
{
    const double right = drawing.width - border;
    const double bottom = drawing.height - border;
    return MakePolygon({{border, border}, {right, border}, {right, bottom}, {border, bottom}}, frame);
}

void MeasurePlate(const PlateDrawing& drawing, Measurement* measurement, Examples::Progress& progress)
{
    Measurement& result = *measurement;
    const Zvl::Surface& scan = result.surface;
    const Frame frame(scan);

    // The table under the plate and stray light are out of these limits, the seat is below the percentile.
    const HeightLimits faceHeights{-1.0, 2.0};
    const Percentiles faceShare{12.0, 98.0};

    // Where does the part lie? Its face as drawn is near enough to find its recesses.
    progress.Begin("locating the part");
    const Examples::Stopwatch search;
    const auto drawnFace = FaceRegion(drawing, 3.0, frame);
    const qPlane3d64f roughFace = MeasurePlane(scan, *drawnFace, faceHeights, faceShare).plane;
    const Zvl::Anchor anchor = Locate(drawing, Examples::FindRecesses(scan, roughFace, 0.3, 0.002));
    result.anchor = anchor;
    result.searchMilliseconds = search.Milliseconds();

    // From here on every region of the drawing is moved to where the part lies.
    progress.Begin("fitting the plane");
    const auto face = FaceRegion(drawing, 1.0, frame)->ApplyAnchor(anchor);
    result.plane = MeasurePlane(scan, *face, faceHeights, faceShare);

    progress.Begin("fitting the circle");
    const auto rim =
        MakeRing(drawing.bore, 0.75 * drawing.boreRadius, 1.25 * drawing.boreRadius, frame)->ApplyAnchor(anchor);
    result.circle = MeasureCircle(scan, *rim, result.plane.plane, 0.3);

    progress.Begin("fitting the sphere");
    const auto seat = MakeRing(drawing.seat, 0.0, 4.2, frame)->ApplyAnchor(anchor);
    result.sphere = MeasureSphere(scan, *seat, {-2.0, 1.3});

    result.colours = {-1.05 * drawing.seatDepth, 0.4};
}

// ---------------------------------------------------------------------------------------------------------
// A map of which nothing is known

/** A sphere where the bottom of the recess was seen and one can be fitted. */
std::optional<MeasuredSphere> TrySphere(const Zvl::Surface& surface, const Examples::Recess& recess, const Frame& frame)
{
    if (recess.missingShare > 0.3)
    {
        return std::nullopt;
    }
    try
    {
        return MeasureSphere(surface, *MakeRing(recess.center, 0.0, 0.8 * recess.radius, frame), {});
    }
    catch (const std::exception&) // a flat or noisy bottom is no sphere
    {
        return std::nullopt;
    }
}

void MeasureRecess(const Examples::Recess& recess, double depth, const Frame& frame, Measurement* result)
{
    try
    {
        result->remark = "the circle is the edge " + Examples::MeasureText(depth) + " mm below the plane";
        const auto rim = MakeRing(recess.center, 0.7 * recess.radius, 1.4 * recess.radius, frame);
        result->circle = MeasureCircle(result->surface, *rim, result->plane.plane, depth);
        result->sphere = TrySphere(result->surface, recess, frame);
    }
    catch (const std::exception& error)
    {
        result->remark = std::string("the recess gives no circle: ") + error.what();
    }
}

void MeasureWhatIsThere(Measurement* measurement, Examples::Progress& progress)
{
    Measurement& result = *measurement;
    const Zvl::Surface& map = result.surface;
    const Frame frame(map);

    const double right = map.offset.x + static_cast<double>(frame.width - 1) * map.scale.x;
    const double bottom = map.offset.y + static_cast<double>(frame.height - 1) * map.scale.y;
    const auto whole = MakePolygon(
        {{map.offset.x, map.offset.y}, {right, map.offset.y}, {right, bottom}, {map.offset.x, bottom}}, frame);
    progress.Begin("fitting the plane");
    result.plane = MeasurePlane(map, *whole, {}, {5.0, 95.0});
    result.colours = Examples::TypicalRange(map, result.plane.plane, 0.5);

    // Deeper than the face is uneven, round, and no speck: that is taken for a bore.
    progress.Begin("searching recesses");
    const Examples::Stopwatch search;
    const double depth = result.plane.flatness;
    const std::vector<Examples::Recess> recesses = Examples::FindRecesses(map, result.plane.plane, depth, 0.001);
    result.searchMilliseconds = search.Milliseconds();
    const auto round = std::find_if(recesses.begin(), recesses.end(),
                                    [](const Examples::Recess& recess) { return recess.roundness > 0.75; });
    if (round == recesses.end())
    {
        result.remark = "no round recess found, so no circle is fitted";
        return;
    }
    progress.Begin("fitting circle and sphere");
    MeasureRecess(*round, depth, frame, &result);
}

// ---------------------------------------------------------------------------------------------------------

bool Measure(const Examples::Options& options, Examples::Progress& progress)
{
    const PlateDrawing drawing;
    const PlatePose pose{{0.9, -0.6, Zvl::GetNull<double>(), 2.5}, 0.03, -0.012};

    Measurement measurement;
    measurement.title = options.Title("Plate with bore and ball seat (simulated scan)");
    measurement.surface = Examples::TakeScan(
        options, [&] { return SimulateScan(drawing, pose); }, progress);
    if (options.HasTruth())
    {
        MeasurePlate(drawing, &measurement, progress);
    }
    else
    {
        MeasureWhatIsThere(&measurement, progress);
    }
    const Examples::ResultTable table =
        Tabulate(measurement, options.HasTruth() ? std::optional(Truth{drawing, pose}) : std::nullopt);
    progress.Begin("drawing");
    return Examples::Conclude(table, measurement.remark, DrawPicture(measurement, table), options.output, progress);
}

const Examples::Description kDescription = {
    .name = "measure_bore",
    .summary = "measures plane, bore and ball seat of a plate",
    .task = R"(It walks the whole road from a scan to values: a region, the anchor that moves it to where the part
lies, limits of height, percentiles, points, and the fits of a plane, a circle and a sphere. The
picture is the map in false colours with all that was found.)",
    .input = R"(An input should show a flat part with a round recess. The plane is fitted to all of it, the circle
to the edge of the largest round recess, the sphere to its bottom.)",
    .knownPart = R"(For the known part, the plate with bore and ball seat, the regions come from its drawing.
)"};

} // namespace

int main(int argumentCount, char** arguments)
{
    return Examples::RunProgram(argumentCount, arguments, kDescription, Measure);
}
