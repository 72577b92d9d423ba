#include "Common/Rounding.h"
#include "Filter/LineFilters.h"

#include <vector>

namespace Zvl
{

namespace
{

/** A band of heights, both ends included; at first it holds no height. */
struct Band
{
    std::int16_t lower = kMissingHeight;
    std::int16_t upper = kMissingHeight;
};

std::int16_t RoundToHeight(double value)
{
    return static_cast<std::int16_t>(TruncateToInt(RoundHalfAway(value)));
}

/** The rank of a percentile among @p count cells. */
std::ptrdiff_t RankOf(double percentile, std::size_t count)
{
    return static_cast<std::ptrdiff_t>(RoundHalfAway(static_cast<double>(count - 1) * percentile / 100));
}

Band BandOfRanks(const HeightLine& line, double low, double high)
{
    std::vector<std::int16_t> validVec;
    validVec.reserve(line.size);
    std::copy_if(line.source, line.source + line.size, std::back_inserter(validVec),
                 [](std::int16_t cell) { return cell != kMissingHeight; });
    if (validVec.empty())
    {
        return {};
    }
    const auto lower = validVec.begin() + RankOf(low, validVec.size());
    const auto upper = validVec.begin() + RankOf(high, validVec.size());
    std::nth_element(validVec.begin(), lower, validVec.end());
    const std::int16_t lowest = *lower;
    // The cells of higher rank now stand behind it.
    std::nth_element(lower, upper, validVec.end());
    return {lowest, *upper};
}

Band BandOfRange(const HeightLine& line, double low, double high)
{
    const HeightSpan span = SpanOf(line.source, line.size);
    if (span.lowest >= span.highest)
    {
        return {};
    }
    const int range = span.highest - span.lowest;
    return {RoundToHeight(span.lowest + range * low / 100), RoundToHeight(span.highest - range * (100 - high) / 100)};
}

Band BandOf(const HeightLine& line, double low, double high, ProfileFilter::PercentileType type)
{
    switch (type)
    {
    case ProfileFilter::Rank:
        return BandOfRanks(line, low, high);
    case ProfileFilter::Range:
        return BandOfRange(line, low, high);
    default:
        return {};
    }
}

} // namespace

void KeepPercentiles(const HeightLine& line, double low, double high, ProfileFilter::PercentileType type)
{
    const Band band = BandOf(line, low, high, type);
    if (band.lower == kMissingHeight || band.upper == kMissingHeight)
    {
        std::fill_n(line.result, line.size, kMissingHeight);
        return;
    }
    for (std::size_t i = 0; i < line.size; ++i)
    {
        // A missing cell lies below every lower limit.
        const std::int16_t cell = line.source[i];
        line.result[i] = cell < band.lower || cell > band.upper ? kMissingHeight : cell;
    }
}

} // namespace Zvl
