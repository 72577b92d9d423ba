#include "survey/Measure.h"

#include "support/BenchMap.h"
#include "survey/Callers.h"
#include "survey/HeapPeak.h"

#include <algorithm>
#include <chrono>
#include <cstring>
#include <numeric>
#include <random>

namespace Survey
{

namespace
{

constexpr double kSampleSeconds = 0.002;

/** An action to time, and what is done before each call of it. */
struct Timed
{
    Action run;
    Action prepare{};
    int callsPerReading = 1; // of the clock
};

/** Reads the clock around @p calls calls. */
double SecondsOf(const Action& run, int calls)
{
    const auto start = std::chrono::steady_clock::now();
    for (int i = 0; i < calls; ++i)
    {
        run();
    }
    return std::chrono::duration<double>(std::chrono::steady_clock::now() - start).count();
}

double SecondsOfPrepared(const Timed& timed)
{
    if (timed.prepare)
    {
        timed.prepare();
    }
    return SecondsOf(timed.run, timed.callsPerReading);
}

/** Runs once to warm up and once for an estimate; short actions are then called many times for each reading. */
void Calibrate(Timed& timed)
{
    SecondsOfPrepared(timed);
    const double seconds = SecondsOfPrepared(timed);
    if (!timed.prepare)
    {
        timed.callsPerReading = static_cast<int>(std::clamp(kSampleSeconds / std::max(seconds, 1e-9), 1.0, 1e6));
    }
}

/** Seconds of one call. A call that is not timed goes before many short ones, so that nobody pays for what the action before
 *  has left in the cache, or gains from it. */
double Sample(const Timed& timed)
{
    if (timed.callsPerReading > 1)
    {
        timed.run();
    }
    double total = 0.0;
    int calls = 0;
    while (total < 0.9 * kSampleSeconds) // a reading that was estimated as a whole sample is one
    {
        total += SecondsOfPrepared(timed);
        calls += timed.callsPerReading;
    }
    return total / calls;
}

/** The median seconds of a call of each, of samples taken in turn, in another order each time: what went before makes a
 *  difference. */
std::vector<double> MedianSeconds(std::vector<Timed> timed, int samples)
{
    std::for_each(timed.begin(), timed.end(), Calibrate);
    std::vector<std::vector<double>> seconds(timed.size());
    std::vector<std::size_t> order(timed.size());
    std::iota(order.begin(), order.end(), std::size_t{0});
    std::minstd_rand random;
    for (int i = 0; i < samples; ++i)
    {
        std::shuffle(order.begin(), order.end(), random);
        for (const std::size_t j : order)
        {
            seconds[j].push_back(Sample(timed[j]));
        }
    }
    std::vector<double> medians;
    std::transform(seconds.begin(), seconds.end(), std::back_inserter(medians), Median);
    return medians;
}

/** A copy that reads and writes @p bytesMoved in all, within arrays that are in use already. */
Timed Copy(double bytesMoved)
{
    const auto size = static_cast<std::size_t>(bytesMoved / 2.0);
    const auto newArray = [size]
    {
        Zo::Object<void*> array = Bench::NewArray(xxq8u_type, 1, static_cast<int>(size));
        std::memset(qArray2_At(array, 0, 0), 1, size);
        return array;
    };
    return {[size, from = newArray(), to = newArray()]
            {
                std::memcpy(qArray2_At(to, 0, 0), qArray2_At(from, 0, 0), size);
                Keep(to);
            },
            {}};
}

void MeasureTimes(const Case& subject, int samples, Result& result)
{
    std::vector<Timed> timed = {{subject.ours, subject.prepare}};
    for (const Peer& peer : subject.peers)
    {
        timed.push_back({peer.run, {}});
    }
    if (subject.bytesMoved > 0.0)
    {
        timed.push_back(Copy(subject.bytesMoved));
    }
    const std::vector<double> seconds = MedianSeconds(timed, samples);
    result.seconds = seconds[0];
    for (std::size_t i = 0; i < subject.peers.size(); ++i)
    {
        result.peers.push_back({subject.peers[i].name, seconds[i + 1]});
    }
    result.copyShare = subject.bytesMoved > 0.0 ? seconds.back() / seconds[0] : 0.0;
}

void SetWorkers(std::size_t count)
{
    if (qThreadPool_Count(qThreadPool_Default()) != count)
    {
        Zo::Test(qThreadPool_SetCount(qThreadPool_Default(), count));
    }
}

/** The time with one worker over that with two. */
double WorkersGain(const Case& subject, int samples)
{
    const std::size_t before = qThreadPool_Count(qThreadPool_Default());
    const auto with = [&subject](std::size_t workers) -> Timed
    {
        return {subject.ours, [&subject, workers]
                {
                    SetWorkers(workers);
                    if (subject.prepare)
                    {
                        subject.prepare();
                    }
                }};
    };
    const std::vector<double> seconds = MedianSeconds({with(1), with(2)}, samples);
    SetWorkers(before);
    return seconds[0] / seconds[1];
}

void MeasureScratch(const Case& subject, Result& result)
{
    if (subject.prepare)
    {
        subject.prepare();
    }
    result.scratchBytes = std::max(PeakHeapBytes(subject.ours) - subject.outputBytes, 0.0);
}

void MeasureGrowth(const Operation& operation, int samples, Result& result)
{
    const Case small = operation.at(kSmallSide);
    const Case large = operation.at(kLargeSide);
    std::vector<Timed> timed = {{small.ours, small.prepare}, {large.ours, large.prepare}};
    if (small.bytesMoved > 0.0)
    {
        timed.push_back(Copy(small.bytesMoved));
        timed.push_back(Copy(large.bytesMoved));
    }
    const std::vector<double> seconds = MedianSeconds(timed, samples);
    result.growth = (seconds[1] / large.items) / (seconds[0] / small.items);
    if (small.bytesMoved > 0.0)
    {
        result.copyGrowth = (seconds[3] / large.items) / (seconds[2] / small.items);
    }
}

} // namespace

double Median(std::vector<double> values)
{
    const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
    std::nth_element(values.begin(), middle, values.end());
    return *middle;
}

Result Measure(const Operation& operation, int samples, bool onlyOurs)
{
    cv::setNumThreads(operation.usesWorkers ? -1 : 1);
    Result result;
    result.name = operation.name;
    result.item = operation.item;
    result.usesWorkers = operation.usesWorkers;
    {
        Case subject = operation.at(kSide);
        result.items = subject.items;
        if (onlyOurs)
        {
            result.seconds = MedianSeconds({{subject.ours, subject.prepare}}, samples)[0];
            return result;
        }
        MeasureTimes(subject, samples, result);
        MeasureScratch(subject, result);
        if (operation.usesWorkers)
        {
            result.workersGain = WorkersGain(subject, samples);
            result.tinyGain = WorkersGain(operation.at(kTinySide), samples);
        }
    }
    result.callersGain = CallersGain(operation, kTinySide, samples);
    MeasureGrowth(operation, samples, result);
    return result;
}

} // namespace Survey
