#pragma once

#include <optional>
#include <string>

namespace Examples
{

/** What an example is asked to do. */
struct Options
{
    struct MapFiles
    {
        std::string png;
        std::string json;
    };

    std::optional<MapFiles> map; ///< the map to measure; without one the example simulates a scan
    std::string output;          ///< where the picture goes
};

/** The frame of an example's main(): reads `[--map FILE.png FILE.json] [--output FILE.png]`, runs @p measure, and
 *  turns what it throws into one line on the error stream.
 *  @param measure returns true when all measured values are as they should be
 *  @return the exit code: 0; 1 when a value is off or the measurement failed; 2 for bad input */
int RunProgram(int argumentCount, char** arguments, const std::string& defaultOutput,
               bool (*measure)(const Options& options));

} // namespace Examples
