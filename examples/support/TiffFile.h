#pragma once

#include <opencv2/core.hpp>

#include <string>

namespace Examples
{

/** Reads the first picture of a TIFF file, which must be grey, of 16 bits per cell, in strips, and packed without loss or
 *  not at all, as CV_16UC1.
 *  @throws InputError when the file cannot be read, is damaged, or holds another kind of picture */
cv::Mat ReadGrey16Tiff(const std::string& path);

/** Writes a CV_16UC1 picture as grey TIFF, packed without loss.
 *  @throws InputError when the file cannot be written */
void WriteGrey16Tiff(const std::string& path, const cv::Mat& picture);

} // namespace Examples
