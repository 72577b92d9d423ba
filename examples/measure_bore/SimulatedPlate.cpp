#include "measure_bore/SimulatedPlate.h"

#include "support/HeightMap.h"

#include <algorithm>
#include <cmath>
#include <random>

namespace MeasureBore
{
namespace
{

constexpr double kPi = 3.141592653589793;
constexpr double kCell = 0.05;    // mm
constexpr double kCount = 0.0002; // mm per height count
constexpr double kMargin = 2.5;   // mm around the drawing that the sensor sees as well
constexpr double kNoise = 0.004;  // mm, standard deviation of a height
constexpr double kTableDepth = 6.0;
constexpr double kShadow = 3.6; // mm, length of the shadow that the wall of the bore casts, along y

/** What the sensor sees at one place. */
struct Sample
{
    bool isSeen;
    double height;
    double intensity;
};

constexpr Sample kNothing{false, 0.0, 0.0};

double Distance(const qPoint64f& a, const qPoint64f& b)
{
    return std::hypot(a.x - b.x, a.y - b.y);
}

/** The plate under the sensor, without the sensor's faults except for those that its geometry causes. */
class Scene
{
public:
    Scene(const PlateDrawing& plateDrawing, const PlatePose& platePose)
        : drawing(plateDrawing),
          pose(platePose),
          bore(Displace(platePose, plateDrawing.bore)),
          seatCenter(SphereCenter())
    {
    }

    Sample At(const qPoint64f& place) const
    {
        const qPoint64f drawn = ToDrawing(place);
        if (drawn.x < 0.0 || drawn.x > drawing.width || drawn.y < 0.0 || drawn.y > drawing.height)
        {
            return kNothing;
        }
        const double toBore = Distance(place, bore);
        if (toBore < RimRadius(place))
        {
            return Table(place);
        }
        const double plate = PlateHeight(place);
        const double seat = SeatHeight(place);
        const double shine = toBore < drawing.boreRadius + 0.3 ? 45.0 : 0.0;
        return seat < plate ? Sample{true, seat, 150.0} : Sample{true, plate, 190.0 + shine};
    }

    /** Distance from the nearer edge of the bore. */
    double FromRim(const qPoint64f& place) const { return Distance(place, bore) - RimRadius(place); }

private:
    double PlateHeight(const qPoint64f& place) const { return pose.slopeX * place.x + pose.slopeY * place.y; }

    /** The seat has its depth along the normal of the tilted plate. */
    qPoint3d64f SphereCenter() const
    {
        const qPoint64f seat = Displace(pose, drawing.seat);
        const double length = std::sqrt(pose.slopeX * pose.slopeX + pose.slopeY * pose.slopeY + 1.0);
        const double rise = (drawing.seatSphereRadius - drawing.seatDepth) / length;
        return {seat.x - rise * pose.slopeX, seat.y - rise * pose.slopeY, PlateHeight(seat) + rise};
    }

    double SeatHeight(const qPoint64f& place) const
    {
        const double away = Distance(place, {seatCenter.x, seatCenter.y});
        const double radius = drawing.seatSphereRadius;
        return away < radius ? seatCenter.z - std::sqrt(radius * radius - away * away) : PlateHeight(place);
    }

    /** The rim has a chip, where some of the plate has broken out. */
    double RimRadius(const qPoint64f& place) const
    {
        constexpr double kChipFrom = -0.55;
        constexpr double kChipTo = -0.25;
        const double angle = std::atan2(place.y - bore.y, place.x - bore.x);
        const double part = (angle - kChipFrom) / (kChipTo - kChipFrom);
        return drawing.boreRadius + (part > 0.0 && part < 1.0 ? 0.45 * std::sin(kPi * part) : 0.0);
    }

    /** The table is seen through the bore where the far wall does not stand in the way of the camera. */
    Sample Table(const qPoint64f& place) const
    {
        const bool isHidden = Distance({place.x, place.y + kShadow}, bore) > drawing.boreRadius;
        return isHidden ? kNothing : Sample{true, -kTableDepth, 70.0};
    }

    qPoint64f ToDrawing(const qPoint64f& place) const
    {
        const double angle = pose.displacement.angle * kPi / 180.0;
        const double x = place.x - pose.displacement.x;
        const double y = place.y - pose.displacement.y;
        return {x * std::cos(angle) + y * std::sin(angle), -x * std::sin(angle) + y * std::cos(angle)};
    }

    PlateDrawing drawing;
    PlatePose pose;
    qPoint64f bore;
    qPoint3d64f seatCenter;
};

/** The faults of the sensor. */
class Sensor
{
public:
    Sample Measure(const Scene& scene, const qPoint64f& place)
    {
        Sample sample = scene.At(place);
        const double fromRim = scene.FromRim(place);
        const bool isNearRim = fromRim >= 0.0 && fromRim < 0.12;
        if (!sample.isSeen || IsOneOf(isNearRim ? 0.15 : 0.003))
        {
            return kNothing;
        }
        sample.height += noise(generator);
        if (IsOneOf(0.0004)) // stray light from a shiny place
        {
            sample.height += 0.2 + 1.5 * uniform(generator);
        }
        sample.intensity += 8.0 * noise(generator) / kNoise;
        return sample;
    }

private:
    bool IsOneOf(double share) { return uniform(generator) < share; }

    std::mt19937 generator{20240611}; // every run is to give the same scan
    std::normal_distribution<double> noise{0.0, kNoise};
    std::uniform_real_distribution<double> uniform{0.0, 1.0};
};

} // namespace

qPoint64f Displace(const PlatePose& pose, const qPoint64f& drawn)
{
    const qPoint3d64f in{drawn.x, drawn.y, 0.0};
    qPoint3d64f out;
    Zvl::AnchorPointSetRegion(pose.displacement, &in, 1, &out);
    return {out.x, out.y};
}

Zvl::Surface SimulateScan(const PlateDrawing& drawing, const PlatePose& pose)
{
    const auto columns = static_cast<std::size_t>(std::lround((drawing.width + 2.0 * kMargin) / kCell));
    const auto rows = static_cast<std::size_t>(std::lround((drawing.height + 2.0 * kMargin) / kCell));
    // The range of 16-bit counts, +-6.55 mm, lies about the middle between the table and the highest spike.
    const qPoint3d64f offset{-kMargin, -kMargin, -2.0};
    Zvl::Surface scan = Examples::MakeSurface(rows, columns, {kCell, kCell, kCount}, offset, true);

    const Scene scene(drawing, pose);
    Sensor sensor;
    for (std::size_t row = 0; row < rows; ++row)
    {
        short* heights = Examples::HeightRow(scan, row);
        unsigned char* intensities = Examples::IntensityRow(scan, row);
        for (std::size_t column = 0; column < columns; ++column)
        {
            const qPoint64f place{offset.x + static_cast<double>(column) * kCell,
                                  offset.y + static_cast<double>(row) * kCell};
            const Sample sample = sensor.Measure(scene, place);
            const double count = std::clamp(std::round((sample.height - offset.z) / kCount), -32767.0, 32767.0);
            heights[column] = sample.isSeen ? static_cast<short>(count) : Zvl::GetNull<short>();
            intensities[column] =
                static_cast<unsigned char>(sample.isSeen ? std::clamp(sample.intensity, 1.0, 255.0) : 0.0);
        }
    }
    return scan;
}

} // namespace MeasureBore
