#include "platform/Matrices.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <new>

#include <Eigen/QR>

namespace
{

using namespace ZdkPlatform;

// Refinement of a system that it can help settles in two steps.
constexpr int kMostRefinements = 2;

// Systems with up to so many rows, and few columns, need no heap.
constexpr int kSmallRows = 16;

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

} // namespace

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
