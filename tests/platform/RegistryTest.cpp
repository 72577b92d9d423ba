#include "platform/Fixtures.h"

#include <algorithm>
#include <atomic>
#include <random>
#include <thread>

namespace
{

using namespace PlatformTest;

/** More objects than can be looked up without a lock. */
constexpr std::size_t kMany = 100'000;

bool IsArrayOfOne(void* handle)
{
    return xqCastClass_ObjectIs(handle, xxqArray1_type) && !xqCastClass_ObjectIs(handle, xxqArray2_type) &&
           qArray1_Count(handle) == 1;
}

TEST(Registry, KnowsEachOfManyObjectsUntilItIsGone)
{
    std::vector<Handle> objects;
    std::vector<void*> addresses;
    for (std::size_t i = 0; i < kMany; ++i)
    {
        objects.push_back(MakeArray1(xxq8u_type, 1));
        addresses.push_back(objects.back());
    }
    ASSERT_TRUE(std::all_of(addresses.begin(), addresses.end(), IsArrayOfOne));

    std::vector<std::size_t> order(kMany);
    for (std::size_t i = 0; i < kMany; ++i)
    {
        order[i] = i;
    }
    std::shuffle(order.begin(), order.end(), std::mt19937(1));
    const auto half = order.begin() + kMany / 2;
    std::for_each(order.begin(), half, [&](std::size_t i) { objects[i].Reset(); });
    EXPECT_TRUE(
        std::none_of(order.begin(), half, [&](std::size_t i) { return xqCastClass_ObjectIsValid(addresses[i]); }));
    EXPECT_TRUE(std::all_of(half, order.end(), [&](std::size_t i) { return IsArrayOfOne(addresses[i]); }));

    // Those that come now take the places of those that went, at the same addresses or at others.
    std::for_each(order.begin(), half,
                  [&](std::size_t i)
                  {
                      objects[i] = MakeArray1(xxq8u_type, 1);
                      addresses[i] = objects[i];
                  });
    EXPECT_TRUE(std::all_of(addresses.begin(), addresses.end(), IsArrayOfOne));
    objects.clear();
    EXPECT_TRUE(std::none_of(addresses.begin(), addresses.end(), xqCastClass_ObjectIsValid));
}

TEST(Registry, FindsObjectsWhileOtherThreadsMakeAndDropTheirs)
{
    constexpr int kThreads = 4;
    constexpr std::size_t kShared = 2'000;
    std::vector<Handle> shared;
    for (std::size_t i = 0; i < kShared; ++i)
    {
        shared.push_back(MakeArray1(xxq8u_type, 1));
    }
    std::atomic<int> lost{0};
    const auto host = [&](unsigned seed)
    {
        std::mt19937 random(seed);
        std::vector<Handle> own(30'000);
        for (int turn = 0; turn < 60'000; ++turn)
        {
            own[random() % own.size()] = MakeArray1(xxq8u_type, 1);
            void* mine = own[random() % own.size()];
            const bool isKnown = IsArrayOfOne(shared[random() % kShared]) && (mine == nullptr || IsArrayOfOne(mine));
            lost += isKnown ? 0 : 1;
        }
    };
    std::vector<std::thread> hosts;
    for (unsigned seed = 1; seed <= kThreads; ++seed)
    {
        hosts.emplace_back(host, seed);
    }
    std::for_each(hosts.begin(), hosts.end(), [](std::thread& thread) { thread.join(); });
    EXPECT_EQ(lost, 0);
}

} // namespace
