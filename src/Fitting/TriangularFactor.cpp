#include "Fitting/TriangularFactor.h"

#include <cmath>
#include <cstddef>

namespace Zvl
{

namespace
{

constexpr std::size_t kUnknowns = 3;

/** The rotations that turn the vector (s, alpha) into (0, 1). */
struct Rotations
{
    std::array<double, kUnknowns> cosine;
    std::array<double, kUnknowns> sine;
};

Rotations RotationsOf(const std::array<double, kUnknowns>& s, double alpha)
{
    Rotations rotations{};
    for (std::size_t i = kUnknowns; i-- > 0;)
    {
        const double length = std::hypot(alpha, s[i]);
        rotations.cosine[i] = alpha / length;
        rotations.sine[i] = s[i] / length;
        alpha = length;
    }
    return rotations;
}

using Column = EquationBlock::Column;

/** Summed in several parts side by side, so that the loop runs on vectors. */
double Dot(const Column& a, const Column& b)
{
    constexpr std::size_t kLanes = 8;
    std::array<double, kLanes> sums{};
    for (std::size_t i = 0; i < a.size(); i += kLanes)
    {
        for (std::size_t lane = 0; lane < kLanes; ++lane)
        {
            sums[lane] += a[i + lane] * b[i + lane];
        }
    }
    return ((sums[0] + sums[4]) + (sums[2] + sums[6])) + ((sums[1] + sums[5]) + (sums[3] + sums[7]));
}

/** The reflection that turns an entry of R and the column of a block below it into one number. */
class Reflection
{
public:
    /** @param squaredBelow squared length of the column */
    Reflection(double entry, double squaredBelow)
        : reflected(-std::copysign(std::sqrt(entry * entry + squaredBelow), entry)),
          head(entry - reflected),
          squaredLength(head * head + squaredBelow)
    {
    }

    double Reflected() const { return reflected; }

    /** Reflects another entry of the same row of R, and the column below it. */
    void Apply(const Column& pivots, double& entry, Column& below) const
    {
        const double share = 2.0 * (head * entry + Dot(pivots, below)) / squaredLength;
        entry -= share * head;
        for (std::size_t i = 0; i < below.size(); ++i)
        {
            below[i] -= share * pivots[i];
        }
    }

private:
    double reflected;
    double head; ///< of the vector to reflect at; the rest of it is the column
    double squaredLength;
};

} // namespace

void TriangularFactor::Insert(EquationBlock& block)
{
    for (std::size_t i = 0; i < kUnknowns; ++i)
    {
        const Column& pivots = block.coefficients[i];
        const double squaredBelow = Dot(pivots, pivots);
        if (squaredBelow == 0.0)
        {
            continue;
        }
        Equation& present = rows[i];
        const Reflection reflection(present.coefficients[i], squaredBelow);
        for (std::size_t j = i + 1; j < kUnknowns; ++j)
        {
            reflection.Apply(pivots, present.coefficients[j], block.coefficients[j]);
        }
        reflection.Apply(pivots, present.rightSide, block.rightSide);
        present.coefficients[i] = reflection.Reflected();
    }
}

void TriangularFactor::Insert(const Equation& row)
{
    Equation incoming = row;
    for (std::size_t i = 0; i < kUnknowns; ++i)
    {
        Equation& present = rows[i];
        const double length = std::hypot(present.coefficients[i], incoming.coefficients[i]);
        if (length == 0.0)
        {
            continue;
        }
        const double cosine = present.coefficients[i] / length;
        const double sine = incoming.coefficients[i] / length;
        const auto rotate = [cosine, sine](double& a, double& b)
        {
            const double old = a;
            a = cosine * old + sine * b;
            b = cosine * b - sine * old;
        };
        for (std::size_t j = i; j < kUnknowns; ++j)
        {
            rotate(present.coefficients[j], incoming.coefficients[j]);
        }
        rotate(present.rightSide, incoming.rightSide);
    }
}

double TriangularFactor::Remove(const Equation& row)
{
    // Rᵀ s = row; the squared length of s is the leverage of the row.
    std::array<double, kUnknowns> s = row.coefficients;
    double stays = 1.0;
    for (std::size_t i = 0; i < kUnknowns; ++i)
    {
        for (std::size_t k = 0; k < i; ++k)
        {
            s[i] -= rows[k].coefficients[i] * s[k];
        }
        s[i] /= rows[i].coefficients[i];
        stays -= s[i] * s[i];
    }
    if (!(stays > 0.0))
    {
        return stays;
    }

    const Rotations rotations = RotationsOf(s, std::sqrt(stays));
    for (std::size_t j = 0; j < kUnknowns; ++j)
    {
        double removed = 0.0;
        for (std::size_t i = j + 1; i-- > 0;)
        {
            double& entry = rows[i].coefficients[j];
            const double next = rotations.cosine[i] * removed + rotations.sine[i] * entry;
            entry = rotations.cosine[i] * entry - rotations.sine[i] * removed;
            removed = next;
        }
    }
    double removed = row.rightSide;
    for (std::size_t i = 0; i < kUnknowns; ++i)
    {
        double& entry = rows[i].rightSide;
        entry = (entry - rotations.sine[i] * removed) / rotations.cosine[i];
        removed = rotations.cosine[i] * removed - rotations.sine[i] * entry;
    }
    return stays;
}

} // namespace Zvl
