#pragma once

/** @file
 *  How masks are made, in a slot that may hold one already. */

#include <ZdkVisionLib/Common/Common.h>

#include "Common/Check.h"

#include <utility>

namespace Zvl
{

/** Gives up the count that @p slot holds, and leaves it null. A failure is thrown for @p function. */
inline void DropHeld(const char* function, void*& slot)
{
    if (void* held = std::exchange(slot, nullptr); held != nullptr)
    {
        ZVL_CHECK(function, xqObject_DestroyImpl(held, 0));
    }
}

/** As DropHeld() of the handle's slot. */
inline void DropHeld(const char* function, Zo::Object<void*>& handle)
{
    void* held = handle.Detach();
    DropHeld(function, held);
}

/** A new mask of zeros as large as @p box, which is not negative. Failures are thrown for @p function. */
inline Zo::Object<void*> NewMask(const char* function, const Rect2d<int>& box, void* allocator)
{
    Zo::Object<void*> mask;
    ZVL_CHECK(function, qArray2_Construct(mask.Slot(), xxq8u_type, static_cast<std::size_t>(box.height),
                                          static_cast<std::size_t>(box.width), allocator));
    ZVL_CHECK(function, qArray2_Zero(mask));
    return mask;
}

} // namespace Zvl
