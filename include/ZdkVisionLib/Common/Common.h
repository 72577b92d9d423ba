#pragma once

/** @file
 *  The plain records that all algorithms share: nulls, points, rectangles, regions, sectors, the anchor, and
 *  the data carriers Surface and Profile.
 *
 *  A missing value is a reserved null in the data itself. A null test is an exact comparison, so a NaN is a
 *  value. All angles are degrees. The records are copied by value and are not tied to any byte format. */

#include <ZdkVisionLib/Export.h>
#include <ZdkVisionLib/platform/ZoApi.h>

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

/** The algorithms and the records that they work on. */
namespace Zvl
{

// ---------------------------------------------------------------------------------------------------------
// Nulls and element types

/** The value that marks a missing `T`. It exists for `unsigned char`, `short`, `int`, `float`, `double` and
 *  `std::uint64_t`. */
template <typename T>
constexpr T GetNull() noexcept = delete;

/** The null of `unsigned char`: 255. */
template <>
constexpr unsigned char GetNull<unsigned char>() noexcept
{
    return 255;
}

/** The null of `short`: -32768, the missing height. */
template <>
constexpr short GetNull<short>() noexcept
{
    return std::numeric_limits<short>::min();
}

/** The null of `int`: -2147483648. */
template <>
constexpr int GetNull<int>() noexcept
{
    return std::numeric_limits<int>::min();
}

/** The null of `float`: the lowest finite `float`. */
template <>
constexpr float GetNull<float>() noexcept
{
    return std::numeric_limits<float>::lowest();
}

/** The null of `double`: the lowest finite `double`. */
template <>
constexpr double GetNull<double>() noexcept
{
    return std::numeric_limits<double>::lowest();
}

/** The null of `std::uint64_t`: the largest 64-bit number. */
template <>
constexpr std::uint64_t GetNull<std::uint64_t>() noexcept
{
    return std::numeric_limits<std::uint64_t>::max();
}

/** The platform's type handle of `T`: `unsigned char`, `short`, `double`, `qPoint3d32s` or `qPoint3d64f`. */
template <typename T>
void* GetqType() = delete;

/** #xxq8u_type. */
template <>
ZDK_VISION_EXPORT void* GetqType<unsigned char>();
/** #xxq16s_type. */
template <>
ZDK_VISION_EXPORT void* GetqType<short>();
/** #xxq64f_type. */
template <>
ZDK_VISION_EXPORT void* GetqType<double>();
/** #xxqPoint3d32s_type. */
template <>
ZDK_VISION_EXPORT void* GetqType<qPoint3d32s>();
/** #xxqPoint3d64f_type. */
template <>
ZDK_VISION_EXPORT void* GetqType<qPoint3d64f>();

// ---------------------------------------------------------------------------------------------------------
// Points

/** A point in the plane, or a pair of sizes. A default point is null in both fields. */
template <typename T>
struct Point2d
{
    T x = GetNull<T>(); ///< along a row
    T y = GetNull<T>(); ///< along a column

    constexpr Point2d() noexcept = default; ///< null in both fields

    /** Takes the values as they are. */
    constexpr Point2d(T xValue, T yValue) noexcept : x(xValue), y(yValue) {}

    /** From the platform's record; the values must fit `T`. */
    constexpr Point2d(const qPoint64f& point) noexcept : x(static_cast<T>(point.x)), y(static_cast<T>(point.y)) {}

    /** As the platform's record. */
    constexpr operator qPoint64f() const noexcept { return {static_cast<double>(x), static_cast<double>(y)}; }
};

/** A point in space. A default point is null in all fields. */
template <typename T>
struct Point3d
{
    T x = GetNull<T>(); ///< along a row
    T y = GetNull<T>(); ///< along a column
    T z = GetNull<T>(); ///< the height

    constexpr Point3d() noexcept = default; ///< null in all fields

    /** Takes the values as they are. */
    constexpr Point3d(T xValue, T yValue, T zValue) noexcept : x(xValue), y(yValue), z(zValue) {}

    /** From the platform's record. */
    constexpr Point3d(const qPoint3d64f& point) noexcept : x(point.x), y(point.y), z(point.z) {}

    /** As the platform's record. */
    constexpr operator qPoint3d64f() const noexcept { return {x, y, z}; }
};

// ---------------------------------------------------------------------------------------------------------
// Cell ranges and world regions

/** A range along one axis: `RunLength<double>` in world units, `RunLength<int>` in cells. */
template <typename T>
struct RunLength
{
    T start = T();  ///< first position or cell
    T length = T(); ///< world length or number of cells
};

/** A rectangle of cells: first column, first row, columns, rows. */
template <typename T>
struct Rect2d
{
    T x = T();      ///< first column
    T y = T();      ///< first row
    T width = T();  ///< columns
    T height = T(); ///< rows
};

/** A box of cells and height counts. The third dimension follows the rectangle, so that the record begins with
 *  a valid Rect2d. */
template <typename T>
struct Rect3d
{
    T x = T();      ///< first column
    T y = T();      ///< first row
    T width = T();  ///< columns
    T height = T(); ///< rows
    T z = T();      ///< lowest height count
    T depth = T();  ///< height counts
};

/** A rectangle in the world: the corner of smallest coordinates of the unrotated rectangle, its size, and a
 *  rotation about its centre. A default region is null in its corner and has no size. */
template <typename T>
struct Region2d
{
    T x = GetNull<T>(); ///< smallest x of the unrotated rectangle
    T y = GetNull<T>(); ///< smallest y of the unrotated rectangle
    T width = T();      ///< size along x, world units
    T height = T();     ///< size along y, world units
    T angle = T();      ///< rotation about the centre, degrees
};

/** A Region2d with an extent along Z behind it. */
template <typename T>
struct Region3d
{
    T x = GetNull<T>(); ///< smallest x of the unrotated rectangle
    T y = GetNull<T>(); ///< smallest y of the unrotated rectangle
    T width = T();      ///< size along x, world units
    T height = T();     ///< size along y, world units
    T angle = T();      ///< rotation about the centre, degrees
    T z = GetNull<T>(); ///< lowest height, world units
    T depth = T();      ///< size along z, world units
};

// ---------------------------------------------------------------------------------------------------------
// Sectors

/** A sector of a ring. An `angleSpan` of 360 or more in magnitude is the whole ring; a negative one reaches
 *  back from `startAngle`. */
template <typename T>
struct AnnularSector2d
{
    T innerRadius = T();                                       ///< world units; 0 for a full disc
    T outerRadius = T();                                       ///< world units
    T startAngle = T();                                        ///< degrees, from the X axis towards the Y axis
    T angleSpan = T();                                         ///< degrees; 360 for the whole ring
    qPoint64f center = {GetNull<double>(), GetNull<double>()}; ///< world position
};

/** An annular sector that reaches along Z from `z` to `z + depth`. */
template <typename T>
struct AnnularSector3d
{
    T innerRadius = T(); ///< world units; 0 for a full disc
    T outerRadius = T(); ///< world units
    T startAngle = T();  ///< degrees, from the X axis towards the Y axis
    T angleSpan = T();   ///< degrees; 360 for the whole ring
    T z = T();           ///< lowest height, world units
    T depth = T();       ///< size along z, world units
    qPoint3d64f center = {GetNull<double>(), GetNull<double>(), GetNull<double>()}; ///< world position
};

/** A sector between two ellipses of one centre. Sizes are full lengths along the ellipse's own axes, which
 *  `rotation` turns against the world; the sector's angles are in the ellipse's own frame. */
template <typename T>
struct EllipticalSector2d
{
    T innerHeight = T();                                       ///< full height of the inner ellipse; 0 for none
    T innerWidth = T();                                        ///< full width of the inner ellipse; 0 for none
    T outerHeight = T();                                       ///< full height of the outer ellipse
    T outerWidth = T();                                        ///< full width of the outer ellipse
    T startAngle = T();                                        ///< degrees, in the ellipse's own frame
    T angleSpan = T();                                         ///< degrees; 360 for the whole ring
    T rotation = T();                                          ///< of the ellipse against the world, degrees
    qPoint64f center = {GetNull<double>(), GetNull<double>()}; ///< world position
};

/** An elliptical sector that reaches along Z from `z` to `z + depth`. */
template <typename T>
struct EllipticalSector3d
{
    T innerHeight = T(); ///< full height of the inner ellipse; 0 for none
    T innerWidth = T();  ///< full width of the inner ellipse; 0 for none
    T outerHeight = T(); ///< full height of the outer ellipse
    T outerWidth = T();  ///< full width of the outer ellipse
    T startAngle = T();  ///< degrees, in the ellipse's own frame
    T angleSpan = T();   ///< degrees; 360 for the whole ring
    T rotation = T();    ///< of the ellipse against the world, degrees
    T z = T();           ///< lowest height, world units
    T depth = T();       ///< size along z, world units
    qPoint3d64f center = {GetNull<double>(), GetNull<double>(), GetNull<double>()}; ///< world position
};

// ---------------------------------------------------------------------------------------------------------
// Anchor

/** A displacement found at run time: a shift, and a turn about Z. A null field is not applied; a default anchor
 *  moves nothing. */
struct Anchor
{
    double x = GetNull<double>();     ///< shift along x, world units
    double y = GetNull<double>();     ///< shift along y, world units
    double z = GetNull<double>();     ///< shift along z, world units
    double angle = GetNull<double>(); ///< turn about Z through the origin, degrees
};

// ---------------------------------------------------------------------------------------------------------
// Data carriers

/** A height map: layer 0 holds heights (#qArray2 of q16s, -32768 missing), layer 1, when there is one,
 *  intensities (#qArray2 of q8u, 0 without data). A layer has the surface's rows as length 0 and its columns as
 *  length 1. Cell or count c lies at `offset + c * scale`. Copies share their layers. */
struct ZDK_VISION_EXPORT Surface
{
    qPoint3d64f scale;                     ///< world size of a cell (x, y) and of a height count (z)
    qPoint3d64f offset;                    ///< world position of cell (0, 0) and of height count 0
    std::vector<Zo::Object<void*>> layers; ///< cell arrays

    /** A null mapping and no layers. */
    Surface();
};

/** A line scan: layers are #qArray1, q16s for heights. In `scale` and `offset`, x runs along the line and y is
 *  the height. Copies share their layers. */
struct ZDK_VISION_EXPORT Profile
{
    qPoint64f scale;                       ///< world size of a cell (x) and of a height count (y)
    qPoint64f offset;                      ///< world position of cell 0 and of height count 0
    std::vector<Zo::Object<void*>> layers; ///< cell arrays

    /** A null mapping and no layers. */
    Profile();

    /** Note the order: offset first. */
    Profile(qPoint64f offset, qPoint64f scale);

    /** Takes x and z of each; y is dropped. A null pointer throws #STATUS_BAD_PARAMETER. */
    Profile(const qPoint3d64f* offset, const qPoint3d64f* scale);

    /** Appends a new layer of @p count elements of @p type, contents undefined, and returns its index. When the
     *  construction fails, its status is thrown and a null layer stays appended. */
    std::size_t AddLayer(void* type, std::size_t count, void* allocator);

    /** Appends @p layer, sharing it, and returns its index. */
    std::size_t AddLayer(Zo::Object<void*> layer);
};

/** A flat view of a Surface, which it must not outlive: its two handles are borrowed. Note that offset stands
 *  first here. */
struct SurfaceInputData
{
    std::size_t width;    ///< columns of the height layer
    std::size_t height;   ///< rows of the height layer
    qPoint3d64f offset;   ///< copied from the surface
    qPoint3d64f scale;    ///< copied from the surface
    void* heightArray;    ///< layer 0, or null
    void* intensityArray; ///< layer 1, or null
};

/** A selection of cells of a surface. */
struct SurfaceSlice
{
    Surface surface;        ///< the data
    Rect2d<int> rect;       ///< the selected rectangle, in cells of `surface`
    Zo::Object<void*> mask; ///< #qArray2 of q8u, as large as `rect`; a non-zero cell is selected
};

} // namespace Zvl
