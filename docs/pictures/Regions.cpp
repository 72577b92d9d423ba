// Regions over surfaces and profiles, masks, anchors.

#include "Cells.h"
#include "Chart.h"
#include "Pictures.h"

#include "snippets/Scan.h"

#include <memory>
#include <string>

namespace Pictures
{
namespace
{

constexpr std::size_t kAcross = 30;
constexpr std::size_t kDown = 22;

/** A small frame with the mask and the box of @p region. */
void DrawRegion(Svg& svg, const qPoint64f& corner, const std::string& title, Zvl::ROI& region)
{
    Cells cells(svg, corner, 7.5, kDown, kAcross);
    cells.Grid();
    cells.Mask(region.GetMask(), region.GetBoundingBox().y, region.GetBoundingBox().x, "fill-blue");
    cells.Box(region.GetBoundingBox(), "line orange");
    svg.Text({corner.x, corner.y - 8}, title, "text strong");
}

Zvl::Surface Ramp()
{
    return MakeScan([](double x, double y)
                    { return std::hypot(x - 1.9, y - 1.0) < 0.35 ? std::nan("") : 0.5 * x + 0.25 * y; },
                    kDown, kAcross);
}

/** A line over 10 mm with a bump. */
Zvl::Profile BumpLine()
{
    Zvl::Profile line({0.0, 0.0}, {0.1, 0.01});
    line.AddLayer(xxq16s_type, 100, nullptr);
    auto* heights = static_cast<short*>(qArray1_Data(line.layers[0]));
    for (int item = 0; item < 100; ++item)
    {
        const double x = 0.1 * item - 5.0;
        heights[item] = static_cast<short>(std::lround(100.0 + 250.0 * std::exp(-x * x / 2.0)));
    }
    return line;
}

/** The items of @p line, those inside of @p region in another colour. */
void DrawItems(Chart& chart, const Zvl::Profile& line, Zvl::RoiProfile& region)
{
    region.ApplyRoi(line);
    const auto* heights = static_cast<const short*>(qArray1_Data(line.layers[0]));
    const auto* mask = static_cast<const unsigned char*>(qArray1_Data(region.GetMask()));
    const Zvl::RunLength<int> segment = region.GetBoundingSegment();
    for (int item = 0; item < 100; ++item)
    {
        const int index = item - segment.start;
        const bool isInside = index >= 0 && index < segment.length && mask[index] != 0;
        chart.Dots({{0.1 * item, 0.01 * heights[item]}}, isInside ? "dot-orange" : "dot-ink", isInside ? 3.5 : 2.0);
    }
}

} // namespace

Svg SurfaceRegions()
{
    Svg svg(760, 460);
    const auto rectangle =
        std::make_shared<Zvl::RectangleROI>(0.5, 0.6, 1.9, 0.9, 25.0, kAcross, kDown, kCell, kOrigin, nullptr);
    Zvl::EllipseROI ellipse({1.45, 1.05}, 0.5, 0.8, 1.3, 2.4, 0.0, 360.0, -20.0, kAcross, kDown, kCell, kOrigin,
                            nullptr);
    const auto ring = std::make_shared<Zvl::CircleROI>(qPoint64f{1.45, 1.05}, 0.4, 0.93, 30.0, 290.0, kAcross, kDown,
                                                       kCell, kOrigin, nullptr);
    const qPoint64f star[] = {{0.2, 0.75}, {2.7, 0.75}, {0.65, 2.0}, {1.45, 0.12}, {2.3, 2.0}};
    Zvl::PolygonROI polygon(star, 5, kAcross, kDown, kCell, kOrigin, nullptr);
    Zvl::SurfaceROI reference(MakeScan([](double x, double y)
                                       { return std::sin(4.0 * x) + std::cos(5.0 * y) > 0.1 ? 1.0 : std::nan(""); },
                                       kDown, kAcross),
                              kAcross, kDown, kCell, kOrigin, nullptr);
    Zvl::ComposedROI composed;
    composed.Add(rectangle);
    composed.Add(ring);
    DrawRegion(svg, {15, 35}, "RectangleROI", *rectangle);
    DrawRegion(svg, {267, 35}, "EllipseROI", ellipse);
    DrawRegion(svg, {519, 35}, "CircleROI", *ring);
    DrawRegion(svg, {15, 260}, "PolygonROI: parity", polygon);
    DrawRegion(svg, {267, 260}, "SurfaceROI", reference);
    DrawRegion(svg, {519, 260}, "ComposedROI", composed);
    return svg;
}

Svg ProfileRegions()
{
    Svg svg(760, 300);
    const Zvl::Profile line = BumpLine();
    const qPoint64f scale = line.scale;
    Zvl::RectangleRoiProfile rectangle({3.2, 1.5, 3.2, 1.2, 0.0}, 100, scale, line.offset, 1, nullptr);
    Chart left(svg, {45, 40, 320, 208}, "RectangleRoiProfile", {0.0, 10.0}, {0.0, 4.0});
    left.Curve({{3.2, 1.5}, {6.4, 1.5}, {6.4, 2.7}, {3.2, 2.7}, {3.2, 1.5}}, "line blue");
    DrawItems(left, line, rectangle);

    Zvl::CircleRoiProfile circle({0.0, 1.2, 0.0, 360.0, {5.0, 3.0}}, 100, scale, line.offset, 1, nullptr);
    Chart right(svg, {425, 40, 320, 128}, "CircleRoiProfile", {0.0, 10.0}, {0.5, 4.5});
    right.Circle({5.0, 3.0}, 1.2, "line blue");
    DrawItems(right, line, circle);
    svg.Circle({430, 215}, 3.5, "dot-orange");
    svg.Text({442, 220}, "items that ApplyRoi() found inside");
    svg.Circle({430, 240}, 2, "dot-ink");
    svg.Text({442, 245}, "other items of the line");
    return svg;
}

Svg MasksAndLimits()
{
    Svg svg(760, 260);
    const Zvl::Surface scan = Ramp();
    Zvl::CircleROI region({1.45, 1.05}, 0.0, 1.0, 0.0, 360.0, kAcross, kDown, kCell, kOrigin, nullptr);
    const auto draw = [&](double x, const std::string& title)
    {
        Cells cells(svg, {x, 45}, 7.5, kDown, kAcross);
        cells.Heights(scan.layers[0], {0.0, 2000.0});
        cells.Mask(region.GetMask(), region.GetBoundingBox().y, region.GetBoundingBox().x, "line orange thin");
        svg.Text({x, 35}, title, "text strong");
        svg.Text({x, 230}, std::to_string(CountCells(region.GetMask())) + " cells", "text small");
    };
    draw(15, "The mask of a disc");
    Zvl::ThresholdHeight(scan, 0.6, 1.25, region);
    draw(267, "ThresholdHeight 0.6 to 1.25");
    Zvl::ThresholdPercentile<short>(scan, 50.0, 100.0, region.GetBoundingBox(), region.GetMask());
    draw(519, "then percentiles 50 to 100");
    return svg;
}

Svg Anchors()
{
    Svg svg(760, 330);
    Chart chart(svg, {50, 40, 440, 264}, "Anchor {3, 1, null, 30}", {0.0, 10.0}, {0.0, 6.0});
    const Zvl::Anchor anchor = {3.0, 1.0, Zvl::GetNull<double>(), 30.0};
    const auto outline = [](const Zvl::Region2d<double>& region)
    {
        std::vector<Zvl::Point2d<double>> corners;
        Zvl::ExtractPolygonFromRect(region, &corners);
        return std::vector<qPoint64f>(corners.begin(), corners.end());
    };
    const Zvl::Region2d<double> drawn = {2.5, 0.6, 2.4, 1.0, 0.0};
    Zvl::Region2d<double> moved;
    Zvl::AnchorRectangle(anchor, drawn, &moved);
    const Zvl::AnnularSector2d<double> ring = {0.3, 0.7, 0.0, 270.0, {1.4, 1.1}};
    Zvl::AnnularSector2d<double> movedRing;
    Zvl::AnchorAnnularSector(anchor, ring, &movedRing);
    chart.Curve(outline(drawn), "line blue dashed");
    chart.Curve(outline(moved), "line orange thick");
    chart.Circle(ring.center, ring.outerRadius, "line blue dashed");
    chart.Circle(ring.center, ring.innerRadius, "line blue dashed");
    chart.Circle(movedRing.center, ring.outerRadius, "line orange thick");
    chart.Circle(movedRing.center, ring.innerRadius, "line orange thick");
    svg.Arrow(chart.At({drawn.x + 1.2, drawn.y + 0.5}), chart.At({moved.x + 1.2, moved.y + 0.5}), "line green");
    svg.Arrow(chart.At(ring.center), chart.At(movedRing.center), "line green");
    svg.Line({515, 70}, {545, 70}, "line blue dashed");
    svg.Text({555, 75}, "as drawn");
    svg.Line({515, 100}, {545, 100}, "line orange thick");
    svg.Text({555, 105}, "in this scan");
    svg.Text({515, 145}, "Centres are turned about the", "text small");
    svg.Text({515, 163}, "origin, then shifted. Sizes stay.", "text small");
    return svg;
}

} // namespace Pictures
