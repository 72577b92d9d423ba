#include "platform/Matrices.h"

#include <ZdkVisionLib/platform/qVision.h>

#include <new>

#include <Eigen/LU>

namespace
{

using namespace ZdkPlatform;

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
