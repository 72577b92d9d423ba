#include "compose_regions/DisplacedMap.h"

#include "compose_regions/PatchSearch.h"
#include "support/HeightMap.h"
#include "support/RegionMaker.h"
#include "support/Stopwatch.h"

#include <algorithm>
#include <cmath>

namespace ComposeRegions
{
namespace
{

/** The world rectangle of a map. */
struct Extent
{
    explicit Extent(const Zvl::Surface& map)
        : x(map.offset.x),
          y(map.offset.y),
          width(static_cast<double>(Examples::Columns(map)) * map.scale.x),
          height(static_cast<double>(Examples::Rows(map)) * map.scale.y)
    {
    }

    /** A place by its share of the width and of the height. */
    qPoint64f At(double across, double along) const { return {x + across * width, y + along * height}; }

    double x;
    double y;
    double width;
    double height;
};

Zvl::RefFrame FrameOf(const Zvl::Anchor& displacement)
{
    Zvl::RefFrame frame;
    frame.SetFrame({displacement.x, displacement.y, 0.0}, displacement.angle);
    return frame;
}

/** A turn about the middle of the map, and a shift by a few parts in a hundred. */
Zvl::Anchor Displacement(const Extent& extent)
{
    constexpr double kTurn = 1.5;
    const qPoint64f middle = extent.At(0.5, 0.5);
    const qPoint64f turned = FrameOf({0.0, 0.0, 0.0, kTurn}).Apply(middle);
    return {middle.x - turned.x + 0.02 * extent.width, middle.y - turned.y - 0.03 * extent.height,
            Zvl::GetNull<double>(), kTurn};
}

Zvl::Surface Displaced(const Zvl::Surface& map, const Zvl::Anchor& displacement)
{
    const std::size_t rows = Examples::Rows(map);
    const std::size_t columns = Examples::Columns(map);
    Zvl::RefFrame back = FrameOf(displacement);
    back.InvertOrtho();
    Zvl::Surface displaced = Examples::MakeSurface(rows, columns, map.scale, map.offset, false);
    for (std::size_t row = 0; row < rows; ++row)
    {
        short* heights = Examples::HeightRow(displaced, row);
        for (std::size_t column = 0; column < columns; ++column)
        {
            const qPoint64f from = back.Apply(qPoint64f{map.offset.x + static_cast<double>(column) * map.scale.x,
                                                        map.offset.y + static_cast<double>(row) * map.scale.y});
            const double fromColumn = std::round((from.x - map.offset.x) / map.scale.x);
            const double fromRow = std::round((from.y - map.offset.y) / map.scale.y);
            const bool isInside = fromColumn >= 0.0 && fromColumn < static_cast<double>(columns) && fromRow >= 0.0 &&
                                  fromRow < static_cast<double>(rows);
            heights[column] =
                isInside
                    ? Examples::HeightRow(map, static_cast<std::size_t>(fromRow))[static_cast<std::size_t>(fromColumn)]
                    : Zvl::GetNull<short>();
        }
    }
    return displaced;
}

/** The farthest that any cell of the map is displaced, in cells, and a little more. */
cv::Size Reach(const Zvl::Surface& map, const Extent& extent, const Zvl::Anchor& displacement)
{
    const Zvl::RefFrame frame = FrameOf(displacement);
    double across = 0.0;
    double along = 0.0;
    for (const qPoint64f& corner : {extent.At(0.0, 0.0), extent.At(1.0, 0.0), extent.At(1.0, 1.0), extent.At(0.0, 1.0)})
    {
        const qPoint64f moved = frame.Apply(corner);
        across = std::max(across, std::abs(moved.x - corner.x) / map.scale.x);
        along = std::max(along, std::abs(moved.y - corner.y) / map.scale.y);
    }
    // A reach beyond the map leaves no place for features.
    const auto cells = [](double reach, std::size_t length)
    { return static_cast<int>(std::min(reach + 2.0, static_cast<double>(length))); };
    return {cells(across, Examples::Columns(map)), cells(along, Examples::Rows(map))};
}

void FindFeatures(const qPlane3d64f& plane, const cv::Size& reach, Scene* scene)
{
    const Examples::Stopwatch stopwatch;
    const Zvl::Surface& map = scene->reference;
    const cv::Mat relief = Relief(map, plane);
    const cv::Mat next = Relief(scene->next, plane);
    const int patch = std::max(4, std::min(relief.rows, relief.cols) / 16);
    const auto world = [&](double column, double row) {
        return qPoint64f{map.offset.x + column * map.scale.x, map.offset.y + row * map.scale.y};
    };
    for (const cv::Point& cell : DistinctCells(relief, patch, reach + cv::Size(patch, patch)))
    {
        const cv::Point2d found = FindPatch(relief, next, cell, patch, reach);
        scene->referenceFeatures.push_back(world(cell.x, cell.y));
        scene->nextFeatures.push_back(world(found.x, found.y));
    }
    scene->searchMilliseconds = stopwatch.Milliseconds();
}

/** The higher half of a square in the right half of the map. */
std::shared_ptr<Zvl::ROI> TeachData(const Zvl::Surface& map, const Extent& extent)
{
    const Examples::RegionMaker maker(map);
    const qPoint64f corner = extent.At(0.68, 0.35);
    const double side = 0.25 * std::min(extent.width, extent.height);
    const auto square = maker.Rectangle({corner.x, corner.y, side, side, 0.0});
    Zvl::ThresholdHeight(map, Zvl::GetNull<double>(), Zvl::GetNull<double>(), *square);
    Zvl::ThresholdPercentile<double>(map, 50.0, 100.0, square->GetBoundingBox(), square->GetMask());
    Zvl::Surface taught;
    Zvl::CropSurfaceFromROI(map, square->GetBoundingBox(), square->GetMask(), taught, nullptr);
    return maker.Reference(taught);
}

} // namespace

Scene DisplacedMap(const std::string& title, const Zvl::Surface& map)
{
    Scene scene;
    scene.title = title;
    scene.reference = map;
    const Extent extent(map);
    scene.truth.displacement = Displacement(extent);
    scene.next = Displaced(map, scene.truth.displacement);
    scene.level = Examples::PlaneThrough(map);
    scene.colours = Examples::TypicalRange(map, scene.level, 0.5);
    FindFeatures(scene.level, Reach(map, extent, scene.truth.displacement), &scene);

    const double size = std::min(extent.width, extent.height);
    const Examples::RegionMaker maker(map);
    scene.shapes->Add(maker.Ring({0.1 * size, 0.2 * size, 0.0, 360.0, extent.At(0.25, 0.4)}));
    scene.shapes->Add(
        maker.Ellipse({0.1 * size, 0.2 * size, 0.3 * size, 0.5 * size, 0.0, 270.0, 25.0, extent.At(0.5, 0.6)}));
    scene.shapes->Add(
        maker.Polygon({extent.At(0.25, 0.35), extent.At(0.5, 0.2), extent.At(0.6, 0.35), extent.At(0.25, 0.45)}));
    scene.data = TeachData(map, extent);

    // The features are matched to parts of a cell, but the displaced cells are rounded to whole ones.
    const double cell = std::max(map.scale.x, map.scale.y);
    scene.truth.lengthTolerance = cell;
    scene.truth.angleTolerance = 0.2;
    return scene;
}

} // namespace ComposeRegions
