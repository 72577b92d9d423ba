/** @file
 *  One fixed program of all operations, whose results are the same bits with every number of workers, in every instruction
 *  set, and from every compiler. */

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>
#include <ZdkVisionLib/ZdkVisionLib.h>

#include "support/Surfaces.h"

#include <cmath>
#include <cstring>
#include <map>
#include <string>

namespace
{

using namespace Zvl;

constexpr std::size_t kRows = 240;
constexpr std::size_t kColumns = 320;
constexpr qPoint64f kScale = {0.05, 0.05};
constexpr qPoint64f kOffset = {-8.0, -6.0};

/** A hash over the bytes of results: FNV-1a (G. Fowler, L. C. Noll, K.-P. Vo). */
class Digest
{
public:
    Digest& Add(const void* data, std::size_t size)
    {
        const auto* bytes = static_cast<const unsigned char*>(data);
        for (std::size_t i = 0; i < size; ++i)
        {
            value = (value ^ bytes[i]) * 1099511628211U;
        }
        return *this;
    }

    template <typename T>
    Digest& AddValue(const T& item)
    {
        static_assert(std::is_arithmetic_v<T>); // records may have padding
        return Add(&item, sizeof(item));
    }

    Digest& AddArray(void* array)
    {
        const std::size_t rows = qArray2_Length(array, 0);
        const std::size_t columns = qArray2_Length(array, 1);
        AddValue(rows).AddValue(columns);
        return rows * columns == 0 ? *this
                                   : Add(qArray2_At(array, 0, 0), rows * columns * qType_Size(qArray2_Type(array)));
    }

    Digest& AddSurface(const Surface& surface)
    {
        for (const qPoint3d64f& mapping : {surface.scale, surface.offset})
        {
            AddValue(mapping.x).AddValue(mapping.y).AddValue(mapping.z);
        }
        for (const Zo::Object<void*>& layer : surface.layers)
        {
            AddArray(layer);
        }
        return *this;
    }

    Digest& AddRegion(ROI& roi)
    {
        const Rect2d<int>& box = roi.GetBoundingBox();
        return AddValue(box.x).AddValue(box.y).AddValue(box.width).AddValue(box.height).AddArray(roi.GetMask());
    }

    std::uint64_t Value() const { return value; }

private:
    std::uint64_t value = 14695981039346656037U;
};

using Digests = std::map<std::string, std::uint64_t>;

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
Surface MakePlate(qPoint3d64f offset)
{
    Numbers numbers;
    std::vector<std::int16_t> heights(kRows * kColumns);
    std::vector<std::uint8_t> intensities(kRows * kColumns);
    for (std::size_t i = 0; i < heights.size(); ++i)
    {
        const int column = static_cast<int>(i % kColumns);
        const int row = static_cast<int>(i / kColumns);
        const int wave = (column - 160) * (column - 160) / 16 - (row - 120) * (row - 100) / 12;
        const bool isMissing = numbers.Between(0, 9) == 0;
        heights[i] = isMissing ? TestSupport::kMissing : static_cast<std::int16_t>(wave + numbers.Between(-30, 30));
        intensities[i] = static_cast<std::uint8_t>(numbers.Between(0, 255));
    }
    Surface plate = TestSupport::MakeSurface(kRows, kColumns, heights, {kScale.x, kScale.y, 0.001}, offset);
    plate.layers.push_back(TestSupport::MakeArray(kRows, kColumns, intensities));
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

void DigestRegions(const Surface& plate, Digests& digests)
{
    const auto on = [](auto... shape)
    { return std::make_tuple(shape..., std::uint64_t{kColumns}, std::uint64_t{kRows}, kScale, kOffset, nullptr); };
    auto polygon = std::make_from_tuple<PolygonROI>(
        on(std::vector<Point2d<double>>{{-7.1, -5.2}, {3.3, -4.1}, {6.9, 5.3}, {-1.2, 0.7}, {-6.3, 4.9}}));
    auto rectangle = std::make_from_tuple<RectangleROI>(on(-3.2, -4.4, 7.3, 5.1, 23.0));
    auto ellipse = std::make_from_tuple<EllipseROI>(on(0.3, 0.2, 0.7, 1.1, 4.3, 6.1, 10.0, 250.0, 31.0));
    auto circle = std::make_from_tuple<CircleROI>(on(-0.7131, 0.4173, 1.3019, 4.9373, 0.0, 360.0));
    SurfaceROI reference(plate, kColumns, kRows, kScale, kOffset, nullptr);
    IntensityROI bright(plate, kColumns, kRows, kScale, kOffset, 90, 180, nullptr);
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
    ThresholdHeight(plate, -0.4, 0.9, polygon);
    digests["ThresholdHeight"] = Digest().AddRegion(polygon).Value();
    Surface masked;
    ApplyMask(plate, circle.DeepCopy(), &masked, nullptr);
    digests["ApplyMask"] = Digest().AddSurface(masked).Value();
}

void DigestExtraction(const Surface& plate, Digests& digests)
{
    CircleROI circle(0.1131, -0.2073, 0.0, 5.0133, 0.0, 360.0, kColumns, kRows, kScale, kOffset, nullptr);
    ThresholdHeight(plate, -10.0, 10.0, circle);
    const Rect2d<int> box = circle.GetBoundingBox();
    Zo::Object<void*> points;
    GetPointsFromROI<qPoint3d64f>(plate, box, circle.GetMask(), points.Slot());
    digests["GetPointsFromROI"] =
        Digest().Add(qArrayList_Data(points), qArrayList_Count(points) * sizeof(qPoint3d64f)).Value();
    Surface cropped;
    CropSurfaceFromROI(plate, box, circle.GetMask(), cropped, nullptr);
    digests["CropSurfaceFromROI"] = Digest().AddSurface(cropped).Value();
    const Region3d<double> upright = GetBoundingBox({{plate, box, circle.GetMask()}}, 0, nullptr);
    digests["GetBoundingBox"] =
        Digest().AddValue(upright.x).AddValue(upright.y).AddValue(upright.width).AddValue(upright.height).Value();
    ThresholdPercentile<short>(plate, 5.0, 80.0, box, circle.GetMask());
    digests["ThresholdPercentile"] = Digest().AddRegion(circle).Value();
}

void DigestFilters(const Surface& plate, Digests& digests)
{
    const auto* cells = static_cast<const short*>(qArray2_At(plate.layers[0], 0, 0));
    std::vector<short> line(kColumns * 4);
    ProfileFilter(cells, line.size(), line.data(), nullptr)
        .FillGap(6, 40, 0)
        .Median(9, 0)
        .Average(5, 1)
        .Gaussian(11, 1.5, 1)
        .Percentile(2.0, 97.0, ProfileFilter::Rank);
    digests["ProfileFilter"] = Digest().Add(line.data(), line.size() * sizeof(short)).Value();

    const Zo::Object<void*> smooth = TestSupport::MakeFilled<std::int16_t>(kRows, kColumns, 0);
    SurfaceFilter(plate.layers[0], smooth, nullptr).Average({15, 6}, 0).Average({3, 41}, 1);
    digests["SurfaceFilter"] = Digest().AddArray(smooth).Value();
    digests["SmoothFullArray2"] = Digest().AddArray(SmoothFullArray2<short>(plate.layers[0], 9, 14, nullptr)).Value();

    const SurfaceFillGapParams gaps = {kScale.x, kScale.y, 0.001, 0.3, 0.4, 60.0, 70.0, 0};
    Zo::Object<void*> filled;
    Zo::Object<void*> filledIntensity;
    SurfaceFillGapXY(gaps, plate.layers[0], plate.layers[1], filled, filledIntensity, nullptr);
    digests["SurfaceFillGapXY"] = Digest().AddArray(filled).AddArray(filledIntensity).Value();
    digests["SurfaceDecimate"] = Digest().AddSurface(SurfaceDecimate(plate, {0, 0}, {0.37, 0.41}, nullptr)).Value();
}

void DigestArithmetic(Surface plate, Surface other, Digests& digests)
{
    for (const auto& [op, name] :
         {std::pair(ArithmeticOperator::Add, "Add"), std::pair(ArithmeticOperator::Subtract, "Subtract"),
          std::pair(ArithmeticOperator::Average, "Average")})
    {
        Surface result;
        Arithmetics::Apply(op, ArithmeticLogic::Union, plate, other, result);
        digests[name] = Digest().AddSurface(result).Value();
    }
}

void DigestFits(const Surface& plate, Digests& digests)
{
    const std::vector<qPoint64f> ring = MakeRing(400);
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

    const Zo::Object<void*> mask = TestSupport::MakeFilled<std::uint8_t>(kRows, kColumns, 1);
    qPlane3d64f plane{};
    FitPlane(plate, {0, 0, static_cast<int>(kColumns), static_cast<int>(kRows)}, mask, &plane);
    digests["FitPlane"] = Digest().Add(&plane, sizeof(plane)).Value();
}

void DigestInpainting(const Surface& plate, Digests& digests)
{
    cv::Mat heights(kRows, kColumns, CV_16SC1, qArray2_At(plate.layers[0], 0, 0));
    cv::Mat holes = heights == TestSupport::kMissing;
    for (const auto& [method, name] :
         {std::pair(CV_INPAINT_NS, "Inpaint NS"), std::pair(CV_INPAINT_TELEA, "Inpaint Telea")})
    {
        cv::Mat repaired;
        Inpaint(heights, holes, repaired, 4.0, method);
        digests[name] = Digest().Add(repaired.data, repaired.total() * repaired.elemSize()).Value();
    }
}

Digests RunAll()
{
    const Surface plate = MakePlate({kOffset.x, kOffset.y, 0.0});
    const Surface other = MakePlate({kOffset.x + 1.32, kOffset.y - 0.91, 0.4});
    Digests digests;
    DigestRegions(plate, digests);
    DigestExtraction(plate, digests);
    DigestFilters(plate, digests);
    DigestArithmetic(plate, other, digests);
    DigestFits(plate, digests);
    DigestInpainting(plate, digests);
    return digests;
}

/** A worker finds the position of its first row from the index and adds the scale for each row, so that a cell exactly on the
 *  outline of a region may fall to either side with another number of workers. The shapes here have no such cell. */
TEST(Determinism, ResultsAreTheSameWithEveryNumberOfWorkers)
{
    const Digests expected = []
    {
        const TestSupport::WorkerCount one(1);
        return RunAll();
    }();
    for (const std::size_t workers : {2U, 3U, 8U, 17U})
    {
        const TestSupport::WorkerCount many(workers);
        for (const auto& [name, digest] : RunAll())
        {
            EXPECT_EQ(digest, expected.at(name)) << name << " with " << workers << " workers";
        }
    }
}

/** What the program gave when it was first run. A difference on another machine or compiler is one that a host would see
 *  as well; a change that is meant brings new numbers here. */
TEST(Determinism, ResultsAreTheSameOnEveryMachineAndFromEveryCompiler)
{
    const Digests expected = {
#include "Whole/Digests.inc"
    };
    const Digests digests = RunAll();
    EXPECT_EQ(digests.size(), expected.size());
    for (const auto& [name, digest] : digests)
    {
        const auto found = expected.find(name);
        EXPECT_TRUE(found != expected.end() && found->second == digest) << "{\"" << name << "\", " << digest << "U},";
    }
}

} // namespace
