#pragma once

/** @file
 *  Regions of interest over surfaces. A region answers two questions, each when asked and each remembered: where it
 *  lies (a box of cells and a world region) and which cells of that box belong to it (a mask).
 *
 *  A mask is a #qArray2 of q8u, as large as the box; 0 is outside, 1 inside, and any non-zero cell reads as inside.
 *  Its cell (r, c) stands for surface cell (`box.y + r`, `box.x + c`). A region with an empty box has a null mask.
 *
 *  A region fills its caches inside its accessors: one region object belongs to one thread at a time. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Zvl
{

/** Identifies the shapes of both region families. */
enum MaskType : std::int32_t
{
    MaskTypeCircle = 0,
    MaskTypeEllipse = 1,
    MaskTypePolygon = 2,
    MaskTypeRotatedRectangle = 3,
    MaskTypeSurface = 4,
    MaskTypeIntensity = 5,
    MaskTypeComposed = 7,
    MaskTypeRectangle = 8
};

/** A region over a surface. Copies share the mask's cells until one of them rebuilds its mask. */
class ZDK_VISION_EXPORT ROI
{
public:
    /** @param allocator allocator of the mask; null is the platform's default */
    explicit ROI(void* allocator = nullptr);
    ROI(const ROI&) = default;
    ROI& operator=(const ROI&) = default;
    virtual ~ROI() = default;

    /** A region of the same class, moved by @p anchor, with empty caches. This region is unchanged. */
    virtual std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) = 0;

    virtual MaskType GetShapeType() const = 0;

    /** An independent region of the same shape and frame, with empty caches. */
    virtual std::shared_ptr<ROI> DeepCopy() const = 0;

    /** The box in cells of the frame, clipped to it.
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when the frame was never set */
    const Rect2d<int>& GetBoundingBox();

    /** The unclipped extent in world units, with angle 0. Throws as GetBoundingBox(). */
    const Region2d<double>& GetBoundingRegion();

    /** The mask of the present shape, or null for an empty box. Throws as GetBoundingBox(), and the platform's status
     *  when the mask cannot be made; the next call then starts again. The rows are filled in parallel. */
    const Zo::Object<void*>& GetMask();

    /** 1 while the mask holds the present shape; computes nothing. */
    int GetMaskValidity() const;

    /** 1 while box and bounding region hold the present shape; computes nothing. */
    int GetBoundingBoxValidity() const;

    /** Stores 1 for a non-zero @p value, else 0, in the present mask; without a mask, or outside it, nothing happens.
     *  Every copy that shares the mask sees the edit; a rebuild overwrites it. */
    void SetMaskPixel(std::uint64_t row, std::uint64_t column, std::uint8_t value);

protected:
    /** Fills `boundingRegion` and `boundingBox`. */
    virtual void _CalculateBoundingBox() = 0;

    /** Fills the mask that _ConstructMask() has zeroed, by slices of rows in parallel. */
    virtual void _AssignMaskSliced() = 0;

    /** Makes a fresh zeroed mask of the box's size, or drops the mask for an empty box. */
    void _ConstructMask();

    /** Clears the bytes of box and bounding region. */
    void _InitializeBoundingBox();

    void* allocator;
    Zo::Object<void*> mask;
    Region2d<double> boundingRegion;
    Rect2d<int> boundingBox;
    std::int32_t maskValid = 0;
    std::int32_t boundingBoxValid = 0;

private:
    void _CalculateBoundingBoxInternal();
};

/** A region of one shape in a frame: the size in cells and the mapping of the data that it will be applied to. Without
 *  a frame the mapping is null. Every setter drops the caches, also when the new value equals the old one. A region
 *  that was moved from may only be assigned to or destroyed. */
class ZDK_VISION_EXPORT SingleROI : public ROI
{
public:
    explicit SingleROI(void* allocator = nullptr);
    SingleROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
              void* allocator);
    SingleROI(const SingleROI&) = default;
    SingleROI(SingleROI&&) = default;
    SingleROI& operator=(const SingleROI&) = default;
    SingleROI& operator=(SingleROI&&) = default;

    void SetFrame(const std::uint64_t& width, const std::uint64_t& height);
    void SetFrameWidth(const std::uint64_t& width);
    void SetFrameHeight(const std::uint64_t& height);
    void SetScale(const qPoint64f& value);
    void SetOffset(const qPoint64f& value);
    void SetAllocator(void* const& value);

protected:
    /** Throws #STATUS_BAD_PARAMETER for @p function when a field of the mapping is null. */
    void RequireMapping(const char* function) const;

    /** Takes @p region for `boundingRegion` and computes `boundingBox` from it, clipped to the frame. */
    void SetBounds(const Region2d<double>& region);

    std::uint64_t frameWidth = 0;
    std::uint64_t frameHeight = 0;
    qPoint64f scale;
    qPoint64f offset;

private:
    void DropCaches();
};

/** A polygon, closed by repetition: its last vertex equals its first. With fewer than four entries it is empty.
 *  A cell is inside when its centre is, the boundary included; self-crossing polygons follow the parity rule.
 *
 *  The mask is scan converted: per row, the crossings with the edges are sorted and the spans between them
 *  filled by parity. A row that touches a vertex is decided span by span with a point-in-polygon test instead,
 *  since parity cannot be trusted there. Work per row grows with the crossings, not with the width. */
class ZDK_VISION_EXPORT PolygonROI : public SingleROI
{
public:
    /** No vertices. */
    explicit PolygonROI(void* allocator = nullptr);

    /** Takes @p points as they are: the caller closes the polygon. */
    PolygonROI(const std::vector<Point2d<double>>& points, std::uint64_t frameWidth, std::uint64_t frameHeight,
               const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    /** Takes @p count vertices and closes the polygon. A null @p points with a count above 0 throws
     *  #STATUS_BAD_PARAMETER. */
    PolygonROI(const qPoint64f* points, std::uint64_t count, std::uint64_t frameWidth, std::uint64_t frameHeight,
               const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;
    MaskType GetShapeType() const override;
    std::shared_ptr<ROI> DeepCopy() const override;

    const std::vector<Point2d<double>>& GetShape() const;

protected:
    /** No vertices, in a frame: for shapes that are polygons underneath. */
    PolygonROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
               void* allocator);

    void _CalculateBoundingBox() override;
    void _AssignMaskSliced() override;

    std::vector<Point2d<double>> polygonPoints;
};

/** A rectangle, rotated about its centre: a polygon of four corners that keeps the rectangle it came from. */
class ZDK_VISION_EXPORT RectangleROI : public PolygonROI
{
public:
    /** A rectangle of zeros, without vertices. */
    explicit RectangleROI(void* allocator = nullptr);

    RectangleROI(double x, double y, double width, double height, double angle, std::uint64_t frameWidth,
                 std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);
    RectangleROI(qPoint64f corner, double width, double height, double angle, std::uint64_t frameWidth,
                 std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);
    RectangleROI(const Region2d<double>& rectangle, std::uint64_t frameWidth, std::uint64_t frameHeight,
                 const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;

    /** #MaskTypeRotatedRectangle for an angle above 2 to the power -23, else #MaskTypeRectangle: also for negative
     *  angles, whose polygon is rotated all the same. */
    MaskType GetShapeType() const override;

    std::shared_ptr<ROI> DeepCopy() const override;

    const Region2d<double>& GetShape() const;

private:
    Region2d<double> rectangle;
};

/** A sector between two ellipses of one centre. A cell is inside when its centre is; both ellipses and both ends of the
 *  sector belong to it. The box is that of the rotated rectangle around the outer ellipse, which is larger than the
 *  ellipse's own box when it is rotated. */
class ZDK_VISION_EXPORT EllipseROI : public SingleROI
{
public:
    /** A sector of zeros. */
    explicit EllipseROI(void* allocator = nullptr);

    EllipseROI(double centerX, double centerY, double innerHeight, double innerWidth, double outerHeight,
               double outerWidth, double startAngle, double angleSpan, double rotation, std::uint64_t frameWidth,
               std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);
    EllipseROI(const qPoint64f& center, double innerHeight, double innerWidth, double outerHeight, double outerWidth,
               double startAngle, double angleSpan, double rotation, std::uint64_t frameWidth,
               std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);
    EllipseROI(const EllipticalSector2d<double>& ellipse, std::uint64_t frameWidth, std::uint64_t frameHeight,
               const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;
    MaskType GetShapeType() const override;
    std::shared_ptr<ROI> DeepCopy() const override;

    const EllipticalSector2d<double>& GetShape() const;

protected:
    /** A sector of zeros, in a frame. */
    EllipseROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
               void* allocator);

    void _CalculateBoundingBox() override;
    void _AssignMaskSliced() override;

    EllipticalSector2d<double> ellipse;
};

/** A sector of a ring. Its box is that of the ellipse it amounts to; its cells are tested against the ring. */
class ZDK_VISION_EXPORT CircleROI : public EllipseROI
{
public:
    /** A sector of zeros. */
    explicit CircleROI(void* allocator = nullptr);

    CircleROI(double centerX, double centerY, double innerRadius, double outerRadius, double startAngle,
              double angleSpan, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
              const qPoint64f& offset, void* allocator);
    CircleROI(const qPoint64f& center, double innerRadius, double outerRadius, double startAngle, double angleSpan,
              std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
              void* allocator);
    CircleROI(const AnnularSector2d<double>& annulus, std::uint64_t frameWidth, std::uint64_t frameHeight,
              const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;
    MaskType GetShapeType() const override;
    std::shared_ptr<ROI> DeepCopy() const override;

    const AnnularSector2d<double>& GetShape() const;

private:
    AnnularSector2d<double> annulus;
};

/** The cells where a reference surface has a height. The reference may have another extent and origin than the frame: its
 *  origin is snapped to the frame's grid, half cells away from zero, and both the frame and the reference bound the box.
 *
 *  The region is empty when the reference's cells differ in size from the frame's by 2 to the power -23 or more, when a
 *  layer that it needs is missing, of another type or of another size than the other one, or when the reference lies left
 *  of the frame or above it. Its arrays are shared, not copied; a host that shrinks one of them after the box was computed
 *  gets #STATUS_BAD_PARAMETER from GetMask(). */
class ZDK_VISION_EXPORT SurfaceROI : public SingleROI
{
public:
    SurfaceROI(const Surface& surface, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
               const qPoint64f& offset, void* allocator);

    /** A fresh region in the same place: data do not move with an anchor. */
    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;

    MaskType GetShapeType() const override;

    /** A SurfaceROI over a copy of every layer, made with this region's allocator; also of an IntensityROI, whose range is
     *  not carried over.
     *  @throws Zo::Exception the platform's status when a layer cannot be copied */
    std::shared_ptr<ROI> DeepCopy() const override;

    const Surface& GetShape() const;

protected:
    void _CalculateBoundingBox() override;
    void _AssignMaskSliced() override;

    Surface surface;
    qPoint32s surfaceCellOffset; ///< where cell (0, 0) of the box lies in the reference: column, row
};

/** The cells where a reference surface has a height and an intensity from a minimum to a maximum, both included. */
class ZDK_VISION_EXPORT IntensityROI : public SurfaceROI
{
public:
    IntensityROI(const Surface& surface, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                 const qPoint64f& offset, std::uint8_t minimum, std::uint8_t maximum, void* allocator);

    /** A fresh region in the same place: data do not move with an anchor. */
    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;

    MaskType GetShapeType() const override;

protected:
    void _AssignMaskSliced() override;

    struct IntensityRange
    {
        std::uint8_t minimum;
        std::uint8_t maximum;
    };

    IntensityRange intensityRange;
};

/** Clears the cells of @p roi's mask whose heights are missing or outside [@p min, @p max]; the limits are those of the
 *  form that takes a rectangle and a mask. A surface without a height layer leaves @p roi untouched. The frame of
 *  @p roi must be that of the surface, which is the caller's duty; a box that does not fit leaves the mask as it was.
 *  Throws as ROI::GetMask(). */
ZDK_VISION_EXPORT void ThresholdHeight(const Surface& surface, double min, double max, ROI& roi);

} // namespace Zvl
