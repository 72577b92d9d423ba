#include <ZdkVisionLib/Alignment/RefFrame.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <chrono>
#include <cmath>
#include <limits>
#include <random>
#include <tuple>
#include <utility>
#include <vector>

namespace Zvl
{

namespace
{

using Matrix = std::vector<double>;

Matrix RandomSymmetric(std::mt19937_64& random, std::size_t size, double scale)
{
    std::normal_distribution<double> normal;
    Matrix matrix(size * size);
    for (std::size_t row = 0; row < size; ++row)
    {
        for (std::size_t column = 0; column <= row; ++column)
        {
            matrix[row * size + column] = matrix[column * size + row] = normal(random) * scale;
        }
    }
    return matrix;
}

/** The method as the text-books have it, with whole rows in nested loops and no bound on the sweeps. */
void TextBookJacobi(std::vector<std::vector<double>>& m, std::vector<std::vector<double>>& v)
{
    const std::size_t size = m.size();
    double sum = 0.0;
    for (std::size_t i = 0; i < size; ++i)
    {
        for (std::size_t j = 0; j < size; ++j)
        {
            v[i][j] = i == j;
            sum += i == j ? 0.0 : m[i][j] * m[i][j];
        }
    }
    if (sum > 0.0)
    {
        const double n = static_cast<double>(size);
        for (double threshold = std::sqrt(sum) / n; threshold > std::sqrt(sum) * 1e-12 / n; threshold /= n)
        {
            for (bool changed = true; changed;)
            {
                changed = false;
                for (std::size_t p = 0; p < size; ++p)
                {
                    for (std::size_t q = p + 1; q < size; ++q)
                    {
                        const double x = m[q][p];
                        if (std::fabs(x) < threshold)
                        {
                            continue;
                        }
                        changed = true;
                        const double a = m[p][p];
                        const double b = m[q][q];
                        const double y = 0.5 * (a - b);
                        const double h = x * x + y * y;
                        double w = h <= 0.0 ? -1.0 : -x / std::sqrt(h);
                        const double u = h <= 0.0 ? 0.0 : std::max(0.0, 1.0 - w * w);
                        w = y < 0.0 ? -w : w;
                        const double s = w / std::sqrt(2.0 * (1.0 + std::sqrt(u)));
                        const double c = std::sqrt(1.0 - s * s);
                        for (std::size_t i = 0; i < size; ++i)
                        {
                            if (i != p && i != q)
                            {
                                double& ip = i < p ? m[p][i] : m[i][p];
                                double& iq = i < q ? m[q][i] : m[i][q];
                                std::tie(ip, iq) = std::make_tuple(ip * c - iq * s, ip * s + iq * c);
                            }
                            std::tie(v[p][i], v[q][i]) =
                                std::make_tuple(v[p][i] * c - v[q][i] * s, v[p][i] * s + v[q][i] * c);
                        }
                        m[q][p] = (a - b) * (s * c) + x * (c * c - s * s);
                        m[p][p] = a * c * c + b * s * s - 2.0 * x * s * c;
                        m[q][q] = a * s * s + b * c * c + 2.0 * x * s * c;
                    }
                }
            }
        }
    }
    for (std::size_t i = 0; i < size; ++i)
    {
        for (std::size_t j = i + 1; j < size; ++j)
        {
            if (m[j][j] > m[i][i])
            {
                std::swap(m[i][i], m[j][j]);
                std::swap(v[i], v[j]);
            }
        }
    }
}

void ExpectTextBookResult(const Matrix& input, std::size_t size)
{
    std::vector<std::vector<double>> m(size, std::vector<double>(size));
    std::vector<std::vector<double>> v = m;
    for (std::size_t row = 0; row < size; ++row)
    {
        for (std::size_t column = 0; column < size; ++column)
        {
            m[row][column] = input[row * size + column];
        }
    }
    TextBookJacobi(m, v);

    Matrix matrix = input;
    Matrix vectors(size * size, -1.0);
    DecomposeEigen(matrix.data(), vectors.data(), static_cast<int>(size), 0);
    for (std::size_t row = 0; row < size; ++row)
    {
        for (std::size_t column = 0; column < size; ++column)
        {
            ASSERT_EQ(matrix[row * size + column], m[row][column]);
            ASSERT_EQ(vectors[row * size + column], v[row][column]);
        }
    }
}

double Norm(const Matrix& matrix)
{
    double sum = 0.0;
    for (const double value : matrix)
    {
        sum += value * value;
    }
    return std::sqrt(sum);
}

} // namespace

TEST(DecomposeEigen, SolvesAMatrixByHand)
{
    Matrix matrix = {2, 1, 1, 2};
    Matrix vectors(4);
    DecomposeEigen(matrix.data(), vectors.data(), 2, 0);
    EXPECT_NEAR(matrix[0], 3.0, 1e-15);
    EXPECT_NEAR(matrix[3], 1.0, 1e-15);
    EXPECT_NEAR(std::fabs(vectors[0]), std::sqrt(0.5), 1e-15);
    EXPECT_NEAR(vectors[0], vectors[1], 1e-15);
    EXPECT_NEAR(vectors[2], -vectors[3], 1e-15);
}

TEST(DecomposeEigen, ADiagonalMatrixIsOnlySorted)
{
    Matrix matrix = {1, 0, 0, 0, 3, 0, 0, 0, 2};
    Matrix vectors(9);
    DecomposeEigen(matrix.data(), vectors.data(), 3, 0);
    EXPECT_EQ(matrix, (Matrix{3, 0, 0, 0, 2, 0, 0, 0, 1}));
    EXPECT_EQ(vectors, (Matrix{0, 1, 0, 0, 0, 1, 1, 0, 0}));
}

TEST(DecomposeEigen, ASingleValueReturnsAtOnce)
{
    for (const double value : {5.0, -1e300, std::numeric_limits<double>::infinity()})
    {
        double matrix = value;
        double vector = 0.0;
        DecomposeEigen(&matrix, &vector, 1, 0);
        EXPECT_EQ(matrix, value);
        EXPECT_EQ(vector, 1.0);
        DecomposeEigen(&matrix, nullptr, 1, 1);
        EXPECT_EQ(matrix, value);
    }
}

TEST(DecomposeEigen, RandomMatricesHaveEigenvectorsInRowsInDescendingOrder)
{
    std::mt19937_64 random(31);
    for (std::size_t size = 1; size <= 8; ++size)
    {
        for (int round = 0; round < 50; ++round)
        {
            const Matrix input = RandomSymmetric(random, size, 1.0);
            Matrix matrix = input;
            Matrix vectors(size * size);
            DecomposeEigen(matrix.data(), vectors.data(), static_cast<int>(size), 0);
            for (std::size_t k = 0; k < size; ++k)
            {
                const double lambda = matrix[k * size + k];
                EXPECT_TRUE(k == 0 || matrix[(k - 1) * size + k - 1] >= lambda);
                for (std::size_t row = 0; row < size; ++row)
                {
                    double image = 0.0;
                    double product = 0.0;
                    for (std::size_t column = 0; column < size; ++column)
                    {
                        image += input[row * size + column] * vectors[k * size + column];
                        product += vectors[row * size + column] * vectors[k * size + column];
                    }
                    EXPECT_NEAR(image, lambda * vectors[k * size + row], 1e-11 * Norm(input));
                    EXPECT_NEAR(product, row == k ? 1.0 : 0.0, 1e-13);
                }
            }
        }
    }
}

TEST(DecomposeEigen, EqualsTheTextBookLoopBitForBit)
{
    std::mt19937_64 random(32);
    std::uniform_real_distribution<double> exponents(-100.0, 100.0);
    for (std::size_t size = 1; size <= 8; ++size)
    {
        for (int round = 0; round < 100; ++round)
        {
            ExpectTextBookResult(RandomSymmetric(random, size, std::pow(10.0, exponents(random))), size);
        }
    }
}

TEST(DecomposeEigen, EqualsTheTextBookLoopForDiagonalsOfOtherMagnitude)
{
    std::mt19937_64 random(33);
    std::uniform_real_distribution<double> exponents(-30.0, 30.0);
    std::uniform_int_distribution<int> kinds(0, 2);
    for (std::size_t size = 2; size <= 8; ++size)
    {
        for (int round = 0; round < 200; ++round)
        {
            Matrix matrix = RandomSymmetric(random, size, 1.0);
            const double magnitude = std::pow(10.0, exponents(random));
            for (std::size_t k = 0; k < size; ++k)
            {
                double& diagonal = matrix[k * size + k];
                diagonal = kinds(random) == 0 ? magnitude : diagonal * magnitude;
            }
            ExpectTextBookResult(matrix, size);
        }
    }
}

TEST(DecomposeEigen, EqualsTheTextBookLoopForGradedMatricesWithClusters)
{
    std::mt19937_64 random(35);
    std::uniform_real_distribution<double> exponents(-30.0, 30.0);
    for (std::size_t size : {std::size_t(3), std::size_t(8), std::size_t(16), std::size_t(32)})
    {
        for (std::size_t round = 0; round < 640 / size; ++round)
        {
            Matrix matrix = RandomSymmetric(random, size, 1.0);
            const double diagonal = std::pow(10.0, exponents(random));
            for (std::size_t row = 0; row < size; ++row)
            {
                for (std::size_t column = 0; column < row; ++column)
                {
                    matrix[row * size + column] *= std::pow(10.0, exponents(random));
                    matrix[column * size + row] = matrix[row * size + column];
                }
                matrix[row * size + row] = diagonal;
            }
            ExpectTextBookResult(matrix, size);
        }
    }
}

TEST(DecomposeEigen, ValuesAloneEqualThoseWithVectors)
{
    std::mt19937_64 random(34);
    const Matrix input = RandomSymmetric(random, 6, 1.0);
    Matrix withVectors = input;
    Matrix vectors(36);
    DecomposeEigen(withVectors.data(), vectors.data(), 6, 0);

    Matrix alone = input;
    DecomposeEigen(alone.data(), nullptr, 6, 1);
    EXPECT_EQ(alone, withVectors);

    Matrix untouched(36, 42.0);
    alone = input;
    DecomposeEigen(alone.data(), untouched.data(), 6, -1);
    EXPECT_EQ(alone, withVectors);
    EXPECT_EQ(untouched, Matrix(36, 42.0));
}

TEST(DecomposeEigen, NothingIsDoneWithoutAMatrixOrAPlaceForTheVectors)
{
    Matrix matrix = {2, 1, 1, 2};
    Matrix vectors(4, 42.0);
    DecomposeEigen(nullptr, vectors.data(), 2, 0);
    DecomposeEigen(matrix.data(), nullptr, 2, 0);
    DecomposeEigen(matrix.data(), vectors.data(), 0, 0);
    DecomposeEigen(matrix.data(), vectors.data(), -3, 0);
    EXPECT_EQ(matrix, (Matrix{2, 1, 1, 2}));
    EXPECT_EQ(vectors, Matrix(4, 42.0));
}

TEST(DecomposeEigen, HostileValuesEndQuickly)
{
    const auto start = std::chrono::steady_clock::now();
    const double infinity = std::numeric_limits<double>::infinity();
    const double notANumber = std::numeric_limits<double>::quiet_NaN();
    for (const double bad : {notANumber, infinity, -infinity, GetNull<double>(), 1e160, 1e154, 1e-160, 3e-162, 5e-324})
    {
        for (const std::size_t size : {2U, 3U, 4U, 5U, 8U, 40U})
        {
            for (const std::size_t place : {std::size_t(0), size + 1, size, size * size - 2})
            {
                Matrix matrix(size * size, 1.0);
                matrix[place] = bad;
                Matrix vectors(size * size);
                DecomposeEigen(matrix.data(), vectors.data(), static_cast<int>(size), 0);
            }
            Matrix matrix(size * size, bad);
            DecomposeEigen(matrix.data(), nullptr, static_cast<int>(size), 1);
        }
    }
    EXPECT_LT(std::chrono::steady_clock::now() - start, std::chrono::seconds(30));
}

TEST(DecomposeEigen, OneHugeValueDoesNotHideTheOthersForEver)
{
    // The square of half the difference overflows, and every rotation is by no angle at all.
    Matrix matrix = {1e160, 1, 1, 1};
    Matrix vectors(4);
    DecomposeEigen(matrix.data(), vectors.data(), 2, 0);
    EXPECT_EQ(matrix[0], 1e160);
    EXPECT_EQ(vectors[0], 1.0);
}

} // namespace Zvl
