#pragma once

/** @file
 *  The least-squares circle of points that are taken out one by one, the farthest first. */

#include "Fitting/CenteredPoints.h"
#include "Fitting/TriangularFactor.h"

#include <ZdkVisionLib/platform/ZoApi.h>

#include <optional>

namespace Zvl
{

/** Kåsa's equations of a circle in the platform's matrices. */
class CircleSystem
{
public:
    /** @param functionName the function that failures bear the name of */
    CircleSystem(const char* functionName, std::size_t equations);

    void Set(std::size_t index, const Equation& equation);

    /** The least-squares circle; none when its squared radius is negative or at least the largest float.
     *  @throws Zo::Exception with the platform's status when the equations do not determine a circle */
    std::optional<Circle> Solve();

private:
    const char* function;
    Zo::Object<void*> matrix;
    Zo::Object<void*> solution;
    Zo::Object<void*> rightSide;
};

/** Solves for the circle of the kept points and rejects the one farthest from it, in turn. The circles come from the
 *  triangular factor of the equations, from which the rejected rows are taken out. Coordinates of a size far from all
 *  measures have a first circle from the full system, whose solver bears them. */
class CircleRejection
{
public:
    /** @param functionName the function that failures bear the name of
     *  @param count at least 3 */
    CircleRejection(const char* functionName, const qPoint64f* points, std::size_t count);

    /** Fits the circle to the kept points. Failures are those of CircleSystem::Solve().
     *  @return false when there is none, and the last one stands */
    bool Solve();

    /** Rejects the point farthest from the circle, the lowest index among equals. @return its index */
    std::size_t RejectFarthest();

    qPoint64f Center() const;
    double Radius() const { return circle.radius; }
    bool Kept(std::size_t index) const { return centered.Kept(index); }

private:
    /** Takes in the equations of the kept points. */
    void FormFactor();

    const char* function;
    CenteredPoints centered;
    Circle circle{};
    TriangularFactor factor;
    std::optional<CircleSystem> factorSystem; ///< the triangular equations, once there is a factor
    double determinantShare = 1.0;            ///< of the factor when it was formed, how much is left
};

} // namespace Zvl
