#include <ZdkVisionLib/Alignment/RefFrame.h>

#include <algorithm>
#include <cmath>
#include <utility>

namespace Zvl
{

namespace
{

/** The threshold falls to this part of the mean off-diagonal size of the input. */
constexpr double kPrecision = 1e-12;

/** Sweeps over one threshold, for each row of the matrix. They end by themselves: a rotation takes at least
 *  twice the squared threshold from the sum of squares of the off-diagonal elements, and each of those lies
 *  below `size` times the threshold when its sweeps begin, which leaves no more than size³ (size - 1) / 2
 *  rotations. Up to a size of 6 that is less than this bound; beyond, the worst graded matrices took two
 *  sweeps a row. Only where squares underflow, below 1e-160, can rotations go round in circles. */
constexpr std::size_t kMaxSweepsPerRow = 100;

enum class Sweep
{
    Idle,   ///< no element reached the threshold
    Turned, ///< some did, and were rotated away
    Stuck   ///< some did, but no rotation had an angle: a square overflowed, or a value was not a number
};

struct Rotation
{
    double cosine;
    double sine;
};

/** The rotation that clears the off-diagonal element @p x between diagonal elements whose half difference is
 *  @p y. */
Rotation ClearingRotation(double x, double y)
{
    double w = -1.0;
    double u = 0.0;
    const double squaredLength = x * x + y * y;
    const bool vanishes = squaredLength <= 0.0; // not a number counts as no
    if (!vanishes)
    {
        w = -x / std::sqrt(squaredLength);
        u = 1.0 - w * w;
        if (u < 0.0)
        {
            u = 0.0;
        }
    }
    if (y < 0.0)
    {
        w = -w;
    }
    const double sine = w / std::sqrt(2.0 * (1.0 + std::sqrt(u)));
    return {std::sqrt(1.0 - sine * sine), sine};
}

void RotatePair(const Rotation& rotation, double& a, double& b)
{
    const double oldA = a;
    const double oldB = b;
    a = oldA * rotation.cosine - oldB * rotation.sine;
    b = oldA * rotation.sine + oldB * rotation.cosine;
}

/** A symmetric matrix, of which the lower triangle is kept up, and the product of the rotations so far. */
class JacobiIteration
{
public:
    /** @param vectors null when they are not asked for */
    JacobiIteration(double* matrix, double* vectors, int size)
        : matrix(matrix), vectors(vectors), size(static_cast<std::size_t>(size))
    {
    }

    void Run()
    {
        const double sum = StartVectorsAndSumSquares();
        if (sum > 0.0)
        {
            Diagonalize(std::sqrt(sum));
        }
        SortDescending();
    }

private:
    double& At(std::size_t row, std::size_t column) { return matrix[row * size + column]; }
    double& Lower(std::size_t a, std::size_t b) { return a < b ? At(b, a) : At(a, b); }

    double StartVectorsAndSumSquares()
    {
        double sum = 0.0;
        for (std::size_t row = 0; row < size; ++row)
        {
            for (std::size_t column = 0; column < size; ++column)
            {
                if (row != column)
                {
                    sum += At(row, column) * At(row, column);
                }
                if (vectors != nullptr)
                {
                    vectors[row * size + column] = row == column ? 1.0 : 0.0;
                }
            }
        }
        return sum;
    }

    void Diagonalize(double norm)
    {
        const auto n = static_cast<double>(size);
        const double limit = norm * kPrecision / n;
        double threshold = norm / n;
        while (threshold > limit && ClearFrom(threshold))
        {
            threshold /= n;
        }
    }

    /** Sweeps until no element reaches @p threshold; false when that has no end. */
    bool ClearFrom(double threshold)
    {
        for (std::size_t count = 0; count < kMaxSweepsPerRow * size; ++count)
        {
            const Sweep sweep = RunSweep(threshold);
            if (sweep != Sweep::Turned)
            {
                return sweep == Sweep::Idle;
            }
        }
        return false;
    }

    /** Rotates away every element that reaches @p threshold. */
    Sweep RunSweep(double threshold)
    {
        Sweep outcome = Sweep::Idle;
        for (std::size_t p = 0; p + 1 < size; ++p)
        {
            for (std::size_t q = p + 1; q < size; ++q)
            {
                const double x = At(q, p);
                if (-threshold < x && x < threshold)
                {
                    continue;
                }
                const Rotation rotation = ClearingRotation(x, 0.5 * (At(p, p) - At(q, q)));
                Rotate(p, q, rotation);
                if (std::fabs(rotation.sine) > 0.0)
                {
                    outcome = Sweep::Turned;
                }
                else if (outcome == Sweep::Idle)
                {
                    outcome = Sweep::Stuck;
                }
            }
        }
        return outcome;
    }

    void Rotate(std::size_t p, std::size_t q, const Rotation& rotation)
    {
        for (std::size_t index = 0; index < size; ++index)
        {
            if (index != p && index != q)
            {
                RotatePair(rotation, Lower(index, p), Lower(index, q));
            }
            if (vectors != nullptr)
            {
                RotatePair(rotation, vectors[p * size + index], vectors[q * size + index]);
            }
        }
        RotateDiagonal(p, q, rotation);
    }

    void RotateDiagonal(std::size_t p, std::size_t q, const Rotation& rotation)
    {
        const double c = rotation.cosine;
        const double s = rotation.sine;
        const double x = At(q, p);
        const double a = At(p, p);
        const double b = At(q, q);
        At(q, p) = (a - b) * (s * c) + x * (c * c - s * s);
        At(p, p) = a * c * c + b * s * s - 2.0 * x * s * c;
        At(q, q) = a * s * s + b * c * c + 2.0 * x * s * c;
    }

    void SortDescending()
    {
        for (std::size_t i = 0; i + 1 < size; ++i)
        {
            for (std::size_t j = i + 1; j < size; ++j)
            {
                if (At(j, j) > At(i, i))
                {
                    std::swap(At(i, i), At(j, j));
                    SwapVectors(i, j);
                }
            }
        }
    }

    void SwapVectors(std::size_t i, std::size_t j)
    {
        if (vectors != nullptr)
        {
            std::swap_ranges(vectors + i * size, vectors + (i + 1) * size, vectors + j * size);
        }
    }

    double* matrix;
    double* vectors;
    std::size_t size;
};

} // namespace

void DecomposeEigen(double* matrix, double* vectors, int size, int valuesOnly)
{
    if (matrix == nullptr || size <= 0 || (valuesOnly == 0 && vectors == nullptr))
    {
        return;
    }
    JacobiIteration(matrix, valuesOnly == 0 ? vectors : nullptr, size).Run();
}

} // namespace Zvl
