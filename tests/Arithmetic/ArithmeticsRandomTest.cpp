/** @file
 *  Whole operations on random maps, beside plain loops: every operator and logic, footprints that overlap in every way,
 *  nulls none, few, clustered and everywhere, and the vector instructions of every kind that this machine has. */

#include "Arithmetic/PlainArithmetic.h"
#include "support/InstructionSets.h"

namespace
{

using namespace Zvl;

constexpr ArithmeticOperator kOperators[] = {ArithmeticOperator::Add, ArithmeticOperator::Subtract,
                                             ArithmeticOperator::Average};
constexpr ArithmeticLogic kLogics[] = {ArithmeticLogic::Intersection, ArithmeticLogic::Union};

template <typename T, std::size_t count>
T Pick(const T (&choices)[count], std::mt19937& random)
{
    return choices[random() % count];
}

/** Sets a random rectangle of a surface to missing. */
void ClearCluster(Surface& surface, std::mt19937& random)
{
    const std::size_t rows = qArray2_Length(surface.layers[0], 0);
    const std::size_t columns = qArray2_Length(surface.layers[0], 1);
    const std::size_t firstRow = random() % rows;
    const std::size_t firstColumn = random() % columns;
    for (std::size_t row = firstRow; row < rows; ++row)
    {
        for (std::size_t column = firstColumn; column < columns; ++column)
        {
            Zo::Test(qArray2_SetItem(surface.layers[0], row, column, &TestSupport::kMissing));
        }
    }
}

/** A map of at most 12 by 80 cells, often of one row or column; heights are cut by a power of two. */
Surface RandomMap(std::mt19937& random)
{
    const std::size_t rows = random() % 4 == 0 ? 1 : 1 + random() % 12;
    const std::size_t columns = random() % 4 == 0 ? 1 : 1 + random() % 80;
    Surface map = TestSupport::MakeRandomSurface(rows, columns, Pick({0.0, 0.0, 0.1, 0.6, 1.0}, random), random);
    const int divisor = 1 << (random() % 8);
    auto* heights = static_cast<std::int16_t*>(qArray2_At(map.layers[0], 0, 0));
    for (std::size_t i = 0; i < rows * columns; ++i)
    {
        heights[i] = heights[i] == TestSupport::kMissing ? heights[i] : static_cast<std::int16_t>(heights[i] / divisor);
    }
    if (random() % 3 == 0)
    {
        ClearCluster(map, random);
    }
    if (random() % 3 == 0)
    {
        map.layers.pop_back();
    }
    return map;
}

/** Two maps, of which the second mostly lies over the first or next to it. */
struct Pair
{
    explicit Pair(std::mt19937& random) : surface0(RandomMap(random)), surface1(RandomMap(random))
    {
        const double step = Pick({1.0, 0.25, 0.1, 1.0, -1.0}, random);
        surface0.scale = {step, step * 2.0, Pick({1.0, 0.001, 0.1, 0.0037, -0.5, 1e-9}, random)};
        surface0.offset = {Pick({0.0, 17.3, -1000.7}, random), Pick({0.0, -3.1}, random),
                           Pick({0.0, 12.5, -0.3}, random)};
        surface1.scale = {3.0, 3.0, 3.0}; // not read
        surface1.offset = surface0.offset;
        surface1.offset.x += Distance(random) * surface0.scale.x;
        surface1.offset.y += Distance(random) * surface0.scale.y / 4.0;
        // From 2^30 counts on they are looked at one by one, and from 2^31 on some do not fit.
        surface1.offset.z += Pick({0.0, 0.0, 5.0, -40000.0 * surface0.scale.z, (0x1p30 - 70000.0) * surface0.scale.z,
                                   -0x1p30 * surface0.scale.z, 0x1p31 * surface0.scale.z, 1e9, 1e12},
                                  random);
    }

    static double Distance(std::mt19937& random)
    {
        return random() % 3 == 0 ? 0.0 : std::uniform_real_distribution<double>(-30.0, 30.0)(random);
    }

    Surface surface0;
    Surface surface1;
};

/** Calls `run(result)` and expects what `expected()` gives, or the failure of a grid of that size. */
template <typename Run, typename Expected>
void ExpectSame(bool unites, const Pair& pair, Run run, Expected expected, int& grids)
{
    const PlainArithmetic::Sources in(pair.surface0, pair.surface1);
    const PlainArithmetic::Boundaries boundaries = PlainArithmetic::BoundariesOf(
        unites, pair.surface0.scale, pair.surface0.offset, in.h0, pair.surface1.offset, in.h1);
    Surface result;
    constexpr std::uint64_t most = 100000;
    if (boundaries.rows > most || boundaries.columns > most)
    {
        EXPECT_THROW(run(result), Zo::Exception);
        return;
    }
    ++grids;
    run(result);
    PlainArithmetic::ExpectResult(result, expected());
}

void CompareMaps(unsigned seed, int count)
{
    std::mt19937 random(seed);
    int grids = 0;
    for (int i = 0; i < count && !testing::Test::HasFailure(); ++i)
    {
        SCOPED_TRACE(i);
        Pair pair(random);
        for (const ArithmeticLogic logic : kLogics)
        {
            for (const ArithmeticOperator op : kOperators)
            {
                ExpectSame(
                    logic == ArithmeticLogic::Union, pair,
                    [&](Surface& result) { Arithmetics::Apply(op, logic, pair.surface0, pair.surface1, result); },
                    [&] { return PlainArithmetic::Apply(op, logic, pair.surface0, pair.surface1); }, grids);
            }
        }
        ExpectSame(
            false, pair, [&](Surface& result) { Arithmetics::ApplyMask(pair.surface0, pair.surface1, result); },
            [&] { return PlainArithmetic::ApplyMask(pair.surface0, pair.surface1); }, grids);
    }
    EXPECT_GT(grids, count * 4);
}

TEST(ArithmeticsRandom, MapsAgreeWithPlainLoops)
{
    CompareMaps(1, 4000);
}

TEST(ArithmeticsRandom, MapsAgreeForAllVectorInstructions)
{
    TestSupport::InEachInstructionSet([] { CompareMaps(2, 300); });
}

TEST(ArithmeticsRandom, ALargeMap)
{
    std::mt19937 random(3);
    Surface a = TestSupport::MakeRandomSurface(301, 507, 0.1, random);
    Surface b = TestSupport::MakeRandomSurface(280, 640, 0.1, random);
    a.scale.z = 0.001;
    b.offset = {-33.0, 12.0, 0.25};
    for (const ArithmeticLogic logic : kLogics)
    {
        for (const ArithmeticOperator op : kOperators)
        {
            Surface result;
            Arithmetics::Apply(op, logic, a, b, result);
            PlainArithmetic::ExpectResult(result, PlainArithmetic::Apply(op, logic, a, b));
        }
    }
    Surface masked;
    Arithmetics::ApplyMask(a, b, masked);
    PlainArithmetic::ExpectResult(masked, PlainArithmetic::ApplyMask(a, b));
}

} // namespace
