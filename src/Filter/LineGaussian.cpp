#include "Filter/LineFilters.h"
#include "Filter/LineWeightedSums.h"
#include "Filter/ProfileGaussianKernel.h"

#include <array>
#include <cmath>

namespace Zvl
{

namespace
{

/** Results that are computed together. */
constexpr std::size_t kBlock = 256;

/** Smooths a line block by block. Where a window has gaps, its definition divides every weight by their sum; the
 *  quotient of two plain sums is the same but for rounding errors, which have a bound. A result is taken from the
 *  quotient when no error within the bound can change its last digit, and otherwise computed as defined. Where a window
 *  has no gap, its weights sum to 1 but for rounding errors, and the same holds. */
class BlockSmoother
{
public:
    BlockSmoother(const HeightLine& line, GaussianKernel& kernel)
        : line(line),
          kernel(kernel),
          tapCount(kernel.Taps().size()),
          cells(kBlock + tapCount),
          tolerance(ErrorBound(tapCount))
    {
    }

    /** Results @p first to @p first + @p count, at most a block. */
    void Smooth(std::size_t first, std::size_t count)
    {
        const std::ptrdiff_t firstCell = kernel.FirstCell(first);
        const bool isComplete = Load(firstCell, count + tapCount - 1);
        std::int16_t* results = line.result + first;
        std::array<double, kBlock> sums;
        const double* taps = kernel.Taps().data();
        if (isComplete)
        {
            WeightedSums(cells.data(), taps, tapCount, sums.data(), count);
            RoundSums(sums.data(), count, results);
            return;
        }
        std::array<double, kBlock> shares;
        std::array<std::size_t, kBlock> doubtful;
        WeightedSumsOfPresent(cells.data(), taps, tapCount, sums.data(), shares.data(), count);
        const std::size_t doubts =
            RoundQuotients(sums.data(), shares.data(), count, tolerance, results, doubtful.data());
        std::for_each(doubtful.begin(), doubtful.begin() + doubts,
                      [&](std::size_t i) { results[i] = kernel.Apply(first + i); });
    }

private:
    /** Twice the most by which the two ways to a mean can differ: in each, a term carries at most tapCount + 2 rounding
     *  errors of 2^-53, and the heights are below 2^15. Vanishing weights lose nothing more, since neither a product
     *  with a whole number nor a quotient by a sum below 1 is smaller than the weight. */
    static double ErrorBound(std::size_t tapCount)
    {
        return std::ldexp(static_cast<double>(tapCount + 4), -53 + 15 + 2);
    }

    /** Takes @p count cells from @p firstCell on; those outside the line are missing.
     *  @return whether no cell is missing */
    bool Load(std::ptrdiff_t firstCell, std::size_t count)
    {
        const std::size_t before = firstCell < 0 ? std::min(count, static_cast<std::size_t>(-firstCell)) : 0;
        const auto begin = static_cast<std::size_t>(firstCell + static_cast<std::ptrdiff_t>(before));
        const std::size_t inside = begin < line.size ? std::min(count - before, line.size - begin) : 0;
        std::fill_n(cells.data(), before, kMissingHeight);
        std::fill_n(cells.data() + before + inside, count - before - inside, kMissingHeight);
        return ToNumbers(line.source + std::min(begin, line.size), inside, cells.data() + before) && inside == count;
    }

    const HeightLine& line;
    GaussianKernel& kernel;
    std::size_t tapCount;
    std::vector<double> cells; ///< that the block's windows see
    double tolerance;
};

} // namespace

void SmoothLine(const HeightLine& line, std::size_t window, double sigma)
{
    GaussianKernel kernel(window, sigma, line.source, line.source + line.size);
    if (!kernel.IsNumber())
    {
        for (std::size_t i = 0; i < line.size; ++i)
        {
            line.result[i] = kernel.Apply(i);
        }
        return;
    }
    BlockSmoother smoother(line, kernel);
    for (std::size_t first = 0; first < line.size; first += kBlock)
    {
        smoother.Smooth(first, std::min(kBlock, line.size - first));
    }
}

} // namespace Zvl
