#include "platform/Arrays.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <new>

#include <Eigen/Dense>

namespace
{

using namespace ZdkPlatform;

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

// A pivot below this share of the largest one, times the size, is a zero hidden by rounding.
constexpr double kPivotTolerance = 16.0 * kEpsilon;

// Refinement of a system that it can help settles in two steps.
constexpr int kMostRefinements = 2;

// Powers of two up to this one have an inverse that is a normal number.
constexpr int kLargestExponent = 1000;

// Systems up to this size need no heap: fits solve many of them in a loop.
constexpr int kSmallRows = 16;
constexpr int kSmallColumns = 4;

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using MatrixView = Eigen::Map<RowMajor>;

template <int MaxRows, int MaxColumns>
using Matrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::ColMajor, MaxRows, MaxColumns>;
template <int MaxRows>
using Vector = Eigen::Matrix<double, Eigen::Dynamic, 1, Eigen::ColMajor, MaxRows, 1>;

bool IsMatrix(Array2& array, std::size_t rows, std::size_t columns)
{
    return HeaderOf(&array).itemType == RecordOf(TypeId::Q64f) && array.length0 == rows && array.length1 == columns &&
           rows != 0 && columns != 0;
}

MatrixView ViewOf(Array2& array)
{
    return MatrixView(static_cast<double*>(array.data), static_cast<Eigen::Index>(array.length0),
                      static_cast<Eigen::Index>(array.length1));
}

/** A power of two that brings @p size near 1. Multiplying by it rounds nothing. */
double ScaleFor(double size)
{
    return size > 0.0 ? std::ldexp(1.0, -std::clamp(std::ilogb(size), -kLargestExponent, kLargestExponent)) : 1.0;
}

/** Scales each column to a length between 1 and 2, and returns the factors. The largest entry goes first, so
 *  that the length does not overflow. */
template <int MaxColumns, typename Target>
Vector<MaxColumns> ScaleColumns(Target& matrix)
{
    Vector<MaxColumns> factors(matrix.cols());
    for (Eigen::Index column = 0; column < matrix.cols(); ++column)
    {
        const double byLargest = ScaleFor(matrix.col(column).cwiseAbs().maxCoeff());
        const double byLength = ScaleFor((byLargest * matrix.col(column)).norm());
        factors(column) = byLargest * byLength;
        matrix.col(column) *= factors(column);
    }
    return factors;
}

/** `rightSide - matrix * solution`, summed in extended precision: it is the difference of nearly equal numbers,
 *  and all that refinement lives on. */
template <int MaxRows, int MaxColumns>
Vector<MaxRows> Residuals(const MatrixView& matrix, const MatrixView& rightSide, const Vector<MaxColumns>& solution)
{
    Vector<MaxRows> residuals(matrix.rows());
    for (Eigen::Index row = 0; row < matrix.rows(); ++row)
    {
        long double sum = rightSide(row, 0);
        for (Eigen::Index column = 0; column < matrix.cols(); ++column)
        {
            sum -= static_cast<long double>(matrix(row, column)) * static_cast<long double>(solution(column));
        }
        residuals(row) = static_cast<double>(sum);
    }
    return residuals;
}

/** Least squares by QR decomposition, refined with the residuals of the solution (G. H. Golub and J. H.
 *  Wilkinson, Note on the iterative refinement of least squares solution, 1966). */
template <int MaxRows, int MaxColumns>
qStatus Solve(const MatrixView& matrix, MatrixView solution, const MatrixView& rightSide)
{
    Matrix<MaxRows, MaxColumns> scaled = matrix;
    const Vector<MaxColumns> factors = ScaleColumns<MaxColumns>(scaled);
    Eigen::ColPivHouseholderQR<Eigen::Ref<Matrix<MaxRows, MaxColumns>>> decomposition(scaled);
    decomposition.setThreshold(kPivotTolerance * static_cast<double>(matrix.cols()));
    if (decomposition.rank() < matrix.cols())
    {
        return STATUS_BAD_DATA;
    }
    Vector<MaxRows> residuals = rightSide.col(0);
    Vector<MaxColumns> scaledResult = decomposition.solve(residuals);
    Vector<MaxColumns> result = scaledResult.cwiseProduct(factors);
    for (int step = 0; step < kMostRefinements && result.allFinite(); ++step)
    {
        residuals = Residuals<MaxRows, MaxColumns>(matrix, rightSide, result);
        const Vector<MaxColumns> correction = decomposition.solve(residuals);
        result += correction.cwiseProduct(factors);
        scaledResult += correction;
        if (correction.stableNorm() <= kEpsilon * scaledResult.stableNorm())
        {
            break;
        }
    }
    if (!result.allFinite())
    {
        return STATUS_BAD_DATA;
    }
    solution.col(0) = result;
    return STATUS_OK;
}

/** `mantissa * 2^exponent`: products of many factors that neither overflow nor underflow on the way. */
struct Product
{
    double mantissa = 1.0;
    long exponent = 0;

    void Multiply(double factor)
    {
        int shift = 0;
        mantissa = std::frexp(mantissa * factor, &shift);
        exponent += shift;
    }

    double Value() const { return std::ldexp(mantissa, static_cast<int>(std::clamp(exponent, -5000L, 5000L))); }
};

/** Inverts by Gaussian elimination with complete pivoting. Rows and columns are first brought to comparable
 *  size, so that singularity shows in the pivots whatever the units are.
 *  @return the determinant; 0 for a singular matrix, whose inverse is then zeroed */
template <int MaxSize>
double Invert(const MatrixView& matrix, MatrixView inverse)
{
    Matrix<MaxSize, MaxSize> scaled = matrix.transpose();
    const Vector<MaxSize> rowFactors = ScaleColumns<MaxSize>(scaled);
    scaled.transposeInPlace();
    const Vector<MaxSize> columnFactors = ScaleColumns<MaxSize>(scaled);

    Eigen::FullPivLU<Matrix<MaxSize, MaxSize>> decomposition(scaled.rows(), scaled.cols());
    decomposition.setThreshold(kPivotTolerance * static_cast<double>(matrix.cols()));
    decomposition.compute(scaled);

    Product product;
    product.Multiply(
        static_cast<double>(decomposition.permutationP().determinant() * decomposition.permutationQ().determinant()));
    for (Eigen::Index index = 0; index < scaled.rows(); ++index)
    {
        product.Multiply(decomposition.matrixLU()(index, index));
        product.Multiply(1.0 / rowFactors(index));
        product.Multiply(1.0 / columnFactors(index));
    }
    if (decomposition.isInvertible() && product.Value() != 0.0)
    {
        scaled = columnFactors.asDiagonal() * decomposition.inverse() * rowFactors.asDiagonal();
        if (scaled.allFinite())
        {
            inverse = scaled;
            return product.Value();
        }
    }
    inverse.setZero();
    return 0.0;
}

double InvertAny(const MatrixView& matrix, MatrixView inverse)
{
    if (!matrix.allFinite())
    {
        inverse.setZero();
        return 0.0;
    }
    return matrix.rows() <= kSmallColumns ? Invert<kSmallColumns>(matrix, inverse)
                                          : Invert<Eigen::Dynamic>(matrix, inverse);
}

} // namespace

qStatus qL3dTransform3d_Identity(qL3dTransform3d* transform)
{
    if (transform == nullptr)
    {
        return STATUS_BAD_PARAMETER;
    }
    *transform = {{1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0, 0.0, 0.0, 0.0, 1.0, 0.0}};
    return STATUS_OK;
}

qStatus qMatrix_Invert(qArray2 matrix, qArray2 inverse, double* determinant)
{
    Array2& source = CastTo<Array2>(matrix, __FILE__, __LINE__);
    Array2& target = CastTo<Array2>(inverse, __FILE__, __LINE__);
    if (!IsMatrix(source, source.length0, source.length0) || !IsMatrix(target, source.length0, source.length0))
    {
        return STATUS_BAD_PARAMETER;
    }
    try
    {
        const double value = InvertAny(ViewOf(source), ViewOf(target));
        if (determinant != nullptr)
        {
            *determinant = value;
        }
        return STATUS_OK;
    }
    catch (const std::bad_alloc&)
    {
        return STATUS_OUT_OF_MEMORY;
    }
}

qStatus qMatrix_Mul64f(qArray2 a, qArray2 b, qArray2 product)
{
    Array2& left = CastTo<Array2>(a, __FILE__, __LINE__);
    Array2& right = CastTo<Array2>(b, __FILE__, __LINE__);
    Array2& target = CastTo<Array2>(product, __FILE__, __LINE__);
    if (&target == &left || &target == &right || !IsMatrix(left, left.length0, right.length0) ||
        !IsMatrix(right, left.length1, right.length1) || !IsMatrix(target, left.length0, right.length1))
    {
        return STATUS_BAD_PARAMETER;
    }
    try
    {
        MatrixView view = ViewOf(target);
        view.noalias() = ViewOf(left) * ViewOf(right);
        return STATUS_OK;
    }
    catch (const std::bad_alloc&)
    {
        return STATUS_OUT_OF_MEMORY;
    }
}

qStatus qMatrix_SolveSystem(qArray2 matrix, qArray2 solution, qArray2 rightSide)
{
    Array2& left = CastTo<Array2>(matrix, __FILE__, __LINE__);
    Array2& target = CastTo<Array2>(solution, __FILE__, __LINE__);
    Array2& right = CastTo<Array2>(rightSide, __FILE__, __LINE__);
    if (!IsMatrix(left, left.length0, target.length0) || !IsMatrix(target, left.length1, 1) ||
        !IsMatrix(right, left.length0, 1) || left.length0 < left.length1)
    {
        return STATUS_BAD_PARAMETER;
    }
    const MatrixView leftView = ViewOf(left);
    const MatrixView rightView = ViewOf(right);
    if (!leftView.allFinite() || !rightView.allFinite())
    {
        return STATUS_BAD_DATA;
    }
    try
    {
        return left.length0 <= kSmallRows && left.length1 <= kSmallColumns
                   ? Solve<kSmallRows, kSmallColumns>(leftView, ViewOf(target), rightView)
                   : Solve<Eigen::Dynamic, Eigen::Dynamic>(leftView, ViewOf(target), rightView);
    }
    catch (const std::bad_alloc&)
    {
        return STATUS_OUT_OF_MEMORY;
    }
}
