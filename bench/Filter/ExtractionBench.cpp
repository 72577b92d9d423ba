/** @file
 *  Extraction over a disc that covers most of the map, without its missing cells, beside cv::findNonZero, which gives
 *  columns and rows only. */

#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Filter/Filter.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>

#include <vector>

namespace
{

/** Box and mask of a disc, missing heights excluded. */
struct Disc
{
    Zvl::Rect2d<int> box;
    Zo::Object<void*> mask;
    std::int64_t cells;
};

const Disc& ValidDisc()
{
    static const Disc disc = []
    {
        Zvl::CircleROI roi(0.24, 0.24, 0.0, 10.0, 0.0, 360.0, Bench::kSide, Bench::kSide, Bench::kScale, Bench::kOffset,
                           nullptr);
        Zvl::ThresholdHeight(Bench::Map(), Zvl::GetNull<double>(), Zvl::GetNull<double>(), roi);
        Disc result = {roi.GetBoundingBox(), roi.GetMask(), 0};
        result.cells = cv::countNonZero(Bench::MatOver(result.mask, CV_8U));
        return result;
    }();
    return disc;
}

template <typename T>
void GetPointsFromROI(benchmark::State& state)
{
    const Disc& disc = ValidDisc();
    for (auto _ : state)
    {
        Zo::Object<void*> list;
        Zvl::GetPointsFromROI<T>(Bench::Map(), disc.box, disc.mask, list.Slot());
    }
    state.SetItemsProcessed(state.iterations() * disc.cells);
}
BENCHMARK(GetPointsFromROI<qPoint3d64f>)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(GetPointsFromROI<qPoint3d32s>)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(GetPointsFromROI<short>)->Unit(benchmark::kMillisecond)->UseRealTime();

/** The list is kept and emptied, as in a host that measures part after part. */
void GetPointsFromROIIntoAKeptList(benchmark::State& state)
{
    const Disc& disc = ValidDisc();
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, 0, nullptr));
    void* raw = list.Get();
    for (auto _ : state)
    {
        Zo::Test(qArrayList_Purge(raw));
        Zvl::GetPointsFromROI<qPoint3d64f>(Bench::Map(), disc.box, disc.mask, &raw);
    }
    state.SetItemsProcessed(state.iterations() * disc.cells);
}
BENCHMARK(GetPointsFromROIIntoAKeptList)->Unit(benchmark::kMillisecond)->UseRealTime();

void OpenCvFindNonZero(benchmark::State& state)
{
    const Disc& disc = ValidDisc();
    const cv::Mat mask = Bench::MatOver(disc.mask, CV_8U);
    for (auto _ : state)
    {
        std::vector<cv::Point> points;
        cv::findNonZero(mask, points);
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(state.iterations() * disc.cells);
}
BENCHMARK(OpenCvFindNonZero)->Unit(benchmark::kMillisecond)->UseRealTime();

/** What findNonZero leaves to be done: the world point of each cell. */
void OpenCvFindNonZeroAndLookUp(benchmark::State& state)
{
    const Disc& disc = ValidDisc();
    const cv::Mat mask = Bench::MatOver(disc.mask, CV_8U);
    const cv::Mat heights = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    const Zvl::Surface& map = Bench::Map();
    for (auto _ : state)
    {
        std::vector<cv::Point> cells;
        cv::findNonZero(mask, cells);
        std::vector<cv::Point3d> points(cells.size());
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            const int x = disc.box.x + cells[i].x;
            const int y = disc.box.y + cells[i].y;
            points[i] = {x * map.scale.x + map.offset.x, y * map.scale.y + map.offset.y,
                         heights.at<std::int16_t>(y, x) * map.scale.z + map.offset.z};
        }
        benchmark::DoNotOptimize(points.data());
    }
    state.SetItemsProcessed(state.iterations() * disc.cells);
}
BENCHMARK(OpenCvFindNonZeroAndLookUp)->Unit(benchmark::kMillisecond)->UseRealTime();

template <typename T>
void ThresholdPercentile(benchmark::State& state)
{
    const Disc& disc = ValidDisc();
    Zo::Object<void*> mask;
    for (auto _ : state)
    {
        state.PauseTiming();
        Zo::Test(xqObject_CloneImpl(mask.Slot(), disc.mask, nullptr, nullptr, 0));
        state.ResumeTiming();
        Zvl::ThresholdPercentile<T>(Bench::Map(), 1.0, 99.0, disc.box, mask);
    }
    state.SetItemsProcessed(state.iterations() * disc.cells);
}
BENCHMARK(ThresholdPercentile<short>)->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK(ThresholdPercentile<double>)->Unit(benchmark::kMillisecond)->UseRealTime();

void CropSurfaceFromROI(benchmark::State& state)
{
    const Disc& disc = ValidDisc();
    for (auto _ : state)
    {
        Zvl::Surface cropped;
        Zvl::CropSurfaceFromROI(Bench::Map(), disc.box, disc.mask, cropped, nullptr);
    }
}
BENCHMARK(CropSurfaceFromROI)->Unit(benchmark::kMillisecond)->UseRealTime();

} // namespace
