#pragma once

/** @file
 *  Inputs of the fitting tests: masks, and everything that can be wrong with a surface and its mask. */

#include "support/Surfaces.h"

#include <cstdint>
#include <string>
#include <vector>

namespace FittingSupport
{

using TestSupport::MakeSurface;

inline Zo::Object<void*> MakeMask(std::size_t rows, std::size_t columns, const std::vector<std::uint8_t>& cells)
{
    return TestSupport::MakeArray(rows, columns, cells);
}

inline Zo::Object<void*> FullMask(std::size_t rows, std::size_t columns)
{
    return TestSupport::MakeFilled<std::uint8_t>(rows, columns, 1);
}

/** An input to a fit over a surface that has nothing to fit. */
struct UnfitInput
{
    std::string what;
    Zvl::Surface surface;
    Zvl::Rect2d<int> rect;
    Zo::Object<void*> mask;
};

/** Everything that can be wrong with surface, rectangle and mask; a full 4 x 4 surface is what would be
 *  right. */
inline std::vector<UnfitInput> UnfitInputs()
{
    const Zvl::Surface fit = MakeSurface(4, 4, {0, 5, 1, 7, 2, 2, 8, 1, 0, 3, 9, 4, 6, 1, 1, 5});
    const Zo::Object<void*> mask = FullMask(4, 4);
    const Zvl::Rect2d<int> rect{0, 0, 4, 4};

    Zvl::Surface noLayer = fit;
    noLayer.layers.clear();
    Zvl::Surface nullLayer = fit;
    nullLayer.layers[0].Reset();
    Zvl::Surface bytes = fit;
    bytes.layers[0] = FullMask(4, 4);
    Zvl::Surface line = fit;
    Zo::Test(qArray1_Construct(line.layers[0].Slot(), xxq16s_type, 16, nullptr));
    Zo::Object<void*> lineMask;
    Zo::Test(qArray1_Construct(lineMask.Slot(), xxq8u_type, 16, nullptr));

    return {
        {"no layer", noLayer, rect, mask},
        {"null layer", nullLayer, rect, mask},
        {"layer of bytes", bytes, rect, mask},
        {"layer of one dimension", line, rect, mask},
        {"null mask", fit, rect, {}},
        {"mask of heights", fit, rect, fit.layers[0]},
        {"mask of one dimension", fit, rect, lineMask},
        {"mask with a row less", fit, rect, FullMask(3, 4)},
        {"mask with a column more", fit, rect, FullMask(4, 5)},
        {"mask transposed", fit, {0, 0, 4, 2}, FullMask(4, 2)},
        {"rectangle beyond the right edge", fit, {1, 0, 4, 4}, mask},
        {"rectangle beyond the last row", fit, {0, 1, 4, 4}, mask},
        {"rectangle left of the surface", fit, {-1, 0, 4, 4}, mask},
        {"rectangle above the surface", fit, {0, -1, 4, 4}, mask},
        {"rectangle far away", fit, {2147483647, 2147483647, 4, 4}, mask},
        {"rectangle of negative size", fit, {4, 4, -4, -4}, mask},
    };
}

} // namespace FittingSupport
