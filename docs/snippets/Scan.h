#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cmath>
#include <cstdio>
#include <cstdlib>

// What the snippets share: a simulated scan, and a check.

//! [scan]
constexpr std::size_t kRows = 120;
constexpr std::size_t kColumns = 160;
constexpr qPoint64f kCell = {0.1, 0.1};   // mm
constexpr qPoint64f kOrigin = {0.0, 0.0}; // mm
constexpr double kCount = 0.001;          // mm

/** The height count of one cell. */
inline short& HeightAt(const Zvl::Surface& scan, std::size_t row, std::size_t column)
{
    return *static_cast<short*>(qArray2_At(scan.layers[0], row, column));
}

/** A scan, as a rule of 16 mm by 12 mm. @p heightAt tells the height in mm at (x, y); NaN stands for a missing one. */
template <typename HeightFunction>
Zvl::Surface MakeScan(HeightFunction heightAt, std::size_t rows = kRows, std::size_t columns = kColumns)
{
    Zvl::Surface scan;
    scan.scale = {kCell.x, kCell.y, kCount};
    scan.offset = {kOrigin.x, kOrigin.y, 0.0};
    scan.layers.resize(1);
    Zo::Test(qArray2_Construct(scan.layers[0].Slot(), xxq16s_type, rows, columns, nullptr));
    for (std::size_t row = 0; row < rows; ++row)
    {
        for (std::size_t column = 0; column < columns; ++column)
        {
            const double height = heightAt(static_cast<double>(column) * kCell.x, static_cast<double>(row) * kCell.y);
            HeightAt(scan, row, column) =
                std::isnan(height) ? Zvl::GetNull<short>() : static_cast<short>(std::lround(height / kCount));
        }
    }
    return scan;
}
//! [scan]

/** The selected cells of a mask; null stands for the mask of an empty region. */
inline int CountCells(void* mask)
{
    int count = 0;
    for (std::size_t row = 0; mask != nullptr && row < qArray2_Length(mask, 0); ++row)
    {
        for (std::size_t column = 0; column < qArray2_Length(mask, 1); ++column)
        {
            count += *static_cast<const unsigned char*>(qArray2_At(mask, row, column)) != 0 ? 1 : 0;
        }
    }
    return count;
}

/** Ends the program when something is not as the page says. */
inline void Expect(bool isTrue, int line = __builtin_LINE())
{
    if (!isTrue)
    {
        std::fprintf(stderr, "line %d: not as expected\n", line);
        std::exit(1); // NOLINT(concurrency-mt-unsafe): at the end of a small program
    }
}

inline bool IsNear(double value, double expected, double tolerance)
{
    return std::abs(value - expected) <= tolerance;
}
