#include "compose_regions/Inspection.h"

#include "support/HeightMap.h"
#include "support/Stopwatch.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>
#include <vector>

namespace ComposeRegions
{
namespace
{

constexpr double kPi = 3.141592653589793;

/** The displacement of a frame that turns about Z and shifts. */
Zvl::Anchor AnchorOf(const Zvl::RefFrame& frame)
{
    return {frame.GetTx(), frame.GetTy(), Zvl::GetNull<double>(),
            std::atan2(frame.GetIy(), frame.GetIx()) * 180.0 / kPi};
}

double Mismatch(const Zvl::RefFrame& frame, const std::vector<qPoint64f>& from, const std::vector<qPoint64f>& to)
{
    double squares = 0.0;
    for (std::size_t index = 0; index < from.size(); ++index)
    {
        const qPoint64f moved = frame.Apply(from[index]);
        squares += std::pow(moved.x - to[index].x, 2) + std::pow(moved.y - to[index].y, 2);
    }
    return std::sqrt(squares / static_cast<double>(from.size()));
}

/** All heights that @p region leaves of @p scan. */
Examples::Statistics HeightsIn(const Zvl::Surface& scan, const std::shared_ptr<Zvl::ROI>& region)
{
    Zvl::Surface masked;
    Zvl::ApplyMask(scan, region, &masked, nullptr);
    std::vector<double> heights;
    const bool isEmpty = masked.layers.empty();
    for (std::size_t row = 0; !isEmpty && row < Examples::Rows(masked); ++row)
    {
        for (std::size_t column = 0; column < Examples::Columns(masked); ++column)
        {
            if (!Examples::IsMissing(Examples::HeightRow(masked, row)[column]))
            {
                heights.push_back(Examples::WorldPoint(masked, row, column).z);
            }
        }
    }
    return Examples::Statistics(heights);
}

/** World area of the cells of a region's mask. */
double Area(const Zvl::Surface& scan, Zvl::ROI& region)
{
    Zo::Object<void*> cells;
    Zvl::GetPointsFromROI<short>(scan, region.GetBoundingBox(), region.GetMask(), cells.Slot());
    const std::size_t count = cells.Get() == nullptr ? 0 : qArrayList_Count(cells);
    return static_cast<double>(count) * scan.scale.x * scan.scale.y;
}

std::shared_ptr<Zvl::ROI> Unite(const std::shared_ptr<Zvl::ROI>& shapes, const std::shared_ptr<Zvl::ROI>& data)
{
    const auto united = std::make_shared<Zvl::ComposedROI>();
    united->Add(shapes); // a composition hands over its members
    united->Add(data);
    return united;
}

} // namespace

qPoint64f MoveOfPart(const Scene& scene, const Zvl::Anchor& anchor)
{
    qPoint64f middle{0.0, 0.0};
    for (const qPoint64f& feature : scene.referenceFeatures)
    {
        middle.x += feature.x / static_cast<double>(scene.referenceFeatures.size());
        middle.y += feature.y / static_cast<double>(scene.referenceFeatures.size());
    }
    Zvl::RefFrame frame;
    frame.SetFrame({anchor.x, anchor.y, 0.0}, anchor.angle);
    const qPoint64f moved = frame.Apply(middle);
    return {moved.x - middle.x, moved.y - middle.y};
}

Inspection Inspect(const Scene& scene)
{
    Zvl::RefFrame frame;
    frame.SetFrame(scene.nextFeatures, scene.referenceFeatures); // carries the second set onto the first
    const double mismatch = Mismatch(frame, scene.referenceFeatures, scene.nextFeatures);
    if (!(mismatch <= 3.0 * std::max(scene.next.scale.x, scene.next.scale.y)))
    {
        throw std::runtime_error("the features of the two scans lie at different distances from each other");
    }

    const Zvl::Anchor anchor = AnchorOf(frame);
    const auto drawn = Unite(scene.shapes, scene.data);
    const Examples::Stopwatch stopwatch;
    const auto united = drawn->ApplyAnchor(anchor);
    Zvl::Surface masked;
    Zvl::ApplyMask(scene.next, united, &masked, nullptr);
    const double milliseconds = stopwatch.Milliseconds();

    const auto shapes = scene.shapes->ApplyAnchor(anchor);
    const double area = Area(scene.next, *shapes);
    return {anchor,
            mismatch,
            drawn,
            shapes,
            united,
            area,
            HeightsIn(scene.reference, scene.shapes),
            HeightsIn(scene.next, scene.shapes),
            HeightsIn(scene.next, shapes),
            HeightsIn(scene.next, scene.data->ApplyAnchor(anchor)),
            masked,
            milliseconds};
}

} // namespace ComposeRegions
