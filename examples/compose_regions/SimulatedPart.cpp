#include "compose_regions/SimulatedPart.h"

#include "compose_regions/HoleSearch.h"
#include "compose_regions/PartDrawing.h"
#include "compose_regions/SameFrame.h"
#include "support/HeightMap.h"
#include "support/RegionMaker.h"
#include "support/SimulatedSensor.h"
#include "support/Stopwatch.h"

#include <cmath>
#include <optional>

namespace ComposeRegions
{
namespace
{

constexpr double kCell = 0.1;     // mm
constexpr double kCount = 0.0005; // mm per height count
constexpr std::size_t kRows = 290;
constexpr std::size_t kColumns = 730;
constexpr qPoint3d64f kOffset{-3.0, -3.5, 2.0};
constexpr Examples::SimulatedSensor::Faults kFaults{0.008, 0.004, 0.0005, 2.0};

constexpr double kMargin = 0.25; // mm that a region stays away from the edges of what it is drawn on
constexpr qPoint64f kPost{66.2, 11.0};
constexpr double kPostRadius = 2.0;
constexpr double kPostHeight = 1.0;
constexpr Zvl::Anchor kDisplacement{1.3, -0.9, Zvl::GetNull<double>(), 2.2}; // in the next scan

/** The fixture's post has the outline of a clover leaf. */
bool IsOnPost(const qPoint64f& place)
{
    const double x = place.x - kPost.x;
    const double y = place.y - kPost.y;
    return std::hypot(x, y) < kPostRadius * (1.0 + 0.3 * std::cos(3.0 * std::atan2(y, x)));
}

/** What lies under the sensor. */
class Scenery
{
public:
    explicit Scenery(const Zvl::Anchor& displacement)
        : toDrawing(Zvl::RefFrame()
                        .Rotate(displacement.angle, {0.0, 0.0, 1.0})
                        .Translate(displacement.x, displacement.y, 0.0))
    {
        toDrawing.InvertOrtho();
    }

    /** Nothing is seen beside the part, and through it. */
    std::optional<double> Height(const qPoint64f& place) const
    {
        if (IsOnPost(place))
        {
            return kPostHeight;
        }
        const qPoint64f drawn = toDrawing.Apply(place);
        if (!drawing.IsOnPlate(drawn) || drawing.IsInPort(drawn))
        {
            return std::nullopt;
        }
        if (drawing.IsInHole(drawn))
        {
            return drawing.holeFloor;
        }
        return drawing.IsOnSeal(drawn, 0.0) ? drawing.sealHeight : drawing.faceHeight;
    }

private:
    PartDrawing drawing;
    Zvl::RefFrame toDrawing;
};

Zvl::Surface Scan(const Zvl::Anchor& displacement, unsigned seed)
{
    Zvl::Surface scan = Examples::MakeSurface(kRows, kColumns, {kCell, kCell, kCount}, kOffset, false);
    const Scenery scenery(displacement);
    Examples::SimulatedSensor sensor(seed, kFaults, kOffset.z, kCount);
    for (std::size_t row = 0; row < kRows; ++row)
    {
        short* heights = Examples::HeightRow(scan, row);
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            const std::optional<double> height = scenery.Height(
                {kOffset.x + static_cast<double>(column) * kCell, kOffset.y + static_cast<double>(row) * kCell});
            heights[column] = height ? sensor.Measure(*height) : Zvl::GetNull<short>();
        }
    }
    return scan;
}

/** The post's region: the cells around it, of the scan of the fixture, whose heights are those of the post. */
std::shared_ptr<Zvl::ROI> TeachPost(const Zvl::Surface& scan)
{
    const Examples::RegionMaker maker(scan);
    const double reach = 1.5 * kPostRadius;
    const auto around = maker.Rectangle({kPost.x - reach, kPost.y - reach, 2.0 * reach, 2.0 * reach, 0.0});
    Zvl::ThresholdHeight(scan, kPostHeight - 0.1, kPostHeight + 0.1, *around);
    Zvl::Surface taught;
    Zvl::CropSurfaceFromROI(scan, around->GetBoundingBox(), around->GetMask(), taught, nullptr);
    return maker.Reference(taught);
}

void FindFeatures(const PartDrawing& drawing, Scene* scene)
{
    constexpr double kReach = 5.0; // the holes are farther than this from anything of their depth
    const Examples::Stopwatch stopwatch;
    for (const qPoint64f& hole : drawing.holes)
    {
        const auto found = [&](const Zvl::Surface& scan)
        { return FindHole(scan, hole, kReach, drawing.holeRadius, drawing.holeFloor); };
        scene->referenceFeatures.push_back(found(scene->reference));
        scene->nextFeatures.push_back(found(scene->next));
    }
    scene->searchMilliseconds = stopwatch.Milliseconds();
}

} // namespace

Zvl::Surface SimulateReferenceScan()
{
    return Scan({0.0, 0.0, 0.0, 0.0}, 101);
}

Zvl::Surface SimulateNextScan()
{
    return Scan(kDisplacement, 202);
}

Scene KnownPart(const std::string& title, const Zvl::Surface& reference, const Zvl::Surface& next)
{
    const PartDrawing drawing;
    Scene scene;
    scene.title = title;
    scene.truth.displacement = kDisplacement;
    scene.reference = reference;
    scene.next = InFrameOf(reference, next);
    FindFeatures(drawing, &scene);

    const Examples::RegionMaker maker(scene.reference);
    scene.shapes->Add(maker.Ring(drawing.Ring(kMargin)));
    scene.shapes->Add(maker.Ellipse(drawing.Ellipse(kMargin)));
    scene.shapes->Add(maker.Rectangle(drawing.Channel(kMargin)));
    scene.shapes->Add(maker.Rectangle(drawing.Pad(kMargin)));
    scene.data = TeachPost(scene.reference);

    scene.truth.lengthTolerance = 0.02;
    scene.truth.angleTolerance = 0.03;
    scene.truth.area = {drawing.SealArea(kMargin), 0.5};
    scene.truth.shapesHeight = {drawing.sealHeight, 0.002};
    scene.truth.dataHeight = {kPostHeight, 0.002};
    scene.level = {{0.0, 0.0, 0.0}, {0.0, 0.0, 1.0}};
    scene.colours = {0.5, 4.0};
    return scene;
}

} // namespace ComposeRegions
