#include "Fitting/RandomPoints.h"

#include "Common/Check.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace Zvl
{

namespace
{

/** An index below @p count. The share is taken of RAND_MAX, whatever it is: with a fixed divisor, a larger RAND_MAX
 *  would lead out of the points. */
std::size_t RandomIndex(std::size_t count)
{
    const int drawn = std::rand(); // NOLINT(concurrency-mt-unsafe,cert-msc30-c,cert-msc50-cpp): see the header
    const double index = static_cast<double>(drawn) / RAND_MAX * static_cast<double>(count - 1) + 0.5;
    return std::min(static_cast<std::size_t>(index), count - 1);
}

} // namespace

void GetNRandomPoints(const qPoint64f* points, std::size_t count, qPoint64f* selected, std::size_t n)
{
    if (n > count)
    {
        ZVL_THROW("Zvl::GetNRandomPoints", STATUS_BAD_DATA);
    }
    if (n == count)
    {
        std::copy_n(points, count, selected);
        return;
    }
    std::vector<std::size_t> selectedIndices;
    while (selectedIndices.size() < n)
    {
        const std::size_t index = RandomIndex(count);
        if (std::find(selectedIndices.begin(), selectedIndices.end(), index) == selectedIndices.end())
        {
            selectedIndices.push_back(index);
        }
    }
    std::transform(selectedIndices.begin(), selectedIndices.end(), selected,
                   [points](std::size_t index) { return points[index]; });
}

} // namespace Zvl
