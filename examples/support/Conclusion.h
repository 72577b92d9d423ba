#pragma once

#include "support/Progress.h"
#include "support/ResultTable.h"

#include <opencv2/core.hpp>

#include <string>

namespace Examples
{

/** The end of an example: prints the results, a remark if there is one, and the verdict, and writes the picture.
 *  @return true when all measured values are as they should be
 *  @throws InputError when the picture cannot be written */
bool Conclude(const ResultTable& table, const std::string& remark, const cv::Mat& picture, const std::string& path,
              Progress& progress);

} // namespace Examples
