#pragma once

/** @file
 *  The registry of live objects: it answers for any pointer value whether an object lives there, without
 *  reading the memory that is asked about. */

#include "platform/Object.h"

namespace ZdkPlatform
{

/** Takes an object out; Register() in Object.h puts it in. */
void Unregister(ObjectHeader& header) noexcept;

/** The class of the object at @p address, or null when no object lives there. */
const TypeRecord* ClassOfLive(const void* address) noexcept;

} // namespace ZdkPlatform
