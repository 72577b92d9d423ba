#pragma once

/** @file
 *  What the tests of all regions use: frames, the picture of a mask, and how the rows of a mask are shared out. */

#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/Surfaces.h"

#include <string>

namespace TestSupport
{

constexpr qPoint64f kUnitScale = {1.0, 1.0};
constexpr qPoint64f kNoOffset = {0.0, 0.0};

/** The mask of @p roi as rows of '#' and '.', joined by blanks; "null" without a mask. */
inline std::string Picture(Zvl::ROI& roi)
{
    const Zo::Object<void*> mask = roi.GetMask();
    if (mask.Get() == nullptr)
    {
        return "null";
    }
    std::string picture;
    for (std::size_t row = 0; row < qArray2_Length(mask, 0); ++row)
    {
        picture += row == 0 ? "" : " ";
        for (std::size_t column = 0; column < qArray2_Length(mask, 1); ++column)
        {
            const std::uint8_t cell = *static_cast<const std::uint8_t*>(qArray2_At(mask, row, column));
            EXPECT_LE(cell, 1);
            picture += cell != 0 ? '#' : '.';
        }
    }
    return picture;
}

inline void ExpectBox(Zvl::ROI& roi, int x, int y, int width, int height)
{
    ExpectRect(roi.GetBoundingBox(), x, y, width, height);
}

/** World y of each row of a box, as the workers find it: each worker starts from the index of its first row and then
 *  adds up. Of masks below 64 KiB, the first worker has all rows. */
inline std::vector<double> RowPositions(const Zvl::Rect2d<int>& box, double scale, double offset)
{
    const auto rows = static_cast<std::size_t>(box.height);
    std::vector<double> positions(rows);
    const bool isSmall = rows * static_cast<std::size_t>(box.width) < std::size_t{64} * 1024;
    const std::size_t workers = isSmall ? 1 : qThreadPool_Count(qThreadPool_Default());
    for (std::size_t worker = 0; worker < workers; ++worker)
    {
        const qParallelArgs args = {nullptr, worker, workers};
        const std::size_t begin = qParallelArgs_Begin(&args, 0, rows);
        double y = (box.y + static_cast<int>(begin)) * scale + offset;
        for (std::size_t row = begin; row < qParallelArgs_End(&args, 0, rows); ++row)
        {
            positions[row] = y;
            y += scale;
        }
    }
    return positions;
}

} // namespace TestSupport
