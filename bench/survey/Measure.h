#pragma once

#include "survey/Operation.h"

namespace Survey
{

constexpr int kTinySide = 64;
constexpr int kSmallSide = 512;
constexpr int kSide = 2048;
constexpr int kLargeSide = 4096;

struct PeerTime
{
    std::string name;
    double seconds = 0.0;
};

/** What one operation gave. Times are those of one call at #kSide; a 0 means that there is no such figure. */
struct Result
{
    std::string name;
    std::string item;
    bool usesWorkers = false;
    double items = 0.0;
    double seconds = 0.0;
    std::vector<PeerTime> peers{};
    double copyShare = 0.0;   ///< the time of a `memcpy` that moves as many bytes, over ours
    double growth = 0.0;      ///< time per item at #kLargeSide over that at #kSmallSide
    double copyGrowth = 0.0;  ///< the same of the `memcpy`
    double workersGain = 0.0; ///< time with one worker over that with two
    double tinyGain = 0.0;    ///< the same at #kTinySide
    double callersGain = 0.0; ///< what two host threads get done at #kTinySide over what one does
    double scratchBytes = 0.0;
};

/** Measures all of an operation, or just our time when @p onlyOurs. Samples of what is compared alternate, so that a
 *  disturbance meets all of them; medians are taken of @p samples. */
Result Measure(const Operation& operation, int samples, bool onlyOurs);

/** The middle of the values; of an even count the higher one. */
double Median(std::vector<double> values);

} // namespace Survey
