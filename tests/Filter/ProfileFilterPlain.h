#pragma once

/** @file
 *  The line filters in their plainest form, cell by cell, and lines to try them on. */

#include <ZdkVisionLib/Filter/ProfileFilter.h>

#include "support/Surfaces.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
#include <utility>
#include <vector>

namespace TestSupport
{

using Heights = std::vector<std::int16_t>;

/** The chain of line filters as loops that read and write one cell at a time. Their input is a copy: the buffers never
 *  overlap. */
class PlainFilter
{
public:
    PlainFilter(const std::int16_t* in, std::size_t size, std::int16_t* out)
        : source(in, in + size), in(source.data()), size(size), out(out)
    {
    }

    PlainFilter& FillGap(std::size_t maxGap, int maxSlope, int fillHigh)
    {
        if (!Begin(maxGap, false))
        {
            return *this;
        }
        in = filtered ? out : in;
        const auto limit = static_cast<std::int32_t>(maxGap);
        std::int64_t last = -1;
        for (std::size_t cell = 0; cell < size; ++cell)
        {
            out[cell] = in[cell];
            if (in[cell] == kMissing)
            {
                continue;
            }
            const auto i = static_cast<std::int64_t>(cell);
            const std::int64_t gap = i - last;
            if (last >= 0 && gap > 1 && gap <= limit)
            {
                const int rise = in[i] - in[last];
                for (std::int64_t j = last + 1; j < i; ++j)
                {
                    if (rise > maxSlope * gap)
                    {
                        out[j] = fillHigh != 0 ? in[i] : in[last];
                    }
                    else if (rise < -std::int64_t{maxSlope} * gap)
                    {
                        out[j] = fillHigh != 0 ? in[last] : in[i];
                    }
                    else
                    {
                        out[j] = static_cast<std::int16_t>(in[last] + (j - last) * rise / gap);
                    }
                }
            }
            last = i;
        }
        filtered = true;
        return *this;
    }

    PlainFilter& Average(std::size_t window, int keepNulls)
    {
        std::int64_t sum = 0;
        std::int64_t count = 0;
        const auto change = [&](std::int16_t cell, int sign)
        {
            sum += sign * cell;
            count += sign;
        };
        return Slide(window, keepNulls, change,
                     [&] { return count < 1 ? kMissing : static_cast<std::int16_t>(sum / count); });
    }

    PlainFilter& Median(std::size_t window, int keepNulls)
    {
        std::vector<int> descending;
        const auto change = [&](std::int16_t cell, int sign)
        {
            if (sign > 0)
            {
                const auto smaller = [&](int value) { return value < cell; };
                descending.insert(std::find_if(descending.begin(), descending.end(), smaller), cell);
            }
            else
            {
                descending.erase(std::find(descending.begin(), descending.end(), cell));
            }
        };
        const auto median = [&]
        {
            const std::size_t count = descending.size();
            if (count == 0)
            {
                return kMissing;
            }
            const int middle =
                count % 2 != 0 ? descending[(count - 1) / 2] : (descending[count / 2 - 1] + descending[count / 2]) / 2;
            return static_cast<std::int16_t>(middle);
        };
        return Slide(window, keepNulls, change, median);
    }

    PlainFilter& Gaussian(std::size_t window, double sigma, int keepNulls)
    {
        if (!Begin(window, true))
        {
            return *this;
        }
        const double width = sigma <= 0.0 ? 0.3 * (static_cast<double>(window - 1) * 0.5 - 1.0) + 0.8 : sigma;
        const std::size_t centre = (window - 1) / 2;
        std::vector<double> kernel(window);
        for (std::size_t t = 0; t <= centre; ++t)
        {
            const auto distance = static_cast<double>(centre - t);
            kernel[t] = std::exp(-(distance * distance) / (2.0 * (width * width)));
            kernel[2 * centre - t] = kernel[t];
        }
        Normalize(kernel);
        for (std::size_t i = 0; i < size; ++i)
        {
            out[i] = Weigh(kernel, static_cast<std::int64_t>(i) - static_cast<std::int64_t>(window / 2 + 1));
        }
        return End(keepNulls);
    }

    PlainFilter& Percentile(double low, double high, Zvl::ProfileFilter::PercentileType type)
    {
        const double from = std::clamp(low, 0.0, 100.0);
        const double to = std::clamp(high, 0.0, 100.0);
        int lower = kMissing;
        int upper = kMissing;
        if (from < to)
        {
            in = filtered ? out : in;
            Heights sorted(in, in + size);
            sorted.erase(std::remove(sorted.begin(), sorted.end(), kMissing), sorted.end());
            std::sort(sorted.begin(), sorted.end());
            const auto steps = static_cast<double>(sorted.size()) - 1.0;
            if (type == Zvl::ProfileFilter::Rank && !sorted.empty())
            {
                lower = sorted[static_cast<std::size_t>(Round(steps * from / 100))];
                upper = sorted[static_cast<std::size_t>(Round(steps * to / 100))];
            }
            else if (type == Zvl::ProfileFilter::Range && !sorted.empty() && sorted.front() < sorted.back())
            {
                const int range = sorted.back() - sorted.front();
                upper = Round(sorted.back() - range * (100 - to) / 100);
                lower = Round(sorted.front() + range * from / 100);
            }
        }
        for (std::size_t i = 0; i < size; ++i)
        {
            const bool kept =
                lower != kMissing && upper != kMissing && in[i] != kMissing && in[i] >= lower && in[i] <= upper;
            out[i] = kept ? in[i] : kMissing;
        }
        filtered = true;
        return *this;
    }

private:
    /** False when the line is only copied through. */
    bool Begin(std::size_t window, bool mayClone)
    {
        if (window < 2)
        {
            if (!filtered)
            {
                std::copy(source.begin(), source.end(), out);
            }
            return false;
        }
        if (mayClone && filtered)
        {
            clone.assign(out, out + size);
            in = clone.data();
        }
        return true;
    }

    PlainFilter& End(int keepNulls)
    {
        for (std::size_t i = 0; i < size && keepNulls != 0; ++i)
        {
            if (in[i] == kMissing)
            {
                out[i] = kMissing;
            }
        }
        filtered = true;
        return *this;
    }

    /** Calls `change(cell, sign)` for each valid cell that enters (1) or leaves (-1) the window. */
    template <typename Change, typename Value>
    PlainFilter& Slide(std::size_t window, int keepNulls, Change change, Value value)
    {
        if (!Begin(window, true))
        {
            return *this;
        }
        const std::size_t half = window / 2;
        const auto pass = [&](std::size_t index, int sign)
        {
            if (in[index] != kMissing)
            {
                change(in[index], sign);
            }
        };
        for (std::size_t i = 0; i < half + 1 && i < size; ++i)
        {
            pass(i, 1);
        }
        for (std::size_t i = 0; i < size; ++i)
        {
            out[i] = value();
            if (half + 1 < size - i)
            {
                pass(i + half + 1, 1);
            }
            if (i >= half)
            {
                pass(i - half, -1);
            }
        }
        return End(keepNulls);
    }

    static void Normalize(std::vector<double>& values)
    {
        double sum = 0.0;
        for (const double value : values)
        {
            sum += value;
        }
        for (double& value : values)
        {
            value /= sum;
        }
    }

    std::int16_t Weigh(const std::vector<double>& kernel, std::int64_t first) const
    {
        std::vector<double> weights(kernel.size(), 0.0);
        bool complete = true;
        for (std::size_t t = 0; t < kernel.size(); ++t)
        {
            const bool present = CellAt(first, t) != kMissing;
            weights[t] = present ? kernel[t] : 0.0;
            complete = complete && present;
        }
        if (std::all_of(weights.begin(), weights.end(), [](double weight) { return weight == 0.0; }))
        {
            return kMissing;
        }
        if (!complete)
        {
            Normalize(weights);
        }
        double sum = 0.0;
        for (std::size_t t = 0; t < kernel.size(); ++t)
        {
            sum += CellAt(first, t) * weights[t];
        }
        return static_cast<std::int16_t>(Round(sum));
    }

    /** The cell under tap @p tap; missing beyond the ends of the line. */
    std::int16_t CellAt(std::int64_t first, std::size_t tap) const
    {
        const std::int64_t cell = first + static_cast<std::int64_t>(tap);
        return cell >= 0 && cell < static_cast<std::int64_t>(size) ? in[cell] : kMissing;
    }

    /** Half away from zero; 0 for what is not a number. */
    static int Round(double value)
    {
        return std::isnan(value) ? 0 : static_cast<int>(value > 0.0 ? value + 0.5 : value - 0.5);
    }

    Heights source;
    const std::int16_t* in;
    std::size_t size;
    std::int16_t* out;
    bool filtered = false;
    Heights clone;
};

/** Where the missing cells of a random line are. */
enum class Missing
{
    Nowhere,
    Sprinkled,
    Clustered,
    Everywhere
};

constexpr Missing kAllMissing[] = {Missing::Nowhere, Missing::Sprinkled, Missing::Clustered, Missing::Everywhere};

/** Heights from -@p spread to @p spread. */
inline Heights RandomLine(std::size_t size, int spread, Missing missing, std::mt19937& random)
{
    std::uniform_int_distribution<int> height(-spread, spread);
    std::bernoulli_distribution sprinkled(0.15);
    std::bernoulli_distribution turn(0.2);
    bool inCluster = false;
    Heights heights(size);
    for (std::int16_t& cell : heights)
    {
        inCluster = turn(random) ? !inCluster : inCluster;
        const bool isMissing = missing == Missing::Everywhere || (missing == Missing::Sprinkled && sprinkled(random)) ||
                               (missing == Missing::Clustered && inCluster);
        cell = isMissing ? kMissing : static_cast<std::int16_t>(height(random));
    }
    return heights;
}

} // namespace TestSupport
