#include "Common/Rounding.h"
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

/** A weighted sum of heights as a height. The weights sum to 1: no sum is out of range. */
std::int16_t ToHeight(double sum)
{
    return static_cast<std::int16_t>(static_cast<int>(sum > 0.0 ? sum + 0.5 : sum - 0.5));
}

/** Smooths a line block by block. Where a window has gaps, its definition divides every weight by their sum; the
 *  quotient of two plain sums is the same but for rounding errors, which have a bound. A result is taken from the
 *  quotient when no error within the bound can change its last digit, and otherwise computed as defined. */
class BlockSmoother
{
public:
    BlockSmoother(const HeightLine& line, GaussianKernel& kernel)
        : line(line),
          kernel(kernel),
          tapCount(kernel.Taps().size()),
          heights(kBlock + tapCount),
          presence(kBlock + tapCount),
          tolerance(ErrorBound(tapCount))
    {
    }

    /** Results @p first to @p first + @p count, at most a block. */
    void Smooth(std::size_t first, std::size_t count)
    {
        const std::ptrdiff_t firstCell = kernel.FirstCell(first);
        const bool complete = Load(firstCell, count + tapCount - 1);
        std::array<double, kBlock> sums;
        WeightedSums(heights.data(), kernel.Taps().data(), tapCount, sums.data(), count);
        if (complete)
        {
            std::transform(sums.begin(), sums.begin() + count, line.result + first, ToHeight);
            return;
        }
        std::array<double, kBlock> shares;
        WeightedSums(presence.data(), kernel.Taps().data(), tapCount, shares.data(), count);
        std::ptrdiff_t missing =
            std::count(presence.begin(), presence.begin() + static_cast<std::ptrdiff_t>(tapCount), 0.0);
        for (std::size_t i = 0; i < count; ++i)
        {
            line.result[first + i] = missing == 0 ? ToHeight(sums[i]) : FromSums(first + i, sums[i], shares[i]);
            missing -= presence[i] == 0.0 ? 1 : 0;
            missing += presence[i + tapCount] == 0.0 ? 1 : 0;
        }
    }

private:
    /** Twice the most by which the two ways to a mean can differ: in each, a term carries at most tapCount + 2 rounding
     *  errors of 2^-53, and the heights are below 2^15. Vanishing weights lose nothing more, since neither a product
     *  with a whole number nor a quotient by a sum below 1 is smaller than the weight. */
    static double ErrorBound(std::size_t tapCount)
    {
        return std::ldexp(static_cast<double>(tapCount + 4), -53 + 15 + 2);
    }

    /** The result at @p index from the sums of its weighted heights and of their weights. */
    std::int16_t FromSums(std::size_t index, double sum, double share)
    {
        if (share == 0.0)
        {
            return kMissingHeight;
        }
        const double mean = sum / share;
        const double magnitude = std::abs(mean);
        const double toNextDigit = std::abs(magnitude - static_cast<int>(magnitude) - 0.5);
        return toNextDigit > tolerance ? ToHeight(mean) : kernel.Apply(index);
    }

    /** Takes @p count cells from @p firstCell on, which may lie outside the line; what is missing becomes 0.
     *  @return false when cells are missing; only then `presence` is filled as well */
    bool Load(std::ptrdiff_t firstCell, std::size_t count)
    {
        const std::size_t before = firstCell < 0 ? std::min(count, static_cast<std::size_t>(-firstCell)) : 0;
        const auto begin = static_cast<std::size_t>(firstCell + static_cast<std::ptrdiff_t>(before));
        const std::size_t inside = begin < line.size ? std::min(count - before, line.size - begin) : 0;
        const std::size_t behind = count - before - inside;
        const std::int16_t* cells = line.source + std::min(begin, line.size);
        std::int16_t lowest = std::numeric_limits<std::int16_t>::max();
        for (std::size_t i = 0; i < inside; ++i)
        {
            heights[before + i] = cells[i] == kMissingHeight ? 0.0 : cells[i];
            lowest = std::min(lowest, cells[i]);
        }
        if (inside == count && lowest != kMissingHeight)
        {
            return true;
        }
        for (std::size_t i = 0; i < inside; ++i)
        {
            presence[before + i] = cells[i] == kMissingHeight ? 0.0 : 1.0;
        }
        for (std::vector<double>* numbers : {&heights, &presence})
        {
            std::fill_n(numbers->data(), before, 0.0);
            std::fill_n(numbers->data() + before + inside, behind, 0.0);
        }
        return false;
    }

    const HeightLine& line;
    GaussianKernel& kernel;
    std::size_t tapCount;
    std::vector<double> heights;  ///< of the block's cells
    std::vector<double> presence; ///< 1 for each of them that is not missing, else 0
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
