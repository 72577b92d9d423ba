#pragma once

#include "roundness/Reference.h"
#include "roundness/SimulatedBore.h"
#include "support/ResultTable.h"

#include <opencv2/core.hpp>

#include <optional>

namespace Roundness
{

/** Each reference with the circles about its centre and the roundness; checked where the form is known. */
Examples::ResultTable Tabulate(const Measurement& measurement, const std::optional<BoreForm>& truth);

/** The form in polar coordinates, with the reference circles, about the centre of the minimum zone, or, where there is
 *  none, of least squares. */
cv::Mat DrawPicture(const std::string& title, const Measurement& measurement, const std::optional<BoreForm>& truth,
                    const Examples::ResultTable& table);

} // namespace Roundness
