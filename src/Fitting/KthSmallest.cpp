#include "Fitting/KthSmallest.h"

#include <algorithm>

namespace Zvl
{

namespace
{

constexpr std::size_t kFew = 32;
constexpr int kMostRounds = 40; // halving takes 40 for a million million values

double MedianOf(double a, double b, double c)
{
    return std::max(std::min(a, b), std::min(std::max(a, b), c));
}

/** The median of three medians of three, from all over the values. */
double Pivot(const double* values, std::size_t count)
{
    const auto at = [=](std::size_t eighths) { return values[(count - 1) / 8 * eighths]; };
    return MedianOf(MedianOf(at(0), at(3), at(6)), MedianOf(at(1), at(4), at(7)), MedianOf(at(2), at(5), at(8)));
}

/** Keeps the values that @p wanted holds for at the front, in their order. The loop has no branch that could be
 *  predicted wrongly, which is what costs most in selecting.
 *  @return their number */
template <typename Predicate>
std::size_t Keep(double* values, std::size_t count, Predicate wanted)
{
    std::size_t kept = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        const double value = values[i];
        values[kept] = value;
        kept += wanted(value) ? 1 : 0;
    }
    return kept;
}

} // namespace

// C. A. R. Hoare, Algorithm 65: Find, Communications of the ACM 4(7), 1961, with the part that is not wanted dropped. Bad
// pivots, which none but chosen values lead to, leave the rest to the standard library, whose worst case is guarded.
double KthSmallest(double* values, std::size_t count, std::size_t k)
{
    for (int round = 0; round < kMostRounds && count > kFew; ++round)
    {
        const double pivot = Pivot(values, count);
        std::size_t below = 0;
        std::size_t equal = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            below += values[i] < pivot ? 1 : 0;
            equal += values[i] == pivot ? 1 : 0;
        }
        if (k < below)
        {
            count = Keep(values, count, [pivot](double value) { return value < pivot; });
        }
        else if (k < below + equal)
        {
            return pivot;
        }
        else
        {
            count = Keep(values, count, [pivot](double value) { return value > pivot; });
            k -= below + equal;
        }
    }
    std::nth_element(values, values + k, values + count);
    return values[k];
}

} // namespace Zvl
