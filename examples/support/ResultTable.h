#pragma once

#include <cstddef>
#include <optional>
#include <ostream>
#include <string>
#include <vector>

namespace Examples
{

/** The value that a feature should have, where it is known. */
struct Expected
{
    double nominal;
    double tolerance; ///< largest deviation that is fine
};

/** One measured value. What is absent prints as "-". */
struct Result
{
    std::string feature;
    std::string unit;
    std::optional<double> measured;
    std::optional<Expected> expected = std::nullopt;
    std::optional<std::size_t> kept = std::nullopt;
    std::optional<std::size_t> rejected = std::nullopt;
    std::optional<double> milliseconds = std::nullopt; ///< time of the step, on the first result of a step

    /** False when the value is missing or outside its tolerance. */
    bool IsFine() const;
};

/** Measured values in order, printed as a table. */
class ResultTable
{
public:
    void Add(const Result& result) { results.push_back(result); }
    const std::vector<Result>& Results() const { return results; }
    void Print(std::ostream& stream) const;

    /** Prints what is out of tolerance, or how many values are within. Returns true when all are. */
    bool PrintVerdict(std::ostream& stream) const;

private:
    std::vector<Result> results;
};

} // namespace Examples
