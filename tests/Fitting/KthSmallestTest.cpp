#include "Fitting/KthSmallest.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <random>
#include <vector>

namespace
{

/** Every rank, or a few of many, beside sorting. */
void ExpectRanks(const std::vector<double>& values)
{
    std::vector<double> sorted = values;
    std::sort(sorted.begin(), sorted.end());
    for (std::size_t k = 0; k < values.size(); k += 1 + values.size() / 50)
    {
        std::vector<double> work = values;
        EXPECT_EQ(Zvl::KthSmallest(work.data(), work.size(), k), sorted[k]) << k << " of " << values.size();
    }
    std::vector<double> work = values;
    EXPECT_EQ(Zvl::KthSmallest(work.data(), work.size(), values.size() - 1), sorted.back());
}

TEST(KthSmallest, RandomValuesAreSelectedByRank)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> value(0.0, 1.0);
    for (std::size_t count = 1; count < 300; ++count)
    {
        std::vector<double> values(count);
        std::generate(values.begin(), values.end(), [&] { return value(random); });
        ExpectRanks(values);
    }
    std::vector<double> many(10000);
    std::generate(many.begin(), many.end(), [&] { return value(random); });
    ExpectRanks(many);
}

TEST(KthSmallest, EqualValuesAndInfinitiesAreSelectedByRank)
{
    std::mt19937_64 random(2);
    const double values[] = {0.0, 1.0, 2.0, std::numeric_limits<double>::infinity()};
    for (std::size_t count = 1; count < 300; count += 7)
    {
        std::vector<double> few(count);
        std::generate(few.begin(), few.end(), [&] { return values[random() % 4]; });
        ExpectRanks(few);
        ExpectRanks(std::vector<double>(count, values[random() % 4]));
    }
}

TEST(KthSmallest, OrderedValuesAreSelectedByRank)
{
    std::vector<double> values(5000);
    for (std::size_t i = 0; i < values.size(); ++i)
    {
        values[i] = static_cast<double>(i);
    }
    ExpectRanks(values);
    std::reverse(values.begin(), values.end());
    ExpectRanks(values);
    // Rising, then falling: half of the places of the pivot hold small values.
    std::sort(values.begin(), values.begin() + 2500);
    ExpectRanks(values);
}

/** The worst for the pivot: in each round, the values where the pivot looks are the smallest that are left. */
std::vector<double> Hostile(std::size_t count)
{
    std::vector<double> values(count);
    std::vector<std::size_t> places(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        places[i] = i;
    }
    double next = 0.0;
    while (places.size() > 32)
    {
        for (std::size_t eighth = 9; eighth-- > 0;)
        {
            const auto place = places.begin() + static_cast<std::ptrdiff_t>((places.size() - 1) / 8 * eighth);
            values[*place] = next++;
            places.erase(place);
        }
    }
    for (const std::size_t place : places)
    {
        values[place] = next++;
    }
    return values;
}

TEST(KthSmallest, HostileValuesAreSelectedByRank)
{
    ExpectRanks(Hostile(5000));
}

} // namespace
