#pragma once

#include "repair_image/DamagedSurface.h"
#include "support/Progress.h"

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

namespace RepairImage
{

/** What a repair is off by in one kind of cells, heights or intensities. */
struct Errors
{
    cv::Mat cells; ///< repaired minus true in the dropouts, otherwise 0, as CV_16SC1; null where nothing was repaired
    std::size_t repaired; ///< dropouts that were repaired
    std::size_t open;     ///< dropouts that were not
    double rms;           ///< over the repaired ones, in counts
    double largest;
};

/** One method's repair of a piece. */
struct Repair
{
    std::string method;
    Zvl::Surface surface;
    double heightMilliseconds;
    std::optional<double>
        intensityMilliseconds; ///< nothing when there are no intensities, or both are repaired at once
    Errors heightErrors;
    std::optional<Errors> intensityErrors;
};

/** Repairs a piece with each of the methods: two that continue the image into its holes, and gap filling. */
std::vector<Repair> RepairAll(const DamagedSurface& piece, Examples::Progress& progress);

} // namespace RepairImage
