#pragma once

/** @file
 *  The search for the circle with the least trimmed sum of squared radial errors. */

#include <ZdkVisionLib/Common/Common.h>

#include <limits>
#include <vector>

namespace Zvl
{

struct TrimmedCircle
{
    qPoint64f center{GetNull<double>(), GetNull<double>()};
    double radius = GetNull<double>();
};

/** Tries circles and keeps the best one.
 *
 *  A trial draws three points, takes the points nearest to their circle, fits a circle to these, and sums the squared
 *  errors of the points nearest to that one. Among equal errors the lowest index counts as nearest. */
class CircleTrimmedSearch
{
public:
    /** @param kept points that count as nearest, from 1 to @p inputCount. @param inputCount at least 4
     *  @param weighted weighs errors down the larger they are, as measured by their median */
    CircleTrimmedSearch(const qPoint64f* inputPoints, std::size_t inputCount, std::size_t kept, bool weighted);

    /** Makes one trial with points from the C runtime's generator. A trial without a circle changes nothing. */
    void Try();

    /** True when a trial gave a circle. */
    bool HasBest() const { return best < std::numeric_limits<double>::max(); }

    const TrimmedCircle& Best() const { return bestCircle; }

    /** Sets the flags to 0 for the points nearest to the best circle, one more than count as such in a trial, and to 1
     *  for all others. */
    void FlagFar(std::vector<int>& outliers);

private:
    void MeasureFrom(const TrimmedCircle& circle);
    double ErrorAt(std::size_t position);
    double FindNearest(std::size_t number);
    bool SurelyNoBetter() const;
    double Score() const;
    double WeightedScore(double medianError) const;

    const qPoint64f* points;
    std::size_t count;
    std::size_t h;
    bool useWeights;
    std::vector<double> x;
    std::vector<double> y;
    std::vector<double> errors; ///< squared radial errors from the circle last measured from
    std::vector<double> ordered;
    std::vector<std::size_t> nearest; ///< indices, with room for one more than there are points
    std::size_t nearestCount = 0;
    std::vector<qPoint64f> hSubset;

    double best = std::numeric_limits<double>::max();
    double bestLimit = std::numeric_limits<double>::infinity(); ///< the largest error in the best score
    TrimmedCircle bestCircle;
};

} // namespace Zvl
