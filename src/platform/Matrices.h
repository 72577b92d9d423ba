#pragma once

/** @file
 *  Two-dimensional arrays of doubles as matrices, and what solving and inverting have in common. */

#include "platform/Arrays.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include <Eigen/Core>

namespace ZdkPlatform
{

inline constexpr double kEpsilon = std::numeric_limits<double>::epsilon();

/** A pivot below this share of the largest one, times the size, is a zero hidden by rounding. */
inline constexpr double kPivotTolerance = 16.0 * kEpsilon;

/** Matrices up to this size need no heap: fits solve and invert many of them in a loop. */
inline constexpr int kSmallColumns = 4;

using RowMajor = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::RowMajor>;
using MatrixView = Eigen::Map<RowMajor>;

template <int MaxRows, int MaxColumns>
using Matrix = Eigen::Matrix<double, Eigen::Dynamic, Eigen::Dynamic, Eigen::ColMajor, MaxRows, MaxColumns>;
template <int MaxRows>
using Vector = Eigen::Matrix<double, Eigen::Dynamic, 1, Eigen::ColMajor, MaxRows, 1>;

inline bool IsMatrix(Array2& array, std::size_t rows, std::size_t columns)
{
    return HeaderOf(&array).itemType == RecordOf(TypeId::Q64f) && array.length0 == rows && array.length1 == columns &&
           rows != 0 && columns != 0;
}

inline MatrixView ViewOf(Array2& array)
{
    return MatrixView(static_cast<double*>(array.data), static_cast<Eigen::Index>(array.length0),
                      static_cast<Eigen::Index>(array.length1));
}

/** A power of two that brings @p size near 1. Multiplying by it rounds nothing. */
inline double ScaleFor(double size)
{
    constexpr int kLargestExponent = 1000; // powers of two up to this one have an inverse that is a normal number
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

} // namespace ZdkPlatform
