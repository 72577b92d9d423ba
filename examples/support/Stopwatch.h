#pragma once

#include <chrono>

namespace Examples
{

/** Milliseconds since it was made. */
class Stopwatch
{
public:
    double Milliseconds() const
    {
        return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start).count();
    }

private:
    std::chrono::steady_clock::time_point start = std::chrono::steady_clock::now();
};

} // namespace Examples
