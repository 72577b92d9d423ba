#pragma once

/** @file
 *  Short ways to surfaces, masks and what stands in them. */

#include <ZdkVisionLib/Common/Common.h>

#include "support/ExpectThrow.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

namespace TestSupport
{

constexpr double kNull = Zvl::GetNull<double>();
constexpr std::int16_t kMissing = -32768;

template <typename T>
qType TypeOf()
{
    if constexpr (std::is_same_v<T, std::uint8_t>)
    {
        return xxq8u_type;
    }
    else if constexpr (std::is_same_v<T, std::int16_t>)
    {
        return xxq16s_type;
    }
    else
    {
        static_assert(std::is_same_v<T, double>);
        return xxq64f_type;
    }
}

/** An array of @p rows by @p columns that holds @p cells, row after row. */
template <typename T>
Zo::Object<void*> MakeArray(std::size_t rows, std::size_t columns, const std::vector<T>& cells)
{
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), TypeOf<T>(), rows, columns, nullptr));
    EXPECT_EQ(cells.size(), rows * columns);
    for (std::size_t i = 0; i < cells.size(); ++i)
    {
        Zo::Test(qArray2_SetItem(array, i / columns, i % columns, &cells[i]));
    }
    return array;
}

/** An array whose cells are all @p value. */
template <typename T>
Zo::Object<void*> MakeFilled(std::size_t rows, std::size_t columns, T value)
{
    return MakeArray(rows, columns, std::vector<T>(rows * columns, value));
}

/** The cells of an array, row after row. */
template <typename T>
std::vector<T> CellsIn(void* array)
{
    EXPECT_EQ(qArray2_Type(array), TypeOf<T>());
    std::vector<T> cells(qArray2_Length(array, 0) * qArray2_Length(array, 1));
    if (!cells.empty())
    {
        const T* data = static_cast<const T*>(qArray2_At(array, 0, 0));
        cells.assign(data, data + cells.size());
    }
    return cells;
}

inline void ExpectRect(const Zvl::Rect2d<int>& rect, int x, int y, int width, int height)
{
    EXPECT_EQ(rect.x, x);
    EXPECT_EQ(rect.y, y);
    EXPECT_EQ(rect.width, width);
    EXPECT_EQ(rect.height, height);
}

/** A surface with the given heights. */
inline Zvl::Surface MakeSurface(std::size_t rows, std::size_t columns, const std::vector<std::int16_t>& heights,
                                qPoint3d64f scale = {1.0, 1.0, 1.0}, qPoint3d64f offset = {0.0, 0.0, 0.0})
{
    Zvl::Surface surface;
    surface.scale = scale;
    surface.offset = offset;
    surface.layers.push_back(MakeArray(rows, columns, heights));
    return surface;
}

/** A surface of random heights, of which about a @p missingShare is missing, with random intensities. */
inline Zvl::Surface MakeRandomSurface(std::size_t rows, std::size_t columns, double missingShare, std::mt19937& random)
{
    std::uniform_int_distribution<int> height(-32767, 32767);
    std::uniform_int_distribution<int> intensity(0, 255);
    std::bernoulli_distribution missing(missingShare);
    std::vector<std::int16_t> heights(rows * columns);
    std::vector<std::uint8_t> intensities(rows * columns);
    for (std::size_t i = 0; i < heights.size(); ++i)
    {
        heights[i] = missing(random) ? kMissing : static_cast<std::int16_t>(height(random));
        intensities[i] = static_cast<std::uint8_t>(intensity(random));
    }
    Zvl::Surface surface = MakeSurface(rows, columns, heights);
    surface.layers.push_back(MakeArray(rows, columns, intensities));
    return surface;
}

/** A mask in which about a @p share of the cells is 1. */
inline Zo::Object<void*> MakeRandomMask(std::size_t rows, std::size_t columns, double share, std::mt19937& random)
{
    std::bernoulli_distribution selected(share);
    std::vector<std::uint8_t> cells(rows * columns);
    for (std::uint8_t& cell : cells)
    {
        cell = selected(random) ? 1 : 0;
    }
    return MakeArray(rows, columns, cells);
}

/** Sets the workers of the default pool for as long as it lives. */
class WorkerCount
{
public:
    explicit WorkerCount(std::size_t count) : previous(qThreadPool_Count(qThreadPool_Default()))
    {
        Zo::Test(qThreadPool_SetCount(qThreadPool_Default(), count));
    }
    ~WorkerCount() { qThreadPool_SetCount(qThreadPool_Default(), previous); }
    WorkerCount(const WorkerCount&) = delete;
    WorkerCount& operator=(const WorkerCount&) = delete;

private:
    std::size_t previous;
};

} // namespace TestSupport
