#pragma once

#include "support/MapPicture.h"
#include "support/ResultTable.h"

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace ComposeRegions
{

/** Two scans of one part, which lies elsewhere in the second. */
struct Scene
{
    std::string title;
    Zvl::Surface reference; ///< the regions are drawn on this scan
    Zvl::Surface next;

    /** Three features that both scans show, in the same order. */
    std::vector<qPoint64f> referenceFeatures;
    std::vector<qPoint64f> nextFeatures;
    double searchMilliseconds = 0.0;

    /** Shapes that belong to the part: they are to move with it. */
    std::shared_ptr<Zvl::ComposedROI> shapes = std::make_shared<Zvl::ComposedROI>();

    /** Cells of the reference scan: data lie where the sensor saw them, and no anchor moves them. */
    std::shared_ptr<Zvl::ROI> data;

    /** What is known of the second scan. */
    struct Truth
    {
        Zvl::Anchor displacement;
        double lengthTolerance;
        double angleTolerance;
        std::optional<Examples::Expected> area; ///< of the shapes
        std::optional<Examples::Expected> shapesHeight;
        std::optional<Examples::Expected> dataHeight;
    };
    Truth truth{};

    qPlane3d64f level{}; ///< what the colours of the picture are heights over
    Examples::HeightRange colours{};
};

} // namespace ComposeRegions
