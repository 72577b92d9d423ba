#pragma once

/** @file
 *  Gap filling in its plainest form, cell by cell, and a short way to call it. */

#include <ZdkVisionLib/Filter/SurfaceFillGap.h>

#include "Filter/SurfaceFilterSupport.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

namespace TestSupport
{

using Heights = std::vector<std::int16_t>;
using Intensities = std::vector<std::uint8_t>;

/** Heights and intensities of one map; no intensities when there is no such layer. */
struct Layers
{
    Heights heights;
    Intensities intensities;

    bool operator==(const Layers& other) const { return heights == other.heights && intensities == other.intensities; }
};

/** The filled map. Expects its layers to be as large as the given ones, which must not have changed. */
inline Layers Filled(const Zvl::SurfaceFillGapParams& params, const HeightMap& map, const Intensities& intensities = {})
{
    const bool hasIntensities = !intensities.empty();
    const Zo::Object<void*> surface = ArrayOf(map);
    const Zo::Object<void*> second =
        hasIntensities ? MakeArray(map.rows, map.columns, intensities) : Zo::Object<void*>();
    Zo::Object<void*> filled;
    Zo::Object<void*> filledSecond = MakeFilled<std::uint8_t>(1, 1, 1);
    Zvl::SurfaceFillGapXY(params, surface, second, filled, filledSecond, nullptr);
    EXPECT_EQ(CellsIn<std::int16_t>(surface), map.cells);
    EXPECT_EQ(qArray2_Length(filled, 0), map.rows);
    EXPECT_EQ(qArray2_Length(filled, 1), map.columns);
    if (!hasIntensities)
    {
        EXPECT_EQ(filledSecond.Get(), nullptr);
        return {CellsIn<std::int16_t>(filled), {}};
    }
    EXPECT_EQ(CellsIn<std::uint8_t>(second), intensities);
    EXPECT_EQ(qArray2_Length(filledSecond, 0), map.rows);
    EXPECT_EQ(qArray2_Length(filledSecond, 1), map.columns);
    return {CellsIn<std::int16_t>(filled), CellsIn<std::uint8_t>(filledSecond)};
}

/** Gap filling as one loop over all cells, with every limit in whole cells and counts. */
class PlainGapFiller
{
public:
    PlainGapFiller(const Zvl::SurfaceFillGapParams& params, const HeightMap& map, const Intensities& intensities)
        : map(map),
          // Without intensities any will do: heights do not depend on them.
          intensities(intensities.empty() ? Intensities(map.cells.size()) : intensities),
          filled{map.cells, this->intensities},
          gapX(Gap(params.maxGapX, params.resolutionX)),
          gapY(Gap(params.maxGapY, params.resolutionY)),
          slopeX(Slope(params.maxSlopeX, params.resolutionX, params.resolutionZ)),
          slopeY(Slope(params.maxSlopeY, params.resolutionY, params.resolutionZ)),
          weightX(Rounded(params.resolutionX * 1000.0)),
          weightY(Rounded(params.resolutionY * 1000.0)),
          fillHigh(params.fillHigh != 0)
    {
        FillMap();
        if (intensities.empty())
        {
            filled.intensities.clear();
        }
    }

    const Layers& Result() const { return filled; }

private:
    struct Candidate
    {
        std::int64_t height;
        std::int64_t intensity;
        std::int64_t allowance;
        std::int64_t weight;
    };

    static std::int64_t Rounded(double value)
    {
        return static_cast<std::int64_t>(value > 0.0 ? value + 0.5 : value - 0.5);
    }

    static std::int64_t Gap(double limit, double resolution)
    {
        return limit <= 0.0 ? 0 : static_cast<std::int64_t>(limit / resolution);
    }

    static std::int64_t Slope(double degrees, double resolution, double resolutionZ)
    {
        const double slope = resolution * std::tan(degrees * 3.141592653589793 / 180.0) / resolutionZ;
        return slope < 32767.0 ? Rounded(slope) : 32767;
    }

    void FillMap()
    {
        if (gapX != 0 && gapY != 0)
        {
            FillBoth();
            return;
        }
        for (std::size_t row = 0; gapX != 0 && row < map.rows; ++row)
        {
            FillLine(row * map.columns, 1, map.columns, gapX, slopeX);
        }
        for (std::size_t column = 0; gapY != 0 && column < map.columns; ++column)
        {
            FillLine(column, map.columns, map.rows, gapY, slopeY);
        }
    }

    void FillLine(std::size_t first, std::size_t stride, std::size_t length, std::int64_t gap, std::int64_t slope)
    {
        std::int64_t run = gap + 1;
        for (std::size_t i = 0; i < length; ++i)
        {
            const std::size_t cell = first + i * stride;
            if (map.cells[cell] == kMissing)
            {
                ++run;
                continue;
            }
            if (run > 0 && run <= gap)
            {
                CloseRun(cell, stride, run, slope);
            }
            run = 0;
        }
    }

    void CloseRun(std::size_t cell, std::size_t stride, std::int64_t run, std::int64_t slope)
    {
        const std::int64_t span = run + 1;
        const std::size_t left = cell - static_cast<std::size_t>(span) * stride;
        const std::int64_t a = map.cells[left];
        const std::int64_t v = map.cells[cell];
        const std::int64_t leftIntensity = intensities[left];
        const std::int64_t rightIntensity = intensities[cell];
        const bool isGentle = v - a <= slope * span && a - v <= slope * span;
        const bool takesLeft = fillHigh ? a > v : a < v;
        for (std::int64_t step = 1; step < span; ++step)
        {
            const std::size_t between = left + static_cast<std::size_t>(step) * stride;
            const std::int64_t height = isGentle   ? a + (v - a) * step / span
                                        : fillHigh ? std::max(a, v)
                                                   : std::min(a, v);
            const std::int64_t intensity = isGentle ? leftIntensity + (rightIntensity - leftIntensity) * step / span
                                                    : (takesLeft ? leftIntensity : rightIntensity);
            filled.heights[between] = static_cast<std::int16_t>(height);
            filled.intensities[between] = static_cast<std::uint8_t>(intensity);
        }
    }

    void FillBoth()
    {
        const auto rows = static_cast<std::int64_t>(map.rows);
        const auto columns = static_cast<std::int64_t>(map.columns);
        previous.assign(map.columns, -1);
        next.assign(map.columns, -1);
        for (std::int64_t r = 0; r < rows; ++r)
        {
            std::int64_t last = -1;
            for (std::int64_t c = 0; c <= columns; ++c)
            {
                if (c < columns && HeightAt(r, c) == kMissing)
                {
                    FindBelow(r, c);
                    continue;
                }
                if (c < columns)
                {
                    previous[static_cast<std::size_t>(c)] = r;
                    next[static_cast<std::size_t>(c)] = r;
                }
                for (std::int64_t x = last + 1; x < c; ++x)
                {
                    FillCell(r, x, last, c);
                }
                last = c;
            }
        }
    }

    void FindBelow(std::int64_t r, std::int64_t c)
    {
        std::int64_t& below = next[static_cast<std::size_t>(c)];
        if (below < r)
        {
            below = r + 1;
            while (below < static_cast<std::int64_t>(map.rows) && HeightAt(below, c) == kMissing)
            {
                ++below;
            }
        }
    }

    void FillCell(std::int64_t r, std::int64_t x, std::int64_t last, std::int64_t c)
    {
        const auto rows = static_cast<std::int64_t>(map.rows);
        const auto columns = static_cast<std::int64_t>(map.columns);
        const std::int64_t above = previous[static_cast<std::size_t>(x)];
        const std::int64_t below = next[static_cast<std::size_t>(x)];
        const bool isClosedInRow = last >= 0 && c < columns && c - (last + 1) <= gapX;
        const bool isClosedInColumn = above >= 0 && below < rows && below - (above + 1) <= gapY;
        if (!isClosedInRow && !isClosedInColumn)
        {
            return;
        }
        std::vector<Candidate> candidates;
        const auto add = [&](bool exists, std::int64_t row, std::int64_t column, std::int64_t d, bool isInRow)
        {
            if (exists && d <= (isInRow ? gapX : gapY))
            {
                candidates.push_back({HeightAt(row, column), intensities[CellAt(row, column)],
                                      d * (isInRow ? slopeX : slopeY), d * (isInRow ? weightX : weightY)});
            }
        };
        add(last >= 0, r, last, x - last, true);
        add(c < columns, r, c, c - x, true);
        add(above >= 0, above, x, r - above, false);
        add(below < rows, below, x, below - r, false);
        if (!candidates.empty())
        {
            Mix(candidates, CellAt(r, x));
        }
    }

    void Mix(const std::vector<Candidate>& candidates, std::size_t cell)
    {
        Candidate anchor = candidates.front();
        for (const Candidate& candidate : candidates)
        {
            if (fillHigh ? candidate.height > anchor.height : candidate.height < anchor.height)
            {
                anchor = candidate;
            }
        }
        const std::int64_t limit = fillHigh ? anchor.height - anchor.allowance : anchor.height + anchor.allowance;
        std::vector<Candidate> kept;
        std::int64_t total = 0;
        for (const Candidate& candidate : candidates)
        {
            if (fillHigh ? candidate.height >= limit - candidate.allowance
                         : candidate.height <= limit + candidate.allowance)
            {
                kept.push_back(candidate);
                total += candidate.weight;
            }
        }
        if (kept.size() == 1)
        {
            Store(cell, anchor.height, anchor.intensity);
            return;
        }
        std::int64_t factors = 0;
        std::int64_t heights = 0;
        std::int64_t others = 0;
        for (const Candidate& candidate : kept)
        {
            factors += total - candidate.weight;
            heights += (total - candidate.weight) * candidate.height;
            others += (total - candidate.weight) * candidate.intensity;
        }
        Store(cell, std::clamp<std::int64_t>(heights / factors, -32768, 32767),
              std::clamp<std::int64_t>(others / factors, 0, 255));
    }

    void Store(std::size_t cell, std::int64_t height, std::int64_t intensity)
    {
        filled.heights[cell] = static_cast<std::int16_t>(height);
        filled.intensities[cell] = static_cast<std::uint8_t>(intensity);
    }

    std::size_t CellAt(std::int64_t row, std::int64_t column) const
    {
        return static_cast<std::size_t>(row) * map.columns + static_cast<std::size_t>(column);
    }

    std::int64_t HeightAt(std::int64_t row, std::int64_t column) const { return map.cells[CellAt(row, column)]; }

    const HeightMap& map;
    Intensities intensities;
    Layers filled;
    std::int64_t gapX;
    std::int64_t gapY;
    std::int64_t slopeX;
    std::int64_t slopeY;
    std::int64_t weightX;
    std::int64_t weightY;
    bool fillHigh;
    std::vector<std::int64_t> previous; ///< row of the last height of each column so far, or -1
    std::vector<std::int64_t> next;     ///< row of the next height of each column, or the number of rows
};

} // namespace TestSupport
