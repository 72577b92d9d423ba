#pragma once

/** @file
 *  Surface messages, and what stands in the cells that are made of them. */

#include <ZdkVisionLib/Common/Mat.h>
#include <ZdkVisionLib/platform/ZoVision.h>

#include "support/Surfaces.h"

#include <vector>

namespace MatTest
{

using Handle = Zo::Object<void*>;
using Region = Zvl::Region3d<double>;

/** A message with one item. */
inline Handle MakeMessage(std::size_t rows, std::size_t columns, const std::vector<std::int16_t>& heights,
                          qPoint3d64f scale = {1.0, 1.0, 1.0}, qPoint3d64f offset = {0.0, 0.0, 0.0})
{
    Handle message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), rows, columns, 1, nullptr));
    Zo::Test(ZvSurfaceMsg_SetScale(message, &scale));
    Zo::Test(ZvSurfaceMsg_SetOffset(message, 0, &offset));
    const Handle cells = TestSupport::MakeArray(rows, columns, heights);
    Zo::Test(xqArray2_Assign(ZvSurfaceMsg_PointsArray(message, 0), cells, 0));
    return message;
}

/** The heights 1, 2, 3 and so on, row after row. */
inline std::vector<std::int16_t> Numbered(std::size_t count)
{
    std::vector<std::int16_t> heights(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        heights[i] = static_cast<std::int16_t>(i + 1);
    }
    return heights;
}

/** The message of 3 rows by 4 columns that holds 1 to 12; a cell is a unit wide. */
inline Handle MakeTwelve()
{
    return MakeMessage(3, 4, Numbered(12));
}

/** A region with all heights that there can be. */
inline Region FlatRegion(double x, double y, double width, double height)
{
    return {x, y, width, height, 0.0, -32768.0, 65535.0};
}

/** The cells that @p mat looks at, row after row. */
inline std::vector<int> CellsOf(const cv::Mat& mat)
{
    std::vector<int> cells;
    EXPECT_TRUE(mat.empty() || mat.type() == CV_16UC1);
    for (int row = 0; row < mat.rows; ++row)
    {
        cells.insert(cells.end(), mat.ptr<std::uint16_t>(row), mat.ptr<std::uint16_t>(row) + mat.cols);
    }
    return cells;
}

/** The cells as heights, 0 as 0: what a small message of positive heights shows best. */
inline std::vector<int> HeightsOf(const Zvl::zvlMat& mat)
{
    std::vector<int> heights = CellsOf(mat.GetMat());
    for (int& height : heights)
    {
        height = height == 0 ? 0 : height - 32768;
    }
    return heights;
}

inline bool IsSame(const qPoint3d64f& a, const qPoint3d64f& b)
{
    return a.x == b.x && a.y == b.y && a.z == b.z;
}

} // namespace MatTest
