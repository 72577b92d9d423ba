#include "support/Statistics.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>

namespace Examples
{

Statistics::Statistics(const std::vector<double>& values)
    : mean(std::numeric_limits<double>::quiet_NaN()), deviation(mean), low(mean), high(mean)
{
    if (values.empty())
    {
        return;
    }
    const auto count = static_cast<double>(values.size());
    mean = std::accumulate(values.begin(), values.end(), 0.0) / count;
    const double squares =
        std::accumulate(values.begin(), values.end(), 0.0,
                        [this](double sum, double value) { return sum + (value - mean) * (value - mean); });
    deviation = values.size() > 1 ? std::sqrt(squares / (count - 1.0)) : 0.0;
    const auto [smallest, largest] = std::minmax_element(values.begin(), values.end());
    low = *smallest;
    high = *largest;
}

} // namespace Examples
