#pragma once

/** @file
 *  What every failure of the library looks like: a Zo::Exception with a status and a function's name. */

#include <ZdkVisionLib/platform/ZoApi.h>

#include <gtest/gtest.h>

namespace Zvl
{

template <typename Callable>
void ExpectFailure(int status, const char* function, Callable&& callable)
{
    try
    {
        callable();
        ADD_FAILURE() << function << " did not throw";
    }
    catch (const Zo::Exception& exception)
    {
        EXPECT_EQ(exception.GetStatus(), status);
        EXPECT_STREQ(exception.GetFunction(), function);
    }
}

} // namespace Zvl
