#pragma once

#include <ZdkVisionLib/platform/ZoApi.h>

namespace ZdkPython
{

/** A surface message with a count of its own. */
struct SurfaceMessage
{
    Zo::Object<void*> handle;
};

} // namespace ZdkPython
