#pragma once

/** @file
 *  Circle fits with published results. */

#include <ZdkVisionLib/platform/qApi.h>

#include <vector>

namespace CertifiedData
{

struct CircleSet
{
    std::vector<qPoint64f> points;
    qPoint64f center; ///< of the circle with the least sum of squared distances from the points
    double radius;
};

/** Source: W. Gander, G. H. Golub and R. Strebel, Least-squares fitting of circles and ellipses, BIT Numerical
 *  Mathematics 34, 1994. */
inline CircleSet Gander()
{
    return {{{1.0, 7.0}, {2.0, 6.0}, {5.0, 8.0}, {7.0, 7.0}, {9.0, 5.0}, {3.0, 7.0}}, {4.7398, 2.9835}, 4.7142};
}

} // namespace CertifiedData
