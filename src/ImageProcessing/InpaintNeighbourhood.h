#pragma once

/** @file
 *  The cells around a cell to repair, as the kernels read them. */

#include "ImageProcessing/InpaintFront.h"
#include "ImageProcessing/InpaintKernel.h"

#include <algorithm>
#include <cstdlib>
#include <vector>

namespace Zvl
{

/** The planes of a march inwards; they have room for #kRunSlack cells behind each row. */
struct MarchPlanes
{
    cv::Mat_<std::uint8_t> f; ///< CellState
    cv::Mat_<float> t;        ///< when the front arrives; negative outside the holes
};

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
        firstRow = row - reach;
        firstColumn = column - reach;
        const int begin = std::max(firstColumn, 0);
        const int end = std::min(column + reach + 1, image.cols);
        const std::ptrdiff_t channels = image.channels();
        for (int r = 0; r <= 2 * reach; ++r)
        {
            const T* source = image.ptr<T>(std::clamp(firstRow + r, 0, image.rows - 1)) + channel;
            float* target = values.data() + static_cast<std::size_t>(r) * stride;
            float* inside = target + (begin - firstColumn);
            Convert(source + begin * channels, channels, inside, end - begin);
            std::fill(target, inside, *inside);
            std::fill(inside + (end - begin), target + WidthOf(reach), inside[end - begin - 1]);
        }
    }

    /** The value of the image's cell (@p row, @p column), and those behind it. */
    const float* From(int row, int column) const
    {
        return values.data() + static_cast<std::size_t>(row - firstRow) * stride +
               static_cast<std::size_t>(column - firstColumn);
    }

private:
    template <typename T>
    static void Convert(const T* source, std::ptrdiff_t channels, float* target, int count)
    {
        if (channels == 1)
        {
            std::copy_n(source, count, target);
            return;
        }
        for (int i = 0; i < count; ++i)
        {
            target[i] = static_cast<float>(source[i * channels]);
        }
    }

    int reach;
    std::size_t stride;
    std::vector<float> values;
    int firstRow = 0;
    int firstColumn = 0;
};

/** Calls `visit(run)` for the runs of the neighbourhood of @p cell, row by row and from left to right. Where a cell lies
 *  in the first or last row or column of the image, the image is read one cell further inside. */
template <typename Visit>
void ForEachRun(const MarchPlanes& planes, const Disc& disc, const Patch& patch, const PlaneCell& cell, Visit visit)
{
    const int lastRow = planes.t.rows - 2;
    const int lastColumn = planes.t.cols - 2;
    const int endRow = std::min(cell.i + disc.Radius(), lastRow);
    for (int n = std::max(cell.i - disc.Radius(), 1); n <= endRow; ++n)
    {
        const int dy = n - cell.i;
        const int half = disc.HalfWidth(dy);
        const int nm = n - 1 + (n == 1 ? 1 : 0);
        const int np = n - 1 - (n == lastRow ? 1 : 0);
        const auto visitRun = [&](int l, int count)
        {
            const int lm = l - 1 + (l == 1 ? 1 : 0);
            const int lp = l - 1 - (l == lastColumn ? 1 : 0);
            const int dx = l - cell.j;
            visit(NeighbourRun{static_cast<std::size_t>(count), static_cast<float>(dx), static_cast<float>(dy),
                               disc.FactorsFrom(dy, dx), planes.f[n - 1] + l, planes.f[n] + l, planes.f[n + 1] + l,
                               planes.t[n] + l, patch.From(nm, lm), patch.From(nm, lm - 1), patch.From(nm, lp + 1),
                               patch.From(nm, lp), patch.From(nm - 1, lm), patch.From(np + 1, lm), patch.From(np, lm)});
        };
        const int first = std::max(cell.j - half, 1);
        const int last = std::min(cell.j + half, lastColumn);
        const int inner = std::max(first, 2);
        const int innerEnd = std::min(last, lastColumn - 1);
        if (first == 1)
        {
            visitRun(1, 1);
        }
        if (inner <= innerEnd)
        {
            visitRun(inner, innerEnd - inner + 1);
        }
        if (last == lastColumn && lastColumn > 1)
        {
            visitRun(lastColumn, 1);
        }
    }
}

} // namespace Zvl
