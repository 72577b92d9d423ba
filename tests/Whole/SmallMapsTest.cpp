/** @file
 *  What runs on workers must not cost more for small maps than it does on one thread: to wake a second one takes as long as
 *  the whole job. */

#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Filter/Filter.h>

#include "support/Surfaces.h"

#include <chrono>
#include <functional>
#include <limits>
#include <string>

namespace
{

constexpr std::size_t kSide = 64;

struct ParallelOperation
{
    std::string name;
    std::function<void()> run;
};

template <typename Region, typename... Shape>
ParallelOperation MaskOf(const std::string& name, const Shape&... shape)
{
    return {name, [=]
            {
                Region region(shape..., nullptr);
                ASSERT_NE(region.GetMask().Get(), nullptr);
            }};
}

/** All that hands its rows to workers, on maps of 64 x 64 cells. */
std::vector<ParallelOperation> ParallelOperations()
{
    using namespace Zvl;
    std::mt19937 random(64);
    const Surface map = TestSupport::MakeRandomSurface(kSide, kSide, 0.1, random);
    const qPoint64f scale = {1.0, 1.0};
    const qPoint64f offset = {0.0, 0.0};
    const qPoint64f centre = {31.5, 31.5};
    const std::vector<Point2d<double>> corners = {{2.0, 5.0}, {60.0, 3.0}, {55.0, 61.0}, {30.0, 20.0}, {4.0, 58.0}};
    const std::vector<Zo::Object<void*>> masks = {TestSupport::MakeRandomMask(kSide, kSide, 0.5, random),
                                                  TestSupport::MakeRandomMask(kSide, kSide, 0.5, random)};
    const int side = kSide;
    const Rect2d<int> all = {0, 0, side, side};
    return {
        MaskOf<PolygonROI>("polygon", corners, kSide, kSide, scale, offset),
        MaskOf<RectangleROI>("rectangle", 10.0, 12.0, 40.0, 30.0, 20.0, kSide, kSide, scale, offset),
        MaskOf<EllipseROI>("ellipse", centre, 10.0, 5.0, 50.0, 40.0, 10.0, 300.0, 30.0, kSide, kSide, scale, offset),
        MaskOf<CircleROI>("circle", centre, 10.0, 30.0, 20.0, 300.0, kSide, kSide, scale, offset),
        MaskOf<SurfaceROI>("surface", map, kSide, kSide, scale, offset),
        MaskOf<IntensityROI>("intensity", map, kSide, kSide, scale, offset, std::uint8_t{50}, std::uint8_t{200}),
        {"merged masks",
         [=]
         {
             Zo::Object<void*> merged;
             MergeMasks(masks, {all, all}, merged.Slot(), nullptr, nullptr);
         }},
        {"points", [=]
         {
             Zo::Object<void*> points;
             GetPointsFromROI<qPoint3d64f>(map, all, masks[0], points.Slot());
         }}};
}

double SecondsOfCalls(const std::function<void()>& run)
{
    constexpr int kCalls = 20;
    const auto start = std::chrono::steady_clock::now();
    for (int call = 0; call < kCalls; ++call)
    {
        run();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

/** The least time with @p workers workers over that with one, of readings that take turns: what else the machine does can
 *  only lengthen a reading. */
double TimeBesideOneWorker(const std::function<void()>& run, std::size_t workers)
{
    double withOne = std::numeric_limits<double>::infinity();
    double withAll = std::numeric_limits<double>::infinity();
    for (int reading = 0; reading < 100; ++reading)
    {
        {
            const TestSupport::WorkerCount one(1);
            withOne = std::min(withOne, SecondsOfCalls(run));
        }
        const TestSupport::WorkerCount all(workers);
        withAll = std::min(withAll, SecondsOfCalls(run));
    }
    return withAll / withOne;
}

/** TimeBesideOneWorker(), measured again while it is not below @p bound: a machine that slows down and speeds up again can
 *  treat all readings of one side alike. */
double TimeBesideOneWorkerAtBest(const std::function<void()>& run, std::size_t workers, double bound)
{
    double ratio = TimeBesideOneWorker(run, workers);
    for (int attempt = 1; attempt < 20 && ratio >= bound; ++attempt)
    {
        ratio = std::min(ratio, TimeBesideOneWorker(run, workers));
    }
    return ratio;
}

// One worker has all rows, the other is called with none, which takes a few nanoseconds; the time of a whole job is half of
// a microsecond or more. A second share would begin anew, for some tenths, and a thread that is woken takes several.
TEST(SmallMaps, TakeAsLongWithTwoWorkersAsWithOne)
{
    for (const ParallelOperation& operation : ParallelOperations())
    {
        constexpr double kBound = 1.1;
        const double ratio = TimeBesideOneWorkerAtBest(operation.run, 2, kBound);
        RecordProperty(operation.name, std::to_string(ratio));
        EXPECT_LT(ratio, kBound) << operation.name;
    }
}

} // namespace
