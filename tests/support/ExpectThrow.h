#pragma once

/** @file
 *  What every failure of the library looks like: a `Zo::Exception` with a status and a function's name. */

#include <ZdkVisionLib/platform/ZoApi.h>

#include <gtest/gtest.h>

namespace TestSupport
{

/** Expects @p callable to throw a `Zo::Exception` with @p status and @p function, and no message. */
template <typename Callable>
void ExpectThrow(int status, const char* function, Callable&& callable)
{
    try
    {
        callable();
        ADD_FAILURE() << "nothing was thrown, expected " << function << " with " << status;
    }
    catch (const Zo::Exception& exception)
    {
        EXPECT_EQ(exception.GetStatus(), status);
        EXPECT_STREQ(exception.GetFunction(), function);
        EXPECT_STREQ(exception.GetMessage(), "");
    }
}

} // namespace TestSupport
