#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/Rejection.h"
#include "FittingSupport.h"
#include "support/FailingAllocator.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <cmath>
#include <limits>
#include <random>
#include <utility>

namespace
{

using namespace FittingSupport;

constexpr double kNull = Zvl::GetNull<double>();
constexpr const char* kFunction = "Zvl::FitSphere";

using Points = std::vector<qPoint3d64f>;

struct Fit
{
    qPoint3d64f center{7.0, 7.0, 7.0};
    double radius = 7.0;
    Points kept{{7.0, 7.0, 7.0}};
    Points outliers{{7.0, 7.0, 7.0}};
};

Fit FitPoints(const Points& points, double outlierPercent, std::size_t maxPasses)
{
    Fit fit;
    Zvl::FitSphere(points.data(), points.size(), &fit.center, &fit.radius, nullptr, outlierPercent, &fit.kept,
                   &fit.outliers, maxPasses);
    return fit;
}

bool Same(const qPoint3d64f& a, const qPoint3d64f& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

void ExpectSamePoints(const Points& points, const Points& expected)
{
    EXPECT_TRUE(std::equal(points.begin(), points.end(), expected.begin(), expected.end(), Same));
}

void ExpectNoSphere(const Fit& fit)
{
    EXPECT_TRUE(Same(fit.center, {kNull, kNull, kNull}));
    EXPECT_EQ(fit.radius, kNull);
}

void ExpectSphere(const Fit& fit, const qPoint3d64f& center, double radius, double tolerance)
{
    EXPECT_NEAR(fit.center.x, center.x, tolerance);
    EXPECT_NEAR(fit.center.y, center.y, tolerance);
    EXPECT_NEAR(fit.center.z, center.z, tolerance);
    EXPECT_NEAR(fit.radius, radius, tolerance);
}

void ExpectVectorsUntouched(const Fit& fit)
{
    ExpectSamePoints(fit.kept, {{7.0, 7.0, 7.0}});
    ExpectSamePoints(fit.outliers, {{7.0, 7.0, 7.0}});
}

Points NoisySphere(std::size_t count, const qPoint3d64f& center, double radius, double noise, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::normal_distribution<double> normal;
    Points points(count);
    for (qPoint3d64f& point : points)
    {
        const qPoint3d64f d{normal(random), normal(random), normal(random)};
        const double r = (radius + noise * normal(random)) / std::sqrt(d.x * d.x + d.y * d.y + d.z * d.z);
        point = {center.x + r * d.x, center.y + r * d.y, center.z + r * d.z};
    }
    return points;
}

/** The definition with plain arrays and full sorts. */
Fit Textbook(const Points& points, double outlierPercent, std::size_t maxPasses)
{
    std::vector<double> matrix(16);
    std::vector<double> vector(4);
    const auto accumulate = [&](const qPoint3d64f& point, double sign)
    {
        const double terms[4] = {point.x, point.y, point.z, 1.0};
        const double square = point.x * point.x + point.y * point.y + point.z * point.z;
        for (std::size_t i = 0; i < 4; ++i)
        {
            for (std::size_t j = 0; j < 4; ++j)
            {
                matrix[4 * i + j] += sign * (terms[i] * terms[j]);
            }
            vector[i] += sign * (terms[i] * square);
        }
    };
    for (const qPoint3d64f& point : points)
    {
        accumulate(point, 1.0);
    }
    std::size_t toReject = Zvl::CountToReject(points.size(), outlierPercent, 4);
    std::size_t batch = maxPasses < toReject ? toReject / maxPasses + 1 : 1;
    std::vector<bool> kept(points.size(), true);
    Fit fit{{}, 0.0, {}, {}};
    for (;;)
    {
        const auto pMat = TestSupport::MakeArray(4, 4, matrix);
        const auto pVec = TestSupport::MakeArray(4, 1, vector);
        const auto inverse = TestSupport::MakeArray(4, 4, std::vector<double>(16));
        const auto solution = TestSupport::MakeArray(4, 1, std::vector<double>(4));
        double determinant = 0.0;
        Zo::Test(qMatrix_Invert(pMat, inverse, &determinant));
        Zo::Test(qMatrix_Mul64f(inverse, pVec, solution));
        const auto* x = static_cast<const double*>(qArray2_At(solution, 0, 0));
        fit.center = {x[0] / 2.0, x[1] / 2.0, x[2] / 2.0};
        fit.radius =
            std::sqrt(x[3] + (fit.center.x * fit.center.x + fit.center.y * fit.center.y + fit.center.z * fit.center.z));
        if (toReject == 0)
        {
            break;
        }
        batch = std::min(batch, toReject);
        std::vector<std::pair<double, std::size_t>> residuals;
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            if (kept[i])
            {
                const double dx = points[i].x - fit.center.x;
                const double dy = points[i].y - fit.center.y;
                const double dz = points[i].z - fit.center.z;
                residuals.emplace_back(std::fabs(std::sqrt(dx * dx + dy * dy + dz * dz) - fit.radius), i);
            }
        }
        std::stable_sort(residuals.begin(), residuals.end(),
                         [](const auto& a, const auto& b) { return a.first > b.first; });
        std::vector<std::size_t> rejected;
        for (std::size_t i = 0; i < batch; ++i)
        {
            rejected.push_back(residuals[i].second);
        }
        std::sort(rejected.rbegin(), rejected.rend());
        for (const std::size_t index : rejected)
        {
            kept[index] = false;
            fit.outliers.push_back(points[index]);
            accumulate(points[index], -1.0);
        }
        toReject -= batch;
    }
    for (std::size_t i = 0; i < points.size(); ++i)
    {
        if (kept[i])
        {
            fit.kept.push_back(points[i]);
        }
    }
    return fit;
}

/** Six points on the sphere of radius 3 about (1, 2, 3). */
const Points kOctahedron{{4.0, 2.0, 3.0},  {-2.0, 2.0, 3.0}, {1.0, 5.0, 3.0},
                         {1.0, -1.0, 3.0}, {1.0, 2.0, 6.0},  {1.0, 2.0, 0.0}};

TEST(FitSphere, PointsOnASphereGiveIt)
{
    const Fit fit = FitPoints(kOctahedron, 0.0, 1);
    ExpectSphere(fit, {1.0, 2.0, 3.0}, 3.0, 1e-12);
    ExpectSamePoints(fit.kept, kOctahedron);
    EXPECT_TRUE(fit.outliers.empty());
}

TEST(FitSphere, FourPointsFitAtAnyPercentage)
{
    const Points points{{4.0, 2.0, 3.0}, {-2.0, 2.0, 3.0}, {1.0, 5.0, 3.0}, {1.0, 2.0, 6.0}};
    for (const double percent : {0.0, 100.0, 1e30, std::nan("")})
    {
        const Fit fit = FitPoints(points, percent, 3);
        ExpectSphere(fit, {1.0, 2.0, 3.0}, 3.0, 1e-12);
        ExpectSamePoints(fit.kept, points);
    }
}

TEST(FitSphere, OnePointPerPassGoesFarthestFirst)
{
    Points points = NoisySphere(50, {0.0, 0.0, 0.0}, 2.0, 0.0, 1);
    points.insert(points.begin() + 10, {0.0, 2.5, 0.0});
    points.insert(points.begin() + 30, {3.0, 0.0, 0.0});
    const Fit fit = FitPoints(points, 4.0, 2);
    ExpectSamePoints(fit.outliers, {{3.0, 0.0, 0.0}, {0.0, 2.5, 0.0}});
    EXPECT_EQ(fit.kept.size(), 50U);
    ExpectSphere(fit, {0.0, 0.0, 0.0}, 2.0, 1e-12);
}

TEST(FitSphere, BatchesAreOrderedByDescendingIndexAndEndWithTheRest)
{
    // 7 of 70 points in 3 passes: batches of 7 / 3 + 1 = 3, then 3, then 1.
    const Points points = NoisySphere(70, {0.5, -1.0, 2.0}, 3.0, 0.2, 5);
    const Fit fit = FitPoints(points, 10.0, 3);
    ASSERT_EQ(fit.outliers.size(), 7U);
    EXPECT_EQ(fit.kept.size(), 63U);
    const auto indexOf = [&points, &fit](std::size_t outlier)
    {
        return std::find_if(points.begin(), points.end(),
                            [&](const qPoint3d64f& point) { return Same(point, fit.outliers[outlier]); }) -
               points.begin();
    };
    for (const std::size_t first : {0U, 3U})
    {
        EXPECT_GT(indexOf(first), indexOf(first + 1));
        EXPECT_GT(indexOf(first + 1), indexOf(first + 2));
    }
    ExpectSamePoints(fit.outliers, Textbook(points, 10.0, 3).outliers);
}

TEST(FitSphere, RandomPointsGiveThePassesOfTheTextbook)
{
    for (std::uint64_t seed = 1; seed <= 10; ++seed)
    {
        const Points points = NoisySphere(20 + 13 * seed, {1.0, -2.0, 0.5}, 2.0, 0.15, seed);
        for (const std::size_t maxPasses : {1U, 2U, 5U, 1000U})
        {
            const double percent = 9.0 * static_cast<double>(seed);
            const Fit fit = FitPoints(points, percent, maxPasses);
            const Fit expected = Textbook(points, percent, maxPasses);
            ExpectSamePoints(fit.outliers, expected.outliers);
            ExpectSamePoints(fit.kept, expected.kept);
            ExpectSphere(fit, expected.center, expected.radius, 1e-12);
        }
    }
}

TEST(FitSphere, NoPassesCountAsOne)
{
    const Points points = NoisySphere(60, {0.0, 0.0, 0.0}, 1.0, 0.1, 8);
    const Fit fit = FitPoints(points, 10.0, 0);
    ExpectSamePoints(fit.outliers, FitPoints(points, 10.0, 1).outliers);
    EXPECT_EQ(fit.outliers.size(), 6U);
}

TEST(FitSphere, LowestIndexWinsAmongEqualResiduals)
{
    for (const std::size_t maxPasses : {1U, 5U})
    {
        Points points = NoisySphere(40, {0.0, 0.0, 0.0}, 1.0, 0.0, 2);
        points[4] = points[9] = points[20] = {1.1, 0.7, 0.0};
        const Fit fit = FitPoints(points, 5.0, maxPasses);
        points.erase(points.begin() + 9);
        points.erase(points.begin() + 4);
        ExpectSamePoints(fit.kept, points);
    }
}

TEST(FitSphere, TooFewPointsAreKeptAndNothingIsThrown)
{
    const Points points{{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.0}};
    const Fit fit = FitPoints(points, 50.0, 1);
    ExpectNoSphere(fit);
    ExpectSamePoints(fit.kept, points);
    EXPECT_TRUE(fit.outliers.empty());
}

TEST(FitSphere, NullPointsAreNoPoints)
{
    Fit fit;
    Zvl::FitSphere(nullptr, 1000, &fit.center, &fit.radius, nullptr, 50.0, &fit.kept, &fit.outliers, 1);
    ExpectNoSphere(fit);
    EXPECT_TRUE(fit.kept.empty());
    EXPECT_TRUE(fit.outliers.empty());
}

TEST(FitSphere, EveryOutputMayBeNull)
{
    const Points points = NoisySphere(30, {0.0, 0.0, 0.0}, 1.0, 0.1, 8);
    EXPECT_NO_THROW(Zvl::FitSphere(points.data(), points.size(), nullptr, nullptr, nullptr, 20.0, nullptr, nullptr, 2));
    EXPECT_NO_THROW(Zvl::FitSphere(points.data(), 2, nullptr, nullptr, nullptr, 20.0, nullptr, nullptr, 2));
    qPoint3d64f center{};
    Zvl::FitSphere(points.data(), points.size(), &center, nullptr, nullptr, 20.0, nullptr, nullptr, 2);
    EXPECT_TRUE(Same(center, FitPoints(points, 20.0, 2).center));
}

TEST(FitSphere, PointsMayLieInAResultVector)
{
    const Points points = NoisySphere(30, {0.0, 0.0, 0.0}, 1.0, 0.1, 8);
    const Fit expected = FitPoints(points, 20.0, 2);
    Points kept = points;
    Zvl::FitSphere(kept.data(), kept.size(), nullptr, nullptr, nullptr, 20.0, &kept, nullptr, 2);
    ExpectSamePoints(kept, expected.kept);
    Points outliers = points;
    Zvl::FitSphere(outliers.data(), outliers.size(), nullptr, nullptr, nullptr, 20.0, nullptr, &outliers, 2);
    ExpectSamePoints(outliers, expected.outliers);
    Points few = {points[0], points[1]};
    Zvl::FitSphere(few.data(), few.size(), nullptr, nullptr, nullptr, 20.0, &few, nullptr, 2);
    ExpectSamePoints(few, {points[0], points[1]});
}

/** Runs the fit on points that have no sphere; @return the status that was thrown. */
int StatusOf(const Points& points, double outlierPercent)
{
    Fit fit;
    try
    {
        Zvl::FitSphere(points.data(), points.size(), &fit.center, &fit.radius, nullptr, outlierPercent, &fit.kept,
                       &fit.outliers, 1);
    }
    catch (const Zo::Exception& exception)
    {
        EXPECT_STREQ(exception.GetFunction(), kFunction);
        ExpectNoSphere(fit);
        ExpectVectorsUntouched(fit);
        return exception.GetStatus();
    }
    return STATUS_OK;
}

TEST(FitSphere, PointsOnOnePlaneAreNotSupported)
{
    EXPECT_EQ(StatusOf({{0.0, 0.0, 1.0}, {1.0, 0.0, 1.0}, {0.0, 1.0, 1.0}, {1.0, 1.0, 1.0}, {3.0, 2.0, 1.0}}, 0.0),
              STATUS_NOT_SUPPORTED);
    EXPECT_EQ(StatusOf(Points(10, {1.0, 2.0, 3.0}), 30.0), STATUS_NOT_SUPPORTED);
}

TEST(FitSphere, DeterminantIsTestedAgainstAnAbsoluteLimit)
{
    // For the octahedron of radius r about the origin the determinant is 6 * (2 r²)³ = 48 r⁶.
    const auto octahedron = [](double r) {
        return Points{{r, 0, 0}, {-r, 0, 0}, {0, r, 0}, {0, -r, 0}, {0, 0, r}, {0, 0, -r}};
    };
    EXPECT_EQ(StatusOf(octahedron(0.036), 0.0), STATUS_NOT_SUPPORTED); // 1.04e-7
    EXPECT_EQ(StatusOf(octahedron(0.038), 0.0), STATUS_OK);            // 1.45e-7
}

TEST(FitSphere, NegativeSquaredRadiusThrowsStatusZero)
{
    // A small sphere far from the origin: the squared radius is what is left of numbers 1e13 times as large,
    // and its sign is that of the rounding errors.
    std::size_t negative = 0;
    for (std::uint64_t seed = 1; seed <= 50; ++seed)
    {
        const int status = StatusOf(NoisySphere(100, {1e4, 1e4, 1e4}, 0.01, 0.0, seed), 0.0);
        EXPECT_TRUE(status == STATUS_OK || status == STATUS_NOT_SUPPORTED || status == 0) << status;
        negative += status == 0 ? 1 : 0;
    }
    EXPECT_GT(negative, 0U);
}

TEST(FitSphere, ValuesWithoutAResultThrow)
{
    const double infinity = std::numeric_limits<double>::infinity();
    for (const double value : {std::nan(""), infinity, kNull, 1e200})
    {
        Points points = kOctahedron;
        points[3].y = value;
        EXPECT_NE(StatusOf(points, 0.0), STATUS_OK) << value;
        EXPECT_NE(StatusOf(points, 20.0), STATUS_OK) << value;
    }
}

TEST(FitSphere, ExhaustedMemoryIsThrownAndNothingLeaks)
{
    const Points points = NoisySphere(30, {0.0, 0.0, 0.0}, 1.0, 0.1, 8);
    const auto run = [&points]
    {
        Fit fit;
        try
        {
            Zvl::FitSphere(points.data(), points.size(), &fit.center, &fit.radius, nullptr, 20.0, &fit.kept,
                           &fit.outliers, 2);
        }
        catch (...)
        {
            ExpectNoSphere(fit);
            ExpectVectorsUntouched(fit);
            throw;
        }
    };
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run), 4U);
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction, run, TestSupport::Failing::OnlyNth), 4U);
}

TEST(FitSphere, WorkArraysComeFromTheGivenAllocator)
{
    TestSupport::FailingAllocator allocator;
    Zvl::FitSphere(kOctahedron.data(), kOctahedron.size(), nullptr, nullptr, allocator.Get(), 0.0, nullptr, nullptr, 1);
    EXPECT_GE(allocator.Allocations(), 4U);
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

// ---------------------------------------------------------------------------------------------------------
// Surface form

/** A dome in a 20 x 24 surface: cells on the sphere of radius 15 mm about (10, 12, 1) mm, rounded to counts.
 */
Zvl::Surface Dome()
{
    constexpr qPoint3d64f scale{1.0, 1.25, 0.001};
    constexpr qPoint3d64f offset{0.5, -2.0, 3.0};
    std::vector<std::int16_t> heights;
    for (int row = 0; row < 20; ++row)
    {
        for (int column = 0; column < 24; ++column)
        {
            const double x = column * scale.x + offset.x - 10.0;
            const double y = row * scale.y + offset.y - 12.0;
            const double square = 15.0 * 15.0 - x * x - y * y;
            heights.push_back(
                square < 0.0 ? std::int16_t{-32768}
                             : static_cast<std::int16_t>(std::lround((1.0 + std::sqrt(square) - offset.z) / scale.z)));
        }
    }
    return MakeSurface(20, 24, heights, scale, offset);
}

/** Mask of the present cells of @p rect. */
Zo::Object<void*> PresentCells(const Zvl::Surface& surface, const Zvl::Rect2d<int>& rect)
{
    std::vector<std::uint8_t> cells;
    for (int row = 0; row < rect.height; ++row)
    {
        for (int column = 0; column < rect.width; ++column)
        {
            const auto* height = static_cast<const std::int16_t*>(qArray2_At(
                surface.layers[0], static_cast<std::size_t>(rect.y + row), static_cast<std::size_t>(rect.x + column)));
            cells.push_back(*height == -32768 ? std::uint8_t{0} : std::uint8_t{200});
        }
    }
    return MakeMask(static_cast<std::size_t>(rect.height), static_cast<std::size_t>(rect.width), cells);
}

TEST(FitSphereToSurface, DomeGivesItsSphereAndItsWorldPoints)
{
    const Zvl::Surface surface = Dome();
    const Zvl::Rect2d<int> rect{2, 3, 18, 16};
    const Zo::Object<void*> mask = PresentCells(surface, rect);
    Fit fit;
    Points points;
    Zvl::FitSphere(surface, rect, mask.Get(), &fit.center, &fit.radius, points, nullptr, 0.0, &fit.kept, &fit.outliers,
                   1);
    ExpectSphere(fit, {10.0, 12.0, 1.0}, 15.0, 2e-3);
    ExpectSamePoints(fit.kept, points);
    EXPECT_TRUE(fit.outliers.empty());

    const Fit fromPoints = FitPoints(points, 0.0, 1);
    EXPECT_TRUE(Same(fit.center, fromPoints.center));
    EXPECT_EQ(fit.radius, fromPoints.radius);
}

TEST(FitSphereToSurface, PointsAreTheMaskedCellsInRowOrderMissingOnesIncluded)
{
    const Zvl::Surface surface =
        MakeSurface(3, 3, {0, 1, 2, 3, -32768, 5, 9, 7, 8}, {2.0, 4.0, 0.5}, {10.0, 20.0, 30.0});
    Points points;
    Fit fit;
    Zvl::FitSphere(surface, {1, 0, 2, 3}, MakeMask(3, 2, {0, 9, 1, 255, 1, 0}).Get(), &fit.center, &fit.radius, points,
                   nullptr, 0.0, nullptr, nullptr, 1);
    ExpectSamePoints(points, {{14.0, 20.0, 31.0}, {12.0, 24.0, -16354.0}, {14.0, 24.0, 32.5}, {12.0, 28.0, 33.5}});
}

TEST(FitSphereToSurface, PointsAreAppended)
{
    const Zvl::Surface surface = MakeSurface(2, 3, {0, 4, 0, 3, 0, 9});
    Points points{{-1.0, -1.0, -1.0}};
    Fit fit;
    Zvl::FitSphere(surface, {0, 0, 3, 2}, FullMask(2, 3).Get(), &fit.center, &fit.radius, points, nullptr, 0.0, nullptr,
                   nullptr, 1);
    EXPECT_EQ(points.size(), 7U);
    EXPECT_TRUE(Same(points[0], {-1.0, -1.0, -1.0}));
    EXPECT_TRUE(Same(points[6], {2.0, 1.0, 9.0}));
}

TEST(FitSphereToSurface, RejectionEqualsThatOfThePoints)
{
    const Zvl::Surface surface = Dome();
    auto* cell = static_cast<std::int16_t*>(qArray2_At(surface.layers[0], 8, 9));
    *cell = static_cast<std::int16_t>(*cell - 3000);
    const Zvl::Rect2d<int> rect{0, 0, 24, 20};
    const Zo::Object<void*> mask = PresentCells(surface, rect);
    Fit fit;
    Points points;
    Zvl::FitSphere(surface, rect, mask.Get(), &fit.center, &fit.radius, points, nullptr, 5.0, &fit.kept, &fit.outliers,
                   4);
    const Fit expected = FitPoints(points, 5.0, 4);
    ExpectSamePoints(fit.kept, expected.kept);
    ExpectSamePoints(fit.outliers, expected.outliers);
    EXPECT_TRUE(Same(fit.center, expected.center));
    EXPECT_EQ(fit.radius, expected.radius);

    Points both;
    Zvl::FitSphere(surface, rect, mask.Get(), nullptr, nullptr, both, nullptr, 5.0, &both, nullptr, 4);
    ExpectSamePoints(both, expected.kept);
}

TEST(FitSphereToSurface, TooFewCellsGiveKeptPointsMappedTwice)
{
    const Zvl::Surface surface = MakeSurface(2, 2, {5, 6, 7, 8}, {2.0, 4.0, 0.5}, {10.0, 20.0, 30.0});
    Fit fit;
    Points points;
    Zvl::FitSphere(surface, {0, 0, 2, 2}, MakeMask(2, 2, {0, 1, 1, 0}).Get(), &fit.center, &fit.radius, points, nullptr,
                   50.0, &fit.kept, &fit.outliers, 1);
    ExpectNoSphere(fit);
    ExpectSamePoints(points, {{12.0, 20.0, 33.0}, {10.0, 24.0, 33.5}});
    ExpectSamePoints(fit.kept, {{34.0, 100.0, 46.5}, {30.0, 116.0, 46.75}});
    EXPECT_TRUE(fit.outliers.empty());
}

TEST(FitSphereToSurface, EmptyRectangleWithItsMaskHasTooFewCells)
{
    Fit fit;
    Points points;
    Zvl::FitSphere(Dome(), {0, 0, 0, 0}, FullMask(0, 0).Get(), &fit.center, &fit.radius, points, nullptr, 50.0,
                   &fit.kept, &fit.outliers, 1);
    ExpectNoSphere(fit);
    EXPECT_TRUE(points.empty());
    EXPECT_TRUE(fit.kept.empty());
    EXPECT_TRUE(fit.outliers.empty());
}

TEST(FitSphereToSurface, UnfitInputWritesNothingButNulls)
{
    for (const UnfitInput& input : UnfitInputs())
    {
        SCOPED_TRACE(input.what);
        Fit fit;
        Points points{{7.0, 7.0, 7.0}};
        Zvl::FitSphere(input.surface, input.rect, input.mask.Get(), &fit.center, &fit.radius, points, nullptr, 50.0,
                       &fit.kept, &fit.outliers, 1);
        ExpectNoSphere(fit);
        ExpectVectorsUntouched(fit);
        ExpectSamePoints(points, {{7.0, 7.0, 7.0}});
    }
}

TEST(FitSphereToSurface, FlatCellsAreNotSupportedAndLeaveTheirPoints)
{
    const Zvl::Surface surface = MakeSurface(4, 4, std::vector<std::int16_t>(16, 3));
    Fit fit;
    Points points;
    TestSupport::ExpectThrow(STATUS_NOT_SUPPORTED, kFunction,
                             [&]
                             {
                                 Zvl::FitSphere(surface, {0, 0, 4, 4}, FullMask(4, 4).Get(), &fit.center, &fit.radius,
                                                points, nullptr, 0.0, &fit.kept, &fit.outliers, 1);
                             });
    ExpectNoSphere(fit);
    ExpectVectorsUntouched(fit);
    EXPECT_EQ(points.size(), 16U);
}

TEST(FitSphereToSurface, ExhaustedMemoryIsThrownAndNothingLeaks)
{
    const Zvl::Surface surface = Dome();
    const Zvl::Rect2d<int> rect{2, 3, 18, 16};
    const Zo::Object<void*> mask = PresentCells(surface, rect);
    EXPECT_GE(TestSupport::ExpectEachFailureThrown(kFunction,
                                                   [&]
                                                   {
                                                       Points points;
                                                       Zvl::FitSphere(surface, rect, mask.Get(), nullptr, nullptr,
                                                                      points, nullptr, 5.0, nullptr, nullptr, 4);
                                                   }),
              4U);
}

} // namespace
