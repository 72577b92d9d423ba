#pragma once

/** @file
 *  Symbol visibility of the platform library. */

#if defined(ZDK_PLATFORM_STATIC)
#define ZDK_PLATFORM_EXPORT
#else
#define ZDK_PLATFORM_EXPORT __attribute__((visibility("default")))
#endif
