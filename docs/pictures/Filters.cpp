// Filters over lines and maps, and their arithmetic.

#include "Cells.h"
#include "Chart.h"
#include "Pictures.h"

#include "snippets/Scan.h"

#include <random>
#include <string>

namespace Pictures
{
namespace
{

constexpr std::size_t kAcross = 44;
constexpr std::size_t kDown = 32;

Zo::Object<void*> SameSize(const Zvl::Surface& scan)
{
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), xxq16s_type, qArray2_Length(scan.layers[0], 0),
                               qArray2_Length(scan.layers[0], 1), nullptr));
    return array;
}

void DrawMap(Svg& svg, const qPoint64f& corner, double size, const std::string& title, void* array, const Range& range)
{
    Cells(svg, corner, size, qArray2_Length(array, 0), qArray2_Length(array, 1)).Heights(array, range);
    svg.Text({corner.x, corner.y - 10}, title, "text strong");
}

/** Waves with noise and dropouts. */
Zvl::Surface NoisyWaves()
{
    std::mt19937 generator(3);
    std::normal_distribution<double> noise(0.0, 0.12);
    std::bernoulli_distribution dropout(0.04);
    return MakeScan(
        [&](double x, double y)
        { return dropout(generator) ? std::nan("") : std::sin(2.5 * x) * std::cos(2.0 * y) + noise(generator); },
        kDown, kAcross);
}

std::vector<qPoint64f> PointsOf(const std::vector<short>& line)
{
    std::vector<qPoint64f> points;
    for (std::size_t item = 0; item < line.size(); ++item)
    {
        if (line[item] != Zvl::GetNull<short>())
        {
            points.push_back({static_cast<double>(item), static_cast<double>(line[item])});
        }
    }
    return points;
}

} // namespace

Svg ProfileFilters()
{
    std::mt19937 generator(7);
    std::normal_distribution<double> noise(0.0, 3.0);
    std::vector<short> line(120);
    for (std::size_t item = 0; item < line.size(); ++item)
    {
        const double level = item < 60 ? 40.0 : 90.0;
        line[item] = static_cast<short>(std::lround(level + noise(generator) + (item % 23 == 9 ? 45.0 : 0.0)));
    }
    std::fill(line.begin() + 82, line.begin() + 90, Zvl::GetNull<short>());

    Svg svg(760, 470);
    const auto draw = [&](const Place& place, const std::string& title, const std::vector<short>& result)
    {
        Chart chart(svg, place, title, {0.0, 120.0}, {20.0, 150.0});
        chart.Dots(PointsOf(line), "dot-ink", 1.5);
        chart.Curve(PointsOf(result), "line orange");
    };
    std::vector<short> result(line.size());
    Zvl::ProfileFilter(line.data(), line.size(), result.data(), nullptr).Average(9, 1);
    draw({40, 40, 320, 165}, "Average(9): edges and spikes smear", result);
    Zvl::ProfileFilter(line.data(), line.size(), result.data(), nullptr).Median(9, 1);
    draw({420, 40, 320, 165}, "Median(9): edges stay, spikes go", result);
    Zvl::ProfileFilter(line.data(), line.size(), result.data(), nullptr).Median(3, 1).Gaussian(9, 0.0, 1);
    draw({40, 275, 320, 165}, "Median(3).Gaussian(9)", result);
    Zvl::ProfileFilter(line.data(), line.size(), result.data(), nullptr).FillGap(10, 5, 0).Median(9, 1);
    draw({420, 275, 320, 165}, "FillGap(10).Median(9)", result);
    return svg;
}

Svg SurfaceFilters()
{
    Svg svg(760, 240);
    const Zvl::Surface scan = NoisyWaves();
    const Range range = {-1200.0, 1200.0};
    const Zo::Object<void*> kept = SameSize(scan);
    const Zo::Object<void*> filled = SameSize(scan);
    Zvl::SurfaceFilter(scan.layers[0], kept, nullptr).Average({5, 5}, 1);
    Zvl::SurfaceFilter(scan.layers[0], filled, nullptr).Average({5, 5}, 0);
    DrawMap(svg, {15, 45}, 5.2, "A noisy scan", scan.layers[0], range);
    DrawMap(svg, {265, 45}, 5.2, "Average({5, 5}, 1)", kept, range);
    DrawMap(svg, {515, 45}, 5.2, "Average({5, 5}, 0)", filled, range);
    svg.Text({265, 230}, "missing heights stay", "text small");
    svg.Text({515, 230}, "missing heights are filled", "text small");
    return svg;
}

Svg GapFilling()
{
    Svg svg(760, 240);
    const Zvl::Surface scan = MakeScan(
        [](double x, double y)
        {
            const bool isShadow = x > 0.95 && x < 1.35;
            const bool isHole = std::hypot(x - 3.0, y - 1.6) < 0.7;
            return isShadow || isHole ? std::nan("") : 0.3 * x + 0.2 * y + (x > 1.3 && x < 2.0 ? 0.5 : 0.0);
        },
        kDown, kAcross);
    Zvl::SurfaceFillGapParams limits;
    limits.resolutionX = kCell.x;
    limits.resolutionY = kCell.y;
    limits.resolutionZ = kCount;
    limits.maxGapX = 0.5;
    limits.maxSlopeX = 30.0;
    Zo::Object<void*> rows;
    Zo::Object<void*> both;
    Zo::Object<void*> noIntensity;
    Zvl::SurfaceFillGapXY(limits, scan.layers[0], nullptr, rows, noIntensity, nullptr);
    limits.maxGapX = 1.6;
    limits.maxGapY = 1.6;
    limits.maxSlopeY = 30.0;
    Zvl::SurfaceFillGapXY(limits, scan.layers[0], nullptr, both, noIntensity, nullptr);
    const Range range = {0.0, 2000.0};
    DrawMap(svg, {15, 45}, 5.2, "A shadow and a hole", scan.layers[0], range);
    DrawMap(svg, {265, 45}, 5.2, "Rows, gaps up to 0.5 mm", rows, range);
    DrawMap(svg, {515, 45}, 5.2, "Both ways, up to 1.6 mm", both, range);
    svg.Text({265, 230}, "the step is steeper than 30 degrees: flat", "text small");
    return svg;
}

Svg Decimation()
{
    Svg svg(760, 240);
    const Zvl::Surface scan = NoisyWaves();
    const Zvl::Surface half = Zvl::SurfaceDecimate(scan, {0, 0}, {0.5, 0.5}, nullptr);
    const Zvl::Surface odd = Zvl::SurfaceDecimate(scan, {15, 11}, {0.0, 0.0}, nullptr);
    const Range range = {-1200.0, 1200.0};
    DrawMap(svg, {15, 45}, 5.2, "44 x 32 cells", scan.layers[0], range);
    DrawMap(svg, {265, 45}, 10.4, "ratio 0.5: 22 x 16", half.layers[0], range);
    DrawMap(svg, {515, 45}, 5.2 * 44.0 / 15.0, "size 15 x 11", odd.layers[0], range);
    return svg;
}

Svg Arithmetic()
{
    Svg svg(760, 300);
    Zvl::Surface first =
        MakeScan([](double x, double y) { return 1.0 + 0.3 * std::sin(2.0 * x) * std::sin(2.0 * y); }, 30, 30);
    Zvl::Surface second =
        MakeScan([](double x, double y) { return std::hypot(x - 1.2, y - 1.0) < 0.4 ? std::nan("") : 0.5; }, 24, 30);
    second.offset.x = 1.2;
    second.offset.y = 1.0;
    Zvl::Surface intersection;
    Zvl::Surface united;
    Zvl::Arithmetics::Apply(Zvl::ArithmeticOperator::Subtract, Zvl::ArithmeticLogic::Intersection, first, second,
                            intersection);
    Zvl::Arithmetics::Apply(Zvl::ArithmeticOperator::Subtract, Zvl::ArithmeticLogic::Union, first, second, united);
    const Range range = {0.0, 1400.0};
    DrawMap(svg, {15, 45}, 5, "The two maps", first.layers[0], range);
    Cells(svg, {75, 95}, 5, 24, 30).Heights(second.layers[0], range);
    Cells(svg, {15, 45}, 5, 34, 42).Box({0, 0, 30, 30}, "line blue");
    Cells(svg, {15, 45}, 5, 34, 42).Box({12, 10, 30, 24}, "line orange");
    DrawMap(svg, {345, 95}, 5, "Intersection", intersection.layers[0], range);
    DrawMap(svg, {515, 45}, 5, "Union", united.layers[0], range);
    svg.Text({15, 245}, "first in the blue frame,", "text small");
    svg.Text({15, 263}, "second in the orange one", "text small");
    svg.Text({345, 245}, "first - second where", "text small");
    svg.Text({345, 263}, "both have a height", "text small");
    svg.Text({515, 245}, "elsewhere the height of", "text small");
    svg.Text({515, 263}, "the one that has a cell there", "text small");
    return svg;
}

} // namespace Pictures
