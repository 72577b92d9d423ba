#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <optional>
#include <string>
#include <vector>

namespace ProfileGauge
{

/** A groove as drawn, in millimetres: x from its middle, heights from the land on both sides of it. */
struct Groove
{
    double width; ///< at half depth
    double depth;
    double draft; ///< what a wall takes of x on its way from the land to the floor
    double land;  ///< width of the land on each side that the depth is measured from
    double play;  ///< how far the groove may lie along x from where it is expected
};

/** One line across the groove. */
struct LineScan
{
    double position; ///< of the line, across the lines
    Zvl::Profile profile;
};

/** What a sensor recorded on its way along a groove: at least one line scan, all of one length and mapping. */
struct Recording
{
    std::string title;
    std::vector<LineScan> scans;
    Groove drawing;
    Zvl::Anchor expected; ///< where the groove lies, about

    /** The groove under each line scan, where it is known. */
    std::optional<std::vector<Groove>> truth;
};

} // namespace ProfileGauge
