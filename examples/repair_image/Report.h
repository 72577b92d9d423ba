#pragma once

#include "repair_image/Repair.h"
#include "support/ResultTable.h"

#include <opencv2/core.hpp>

#include <vector>

namespace RepairImage
{

Examples::ResultTable Tabulate(const Specimen& specimen, const std::vector<Repair>& repairs);

/** The specimen and its repairs side by side, and below them what each repair is off by. */
cv::Mat DrawPicture(const Specimen& specimen, const std::vector<Repair>& repairs);

} // namespace RepairImage
