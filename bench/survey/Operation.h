#pragma once

/** @file
 *  What the survey measures: a list of operations for each folder of the library. */

#include <cmath>
#include <functional>
#include <string>
#include <vector>

namespace Survey
{

using Action = std::function<void()>;

/** The same work by somebody else. */
struct Peer
{
    std::string name;
    Action run;
};

/** An operation and its input, ready to run. The actions own their data; peers see the same input, and make their
 *  results afresh where ours does. */
struct Case
{
    Action ours{};
    Action prepare{}; ///< runs before each call of #ours and is not timed; may be empty
    std::vector<Peer> peers{};
    double items = 0.0;      ///< cells or points that the time is divided by when maps of different sizes are compared
    double bytesMoved = 0.0; ///< that must be read and written at the least; 0 where memory is not what limits the work
    double outputBytes = 0.0; ///< of the results that one call makes; 0 when they go to arrays that were there before
};

struct Operation
{
    std::string name;
    std::string item;              ///< what #Case::items counts, in the plural
    bool usesWorkers = false;      ///< whether it runs on all cores; its peers then may, too
    std::function<Case(int)> at{}; ///< makes the case for a square map of so many cells on a side
};

std::vector<Operation> UtilsOperations();
std::vector<Operation> CommonOperations();
std::vector<Operation> GeometryOperations();
std::vector<Operation> ArithmeticOperations();
std::vector<Operation> FilterOperations();
std::vector<Operation> LineOperations();
std::vector<Operation> FittingOperations();
std::vector<Operation> ImageProcessingOperations();

inline double Square(double value)
{
    return value * value;
}

/** So many points, or cells of a line, as stand for a map: about 100,000 for 2048 x 2048 cells. */
inline std::size_t ManyPoints(int side)
{
    return static_cast<std::size_t>(side) * static_cast<std::size_t>(side) / 40;
}

/** A tenth of them, for what takes a pass for each rejected point. */
inline std::size_t FewPoints(int side)
{
    return ManyPoints(side) / 10;
}

/** Makes the compiler take @p result for used. */
template <typename T>
void Keep(const T& result)
{
    asm volatile("" : : "g"(&result) : "memory");
}

} // namespace Survey
