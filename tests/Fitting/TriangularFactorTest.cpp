#include "Fitting/TriangularFactor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <vector>

namespace
{

using Zvl::Equation;
using Zvl::EquationBlock;
using Zvl::TriangularFactor;

std::vector<Equation> RandomEquations(std::size_t count)
{
    std::mt19937_64 random(20240607);
    std::uniform_real_distribution<double> entry(-10.0, 10.0);
    std::vector<Equation> equations(count);
    for (Equation& equation : equations)
    {
        equation = {{entry(random), entry(random), 1.0}, entry(random)};
    }
    return equations;
}

/** Sum over the equations of entry @p i times entry @p j, with the right side as entry 3. */
double Product(const std::vector<Equation>& equations, std::size_t i, std::size_t j)
{
    const auto entry = [](const Equation& equation, std::size_t index)
    { return index < 3 ? equation.coefficients[index] : equation.rightSide; };
    double sum = 0.0;
    for (const Equation& equation : equations)
    {
        sum += entry(equation, i) * entry(equation, j);
    }
    return sum;
}

/** The factor has the normal equations of the problem. */
void ExpectFactorOf(const std::vector<Equation>& equations, const TriangularFactor& factor)
{
    const std::vector<Equation> rows{factor.Row(0), factor.Row(1), factor.Row(2)};
    for (std::size_t i = 0; i < 3; ++i)
    {
        for (std::size_t j = 0; j < i; ++j)
        {
            EXPECT_EQ(rows[i].coefficients[j], 0.0);
        }
        for (std::size_t j = i; j < 4; ++j)
        {
            const double scale = std::sqrt(Product(equations, i, i) * Product(equations, j, j));
            EXPECT_NEAR(Product(rows, i, j), Product(equations, i, j), 1e-13 * scale) << i << ", " << j;
        }
    }
}

TriangularFactor FactorOf(const std::vector<Equation>& equations)
{
    TriangularFactor factor;
    for (const Equation& equation : equations)
    {
        factor.Insert(equation);
    }
    return factor;
}

TEST(TriangularFactor, InsertedRowsGiveTheirNormalEquations)
{
    const std::vector<Equation> equations = RandomEquations(50);
    ExpectFactorOf(equations, FactorOf(equations));
}

/** The factor of @p equations by blocks, the last of which ends in rows of zeros. */
TriangularFactor FactorByBlocks(const std::vector<Equation>& equations)
{
    TriangularFactor factor;
    for (std::size_t begin = 0; begin < equations.size(); begin += EquationBlock::kRows)
    {
        EquationBlock block{};
        for (std::size_t row = 0; row < std::min(EquationBlock::kRows, equations.size() - begin); ++row)
        {
            const Equation& equation = equations[begin + row];
            for (std::size_t i = 0; i < 3; ++i)
            {
                block.coefficients[i][row] = equation.coefficients[i];
            }
            block.rightSide[row] = equation.rightSide;
        }
        factor.Insert(block);
    }
    return factor;
}

TEST(TriangularFactor, BlocksGiveTheirNormalEquations)
{
    for (const std::size_t count : {1U, 2U, 3U, 50U, 64U, 65U, 1000U})
    {
        const std::vector<Equation> equations = RandomEquations(count);
        ExpectFactorOf(equations, FactorByBlocks(equations));
    }
}

TEST(TriangularFactor, RowsAreTakenOutOfAFactorOfBlocks)
{
    std::vector<Equation> equations = RandomEquations(150);
    TriangularFactor factor = FactorByBlocks(equations);
    while (equations.size() > 20)
    {
        EXPECT_GT(factor.Remove(equations.back()), 0.1);
        equations.pop_back();
        ExpectFactorOf(equations, factor);
    }
}

TEST(TriangularFactor, RemovalEqualsAFactorWithoutTheRow)
{
    std::vector<Equation> equations = RandomEquations(50);
    TriangularFactor factor = FactorOf(equations);
    while (equations.size() > 10)
    {
        const double stays = factor.Remove(equations.back());
        EXPECT_GT(stays, 0.1);
        EXPECT_LT(stays, 1.0);
        equations.pop_back();
        ExpectFactorOf(equations, factor);
    }
}

TEST(TriangularFactor, RemovalReportsTheShareOfTheSquaredDeterminant)
{
    const std::vector<Equation> equations = RandomEquations(12);
    TriangularFactor factor = FactorOf(equations);
    const auto determinant = [&factor]
    { return factor.Row(0).coefficients[0] * factor.Row(1).coefficients[1] * factor.Row(2).coefficients[2]; };
    const double before = determinant();
    const double stays = factor.Remove(equations[4]);
    EXPECT_NEAR(stays, std::pow(determinant() / before, 2), 1e-12);
}

TEST(TriangularFactor, RowThatIsNeededForTheRankLeavesNothing)
{
    const std::vector<Equation> equations = RandomEquations(3);
    EXPECT_LT(FactorOf(equations).Remove(equations[1]), 1e-12);
}

TEST(TriangularFactor, EmptyFactorAndZeroRowsDivideByNothing)
{
    TriangularFactor factor;
    factor.Insert({{0.0, 0.0, 0.0}, 5.0});
    EXPECT_EQ(factor.Row(0).coefficients[0], 0.0);
    factor.Insert({{0.0, 2.0, 1.0}, 5.0});
    EXPECT_EQ(factor.Row(1).coefficients[1], 2.0);
    EXPECT_FALSE(factor.Remove({{1.0, 0.0, 0.0}, 0.0}) > 0.0);
}

} // namespace
