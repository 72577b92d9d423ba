#include <ZdkVisionLib/Filter/SurfaceDecimate.h>

#include "Common/Check.h"
#include "Common/Rounding.h"
#include "Filter/SurfaceDecimateRows.h"

#include <cmath>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::SurfaceDecimate";

bool HasZero(Point2d<std::size_t> size)
{
    return size.x == 0 || size.y == 0;
}

bool IsNumber(Point2d<double> ratio)
{
    return !std::isnan(ratio.x) && !std::isnan(ratio.y);
}

bool IsUsable(Point2d<double> ratio)
{
    return ratio.x > 0.0 && ratio.y > 0.0;
}

SourceLayers SourceOf(const Surface& surface)
{
    const SourceLayers source = {CellsOf<const std::int16_t>(LayerOf(surface, 0)),
                                 CellsOf<const std::uint8_t>(LayerOf(surface, 1))};
    ZVL_REQUIRE(kFunction, source.heights.present);
    ZVL_REQUIRE(kFunction, surface.layers.size() < 2 || source.intensities.present);
    ZVL_REQUIRE(kFunction, source.heights.rows != 0 && source.heights.columns != 0);
    ZVL_REQUIRE(kFunction, !source.intensities.present || (source.intensities.rows == source.heights.rows &&
                                                           source.intensities.columns == source.heights.columns));
    return source;
}

std::size_t ScaledSize(std::size_t size, double ratio)
{
    return static_cast<std::size_t>(TruncateToInt(RoundHalfAway(static_cast<double>(size) * ratio)));
}

/** Lets size and ratio follow from each other, as far as one of them was not given. */
void Settle(Point2d<std::size_t> inSize, Point2d<std::size_t>& outSize, Point2d<double>& ratio)
{
    if (HasZero(outSize))
    {
        ratio = {std::min(ratio.x, 1.0), std::min(ratio.y, 1.0)};
        outSize = {ScaledSize(inSize.x, ratio.x), ScaledSize(inSize.y, ratio.y)};
    }
    else if (!IsUsable(ratio))
    {
        outSize = {std::min(outSize.x, inSize.x), std::min(outSize.y, inSize.y)};
        ratio = {static_cast<double>(outSize.x) / static_cast<double>(inSize.x),
                 static_cast<double>(outSize.y) / static_cast<double>(inSize.y)};
    }
}

void AppendLayer(Surface& surface, qType type, Point2d<std::size_t> size, void* alloc)
{
    Zo::Object<void*> layer;
    ZVL_CHECK(kFunction, qArray2_Construct(layer.Slot(), type, size.y, size.x, alloc));
    surface.layers.push_back(std::move(layer));
}

/** A cell's position is the centre of what it covers. */
void SetFrame(const Surface& surface, Point2d<double> step, Surface& outSurface)
{
    outSurface.scale = {surface.scale.x * step.x, surface.scale.y * step.y, surface.scale.z};
    outSurface.offset = {surface.offset.x + (step.x - 1.0) / 2.0 * surface.scale.x,
                         surface.offset.y + (step.y - 1.0) / 2.0 * surface.scale.y, surface.offset.z};
}

} // namespace

Surface SurfaceDecimate(const Surface& surface, Point2d<std::size_t> outSize, Point2d<double> ratio, void* alloc)
{
    ZVL_REQUIRE(kFunction, IsNumber(ratio) && (!HasZero(outSize) || IsUsable(ratio)));
    Surface outSurface;
    if (surface.layers.empty())
    {
        return outSurface;
    }
    const SourceLayers source = SourceOf(surface);
    Settle({source.heights.columns, source.heights.rows}, outSize, ratio);
    ZVL_REQUIRE(kFunction, !HasZero(outSize));

    const Point2d<double> step = {1.0 / ratio.x, 1.0 / ratio.y};
    SetFrame(surface, step, outSurface);
    outSurface.layers.reserve(2);
    AppendLayer(outSurface, xxq16s_type, outSize, alloc);
    if (source.intensities.present)
    {
        AppendLayer(outSurface, xxq8u_type, outSize, alloc);
    }
    const TargetLayers target = {CellsOf<std::int16_t>(LayerOf(outSurface, 0)),
                                 CellsOf<std::uint8_t>(LayerOf(outSurface, 1))};
    DecimateRows(kFunction, source, target, step, alloc);
    return outSurface;
}

} // namespace Zvl
