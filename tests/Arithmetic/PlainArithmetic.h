#pragma once

/** @file
 *  The operations on height maps as plain loops over cells, and the maps that they are compared on. */

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

#include "support/Surfaces.h"

#include <algorithm>
#include <cmath>
#include <limits>

namespace PlainArithmetic
{

constexpr std::int32_t kNull32 = std::numeric_limits<std::int32_t>::min();

/** The cells of an array and its size. */
template <typename T>
struct Grid
{
    std::uint64_t rows = 0;
    std::uint64_t columns = 0;
    std::vector<T> cells;

    T At(int row, int column) const
    {
        return cells[static_cast<std::size_t>(row) * columns + static_cast<std::size_t>(column)];
    }
    T& At(int row, int column)
    {
        return cells[static_cast<std::size_t>(row) * columns + static_cast<std::size_t>(column)];
    }
    bool Contains(int row, int column) const
    {
        return row >= 0 && row < static_cast<std::int16_t>(rows) && column >= 0 &&
               column < static_cast<std::int16_t>(columns);
    }
};

template <typename T>
Grid<T> GridOf(void* array)
{
    return {qArray2_Length(array, 0), qArray2_Length(array, 1), TestSupport::CellsIn<T>(array)};
}

template <typename T>
Grid<T> NewGrid(std::uint64_t rows, std::uint64_t columns, T value)
{
    return {rows, columns, std::vector<T>(rows * columns, value)};
}

/** A result: its mapping and its layers. */
struct Result
{
    qPoint3d64f scale;
    qPoint3d64f offset;
    Grid<std::int16_t> heights;
    bool hasIntensities = false;
    Grid<std::uint8_t> intensities;
};

inline double Rounded(double value)
{
    return std::trunc(value > 0.0 ? value + 0.5 : value - 0.5);
}

/** A double as 32 bits, null where they do not suffice. */
inline std::int32_t Truncated(double value)
{
    return value > -2147483648.0 && value < 2147483648.0 ? static_cast<std::int32_t>(value) : kNull32;
}

inline std::int16_t Clamped(double value)
{
    return static_cast<std::int16_t>(std::min(std::max(value, -32768.0), 32767.0));
}

/** Size and position of the grid, and the first cell of each source, of which 16 bits are left. */
struct Boundaries
{
    std::uint64_t rows;
    std::uint64_t columns;
    double xStart;
    double yStart;
    std::int16_t i0;
    std::int16_t j0;
    std::int16_t i1;
    std::int16_t j1;
};

inline std::int16_t Cut(double cells)
{
    return static_cast<std::int16_t>(static_cast<std::int64_t>(cells));
}

inline Boundaries BoundariesOf(bool unites, const qPoint3d64f& scale, const qPoint3d64f& offset0,
                               const Grid<std::int16_t>& h0, const qPoint3d64f& offset1, const Grid<std::int16_t>& h1)
{
    const double xEnd0 = offset0.x + static_cast<double>(h0.columns) * scale.x;
    const double xEnd1 = offset1.x + static_cast<double>(h1.columns) * scale.x;
    const double yEnd0 = offset0.y + static_cast<double>(h0.rows) * scale.y;
    const double yEnd1 = offset1.y + static_cast<double>(h1.rows) * scale.y;
    Boundaries b{};
    b.xStart = unites ? std::min(offset0.x, offset1.x) : std::max(offset0.x, offset1.x);
    b.yStart = unites ? std::min(offset0.y, offset1.y) : std::max(offset0.y, offset1.y);
    const double xEnd = unites ? std::max(xEnd0, xEnd1) : std::min(xEnd0, xEnd1);
    const double yEnd = unites ? std::max(yEnd0, yEnd1) : std::min(yEnd0, yEnd1);
    b.columns = static_cast<std::uint64_t>(static_cast<std::int64_t>(Rounded((xEnd - b.xStart) / scale.x)));
    b.rows = static_cast<std::uint64_t>(static_cast<std::int64_t>(Rounded((yEnd - b.yStart) / scale.y)));
    b.i0 = Cut(Rounded((b.xStart - offset0.x) / scale.x));
    b.j0 = Cut(Rounded((b.yStart - offset0.y) / scale.y));
    b.i1 = Cut(Rounded((b.xStart - offset1.x) / scale.x));
    b.j1 = Cut(Rounded((b.yStart - offset1.y) / scale.y));
    return b;
}

/** A height of the second surface, not missing, in the frame of the first. */
inline std::int32_t MovedHeight(std::int16_t b, double zScale, double zOffset0, double zOffset1)
{
    return zOffset0 == zOffset1 ? b : Truncated((b * zScale + zOffset1 - zOffset0) / zScale);
}

inline std::int32_t HeightOf(Zvl::ArithmeticOperator op, std::int16_t a, std::int16_t b, double zScale, double zOffset0,
                             double zOffset1)
{
    if (a == TestSupport::kMissing && b == TestSupport::kMissing)
    {
        return kNull32;
    }
    if (b == TestSupport::kMissing)
    {
        return a;
    }
    if (a == TestSupport::kMissing)
    {
        return MovedHeight(b, zScale, zOffset0, zOffset1);
    }
    const double wa = a * zScale + zOffset0;
    const double wb = b * zScale + zOffset1;
    switch (op)
    {
    case Zvl::ArithmeticOperator::Add:
        return Truncated((wa + wb - zOffset0) / zScale);
    case Zvl::ArithmeticOperator::Subtract:
        return Truncated((wa - wb - zOffset0) / zScale);
    default:
        return Truncated(((wa + wb) / 2.0 - zOffset0) / zScale);
    }
}

inline std::uint8_t IntensityOf(Zvl::ArithmeticOperator op, int a, int b)
{
    switch (op)
    {
    case Zvl::ArithmeticOperator::Add:
        return static_cast<std::uint8_t>(a + b > 255 ? 255 : a + b);
    case Zvl::ArithmeticOperator::Subtract:
        return static_cast<std::uint8_t>(a - b < 0 ? 0 : a - b);
    default:
        return static_cast<std::uint8_t>((a + b) >> 1);
    }
}

/** Heights of 32 bits in 16. @p offset and @p scale are moved when they do not fit. */
inline Grid<std::int16_t> Pack(const Grid<std::int32_t>& work, double& scale, double& offset)
{
    std::int64_t minimum = 2147483647;
    std::int64_t maximum = -2147483648LL;
    for (int row = 0; row < static_cast<std::int16_t>(work.rows); ++row)
    {
        for (int column = 0; column < static_cast<std::int16_t>(work.columns); ++column)
        {
            const std::int32_t height = work.At(row, column);
            if (height != kNull32)
            {
                minimum = std::min<std::int64_t>(minimum, height);
                maximum = std::max<std::int64_t>(maximum, height);
            }
        }
    }
    const double oldScale = scale;
    const double oldOffset = offset;
    const bool fits = minimum >= -32768 && maximum <= 32767;
    const bool rescales = !fits && static_cast<std::int32_t>(static_cast<std::uint32_t>(maximum - minimum)) > 65535;
    double shift = 0.0;
    if (rescales)
    {
        const double wMax = static_cast<double>(maximum) * scale + offset;
        const double wMin = static_cast<double>(minimum) * scale + offset;
        scale = (wMax - wMin) / 65535.0;
        offset = (wMax + wMin) / 2.0;
    }
    else if (!fits)
    {
        offset = static_cast<double>((maximum + minimum) / 2) * scale + offset;
        shift = Rounded((oldOffset - offset) / scale);
    }
    Grid<std::int16_t> packed = NewGrid(work.rows, work.columns, TestSupport::kMissing);
    for (int row = 0; row < static_cast<std::int16_t>(work.rows); ++row)
    {
        for (int column = 0; column < static_cast<std::int16_t>(work.columns); ++column)
        {
            const std::int32_t height = work.At(row, column);
            if (height != kNull32)
            {
                packed.At(row, column) = rescales ? Clamped(Truncated((height * oldScale + oldOffset - offset) / scale))
                                                  : Clamped(height + shift);
            }
        }
    }
    return packed;
}

/** The layers of both sources. */
struct Sources
{
    Sources(const Zvl::Surface& surface0, const Zvl::Surface& surface1)
        : h0(GridOf<std::int16_t>(surface0.layers[0])),
          h1(GridOf<std::int16_t>(surface1.layers[0])),
          hasIntensities(surface0.layers.size() > 1 && surface1.layers.size() > 1)
    {
        if (hasIntensities)
        {
            v0 = GridOf<std::uint8_t>(surface0.layers[1]);
            v1 = GridOf<std::uint8_t>(surface1.layers[1]);
        }
    }

    Grid<std::int16_t> h0;
    Grid<std::int16_t> h1;
    bool hasIntensities;
    Grid<std::uint8_t> v0;
    Grid<std::uint8_t> v1;
};

inline Result ResultOf(const Zvl::Surface& surface0, const Boundaries& b, bool hasIntensities)
{
    Result result{surface0.scale, {b.xStart, b.yStart, surface0.offset.z}, {}, hasIntensities, {}};
    if (hasIntensities)
    {
        result.intensities = NewGrid<std::uint8_t>(b.rows, b.columns, 0);
    }
    return result;
}

inline Result Apply(Zvl::ArithmeticOperator op, Zvl::ArithmeticLogic logic, const Zvl::Surface& surface0,
                    const Zvl::Surface& surface1)
{
    const Sources in(surface0, surface1);
    const bool unites = logic == Zvl::ArithmeticLogic::Union;
    const Boundaries b = BoundariesOf(unites, surface0.scale, surface0.offset, in.h0, surface1.offset, in.h1);
    const double zScale = surface0.scale.z;
    const double z0 = surface0.offset.z;
    const double z1 = surface1.offset.z;
    Result result = ResultOf(surface0, b, in.hasIntensities);
    Grid<std::int32_t> work = NewGrid(b.rows, b.columns, kNull32);
    for (int j = 0; j < static_cast<std::int16_t>(b.rows); ++j)
    {
        for (int i = 0; i < static_cast<std::int16_t>(b.columns); ++i)
        {
            const bool in0 = in.h0.Contains(j + b.j0, i + b.i0);
            const bool in1 = in.h1.Contains(j + b.j1, i + b.i1);
            const std::int16_t a = in0 ? in.h0.At(j + b.j0, i + b.i0) : TestSupport::kMissing;
            const std::int16_t c = in1 ? in.h1.At(j + b.j1, i + b.i1) : TestSupport::kMissing;
            const bool bothValid = a != TestSupport::kMissing && c != TestSupport::kMissing;
            std::int32_t height = kNull32;
            if (bothValid || (unites && in0 && in1))
            {
                height = HeightOf(op, a, c, zScale, z0, z1);
            }
            else if (unites && in0)
            {
                height = a;
            }
            else if (unites && in1)
            {
                height = c == TestSupport::kMissing ? c : MovedHeight(c, zScale, z0, z1);
            }
            work.At(j, i) = height;
            if (in.hasIntensities && (unites || bothValid))
            {
                const int ia = in0 ? in.v0.At(j + b.j0, i + b.i0) : 0;
                const int ib = in1 ? in.v1.At(j + b.j1, i + b.i1) : 0;
                result.intensities.At(j, i) =
                    in0 && in1 ? IntensityOf(op, ia, ib) : static_cast<std::uint8_t>(in0 ? ia : ib);
            }
        }
    }
    result.heights = Pack(work, result.scale.z, result.offset.z);
    return result;
}

inline Result ApplyMask(const Zvl::Surface& surface, const Zvl::Surface& mask)
{
    const Sources in(surface, mask);
    const Boundaries b = BoundariesOf(false, surface.scale, surface.offset, in.h0, mask.offset, in.h1);
    Result result = ResultOf(surface, b, in.hasIntensities);
    result.heights = NewGrid(b.rows, b.columns, TestSupport::kMissing);
    for (int j = 0; j < static_cast<std::int16_t>(b.rows); ++j)
    {
        for (int i = 0; i < static_cast<std::int16_t>(b.columns); ++i)
        {
            if (!in.h0.Contains(j + b.j0, i + b.i0) || !in.h1.Contains(j + b.j1, i + b.i1) ||
                in.h0.At(j + b.j0, i + b.i0) == TestSupport::kMissing ||
                in.h1.At(j + b.j1, i + b.i1) == TestSupport::kMissing)
            {
                continue;
            }
            result.heights.At(j, i) = in.h0.At(j + b.j0, i + b.i0);
            if (in.hasIntensities)
            {
                result.intensities.At(j, i) = in.v0.At(j + b.j0, i + b.i0);
            }
        }
    }
    return result;
}

/** Both are the same number, or both are none. */
inline void ExpectSame(double actual, double expected)
{
    EXPECT_TRUE(actual == expected || (std::isnan(actual) && std::isnan(expected))) << actual << " " << expected;
}

/** Expects the bits of @p expected. */
inline void ExpectResult(const Zvl::Surface& actual, const Result& expected)
{
    EXPECT_EQ(actual.scale.x, expected.scale.x);
    EXPECT_EQ(actual.scale.y, expected.scale.y);
    ExpectSame(actual.scale.z, expected.scale.z);
    EXPECT_EQ(actual.offset.x, expected.offset.x);
    EXPECT_EQ(actual.offset.y, expected.offset.y);
    ExpectSame(actual.offset.z, expected.offset.z);
    ASSERT_EQ(actual.layers.size(), expected.hasIntensities ? 2U : 1U);
    const Grid<std::int16_t> heights = GridOf<std::int16_t>(actual.layers[0]);
    ASSERT_EQ(heights.rows, expected.heights.rows);
    ASSERT_EQ(heights.columns, expected.heights.columns);
    ASSERT_EQ(heights.cells, expected.heights.cells);
    if (expected.hasIntensities)
    {
        const Grid<std::uint8_t> intensities = GridOf<std::uint8_t>(actual.layers[1]);
        ASSERT_EQ(intensities.rows, expected.intensities.rows);
        ASSERT_EQ(intensities.columns, expected.intensities.columns);
        ASSERT_EQ(intensities.cells, expected.intensities.cells);
    }
}

} // namespace PlainArithmetic
