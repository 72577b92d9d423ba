#pragma once

/** @file
 *  What the tests of the platform share. */

#include <ZdkVisionLib/platform/ZoApi.h>

#include <gtest/gtest.h>

#include <cstring>
#include <vector>

/** The statement must leave by the handler of failed casts or of failed range checks. */
#define EXPECT_STOPPED(statement)                                                                                      \
    do                                                                                                                 \
    {                                                                                                                  \
        try                                                                                                            \
        {                                                                                                              \
            static_cast<void>(statement);                                                                              \
            ADD_FAILURE() << #statement << " went through";                                                            \
        }                                                                                                              \
        catch (const Zo::Exception& exception)                                                                         \
        {                                                                                                              \
            EXPECT_EQ(exception.GetStatus(), STATUS_BAD_PARAMETER);                                                    \
            EXPECT_GT(exception.GetLine(), 0);                                                                         \
            EXPECT_NE(std::strstr(exception.what(), "src/platform/"), nullptr) << exception.what();                    \
        }                                                                                                              \
    } while (false)

namespace PlatformTest
{

using Handle = Zo::Object<void*>;

inline Handle MakeArray1(qType type, std::size_t count, qAlloc allocator = nullptr)
{
    Handle array;
    EXPECT_EQ(qArray1_Construct(array.Slot(), type, count, allocator), STATUS_OK);
    return array;
}

inline Handle MakeArray2(qType type, std::size_t rows, std::size_t columns, qAlloc allocator = nullptr)
{
    Handle array;
    EXPECT_EQ(qArray2_Construct(array.Slot(), type, rows, columns, allocator), STATUS_OK);
    return array;
}

inline Handle MakeList(qType type, std::size_t capacity = 0, qAlloc allocator = nullptr)
{
    Handle list;
    EXPECT_EQ(qArrayList_Construct(list.Slot(), type, capacity, allocator), STATUS_OK);
    return list;
}

/** The address of an object that is gone. */
inline void* DeadHandle()
{
    return MakeArray2(xxq8u_type, 1, 1).Get();
}

/** Pointer values that are no live objects: null, dead, small integers, and memory of this process that is
 *  something else. */
inline std::vector<void*> StrangeHandles()
{
    static std::uint64_t foreign[16] = {};
    return {nullptr,
            DeadHandle(),
            reinterpret_cast<void*>(1),
            reinterpret_cast<void*>(64),
            reinterpret_cast<void*>(~std::uintptr_t{0}),
            &foreign[8],
            static_cast<char*>(xxq8u_type) + 8};
}

inline bool IsAligned(const void* data)
{
    return reinterpret_cast<std::uintptr_t>(data) % 64 == 0;
}

// Sizes that no memory can have: products that overflow, and those that just exceed half of the address space.
constexpr std::size_t kHuge = ~std::size_t{0};
constexpr std::size_t kHalf = kHuge / 2;

} // namespace PlatformTest
