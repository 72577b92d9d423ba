#pragma once

/** @file
 *  The 3-D frame that aligns one view to another, the rigid transformation between two point sets, and the
 *  eigen decomposition of small symmetric matrices. */

#include <ZdkVisionLib/Common/Common.h>
#include <ZdkVisionLib/platform/qVision.h>

#include <cstddef>
#include <vector>

namespace Zvl
{

/** The pose of a robot, six numbers in the order of the constructor. The library only holds them; unit, angle
 *  convention and meaning are the host's. */
struct ZDK_VISION_EXPORT RobotPose
{
    double x;         ///< position
    double y;         ///< position
    double z;         ///< position
    double rotationX; ///< rotation
    double rotationY; ///< rotation
    double rotationZ; ///< rotation

    /** Takes the values as they are. */
    constexpr RobotPose(double xValue, double yValue, double zValue, double rotationXValue, double rotationYValue,
                        double rotationZValue) noexcept
        : x(xValue),
          y(yValue),
          z(zValue),
          rotationX(rotationXValue),
          rotationY(rotationYValue),
          rotationZ(rotationZValue)
    {
    }
};

/** A 3-D affine frame: I, J, K are the images of the unit axes, T is the image of the origin.
 *
 *  A point p maps to `I * p.x + J * p.y + K * p.z + T`. Read as the four rows of a row-vector transform,
 *  frames compose in plain matrix order: `A * B` applied to a point is A first, then B. Modifying operations
 *  compose on the right, so they act after what the frame already does, in world axes. The ones that say so
 *  discard what the frame was.
 *
 *  Angles are degrees, counter-clockwise when the axis points at the viewer. Nulls and values that are not
 *  numbers are plain arithmetic values here, except where a null angle is said to mean no rotation. Every
 *  operation takes constant time and throws nothing, unless it says otherwise. */
class ZDK_VISION_EXPORT RefFrame
{
public:
    /** The identity. */
    RefFrame();

    /** I, J, K and T. */
    RefFrame(double ix, double iy, double iz, double jx, double jy, double jz, double kx, double ky, double kz,
             double tx, double ty, double tz);

    double GetIx() const noexcept { return i.x; } ///< x of I
    double GetIy() const noexcept { return i.y; } ///< y of I
    double GetIz() const noexcept { return i.z; } ///< z of I
    double GetJx() const noexcept { return j.x; } ///< x of J
    double GetJy() const noexcept { return j.y; } ///< y of J
    double GetJz() const noexcept { return j.z; } ///< z of J
    double GetKx() const noexcept { return k.x; } ///< x of K
    double GetKy() const noexcept { return k.y; } ///< y of K
    double GetKz() const noexcept { return k.z; } ///< z of K
    double GetTx() const noexcept { return t.x; } ///< x of T
    double GetTy() const noexcept { return t.y; } ///< y of T
    double GetTz() const noexcept { return t.z; } ///< z of T

    /** Lengths of I, J and K. */
    qPoint3d64f GetScale() const;

    /** I, J, K and T for 0 to 3; three nulls for any other index. */
    qPoint3d64f GetColumn(std::size_t index) const;

    /** T. */
    qPoint3d64f GetTranslation() const;

    /** Every point stays where it is. */
    RefFrame& SetIdentity();

    /** Becomes a turn by @p angle about the Z axis through the origin, then a shift by @p point. What the
     *  frame was is discarded. */
    void SetFrame(qPoint3d64f point, double angle);

    /** Becomes the proper 2-D rotation and the shift that carry @p b onto @p a with the least sum of squared
     *  distances, pairs taken by index; Z stays as it is. Note the direction: the second set is carried onto
     *  the first. When all points of a set coincide, the rotation is one of the many best ones. Linear time.
     *
     *  Source: S. Umeyama, Least-Squares Estimation of Transformation Parameters Between Two Point Patterns,
     *  1991.
     *  @throws Zo::Exception #STATUS_BAD_DATA when the sizes differ or are below 2; the frame is then as it
     *         was
     *  @throws cv::Exception or std::bad_alloc when OpenCV has no memory; the frame is then the identity */
    void SetFrame(const std::vector<qPoint64f>& a, const std::vector<qPoint64f>& b);

    RefFrame& Translate(double x, double y, double z); ///< shifts mapped points
    RefFrame& Translate(qPoint3d64f vector);           ///< shifts mapped points by @p vector

    /** Rotates about @p axis through the origin, by way of a unit quaternion. The axis is meant to have unit
     *  length: it enters the quaternion as it is, so that another length changes the angle to
     *  `2 * atan(length * tan(angle / 2))`. */
    RefFrame& Rotate(double angle, qPoint3d64f axis);

    /** RotateAroundPoint() with the centre and the angle of @p region. What the frame was is discarded. */
    RefFrame& Rotate(const Region3d<double>& region);

    /** Rotates about the Z, then the Y, then the X axis by @p z, @p y, @p x; a null angle skips its axis. The
     *  name reads as a product of matrices, where the last one acts first. */
    RefFrame& RotateXYZ(double x, double y, double z);

    /** Rotates about the X, then the Y, then the Z axis by @p x, @p y, @p z; a null angle skips its axis. */
    RefFrame& RotateZYX(double x, double y, double z);

    /** Becomes a turn about the parallel of the Z axis through @p point. What the frame was is discarded. */
    RefFrame& RotateAroundPoint(qPoint3d64f point, double angle);

    /** Multiplies the coordinates of mapped points by @p factors, about the origin. */
    RefFrame& Scale(qPoint3d64f factors);

    /** Becomes its own inverse, if I, J and K are orthonormal, which is not tested. */
    RefFrame& InvertOrtho();

    /** The point that @p point maps to. */
    qPoint3d64f Apply(qPoint3d64f point) const;

    /** Maps (x, y, 0) and drops the Z of the result. */
    qPoint64f Apply(qPoint64f point) const;

    /** Maps @p count points in index order. @p in and @p out may be the same array.
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when one of them is null and @p count is not 0 */
    void ApplyN(const qPoint3d64f* in, std::size_t count, qPoint3d64f* out) const;

    /** The same for the other record of a point. */
    void ApplyN(const Point3d<double>* in, std::size_t count, Point3d<double>* out) const;

    /** The frame that does this one first, then @p other. */
    RefFrame operator*(const RefFrame& other);

    /** `a * b`. */
    static RefFrame Mul(const RefFrame& a, const RefFrame& b);

    /** Writes the frame as bytes: a length of 16 bits (100), the format version of 32 bits (1), and the twelve values as
     *  64-bit floats, Ix, Iy, Iz, Jx to Jz, Kx to Kz, Tx to Tz; 102 bytes, little-endian, without gaps. No value is
     *  interpreted: nulls and values that are not numbers come back as they were.
     *  @param array receives a new #qArray1 of q8u, which the caller owns; untouched when this throws
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p array is null; the platform's status when memory is
     *          exhausted */
    void Serialize(void** array) const;

    /** Reads what Serialize() wrote. The version is read and not looked at. Bytes behind the block are ignored, and so
     *  are bytes of the block behind the twelve values.
     *  @param data @p size bytes, which are not changed; null only for a size of 0
     *  @param allocator of the scratch objects; null is the platform's default
     *  @throws Zo::Exception the platform's status (#STATUS_END_OF_STREAM for bytes that end too early, #STATUS_BAD_PARAMETER
     *          for null data). Values are read straight into the frame: those ahead of the failure are then new, the
     *          others old */
    void Deserialize(void* data, std::size_t size, void* allocator);

private:
    qPoint3d64f i;
    qPoint3d64f j;
    qPoint3d64f k;
    qPoint3d64f t;
};

/** Finds the proper rotation R and the shift t with `target = R * source + t` in the least-squares sense,
 *  pairs taken by index. For collinear points R is one of the many best ones. Values that are not finite give
 *  a result that means nothing. Linear time and memory.
 *
 *  Source: K. S. Arun, T. S. Huang, S. D. Blostein, Least-Squares Fitting of Two 3-D Point Sets, 1987.
 *  @param transform receives R and t
 *  @return #STATUS_OK; #STATUS_BAD_PARAMETER, with @p transform as it was, when it is null or the sizes
 *         differ, are below 3 or above the largest `int`; else the status of qL3dTransform3d_Identity()
 *  @throws cv::Exception or std::bad_alloc only when OpenCV fails, as for want of memory */
ZDK_VISION_EXPORT int EstimateRigidTransformation(const std::vector<qPoint3d64f>& source,
                                                  const std::vector<qPoint3d64f>& target, qL3dTransform3d* transform);

/** Eigenvalues and eigenvectors of a symmetric matrix, by the cyclic Jacobi method with a falling threshold.
 *
 *  Values that are not finite, or whose squares are not, give a result that means nothing, in bounded time.
 *  About 10 * size³ rotations of single elements; meant for small matrices. Nothing is thrown.
 *
 *  Source: J. H. Wilkinson, The Algebraic Eigenvalue Problem, 1965, chapter 5.
 *  @param matrix @p size by @p size values, row after row; on return the eigenvalues stand on the diagonal in
 *         descending order, the other elements are of no use. Nothing is done when it is null
 *  @param vectors receives the unit eigenvectors, as rows in the order of their values; not touched, and may
 *         be null, when @p valuesOnly is not 0. Nothing is done when it is null and asked for
 *  @param size nothing is done below 1
 *  @param valuesOnly not 0 to leave out the vectors */
ZDK_VISION_EXPORT void DecomposeEigen(double* matrix, double* vectors, int size, int valuesOnly);

} // namespace Zvl
