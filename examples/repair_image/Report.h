#pragma once

#include "repair_image/Repair.h"
#include "support/ResultTable.h"

#include <opencv2/core.hpp>

#include <vector>

namespace RepairImage
{

Examples::ResultTable Tabulate(const DamagedSurface& piece, const std::vector<Repair>& repairs);

/** The piece and its repairs side by side, and below them what each repair is off by. */
cv::Mat DrawPicture(const DamagedSurface& piece, const std::vector<Repair>& repairs);

} // namespace RepairImage
