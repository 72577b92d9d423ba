#pragma once

/** @file
 *  The median of a changing set of heights. */

#include "Filter/Line.h"

#include <array>
#include <bit>
#include <vector>

namespace Zvl
{

/** A set of integers from 0 to 65535 that finds the nearest member on either side in constant time: a bit for each
 *  integer, and above it, level by level, a bit for each word of 64 that is not 0. */
class BinSet
{
public:
    void Insert(std::size_t bin)
    {
        bins[bin / 64] |= Bit(bin);
        words[bin / 64 / 64] |= Bit(bin / 64);
        top |= Bit(bin / 64 / 64);
    }

    void Erase(std::size_t bin)
    {
        if ((bins[bin / 64] &= ~Bit(bin)) == 0 && (words[bin / 64 / 64] &= ~Bit(bin / 64)) == 0)
        {
            top &= ~Bit(bin / 64 / 64);
        }
    }

    /** The lowest member above @p bin; there must be one. */
    std::size_t Next(std::size_t bin) const { return Nearest<Above, Lowest>(bin); }

    /** The highest member below @p bin; there must be one. */
    std::size_t Previous(std::size_t bin) const { return Nearest<Below, Highest>(bin); }

private:
    static std::uint64_t Bit(std::size_t index) { return std::uint64_t{1} << (index % 64); }
    static std::uint64_t Below(std::size_t index) { return Bit(index) - 1; }
    static std::uint64_t Above(std::size_t index) { return ~(Below(index) | Bit(index)); }
    static std::size_t Lowest(std::uint64_t word) { return static_cast<std::size_t>(std::countr_zero(word)); }
    static std::size_t Highest(std::uint64_t word) { return static_cast<std::size_t>(63 - std::countl_zero(word)); }

    /** The member that @p pick finds first among those that @p beyond lets pass: in the word of @p bin, in the group of
     *  that word, or in another group. */
    template <auto beyond, auto pick>
    std::size_t Nearest(std::size_t bin) const
    {
        std::size_t word = bin / 64;
        if (const std::uint64_t rest = bins[word] & beyond(bin); rest != 0)
        {
            return word * 64 + pick(rest);
        }
        std::size_t group = word / 64;
        std::uint64_t rest = words[group] & beyond(word);
        if (rest == 0)
        {
            group = pick(top & beyond(group));
            rest = words[group];
        }
        word = group * 64 + pick(rest);
        return word * 64 + pick(bins[word]);
    }

    std::array<std::uint64_t, 1024> bins = {};
    std::array<std::uint64_t, 16> words = {};
    std::uint64_t top = 0;
};

/** The median of a multiset of heights within a span, kept up as heights come and go; missing ones do not count. It
 *  follows the lower of the two middle elements: one change of the set moves that by one element at most, which
 *  BinSet finds without a search. */
class RunningMedian
{
public:
    explicit RunningMedian(const HeightSpan& span)
        : lowest(span.lowest), counts(static_cast<std::size_t>(span.highest - span.lowest) + 1)
    {
    }

    void Add(std::int16_t height)
    {
        if (height == kMissingHeight)
        {
            return;
        }
        const std::size_t bin = BinOf(height);
        if (counts[bin]++ == 0)
        {
            heights.Insert(bin);
        }
        if (count++ == 0)
        {
            middle = bin;
        }
        below += bin < middle ? 1U : 0U;
        Follow();
    }

    /** @p height must be in the set. */
    void Remove(std::int16_t height)
    {
        if (height == kMissingHeight)
        {
            return;
        }
        const std::size_t bin = BinOf(height);
        if (--counts[bin] == 0)
        {
            heights.Erase(bin);
        }
        below -= bin < middle ? 1U : 0U;
        if (--count != 0)
        {
            Follow();
        }
    }

    /** The median, the mean of the two middle elements truncated toward zero, or the null of an empty set. */
    std::int16_t Value() const
    {
        if (count == 0)
        {
            return kMissingHeight;
        }
        const bool sharedBin = below + counts[middle] > count / 2;
        const std::size_t upper = sharedBin ? middle : heights.Next(middle);
        return static_cast<std::int16_t>((HeightOf(middle) + HeightOf(upper)) / 2);
    }

private:
    std::size_t BinOf(std::int16_t height) const { return static_cast<std::size_t>(height - lowest); }
    int HeightOf(std::size_t bin) const { return static_cast<int>(bin) + lowest; }

    /** Moves `middle` to the element of rank (count - 1) / 2. */
    void Follow()
    {
        const std::size_t rank = (count - 1) / 2;
        if (below > rank)
        {
            middle = heights.Previous(middle);
            below -= counts[middle];
        }
        else if (below + counts[middle] <= rank)
        {
            below += counts[middle];
            middle = heights.Next(middle);
        }
    }

    int lowest;
    std::vector<std::size_t> counts; ///< of each height from the lowest on
    BinSet heights;                  ///< those in the set
    std::size_t count = 0;           ///< elements
    std::size_t middle = 0;          ///< bin of the lower middle element
    std::size_t below = 0;           ///< elements in lower bins than that
};

} // namespace Zvl
