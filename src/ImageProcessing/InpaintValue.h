#pragma once

/** @file
 *  The value of a cell to repair, by either method. */

#include "ImageProcessing/InpaintNeighbourhood.h"

#include <cmath>

namespace Zvl
{

/** What the kernels read around @p cell. */
inline Surroundings SurroundingsOf(const MarchPlanes& planes, const Patch& patch, const PlaneCell& cell,
                                   NeighbourRuns& runs)
{
    return {runs.Around(cell, planes.t.size()),
            planes.f[cell.i] + cell.j,
            planes.t[cell.i] + cell.j,
            static_cast<std::ptrdiff_t>(planes.t.step1()),
            patch.Centre(),
            patch.Stride()};
}

constexpr float kAlmostNothing = 1e-20F; ///< keeps quotients finite

/** Telea's weighted mean of values, each extended along its gradient. */
class TeleaMethod
{
public:
    static constexpr bool kTimesSurroundings = true; ///< whether it looks at times outside the holes

    /** @param channels of the image. With more than one, the distances are dealt with in double. */
    TeleaMethod(int range, int channels) : disc(range, channels == 1 ? FactorInSingle : FactorInDouble), runs(disc) {}

    const Disc& Neighbourhood() const { return disc; }

    float ValueAt(const MarchPlanes& planes, const Patch& patch, const PlaneCell& cell)
    {
        NeighbourSums sums = {0.0F, 0.0F, 0.0F, kAlmostNothing};
        SumTelea(SurroundingsOf(planes, patch, cell, runs), SlopeAt(planes, cell), sums);
        const float length = std::sqrt(sums.gradX * sums.gradX + sums.gradY * sums.gradY);
        return sums.weighted / sums.weight + (sums.gradX + sums.gradY) / (length + kAlmostNothing) + 0.5F;
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
    NeighbourRuns runs;
};

/** The weighted mean of values along the isophotes, which continue into the hole as the flow of a fluid would. */
class NavierStokesMethod
{
public:
    static constexpr bool kTimesSurroundings = false;

    NavierStokesMethod(int range, int /*channels*/) : disc(range, Factor), runs(disc) {}

    const Disc& Neighbourhood() const { return disc; }

    double ValueAt(const MarchPlanes& planes, const Patch& patch, const PlaneCell& cell)
    {
        NeighbourSums sums = {0.0F, 0.0F, 0.0F, kAlmostNothing};
        SumNavierStokes(SurroundingsOf(planes, patch, cell, runs), sums);
        return static_cast<double>(sums.weighted) / sums.weight;
    }

private:
    static float Factor(float squared) { return 1.0F / (squared * squared + 1.0F); }

    Disc disc;
    NeighbourRuns runs;
};

} // namespace Zvl
