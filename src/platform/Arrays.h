#pragma once

/** @file
 *  The structures of arrays and lists. */

#include "platform/Items.h"

namespace ZdkPlatform
{

struct Array1
{
    xqObjectLayout object;
    void* data;
    std::size_t count;
};

/** The one layout that is open to callers. */
using Array2 = xqArray2Layout;

struct ArrayList
{
    xqObjectLayout object;
    void* data;
    std::size_t count;
    std::size_t capacity;
};

template <>
inline constexpr TypeId kClassOf<Array1> = TypeId::Array1;
template <>
inline constexpr TypeId kClassOf<Array2> = TypeId::Array2;
template <>
inline constexpr TypeId kClassOf<ArrayList> = TypeId::ArrayList;

inline const TypeRecord& ItemType(void* array)
{
    return *HeaderOf(array).itemType;
}

} // namespace ZdkPlatform
