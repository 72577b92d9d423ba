#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Examples
{

/** The words of a text, which blanks and line ends separate. */
class Tokens
{
public:
    explicit Tokens(std::string_view words) : text(words) {}

    /** The next word; empty at the end. */
    std::string_view Next();

private:
    std::string_view text;
};

/** A number in decimal notation, or "nan" or "inf"; nothing for other texts and for numbers that a double cannot hold. */
std::optional<double> ParseNumber(std::string_view word);

/** The shortest text that stands for a number and no other. */
std::string ShortestText(double value);

/** A word from a file for an error message: no longer than a few letters, and printable. */
std::string Quoted(std::string_view word);

} // namespace Examples
