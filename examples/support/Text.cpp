#include "support/Text.h"

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <iomanip>
#include <sstream>

namespace Examples
{

std::string NumberText(double value, int decimals)
{
    std::ostringstream text;
    text << std::fixed << std::setprecision(decimals) << value;
    return text.str();
}

std::string MeasureText(double value)
{
    const double magnitude = std::abs(value);
    const double decimals = magnitude > 0.0 ? 3.0 - std::floor(std::log10(magnitude)) : 4.0;
    return NumberText(value, static_cast<int>(std::clamp(decimals, 4.0, 9.0)));
}

std::string StepText(double value)
{
    std::ostringstream text;
    text << std::setprecision(4) << value;
    return text.str();
}

std::string DeviationText(double value)
{
    std::ostringstream text;
    text << std::showpos << std::fixed << std::setprecision(4) << value;
    return text.str();
}

std::string LowerCase(std::string text)
{
    std::transform(text.begin(), text.end(), text.begin(),
                   [](char letter)
                   { return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter + 32) : letter; });
    return text;
}

std::string FileName(const std::string& path)
{
    return std::filesystem::path(path).filename().string();
}

} // namespace Examples
