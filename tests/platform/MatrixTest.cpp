#include "platform/Fixtures.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace
{

using namespace PlatformTest;

constexpr double kPi = 3.141592653589793;
constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();

/** A matrix of the given rows, one after the other. */
Handle MatrixOf(std::size_t rows, std::size_t columns, const std::vector<double>& entries)
{
    Handle matrix = MakeArray2(xxq64f_type, rows, columns);
    EXPECT_EQ(entries.size(), rows * columns);
    std::copy(entries.begin(), entries.end(), static_cast<double*>(qArray2_At(matrix, 0, 0)));
    return matrix;
}

std::vector<double> EntriesOf(void* matrix)
{
    const auto* first = static_cast<const double*>(qArray2_At(matrix, 0, 0));
    return {first, first + qArray2_Length(matrix, 0) * qArray2_Length(matrix, 1)};
}

using Entries = std::vector<double>;

TEST(Transform, IdentityHasOnesInTheRotation)
{
    qL3dTransform3d transform{};
    EXPECT_EQ(qL3dTransform3d_Identity(&transform), STATUS_OK);
    const Entries expected = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0};
    EXPECT_TRUE(std::equal(expected.begin(), expected.end(), transform.entries));
    EXPECT_EQ(qL3dTransform3d_Identity(nullptr), STATUS_BAD_PARAMETER);
}

TEST(Invert, ByHand)
{
    const Handle matrix = MatrixOf(2, 2, {1, 2, 3, 4});
    const Handle inverse = MatrixOf(2, 2, {9, 9, 9, 9});
    double determinant = 0.0;
    EXPECT_EQ(qMatrix_Invert(matrix, inverse, &determinant), STATUS_OK);
    EXPECT_NEAR(determinant, -2.0, 1e-15);
    const Entries expected = {-2.0, 1.0, 1.5, -0.5};
    for (std::size_t index = 0; index < 4; ++index)
    {
        EXPECT_NEAR(EntriesOf(inverse)[index], expected[index], 1e-15);
    }
    EXPECT_EQ(EntriesOf(matrix), (Entries{1, 2, 3, 4}));
}

TEST(Invert, MayWorkInPlaceAndWithoutDeterminant)
{
    const Handle matrix = MatrixOf(2, 2, {0, 4, 2, 0});
    EXPECT_EQ(qMatrix_Invert(matrix, matrix, nullptr), STATUS_OK);
    EXPECT_EQ(EntriesOf(matrix), (Entries{0, 0.5, 0.25, 0}));
}

TEST(Invert, ProductWithTheInverseIsTheIdentity)
{
    std::mt19937 random(1);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    for (std::size_t size = 1; size <= 12; ++size)
    {
        Entries entries(size * size);
        for (double& value : entries)
        {
            value = entry(random) * std::ldexp(1.0, static_cast<int>(random() % 10));
        }
        const Handle matrix = MatrixOf(size, size, entries);
        const Handle inverse = MakeArray2(xxq64f_type, size, size);
        const Handle product = MakeArray2(xxq64f_type, size, size);
        double determinant = 0.0;
        EXPECT_EQ(qMatrix_Invert(matrix, inverse, &determinant), STATUS_OK);
        EXPECT_NE(determinant, 0.0);
        EXPECT_EQ(qMatrix_Mul64f(matrix, inverse, product), STATUS_OK);
        for (std::size_t index = 0; index < size * size; ++index)
        {
            EXPECT_NEAR(EntriesOf(product)[index], index % (size + 1) == 0 ? 1.0 : 0.0, 1e-9);
        }
    }
}

TEST(Invert, DeterminantIsScaledBack)
{
    // Powers of two, so that the expected value is exact.
    const Handle matrix = MatrixOf(3, 3, {0, 0, 1048576.0, 0.25, 0, 0, 0, 8.0, 0});
    const Handle inverse = MakeArray2(xxq64f_type, 3, 3);
    double determinant = 0.0;
    EXPECT_EQ(qMatrix_Invert(matrix, inverse, &determinant), STATUS_OK);
    EXPECT_EQ(determinant, 2097152.0);
    EXPECT_EQ(EntriesOf(inverse), (Entries{0, 4.0, 0, 0, 0, 0.125, 1.0 / 1048576.0, 0, 0}));
}

TEST(Invert, UnitsDoNotMakeAMatrixSingular)
{
    const Handle matrix = MatrixOf(2, 2, {1e-12, 2e-12, 3e8, 4e8});
    const Handle inverse = MakeArray2(xxq64f_type, 2, 2);
    double determinant = 0.0;
    EXPECT_EQ(qMatrix_Invert(matrix, inverse, &determinant), STATUS_OK);
    EXPECT_NEAR(determinant, -2e-4, 1e-18);
    EXPECT_NEAR(EntriesOf(inverse)[0], -2e12, 1e-2);
}

TEST(Invert, SingularMatricesGiveZeroExactly)
{
    const std::vector<Entries> singular = {
        {1, 2, 2, 4},    {0.1, 0.2, 0.3, 0.6}, // rounding leaves a pivot of about 1e-17
        {0, 0, 0, 0},    {1, 0, 1, 0},         {1e200, 1e200, 1e200, 1e200},
        {kNaN, 1, 1, 2}, {1, kInfinity, 1, 2}, {5e-324, 0, 0, 1},
    };
    for (const Entries& entries : singular)
    {
        const Handle matrix = MatrixOf(2, 2, entries);
        const Handle inverse = MatrixOf(2, 2, {9, 9, 9, 9});
        double determinant = 7.0;
        EXPECT_EQ(qMatrix_Invert(matrix, inverse, &determinant), STATUS_OK);
        EXPECT_EQ(determinant, 0.0) << entries[0];
        EXPECT_EQ(EntriesOf(inverse), Entries(4, 0.0));
    }
}

TEST(Invert, ShapesAndTypesAreChecked)
{
    const Handle square = MatrixOf(2, 2, {1, 0, 0, 1});
    const Handle wide = MatrixOf(2, 3, Entries(6, 5.0));
    const Handle words = MakeArray2(xxq16s_type, 2, 2);
    const Handle empty = MakeArray2(xxq64f_type, 0, 0);
    double determinant = 7.0;
    EXPECT_EQ(qMatrix_Invert(wide, square, &determinant), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Invert(square, wide, &determinant), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Invert(words, square, &determinant), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Invert(square, words, &determinant), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Invert(empty, empty, &determinant), STATUS_BAD_PARAMETER);
    EXPECT_STOPPED(qMatrix_Invert(nullptr, square, &determinant));
    EXPECT_STOPPED(qMatrix_Invert(square, DeadHandle(), &determinant));
    EXPECT_EQ(determinant, 7.0);
    EXPECT_EQ(EntriesOf(wide), Entries(6, 5.0));
}

TEST(Multiply, ByHand)
{
    const Handle a = MatrixOf(2, 3, {1, 2, 3, 4, 5, 6});
    const Handle b = MatrixOf(3, 1, {1, 0, -1});
    const Handle product = MakeArray2(xxq64f_type, 2, 1);
    EXPECT_EQ(qMatrix_Mul64f(a, b, product), STATUS_OK);
    EXPECT_EQ(EntriesOf(product), (Entries{-2, -2}));
}

TEST(Multiply, ShapesAndTypesAreChecked)
{
    const Handle a = MatrixOf(2, 2, {1, 2, 3, 4});
    const Handle b = MatrixOf(3, 2, Entries(6, 1.0));
    const Handle product = MatrixOf(2, 2, Entries(4, 5.0));
    const Handle words = MakeArray2(xxq16s_type, 2, 2);
    EXPECT_EQ(qMatrix_Mul64f(a, b, product), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Mul64f(a, a, b), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Mul64f(a, product, product), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Mul64f(product, a, product), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_Mul64f(words, a, product), STATUS_BAD_PARAMETER);
    EXPECT_STOPPED(qMatrix_Mul64f(a, nullptr, product));
    EXPECT_EQ(EntriesOf(product), Entries(4, 5.0));
}

TEST(Solve, SquareSystemByHand)
{
    const Handle matrix = MatrixOf(2, 2, {2, 1, 1, 3});
    const Handle rightSide = MatrixOf(2, 1, {5, 10});
    const Handle solution = MakeArray2(xxq64f_type, 2, 1);
    EXPECT_EQ(qMatrix_SolveSystem(matrix, solution, rightSide), STATUS_OK);
    EXPECT_EQ(EntriesOf(solution), (Entries{1, 3}));
    EXPECT_EQ(EntriesOf(matrix), (Entries{2, 1, 1, 3}));
}

TEST(Solve, LeastSquaresByHand)
{
    // The line through (0, 0), (1, 1), (2, 1): slope 1/2, intercept 1/6.
    const Handle matrix = MatrixOf(3, 2, {0, 1, 1, 1, 2, 1});
    const Handle rightSide = MatrixOf(3, 1, {0, 1, 1});
    const Handle solution = MakeArray2(xxq64f_type, 2, 1);
    EXPECT_EQ(qMatrix_SolveSystem(matrix, solution, rightSide), STATUS_OK);
    EXPECT_NEAR(EntriesOf(solution)[0], 0.5, 1e-15);
    EXPECT_NEAR(EntriesOf(solution)[1], 1.0 / 6.0, 1e-15);
}

TEST(Solve, ResidualsAreOrthogonalToTheColumns)
{
    std::mt19937 random(2);
    std::uniform_real_distribution<double> entry(-1.0, 1.0);
    for (const auto& [rows, columns] : {std::pair<std::size_t, std::size_t>{16, 4}, {17, 4}, {9, 5}, {500, 7}})
    {
        Entries a(rows * columns);
        Entries b(rows);
        std::generate(a.begin(), a.end(), [&] { return entry(random); });
        std::generate(b.begin(), b.end(), [&] { return entry(random); });
        const Handle solution = MakeArray2(xxq64f_type, columns, 1);
        EXPECT_EQ(qMatrix_SolveSystem(MatrixOf(rows, columns, a), solution, MatrixOf(rows, 1, b)), STATUS_OK);
        const Entries x = EntriesOf(solution);
        for (std::size_t column = 0; column < columns; ++column)
        {
            double product = 0.0;
            for (std::size_t row = 0; row < rows; ++row)
            {
                double residual = b[row];
                for (std::size_t other = 0; other < columns; ++other)
                {
                    residual -= a[row * columns + other] * x[other];
                }
                product += a[row * columns + column] * residual;
            }
            EXPECT_NEAR(product, 0.0, 1e-12);
        }
    }
}

struct Circle
{
    double x = 0.0;
    double y = 0.0;
    double radius = 0.0;
};

/** The algebraic fit: [2x 2y 1] against x^2 + y^2. */
Circle FitAlgebraically(const std::vector<qPoint64f>& points)
{
    Entries a;
    Entries b;
    for (const qPoint64f& point : points)
    {
        a.insert(a.end(), {2.0 * point.x, 2.0 * point.y, 1.0});
        b.push_back(point.x * point.x + point.y * point.y);
    }
    const Handle solution = MakeArray2(xxq64f_type, 3, 1);
    EXPECT_EQ(qMatrix_SolveSystem(MatrixOf(points.size(), 3, a), solution, MatrixOf(points.size(), 1, b)), STATUS_OK);
    const Entries x = EntriesOf(solution);
    return {x[0], x[1], std::sqrt(x[2] + x[0] * x[0] + x[1] * x[1])};
}

TEST(Solve, FarAwayCirclesAreFound)
{
    constexpr double kDistance = 1e5;
    for (const std::size_t count : {std::size_t{8}, std::size_t{16}, std::size_t{100}, std::size_t{10000}})
    {
        for (int direction = 0; direction < 32; ++direction)
        {
            const double angle = 2.0 * kPi * direction / 32.0;
            const qPoint64f center{kDistance * std::cos(angle), kDistance * std::sin(angle)};
            std::vector<qPoint64f> points;
            for (std::size_t index = 0; index < count; ++index)
            {
                const double turn = 2.0 * kPi * static_cast<double>(index) / static_cast<double>(count);
                points.push_back({center.x + std::cos(turn), center.y + std::sin(turn)});
            }
            const Circle circle = FitAlgebraically(points);
            EXPECT_NEAR(circle.x, center.x, 1e-6) << count << " points, direction " << direction;
            EXPECT_NEAR(circle.y, center.y, 1e-6) << count << " points, direction " << direction;
            // Radius^2 is the difference of numbers near 1e10, whose last place is 2e-6.
            EXPECT_NEAR(circle.radius, 1.0, 4e-6) << count << " points, direction " << direction;
        }
    }
}

TEST(Solve, CirclesNearTheOriginAreExactToRounding)
{
    const Circle circle = FitAlgebraically({{3, 4}, {1, 2}, {-1, 4}, {1, 6}});
    EXPECT_NEAR(circle.x, 1.0, 1e-14);
    EXPECT_NEAR(circle.y, 4.0, 1e-14);
    EXPECT_NEAR(circle.radius, 2.0, 1e-14);
}

TEST(Solve, UnitsDoNotMakeASystemDeficient)
{
    const Handle matrix = MatrixOf(3, 2, {1e-150, 0, 0, 1e150, 1e-150, 1e150});
    const Handle rightSide = MatrixOf(3, 1, {1, 2, 3});
    const Handle solution = MakeArray2(xxq64f_type, 2, 1);
    EXPECT_EQ(qMatrix_SolveSystem(matrix, solution, rightSide), STATUS_OK);
    EXPECT_NEAR(EntriesOf(solution)[0] * 1e-150, 1.0, 1e-14);
    EXPECT_NEAR(EntriesOf(solution)[1] * 1e150, 2.0, 1e-14);
}

TEST(Solve, DeficientSystemsAreReported)
{
    const std::vector<Entries> deficient = {
        {1, 1, 1, 2, 2, 1, 3, 3, 1, 4, 4, 1}, // collinear points
        {1, 0, 1, 2, 0, 1, 3, 0, 1, 4, 0, 1},
        {2, 0.2 + 0.6, 1, 4, 0.4 + 0.6, 1, 6, 0.6 + 0.6, 1, 14, 1.4 + 0.6, 1}, // collinear up to rounding
        {5, 6, 1, 5, 6, 1, 5, 6, 1, 5, 6, 1},                                  // coincident points
        Entries(12, 0.0),
    };
    const Handle rightSide = MatrixOf(4, 1, {1, 2, 3, 4});
    for (const Entries& entries : deficient)
    {
        const Handle solution = MatrixOf(3, 1, {9, 9, 9});
        EXPECT_EQ(qMatrix_SolveSystem(MatrixOf(4, 3, entries), solution, rightSide), STATUS_BAD_DATA) << entries[0];
        EXPECT_EQ(EntriesOf(solution), (Entries{9, 9, 9}));
    }
}

TEST(Solve, FarAwayCollinearPointsAreReported)
{
    for (const std::size_t count : {std::size_t{5}, std::size_t{1000}})
    {
        Entries a;
        Entries b;
        for (std::size_t index = 0; index < count; ++index)
        {
            const double x = 1e5 + 0.1 * static_cast<double>(index);
            const double y = 0.3 * x - 7.0;
            a.insert(a.end(), {2.0 * x, 2.0 * y, 1.0});
            b.push_back(x * x + y * y);
        }
        const Handle solution = MakeArray2(xxq64f_type, 3, 1);
        EXPECT_EQ(qMatrix_SolveSystem(MatrixOf(count, 3, a), solution, MatrixOf(count, 1, b)), STATUS_BAD_DATA);
    }
}

TEST(Solve, ValuesThatAreNotFiniteAreReported)
{
    for (const double bad : {kNaN, kInfinity, -kInfinity})
    {
        const Handle solution = MatrixOf(2, 1, {9, 9});
        EXPECT_EQ(qMatrix_SolveSystem(MatrixOf(2, 2, {1, bad, 0, 1}), solution, MatrixOf(2, 1, {1, 1})),
                  STATUS_BAD_DATA);
        EXPECT_EQ(qMatrix_SolveSystem(MatrixOf(2, 2, {1, 0, 0, 1}), solution, MatrixOf(2, 1, {1, bad})),
                  STATUS_BAD_DATA);
        EXPECT_EQ(qMatrix_SolveSystem(MatrixOf(2, 2, {1e-300, 0, 0, 1}), solution, MatrixOf(2, 1, {1e300, 1})),
                  STATUS_BAD_DATA)
            << "the solution overflows";
        EXPECT_EQ(EntriesOf(solution), (Entries{9, 9}));
    }
}

TEST(Solve, ShapesAndTypesAreChecked)
{
    const Handle matrix = MatrixOf(3, 2, {1, 0, 0, 1, 1, 1});
    const Handle two = MatrixOf(2, 1, {9, 9});
    const Handle three = MatrixOf(3, 1, {9, 9, 9});
    const Handle row = MatrixOf(1, 2, {9, 9});
    const Handle words = MakeArray2(xxq16s_type, 3, 1);
    const Handle wide = MatrixOf(2, 3, Entries(6, 1.0));
    const Handle empty = MakeArray2(xxq64f_type, 0, 0);
    EXPECT_EQ(qMatrix_SolveSystem(matrix, three, three), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_SolveSystem(matrix, two, two), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_SolveSystem(matrix, row, three), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_SolveSystem(matrix, two, words), STATUS_BAD_PARAMETER);
    EXPECT_EQ(qMatrix_SolveSystem(wide, three, two), STATUS_BAD_PARAMETER) << "more unknowns than equations";
    EXPECT_EQ(qMatrix_SolveSystem(empty, two, two), STATUS_BAD_PARAMETER);
    EXPECT_STOPPED(qMatrix_SolveSystem(nullptr, two, three));
    EXPECT_STOPPED(qMatrix_SolveSystem(matrix, MakeList(xxq64f_type).Get(), three));
    EXPECT_EQ(EntriesOf(two), (Entries{9, 9}));
}

} // namespace
