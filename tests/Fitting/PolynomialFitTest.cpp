#include <ZdkVisionLib/Fitting/Fit.h>

#include "data/PolynomialSets.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace
{

using Points = std::vector<qPoint64f>;

constexpr double kNull = Zvl::GetNull<double>();

struct Fit
{
    int result;
    std::vector<double> coefficients;
};

template <typename Point>
Fit FitPoints(const std::vector<Point>& points, std::size_t degree)
{
    Fit fit{7, std::vector<double>(degree + 1, 7.0)};
    fit.result = Zvl::FitPolynomial(points.data(), points.size(), degree, fit.coefficients.data());
    return fit;
}

template <typename Point>
void ExpectFailure(const std::vector<Point>& points, std::size_t degree)
{
    const Fit fit = FitPoints(points, degree);
    EXPECT_EQ(fit.result, -1);
    EXPECT_EQ(fit.coefficients, std::vector<double>(degree + 1, 7.0));
}

TEST(PolynomialFit, DegreeZeroWithOnePointReturnsItsY)
{
    const Fit fit = FitPoints(Points{{3.0, 5.5}}, 0);
    EXPECT_EQ(fit.result, 0);
    EXPECT_EQ(fit.coefficients, std::vector<double>{5.5});
}

TEST(PolynomialFit, DegreeZeroReturnsTheMean)
{
    EXPECT_EQ(FitPoints(Points{{1.0, 2.0}, {1.0, 4.0}, {9.0, 9.0}, {2.0, 1.0}}, 0).coefficients[0], 4.0);
}

TEST(PolynomialFit, LineThroughTwoPoints)
{
    // The matrix 2 2 2 4 has the inverse 1 -0.5 -0.5 0.5; the right side is 6, 8.
    const Fit fit = FitPoints(Points{{0.0, 2.0}, {2.0, 4.0}}, 1);
    EXPECT_EQ(fit.result, 0);
    EXPECT_EQ(fit.coefficients, (std::vector<double>{2.0, 1.0}));
}

TEST(PolynomialFit, ParabolaOfLeastSquares)
{
    // y = x² at -1, 0, 1 and at 0 once more with y = 1: by symmetry c1 = 0, and c0 = 1/2, c2 = 1/2.
    const Fit fit = FitPoints(Points{{-1.0, 1.0}, {0.0, 0.0}, {1.0, 1.0}, {0.0, 1.0}}, 2);
    EXPECT_NEAR(fit.coefficients[0], 0.5, 1e-15);
    EXPECT_NEAR(fit.coefficients[1], 0.0, 1e-15);
    EXPECT_NEAR(fit.coefficients[2], 0.5, 1e-15);
}

TEST(PolynomialFit, DegreeMustBeBelowTheCount)
{
    ExpectFailure(Points{}, 0);
    ExpectFailure(Points{{1.0, 2.0}}, 1);
    ExpectFailure(Points{{1.0, 2.0}, {2.0, 2.0}, {3.0, 2.0}}, 3);
    double coefficient = 7.0;
    const qPoint64f point{1.0, 2.0};
    EXPECT_EQ(Zvl::FitPolynomial(&point, 1, std::numeric_limits<std::size_t>::max(), &coefficient), -1);
    EXPECT_EQ(coefficient, 7.0);
}

TEST(PolynomialFit, EqualValuesOfXFail)
{
    ExpectFailure(Points{{1.0, 2.0}, {1.0, 3.0}}, 1);
    ExpectFailure(Points{{1.0, 2.0}, {2.0, 3.0}, {1.0, 5.0}, {2.0, 0.0}}, 2);
    ExpectFailure(Points(100, {0.0, 1.0}), 1);
}

TEST(PolynomialFit, PivotAtTheLimitFails)
{
    // The pivots are the count 2 and x² / 2: the limit is 2^-23, so that x = 2^-11 meets it and 2^-10 does not.
    ExpectFailure(Points{{0.0, 1.0}, {std::ldexp(1.0, -11), 2.0}}, 1);
    const Fit fit = FitPoints(Points{{0.0, 1.0}, {std::ldexp(1.0, -10), 2.0}}, 1);
    EXPECT_EQ(fit.result, 0);
    EXPECT_EQ(fit.coefficients, (std::vector<double>{1.0, 1024.0}));
}

TEST(PolynomialFit, HighDegreeOverTheUnitRangeFails)
{
    Points points;
    for (int i = 0; i < 1000; ++i)
    {
        points.push_back({i / 1000.0, 1.0});
    }
    EXPECT_EQ(FitPoints(points, 3).result, 0);
    ExpectFailure(points, 20);
    ExpectFailure(points, 999);
}

TEST(PolynomialFit, ImpossibleSizeFails)
{
    // No vector can be as long as the sums. The points are not touched before that.
    const qPoint64f point{1.0, 2.0};
    double coefficient = 7.0;
    const std::size_t most = std::numeric_limits<std::size_t>::max();
    for (const std::size_t degree : {most - 1, most / 2, most / 8, most / 16})
    {
        EXPECT_EQ(Zvl::FitPolynomial(&point, most, degree, &coefficient), -1);
    }
    EXPECT_EQ(coefficient, 7.0);
}

TEST(PolynomialFit, NullPointersFail)
{
    const qPoint64f point{1.0, 2.0};
    double coefficient = 7.0;
    EXPECT_EQ(Zvl::FitPolynomial<qPoint64f>(nullptr, 5, 0, &coefficient), -1);
    EXPECT_EQ(Zvl::FitPolynomial<qPoint32f>(nullptr, 5, 0, &coefficient), -1);
    EXPECT_EQ(coefficient, 7.0);
    EXPECT_EQ(Zvl::FitPolynomial(&point, 1, 0, nullptr), -1);
}

TEST(PolynomialFit, NullCoordinatesAreTheHugeNumbersThatTheyAre)
{
    const Fit inX = FitPoints(Points{{0.0, 1.0}, {kNull, 2.0}, {1.0, 3.0}}, 1);
    EXPECT_TRUE(inX.result == -1 || !std::isfinite(inX.coefficients[1]));
    const Fit inY = FitPoints(Points{{0.0, 1.0}, {1.0, kNull}, {2.0, 3.0}, {3.0, kNull}}, 0);
    EXPECT_EQ(inY.result, 0);
    EXPECT_EQ(inY.coefficients[0], -std::numeric_limits<double>::infinity());
    const Fit nan = FitPoints(Points{{0.0, std::nan("")}, {1.0, 2.0}, {2.0, 3.0}}, 1);
    EXPECT_TRUE(std::isnan(nan.coefficients[0]));
}

/** The definition: every pivot is at once eliminated from all rows. */
Fit ByDefinition(const Points& points, std::size_t degree)
{
    const std::size_t size = degree + 1;
    std::vector<double> B(size);
    std::vector<double> P(2 * degree + 3);
    P[0] = static_cast<double>(points.size());
    for (const qPoint64f& point : points)
    {
        double power = 1.0;
        for (std::size_t j = 0; j <= degree; ++j)
        {
            B[j] += point.y * power;
            power *= point.x;
        }
        power = point.x;
        for (std::size_t j = 1; j <= 2 * degree + 2; ++j)
        {
            P[j] += power;
            power *= point.x;
        }
    }
    std::vector<std::vector<double>> A(size, std::vector<double>(2 * size));
    for (std::size_t r = 0; r < size; ++r)
    {
        for (std::size_t c = 0; c < size; ++c)
        {
            A[r][c] = P[r + c];
        }
        A[r][r + size] = 1.0;
    }
    Fit fit{-1, std::vector<double>(size, 7.0)};
    for (std::size_t r = 0; r < size; ++r)
    {
        const double pivot = A[r][r];
        if (std::fabs(pivot) <= 1.1920928955078125e-07)
        {
            return fit;
        }
        for (double& entry : A[r])
        {
            entry /= pivot;
        }
        for (std::size_t q = 0; q < size; ++q)
        {
            const double multiplier = A[q][r];
            for (std::size_t c = 0; q != r && c < 2 * size; ++c)
            {
                A[q][c] -= multiplier * A[r][c];
            }
        }
    }
    for (std::size_t i = 0; i < size; ++i)
    {
        fit.coefficients[i] = 0.0;
        for (std::size_t m = 0; m < size; ++m)
        {
            fit.coefficients[i] += A[i][size + m] * B[m];
        }
    }
    fit.result = 0;
    return fit;
}

TEST(PolynomialFit, ResultIsThatOfTheDefinitionBitForBit)
{
    std::mt19937_64 random(1);
    std::size_t failed = 0;
    for (int run = 0; run < 500; ++run)
    {
        const double range = std::ldexp(1.0, static_cast<int>(random() % 12) - 6);
        std::uniform_real_distribution<double> coordinate(-range, range);
        Points points(1 + random() % 50);
        for (qPoint64f& point : points)
        {
            point = {coordinate(random), coordinate(random)};
        }
        const std::size_t degree = random() % 12;
        const Fit fit = FitPoints(points, degree);
        const Fit expected = degree >= points.size() ? Fit{-1, fit.coefficients} : ByDefinition(points, degree);
        EXPECT_EQ(fit.result, expected.result);
        EXPECT_EQ(fit.coefficients, expected.coefficients);
        failed += fit.result == 0 ? 0 : 1;
    }
    EXPECT_GT(failed, 50U);
    EXPECT_LT(failed, 450U);
}

TEST(PolynomialFit, FloatsAreFittedAsTheDoublesThatTheyAre)
{
    std::vector<qPoint32f> floats;
    Points doubles;
    for (int i = 0; i < 20; ++i)
    {
        const float x = 0.1F * static_cast<float>(i);
        floats.push_back({x, x * x});
        doubles.push_back({static_cast<double>(x), static_cast<double>(x * x)});
    }
    EXPECT_EQ(FitPoints(floats, 2).result, 0);
    EXPECT_EQ(FitPoints(floats, 2).coefficients, FitPoints(doubles, 2).coefficients);
    ExpectFailure(std::vector<qPoint32f>{{1.0F, 2.0F}}, 1);
}

/** Correct digits of the worst coefficient. */
double Digits(const CertifiedData::PolynomialSet& set)
{
    const std::size_t degree = set.coefficients.size() - 1;
    const Fit fit = FitPoints(set.points, degree);
    EXPECT_EQ(fit.result, 0) << set.name;
    double digits = 15.0;
    for (std::size_t i = 0; i <= degree; ++i)
    {
        const double error = std::fabs(fit.coefficients[i] - set.coefficients[i]) / std::fabs(set.coefficients[i]);
        digits = std::min(digits, -std::log10(error));
    }
    return digits;
}

TEST(PolynomialFit, CertifiedLineAndParabolaAreReached)
{
    EXPECT_GT(Digits(CertifiedData::Norris()), 12.0);
    EXPECT_GT(Digits(CertifiedData::Pontius()), 11.0);
}

TEST(PolynomialFit, WamplerDeviationsAreOrthogonalToAllPowers)
{
    for (int power = 0; power <= 5; ++power)
    {
        double sum = 0.0; // of integers, exact
        for (std::size_t x = 0; x <= 20; ++x)
        {
            sum += CertifiedData::WamplerDeviations()[x] * std::pow(static_cast<double>(x), power);
        }
        EXPECT_EQ(sum, 0.0);
    }
}

TEST(PolynomialFit, CertifiedPolynomialsOfDegreeFiveAreReached)
{
    for (const CertifiedData::PolynomialSet& set : CertifiedData::WamplerSets())
    {
        EXPECT_GT(Digits(set), 6.5) << set.name;
    }
}

TEST(PolynomialValue, IsThatOfHornersRule)
{
    const double coefficients[] = {1.0, -2.0, 0.5, 3.0};
    EXPECT_EQ(Zvl::CalculatePolynomialValue(coefficients, 3, 2.0), 1.0 - 4.0 + 2.0 + 24.0);
    EXPECT_EQ(Zvl::CalculatePolynomialValue(coefficients, 1, 2.0), -3.0);
    // (0.1 + 0.2) is rounded before it is multiplied.
    const double tenths[] = {0.3, 0.2, 0.1};
    EXPECT_EQ(Zvl::CalculatePolynomialValue(tenths, 2, 3.0), ((0.1 * 3.0) + 0.2) * 3.0 + 0.3);
}

TEST(PolynomialValue, DegreeZeroIsTheConstantWhateverXIs)
{
    const double constant = 4.25;
    for (const double x : {0.0, 1e300, std::numeric_limits<double>::infinity(), std::nan(""), kNull})
    {
        EXPECT_EQ(Zvl::CalculatePolynomialValue(&constant, 0, x), 4.25);
    }
}

TEST(PolynomialValue, DegreeIsTakenIn32Bits)
{
    const double coefficients[] = {1.0, 2.0};
    EXPECT_EQ(Zvl::CalculatePolynomialValue(coefficients, std::numeric_limits<std::size_t>::max(), 5.0), 1.0);
    EXPECT_EQ(Zvl::CalculatePolynomialValue(coefficients, (std::size_t{1} << 32) + 1, 5.0), 11.0);
}

TEST(PolynomialValue, NoCoefficientsGiveNull)
{
    EXPECT_EQ(Zvl::CalculatePolynomialValue(nullptr, 2, 1.0), kNull);
}

} // namespace
