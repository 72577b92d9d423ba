#pragma once

/** @file
 *  The value of a cell to repair, by either method. */

#include "ImageProcessing/InpaintNeighbourhood.h"

#include <cmath>

namespace Zvl
{

/** Room for the terms of one run. */
class TermRow
{
public:
    explicit TermRow(int range) : length(WidthOf(range) + kRunSlack), terms(4 * length) {}

    RunTerms Terms()
    {
        float* first = terms.data();
        return {first, first + length, first + 2 * length, first + 3 * length};
    }

private:
    std::size_t length;
    std::vector<float> terms;
};

constexpr float kAlmostNothing = 1e-20F; ///< keeps quotients finite

/** Telea's weighted mean of values, each extended along its gradient. */
class TeleaMethod
{
public:
    /** @param channels of the image. With more than one, the distances are dealt with in double. */
    TeleaMethod(int range, int channels) : disc(range, channels == 1 ? FactorInSingle : FactorInDouble), row(range) {}

    const Disc& Neighbourhood() const { return disc; }

    float ValueAt(const MarchPlanes& planes, const Patch& patch, const PlaneCell& cell)
    {
        const FrontSlope front = SlopeAt(planes, cell);
        const RunTerms terms = row.Terms();
        float weighted = 0.0F;
        float gradX = 0.0F;
        float gradY = 0.0F;
        float weight = kAlmostNothing;
        ForEachRun(planes, disc, patch, cell,
                   [&](const NeighbourRun& run)
                   {
                       TeleaTerms(run, front, terms);
                       for (std::size_t k = 0; k < run.count; ++k)
                       {
                           weighted += terms.weighted[k];
                           gradX -= terms.gradX[k];
                           gradY -= terms.gradY[k];
                           weight += terms.weight[k];
                       }
                   });
        return weighted / weight + (gradX + gradY) / (std::sqrt(gradX * gradX + gradY * gradY) + kAlmostNothing) + 0.5F;
    }

private:
    static float FactorInSingle(float squared) { return 1.0F / (squared * std::sqrt(squared)); }

    static float FactorInDouble(float squared)
    {
        const double distance = squared;
        return static_cast<float>(1.0 / (distance * std::sqrt(distance)));
    }

    /** The gradient of the time, from the neighbours that the front has passed. */
    static FrontSlope SlopeAt(const MarchPlanes& planes, const PlaneCell& cell)
    {
        const auto slope = [&](const PlaneCell& before, const PlaneCell& after)
        {
            const bool knowsBefore = planes.f(before.i, before.j) != CELL_HOLE;
            const bool knowsAfter = planes.f(after.i, after.j) != CELL_HOLE;
            const float here = planes.t(cell.i, cell.j);
            const float to = knowsAfter ? planes.t(after.i, after.j) : here;
            const float from = knowsBefore ? planes.t(before.i, before.j) : here;
            return knowsBefore && knowsAfter ? (to - from) * 0.5F : to - from;
        };
        return {planes.t(cell.i, cell.j), slope({cell.i, cell.j - 1}, {cell.i, cell.j + 1}),
                slope({cell.i - 1, cell.j}, {cell.i + 1, cell.j})};
    }

    Disc disc;
    TermRow row;
};

/** The weighted mean of values along the isophotes, which continue into the hole as the flow of a fluid would. */
class NavierStokesMethod
{
public:
    NavierStokesMethod(int range, int /*channels*/) : disc(range, Factor), row(range) {}

    const Disc& Neighbourhood() const { return disc; }

    double ValueAt(const MarchPlanes& planes, const Patch& patch, const PlaneCell& cell)
    {
        const RunTerms terms = row.Terms();
        float weighted = 0.0F;
        float weight = kAlmostNothing;
        ForEachRun(planes, disc, patch, cell,
                   [&](const NeighbourRun& run)
                   {
                       NavierStokesTerms(run, terms);
                       for (std::size_t k = 0; k < run.count; ++k)
                       {
                           weighted += terms.weighted[k];
                           weight += terms.weight[k];
                       }
                   });
        return static_cast<double>(weighted) / weight;
    }

private:
    static float Factor(float squared) { return 1.0F / (squared * squared + 1.0F); }

    Disc disc;
    TermRow row;
};

} // namespace Zvl
