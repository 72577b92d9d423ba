// How data lie: the mapping, nulls, boxes and masks, frames, ownership.

#include "Cells.h"
#include "Chart.h"
#include "Pictures.h"

#include "snippets/Scan.h"

#include <array>
#include <cstdint>
#include <string>

namespace Pictures
{
Svg Mapping()
{
    Svg svg(760, 345);
    Zvl::Surface scan = MakeScan([](double x, double y) { return 0.3 * x - 0.2 * y; }, 4, 6);
    scan.offset = {10.0, 20.0, 5.0};

    Cells cells(svg, {70, 70}, 46, 4, 6);
    cells.Grid();
    for (int row = 0; row < 4; ++row)
    {
        for (int column = 0; column < 6; ++column)
        {
            svg.Circle(cells.Centre(row, column), 2.5, "dot-ink");
        }
    }
    const Place marked = cells.Cell(2, 4);
    svg.Rectangle(marked, "fill-orange");
    const qPoint64f origin = cells.Centre(0, 0);
    svg.Arrow(origin, {origin.x + 300, origin.y}, "line blue thick");
    svg.Arrow(origin, {origin.x, origin.y + 220}, "line blue thick");
    svg.Text({origin.x + 306, origin.y + 4}, "x");
    svg.Text({origin.x - 4, origin.y + 236}, "y");
    svg.Text({70, 56}, "offset: the centre of cell (0, 0)");
    const qPoint64f a = cells.Centre(3, 4);
    const qPoint64f b = cells.Centre(3, 5);
    svg.Line({a.x, a.y + 30}, {a.x, a.y + 46}, "line");
    svg.Line({b.x, b.y + 30}, {b.x, b.y + 46}, "line");
    svg.Arrow({a.x, a.y + 38}, {b.x, b.y + 38}, "line");
    svg.Text({(a.x + b.x) / 2, a.y + 62}, "scale.x", "text small middle");

    const short count = HeightAt(scan, 2, 4);
    const double left = 420;
    svg.Text({left, 100}, "row 2, column 4, height count " + std::to_string(count), "text strong");
    svg.Text({left, 130}, "x = offset.x + column * scale.x = " + Fixed(scan.offset.x + 4 * scan.scale.x, 1) + " mm");
    svg.Text({left, 154}, "y = offset.y + row * scale.y = " + Fixed(scan.offset.y + 2 * scan.scale.y, 1) + " mm");
    svg.Text({left, 178}, "z = offset.z + count * scale.z = " + Fixed(scan.offset.z + count * scan.scale.z, 3) + " mm");
    svg.Text({left, 214}, "A cell is its centre point.", "text small");
    return svg;
}

Svg Nulls()
{
    Svg svg(760, 300);
    std::array<short, 24> line{};
    for (std::size_t item = 0; item < line.size(); ++item)
    {
        const bool isMissing = (item >= 8 && item <= 11) || item == 18;
        line[item] = isMissing
                         ? Zvl::GetNull<short>()
                         : static_cast<short>(std::lround(40.0 + 20.0 * std::sin(0.4 * static_cast<double>(item))));
    }
    Chart chart(svg, {60, 40, 660, 170}, "Height counts of a line scan", {-0.5, 23.5}, {0.0, 80.0});
    for (std::size_t item = 0; item < line.size(); ++item)
    {
        const auto x = static_cast<double>(item);
        const qPoint64f at = chart.At({x, 0.0});
        if (line[item] == Zvl::GetNull<short>())
        {
            svg.Rectangle({at.x - 13, 40, 26, 170}, "fill-orange");
        }
        else
        {
            chart.Dots({{x, static_cast<double>(line[item])}}, "dot-blue", 4);
        }
    }
    svg.Text({60, 262}, "Missing: the count " + std::to_string(Zvl::GetNull<short>()) +
                            " in the data themselves. Filters leave such cells out.");
    svg.Text({60, 284}, "For fits they are cleared from the mask first (ThresholdHeight).");
    return svg;
}

Svg BoxAndMask()
{
    Svg svg(760, 400);
    constexpr std::size_t kAcross = 26;
    constexpr std::size_t kDown = 18;
    Zvl::CircleROI ring({1.15, 0.95}, 0.3, 0.72, 0.0, 250.0, kAcross, kDown, kCell, kOrigin, nullptr);
    const Zvl::Rect2d<int> box = ring.GetBoundingBox();
    Cells cells(svg, {30, 30}, 18, kDown, kAcross);
    cells.Grid();
    cells.Mask(ring.GetMask(), box.y, box.x, "fill-blue");
    cells.Box(box, "line orange thick");
    const qPoint64f center = cells.Centre(9.5, 11.5);
    std::vector<qPoint64f> outline;
    for (int step = 0; step <= 250; ++step)
    {
        const double angle = step * 3.141592653589793 / 180.0;
        outline.push_back({center.x + 0.72 * 180.0 * std::cos(angle), center.y + 0.72 * 180.0 * std::sin(angle)});
    }
    for (int step = 250; step >= 0; --step)
    {
        const double angle = step * 3.141592653589793 / 180.0;
        outline.push_back({center.x + 0.3 * 180.0 * std::cos(angle), center.y + 0.3 * 180.0 * std::sin(angle)});
    }
    svg.Path(outline, "line", true);
    const double left = 512;
    svg.Line({left, 60}, {left + 30, 60}, "line");
    svg.Text({left + 40, 65}, "the shape, in mm");
    svg.Line({left, 90}, {left + 30, 90}, "line orange thick");
    svg.Text({left + 40, 95}, "its box, in cells:");
    svg.Text({left + 40, 115}, "x " + std::to_string(box.x) + ", y " + std::to_string(box.y) + ",", "text small");
    svg.Text({left + 40, 133}, "width " + std::to_string(box.width) + ", height " + std::to_string(box.height),
             "text small");
    svg.Rectangle({left, 150, 30, 18}, "fill-blue");
    svg.Text({left + 40, 164}, "its mask: " + std::to_string(CountCells(ring.GetMask())) + " cells of 1,");
    svg.Text({left + 40, 184}, "centres inside the shape");
    return svg;
}

Svg Frames()
{
    Svg svg(760, 330);
    Chart chart(svg, {50, 40, 420, 252}, "A frame maps points", {-1.0, 9.0}, {-1.0, 5.0});
    const std::vector<qPoint64f> part = {{0, 0}, {2.4, 0}, {2.4, 0.8}, {0.8, 0.8}, {0.8, 1.6}, {0, 1.6}, {0, 0}};
    Zvl::RefFrame first;
    first.Rotate(35.0, {0.0, 0.0, 1.0});
    const Zvl::RefFrame both = first * Zvl::RefFrame().Translate(5.5, 2.0, 0.0);
    const auto mapped = [&part](const Zvl::RefFrame& frame)
    {
        std::vector<qPoint64f> points;
        points.reserve(part.size());
        for (const qPoint64f& point : part)
        {
            points.push_back(frame.Apply(point));
        }
        return points;
    };
    chart.Curve(part, "line");
    chart.Curve(mapped(first), "line blue dashed");
    chart.Curve(mapped(both), "line orange thick");
    const qPoint64f origin = both.Apply(qPoint64f{0, 0});
    svg.Arrow(chart.At(origin), chart.At(both.Apply(qPoint64f{1.2, 0})), "line green thick");
    svg.Arrow(chart.At(origin), chart.At(both.Apply(qPoint64f{0, 1.2})), "line green thick");
    const double left = 500;
    svg.Line({left, 70}, {left + 30, 70}, "line");
    svg.Text({left + 40, 75}, "the part");
    svg.Line({left, 100}, {left + 30, 100}, "line blue dashed");
    svg.Text({left + 40, 105}, "A: turned by 35 degrees");
    svg.Line({left, 130}, {left + 30, 130}, "line orange thick");
    svg.Text({left + 40, 135}, "A * B: then shifted");
    svg.Line({left, 160}, {left + 30, 160}, "line green thick");
    svg.Text({left + 40, 165}, "I, J: images of the axes");
    svg.Text({left + 40, 185}, "I = (" + Fixed(both.GetIx(), 3) + ", " + Fixed(both.GetIy(), 3) + ")", "text small");
    svg.Text({left + 40, 203}, "T = (" + Fixed(both.GetTx(), 3) + ", " + Fixed(both.GetTy(), 3) + ")", "text small");
    return svg;
}

Svg Ownership()
{
    const auto allocate = [](void*, std::size_t size) { return std::malloc(size); };
    const auto release = [](void*, void* memory) { std::free(memory); };
    Zo::Object<void*> allocator;
    Zo::Test(qAlloc_Construct(allocator.Slot(), allocate, release, nullptr));
    Zvl::Surface scan;
    scan.layers.resize(1);
    Zo::Test(qArray2_Construct(scan.layers[0].Slot(), xxq16s_type, 100, 100, allocator));
    const Zvl::Surface copy = scan;
    Zo::Object<void*> clone;
    Zo::Test(xqObject_CloneImpl(clone.Slot(), scan.layers[0], allocator, allocator, 0));

    Svg svg(760, 300);
    const auto box = [&svg](double x, double y, const std::string& title, const std::string& line)
    {
        svg.Rectangle({x, y, 180, 58}, "paper");
        svg.Text({x + 90, y + 25}, title, "text strong middle");
        svg.Text({x + 90, y + 45}, line, "text small middle");
    };
    const auto counts = [](void* object) { return "counts: " + std::to_string(qObject_ShareCount(object)); };
    const auto address = reinterpret_cast<std::uintptr_t>(qArray2_At(scan.layers[0], 0, 0));
    box(20, 30, "Surface scan", "layers[0]");
    box(20, 120, "Surface copy = scan", "layers[0]");
    box(20, 210, "clone", "Object<void*>");
    box(290, 75, "array of heights", counts(scan.layers[0]));
    box(290, 210, "array of heights", counts(clone));
    box(560, 140, "allocator", counts(allocator));
    svg.Arrow({200, 59}, {288, 95}, "line blue");
    svg.Arrow({200, 149}, {288, 113}, "line blue");
    svg.Arrow({200, 239}, {288, 239}, "line blue");
    svg.Arrow({470, 104}, {558, 158}, "line blue");
    svg.Arrow({470, 239}, {558, 180}, "line blue");
    svg.Text({650, 222}, "one count is the handle's", "text small middle");
    svg.Text({650, 240}, "that made it", "text small middle");
    svg.Text({380, 150}, "first cell at a multiple of 64:", "text small middle");
    svg.Text({380, 166}, "remainder " + std::to_string(address % 64), "text small middle");
    return svg;
}

} // namespace Pictures
