#pragma once

/** @file
 *  The triangular factor of a least-squares problem in three unknowns, kept up to date while rows come and
 *  go. */

#include <array>

namespace Zvl
{

/** One equation of the problem: `coefficients . unknowns = rightSide`. */
struct Equation
{
    std::array<double, 3> coefficients;
    double rightSide;
};

/** R and z = Qᵀy of the factorisation A = QR of the equations, from which R x = z gives the least-squares
 *  solution. Q is not kept. */
class TriangularFactor
{
public:
    /** Takes in a row by three plane rotations.
     *  Source: G. H. Golub and C. F. Van Loan, Matrix Computations, 4th ed., 2013, section 6.5.3. */
    void Insert(const Equation& row);

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
