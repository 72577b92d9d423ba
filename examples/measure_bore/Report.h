#pragma once

#include "measure_bore/Features.h"
#include "measure_bore/SimulatedPlate.h"
#include "support/MapPicture.h"
#include "support/ResultTable.h"

#include <optional>
#include <string>

namespace MeasureBore
{

/** All that was measured in one map. */
struct Measurement
{
    std::string title;
    Zvl::Surface surface;
    std::optional<Zvl::Anchor> anchor; ///< where a drawing is known: how the part is displaced
    double searchMilliseconds = 0.0;
    MeasuredPlane plane{};
    std::optional<MeasuredCircle> circle;
    std::optional<MeasuredSphere> sphere;
    std::string remark; ///< why something was not measured
    Examples::HeightRange colours{};
};

/** What a simulated scan was made from. */
struct Truth
{
    PlateDrawing drawing;
    PlatePose pose;
};

Examples::ResultTable Tabulate(const Measurement& measurement, const std::optional<Truth>& truth);

/** The map in false colours with all that was found. */
cv::Mat DrawPicture(const Measurement& measurement, const Examples::ResultTable& table);

} // namespace MeasureBore
