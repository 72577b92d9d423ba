#include "Common/Rounding.h"
#include "Filter/LineFilters.h"
#include "Filter/LineWeightedSums.h"
#include "Filter/MissingCells.h"
#include "Filter/ProfileGaussianKernel.h"

#include <array>
#include <cmath>

namespace Zvl
{

namespace
{

/** Results that are computed together. */
constexpr std::size_t kBlock = 256;
static_assert(kBlock % kWindowStep == 0);

/** The weights in single precision. Those that are next to nothing are left out, so that no product of a weight and a
 *  whole number loses digits by being small. */
class SingleWeights
{
public:
    explicit SingleWeights(const std::vector<double>& taps) : weights(kWeightRoom + taps.size() + kWeightRoom)
    {
        constexpr double kNextToNothing = 0x1p-60;
        double sum = 0.0;
        double omitted = 0.0;
        for (std::size_t t = 0; t < taps.size(); ++t)
        {
            const bool isKept = taps[t] >= kNextToNothing;
            weights[kWeightRoom + t] = isKept ? static_cast<float>(taps[t]) : 0.0F;
            (isKept ? sum : omitted) += taps[t];
        }
        total = static_cast<float>(sum);
        leastShare = omitted > 0.0 ? static_cast<float>(std::max(kNextToNothing, std::ldexp(omitted, 25))) : 0.0F;
    }

    const float* Data() const { return weights.data() + kWeightRoom; }

    /** Their sum. */
    float Total() const { return total; }

    /** Beside such a share, the weights that are left out matter no more than half a rounding error. A share of 0 is below
     *  it if there are any. */
    float LeastShare() const { return leastShare; }

private:
    std::vector<float> weights;
    float total;
    float leastShare;
};

/** Smooths a line block by block. The definition divides every weight of a window with gaps by their sum; the quotient
 *  of two plain sums is the same but for rounding errors, which have a bound. Where a window has no gap, its weights sum
 *  to 1 but for rounding errors, and the same holds.
 *
 *  Sums are formed in single precision first. Where an error within their bound could change the result, they are formed
 *  anew in double precision, and where that is not enough either, the result is computed as defined. */
class BlockSmoother
{
public:
    BlockSmoother(const HeightLine& line, GaussianKernel& kernel)
        : line(line),
          kernel(kernel),
          tapCount(kernel.Taps().size()),
          weights(kernel.Taps()),
          distances(kBlock + tapCount),
          present(kBlock + tapCount),
          missingCells(kBlock + tapCount),
          errorInDouble(ErrorInDouble(tapCount))
    {
    }

    /** Results @p first to @p first + @p count, at most a block. */
    void Smooth(std::size_t first, std::size_t count)
    {
        const std::size_t cellCount = count + tapCount - 1;
        const std::int16_t* cells = CellsFrom(kernel.FirstCell(first), cellCount);
        const HeightSpan span = SpanOfCells(cells, cellCount);
        if (span.Empty())
        {
            std::fill_n(line.result + first, count, kMissingHeight);
            return;
        }
        const int base = (span.lowest + span.highest) / 2;
        const std::size_t presentCount = ToDistances(cells, cellCount, base, distances.data(), present.data());
        WeightedSums(distances.data(), weights.Data(), tapCount, sums.data(), count);
        const Tolerance tolerance =
            FormShares(cells, cellCount - presentCount, count, std::max(span.highest - base, base - span.lowest));
        const std::size_t doubts =
            RoundQuotients(sums.data(), shares.data(), count, base, tolerance, heights.data(), doubtful.data());
        for (std::size_t doubt = 0; doubt < doubts && doubtful[doubt] < count; ++doubt)
        {
            heights[doubtful[doubt]] = Exactly(first + doubtful[doubt]);
        }
        std::copy_n(heights.data(), count, line.result + first);
    }

private:
    /** Twice the most by which the two ways to a mean can differ: in each, a term carries at most tapCount + 2 rounding
     *  errors of 2^-53, and the heights are below 2^15. Vanishing weights lose nothing more, since neither a product
     *  with a whole number nor a quotient by a sum below 1 is smaller than the weight. */
    static double ErrorInDouble(std::size_t tapCount)
    {
        return std::ldexp(static_cast<double>(tapCount + 4), -53 + 15 + 2);
    }

    /** @p count cells from @p firstCell on; those outside the line are missing. */
    const std::int16_t* CellsFrom(std::ptrdiff_t firstCell, std::size_t count)
    {
        const std::size_t before = firstCell < 0 ? std::min(count, static_cast<std::size_t>(-firstCell)) : 0;
        const auto begin = static_cast<std::size_t>(firstCell + static_cast<std::ptrdiff_t>(before));
        const std::size_t inside = begin < line.size ? std::min(count - before, line.size - begin) : 0;
        if (inside == count)
        {
            return line.source + begin;
        }
        framed.assign(count, kMissingHeight);
        std::copy_n(line.source + std::min(begin, line.size), inside,
                    framed.begin() + static_cast<std::ptrdiff_t>(before));
        return framed.data();
    }

    /** Adds up the weights of present cells, or takes those of the @p missing ones from the total where these are few.
     *
     *  The bound: let u be 2^-24, R the largest distance from the base, S and s the sum and the share of a window
     *  without rounding errors, T the total. A term of the computed S carries a rounding error of its weight, one of its
     *  product, and those of the additions, which are few for any window since partial sums are added up on their own.
     *  With n errors in all, S is wrong by n u R s at most, since no cell is farther from the base than R, and by
     *  u R s / 2 for the weights that are left out. When s is wrong by e, the quotient is by R e / s. A share that is
     *  added up is wrong by (n + 1/2) u s likewise. One that is taken from the total has an error u T of the total and
     *  u s of the difference, and m + 1 errors in what is taken away, T - s, where m cells are missing: together
     *  (m + 2) u T - m u s. The quotient adds two errors. Twice all that covers products of errors, and the rounding of
     *  the bound.
     *
     *  Products of errors are small when the relative error of a share is: one from the total is in doubt where that could
     *  be above an eighth. For other sums it is below an eighth as long as the bound is below half a height.
     *  @return the bound for this block */
    Tolerance FormShares(const std::int16_t* cells, std::size_t missing, std::size_t count, int radius)
    {
        const std::size_t cellCount = count + tapCount - 1;
        const std::size_t additions = std::min(tapCount, kPartialSum) + (tapCount - 1) / kPartialSum;
        const auto perSum = static_cast<double>(additions + 2);
        const double unit = 2.0 * 0x1p-24 * radius;
        if (!AreFew(missing, cellCount))
        {
            WeightedSums(present.data(), weights.Data(), tapCount, shares.data(), count);
            return {weights.LeastShare(), static_cast<float>(unit * (2.0 * perSum + 3.0) + errorInDouble), 0.0F};
        }
        if (missing > 0)
        {
            ListMissing(cells, cellCount);
        }
        SharesWithoutMissing(missingCells.data(), missing, weights.Data(), tapCount, weights.Total(), shares.data(),
                             count);
        const auto errors = static_cast<double>(std::min(missing, tapCount));
        const double ofTotal = (errors + 2.0) * weights.Total();
        return {static_cast<float>(0x1p-21 * ofTotal) + weights.LeastShare(),
                static_cast<float>(unit * (perSum + 3.0 - errors) + errorInDouble), static_cast<float>(unit * ofTotal)};
    }

    /** Whether that is the shorter way, and few enough terms to be as precise. */
    bool AreFew(std::size_t missing, std::size_t cellCount) const
    {
        return missing == 0 || missing * 4 * (tapCount + 32) + 10 * cellCount < tapCount * cellCount;
    }

    /** Lists the missing ones of @p count cells. */
    void ListMissing(const std::int16_t* cells, std::size_t count)
    {
        std::size_t* next = missingCells.data();
        ForEachMarkWord(cells, count,
                        [&](std::uint64_t word, std::size_t first)
                        { ForEachSetBit(word, first, [&](std::size_t cell) { *next++ = cell; }); });
    }

    std::int16_t Exactly(std::size_t index)
    {
        const std::ptrdiff_t firstCell = kernel.FirstCell(index);
        const std::size_t before = firstCell < 0 ? static_cast<std::size_t>(-firstCell) : 0;
        const auto begin = static_cast<std::size_t>(firstCell + static_cast<std::ptrdiff_t>(before));
        const std::size_t count = std::min(tapCount - before, line.size - begin);
        const WeightedSum whole = SumOfPresent(line.source + begin, kernel.Taps().data() + before, count);
        if (whole.share == 0.0)
        {
            return kMissingHeight;
        }
        const double mean = whole.sum / whole.share;
        const double magnitude = std::abs(mean);
        const bool isDoubtful = std::abs(magnitude - std::trunc(magnitude) - 0.5) <= errorInDouble;
        return isDoubtful ? kernel.Apply(index) : static_cast<std::int16_t>(TruncateToInt(RoundHalfAway(mean)));
    }

    const HeightLine& line;
    GaussianKernel& kernel;
    std::size_t tapCount;
    SingleWeights weights;
    std::vector<std::int16_t> framed; ///< the cells of a block that reaches beyond the line
    std::vector<float> distances;     ///< of the cells that the block's windows see from the base
    std::vector<float> present;
    std::vector<std::size_t> missingCells; ///< places in the block, in order, where they are few
    std::array<float, kBlock> sums;
    std::array<float, kBlock> shares;
    std::array<std::int16_t, kBlock> heights;
    std::array<std::size_t, kBlock> doubtful;
    double errorInDouble;
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
