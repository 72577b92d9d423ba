#pragma once

/** @file
 *  Symbol visibility of the algorithm library. */

#if defined(ZDK_VISION_STATIC)
#define ZDK_VISION_EXPORT
#else
#define ZDK_VISION_EXPORT __attribute__((visibility("default")))
#endif
