#include "support/Tokens.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Examples
{

std::string_view Tokens::Next()
{
    constexpr std::string_view kBlanks = " \t\r\n\v\f";
    const std::size_t begin = std::min(text.find_first_not_of(kBlanks), text.size());
    const std::size_t end = std::min(text.find_first_of(kBlanks, begin), text.size());
    const std::string_view word = text.substr(begin, end - begin);
    text.remove_prefix(end);
    return word;
}

std::optional<double> ParseNumber(std::string_view word)
{
    word.remove_prefix(word.size() > 1 && word[0] == '+' && word[1] != '-' ? 1 : 0);
    double number = 0.0;
    const auto [end, error] = std::from_chars(word.data(), word.data() + word.size(), number);
    const bool isNumber = error == std::errc() && end == word.data() + word.size();
    return isNumber ? std::optional(number) : std::nullopt;
}

std::string ShortestText(double value)
{
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.data(), text.data() + text.size(), value).ptr};
}

std::string Quoted(std::string_view word)
{
    constexpr std::size_t kMost = 24;
    std::string shown(word.substr(0, kMost));
    std::replace_if(
        shown.begin(), shown.end(), [](char letter) { return letter < ' ' || letter > '~'; }, '?');
    return '\'' + shown + (word.size() > kMost ? "...'" : "'");
}

} // namespace Examples
