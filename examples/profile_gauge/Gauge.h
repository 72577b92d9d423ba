#pragma once

#include "profile_gauge/Line.h"
#include "profile_gauge/Recording.h"

#include <memory>

namespace ProfileGauge
{

/** The places of a line scan that are measured on. */
struct Regions
{
    std::shared_ptr<Zvl::RoiProfile> lands; ///< one on each side of the groove, united
    std::shared_ptr<Zvl::RoiProfile> leftWall;
    std::shared_ptr<Zvl::RoiProfile> rightWall;
    std::shared_ptr<Zvl::RoiProfile> floor;

    Regions ApplyAnchor(const Zvl::Anchor& anchor) const;
};

/** What was measured in one line scan. */
struct Reading
{
    Line land;
    qPoint64f leftEdge;
    qPoint64f rightEdge;
    double width; ///< between the edges, at half depth
    double depth;
    Regions regions; ///< as they lay on this scan
};

/** Measures width and depth of a groove in line scans of one length and mapping. The part may lie a little elsewhere in
 *  each scan: it is located first, and the regions of the drawing are moved there. */
class Gauge
{
public:
    /** @param frame any of the scans: gives length and mapping */
    Gauge(const Groove& groove, const Zvl::Anchor& expectedPlace, const Zvl::Profile& frame);

    /** Nothing when the scan does not show the whole groove. */
    std::optional<Reading> Measure(const Zvl::Profile& scan) const;

private:
    std::optional<Zvl::Anchor> Locate(const Zvl::Profile& scan) const;

    Zvl::Anchor expected;
    std::shared_ptr<Zvl::RoiProfile> search; ///< what is deeper than half the groove, near the expected place
    Regions drawn;
};

/** World points of the items of a scan that have a height. */
std::vector<qPoint64f> PointsOf(const Zvl::Profile& scan);

/** World points of the items of a scan that lie in a region. */
std::vector<qPoint64f> PointsIn(const Zvl::Profile& scan, Zvl::RoiProfile& region);

} // namespace ProfileGauge
