#pragma once

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cstddef>
#include <memory>
#include <optional>
#include <vector>

namespace MeasureBore
{

/** The frame that regions of a surface need. */
struct Frame
{
    explicit Frame(const Zvl::Surface& surface);

    std::size_t width;
    std::size_t height;
    qPoint64f scale;
    qPoint64f offset;
};

/** A closed polygon with the given corners. */
std::shared_ptr<Zvl::ROI> MakePolygon(const std::vector<qPoint64f>& corners, const Frame& frame);

/** A ring; with an inner radius of 0 a disc. */
std::shared_ptr<Zvl::ROI> MakeRing(const qPoint64f& center, double innerRadius, double outerRadius, const Frame& frame);

/** Heights to look at; null limits let every height pass. */
struct HeightLimits
{
    double low = Zvl::GetNull<double>();
    double high = Zvl::GetNull<double>();
};

/** Percentiles of the distances from a plane between which cells are kept. */
struct Percentiles
{
    double low;
    double high;
};

struct MeasuredPlane
{
    std::shared_ptr<Zvl::ROI> region; ///< as it was before cells were cleared
    qPlane3d64f plane;
    double flatness;                 ///< distance between the highest and the lowest kept cell, along the normal
    std::optional<double> intensity; ///< mean over the kept cells
    std::size_t kept;
    std::size_t rejected;
    double milliseconds;
};

struct MeasuredCircle
{
    std::shared_ptr<Zvl::ROI> region;
    qPoint64f center;
    double radius;
    double roundness; ///< distance between the farthest and the nearest kept point, along the radius
    std::vector<qPoint64f> kept;
    std::vector<qPoint64f> rejected;
    double milliseconds;
};

struct MeasuredSphere
{
    std::shared_ptr<Zvl::ROI> region;
    qPoint3d64f center;
    double radius;
    std::vector<qPoint3d64f> kept;
    std::vector<qPoint3d64f> rejected;
    double milliseconds;
};

/** Fits a plane to the cells of @p region that have a height within @p limits, and whose distance from a first plane
 *  through them lies between the percentiles.
 *  @throws std::runtime_error when fewer than 4 cells remain */
MeasuredPlane MeasurePlane(const Zvl::Surface& surface, Zvl::ROI& region, const HeightLimits& limits,
                           const Percentiles& percentiles);

/** Fits a circle to the inner edge of the material in the ring @p region, whose middle lies in the hole. The plate is
 * what lies within @p depth of @p plate. One point in ten is rejected.
 *  @throws std::runtime_error when no edge is found */
MeasuredCircle MeasureCircle(const Zvl::Surface& surface, Zvl::ROI& region, const qPlane3d64f& plate, double depth);

/** Fits a sphere to the cells of the disc @p region that have a height within @p limits. One point in 200 is rejected.
 *  @throws std::runtime_error when there are not enough cells */
MeasuredSphere MeasureSphere(const Zvl::Surface& surface, Zvl::ROI& region, const HeightLimits& limits);

} // namespace MeasureBore
