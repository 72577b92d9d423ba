#pragma once

/** @file
 *  The platform's dense matrix routines. A matrix is a #qArray2 of q64f. Wrong classes and dead handles throw
 *  as told in qApi.h; another element type or sizes that do not fit are #STATUS_BAD_PARAMETER. An output must be
 *  a matrix of the right size already, and keeps its cells when a call fails. */

#include <ZdkVisionLib/platform/qApi.h>

/** Rotation (columns 0 to 2) and translation (column 3), row after row. */
struct qL3dTransform3d
{
    double entries[12]; ///< three rows of four
};

/** Sets @p transform to the identity; null is #STATUS_BAD_PARAMETER. */
ZDK_PLATFORM_EXPORT qStatus qL3dTransform3d_Identity(qL3dTransform3d* transform);

/** Inverts a square matrix by Gaussian elimination with complete pivoting. A matrix that is singular to working
 *  precision, whatever the units of its rows and columns are, or that holds a value that is not finite, is
 *  reported as success with @p determinant 0 (exactly) and leaves @p inverse zeroed. @p determinant may be null.
 *  @p inverse may be @p matrix itself. */
ZDK_PLATFORM_EXPORT qStatus qMatrix_Invert(qArray2 matrix, qArray2 inverse, double* determinant);

/** `product = a * b`; @p product may be neither of the factors. */
ZDK_PLATFORM_EXPORT qStatus qMatrix_Mul64f(qArray2 a, qArray2 b, qArray2 product);

/** Solves `matrix * solution = rightSide` in the least-squares sense by a Householder QR decomposition with
 *  column pivoting, after scaling the columns by powers of two to about unit length, and refines the solution
 *  with residuals in extended precision. A system of 10,000 rows takes time and memory in proportion; up to 16
 *  rows by 4 columns need no heap.
 *  @param matrix m rows by n columns, m at least n
 *  @param solution n rows by 1 column
 *  @param rightSide m rows by 1 column
 *  @return #STATUS_BAD_DATA when the rank is below n or a value is not finite
 *  Sources: G. H. Golub and C. F. Van Loan, Matrix Computations, 4th ed., 2013, section 5.4.2; G. H. Golub and
 *  J. H. Wilkinson, Note on the iterative refinement of least squares solution, 1966. */
ZDK_PLATFORM_EXPORT qStatus qMatrix_SolveSystem(qArray2 matrix, qArray2 solution, qArray2 rightSide);
