#include "ImageProcessing/InpaintFront.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Zvl
{

namespace
{

/** The solution of (T - a)^2 + (T - b)^2 = 1 for two neighbours at a right angle, or a step of one from the earlier. That
 *  step is the solution for a later neighbour that is one behind, to the last bit, since sums and differences of times are
 *  exact in double. */
float Solve(float a, float b)
{
    const double earlier = std::min(a, b);
    const double difference = std::min(std::abs(static_cast<double>(a) - b), 1.0);
    const double later = earlier + difference;
    return static_cast<float>((earlier + later + std::sqrt(2.0 - difference * difference)) * 0.5);
}

/** The earlier time of those of two opposite neighbours that are known; infinite when none is. */
float EarlierKnown(float timeBefore, std::uint8_t stateBefore, float timeAfter, std::uint8_t stateAfter)
{
    constexpr float never = std::numeric_limits<float>::infinity();
    return std::min(stateBefore == CELL_HOLE ? never : timeBefore, stateAfter == CELL_HOLE ? never : timeAfter);
}

/** What two holes at a right angle give for the cell between them: a step from #kNever, which no front comes up to that has
 *  not run over a million cells. */
constexpr float kBetweenHoles = kNever + 1.0F;

/** When the front outwards arrives at the cell of @p time, beside one that it has reached. It reaches all within twice the
 *  range, so that the time of other cells, which stands for #kNever, is too late to matter. */
float ArrivalOutside(const float* time, std::ptrdiff_t step)
{
    const float across = std::min(std::abs(time[-1]), std::abs(time[1]));
    const float down = std::min(std::abs(time[-step]), std::abs(time[step]));
    return Solve(across, down);
}

} // namespace

/** The earliest of the solutions for all four pairs of neighbours at a right angle, and of single ones, is that for the
 *  earlier known one along either axis, since a solution grows with both times. That holds to the last bit, too: times
 *  are floats of 0 or above 1/2, the argument of the square root is exact in double, and where two solutions come closest
 *  to each other, for a difference of almost 1, they lie several rounding errors apart. */
float ArrivalAt(const cv::Mat_<std::uint8_t>& f, const cv::Mat_<float>& t, const PlaneCell& cell)
{
    const float* time = t[cell.i] + cell.j;
    const std::uint8_t* state = f[cell.i] + cell.j;
    const auto timeStep = static_cast<std::ptrdiff_t>(t.step1());
    const auto stateStep = static_cast<std::ptrdiff_t>(f.step1());
    const float across = EarlierKnown(time[-1], state[-1], time[1], state[1]);
    const float down = EarlierKnown(time[-timeStep], state[-stateStep], time[timeStep], state[stateStep]);
    const float arrival = Solve(across, down);
    const bool isBetweenHoles = (state[-1] == CELL_HOLE || state[1] == CELL_HOLE) &&
                                (state[-stateStep] == CELL_HOLE || state[stateStep] == CELL_HOLE);
    return arrival > kBetweenHoles && isBetweenHoles ? kBetweenHoles : arrival;
}

void MarchOutwards(cv::Mat_<float>& t, CvPriorityQueueFloat& queue)
{
    const auto step = static_cast<std::ptrdiff_t>(t.step1());
    PlaneCell passed{};
    while (queue.Pop(&passed.i, &passed.j))
    {
        for (const PlaneCell& cell : NeighboursOf(passed)) // the border awaits no front, which ends the march there
        {
            float* time = t[cell.i] + cell.j;
            if (*time == kAwaitsFront)
            {
                const float arrival = ArrivalOutside(time, step);
                *time = -arrival;
                queue.Push(cell.i, cell.j, arrival); // there is room for all that await it
            }
        }
    }
}

} // namespace Zvl
