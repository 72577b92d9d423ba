#include <ZdkVisionLib/Fitting/Fit.h>

#include "Fitting/PowerSums.h"

#include <cmath>
#include <cstdint>
#include <limits>
#include <new>
#include <span>
#include <stdexcept>
#include <vector>

namespace Zvl
{

namespace
{

constexpr int kSuccess = 0;
constexpr int kFailure = -1;
constexpr double kLeastPivot = 1.1920928955078125e-07;

/** Inverts the normal matrix by Gauss-Jordan elimination without pivoting, the matrix in the left half of each row,
 *  the identity in the right one.
 *
 *  A row is made when the rows above have been taken from it, and those below are taken from it at the end. Each
 *  entry so meets the same operations in the same order as when every pivot is at once eliminated from all rows, but
 *  a matrix that fails, as those of high degrees soon do, costs no more than the rows until then. */
class NormalMatrix
{
public:
    explicit NormalMatrix(std::span<const double> powerSums) : P(powerSums), size(powerSums.size() / 2 + 1) {}

    /** @return false when a pivot is too small */
    bool Invert()
    {
        for (std::size_t r = 0; r < size; ++r)
        {
            A.push_back(NewRow(r));
            for (std::size_t above = 0; above < r; ++above)
            {
                Eliminate(A[r], above);
            }
            const double pivot = A[r][r];
            if (std::fabs(pivot) <= kLeastPivot)
            {
                return false;
            }
            for (double& entry : A[r])
            {
                entry /= pivot;
            }
        }
        for (std::size_t r = 0; r < size; ++r)
        {
            for (std::size_t below = r + 1; below < size; ++below)
            {
                Eliminate(A[r], below);
            }
        }
        return true;
    }

    /** Row @p r of the inverse times @p vector. */
    double Times(std::span<const double> vector, std::size_t r) const
    {
        double sum = 0.0;
        for (std::size_t m = 0; m < size; ++m)
        {
            sum += A[r][size + m] * vector[m];
        }
        return sum;
    }

private:
    using Row = std::vector<double>;

    Row NewRow(std::size_t r) const
    {
        Row row(2 * size);
        for (std::size_t column = 0; column < size; ++column)
        {
            row[column] = P[r + column];
        }
        row[size + r] = 1.0;
        return row;
    }

    void Eliminate(Row& row, std::size_t other) const
    {
        const double multiplier = row[other];
        for (std::size_t column = 0; column < row.size(); ++column)
        {
            row[column] -= multiplier * A[other][column];
        }
    }

    std::span<const double> P;
    std::size_t size;
    std::vector<Row> A;
};

template <typename Point>
int FitWithMemory(const Point* points, std::size_t count, std::size_t degree, double* coefficients)
{
    PowerSums sums(degree);
    sums.Add(std::span(points, count));
    NormalMatrix matrix(sums.OfPowers());
    if (!matrix.Invert())
    {
        return kFailure;
    }
    for (std::size_t i = 0; i <= degree; ++i)
    {
        coefficients[i] = matrix.Times(sums.OfProducts(), i);
    }
    return kSuccess;
}

} // namespace

template <typename Point>
int FitPolynomial(const Point* points, std::size_t count, std::size_t degree, double* coefficients)
{
    if (degree >= count || points == nullptr || coefficients == nullptr)
    {
        return kFailure;
    }
    try
    {
        return FitWithMemory(points, count, degree, coefficients);
    }
    catch (const std::bad_alloc&)
    {
        return kFailure;
    }
    catch (const std::length_error&)
    {
        return kFailure;
    }
}

template ZDK_VISION_EXPORT int FitPolynomial<qPoint32f>(const qPoint32f* points, std::size_t count, std::size_t degree,
                                                        double* coefficients);
template ZDK_VISION_EXPORT int FitPolynomial<qPoint64f>(const qPoint64f* points, std::size_t count, std::size_t degree,
                                                        double* coefficients);

double CalculatePolynomialValue(const double* coefficients, std::size_t degree, double x)
{
    if (coefficients == nullptr)
    {
        return GetNull<double>();
    }
    double value = 0.0;
    // Counted in 32 bits: a degree that has no such number leaves the constant alone.
    for (auto i = static_cast<std::int32_t>(degree); i >= 1; --i)
    {
        value = (value + coefficients[i]) * x;
    }
    return value + coefficients[0];
}

} // namespace Zvl
