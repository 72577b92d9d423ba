#include "ImageProcessing/InpaintFront.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace Zvl
{

namespace
{

/** The solution of (T - a)^2 + (T - b)^2 = 1 for two neighbours at a right angle, or a step of one from the earlier. */
double Solve(double a, double b)
{
    const double difference = a - b;
    if (std::abs(difference) >= 1.0)
    {
        return 1.0 + std::min(a, b);
    }
    return (a + b + std::sqrt(2.0 - difference * difference)) * 0.5;
}

/** The earlier time of those of two opposite neighbours that are known; infinite when none is. */
double EarlierKnown(float timeBefore, std::uint8_t stateBefore, float timeAfter, std::uint8_t stateAfter)
{
    constexpr float never = std::numeric_limits<float>::infinity();
    return std::min(stateBefore == CELL_HOLE ? never : timeBefore, stateAfter == CELL_HOLE ? never : timeAfter);
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
    const double across = EarlierKnown(time[-1], state[-1], time[1], state[1]);
    const double down = EarlierKnown(time[-timeStep], state[-stateStep], time[timeStep], state[stateStep]);
    return static_cast<float>(Solve(across, down));
}

void MarchOutwards(cv::Mat_<std::uint8_t>& states, cv::Mat_<float>& t, CvPriorityQueueFloat& queue)
{
    PlaneCell passed{};
    while (queue.Pop(&passed.i, &passed.j))
    {
        states(passed.i, passed.j) = CELL_FLIPPED;
        for (const PlaneCell& cell : NeighboursOf(passed)) // the border is no hole, which ends the march there
        {
            if (states(cell.i, cell.j) == CELL_HOLE)
            {
                const float time = ArrivalAt(states, t, cell);
                t(cell.i, cell.j) = time;
                states(cell.i, cell.j) = CELL_FRONT;
                queue.Push(cell.i, cell.j, time); // there is room for all holes
            }
        }
    }
}

void NegateFlipped(const cv::Mat_<std::uint8_t>& states, cv::Mat_<float>& t)
{
    for (int i = 0; i < states.rows; ++i)
    {
        const std::uint8_t* state = states[i];
        float* time = t[i];
        for (int j = 0; j < states.cols; ++j)
        {
            time[j] = state[j] == CELL_FLIPPED ? -time[j] : time[j];
        }
    }
}

} // namespace Zvl
