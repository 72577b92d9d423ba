#pragma once

#include "compose_regions/Scene.h"
#include "support/Statistics.h"

#include <memory>

namespace ComposeRegions
{

/** What was found in the next scan of a scene. */
struct Inspection
{
    Zvl::Anchor anchor;                   ///< the displacement, from the matched features
    double mismatch;                      ///< root mean square of what keeps the features apart after it
    std::shared_ptr<Zvl::ROI> drawn;      ///< shapes and data, united, as on the reference scan
    std::shared_ptr<Zvl::ROI> shapes;     ///< the shapes, moved
    std::shared_ptr<Zvl::ROI> united;     ///< shapes and data after the anchor, of which the data stay
    double area;                          ///< of the moved shapes
    Examples::Statistics referenceHeight; ///< heights in the shapes: reference scan
    Examples::Statistics drawnHeight;     ///< next scan, with shapes as drawn
    Examples::Statistics movedHeight;     ///< next scan, with shapes moved
    Examples::Statistics dataHeight;      ///< heights in the data region: next scan
    Zvl::Surface masked;                  ///< what `united` leaves of the next scan
    double milliseconds;                  ///< to move the regions and to mask the scan
};

/** By how much an anchor moves the middle of the reference scan's features. The shift alone tells little when the origin is
 *  far from the part: the smallest turn about it then moves the part a lot. */
qPoint64f MoveOfPart(const Scene& scene, const Zvl::Anchor& anchor);

/** @throws std::runtime_error when the features of the two scans do not fit onto each other */
Inspection Inspect(const Scene& scene);

} // namespace ComposeRegions
