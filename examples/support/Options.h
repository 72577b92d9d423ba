#pragma once

#include <optional>
#include <string>
#include <vector>

namespace Examples
{

/** What an example is asked to do. */
struct Options
{
    std::optional<std::string> input;   ///< the scan to measure; without one the example simulates it
    std::optional<std::string> mapping; ///< where scale and offset of a PNG or TIFF are, if not beside it
    std::optional<std::string> save;    ///< where the scan that is measured goes
    std::string output;                 ///< where the picture goes
    bool isKnownPart = false;           ///< the input shows the part that would be simulated
    bool wantsProgress = false;
    bool wantsHelp = false;

    /** Whether the truth of what is measured is known. */
    bool HasTruth() const { return !input || isKnownPart; }

    /** What results and pictures call the scan. @param simulated its name when it is not from a file */
    std::string Title(const std::string& simulated) const;
};

/** What an example says about itself. */
struct Description
{
    std::string name;      ///< of the program
    std::string summary;   ///< in a few words
    std::string task;      ///< lines on what it measures, and how
    std::string input;     ///< lines on what an input should show
    std::string knownPart; ///< lines on what is different for a part that is known
};

/** @throws InputError when an argument cannot be used */
Options ReadOptions(const std::vector<std::string>& arguments, const Description& description);

/** The text that `--help` prints. */
std::string HelpText(const Description& description);

} // namespace Examples
