#pragma once

/** @file
 *  The cells around a cell to repair, as the kernels read them. */

#include "ImageProcessing/InpaintFront.h"
#include "ImageProcessing/InpaintKernel.h"
#include "ImageProcessing/InpaintPlanes.h"

#include <algorithm>
#include <span>
#include <vector>

namespace Zvl
{

/** Cells across a disc. */
inline std::size_t WidthOf(int radius)
{
    return 2 * static_cast<std::size_t>(radius) + 1;
}

/** The disc of a radius about a cell, and a factor for each of its cells. */
class Disc
{
public:
    /** @param factorOf `factorOf(squared distance)`, which is not asked for the centre */
    template <typename FactorOf>
    Disc(int range, FactorOf factorOf) : radius(range), stride(WidthOf(range)), factors(stride * stride + kRunSlack)
    {
        for (int dy = -range; dy <= range; ++dy)
        {
            int half = 0;
            while ((half + 1) * (half + 1) + dy * dy <= range * range)
            {
                ++half;
            }
            halfWidths.push_back(half);
            for (int dx = -range; dx <= range; ++dx)
            {
                if (dx != 0 || dy != 0)
                {
                    factors[IndexOf(dy, dx)] = factorOf(static_cast<float>(dx * dx + dy * dy));
                }
            }
        }
    }

    int Radius() const { return radius; }
    int HalfWidth(int dy) const { return *(halfWidths.begin() + radius + dy); }
    const float* FactorsFrom(int dy, int dx) const { return factors.data() + IndexOf(dy, dx); }

private:
    std::size_t IndexOf(int dy, int dx) const
    {
        return static_cast<std::size_t>(dy + radius) * stride + static_cast<std::size_t>(dx + radius);
    }

    int radius;
    std::size_t stride;
    std::vector<int> halfWidths;
    std::vector<float> factors;
};

/** The values around one cell of an image, as floats: all that a disc about it can read. Beyond the image its outermost
 *  values go on. */
class Patch
{
public:
    explicit Patch(int range)
        : reach(range + 1), stride(WidthOf(reach) + kRunSlack), values(WidthOf(reach) * stride + kRunSlack)
    {
    }

    /** Takes the values of @p channel around the image's cell (@p row, @p column). */
    template <typename T>
    void Fill(const cv::Mat& image, int channel, int row, int column)
    {
        const std::size_t width = (WidthOf(reach) + kWindowStep - 1) / kWindowStep * kWindowStep;
        if (image.channels() == 1 && row >= reach && row + reach < image.rows && column >= reach &&
            width <= static_cast<std::size_t>(image.cols - (column - reach)))
        {
            ToFloats(ImageWindow<T>{image.ptr<T>(row - reach) + (column - reach),
                                    static_cast<std::ptrdiff_t>(image.step1()), WidthOf(reach), width, values.data(),
                                    stride});
            return;
        }
        FillByCell<T>(image, channel, row, column);
    }

    /** The value of the cell in the middle. */
    const float* Centre() const { return values.data() + static_cast<std::size_t>(reach) * (stride + 1); }

    std::ptrdiff_t Stride() const { return static_cast<std::ptrdiff_t>(stride); }

private:
    template <typename T>
    void FillByCell(const cv::Mat& image, int channel, int row, int column)
    {
        const int begin = std::max(column - reach, 0);
        const int end = std::min(column + reach + 1, image.cols);
        const int channels = image.channels();
        float* target = values.data();
        for (int r = row - reach; r <= row + reach; ++r, target += stride)
        {
            const T* source = image.ptr<T>(std::clamp(r, 0, image.rows - 1)) + channel;
            float* inside = target + (begin - (column - reach));
            for (int c = begin; c < end; ++c)
            {
                inside[c - begin] = static_cast<float>(source[static_cast<std::ptrdiff_t>(c) * channels]);
            }
            std::fill(target, inside, *inside);
            std::fill(inside + (end - begin), target + WidthOf(reach), inside[end - begin - 1]);
        }
    }

    int reach;
    std::size_t stride;
    std::vector<float> values;
};

/** The runs of the neighbourhoods of cells to repair. */
class NeighbourRuns
{
public:
    explicit NeighbourRuns(const Disc& disc) : radius(disc.Radius())
    {
        for (int dy = -radius; dy <= radius; ++dy)
        {
            const int half = disc.HalfWidth(dy);
            whole.push_back({2 * static_cast<std::size_t>(half) + 1, disc.FactorsFrom(dy, -half), -half, dy, false,
                             false, false, false});
        }
        cut.reserve(3 * whole.size());
    }

    /** Those of @p cell in planes of @p size, row by row and from left to right. They are valid until the next call. */
    std::span<const NeighbourRun> Around(const PlaneCell& cell, const cv::Size& size)
    {
        const int lastRow = size.height - 2;
        const int lastColumn = size.width - 2;
        if (cell.i - radius > 1 && cell.i + radius < lastRow && cell.j - radius > 1 && cell.j + radius < lastColumn)
        {
            return whole;
        }
        cut.clear();
        for (const NeighbourRun& run : whole)
        {
            const auto dy = static_cast<int>(run.dy);
            if (cell.i + dy >= 1 && cell.i + dy <= lastRow)
            {
                CutAtEdges(run, cell.j, lastColumn, cell.i + dy == 1, cell.i + dy == lastRow);
            }
        }
        return cut;
    }

private:
    /** Adds what there is of @p run to @c cut, cells of the image's first and last column on their own. */
    void CutAtEdges(const NeighbourRun& run, int column, int lastColumn, bool isFirstRow, bool isLastRow)
    {
        const auto half = static_cast<int>(-run.dx);
        const auto add = [&](int l, int end)
        {
            const std::ptrdiff_t dx = l - column;
            cut.push_back({static_cast<std::size_t>(end - l), run.factor + (dx - run.dx), dx, run.dy, isFirstRow,
                           isLastRow, l == 1, l == lastColumn});
        };
        const int first = std::max(column - half, 1);
        const int last = std::min(column + half, lastColumn);
        const int inner = std::max(first, 2);
        const int innerEnd = std::min(last + 1, lastColumn);
        if (first == 1)
        {
            add(1, 2);
        }
        if (inner < innerEnd)
        {
            add(inner, innerEnd);
        }
        if (last == lastColumn && lastColumn > 1)
        {
            add(lastColumn, lastColumn + 1);
        }
    }

    int radius;
    std::vector<NeighbourRun> whole; ///< of a cell far from the image's edges
    std::vector<NeighbourRun> cut;
};

} // namespace Zvl
