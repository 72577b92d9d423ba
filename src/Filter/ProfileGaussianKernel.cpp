#include "Filter/ProfileGaussianKernel.h"

#include "Common/Check.h"
#include "Common/Rounding.h"

#include <cmath>
#include <numeric>

namespace Zvl
{

GaussianKernel::GaussianKernel(std::size_t size, double sigma, const std::int16_t* begin, const std::int16_t* end)
    : begin(begin), end(end), reach(std::min((size - 1) / 2, static_cast<std::size_t>(end - begin)))
{
    const double span = static_cast<double>(size - 1) * 0.5;
    Compute(size, sigma <= 0.0 ? 0.3 * (span - 1.0) + 0.8 : sigma);
}

/** The sum runs over all weights from the left, also over those that are not kept. Far from the centre they are 0,
 *  which spares long windows most of the way. */
void GaussianKernel::Compute(std::size_t size, double sigma)
{
    const double denominator = 2.0 * (sigma * sigma);
    const auto weight = [&](std::size_t distance)
    {
        const auto d = static_cast<double>(distance);
        return std::exp(-(d * d) / denominator);
    };
    std::vector<double> side(reach + 1);
    for (std::size_t distance = 0; distance <= reach; ++distance)
    {
        side[distance] = weight(distance);
    }
    const auto weightAt = [&](std::size_t distance) { return distance <= reach ? side[distance] : weight(distance); };

    constexpr double kVanishing = 746.0; // exp(-746) is 0
    const std::size_t centre = (size - 1) / 2;
    const double bound = std::sqrt(2.0 * kVanishing) * sigma + 2.0;
    const std::size_t outermost = bound < static_cast<double>(centre) ? static_cast<std::size_t>(bound) : centre;
    double sum = 0.0;
    for (std::size_t distance = outermost; distance > 0; --distance)
    {
        sum += weightAt(distance);
    }
    for (std::size_t distance = 0; distance <= outermost; ++distance)
    {
        sum += weightAt(distance);
    }

    kernel.assign(side.rbegin(), side.rend());
    kernel.insert(kernel.end(), side.begin() + 1, side.end());
    DivideBySum(kernel, sum);
    weights.resize(kernel.size());
}

std::ptrdiff_t GaussianKernel::FirstCell(std::size_t index) const
{
    return static_cast<std::ptrdiff_t>(index) - 1 - static_cast<std::ptrdiff_t>(reach);
}

bool GaussianKernel::IsNumber() const
{
    return !std::isnan(kernel[reach]);
}

std::int16_t GaussianKernel::Apply(std::size_t index)
{
    const std::ptrdiff_t first = FirstCell(index);
    const std::ptrdiff_t size = end - begin;
    const auto cellAt = [&](std::size_t tap)
    {
        const std::ptrdiff_t cell = first + static_cast<std::ptrdiff_t>(tap);
        return cell >= 0 && cell < size ? begin[cell] : kMissingHeight;
    };
    bool complete = true;
    bool anyWeight = false;
    for (std::size_t tap = 0; tap < kernel.size(); ++tap)
    {
        const bool present = cellAt(tap) != kMissingHeight;
        weights[tap] = present ? kernel[tap] : 0.0;
        complete = complete && present;
        anyWeight = anyWeight || weights[tap] != 0.0;
    }
    if (!anyWeight)
    {
        return kMissingHeight;
    }
    if (!complete)
    {
        Normalize(weights);
    }
    double sum = 0.0;
    for (std::size_t tap = 0; tap < kernel.size(); ++tap)
    {
        sum += cellAt(tap) * weights[tap];
    }
    return static_cast<std::int16_t>(TruncateToInt(RoundHalfAway(sum)));
}

void GaussianKernel::Normalize(std::vector<double>& values)
{
    DivideBySum(values, std::accumulate(values.begin(), values.end(), 0.0));
}

void GaussianKernel::DivideBySum(std::vector<double>& values, double sum)
{
    if (sum <= 0.0)
    {
        ZVL_THROW("Zvl::GaussianKernel::Normalize", STATUS_ABORTED);
    }
    for (double& value : values)
    {
        value /= sum;
    }
}

} // namespace Zvl
