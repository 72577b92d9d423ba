/** @file
 *  Gap filling of the map, and of the map without missing heights, beside a copy of as many bytes into an array as new
 *  as the result. */

#include <ZdkVisionLib/Filter/SurfaceFillGap.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>

#include <algorithm>
#include <cstring>

namespace
{

enum Directions
{
    AlongRows,
    AlongColumns,
    AlongBoth
};

Zvl::SurfaceFillGapParams ParamsFor(std::int64_t directions)
{
    Zvl::SurfaceFillGapParams params;
    params.resolutionX = Bench::kScale.x;
    params.resolutionY = Bench::kScale.y;
    params.resolutionZ = 0.001;
    params.maxGapX = directions == AlongColumns ? 0.0 : 20.0 * params.resolutionX;
    params.maxGapY = directions == AlongRows ? 0.0 : 20.0 * params.resolutionY;
    params.maxSlopeX = 60.0;
    params.maxSlopeY = 60.0;
    return params;
}

void FillGaps(benchmark::State& state, const Zo::Object<void*>& heights)
{
    const Zvl::SurfaceFillGapParams params = ParamsFor(state.range(0));
    for (auto _ : state)
    {
        Zo::Object<void*> filled;
        Zo::Object<void*> filledIntensity;
        Zvl::SurfaceFillGapXY(params, heights, Zo::Object<void*>(), filled, filledIntensity, nullptr);
        benchmark::DoNotOptimize(filled.Get());
    }
}

void SurfaceFillGapXY(benchmark::State& state)
{
    FillGaps(state, Bench::Map().layers[0]);
}
BENCHMARK(SurfaceFillGapXY)->DenseRange(AlongRows, AlongBoth)->Unit(benchmark::kMillisecond);

void SurfaceFillGapXYWithoutGaps(benchmark::State& state)
{
    Zo::Object<void*> whole;
    Zo::Test(xqObject_CloneImpl(whole.Slot(), Bench::Map().layers[0], nullptr, nullptr, 0));
    auto* cells = static_cast<std::int16_t*>(qArray2_At(whole, 0, 0));
    std::replace(cells, cells + Bench::kSide * Bench::kSide, Zvl::GetNull<short>(), std::int16_t{0});
    FillGaps(state, whole);
}
BENCHMARK(SurfaceFillGapXYWithoutGaps)->DenseRange(AlongRows, AlongBoth)->Unit(benchmark::kMillisecond);

void CopyOfAsManyBytes(benchmark::State& state)
{
    const void* source = qArray2_At(Bench::Map().layers[0], 0, 0);
    for (auto _ : state)
    {
        const Zo::Object<void*> copy = Bench::NewArray(xxq16s_type);
        std::memcpy(qArray2_At(copy, 0, 0), source, sizeof(std::int16_t) * Bench::kSide * Bench::kSide);
        benchmark::DoNotOptimize(copy.Get());
    }
}
BENCHMARK(CopyOfAsManyBytes)->Unit(benchmark::kMillisecond);

} // namespace
