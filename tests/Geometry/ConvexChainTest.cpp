#include "Geometry/ConvexChain.h"

#include "Geometry/PlainBounds.h"
#include "support/FailingAllocator.h"

namespace
{

using namespace PlainBounds;
using TestSupport::ExpectThrow;
using Zvl::AddConvex;

Points ChainOf(const Points& points, int left)
{
    const Zo::Object<void*> chain = MakeChain({});
    for (const qPoint32s& point : points)
    {
        AddConvex(chain, &point, left);
    }
    return PointsIn(chain);
}

Points Mirrored(Points points)
{
    for (qPoint32s& point : points)
    {
        point.x = -point.x;
    }
    return points;
}

/** Both chains at once: the right one is the left one in a mirror. */
void ExpectChain(const Points& points, const Points& expected)
{
    EXPECT_EQ(ChainOf(points, 1), expected);
    EXPECT_EQ(ChainOf(points, 7), expected);
    EXPECT_EQ(ChainOf(Mirrored(points), 0), Mirrored(expected));
}

TEST(AddConvex, TheFirstTwoPointsAlwaysStay)
{
    ExpectChain({{5, 0}}, {{5, 0}});
    ExpectChain({{5, 0}, {9, 1}}, {{5, 0}, {9, 1}});
    ExpectChain({{5, 0}, {5, 0}}, {{5, 0}, {5, 0}});
}

TEST(AddConvex, CollinearPointsAreDropped)
{
    ExpectChain({{2, 0}, {1, 1}, {0, 2}}, {{2, 0}, {0, 2}});
    ExpectChain({{3, 0}, {3, 1}, {3, 2}, {3, 7}}, {{3, 0}, {3, 7}});
}

TEST(AddConvex, APointThatStandsOutStays)
{
    ExpectChain({{2, 0}, {0, 2}, {2, 4}}, {{2, 0}, {0, 2}, {2, 4}});
    ExpectChain({{2, 0}, {0, 2}, {1, 3}, {2, 4}}, {{2, 0}, {0, 2}, {2, 4}});
}

TEST(AddConvex, OnePointMayDropManyEntries)
{
    // (2, 4) lies on the inner side of (0, 2)-(0, 5), where (0, 2) lies on the outer one of (2, 0)-(0, 5).
    ExpectChain({{2, 0}, {0, 2}, {2, 4}, {0, 5}}, {{2, 0}, {0, 2}, {0, 5}});
    ExpectChain({{2, 0}, {0, 2}, {0, 3}, {2, 6}, {-50, 7}}, {{2, 0}, {-50, 7}});
}

TEST(AddConvex, AgreesWithThe32BitLoop)
{
    std::mt19937 random(3);
    for (int round = 0; round < 500; ++round)
    {
        const bool left = round % 2 == 0;
        const int spread = round % 3 == 0 ? 5 : 5000;
        Points points;
        Points expected;
        for (int row = 0; row < 60; ++row)
        {
            points.push_back({static_cast<int>(random() % static_cast<unsigned>(spread)), row});
            AddToChain(expected, points.back(), left);
        }
        ASSERT_EQ(ChainOf(points, left ? 1 : 0), expected) << "round " << round;
    }
}

TEST(AddConvex, LargeCoordinatesDoNotOverflow)
{
    // Products of 5e9, which 32 bits would wrap.
    ExpectChain({{100000, 0}, {0, 50000}, {100000, 100000}}, {{100000, 0}, {0, 50000}, {100000, 100000}});
    ExpectChain({{0, 0}, {100000, 50000}, {0, 100000}}, {{0, 0}, {0, 100000}});
    // Differences of 2^32 - 1, whose products need more than 64 bits.
    constexpr int low = std::numeric_limits<int>::min();
    constexpr int high = std::numeric_limits<int>::max();
    EXPECT_EQ(ChainOf({{high, low}, {low, 0}, {high, high}}, 1), (Points{{high, low}, {low, 0}, {high, high}}));
    EXPECT_EQ(ChainOf({{high, low}, {low, 0}, {high, high}}, 0), (Points{{high, low}, {high, high}}));
    EXPECT_EQ(ChainOf({{low, low}, {0, 0}, {high, high}}, 1), (Points{{low, low}, {high, high}}));
    // The middle of the diagonal is (-0.5, -0.5).
    EXPECT_EQ(ChainOf({{low, low}, {-1, 0}, {high, high}}, 1), (Points{{low, low}, {-1, 0}, {high, high}}));
    EXPECT_EQ(ChainOf({{low, low}, {-1, 0}, {high, high}}, 0), (Points{{low, low}, {high, high}}));
}

TEST(AddConvex, ThePointMayLieInTheChainItself)
{
    const Zo::Object<void*> chain = MakeChain({{2, 0}, {1, 1}});
    AddConvex(chain, static_cast<const qPoint32s*>(qArrayList_At(chain, 1)), 1);
    EXPECT_EQ(PointsIn(chain), (Points{{2, 0}, {1, 1}}));
}

TEST(AddConvex, RefusesWhatIsNoChainOrNoPoint)
{
    constexpr const char* function = "Zvl::AddConvex";
    const qPoint32s point = {1, 2};
    Zo::Object<void*> numbers;
    Zo::Test(qArrayList_Construct(numbers.Slot(), xxq32s_type, 4, nullptr));
    Zo::Object<void*> array;
    Zo::Test(qArray1_Construct(array.Slot(), xxqPoint32s_type, 4, nullptr));
    ExpectThrow(STATUS_BAD_PARAMETER, function, [&] { AddConvex(Zo::Object<void*>(), &point, 1); });
    ExpectThrow(STATUS_BAD_PARAMETER, function, [&] { AddConvex(numbers, &point, 1); });
    ExpectThrow(STATUS_BAD_PARAMETER, function, [&] { AddConvex(array, &point, 1); });
    const Zo::Object<void*> chain = MakeChain({point});
    ExpectThrow(STATUS_BAD_PARAMETER, function, [&] { AddConvex(chain, nullptr, 1); });
    EXPECT_EQ(PointsIn(chain), (Points{point}));
    EXPECT_EQ(qArrayList_Count(numbers), 0U);
}

TEST(AddConvex, ShortageOfMemoryIsThrown)
{
    TestSupport::FailingAllocator allocator;
    const qPoint32s point = {0, 2};
    {
        const Zo::Object<void*> chain = MakeChain({{2, 0}}, allocator.Get());
        allocator.FailAt(1);
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::AddConvex", [&] { AddConvex(chain, &point, 1); });
        EXPECT_EQ(PointsIn(chain), (Points{{2, 0}}));
        EXPECT_EQ(qObject_ShareCount(chain), 1);
        // The repeated call succeeds, and its status is thrown.
        allocator.FailAt(1, TestSupport::Failing::OnlyNth);
        ExpectThrow(STATUS_OK, "Zvl::AddConvex", [&] { AddConvex(chain, &point, 1); });
        EXPECT_EQ(PointsIn(chain), (Points{{2, 0}, {0, 2}}));
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
