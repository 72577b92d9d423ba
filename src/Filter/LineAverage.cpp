#include "Filter/LineFilters.h"
#include "Filter/LineWindow.h"

namespace Zvl
{

namespace
{

/** The running sum and count of the valid cells in a window. */
class RunningMean
{
public:
    void Add(std::int16_t cell)
    {
        if (cell != kMissingHeight)
        {
            sum += cell;
            ++count;
        }
    }

    void Remove(std::int16_t cell)
    {
        if (cell != kMissingHeight)
        {
            sum -= cell;
            --count;
        }
    }

    /** A double holds both operands, and no quotient of such integers lies so close below the next integer that it
     *  would be rounded up to it. Division of doubles is the faster one. */
    std::int16_t Value() const
    {
        return count < 1 ? kMissingHeight
                         : static_cast<std::int16_t>(static_cast<double>(sum) / static_cast<double>(count));
    }

private:
    std::int64_t sum = 0;
    std::int64_t count = 0;
};

} // namespace

void AverageLine(const HeightLine& line, std::size_t window)
{
    RunningMean mean;
    SlideWindow(line, window, mean);
}

} // namespace Zvl
