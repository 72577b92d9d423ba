#include <ZdkVisionLib/Filter/SurfaceFillGap.h>

#include "Alignment/Degrees.h"
#include "Common/Check.h"
#include "Common/Rounding.h"
#include "Filter/SurfaceFillGapSteps.h"

#include <utility>

namespace Zvl
{

namespace
{

constexpr const char* kFunction = "Zvl::SurfaceFillGapXY";

/** True also for what is not a number, which limits nothing. */
bool IsSlope(double degrees)
{
    return !(degrees < 0.0) && !(degrees >= 90.0);
}

std::int64_t GapInCells(double maxGap, double resolution)
{
    return maxGap > 0.0 ? TruncateToInt(maxGap / resolution) : 0;
}

std::int64_t SlopeInCounts(double maxSlope, double resolution, double resolutionZ)
{
    constexpr double steepest = 32767.0;
    const double slope = resolution * std::tan(ToRadians(std::abs(maxSlope))) / resolutionZ;
    return TruncateToInt(slope < steepest ? RoundHalfAway(slope) : steepest);
}

std::int64_t PitchInThousandths(double resolution)
{
    return TruncateToInt(RoundHalfAway(resolution * 1000.0));
}

CrossLimits LimitsOf(const SurfaceFillGapParams& params)
{
    return {{GapInCells(params.maxGapX, params.resolutionX),
             SlopeInCounts(params.maxSlopeX, params.resolutionX, params.resolutionZ)},
            {GapInCells(params.maxGapY, params.resolutionY),
             SlopeInCounts(params.maxSlopeY, params.resolutionY, params.resolutionZ)},
            PitchInThousandths(params.resolutionX),
            PitchInThousandths(params.resolutionY)};
}

/** A copy of @p array, null for null. */
Zo::Object<void*> Clone(void* array, void* alloc)
{
    Zo::Object<void*> clone;
    ZVL_CHECK(kFunction, xqObject_CloneImpl(clone.Slot(), array, alloc, alloc, 0));
    return clone;
}

/** An array of the size of @p heights. */
Zo::Object<void*> NewLayer(qType type, const Cells<const std::int16_t>& heights, void* alloc)
{
    Zo::Object<void*> layer;
    ZVL_CHECK(kFunction, qArray2_Construct(layer.Slot(), type, heights.rows, heights.columns, alloc));
    return layer;
}

/** A row's index for each column; a map may have more rows than 32 bits count. */
Zo::Object<void*> NewRowPerColumn(std::size_t columns, void* alloc)
{
    Zo::Object<void*> items;
    ZVL_CHECK(kFunction, qArray1_Construct(items.Slot(), xxq64s_type, columns, alloc));
    return items;
}

void CloseGaps(const GapMap& map, const CrossLimits& limits, void* alloc)
{
    if (limits.x.gap == 0)
    {
        FillGapColumns(map, limits.y);
    }
    else if (limits.y.gap == 0)
    {
        FillGapRows(map, limits.x);
    }
    else
    {
        const Zo::Object<void*> prevArray = NewRowPerColumn(map.columns, alloc);
        const Zo::Object<void*> nextArray = NewRowPerColumn(map.columns, alloc);
        FillGapBoth(map, limits, static_cast<std::int64_t*>(qArray1_Data(prevArray)),
                    static_cast<std::int64_t*>(qArray1_Data(nextArray)));
    }
}

} // namespace

void SurfaceFillGapXY(const SurfaceFillGapParams& params, Zo::Object<void*> surface, Zo::Object<void*> intensity,
                      Zo::Object<void*>& filledSurface, Zo::Object<void*>& filledIntensity, void* alloc)
{
    const Cells<const std::int16_t> heights = CellsOf<const std::int16_t>(surface);
    const Cells<const std::uint8_t> intensities = CellsOf<const std::uint8_t>(intensity);
    ZVL_REQUIRE(kFunction, heights.present);
    ZVL_REQUIRE(kFunction, intensity.Get() == nullptr || intensities.present);
    ZVL_REQUIRE(kFunction, IsSlope(params.maxSlopeX));
    ZVL_REQUIRE(kFunction, IsSlope(params.maxSlopeY));
    const CrossLimits limits = LimitsOf(params);
    const bool closesGaps = limits.x.gap != 0 || limits.y.gap != 0;
    ZVL_REQUIRE(kFunction, !closesGaps || !intensities.present ||
                               (intensities.rows == heights.rows && intensities.columns == heights.columns));

    Zo::Object<void*> filled;
    Zo::Object<void*> filledSecond;
    if (closesGaps)
    {
        filled = NewLayer(xxq16s_type, heights, alloc);
        filledSecond = intensities.present ? NewLayer(xxq8u_type, heights, alloc) : Zo::Object<void*>();
        const GapMap map = {heights.rows,
                            heights.columns,
                            {heights.data, CellsOf<std::int16_t>(filled).data},
                            {intensities.data, CellsOf<std::uint8_t>(filledSecond).data},
                            params.fillHigh != 0};
        CloseGaps(map, limits, alloc);
    }
    else
    {
        filled = Clone(surface, alloc);
        filledSecond = Clone(intensity, alloc);
    }
    filledSurface = std::move(filled);
    filledIntensity = std::move(filledSecond);
}

} // namespace Zvl
