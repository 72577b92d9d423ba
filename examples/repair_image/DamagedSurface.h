#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <opencv2/core.hpp>

#include <string>

namespace RepairImage
{

/** What a surface shows. Errors have a tolerance where it is the known part. */
enum class Origin
{
    KnownPart,
    File
};

/** A surface whose dropouts are known, because they were cut into it. */
struct DamagedSurface
{
    std::string title;
    Origin origin;
    Zvl::Surface truth;   ///< heights, and perhaps intensities
    Zvl::Surface damaged; ///< the same with dropouts: missing heights, and intensities of 0
    cv::Mat dropouts;     ///< where they were cut, 255 in CV_8UC1
};

/** Cuts drops, scratches and single cells out of a surface, the same ones every time, and none at its edge.
 *  @throws std::runtime_error when the surface is too small for that, or has no height where they are cut */
DamagedSurface CutDropouts(const std::string& title, Origin origin, const Zvl::Surface& truth);

/** The heights of a surface as CV_16SC1. The picture shares its cells with the surface. */
cv::Mat HeightImage(const Zvl::Surface& surface);

/** The intensities of a surface, which must have some, as CV_8UC1. The picture shares its cells with the surface. */
cv::Mat IntensityImage(const Zvl::Surface& surface);

bool HasIntensities(const Zvl::Surface& surface);

/** A surface of the same cells in arrays of its own. */
Zvl::Surface Copy(const Zvl::Surface& surface);

} // namespace RepairImage
