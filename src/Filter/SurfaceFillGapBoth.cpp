#include "Filter/SurfaceFillGapSteps.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <limits>

namespace Zvl
{

namespace
{

/** For weights whose products with heights outgrow 64 bits. */
__extension__ using Wide = __int128;

/** A height that may take part in a missing cell. */
struct Candidate
{
    std::int32_t height;
    std::int32_t intensity;
    std::int64_t allowance; ///< counts that the slope allows over the distance
    std::int64_t weight;    ///< the distance, weighted
};

struct FilledCell
{
    std::int16_t height;
    std::uint8_t intensity;
};

/** The heights around a missing cell. Which of them is the lowest is anybody's guess, so that no branch asks for it. */
class Candidates
{
public:
    explicit Candidates(bool fillHigh) : sign(fillHigh ? -1 : 1) {}

    bool Any() const { return count > 0; }

    void Add(const Candidate& candidate)
    {
        lowest = std::min(lowest, candidate.height * sign * kMost + static_cast<std::int32_t>(count));
        items[count++] = candidate;
    }

    /** The mean of those that lie close enough to the anchor, each weighted with the distances of the others; the
     *  anchor when these are 0, as for one alone.
     *  @tparam Sum integer that holds the weighted sums */
    template <typename Sum>
    FilledCell Mean() const
    {
        const Candidate& anchor = items[static_cast<std::size_t>(lowest & (kMost - 1))];
        std::array<std::int64_t, kMost> kept = {}; // all bits of those that are
        Sum total = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            kept[i] = -static_cast<std::int64_t>(IsNear(items[i], anchor));
            total += items[i].weight & kept[i];
        }
        Sum factors = 0;
        Sum heights = 0;
        Sum intensities = 0;
        for (std::size_t i = 0; i < count; ++i)
        {
            const Sum factor = (total - items[i].weight) & kept[i];
            factors += factor;
            heights += factor * items[i].height;
            intensities += factor * items[i].intensity;
        }
        if (factors == 0)
        {
            return {static_cast<std::int16_t>(anchor.height), static_cast<std::uint8_t>(anchor.intensity)};
        }
        return {Quotient<std::int16_t>(heights, factors), Quotient<std::uint8_t>(intensities, factors)};
    }

private:
    static constexpr std::int32_t kMost = 4;

    bool IsNear(const Candidate& item, const Candidate& anchor) const
    {
        return (static_cast<std::int64_t>(item.height) - anchor.height) * sign <= anchor.allowance + item.allowance;
    }

    template <typename T, typename Sum>
    static T Quotient(Sum sum, Sum divisor)
    {
        if (sum == 0)
        {
            return 0; // most maps have no intensities
        }
        return static_cast<T>(
            std::clamp<Sum>(sum / divisor, std::numeric_limits<T>::min(), std::numeric_limits<T>::max()));
    }

    std::int32_t sign; ///< turns the highest into the lowest
    std::size_t count = 0;
    std::int32_t lowest =
        std::numeric_limits<std::int32_t>::max(); ///< its height and, below that, its number: the anchor
    std::array<Candidate, kMost> items;
};

/** The walk over the missing cells. Heights above and below are looked up where a gap of a column begins, and kept for
 *  its cells in the rows that follow. */
template <typename Sum>
class CrossFiller
{
public:
    CrossFiller(const GapMap& map, const CrossLimits& limits, std::int64_t* previousRows, std::int64_t* nextRows)
        : map(map),
          limits(limits),
          rows(static_cast<std::int64_t>(map.rows)),
          columns(static_cast<std::int64_t>(map.columns)),
          previousRows(previousRows),
          nextRows(nextRows)
    {
    }

    void Fill()
    {
        bool hasMissing = CopyRow(0);
        for (std::int64_t row = 0; row < rows; ++row)
        {
            const bool nextHasMissing = CopyRow(row + 1); // is in the cache when heights below are looked up
            if (hasMissing)
            {
                FillRow(row);
            }
            hasMissing = nextHasMissing;
        }
    }

private:
    /** False when there is no such row, or when it has no missing cells. */
    bool CopyRow(std::int64_t row) const { return row < rows && map.CopyRow(static_cast<std::size_t>(row)); }

    void FillRow(std::int64_t row)
    {
        ForEachMissingRun(map.heights.in + row * columns, map.columns,
                          [&](std::size_t begin, std::size_t end) {
                              FillRun(row, {static_cast<std::int64_t>(begin) - 1, static_cast<std::int64_t>(end)});
                          });
    }

    /** The heights at both ends of a gap, as columns of its row or rows of its column. */
    struct Ends
    {
        std::int64_t last; ///< before the gap; -1 when there is none
        std::int64_t next; ///< behind it; the length of the row or column when there is none

        bool Enclose(std::int64_t most, std::int64_t length) const
        {
            return last >= 0 && next < length && next - (last + 1) <= most;
        }
    };

    void FillRun(std::int64_t row, const Ends& inRow)
    {
        const bool isShort = inRow.Enclose(limits.x.gap, columns);
        for (std::int64_t column = inRow.last + 1; column < inRow.next; ++column)
        {
            const Ends inColumn = FindColumnEnds(row, column);
            if (isShort || inColumn.Enclose(limits.y.gap, rows))
            {
                FillCell(row, column, inRow, inColumn);
            }
        }
    }

    bool IsMissing(std::int64_t row, std::int64_t column) const
    {
        return map.heights.in[row * columns + column] == GetNull<short>();
    }

    /** The height below counts as none when it is too far to matter: the search looks no further down than a gap may be
     *  long, and goes on from there in the next row. */
    Ends FindColumnEnds(std::int64_t row, std::int64_t column)
    {
        if (row == 0 || !IsMissing(row - 1, column))
        {
            previousRows[column] = row - 1;
            nextRows[column] = row + 1;
        }
        const std::int64_t end = std::min(rows, row + limits.y.gap + 1);
        std::int64_t next = nextRows[column];
        while (next < end && IsMissing(next, column))
        {
            ++next;
        }
        nextRows[column] = next;
        return {previousRows[column], next < end ? next : rows};
    }

    void FillCell(std::int64_t row, std::int64_t column, const Ends& inRow, const Ends& inColumn)
    {
        Candidates candidates(map.fillHigh);
        const auto addFromRow = [&](std::int64_t source, std::int64_t distance)
        {
            if (source >= 0 && source < columns && distance <= limits.x.gap)
            {
                candidates.Add(At(row, source, distance * limits.x.slope, distance * limits.weightX));
            }
        };
        const auto addFromColumn = [&](std::int64_t source, std::int64_t distance)
        {
            if (source >= 0 && source < rows && distance <= limits.y.gap)
            {
                candidates.Add(At(source, column, distance * limits.y.slope, distance * limits.weightY));
            }
        };
        addFromRow(inRow.last, column - inRow.last);
        addFromRow(inRow.next, inRow.next - column);
        addFromColumn(inColumn.last, row - inColumn.last);
        addFromColumn(inColumn.next, inColumn.next - row);
        if (candidates.Any())
        {
            Store(row * columns + column, candidates.Mean<Sum>());
        }
    }

    Candidate At(std::int64_t row, std::int64_t column, std::int64_t allowance, std::int64_t weight) const
    {
        const std::int64_t cell = row * columns + column;
        const std::int32_t intensity = map.intensities.in == nullptr ? 0 : map.intensities.in[cell];
        return {map.heights.in[cell], intensity, allowance, weight};
    }

    void Store(std::int64_t cell, const FilledCell& filled) const
    {
        map.heights.out[cell] = filled.height;
        if (map.intensities.out != nullptr)
        {
            map.intensities.out[cell] = filled.intensity;
        }
    }

    const GapMap& map;
    const CrossLimits& limits;
    std::int64_t rows;
    std::int64_t columns;
    std::int64_t* previousRows; ///< of a missing cell: the row of the height above it, or -1
    std::int64_t* nextRows;     ///< of a missing cell: the rows down to this one are missing
};

/** True when a mean of four heights with weights as large as the limits allow stays within 64 bits. */
bool FitsIn64Bits(const GapMap& map, const CrossLimits& limits)
{
    const auto largest = [](std::int64_t gap, std::size_t cells, std::int64_t weight)
    { return std::min(static_cast<double>(gap), static_cast<double>(cells)) * std::abs(static_cast<double>(weight)); };
    // Weights of 2^43 make factors of 2^45, and four of them times heights of 2^15.
    constexpr double most = 8796093022208.0;
    return largest(limits.x.gap, map.columns, limits.weightX) <= most &&
           largest(limits.y.gap, map.rows, limits.weightY) <= most;
}

} // namespace

void FillGapBoth(const GapMap& map, const CrossLimits& limits, std::int64_t* previousRows, std::int64_t* nextRows)
{
    if (FitsIn64Bits(map, limits))
    {
        CrossFiller<std::int64_t>(map, limits, previousRows, nextRows).Fill();
    }
    else
    {
        CrossFiller<Wide>(map, limits, previousRows, nextRows).Fill();
    }
}

} // namespace Zvl
