#pragma once

#include <string>

namespace Examples
{

/** A number with so many decimals. */
std::string NumberText(double value, int decimals);

/** Four decimals, and more for small values, so that at least four digits tell something. */
std::string MeasureText(double value);

/** Four digits, however small the number is. */
std::string StepText(double value);

/** Four decimals, with a sign. */
std::string DeviationText(double value);

/** A text with small letters in place of the capital ones of English. */
std::string LowerCase(std::string text);

/** The last part of a path. */
std::string FileName(const std::string& path);

} // namespace Examples
