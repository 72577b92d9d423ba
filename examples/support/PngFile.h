#pragma once

#include <opencv2/core.hpp>

#include <string>

namespace Examples
{

/** Reads a grey PNG of 16 bits per cell as CV_16UC1.
 *  @throws InputError when the file cannot be read, is damaged, or is another kind of picture */
cv::Mat ReadGrey16Png(const std::string& path);

/** Writes a picture as PNG, whatever the name's extension.
 *  @throws InputError when the file cannot be written */
void WritePng(const std::string& path, const cv::Mat& picture);

} // namespace Examples
