#pragma once

#include "compose_regions/Inspection.h"

namespace ComposeRegions
{

Examples::ResultTable Tabulate(const Scene& scene, const Inspection& inspection);

/** The reference scan with the regions as drawn, the next scan with the regions before and after the anchor, and what the
 *  mask leaves of it; one below the other. */
cv::Mat DrawPicture(const Scene& scene, const Inspection& inspection, const Examples::ResultTable& table);

} // namespace ComposeRegions
