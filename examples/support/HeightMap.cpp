#include "support/HeightMap.h"

namespace Examples
{

Zvl::Surface MakeSurface(std::size_t rows, std::size_t columns, const qPoint3d64f& scale, const qPoint3d64f& offset,
                         bool withIntensity)
{
    Zvl::Surface surface;
    surface.scale = scale;
    surface.offset = offset;
    surface.layers.resize(withIntensity ? 2 : 1);
    Zo::Test(qArray2_Construct(surface.layers[0].Slot(), xxq16s_type, rows, columns, nullptr));
    if (withIntensity)
    {
        Zo::Test(qArray2_Construct(surface.layers[1].Slot(), xxq8u_type, rows, columns, nullptr));
    }
    return surface;
}

std::size_t Rows(const Zvl::Surface& surface)
{
    return qArray2_Length(surface.layers[0], 0);
}

std::size_t Columns(const Zvl::Surface& surface)
{
    return qArray2_Length(surface.layers[0], 1);
}

short* HeightRow(const Zvl::Surface& surface, std::size_t row)
{
    return static_cast<short*>(qArray2_At(surface.layers[0], row, 0));
}

unsigned char* IntensityRow(const Zvl::Surface& surface, std::size_t row)
{
    return static_cast<unsigned char*>(qArray2_At(surface.layers[1], row, 0));
}

qPoint3d64f WorldPoint(const Zvl::Surface& surface, std::size_t row, std::size_t column)
{
    const qPoint3d64f& scale = surface.scale;
    const qPoint3d64f& offset = surface.offset;
    return {offset.x + static_cast<double>(column) * scale.x, offset.y + static_cast<double>(row) * scale.y,
            offset.z + HeightRow(surface, row)[column] * scale.z};
}

} // namespace Examples
