#include "survey/Callers.h"

#include "survey/Measure.h"

#include <ZdkVisionLib/platform/ZoApi.h>

#include <algorithm>
#include <barrier>
#include <chrono>
#include <thread>

namespace Survey
{

namespace
{

using Clock = std::chrono::steady_clock;

constexpr double kSampleSeconds = 0.005;

/** A host thread's work: the same call many times. */
class Caller
{
public:
    explicit Caller(Case work) : subject(std::move(work)) {}

    void Call(int calls) const
    {
        for (int i = 0; i < calls; ++i)
        {
            if (subject.prepare)
            {
                subject.prepare();
            }
            subject.ours();
        }
    }

    int CallsOfASample() const
    {
        Call(1);
        const auto start = Clock::now();
        Call(1);
        const double seconds = std::chrono::duration<double>(Clock::now() - start).count();
        return static_cast<int>(std::clamp(kSampleSeconds / std::max(seconds, 1e-9), 1.0, 1e6));
    }

private:
    Case subject;
};

/** From when the first begins until the last has ended. */
double SecondsTogether(const std::vector<const Caller*>& callers, int calls)
{
    std::barrier ready(static_cast<std::ptrdiff_t>(callers.size()));
    std::vector<Clock::time_point> begins(callers.size());
    std::vector<Clock::time_point> ends(callers.size());
    const auto host = [&](std::size_t i)
    {
        ready.arrive_and_wait();
        begins[i] = Clock::now();
        callers[i]->Call(calls);
        ends[i] = Clock::now();
    };
    std::vector<std::thread> threads;
    for (std::size_t i = 0; i < callers.size(); ++i)
    {
        threads.emplace_back(host, i);
    }
    std::for_each(threads.begin(), threads.end(), [](std::thread& thread) { thread.join(); });
    const auto first = *std::min_element(begins.begin(), begins.end());
    const auto last = *std::max_element(ends.begin(), ends.end());
    return std::chrono::duration<double>(last - first).count();
}

} // namespace

double CallersGain(const Operation& operation, int side, int samples)
{
    const std::size_t before = qThreadPool_Count(qThreadPool_Default());
    Zo::Test(qThreadPool_SetCount(qThreadPool_Default(), 1));
    const Caller first(operation.at(side));
    const Caller second(operation.at(side));
    const int calls = first.CallsOfASample();
    std::vector<double> alone;
    std::vector<double> together;
    for (int i = 0; i < samples; ++i)
    {
        alone.push_back(SecondsTogether({&first}, calls));
        together.push_back(SecondsTogether({&first, &second}, calls));
        alone.push_back(SecondsTogether({&second}, calls));
    }
    Zo::Test(qThreadPool_SetCount(qThreadPool_Default(), before));
    return 2.0 * Median(alone) / Median(together);
}

} // namespace Survey
