#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

#include "Arithmetic/HeightPacking.h"
#include "Arithmetic/PackingKernels.h"
#include "Arithmetic/RowKernels.h"
#include "Arithmetic/SourceStretches.h"
#include "Common/Check.h"

namespace Zvl
{

namespace
{

constexpr char kApply[] = "Zvl::Arithmetics::Apply";
constexpr char kApplyMask[] = "Zvl::Arithmetics::ApplyMask";

/** Two sources and the grid that they are laid under. */
struct Task
{
    const char* function; ///< that failures are thrown for
    Surface surface0;     ///< shares its layers with the caller's, which the result may replace
    Surface surface1;
    SourceLayers layers0{};
    SourceLayers layers1{};
    bool hasIntensities = false;
    CommonGrid grid{};
};

SourceLayers LayersOf(const Task& task, const Surface& surface)
{
    SourceLayers layers = {CellsOf<const std::int16_t>(LayerOf(surface, 0)), {}};
    ZVL_REQUIRE(task.function, layers.heights.present);
    if (task.hasIntensities)
    {
        layers.intensities = CellsOf<const std::uint8_t>(LayerOf(surface, 1));
        ZVL_REQUIRE(task.function, layers.intensities.present && layers.intensities.rows == layers.heights.rows &&
                                       layers.intensities.columns == layers.heights.columns);
    }
    return layers;
}

/** What both operations begin with: it takes over the sources of @p task, looks at them, and gives @p result its
 *  mapping. */
Task Begin(Task task, ArithmeticLogic logic, Surface& result)
{
    result.scale = task.surface0.scale;
    result.offset = task.surface0.offset;
    if (LayerOf(task.surface0, 0) == nullptr || LayerOf(task.surface1, 0) == nullptr)
    {
        throw Zo::Exception(STATUS_BAD_PARAMETER, "Empty Data");
    }
    task.hasIntensities = LayerOf(task.surface0, 1) != nullptr && LayerOf(task.surface1, 1) != nullptr;
    task.layers0 = LayersOf(task, task.surface0);
    task.layers1 = LayersOf(task, task.surface1);
    task.grid = getBoundaries(logic, task.surface0.scale, task.surface0.offset,
                              {task.layers0.heights.rows, task.layers0.heights.columns}, task.surface1.offset,
                              {task.layers1.heights.rows, task.layers1.heights.columns});
    result.offset.x = task.grid.x.start;
    result.offset.y = task.grid.y.start;
    return task;
}

/** What is computed: layers of the grid's size. */
template <typename Height>
struct ResultLayers
{
    Cells<Height> heights;
    Cells<std::uint8_t> intensities;

    Height* HeightsAt(const SourceStretch& stretch) const { return heights.Row(stretch.row) + stretch.column; }
    std::uint8_t* IntensitiesAt(const SourceStretch& stretch) const
    {
        return intensities.present ? intensities.Row(stretch.row) + stretch.column : nullptr;
    }
};

/** Makes layer @p index of @p result an array of the grid's size. */
template <typename T>
Cells<T> RemakeLayer(const Task& task, Surface& result, std::size_t index)
{
    ZVL_CHECK(task.function, qArray2_Construct(result.layers[index].Slot(), CellType<T>(), task.grid.y.count,
                                               task.grid.x.count, nullptr));
    return CellsOf<T>(result.layers[index]);
}

/** Appends a layer to @p result and makes layer @p index an array of the grid's size. */
template <typename T>
Cells<T> AddLayer(const Task& task, Surface& result, std::size_t index)
{
    result.layers.emplace_back();
    return RemakeLayer<T>(task, result, index);
}

/** Adds the layers of the result to it. */
template <typename Height>
ResultLayers<Height> AddLayers(const Task& task, Surface& result)
{
    ResultLayers<Height> layers;
    layers.heights = AddLayer<Height>(task, result, 0);
    if (task.hasIntensities)
    {
        layers.intensities = AddLayer<std::uint8_t>(task, result, 1);
    }
    return layers;
}

/** Calls `visit(stretch)` for stretches that cover all cells of the result that are reached; others become missing. */
template <typename Height, typename Visit>
void ForEachStretchOf(const Task& task, const ResultLayers<Height>& out, Visit visit)
{
    const GridSize size = ReachableCells<Height>(out.heights, GetNull<Height>());
    if (task.hasIntensities)
    {
        ReachableCells<std::uint8_t>(out.intensities, 0);
    }
    const PlacedSource source0(task.layers0, task.grid.y.first0, task.grid.x.first0, size);
    const PlacedSource source1(task.layers1, task.grid.y.first1, task.grid.x.first1, size);
    ForEachStretch(source0, source1, size, visit);
}

void IntersectHeights(const RowOperation& operation, const SourceStretch& in, std::int32_t* out)
{
    if (in.heights0 != nullptr && in.heights1 != nullptr)
    {
        CombinePresentHeights(operation, in.heights0, in.heights1, out, in.count);
    }
    else
    {
        std::fill_n(out, in.count, GetNull<int>());
    }
}

void IntersectIntensities(const RowOperation& operation, const SourceStretch& in, std::uint8_t* out)
{
    if (in.heights0 != nullptr && in.heights1 != nullptr)
    {
        CombineIntensities(operation, in.intensities0, in.intensities1, out, in.count);
        ClearWithoutHeights(in.heights0, in.heights1, out, in.count);
    }
    else
    {
        std::fill_n(out, in.count, std::uint8_t{0});
    }
}

/** A missing height under cells that one source covers alone stays -32768. */
void UniteHeights(const RowOperation& operation, const SourceStretch& in, std::int32_t* out)
{
    if (in.heights0 != nullptr && in.heights1 != nullptr)
    {
        CombineHeights(operation, in.heights0, in.heights1, out, in.count);
    }
    else if (in.heights0 != nullptr)
    {
        std::copy_n(in.heights0, in.count, out);
    }
    else if (in.heights1 != nullptr)
    {
        MoveHeights(operation.cell, in.heights1, out, in.count);
    }
    else
    {
        std::fill_n(out, in.count, GetNull<int>());
    }
}

void UniteIntensities(const RowOperation& operation, const SourceStretch& in, std::uint8_t* out)
{
    if (in.intensities0 != nullptr && in.intensities1 != nullptr)
    {
        CombineIntensities(operation, in.intensities0, in.intensities1, out, in.count);
    }
    else if (in.intensities0 != nullptr)
    {
        std::copy_n(in.intensities0, in.count, out);
    }
    else if (in.intensities1 != nullptr)
    {
        std::copy_n(in.intensities1, in.count, out);
    }
    else
    {
        std::fill_n(out, in.count, std::uint8_t{0});
    }
}

/** What is done to each pair of cells. */
struct Combination
{
    RowOperation onHeights;
    RowOperation onIntensities;
    bool unites;

    /** Without intensities, their output is null. */
    void Apply(const SourceStretch& in, std::int32_t* heights, std::uint8_t* intensities) const
    {
        (unites ? UniteHeights : IntersectHeights)(onHeights, in, heights);
        if (intensities != nullptr)
        {
            (unites ? UniteIntensities : IntersectIntensities)(onIntensities, in, intensities);
        }
    }
};

/** Combines the surfaces as long as all heights fit in 16 bits, which is most often up to the end. Heights are in 32 bits
 *  for one stretch of a row at a time, so that they stay in the cache. Those that fit keep their frame, and are what
 *  ConvertSurface32sTo16s() would make of them.
 *  @return whether all of them fit; otherwise @p out is not complete */
bool CombineIfFitting(const Task& task, const Combination& combination, const ResultLayers<std::int16_t>& out)
{
    Zo::Object<void*> scratch;
    ZVL_CHECK(task.function, qArray1_Construct(scratch.Slot(), xxq32s_type, ReachableOf(task.grid.x.count), nullptr));
    auto* const heights = static_cast<std::int32_t*>(qArray1_Data(scratch));
    HeightRange range = {0, 0}; // which fits, as nulls do
    ForEachStretchOf(task, out,
                     [&](const SourceStretch& stretch)
                     {
                         if (range.FitsIn16Bits())
                         {
                             combination.Apply(stretch, heights, out.IntensitiesAt(stretch));
                             PackClamped(heights, out.HeightsAt(stretch), stretch.count, range);
                         }
                     });
    return range.FitsIn16Bits();
}

void MaskHeights(const SourceStretch& in, std::int16_t* out)
{
    if (in.heights0 != nullptr && in.heights1 != nullptr)
    {
        CopyWhereMasked(in.heights0, in.heights1, out, in.count);
    }
    else
    {
        std::fill_n(out, in.count, GetNull<short>());
    }
}

void MaskIntensities(const SourceStretch& in, std::uint8_t* out)
{
    if (in.heights0 != nullptr && in.heights1 != nullptr)
    {
        std::copy_n(in.intensities0, in.count, out);
        ClearWithoutHeights(in.heights0, in.heights1, out, in.count);
    }
    else
    {
        std::fill_n(out, in.count, std::uint8_t{0});
    }
}

} // namespace

void Arithmetics::Apply(ArithmeticOperator op, ArithmeticLogic logic, Surface& surface0, Surface& surface1,
                        Surface& result)
{
    const Task task = Begin({kApply, surface0, surface1}, logic, result);
    const std::shared_ptr<ArithmeticsPixelOperation> hOperate = ArithmeticsPixelOperationFactory::Create(op);
    const std::shared_ptr<ArithmeticsPixelOperation> iOperate = ArithmeticsPixelOperationFactory::Create(op);
    hOperate->SetScale(task.surface0.scale.z);
    hOperate->SetOffsets(task.surface0.offset.z, task.surface1.offset.z);
    const Combination combination = {{op, *hOperate}, {op, *iOperate}, logic == ArithmeticLogic::Union};

    const ResultLayers<std::int16_t> out = AddLayers<std::int16_t>(task, result);
    if (CombineIfFitting(task, combination, out))
    {
        result.layers.resize(std::min<std::size_t>(result.layers.size(), 2));
        return;
    }
    const ResultLayers<std::int32_t> wide = {RemakeLayer<std::int32_t>(task, result, 0), out.intensities};
    ForEachStretchOf(task, wide,
                     [&](const SourceStretch& stretch)
                     { combination.Apply(stretch, wide.HeightsAt(stretch), wide.IntensitiesAt(stretch)); });
    result = ConvertSurface32sTo16s(result);
}

void Arithmetics::ApplyMask(Surface& surface, Surface& maskSurface, Surface& result)
{
    const Task task = Begin({kApplyMask, surface, maskSurface}, ArithmeticLogic::Intersection, result);
    const ResultLayers<std::int16_t> out = AddLayers<std::int16_t>(task, result);
    ForEachStretchOf(task, out,
                     [&](const SourceStretch& stretch)
                     {
                         MaskHeights(stretch, out.HeightsAt(stretch));
                         if (task.hasIntensities)
                         {
                             MaskIntensities(stretch, out.IntensitiesAt(stretch));
                         }
                     });
}

} // namespace Zvl
