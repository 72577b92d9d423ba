#include "support/Lattice.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>

namespace Examples
{
namespace
{

/** The number rounded to the few digits that a sensor's steps are set to. */
double Shortened(double number)
{
    std::array<char, 32> text{};
    const char* end =
        std::to_chars(text.data(), text.data() + text.size(), number, std::chars_format::scientific, 5).ptr;
    double shortened = number;
    std::from_chars(text.data(), end, shortened);
    return shortened;
}

/** Largest distance of the numbers from a lattice. */
double Deviation(const Lattice& lattice, const std::vector<double>& values)
{
    double largest = 0.0;
    for (const double value : values)
    {
        const double place = (value - lattice.first) / lattice.pitch;
        largest = std::max(largest, std::abs(place - std::round(place)) * lattice.pitch);
    }
    return largest;
}

/** The lattice whose pitch is the smallest gap above @p noise between neighbours; each gap is a whole number of them, so
 *  that no error adds up along the way. */
std::optional<Lattice> LatticeAbove(double noise, const std::vector<double>& sorted, std::size_t most)
{
    double smallest = sorted.back() - sorted.front();
    for (std::size_t index = 1; index < sorted.size(); ++index)
    {
        const double gap = sorted[index] - sorted[index - 1];
        smallest = gap > noise ? std::min(smallest, gap) : smallest;
    }
    double steps = 0.0;
    for (std::size_t index = 1; index < sorted.size(); ++index)
    {
        const double gap = sorted[index] - sorted[index - 1];
        steps += gap > noise ? std::round(gap / smallest) : 0.0;
    }
    if (!(steps >= 1.0 && steps < static_cast<double>(most)))
    {
        return std::nullopt;
    }
    return Lattice{sorted.front(), (sorted.back() - sorted.front()) / steps, static_cast<std::size_t>(steps) + 1};
}

/** The lattice with a pitch of few digits, where that does not lie farther from the numbers but by their rounding. */
Lattice WithShortPitch(const Lattice& lattice, const std::vector<double>& values)
{
    const double rounding = 1e-12 * std::max(std::abs(values.front()), std::abs(values.back()));
    Lattice shorter = lattice;
    shorter.pitch = Shortened(lattice.pitch);
    return Deviation(shorter, values) <= 1.5 * Deviation(lattice, values) + rounding ? shorter : lattice;
}

} // namespace

std::size_t Lattice::IndexOf(double value) const
{
    const double index = std::round((value - first) / pitch);
    return static_cast<std::size_t>(std::clamp(index, 0.0, static_cast<double>(count - 1)));
}

std::optional<Lattice> FindLattice(std::vector<double> values, std::size_t most,
                                   const std::function<bool(double pitch, double deviation)>& isGood)
{
    std::sort(values.begin(), values.end());
    values.erase(std::unique(values.begin(), values.end()), values.end());
    double widest = 0.0;
    for (std::size_t index = 1; index < values.size(); ++index)
    {
        widest = std::max(widest, values[index] - values[index - 1]);
    }
    if (!(widest > 0.0 && std::isfinite(values.back() - values.front())))
    {
        return std::nullopt;
    }
    // Gaps of noise are much smaller than those of the lattice, of which the widest gap holds a few.
    for (const double share : {0.3, 0.03, 3e-3, 3e-4, 3e-5, 3e-6})
    {
        std::optional<Lattice> lattice = LatticeAbove(share * widest, values, most);
        if (!lattice)
        {
            continue;
        }
        if (isGood(lattice->pitch, Deviation(*lattice, values)))
        {
            return WithShortPitch(*lattice, values);
        }
    }
    return std::nullopt;
}

} // namespace Examples
