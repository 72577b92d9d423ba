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

} // namespace

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
