#pragma once

/** @file
 *  Lines, polynomials, circles, spheres and planes through measured data, with rejection of outliers.
 *
 *  All coordinates, radii and distances are world units. Unless a fit says otherwise, its input points are not
 *  tested for nulls: a null coordinate enters the sums as the huge number that it is. Too few points are no
 *  failure: the results stay null (Zvl::GetNull) and nothing is thrown. All fits run on the calling thread, keep
 *  no state, and may run on many threads at once as long as their outputs differ; a fit that draws random numbers
 *  says where it draws them.
 *
 *  Where a fit takes a percentage, it rejects `trunc(count * (percent / 100.0))` points, evaluated in that
 *  order (29 % of 100 points are 28), but never so many that less than the fit's minimum would stay. A
 *  percentage that is not above 0 (NaN included) rejects none, unless a fit says otherwise; one beyond all bounds
 *  rejects as many as may go. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstddef>
#include <cstdint>
#include <vector>

namespace Zvl
{

/** Fits the line `y = slope * x + intercept` to @p count points by least squares: of y over x, or, where the points
 *  spread at least as far along y, of x over y, turned into the same form, which keeps steep lines well
 *  conditioned. Source: C. F. Gauss, Theoria motus corporum coelestium, 1809.
 *
 *  Points with a null coordinate are left out. The sums are formed from the coordinates as given, so that points
 *  far from the origin, as measured by their spread, lose digits with the square of that ratio.
 *
 *  @param points the points; null counts as no points at all, whatever @p count says
 *  @param excluded @p count flags; a point whose flag is not 0 is left out. Null leaves out none.
 *  @param count number of points
 *  @param slope,intercept the line; both null when less than two points are used or all of these coincide. Points
 *  on a line parallel to the y axis have no such form: the results are then infinite or not numbers, and not null.
 *
 *  @throws Zo::Exception from "Zvl::FitLine" with #STATUS_BAD_PARAMETER when @p slope or @p intercept is null
 *
 *  One pass over the points; nothing is allocated. */
ZDK_VISION_EXPORT void FitLine(const qPoint64f* points, const int* excluded, std::size_t count, double* slope,
                               double* intercept);

/** Fits a line as FitLine() does, takes out the point farthest from it (the lowest index among equals), and fits
 *  anew, until the wanted number is out; at least 2 points stay. The last line is the result.
 *
 *  A point with a null coordinate has no part in a line, but its distance is that of the huge number that the null
 *  is, which makes it one of the first to be rejected. Rejection ends early when the points that are left have no
 *  line, or no distance from it is a number (points on a line parallel to the y axis, coordinates that are not
 *  finite); the line is then what FitLine() gives for the points left.
 *
 *  @param points the points
 *  @param count number of points
 *  @param outlierPercent percentage of points to reject. A negative one that amounts to a whole point or more
 *  rejects all but 2.
 *  @param slope,intercept the line; see FitLine(). They are set to null first and stay so when the call throws.
 *  @param outliers receives a #qArrayList of qBool with a flag for each point, 1 for a rejected one. The caller
 *  owns it. The pointer may be null; it is as it was when the call throws.
 *  @param allocator platform allocator of the list and of the work data; null is the default
 *
 *  @throws Zo::Exception from "Zvl::FitLineIterative": #STATUS_BAD_PARAMETER for less than 2 points, when @p points
 *  is null, and, with nothing written, when @p slope or @p intercept is null; the platform's status when memory is
 *  exhausted
 *
 *  The points that are rejected are those of a fresh fit for each, bit for bit. As long as their order is not a
 *  matter of rounding, most passes look at the farthest points of an earlier pass alone: time is then about
 *  O(count + rejected * sqrt(count)), else O(count * (1 + rejected)). Memory O(count). */
ZDK_VISION_EXPORT void FitLineIterative(const qPoint64f* points, std::size_t count, double outlierPercent,
                                        double* slope, double* intercept, void** outliers, void* allocator);

/** Fits a line to the largest set of points that agree on one: again and again, draws a sample with replacement,
 *  fits a line to it as FitLine() does, and collects all points nearer to that line than @p threshold. The line of
 *  the largest such set, the first among equals, is the result. Source: M. A. Fischler and R. C. Bolles, Random
 *  sample consensus, Communications of the ACM 24(6), 1981.
 *
 *  The samples come from the platform's random source (qRandomSize()), which is seeded by the system: results vary
 *  from call to call.
 *
 *  @param points the points; one with a null coordinate has no part in a line
 *  @param count number of points, at least 3
 *  @param sampleRatio size of a sample as a share of @p count, from 0 to 1; what lies outside is moved to the nearer
 *  end, and a NaN counts as 0. A sample holds at least 3 points.
 *  @param iterations samples to draw; all are drawn, however good the line is
 *  @param threshold distance from the line below which a point agrees with it
 *  @param slope,intercept the line; see FitLine(). They are left alone when no point agrees with any line
 *  (a negative threshold, coincident points), with 0 iterations, and when the call throws before the first line.
 *
 *  @throws Zo::Exception from "Zvl::FitLineRansac": status 0 when @p points is null or holds less than a sample;
 *  #STATUS_BAD_PARAMETER when @p slope or @p intercept is null; the platform's status when memory is exhausted
 *
 *  Time O(count * iterations), memory O(count). */
ZDK_VISION_EXPORT void FitLineRansac(const qPoint64f* points, std::size_t count, double sampleRatio,
                                     std::size_t iterations, double threshold, double* slope, double* intercept);

/** Fits the polynomial `y = c[0] + c[1] x + ... + c[degree] x^degree` to @p count points by least squares, through
 *  the inverse of the normal equations in the coordinates as given. Source: C. F. Gauss, Theoria motus corporum
 *  coelestium, 1809; the elimination, which does not pivot, is that of W. Jordan, Handbuch der Vermessungskunde, 3rd
 *  ed., 1888.
 *
 *  Digits are lost as far as the powers of x are alike: over x from 1000 to 1010, the values of a fitted line are
 *  good to 10 digits, those of a parabola to 5, those of a cubic to none. Shift x to about 0 first where that matters.
 *
 *  @tparam Point #qPoint32f, whose coordinates are converted to double at once, or #qPoint64f
 *  @param points the points; null fails
 *  @param count number of points, above @p degree
 *  @param degree the highest power of x
 *  @param coefficients room for `degree + 1` numbers, the lowest power first; null fails
 *  @return 0, or -1 when @p degree is not below @p count, a pivot of the elimination is at most
 *  1.1920928955078125e-07 in magnitude (too few different values of x, a degree that the range of x cannot carry),
 *  or memory is exhausted; the coefficients are not written then
 *
 *  Nothing is thrown. Sums that overflow give coefficients that are not finite.
 *
 *  Time O(count * degree + degree³), memory O(degree²). */
template <typename Point>
ZDK_VISION_EXPORT int FitPolynomial(const Point* points, std::size_t count, std::size_t degree, double* coefficients);

/** The value of a polynomial at @p x, by Horner's rule. Source: W. G. Horner, A new method of solving numerical equations
 *  of all orders, by continuous approximation, Philosophical Transactions of the Royal Society 109, 1819.
 *  @param coefficients `degree + 1` numbers, the lowest power first; for null the result is null (Zvl::GetNull)
 *  @param degree the highest power, at most 2147483647. Of a higher one the lowest 32 bits are taken, as a number
 *  with sign; without powers above 0 the result is `coefficients[0]`, whatever @p x is. */
ZDK_VISION_EXPORT double CalculatePolynomialValue(const double* coefficients, std::size_t degree, double x);

/** Which circle FitCircle() looks for. Any other value of the underlying type is accepted: the circle of the
 *  rejection is then returned as it stands. */
enum CircleType : std::int32_t
{
    CIRCLE_LSC = 0, ///< least-squares circle
    CIRCLE_MZC = 1  ///< minimum-zone circle: the narrowest ring between two concentric circles
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
 *  The minimum zone of the kept points is sought by exchange: two points on the outer and two on the inner
 *  circle determine the centre, and points outside of the zone take the places of others. It starts from the
 *  points on the smallest circle around all and on the largest empty circle centred in the convex hull, a vertex
 *  of the Voronoi diagram, and falls back on the narrower of the zones about their centres. On round parts the
 *  result is as a rule the narrowest zone that there is; for points scattered all over a region it need not be.
 *  Lengths within 1.2e-7 count as equal, which suits coordinates in millimetres. The smallest circle is sought with
 *  its centre strictly between others in x and in y, which fails where points have the very same x or y, as those on
 *  the rows and columns of a map do: the zone may then be wrong, with an inner radius above the outer one, or the
 *  call throw. Turn such points by an odd angle first, and turn the centre back.
 *
 *  @param points the points; null counts as no points at all, whatever @p count says
 *  @param count number of points
 *  @param outlierPercent percentage of points to reject
 *  @param type see #CircleType
 *  @param center centre of the circle; null point without a fit. This and all following arguments may be
 *  null.
 *  @param minRadius the radius, for #CIRCLE_MZC that of the inner circle; null without a fit
 *  @param maxRadius the radius once more, for #CIRCLE_MZC that of the outer circle; null without a fit
 *  @param maxDistance largest distance of a point from the centre. It is searched only for #CIRCLE_LSC
 *  without rejection, and null otherwise.
 *  @param minDistance smallest distance of a point from the centre, likewise
 *  @param maxDistPoints the one point at the largest distance (the first among equals), for #CIRCLE_MZC the
 *  points on the outer circle; otherwise empty
 *  @param minDistPoints the one point at the smallest distance, for #CIRCLE_MZC the points on the inner
 *  circle; otherwise empty
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
 *  #CIRCLE_MZC without a zone (fewer than 3 points, all of them on one line): centre and radii are null.
 *
 *  @throws Zo::Exception from "Zvl::FitCircle_LSC" with the platform's status when memory is exhausted, the
 *  points do not determine a circle (collinear, coincident) or a value is not finite; with status 0 when the
 *          squared radius is negative or at least 3.4028234663852886e38. For #CIRCLE_MZC of 4 points or more
 *          also from "Zvl::FitCircle_MIC", "Zvl::FitCircle_MCC" and "Zvl::GenerateVoronoi" with
 *          #STATUS_BAD_DATA for a coordinate that is not a number or larger than 1e100 in magnitude,
 *          #STATUS_ABORTED when one of the two circles cannot be found (four points exactly on the largest empty
 *          circle, a farthest point exactly level with or above the mean of the points, all but one point
 *          coincident), #STATUS_OUT_OF_MEMORY.
 *
 *  Time O(count * (1 + rejected)), with a scan of about 1 ns per point for each rejected point; for
 *  #CIRCLE_MZC also O(count log count), and a scan for each of at most 1002 exchanges. Memory O(count), for
 *  #CIRCLE_MZC about 1 kB for a point. */
ZDK_VISION_EXPORT void FitCircle(const qPoint64f* points, std::size_t count, double outlierPercent, CircleType type,
                                 qPoint64f* center, double* minRadius, double* maxRadius, double* maxDistance,
                                 double* minDistance, std::vector<qPoint64f>* maxDistPoints,
                                 std::vector<qPoint64f>* minDistPoints, std::vector<qPoint64f>* keptPoints,
                                 std::vector<qPoint64f>* outlierPoints);

/** Fits a circle to @p count points of which up to four fifths lie anywhere, by the least trimmed sum of squares.
 *
 *  Circles are tried: one through three random points, a second one (the Hyper fit) to the share of points nearest to
 *  the first, rated by the squared radial errors of the share of points nearest to the second. Trials are as many as
 *  find three points of the circle with a probability of 0.9999. The best one, the first among equals, is refined once:
 *  points within three standard deviations of the radial errors are taken in, points beyond are taken out, and the
 *  circle is fitted to what is then in. Sources: A. Nurunnabi, Y. Sadahiro and D. F. Laefer, Robust statistical
 *  approaches for circle fitting in laser scanning three-dimensional point cloud data, Pattern Recognition 81, 2018; A.
 *  Al-Sharadqah and N. Chernov, Error analysis for circle fitting algorithms, Electronic Journal of Statistics 3, 2009.
 *
 *  The points are drawn from the C runtime's generator (`rand`), which the call seeds (`srand`): from @p seed, or else
 *  from the time. Both are the whole process's: everything else there that uses `rand` sees the new seed, and two calls
 *  at a time, or another caller of `rand`, disturb each other. The result is a function of the arguments when a seed is
 *  given and nothing else draws meanwhile.
 *
 *  @param points the points; null counts as no points at all, whatever @p count says
 *  @param count number of points
 *  @param outlierPercent percentage of points that need not lie on the circle; above 80 it counts as 80. When it is not
 *  above 0 (NaN included), all points are fitted as FitCircle() does without rejection. Below about 3.4e-7 no trial is
 *  made, and the results are null.
 *  @param center,radius the circle. Null for less than 3 points, for 3 points that are collinear, when no trial gave a
 *  circle (collinear or coincident points, coordinates that are not finite), and when the call throws before one.
 *  @param outliers receives @p count flags, 1 for a point that is not on the circle; it may be null. It is left alone
 *  for 3 points or less.
 *  @param seed the seed; null takes the time
 *  @param useWeights other than 0 weighs the errors down the larger they are, by Tukey's biweight of the squared error
 *  over 36 times the median one
 *
 *  @throws Zo::Exception from "Zvl::FitCircleByRLTS" with status 0 when less than 4 points are kept, which 80 percent of
 *  10 points are: @p center, @p radius and @p outliers are then those of the best trial, or, when the refinement leaves
 *  so few, the circle is that of the refinement. From "Zvl::FitCircle_LSC", when the percentage is not above 0, as
 *  FitCircle(); the results are then null.
 *
 *  Time O(count) for each trial, of which there are 7 at 10 percent, 69 at 50 and 1147 at 80. Memory O(count). */
ZDK_VISION_EXPORT void FitCircleByRLTS(const qPoint64f* points, std::size_t count, double outlierPercent,
                                       qPoint64f& center, double& radius, int* outliers, unsigned* seed,
                                       int useWeights);

/** Fits the least-squares circle of FitCircle() to points in space, as seen along an axis. For old callers; new ones
 *  hand their points to FitCircle(), which leaves its input alone.
 *
 *  @param points #qArrayList of #qPoint3d64f. Points that are rejected are removed from it.
 *  @param plane 0 fits in x and y, any other value in x and z
 *  @param outlierPercent percentage of points to reject; at least 3 stay
 *  @param center the centre; its coordinate across the plane is the mean of those of the kept points. Null without a
 *  fit.
 *  @param radius the radius; null without a fit
 *
 *  Without a fit nothing is thrown: less than 3 points, or a squared radius that is negative or at least
 *  3.4028234663852886e38. What was rejected until then is missing from the list.
 *
 *  @throws Zo::Exception from "Zvl::FitCircle_Deprecated" with #STATUS_BAD_PARAMETER, and nothing written, when
 *  @p points is no such list or a result is null; with the platform's status when memory is exhausted, the points do
 *  not determine a circle (collinear, coincident) or a value is not finite. The circle is then the last that was found,
 *  and null when there was none; the list holds the points that were not yet rejected.
 *
 *  Time O(count * (1 + rejected)), memory O(count). */
ZDK_VISION_EXPORT void FitCircle_Deprecated(void* points, int plane, double outlierPercent, qPoint3d64f* center,
                                            double* radius);

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
