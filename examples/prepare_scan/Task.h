#pragma once

#include "support/ResultTable.h"

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <functional>
#include <optional>
#include <string>

namespace PrepareScan
{

/** A place where the part is lower or higher than it should be. */
struct Flaw
{
    qPoint64f place;
    double height; ///< largest deviation, below 0 for a dent
};

/** What is known of a simulated part. */
struct Truth
{
    std::function<std::optional<double>(const qPoint64f& place)> height; ///< nothing where the part is open
    Flaw dent;
    Flaw burr;
    double noise; ///< standard deviation of a height
};

/** A scan, and what it is to be compared with. */
struct Task
{
    std::string title;
    Zvl::Surface scan;
    Zvl::Surface golden; ///< on the grid of a prepared scan, but with an offset and a size of its own
    std::string goldenName;
    std::optional<double> limit; ///< of a deviation that is fine; nothing to take three times their spread
    std::optional<Truth> truth;
};

} // namespace PrepareScan
