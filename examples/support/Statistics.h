#pragma once

#include <vector>

namespace Examples
{

/** Mean and spread of values; NaN throughout when there are none. */
struct Statistics
{
    explicit Statistics(const std::vector<double>& values);

    double mean;
    double deviation; ///< standard deviation; 0 for a single value
    double low;
    double high;
};

} // namespace Examples
