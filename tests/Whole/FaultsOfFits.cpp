#include "Whole/FaultTable.h"

#include <algorithm>
#include <cmath>

namespace WholeTest
{

using namespace Zvl;

namespace
{

constexpr double kNull = GetNull<double>();
constexpr std::size_t kCount = 16;

/** A ring with a lobe, whose points agree in no coordinate. */
std::vector<qPoint64f> MakeRing()
{
    std::vector<qPoint64f> points;
    for (std::size_t i = 0; i < kCount; ++i)
    {
        const double angle = 0.3 + 0.39 * static_cast<double>(i);
        const double radius = 5.0 + 0.05 * std::sin(3.0 * angle) + 0.01 * static_cast<double>(i % 3);
        points.push_back({1.0 + radius * std::cos(angle), 2.0 + radius * std::sin(angle)});
    }
    return points;
}

const std::vector<qPoint64f> kRing = MakeRing();

std::vector<qPoint3d64f> MakeBall()
{
    std::vector<qPoint3d64f> points;
    for (std::size_t i = 0; i < 20; ++i)
    {
        const double turn = 0.7 * static_cast<double>(i);
        const double height = -4.0 + 0.4 * static_cast<double>(i);
        const double radius = std::sqrt(25.0 - height * height) + 0.01 * static_cast<double>(i % 4);
        points.push_back({radius * std::cos(turn), radius * std::sin(turn), height});
    }
    return points;
}

const std::vector<qPoint3d64f> kBall = MakeBall();

void FitPlainLine(Trial& trial)
{
    double slope = 0.0;
    double intercept = 0.0;
    trial.Call([&] { FitLine(kRing.data(), nullptr, kCount, &slope, &intercept); });
    EXPECT_NE(slope, kNull);
}

void FitLineWithoutOutliers(Trial& trial)
{
    double slope = 0.0;
    double intercept = 0.0;
    void* flags = nullptr;
    const bool done =
        trial.Call([&] { FitLineIterative(kRing.data(), kCount, 25.0, &slope, &intercept, &flags, trial.allocator); });
    const Zo::Object<void*> owner(flags);
    EXPECT_EQ(slope != kNull, done);
    EXPECT_EQ(intercept != kNull, done);
    EXPECT_EQ(flags != nullptr, done);
}

/** The samples are drawn at random, so that it varies whether a later one gives a larger set. */
void FitLineThroughSamples(Trial& trial)
{
    double slope = 77.0;
    double intercept = 77.0;
    const bool done = trial.Call([&] { FitLineRansac(kRing.data(), kCount, 0.3, 3, 100.0, &slope, &intercept); });
    EXPECT_TRUE(!done || slope != 77.0);
}

template <typename Point>
void FitParabola(Trial& trial)
{
    std::vector<Point> points;
    points.reserve(8);
    for (int i = 0; i < 8; ++i)
    {
        points.push_back(Point{static_cast<decltype(Point::x)>(i), static_cast<decltype(Point::y)>(i * i)});
    }
    double coefficients[3] = {77.0, 77.0, 77.0};
    int result = -2;
    EXPECT_TRUE(trial.Call([&] { result = FitPolynomial(points.data(), points.size(), 2, coefficients); }));
    EXPECT_EQ(result, trial.Met() ? -1 : 0);
    EXPECT_EQ(coefficients[0] == 77.0, trial.Met());
}

/** Outputs are replaced as a whole, and only when the call returns. */
void FitOneCircle(Trial& trial, double percent, CircleType type)
{
    qPoint64f center = {77.0, 77.0};
    double lengths[4] = {77.0, 77.0, 77.0, 77.0};
    std::vector<qPoint64f> points[4];
    std::fill(std::begin(points), std::end(points), std::vector<qPoint64f>(1, center));
    const bool done = trial.Call(
        [&]
        {
            FitCircle(kRing.data(), kCount, percent, type, &center, &lengths[0], &lengths[1], &lengths[2], &lengths[3],
                      &points[0], &points[1], &points[2], &points[3]);
        });
    EXPECT_EQ(center.x == 77.0, !done);
    EXPECT_EQ(std::count(std::begin(lengths), std::end(lengths), 77.0), done ? 0 : 4);
    for (const std::vector<qPoint64f>& list : points)
    {
        EXPECT_EQ(list.size() == 1 && list[0].x == 77.0, !done);
    }
}

void FitTrimmedCircle(Trial& trial, double percent)
{
    qPoint64f center = {77.0, 77.0};
    double radius = 77.0;
    int flags[kCount];
    std::fill(std::begin(flags), std::end(flags), 7);
    unsigned seed = 5;
    const bool done =
        trial.Call([&] { FitCircleByRLTS(kRing.data(), kCount, percent, center, radius, flags, &seed, 1); });
    EXPECT_NE(center.x, 77.0);
    EXPECT_NE(radius, 77.0);
    EXPECT_TRUE(!done || (radius != kNull && std::count(std::begin(flags), std::end(flags), 7) == 0));
}

/** What was rejected until a failure is missing from the list, and the last circle that was found is the result. */
void FitOldCircle(Trial& trial)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, kCount, nullptr));
    for (const qPoint64f& point : kRing)
    {
        const qPoint3d64f item = {point.x, point.y, 1.0};
        Zo::Test(qArrayList_Add(list, &item));
    }
    qPoint3d64f center = {77.0, 77.0, 77.0};
    double radius = 77.0;
    const bool done = trial.Call([&] { FitCircle_Deprecated(list, 0, 15.0, &center, &radius); });
    const std::size_t left = qArrayList_Count(list);
    EXPECT_TRUE(done ? left == kCount - 2 : left >= kCount - 2 && left <= kCount) << left;
    EXPECT_TRUE(!done || (radius != kNull && radius != 77.0));
    EXPECT_EQ(center.x == 77.0, radius == 77.0);
    EXPECT_EQ(center.x == kNull, radius == kNull);
}

void ExpectSphere(bool done, const qPoint3d64f& center, double radius)
{
    EXPECT_EQ(radius != kNull, done);
    EXPECT_EQ(center.z == kNull, radius == kNull);
}

void FitSphereToPoints(Trial& trial)
{
    qPoint3d64f center{};
    double radius = 0.0;
    std::vector<qPoint3d64f> kept(1);
    std::vector<qPoint3d64f> outliers(1);
    const bool done = trial.Call(
        [&] { FitSphere(kBall.data(), kBall.size(), &center, &radius, trial.allocator, 20.0, &kept, &outliers, 2); });
    ExpectSphere(done, center, radius);
    EXPECT_EQ(kept.size(), done ? 16U : 1U);
    EXPECT_EQ(outliers.size(), done ? 4U : 1U);
}

void FitSphereToSurface(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> mask = MakeFaultMask(surface);
    KeepsUnchanged(trial, surface);
    trial.KeepsUnchanged(mask);
    qPoint3d64f center{};
    double radius = 0.0;
    std::vector<qPoint3d64f> points;
    std::vector<qPoint3d64f> kept(1);
    std::vector<qPoint3d64f> outliers(1);
    const bool done = trial.Call(
        [&]
        { FitSphere(surface, kFaultBox, mask, &center, &radius, points, trial.allocator, 5.0, &kept, &outliers, 3); });
    ExpectSphere(done, center, radius);
    EXPECT_TRUE(done ? kept.size() + outliers.size() == points.size() : kept.size() == 1 && outliers.size() == 1);
}

void FitPlaneToSurface(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> mask = MakeFaultMask(surface);
    qPlane3d64f plane{};
    trial.Call([&] { FitPlane(surface, kFaultBox, mask, &plane); });
    EXPECT_NE(plane.normal.z, 0.0);
}

} // namespace

std::vector<Entry> FaultsOfFits()
{
    constexpr unsigned kWork = kDefaultAllocator | kOperations | kNew;
    constexpr const char* kFitCircle =
        "FitCircle(qPoint64f const*, unsigned long, double, CircleType, qPoint64f*, double*, double*, double*, "
        "double*, "
        "std::vector<qPoint64f>*, std::vector<qPoint64f>*, std::vector<qPoint64f>*, std::vector<qPoint64f>*)";
    constexpr const char* kRlts = "FitCircleByRLTS(qPoint64f const*, unsigned long, double, qPoint64f&, double&, int*, "
                                  "unsigned int*, int)";
    constexpr const char* kLeastSquares = "Zvl::FitCircle_LSC";
    return {
        {{"FitLine(qPoint64f const*, int const*, unsigned long, double*, double*)"}, kNothing, {}, FitPlainLine},
        {{"FitLineIterative(qPoint64f const*, unsigned long, double, double*, double*, void**, void*)"},
         kWork | kGivenAllocator,
         {"Zvl::FitLineIterative"},
         FitLineWithoutOutliers},
        {{"FitLineRansac(qPoint64f const*, unsigned long, double, unsigned long, double, double*, double*)"},
         kDefaultAllocator | kOperations,
         {"Zvl::FitLineRansac"},
         FitLineThroughSamples},
        {{"int FitPolynomial<qPoint32f>(qPoint32f const*, unsigned long, unsigned long, double*)"},
         kNew,
         {},
         FitParabola<qPoint32f>},
        {{"int FitPolynomial<qPoint64f>(qPoint64f const*, unsigned long, unsigned long, double*)"},
         kNew,
         {},
         FitParabola<qPoint64f>},
        {{"CalculatePolynomialValue(double const*, unsigned long, double)"},
         kNothing,
         {},
         [](Trial& trial)
         {
             const double coefficients[2] = {1.0, 2.0};
             trial.Call([&] { CalculatePolynomialValue(coefficients, 1, 3.0); });
         }},
        {{kFitCircle}, kWork, {kLeastSquares}, [](Trial& trial) { FitOneCircle(trial, 15.0, CIRCLE_LSC); }},
        {{kFitCircle},
         kWork,
         {kLeastSquares, "Zvl::FitCircle_MIC", "Zvl::FitCircle_MCC", "Zvl::GenerateVoronoi",
          "Zvl::BuildVoronoiVertices"},
         [](Trial& trial) { FitOneCircle(trial, 15.0, CIRCLE_MZC); }},
        {{kRlts}, kNew, {"Zvl::FitCircleByRLTS"}, [](Trial& trial) { FitTrimmedCircle(trial, 20.0); }},
        {{kRlts}, kWork, {kLeastSquares}, [](Trial& trial) { FitTrimmedCircle(trial, 0.0); }},
        {{"FitCircle_Deprecated(void*, int, double, qPoint3d64f*, double*)"},
         kWork,
         {"Zvl::FitCircle_Deprecated"},
         FitOldCircle},
        {{"FitSphere(qPoint3d64f const*, unsigned long, qPoint3d64f*, double*, void*, double, "
          "std::vector<qPoint3d64f>*, "
          "std::vector<qPoint3d64f>*, unsigned long)"},
         kWork | kGivenAllocator,
         {"Zvl::FitSphere"},
         FitSphereToPoints},
        {{"FitSphere(Surface const&, Rect2d<int> const&, void*, qPoint3d64f*, double*, std::vector<qPoint3d64f>&, "
          "void*, "
          "double, std::vector<qPoint3d64f>*, std::vector<qPoint3d64f>*, unsigned long)"},
         kWork | kGivenAllocator,
         {"Zvl::FitSphere"},
         FitSphereToSurface},
        {{"FitPlane(Surface const&, Rect2d<int> const&, void*, qPlane3d64f*)"}, kNothing, {}, FitPlaneToSurface},
    };
}

} // namespace WholeTest
