#pragma once

/** @file
 *  Symbol visibility of the algorithm library. */

/** @def ZDK_VISION_EXPORT
 *  Marks what the algorithm library exports; nothing in a static build (`ZDK_VISION_STATIC`). */
#if defined(ZDK_VISION_STATIC)
#define ZDK_VISION_EXPORT
#else
#define ZDK_VISION_EXPORT __attribute__((visibility("default")))
#endif
