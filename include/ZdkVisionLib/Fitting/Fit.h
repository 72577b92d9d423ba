#pragma once

/** @file
 *  Circles, spheres and planes through measured data, with rejection of outliers.
 *
 *  All coordinates, radii and distances are world units. Input points are not tested for nulls: a null
 *  coordinate enters the sums as the huge number that it is. Too few points are no failure: the results stay
 *  null (Zvl::GetNull) and nothing is thrown. All fits run on the calling thread, keep no state, and may run
 *  on many threads at once as long as their outputs differ.
 *
 *  Where a fit takes a percentage, it rejects `trunc(count * (percent / 100.0))` points, evaluated in that
 *  order (29 % of 100 points are 28), but never so many that less than the fit's minimum would stay. A
 *  percentage that is not above 0 (NaN included) rejects none; one beyond all bounds rejects as many as may
 *  go. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zvl
{

/** Which circle FitCircle() looks for. Any other value of the underlying type is accepted: the circle of the
 *  rejection is then returned as it stands. */
enum CircleType : std::int32_t
{
    CIRCLE_LSC = 0, ///< least-squares circle
    CIRCLE_MZC = 1  ///< minimum-zone circle; not yet available
};

/** Fits a circle to @p count points in the plane.
 *
 *  With a percentage above 0 the least-squares circle is fitted and the point farthest from it (the lowest
 *  index among equals) is taken out, again and again until the wanted number is out; at least 3 points stay.
 *  The last circle is the result.
 *
 *  The least-squares circle minimises the sum of (d² - r²)² over the distances d from its centre. It is
 *  linear in the centre and in c = r² - x0² - y0². Source: I. Kåsa, A circle fitting procedure and its error
 *  analysis, IEEE Transactions on Instrumentation and Measurement 25(1), 1976. The systems are solved by an
 *  orthogonal method on coordinates about the centroid, which changes neither residuals nor circle: a circle
 *  of radius 1 at a distance of 1e5 is found to better than 1e-9.
 *
 *  @param points the points; null counts as no points at all, whatever @p count says
 *  @param count number of points
 *  @param outlierPercent percentage of points to reject
 *  @param type see #CircleType
 *  @param center centre of the circle; null point without a fit. This and all following arguments may be
 *  null.
 *  @param minRadius the radius; null without a fit
 *  @param maxRadius the radius once more; null without a fit
 *  @param maxDistance largest distance of a point from the centre. It is searched only for #CIRCLE_LSC
 *  without rejection, and null otherwise.
 *  @param minDistance smallest distance of a point from the centre, likewise
 *  @param maxDistPoints the one point at the largest distance (the first among equals); empty when the
 *  distances are not searched
 *  @param minDistPoints the one point at the smallest distance, likewise
 *  @param keptPoints the points that were not rejected, in input order
 *  @param outlierPoints the rejected points, in order of rejection
 *
 *  Outputs are replaced as a whole, and only when the call returns: when it throws, all are as they were.
 *
 *  Fewer than 3 points: centre and radii are null and nothing is rejected; @p keptPoints holds the input. For
 *  #CIRCLE_LSC without rejection the distances are then searched from a null centre, which is farther than
 *  any double from every ordinary point: @p maxDistance is infinite with the first point in @p maxDistPoints,
 *  and
 *  @p minDistance stays the largest double with a null point in @p minDistPoints. Without any point
 *  @p maxDistance is null and @p maxDistPoints holds a null point, too.
 *
 *  A type other than the two, without rejection: nothing is fitted, and only @p keptPoints is filled.
 *
 *  @throws Zo::Exception from "Zvl::FitCircle_LSC" with the platform's status when memory is exhausted, the
 *  points do not determine a circle (collinear, coincident) or a value is not finite; with status 0 when the
 *          squared radius is negative or at least 3.4028234663852886e38. From "Zvl::FitCircle" with
 *          #STATUS_NOT_SUPPORTED for #CIRCLE_MZC.
 *
 *  Time O(count * (1 + rejected)), with a scan of about 1 ns per point for each rejected point; memory
 *  O(count). */
ZDK_VISION_EXPORT void FitCircle(const qPoint64f* points, std::size_t count, double outlierPercent, CircleType type,
                                 qPoint64f* center, double* minRadius, double* maxRadius, double* maxDistance,
                                 double* minDistance, std::vector<qPoint64f>* maxDistPoints,
                                 std::vector<qPoint64f>* minDistPoints, std::vector<qPoint64f>* keptPoints,
                                 std::vector<qPoint64f>* outlierPoints);

/** Fits a sphere to @p count points, algebraically: it minimises the sum of (d² - r²)² over the distances d
 *  from the centre through the 4-by-4 normal equations, in the coordinates as given. Points far from the
 *  origin, as measured by the size of the sphere, therefore lose digits with the square of that ratio.
 *
 *  Rejection runs in passes: after each solve the B points farthest from the sphere are taken out of the
 *  equations, with B = R / maxPasses + 1 for R points to reject, or 1 when @p maxPasses is at least R. The
 *  sums are down-dated and not formed again from the kept points, so that their rounding errors stay. Among
 *  equal residuals the lowest index goes first. At least 4 points stay. Source of the algebraic form: the
 *  sphere analogue of I. Kåsa, A circle fitting procedure and its error analysis, IEEE Transactions on
 *  Instrumentation and Measurement 25(1), 1976.
 *
 *  @param points the points; null counts as no points at all, whatever @p count says
 *  @param count number of points
 *  @param center the centre; null point without a fit. It may be null.
 *  @param radius the radius; null without a fit. It may be null.
 *  @param allocator platform allocator of the small work arrays; null is the default
 *  @param outlierPercent percentage of points to reject
 *  @param keptPoints the points that were not rejected, in input order; it may be null
 *  @param outlierPoints the rejected points in order of rejection, within a pass by descending index; it may
 *  be null
 *  @param maxPasses upper guide for the number of rejecting passes; 0 counts as 1
 *
 *  Fewer than 4 points: nothing is thrown, centre and radius are null, @p keptPoints holds the input,
 *  @p outlierPoints is empty.
 *
 *  When the call throws, centre and radius are null and the two vectors are as they were. @p points may lie
 *  in
 *  @p keptPoints or @p outlierPoints.
 *
 *  @throws Zo::Exception from "Zvl::FitSphere": #STATUS_NOT_SUPPORTED when the determinant of the equations
 *  is below 1.1920928955078125e-07 in magnitude (points on one plane, or very small coordinates); status 0
 *  when the squared radius is negative or not a number; the platform's status when memory is exhausted.
 *
 *  Time O(count * (1 + passes)), memory O(count). */
ZDK_VISION_EXPORT void FitSphere(const qPoint3d64f* points, std::size_t count, qPoint3d64f* center, double* radius,
                                 void* allocator, double outlierPercent, std::vector<qPoint3d64f>* keptPoints,
                                 std::vector<qPoint3d64f>* outlierPoints, std::size_t maxPasses);

/** Fits a sphere to the selected cells of a surface, as world points in row order; see the form for points.
 *
 *  A cell is selected by a non-zero mask cell. Its height is taken as it stands: a missing one (-32768) is
 *  not left out, so clear missing cells from the mask first (ThresholdHeight()).
 *
 *  @param surface the height map
 *  @param rect the rectangle of @p mask, in cells of the surface
 *  @param mask #qArray2 of q8u with the rows and columns of @p rect
 *  @param center,radius as in the form for points
 *  @param points the selected cells are appended to it as world points. Hand in an empty vector: points that
 *  it holds already are counted and rejected like the others, but are no part of the equations.
 *  @param allocator,outlierPercent,keptPoints,outlierPoints,maxPasses as in the form for points. @p
 *  keptPoints or
 *         @p outlierPoints may be @p points itself, which is then replaced at the end.
 *
 *  Nothing but nulls in centre and radius is written, and nothing is thrown, unless the surface has a height
 *  layer of q16s, the mask is an array as told, and @p rect, where it has cells, lies inside the surface.
 *
 *  Fewer than 4 points: nothing is thrown, centre and radius are null, and @p outlierPoints is empty.
 *  @p keptPoints holds the points with scale and offset applied once more (`world * scale + offset` on each
 *  axis), unlike @p points.
 *
 *  Exceptions as in the form for points; @p points is filled by then, unless memory ran out at the start. */
ZDK_VISION_EXPORT void FitSphere(const Surface& surface, const Rect2d<int>& rect, void* mask, qPoint3d64f* center,
                                 double* radius, std::vector<qPoint3d64f>& points, void* allocator,
                                 double outlierPercent, std::vector<qPoint3d64f>* keptPoints,
                                 std::vector<qPoint3d64f>* outlierPoints, std::size_t maxPasses);

/** Fits a plane to the selected cells of a surface, in the sense of least squared distances to the plane: the
 *  point is the mean of the cells, the normal is the direction of their smallest scatter, found by
 *  DecomposeEigen().
 *
 *  Sums are formed in whole cells and counts, so that no digit is lost on large surfaces; above 8192 cells
 *  the mean is rounded down to about 1/4096 of a cell. The normal has length 1 and a z above 0, except for a
 *  plane that is exactly vertical.
 *
 *  @param surface the height map
 *  @param rect the rectangle of @p mask, in cells of the surface
 *  @param mask #qArray2 of q8u with the rows and columns of @p rect; a non-zero cell selects. Missing heights
 *         (-32768) are not left out, so clear them from the mask first (ThresholdHeight()).
 *  @param plane the result; null does nothing. Its six fields are null without a fit.
 *
 *  Nothing but nulls is written, and nothing is thrown, when fewer than 4 cells are selected, and unless the
 *  surface has a height layer of q16s, the mask is an array as told, and @p rect lies inside the surface.
 *
 *  Two passes over the rectangle; nothing is allocated.
 *  Source: K. Pearson, On lines and planes of closest fit to systems of points in space, Philosophical
 *  Magazine 2(11), 1901. */
ZDK_VISION_EXPORT void FitPlane(const Surface& surface, const Rect2d<int>& rect, void* mask, qPlane3d64f* plane);

} // namespace Zvl
