/** @file
 *  The line filters beside loops over single cells: on random lines, in every chain of two, and in buffers that overlap
 *  at every distance. */

#include "Filter/ProfileFilterPlain.h"

#include "support/InstructionSets.h"

#include <initializer_list>
#include <limits>

namespace
{

using TestSupport::Heights;
using TestSupport::Missing;
using TestSupport::PlainFilter;
using TestSupport::RandomLine;
using Zvl::ProfileFilter;

constexpr double kInfinity = std::numeric_limits<double>::infinity();
constexpr double kNotANumber = std::numeric_limits<double>::quiet_NaN();
constexpr std::size_t kOperations = 6;

/** One operation with its arguments, for either kind of filter. */
struct Operation
{
    std::size_t kind = 0;
    std::size_t window = 1;
    int flag = 0;
    int slope = 0;
    double first = 0.0;
    double second = 0.0;

    template <typename Filter>
    void ApplyTo(Filter& filter) const
    {
        switch (kind)
        {
        case 0:
            filter.FillGap(window, slope, flag);
            break;
        case 1:
            filter.Average(window | 1U, flag);
            break;
        case 2:
            filter.Median(window | 1U, flag);
            break;
        case 3:
            filter.Gaussian(window | 1U, first, flag);
            break;
        case 4:
            filter.Percentile(first, second, ProfileFilter::Rank);
            break;
        default:
            filter.Percentile(first, second, ProfileFilter::Range);
            break;
        }
    }
};

std::ostream& operator<<(std::ostream& stream, const Operation& operation)
{
    return stream << "{" << operation.kind << ", window " << operation.window << ", flag " << operation.flag
                  << ", slope " << operation.slope << ", " << operation.first << ", " << operation.second << "}";
}

template <typename T>
T OneOf(std::initializer_list<T> values, std::mt19937& random)
{
    return *(values.begin() + std::uniform_int_distribution<std::size_t>(0, values.size() - 1)(random));
}

Operation RandomOperation(std::size_t kind, std::size_t mostWindow, std::mt19937& random)
{
    Operation operation;
    operation.kind = kind;
    operation.window = std::uniform_int_distribution<std::size_t>(0, mostWindow)(random);
    operation.flag = OneOf({0, 1, -1}, random);
    operation.slope = OneOf({0, 1, 50, 5000, -3, 1000000}, random);
    operation.first = OneOf({0.0, 0.3, 1.0, 2.5, 10.0, 33.3, -1.0}, random);
    operation.second = OneOf({100.0, 50.0, 66.6, 90.0, 2.0, 400.0}, random);
    return operation;
}

/** Runs @p operations on the same memory in both ways; @p in and @p out are cells of the memory. */
void ExpectSame(const Heights& memory, std::size_t in, std::size_t out, std::size_t size,
                const std::vector<Operation>& operations)
{
    Heights fast = memory;
    Heights plain = memory;
    ProfileFilter filter(fast.data() + in, size, fast.data() + out, nullptr);
    PlainFilter oracle(plain.data() + in, size, plain.data() + out);
    for (const Operation& operation : operations)
    {
        operation.ApplyTo(filter);
        operation.ApplyTo(oracle);
        ASSERT_EQ(fast, plain) << operation << " of " << operations.size() << ", size " << size << ", from " << in
                               << " to " << out;
    }
}

/** As above, from one buffer to another. */
void ExpectSame(const Heights& line, const std::vector<Operation>& operations)
{
    Heights memory = line;
    memory.resize(2 * line.size(), 77);
    ExpectSame(memory, 0, line.size(), line.size(), operations);
}

TEST(ProfileFilterAgainstPlainLoops, EachOperationOnShortLines)
{
    std::mt19937 random(2001);
    for (int round = 0; round < 3000; ++round)
    {
        const std::size_t size = std::uniform_int_distribution<std::size_t>(1, 60)(random);
        const int spread = OneOf({2, 200, 32767}, random);
        for (const Missing missing : TestSupport::kAllMissing)
        {
            const Heights line = RandomLine(size, spread, missing, random);
            ASSERT_NO_FATAL_FAILURE(
                ExpectSame(line, {RandomOperation(static_cast<std::size_t>(round) % kOperations, 80, random)}));
        }
    }
}

TEST(ProfileFilterAgainstPlainLoops, EachOperationOnLongLines)
{
    std::mt19937 random(2002);
    for (const std::size_t size : {64U, 255U, 256U, 257U, 512U, 1000U, 3001U})
    {
        for (std::size_t kind = 0; kind < kOperations; ++kind)
        {
            for (const Missing missing : TestSupport::kAllMissing)
            {
                const Heights line = RandomLine(size, OneOf({3, 1000, 32767}, random), missing, random);
                ASSERT_NO_FATAL_FAILURE(ExpectSame(line, {RandomOperation(kind, 400, random)}));
            }
        }
    }
}

TEST(ProfileFilterAgainstPlainLoops, EveryChainOfTwoAndThen)
{
    std::mt19937 random(2003);
    for (int round = 0; round < 400; ++round)
    {
        for (std::size_t pair = 0; pair < kOperations * kOperations; ++pair)
        {
            const Missing missing = TestSupport::kAllMissing[static_cast<std::size_t>(round) % 3];
            const Heights line = RandomLine(40, OneOf({10, 32767}, random), missing, random);
            const std::size_t third = std::uniform_int_distribution<std::size_t>(0, kOperations - 1)(random);
            ASSERT_NO_FATAL_FAILURE(
                ExpectSame(line, {RandomOperation(pair / kOperations, 9, random),
                                  RandomOperation(pair % kOperations, 9, random), RandomOperation(third, 9, random)}));
        }
    }
}

TEST(ProfileFilterAgainstPlainLoops, BuffersThatOverlapAtEveryDistance)
{
    constexpr std::size_t kSize = 30;
    std::mt19937 random(2004);
    for (std::size_t out = 0; out <= 2 * kSize + 4; ++out)
    {
        for (int round = 0; round < 60; ++round)
        {
            const Missing missing = TestSupport::kAllMissing[static_cast<std::size_t>(round) % 3];
            const Heights memory = RandomLine(3 * kSize + 4, OneOf({10, 32767}, random), missing, random);
            const std::size_t kind = static_cast<std::size_t>(round) % kOperations;
            ASSERT_NO_FATAL_FAILURE(
                ExpectSame(memory, kSize + 2, out, kSize,
                           {RandomOperation(kind, 21, random), RandomOperation((kind + 1) % kOperations, 21, random)}));
        }
    }
}

/** Long enough that whole stretches and blocks are worked on at once. */
TEST(ProfileFilterAgainstPlainLoops, LongBuffersThatOverlap)
{
    constexpr std::size_t kSize = 700;
    std::mt19937 random(2005);
    for (const std::size_t out :
         {0U, 1U, 699U, 700U, 640U, 636U, 637U, 690U, 701U, 710U, 763U, 764U, 765U, 900U, 1399U, 1400U})
    {
        for (std::size_t kind = 0; kind < kOperations; ++kind)
        {
            for (const int missingEvery : {0, 150, 20})
            {
                Heights memory = RandomLine(3 * kSize, 1000, Missing::Nowhere, random);
                for (std::size_t i = 7; missingEvery != 0 && i < memory.size();
                     i += static_cast<std::size_t>(missingEvery))
                {
                    memory[i] = memory[i + 1] = TestSupport::kMissing;
                }
                Operation operation = RandomOperation(kind, 21, random);
                operation.window += 3;
                ASSERT_NO_FATAL_FAILURE(ExpectSame(memory, kSize, out, kSize, {operation, operation}));
            }
        }
    }
}

TEST(ProfileFilterAgainstPlainLoops, GaussiansOfEverySigma)
{
    std::mt19937 random(2006);
    for (const double sigma : {0.0, -1.0, -kInfinity, kInfinity, kNotANumber, 1e-200, 1e-162, 1e-5, 0.02, 0.052, 0.1,
                               0.4, 1.7, 20.0, 1e9, 1e200, 1e308})
    {
        for (const std::size_t window : {3U, 5U, 7U, 51U, 201U})
        {
            for (const Missing missing : TestSupport::kAllMissing)
            {
                for (const int spread : {1, 5, 32767})
                {
                    Operation operation;
                    operation.kind = 3;
                    operation.window = window;
                    operation.first = sigma;
                    ASSERT_NO_FATAL_FAILURE(ExpectSame(RandomLine(300, spread, missing, random), {operation}));
                }
            }
        }
    }
}

/** Lines of one piece and of several, and windows from the shortest to one that is longer than every line. */
TEST(ProfileFilterAgainstPlainLoops, MeansOfLongLines)
{
    TestSupport::InEachInstructionSet(
        []
        {
            std::mt19937 random(2009);
            for (const std::size_t size : {4095U, 4096U, 4097U, 12345U, 70001U})
            {
                for (const std::size_t window :
                     {3U, 31U, 253U, 255U, 257U, 511U, 513U, 4097U, 20001U, 65535U, 65537U, 140003U})
                {
                    Operation operation;
                    operation.kind = 1;
                    operation.window = window;
                    operation.flag = OneOf({0, 1}, random);
                    const Missing missing = OneOf({Missing::Nowhere, Missing::Sprinkled}, random);
                    ASSERT_NO_FATAL_FAILURE(ExpectSame(RandomLine(size, 32767, missing, random), {operation}));
                }
            }
        });
}

/** Equal weights over an even count of cells: means half way between two heights, where every rounding error would
 *  show. */
TEST(ProfileFilterAgainstPlainLoops, MeansHalfWayBetweenTwoHeights)
{
    std::mt19937 random(2007);
    Operation operation;
    operation.kind = 3;
    operation.first = kInfinity;
    for (int round = 0; round < 300; ++round)
    {
        operation.window = OneOf<std::size_t>({3, 5, 9, 13, 25}, random);
        ASSERT_NO_FATAL_FAILURE(ExpectSame(RandomLine(400, 1, Missing::Sprinkled, random), {operation}));
    }
}

void ExpectSameGaussians(const Heights& line, std::size_t window, double sigma)
{
    Operation operation;
    operation.kind = 3;
    operation.window = window;
    operation.first = sigma;
    ExpectSame(line, {operation});
}

/** @p line, of which the share @p missing is left out, cell by cell. */
Heights WithoutSome(Heights line, double missing, std::mt19937& random)
{
    std::bernoulli_distribution isMissing(missing);
    for (std::int16_t& cell : line)
    {
        cell = isMissing(random) ? TestSupport::kMissing : cell;
    }
    return line;
}

/** From lines without a gap to lines with next to nothing in them. */
TEST(ProfileFilterAgainstPlainLoops, GaussiansOfEveryShareOfMissingCells)
{
    std::mt19937 random(2011);
    for (const std::size_t window : {3U, 5U, 7U, 9U, 23U, 25U, 47U, 51U, 97U, 501U, 2001U})
    {
        for (const double missing : {0.0, 0.002, 0.05, 0.2, 0.5, 0.9, 0.998})
        {
            for (const int spread : {0, 1, 300, 32767})
            {
                const std::size_t size = OneOf<std::size_t>({40, 256, 700, 1100}, random);
                const Heights line = RandomLine(size, spread, Missing::Nowhere, random);
                const double sigma = OneOf({0.0, 0.0, 2.5, 40.0, kInfinity}, random);
                ASSERT_NO_FATAL_FAILURE(ExpectSameGaussians(WithoutSome(line, missing, random), window, sigma));
            }
        }
    }
}

/** Two cells in a line, or two plateaus, that are met with weights from the largest to those that single precision, and
 *  then double precision, cannot hold. */
TEST(ProfileFilterAgainstPlainLoops, GaussiansWhoseWeightsVanish)
{
    std::mt19937 random(2012);
    for (const double sigma : {0.3, 0.9, 1.3, 2.0, 3.5, 6.0, 15.0})
    {
        for (const std::size_t gap : {1U, 2U, 5U, 11U, 19U, 60U, 130U})
        {
            Heights line(420, TestSupport::kMissing);
            line[100] = OneOf<std::int16_t>({-32767, 0, 7}, random);
            line[100 + gap] = OneOf<std::int16_t>({32767, 1, 8, -4000}, random);
            ASSERT_NO_FATAL_FAILURE(ExpectSameGaussians(line, 251, sigma));
            std::fill(line.begin(), line.begin() + 100, line[100]);
            std::fill(line.begin() + 100 + static_cast<std::ptrdiff_t>(gap), line.end(), line[100 + gap]);
            ASSERT_NO_FATAL_FAILURE(ExpectSameGaussians(line, 251, sigma));
        }
    }
}

/** A line of one height, in whose gaps no weight is left, though far away cells still lie in the window. */
TEST(ProfileFilterAgainstPlainLoops, GaussiansInGapsWiderThanTheirWeights)
{
    std::mt19937 random(2015);
    for (const std::size_t gap : {50U, 78U, 90U, 120U})
    {
        for (int round = 0; round < 20; ++round)
        {
            Heights line(1200, 5);
            const std::ptrdiff_t begin = std::uniform_int_distribution<int>(260, 800)(random);
            std::fill_n(line.begin() + begin, gap, TestSupport::kMissing);
            const double sigma = std::uniform_real_distribution<double>(0.7, 1.6)(random);
            ASSERT_NO_FATAL_FAILURE(ExpectSameGaussians(line, 501, sigma));
        }
    }
}

/** Equal weights over two neighbouring heights, about as many of each: means next to half way, or half way. A cell at the
 *  other end of the range makes the numbers that are added up large, and some pairs of a window and a height let their
 *  rounding errors point the same way. */
TEST(ProfileFilterAgainstPlainLoops, GaussiansNextToHalfWayFarFromTheMiddle)
{
    struct Level
    {
        std::size_t window;
        int height;
    };
    std::mt19937 random(2013);
    for (const auto [window, height] :
         {Level{5, 32766}, Level{7, 11513}, Level{9, -32767}, Level{23, 20001}, Level{51, 4096}, Level{51, 32766},
          Level{97, -20001}, Level{255, 8923}, Level{501, -32767}, Level{873, 28681}, Level{983, 32677}})
    {
        for (const double missing : {0.0, 0.01, 0.1, 0.4, 0.8})
        {
            Heights line(1000);
            for (std::size_t i = 0; i < line.size(); ++i)
            {
                line[i] = static_cast<std::int16_t>(height + static_cast<int>(i % 2));
            }
            line = WithoutSome(line, missing, random);
            for (std::size_t i = 10; i < line.size(); i += 2 * window + 300)
            {
                line[i] = static_cast<std::int16_t>(-height);
            }
            ASSERT_NO_FATAL_FAILURE(ExpectSameGaussians(line, window, OneOf({kInfinity, 1e5}, random)));
        }
    }
}

/** The widest range of heights, from one cell to the next. */
TEST(ProfileFilterAgainstPlainLoops, GaussiansOfAlternatingExtremes)
{
    std::mt19937 random(2014);
    for (const std::size_t window : {3U, 9U, 51U, 501U})
    {
        for (const double missing : {0.0, 0.1, 0.7})
        {
            Heights line(900);
            for (std::size_t i = 0; i < line.size(); ++i)
            {
                line[i] = static_cast<std::int16_t>(i % 2 == 0 ? 32767 : -32767);
            }
            for (const double sigma : {0.0, 0.6, 30.0, kInfinity})
            {
                ASSERT_NO_FATAL_FAILURE(ExpectSameGaussians(WithoutSome(line, missing, random), window, sigma));
            }
        }
    }
}

TEST(ProfileFilterAgainstPlainLoops, WindowsWhoseHalfDoesNotFit32Bits)
{
    constexpr std::size_t kSize = 12;
    std::mt19937 random(2008);
    for (const std::size_t window : {(std::size_t{1} << 32U) - 1, (std::size_t{1} << 33U) - 1,
                                     (std::size_t{1} << 33U) + 1, std::numeric_limits<std::size_t>::max()})
    {
        for (std::size_t out = 0; out <= 2 * kSize; ++out)
        {
            for (const std::size_t kind : {1U, 2U})
            {
                const Heights memory = RandomLine(3 * kSize, 1000, Missing::Sprinkled, random);
                Operation operation;
                operation.kind = kind;
                operation.window = window;
                operation.flag = 1;
                ASSERT_NO_FATAL_FAILURE(ExpectSame(memory, kSize, out, kSize, {operation}));
            }
        }
    }
}

} // namespace
