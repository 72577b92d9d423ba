#pragma once

/** @file
 *  The triangular factor of a least-squares problem in three unknowns, kept up to date while rows come and
 *  go. */

#include <array>
#include <cstddef>

namespace Zvl
{

/** One equation of the problem: `coefficients . unknowns = rightSide`. */
struct Equation
{
    std::array<double, 3> coefficients;
    double rightSide;
};

/** Equations that are taken in together, each column in an array of its own. Rows of zeros change nothing. */
struct EquationBlock
{
    static constexpr std::size_t kRows = 64;
    using Column = std::array<double, kRows>;

    std::array<Column, 3> coefficients;
    Column rightSide;
};

/** R and z = Qᵀy of the factorisation A = QR of the equations, from which R x = z gives the least-squares
 *  solution. Q is not kept. */
class TriangularFactor
{
public:
    /** Takes in a row by three plane rotations.
     *  Source: G. H. Golub and C. F. Van Loan, Matrix Computations, 4th ed., 2013, section 6.5.3. */
    void Insert(const Equation& row);

    /** Takes in the rows of @p block, which is used up, by three Householder reflections of R and the block. It costs a
     *  fraction of what the rows cost one by one, and no error grows with their number as it does in normal equations.
     *  Source: J. Demmel et al., Communication-optimal parallel and sequential QR and LU factorizations, SIAM
     *  Journal on Scientific Computing 34(1), 2012, section 3. */
    void Insert(EquationBlock& block);

    /** Takes out a row that was taken in before.
     *  @return the share of the squared determinant of R that stays, which is 1 minus the row's leverage. A
     *  row with a leverage near 1 leaves few correct digits; at 0 or below, or NaN, the factor must be formed
     *  anew. Source: J. J. Dongarra et al., LINPACK Users' Guide, 1979, chapter 10; the error is analysed in
     *  G. W. Stewart, The effects of rounding error on an algorithm for downdating a Cholesky factorization,
     *  IMA Journal of Applied Mathematics 23(2), 1979. */
    double Remove(const Equation& row);

    /** Row @p index of the triangular system: zeros left of the diagonal, and the entry of z. */
    const Equation& Row(std::size_t index) const { return rows[index]; }

private:
    std::array<Equation, 3> rows{};
};

} // namespace Zvl
