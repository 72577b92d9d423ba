#pragma once

#include "support/MappingFile.h"

#include <opencv2/core.hpp>

#include <string>

namespace Examples
{

/** The map that a picture of counts, CV_16UC1, holds: a stored value is the height count plus 32768, and 0 is missing.
 *  @throws InputError when all heights are missing */
Zvl::Surface MapOfPicture(const cv::Mat& picture, const Mapping& mapping, const std::string& path);

/** The picture of the counts of a map. */
cv::Mat PictureOfMap(const Zvl::Surface& map);

} // namespace Examples
