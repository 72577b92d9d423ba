#include "Whole/Program.h"

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include "support/Surfaces.h"

#include <cmath>
#include <tuple>
#include <utility>

namespace WholeTest
{

using namespace Zvl;

namespace
{

/** Integers that look random and are the same everywhere. */
class Numbers
{
public:
    std::uint32_t Next()
    {
        state = state * 6364136223846793005U + 1442695040888963407U;
        return static_cast<std::uint32_t>(state >> 33U);
    }

    int Between(int low, int high)
    {
        return low + static_cast<int>(Next() % static_cast<std::uint32_t>(high - low + 1));
    }

private:
    std::uint64_t state = 1;
};

/** A wavy plate with noise, dropouts and intensities, all from integers. */
Surface MakePlate(const World& world, qPoint3d64f offset)
{
    Numbers numbers;
    std::vector<std::int16_t> heights(world.rows * world.columns);
    std::vector<std::uint8_t> intensities(world.rows * world.columns);
    for (std::size_t i = 0; i < heights.size(); ++i)
    {
        const int column = static_cast<int>(i % world.columns);
        const int row = static_cast<int>(i / world.columns);
        const int wave = (column - 160) * (column - 160) / 16 - (row - 120) * (row - 100) / 12;
        const bool isMissing = numbers.Between(0, 9) == 0;
        heights[i] = isMissing ? TestSupport::kMissing : static_cast<std::int16_t>(wave + numbers.Between(-30, 30));
        intensities[i] = static_cast<std::uint8_t>(numbers.Between(0, 255));
    }
    Surface plate =
        TestSupport::MakeSurface(world.rows, world.columns, heights, {world.scale.x, world.scale.y, 0.001}, offset);
    plate.layers.push_back(TestSupport::MakeArray(world.rows, world.columns, intensities));
    return plate;
}

/** A lobed ring of points; without functions of the C library, which may differ in the last digit. */
std::vector<qPoint64f> MakeRing(std::size_t count)
{
    Numbers numbers;
    std::vector<qPoint64f> points;
    while (points.size() < count)
    {
        const double x = numbers.Between(-10000, 10000) / 10000.0;
        const double y = numbers.Between(-10000, 10000) / 10000.0;
        const double length = std::sqrt(x * x + y * y);
        if (length > 0.1)
        {
            const double radius = 5.0 + 0.01 * (x / length) + numbers.Between(-100, 100) * 1e-5;
            points.push_back({2.0 + radius * x / length, 3.0 + radius * y / length});
        }
    }
    return points;
}

void DigestRegions(const World& world, Digests& digests)
{
    const auto on = [&](auto... shape)
    {
        return std::make_tuple(shape..., std::uint64_t{world.columns}, std::uint64_t{world.rows}, world.scale,
                               world.offset, nullptr);
    };
    auto polygon = std::make_from_tuple<PolygonROI>(
        on(std::vector<Point2d<double>>{{-7.1, -5.2}, {3.3, -4.1}, {6.9, 5.3}, {-1.2, 0.7}, {-6.3, 4.9}}));
    auto rectangle = std::make_from_tuple<RectangleROI>(on(-3.2, -4.4, 7.3, 5.1, 23.0));
    auto ellipse = std::make_from_tuple<EllipseROI>(on(0.3, 0.2, 0.7, 1.1, 4.3, 6.1, 10.0, 250.0, 31.0));
    auto circle = std::make_from_tuple<CircleROI>(on(-0.7131, 0.4173, 1.3019, 4.9373, 0.0, 360.0));
    SurfaceROI reference(world.plate, world.columns, world.rows, world.scale, world.offset, nullptr);
    IntensityROI bright(world.plate, world.columns, world.rows, world.scale, world.offset, 90, 180, nullptr);
    digests["PolygonROI"] = Digest().AddRegion(polygon).Value();
    digests["RectangleROI"] = Digest().AddRegion(rectangle).Value();
    digests["EllipseROI"] = Digest().AddRegion(ellipse).Value();
    digests["CircleROI"] = Digest().AddRegion(circle).Value();
    digests["SurfaceROI"] = Digest().AddRegion(reference).Value();
    digests["IntensityROI"] = Digest().AddRegion(bright).Value();

    ComposedROI composed;
    composed.Add(rectangle.DeepCopy());
    composed.Add(circle.DeepCopy());
    digests["ComposedROI"] = Digest().AddRegion(composed).Value();
    ThresholdHeight(world.plate, -0.4, 0.9, polygon);
    digests["ThresholdHeight"] = Digest().AddRegion(polygon).Value();
    Surface masked;
    ApplyMask(world.plate, circle.DeepCopy(), &masked, nullptr);
    digests["ApplyMask"] = Digest().AddSurface(masked).Value();
}

void DigestExtraction(const World& world, Digests& digests)
{
    CircleROI circle(0.1131, -0.2073, 0.0, 5.0133, 0.0, 360.0, world.columns, world.rows, world.scale, world.offset,
                     nullptr);
    ThresholdHeight(world.plate, -10.0, 10.0, circle);
    const Rect2d<int> box = circle.GetBoundingBox();
    Zo::Object<void*> points;
    GetPointsFromROI<qPoint3d64f>(world.plate, box, circle.GetMask(), points.Slot());
    digests["GetPointsFromROI"] =
        Digest().Add(qArrayList_Data(points), qArrayList_Count(points) * sizeof(qPoint3d64f)).Value();
    Surface cropped;
    CropSurfaceFromROI(world.plate, box, circle.GetMask(), cropped, nullptr);
    digests["CropSurfaceFromROI"] = Digest().AddSurface(cropped).Value();
    const Region3d<double> upright = GetBoundingBox({{world.plate, box, circle.GetMask()}}, 0, nullptr);
    digests["GetBoundingBox"] =
        Digest().AddValue(upright.x).AddValue(upright.y).AddValue(upright.width).AddValue(upright.height).Value();
    ThresholdPercentile<short>(world.plate, 5.0, 80.0, box, circle.GetMask());
    digests["ThresholdPercentile"] = Digest().AddRegion(circle).Value();
}

void DigestFilters(const World& world, Digests& digests)
{
    const auto* cells = static_cast<const short*>(qArray2_At(world.plate.layers[0], 0, 0));
    std::vector<short> line(world.columns * 4);
    ProfileFilter(cells, line.size(), line.data(), nullptr)
        .FillGap(6, 40, 0)
        .Median(9, 0)
        .Average(5, 1)
        .Gaussian(11, 1.5, 1)
        .Percentile(2.0, 97.0, ProfileFilter::Rank);
    digests["ProfileFilter"] = Digest().Add(line.data(), line.size() * sizeof(short)).Value();

    const Zo::Object<void*> smooth = TestSupport::MakeFilled<std::int16_t>(world.rows, world.columns, 0);
    SurfaceFilter(world.plate.layers[0], smooth, nullptr).Average({15, 6}, 0).Average({3, 41}, 1);
    digests["SurfaceFilter"] = Digest().AddArray(smooth).Value();
    digests["SmoothFullArray2"] =
        Digest().AddArray(SmoothFullArray2<short>(world.plate.layers[0], 9, 14, nullptr)).Value();

    const SurfaceFillGapParams gaps = {world.scale.x, world.scale.y, 0.001, 0.3, 0.4, 60.0, 70.0, 0};
    Zo::Object<void*> filled;
    Zo::Object<void*> filledIntensity;
    SurfaceFillGapXY(gaps, world.plate.layers[0], world.plate.layers[1], filled, filledIntensity, nullptr);
    digests["SurfaceFillGapXY"] = Digest().AddArray(filled).AddArray(filledIntensity).Value();
    digests["SurfaceDecimate"] =
        Digest().AddSurface(SurfaceDecimate(world.plate, {0, 0}, {0.37, 0.41}, nullptr)).Value();
}

void DigestArithmetic(const World& world, Digests& digests)
{
    Surface plate = world.plate;
    Surface other = world.other;
    for (const auto& [op, name] :
         {std::pair(ArithmeticOperator::Add, "Add"), std::pair(ArithmeticOperator::Subtract, "Subtract"),
          std::pair(ArithmeticOperator::Average, "Average")})
    {
        Surface result;
        Arithmetics::Apply(op, ArithmeticLogic::Union, plate, other, result);
        digests[name] = Digest().AddSurface(result).Value();
    }
}

void DigestFits(const World& world, Digests& digests)
{
    const std::vector<qPoint64f>& ring = world.ring;
    const auto addCircle = [&](const char* name, double percent, CircleType type)
    {
        qPoint64f center{};
        double minRadius = 0.0;
        double maxRadius = 0.0;
        std::vector<qPoint64f> outliers;
        FitCircle(ring.data(), ring.size(), percent, type, &center, &minRadius, &maxRadius, nullptr, nullptr, nullptr,
                  nullptr, nullptr, &outliers);
        digests[name] = Digest().AddValue(center.x).AddValue(center.y).AddValue(minRadius).AddValue(maxRadius).Value();
    };
    addCircle("least-squares circle", 5.0, CIRCLE_LSC);
    addCircle("minimum-zone circle", 0.0, CIRCLE_MZC);

    double slope = 0.0;
    double intercept = 0.0;
    FitLineIterative(ring.data(), 300, 10.0, &slope, &intercept, nullptr, nullptr);
    digests["FitLineIterative"] = Digest().AddValue(slope).AddValue(intercept).Value();
    double coefficients[4] = {};
    EXPECT_EQ(FitPolynomial(ring.data(), ring.size(), 3, coefficients), 0);
    digests["FitPolynomial"] = Digest().Add(coefficients, sizeof(coefficients)).Value();

    const Zo::Object<void*> mask = TestSupport::MakeFilled<std::uint8_t>(world.rows, world.columns, 1);
    qPlane3d64f plane{};
    FitPlane(world.plate, {0, 0, static_cast<int>(world.columns), static_cast<int>(world.rows)}, mask, &plane);
    digests["FitPlane"] = Digest().Add(&plane, sizeof(plane)).Value();
}

void DigestInpainting(const World& world, Digests& digests)
{
    cv::Mat heights(static_cast<int>(world.rows), static_cast<int>(world.columns), CV_16SC1,
                    qArray2_At(world.plate.layers[0], 0, 0));
    cv::Mat holes = heights == TestSupport::kMissing;
    for (const auto& [method, name] :
         {std::pair(CV_INPAINT_NS, "Inpaint NS"), std::pair(CV_INPAINT_TELEA, "Inpaint Telea")})
    {
        cv::Mat repaired;
        Inpaint(heights, holes, repaired, 4.0, method);
        digests[name] = Digest().Add(repaired.data, repaired.total() * repaired.elemSize()).Value();
    }
}

} // namespace

World::World(std::size_t rowCount, std::size_t columnCount)
    : rows(rowCount),
      columns(columnCount),
      scale{16.0 / static_cast<double>(columns), 12.0 / static_cast<double>(rows)},
      offset{-8.0, -6.0},
      plate(MakePlate(*this, {offset.x, offset.y, 0.0})),
      other(MakePlate(*this, {offset.x + 1.32, offset.y - 0.91, 0.4})),
      ring(MakeRing(400))
{
}

const std::vector<Operation>& Operations()
{
    static const std::vector<Operation> operations = {DigestRegions,    DigestExtraction, DigestFilters,
                                                      DigestArithmetic, DigestFits,       DigestInpainting};
    return operations;
}

} // namespace WholeTest
