#pragma once

#include "survey/Measure.h"

#include <iosfwd>

namespace Survey
{

/** The table, a row per operation and one more for each further peer, and the summary below it. */
std::string Markdown(const std::vector<Result>& results);

/** Puts @p text between the two marker lines of a file. Throws std::runtime_error when they are not there or the file
 *  cannot be read and written. */
void ReplaceBetweenMarkers(const std::string& path, const std::string& text);

/** Writes all figures as JSON, times in seconds. */
void WriteJson(const std::string& path, const std::vector<Result>& results);

/** The time after a change over that before it for each operation, of files of WriteJson(): before, after, before,
 *  after and so on. Of several pairs it is the median ratio. */
std::string Comparison(const std::vector<std::string>& paths);

} // namespace Survey
