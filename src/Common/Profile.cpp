#include <ZdkVisionLib/Common/Common.h>

#include "Common/Check.h"

#include <utility>

namespace Zvl
{

namespace
{

/** The line's own axes of a mapping in space: along the line, and height. */
qPoint64f AlongAndHeight(const qPoint3d64f* mapping)
{
    ZVL_REQUIRE("Zvl::Profile::Profile", mapping != nullptr);
    return {mapping->x, mapping->z};
}

} // namespace

Profile::Profile() : scale{GetNull<double>(), GetNull<double>()}, offset{GetNull<double>(), GetNull<double>()} {}

Profile::Profile(qPoint64f offset, qPoint64f scale) : scale(scale), offset(offset) {}

Profile::Profile(const qPoint3d64f* offset, const qPoint3d64f* scale)
    : scale(AlongAndHeight(scale)), offset(AlongAndHeight(offset))
{
}

std::size_t Profile::AddLayer(void* type, std::size_t count, void* allocator)
{
    const std::size_t index = layers.size();
    layers.emplace_back();
    ZVL_CHECK("Zvl::Profile::AddLayer", qArray1_Construct(layers.back().Slot(), type, count, allocator));
    return index;
}

std::size_t Profile::AddLayer(Zo::Object<void*> layer)
{
    layers.push_back(std::move(layer));
    return layers.size() - 1;
}

} // namespace Zvl
