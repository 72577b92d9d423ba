#pragma once

/** @file
 *  Symbol visibility of the platform library. */

/** @def ZDK_PLATFORM_EXPORT
 *  Marks what the platform library exports; nothing in a static build (`ZDK_PLATFORM_STATIC`). */
#if defined(ZDK_PLATFORM_STATIC)
#define ZDK_PLATFORM_EXPORT
#else
#define ZDK_PLATFORM_EXPORT __attribute__((visibility("default")))
#endif
