#include "Common/Check.h"
#include "Filter/LineFilters.h"
#include "Filter/ProfileChain.h"

#include <limits>

namespace Zvl
{

namespace
{

constexpr std::size_t kMostCells = static_cast<std::size_t>(std::numeric_limits<std::ptrdiff_t>::max()) / sizeof(short);
constexpr std::size_t kMostTaps = std::numeric_limits<std::int32_t>::max();

/** @p value within 0 to 100; what is not a number stays. */
double ClampPercentile(double value)
{
    return std::clamp(value, 0.0, 100.0);
}

} // namespace

ProfileFilter::ProfileFilter(const short* in, std::size_t size, short* out, void* alloc)
{
    ZVL_REQUIRE("Zvl::ProfileFilter::ProfileFilter",
                in != nullptr && size != 0 && size <= kMostCells && out != nullptr);
    impl = std::make_unique<Impl>(Impl{in, size, out, alloc, 0, {}});
}

ProfileFilter::~ProfileFilter() = default;

ProfileFilter& ProfileFilter::FillGap(std::size_t maxGap, int maxSlope, int fillHigh)
{
    if (impl->CheckConditions(maxGap, false, false))
    {
        impl->ReadLastResult();
        FillLineGaps(impl->CurrentLine(), static_cast<std::int32_t>(maxGap), maxSlope, fillHigh != 0);
        impl->filtered = 1;
    }
    return *this;
}

ProfileFilter& ProfileFilter::Average(std::size_t window, int keepNulls)
{
    if (impl->CheckConditions(window, true, true))
    {
        AverageLine(impl->CurrentLine(), window);
        impl->Finish(keepNulls);
    }
    return *this;
}

ProfileFilter& ProfileFilter::Median(std::size_t window, int keepNulls)
{
    if (impl->CheckConditions(window, true, true))
    {
        MedianLine(impl->CurrentLine(), window);
        impl->Finish(keepNulls);
    }
    return *this;
}

ProfileFilter& ProfileFilter::Gaussian(std::size_t window, double sigma, int keepNulls)
{
    ZVL_REQUIRE("Zvl::ProfileFilter::Gaussian", window <= kMostTaps);
    if (impl->CheckConditions(window, true, true))
    {
        SmoothLine(impl->CurrentLine(), window, sigma);
        impl->Finish(keepNulls);
    }
    return *this;
}

ProfileFilter& ProfileFilter::Percentile(double low, double high, PercentileType type)
{
    const double lowest = ClampPercentile(low);
    const double highest = ClampPercentile(high);
    if (lowest < highest)
    {
        impl->SetOverlapAside();
        impl->ReadLastResult();
        KeepPercentiles(impl->CurrentLine(), lowest, highest, type);
    }
    else
    {
        std::fill_n(impl->out, impl->size, kMissingHeight);
    }
    impl->filtered = 1;
    return *this;
}

} // namespace Zvl
