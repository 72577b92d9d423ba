/** @file
 *  Operations on whole surfaces: smoothing, gaps, decimation and arithmetic, with any mapping and limits. */

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>
#include <ZdkVisionLib/Filter/SurfaceDecimate.h>
#include <ZdkVisionLib/Filter/SurfaceFillGap.h>
#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include "fuzz/Bytes.h"

namespace
{

using namespace Zvl;
using Fuzz::Bytes;

Zo::Object<void*> LayerOf(const Surface& surface, std::size_t index)
{
    return index < surface.layers.size() ? surface.layers[index] : Zo::Object<void*>();
}

void Smooth(Bytes& bytes, const Surface& surface)
{
    const Zo::Object<void*> in = LayerOf(surface, 0);
    const bool inPlace = bytes.Flag();
    const Point2d<std::size_t> size = {bytes.Size(0, 9), bytes.Size(0, 9)};
    const Point2d<std::size_t> ordinary = {bytes.Size(0, 30), bytes.Size(0, 30)};
    const Point2d<std::size_t> strange = {bytes.Read<std::size_t>(), bytes.Read<std::size_t>()};
    const int keepNulls = bytes.Int(0, 1);
    SurfaceFilter(in, inPlace ? in : Fuzz::Array(xxq16s_type, size.y, size.x), nullptr)
        .Average(ordinary, keepNulls)
        .Average(strange, 1 - keepNulls);
}

void SmoothFully(Bytes& bytes, const Surface& surface)
{
    const int width = bytes.Int(-2, 12);
    SmoothFullArray2<short>(LayerOf(surface, 0), width, bytes.Int(-2, 12), nullptr);
}

void Pad(Bytes& bytes, const Surface& surface)
{
    const int padX = bytes.Int(-2, 12);
    PadArray2<unsigned char>(LayerOf(surface, 1), padX, bytes.Int(-2, 12), nullptr);
}

void FillGaps(Bytes& bytes, const Surface& surface)
{
    const SurfaceFillGapParams params = {bytes.Scale(),  bytes.Scale(),  bytes.Scale(),  bytes.Double(),
                                         bytes.Double(), bytes.Double(), bytes.Double(), bytes.Int(0, 1)};
    Zo::Object<void*> heights;
    Zo::Object<void*> intensities;
    SurfaceFillGapXY(params, LayerOf(surface, 0), LayerOf(surface, 1), heights, intensities, nullptr);
}

void Decimate(Bytes& bytes, const Surface& surface)
{
    const Point2d<std::size_t> size = {bytes.Size(0, 12), bytes.Size(0, 12)};
    SurfaceDecimate(surface, size, {bytes.Double(), bytes.Double()}, nullptr);
}

/** Grids are kept small: a union, and with a negative scale an intersection, is as large as the offsets are apart. */
void Combine(Bytes& bytes, const Surface& surface)
{
    Surface first = surface;
    Surface second = Fuzz::AnySurface(bytes);
    const auto isNear = [](double a, double b, double scale) { return !(std::abs(a - b) > 1000.0 * std::abs(scale)); };
    const bool isSmall = isNear(first.offset.x, second.offset.x, first.scale.x) &&
                         isNear(first.offset.y, second.offset.y, first.scale.y);
    if (!isSmall)
    {
        return;
    }
    const auto op = static_cast<ArithmeticOperator>(bytes.Int(-1, 3));
    const auto logic = static_cast<ArithmeticLogic>(bytes.Int(-1, 2));
    Surface result;
    if (bytes.Flag())
    {
        Arithmetics::Apply(op, logic, first, second, result);
    }
    else
    {
        Arithmetics::ApplyMask(first, second, result);
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    using Operation = void (*)(Bytes&, const Surface&);
    static constexpr Operation kOperations[] = {Smooth, SmoothFully, Pad, FillGaps, Decimate, Combine};
    const Operation operation = kOperations[bytes.Size(0, std::size(kOperations) - 1)];
    Fuzz::Try([&] { operation(bytes, Fuzz::AnySurface(bytes)); });
    return 0;
}
