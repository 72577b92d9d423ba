#include <ZdkVisionLib/Filter/Filter.h>
#include <ZdkVisionLib/Fitting/Fit.h>

#include "Common/Cells.h"
#include "Common/Rounding.h"
#include "Common/SelectedCells.h"
#include "Filter/CellItems.h"
#include "Utils/HeightRangeKernel.h"

#include <algorithm>

namespace Zvl
{

namespace
{

/** The ranked value of a cell: its signed distance from a plane. */
class PlaneDistances
{
public:
    PlaneDistances(const Surface& surface, const Rect2d<int>& rect, const qPlane3d64f& plane)
        : points(surface, rect),
          normal(plane.normal),
          shift(-(plane.normal.x * plane.point.x + plane.normal.y * plane.point.y + plane.normal.z * plane.point.z))
    {
    }

    void StartRow(std::size_t row) { points.StartRow(row); }

    double At(std::size_t column, std::int16_t cell) const
    {
        const qPoint3d64f point = points.At(column, cell);
        return normal.x * point.x + normal.y * point.y + normal.z * point.z + shift;
    }

private:
    CellItems<qPoint3d64f> points;
    qPoint3d64f normal;
    double shift;
};

/** A window of cells and the mask over it. */
template <typename Cell>
struct MaskedWindow
{
    Cells<const Cell> source;
    Cells<std::uint8_t> mask;
    Rect2d<int> rect;

    const Cell* CellsOfRow(std::size_t row) const
    {
        return source.Row(static_cast<std::size_t>(rect.y) + row) + rect.x;
    }

    /** Calls `visit(maskCell, value)` for each selected cell, row after row. */
    template <typename Values, typename Visit>
    void ForEachValue(Values& values, Visit visit) const
    {
        for (std::size_t row = 0; row < mask.rows; ++row)
        {
            const Cell* cells = CellsOfRow(row);
            std::uint8_t* selected = mask.Row(row);
            values.StartRow(row);
            ForEachSelected(selected, mask.columns,
                            [&](std::size_t column) { visit(selected[column], values.At(column, cells[column])); });
        }
    }
};

bool IsPercentile(double value)
{
    return value >= 0.0 && value <= 100.0;
}

std::ptrdiff_t RankOf(double percentile, std::size_t count)
{
    return static_cast<std::ptrdiff_t>(RoundHalfAway(percentile / 100 * static_cast<double>(count - 1)));
}

/** Ascending, with values that are not numbers behind all others: selection needs a strict weak order. */
template <typename T>
bool RanksBefore(T a, T b)
{
    if constexpr (std::is_floating_point_v<T>)
    {
        return std::isnan(b) ? !std::isnan(a) : a < b;
    }
    else
    {
        return a < b;
    }
}

/** @param known a rank up to the wanted one that was asked for before: what lies before it is out of the question; or 0 */
template <typename T>
T ValueOfRank(std::vector<T>& filterPixels, std::ptrdiff_t rank, std::ptrdiff_t known)
{
    std::nth_element(filterPixels.begin() + known, filterPixels.begin() + rank, filterPixels.end(), RanksBefore<T>);
    return filterPixels[static_cast<std::size_t>(rank)];
}

/** Clears the selected cells whose value is outside the limits. */
template <typename T, typename Values, typename Cell>
void ClearOutside(const MaskedWindow<Cell>& window, Values& values, T lowest, T highest)
{
    constexpr std::uint8_t disablePixel = 0;
    if constexpr (std::is_same_v<T, std::int16_t>)
    {
        for (std::size_t row = 0; row < window.mask.rows; ++row)
        {
            ClearOutsideHeights(window.CellsOfRow(row), lowest, highest, window.mask.Row(row), window.mask.columns);
        }
    }
    else
    {
        window.ForEachValue(values,
                            [&](std::uint8_t& cell, T value)
                            {
                                if (value < lowest || value > highest)
                                {
                                    cell = disablePixel;
                                }
                            });
    }
}

/** Ranks the selected values and clears the cells outside the limits. */
template <typename T, typename Values, typename Cell>
void ClearOutsidePercentiles(const MaskedWindow<Cell>& window, Values values, double low, double high)
{
    std::vector<T> filterPixels;
    filterPixels.reserve(CountSelected(window.mask.data, window.mask.rows * window.mask.columns));
    window.ForEachValue(values, [&](std::uint8_t&, T value) { filterPixels.push_back(value); });
    const std::ptrdiff_t lowIndex = RankOf(low, filterPixels.size());
    const std::ptrdiff_t highIndex = RankOf(high, filterPixels.size());
    const T lowest = ValueOfRank(filterPixels, lowIndex, 0);
    const T highest = ValueOfRank(filterPixels, highIndex, lowIndex);
    ClearOutside(window, values, lowest, highest);
}

} // namespace

template <typename T>
void ThresholdPercentile(const Surface& surface, double low, double high, const Rect2d<int>& rect,
                         Zo::Object<void*> mask)
{
    using Cell = typename CellItems<T>::Cell;
    const MaskedWindow<Cell> window = {CellsOf<const Cell>(LayerOf(surface, CellItems<T>::kLayer)),
                                       CellsOf<std::uint8_t>(mask), rect};
    if (!window.mask.HasSizeOf(rect) || !window.source.Contains(rect) || !IsPercentile(low) || !IsPercentile(high) ||
        !(low <= high))
    {
        return;
    }
    const std::size_t cellCount = window.mask.rows * window.mask.columns;
    if (std::find(window.mask.data, window.mask.data + cellCount, 1) == window.mask.data + cellCount)
    {
        return;
    }
    if constexpr (std::is_same_v<T, double>)
    {
        qPlane3d64f plane0;
        FitPlane(surface, rect, mask, &plane0);
        if (plane0.normal.x != GetNull<double>())
        {
            ClearOutsidePercentiles<T>(window, PlaneDistances(surface, rect, plane0), low, high);
        }
    }
    else
    {
        ClearOutsidePercentiles<T>(window, CellItems<T>(surface, rect), low, high);
    }
}

template ZDK_VISION_EXPORT void ThresholdPercentile<unsigned char>(const Surface&, double, double, const Rect2d<int>&,
                                                                   Zo::Object<void*>);
template ZDK_VISION_EXPORT void ThresholdPercentile<short>(const Surface&, double, double, const Rect2d<int>&,
                                                           Zo::Object<void*>);
template ZDK_VISION_EXPORT void ThresholdPercentile<double>(const Surface&, double, double, const Rect2d<int>&,
                                                            Zo::Object<void*>);

} // namespace Zvl
