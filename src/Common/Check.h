#pragma once

/** @file
 *  The one way in which the library turns a failure into an exception. */

#include <ZdkVisionLib/platform/ZoApi.h>

/** Throws a `Zo::Exception` with @p status and @p function, the qualified name of the function that fails. */
#define ZVL_THROW(function, status) throw Zo::Exception(__LINE__, __FILE__, (status), (function), nullptr)

/** Throws #STATUS_BAD_PARAMETER unless @p condition holds. */
#define ZVL_REQUIRE(function, condition)                                                                               \
    do                                                                                                                 \
    {                                                                                                                  \
        if (!(condition))                                                                                              \
        {                                                                                                              \
            ZVL_THROW(function, STATUS_BAD_PARAMETER);                                                                 \
        }                                                                                                              \
    } while (false)

/** Makes a platform call. When it fails, the call is made a second time and the status of that second call is
 *  thrown, whatever it is. */
#define ZVL_CHECK(function, call)                                                                                      \
    do                                                                                                                 \
    {                                                                                                                  \
        if ((call) != STATUS_OK)                                                                                       \
        {                                                                                                              \
            ZVL_THROW(function, (call));                                                                               \
        }                                                                                                              \
    } while (false)
