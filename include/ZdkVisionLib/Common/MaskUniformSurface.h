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
    MaskTypeCircle = 0,           ///< sector of a ring
    MaskTypeEllipse = 1,          ///< sector between two ellipses
    MaskTypePolygon = 2,          ///< polygon
    MaskTypeRotatedRectangle = 3, ///< rectangle with an angle, over a surface
    MaskTypeSurface = 4,          ///< where a reference surface has heights
    MaskTypeIntensity = 5,        ///< where a reference surface has intensities within a range
    MaskTypeComposed = 7,         ///< union of regions
    MaskTypeRectangle = 8         ///< upright rectangle; over a profile, any rectangle
};

/** A region over a surface. Copies share the mask's cells until one of them rebuilds its mask. */
class ZDK_VISION_EXPORT ROI
{
public:
    /** @param allocator allocator of the mask; null is the platform's default */
    explicit ROI(void* allocator = nullptr);
    ROI(const ROI&) = default;            ///< shares the mask's cells
    ROI& operator=(const ROI&) = default; ///< shares the mask's cells
    virtual ~ROI() = default;

    /** A region of the same class, moved by @p anchor, with empty caches. This region is unchanged. */
    virtual std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) = 0;

    /** The kind of shape. */
    virtual MaskType GetShapeType() const = 0;

    /** An independent region of the same shape and frame, with empty caches. */
    virtual std::shared_ptr<ROI> DeepCopy() const = 0;

    /** The box in cells of the frame, clipped to it; that of a SurfaceROI may lie beside it.
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

    void* allocator;                   ///< of the mask; null is the platform's default
    Zo::Object<void*> mask;            ///< the mask, or null
    Region2d<double> boundingRegion;   ///< the unclipped extent
    Rect2d<int> boundingBox;           ///< the box in cells
    std::int32_t maskValid = 0;        ///< 1 while the mask holds the present shape
    std::int32_t boundingBoxValid = 0; ///< 1 while the box holds the present shape

private:
    void _CalculateBoundingBoxInternal();
};

/** A region of one shape in a frame: the size in cells and the mapping of the data that it will be applied to. Without
 *  a frame the mapping is null. Every setter drops the caches, also when the new value equals the old one. A region
 *  that was moved from may only be assigned to or destroyed. */
class ZDK_VISION_EXPORT SingleROI : public ROI
{
public:
    /** Without a frame. */
    explicit SingleROI(void* allocator = nullptr);

    /** In a frame of @p frameWidth columns and @p frameHeight rows. */
    SingleROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
              void* allocator);
    SingleROI(const SingleROI&) = default;            ///< shares the mask's cells
    SingleROI(SingleROI&&) = default;                 ///< takes the shape, and shares the mask's cells
    SingleROI& operator=(const SingleROI&) = default; ///< shares the mask's cells
    SingleROI& operator=(SingleROI&&) = default;      ///< takes the shape, and shares the mask's cells

    void SetFrame(const std::uint64_t& width, const std::uint64_t& height); ///< columns and rows of the frame
    void SetFrameWidth(const std::uint64_t& width);                         ///< columns of the frame
    void SetFrameHeight(const std::uint64_t& height);                       ///< rows of the frame
    void SetScale(const qPoint64f& value);                                  ///< world size of a cell
    void SetOffset(const qPoint64f& value);                                 ///< world position of cell (0, 0)
    void SetAllocator(void* const& value);                                  ///< allocator of the next mask

protected:
    /** Throws #STATUS_BAD_PARAMETER for @p function when a field of the mapping is null. */
    void RequireMapping(const char* function) const;

    /** Takes @p region for `boundingRegion` and computes `boundingBox` from it, clipped to the frame. */
    void SetBounds(const Region2d<double>& region);

    std::uint64_t frameWidth = 0;  ///< columns of the frame
    std::uint64_t frameHeight = 0; ///< rows of the frame
    qPoint64f scale;               ///< world size of a cell
    qPoint64f offset;              ///< world position of cell (0, 0)

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

    /** The vertices. */
    const std::vector<Point2d<double>>& GetShape() const;

protected:
    /** No vertices, in a frame: for shapes that are polygons underneath. */
    PolygonROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
               void* allocator);

    void _CalculateBoundingBox() override;
    void _AssignMaskSliced() override;

    std::vector<Point2d<double>> polygonPoints; ///< the vertices
};

/** A rectangle, rotated about its centre: a polygon of four corners that keeps the rectangle it came from. */
class ZDK_VISION_EXPORT RectangleROI : public PolygonROI
{
public:
    /** A rectangle of zeros, without vertices. */
    explicit RectangleROI(void* allocator = nullptr);

    /** @param x,y the corner of smallest coordinates of the unrotated rectangle
     *  @param width,height size in world units
     *  @param angle rotation about the centre in degrees */
    RectangleROI(double x, double y, double width, double height, double angle, std::uint64_t frameWidth,
                 std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    /** The same with the corner as a point. */
    RectangleROI(qPoint64f corner, double width, double height, double angle, std::uint64_t frameWidth,
                 std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    /** The same as a record. */
    RectangleROI(const Region2d<double>& rectangle, std::uint64_t frameWidth, std::uint64_t frameHeight,
                 const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;

    /** #MaskTypeRotatedRectangle for an angle above 2 to the power -23, else #MaskTypeRectangle: also for negative
     *  angles, whose polygon is rotated all the same. */
    MaskType GetShapeType() const override;

    std::shared_ptr<ROI> DeepCopy() const override;

    /** The rectangle. */
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

    /** See EllipticalSector2d for the numbers; note that heights stand before widths. */
    EllipseROI(double centerX, double centerY, double innerHeight, double innerWidth, double outerHeight,
               double outerWidth, double startAngle, double angleSpan, double rotation, std::uint64_t frameWidth,
               std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    /** The same with the centre as a point. */
    EllipseROI(const qPoint64f& center, double innerHeight, double innerWidth, double outerHeight, double outerWidth,
               double startAngle, double angleSpan, double rotation, std::uint64_t frameWidth,
               std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    /** The same as a record. */
    EllipseROI(const EllipticalSector2d<double>& ellipse, std::uint64_t frameWidth, std::uint64_t frameHeight,
               const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;
    MaskType GetShapeType() const override;
    std::shared_ptr<ROI> DeepCopy() const override;

    /** The sector. */
    const EllipticalSector2d<double>& GetShape() const;

protected:
    /** A sector of zeros, in a frame. */
    EllipseROI(std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
               void* allocator);

    void _CalculateBoundingBox() override;
    void _AssignMaskSliced() override;

    EllipticalSector2d<double> ellipse; ///< the sector
};

/** A sector of a ring. Its box is that of the ellipse it amounts to; its cells are tested against the ring. */
class ZDK_VISION_EXPORT CircleROI : public EllipseROI
{
public:
    /** A sector of zeros. */
    explicit CircleROI(void* allocator = nullptr);

    /** See AnnularSector2d for the numbers. */
    CircleROI(double centerX, double centerY, double innerRadius, double outerRadius, double startAngle,
              double angleSpan, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
              const qPoint64f& offset, void* allocator);

    /** The same with the centre as a point. */
    CircleROI(const qPoint64f& center, double innerRadius, double outerRadius, double startAngle, double angleSpan,
              std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale, const qPoint64f& offset,
              void* allocator);

    /** The same as a record. */
    CircleROI(const AnnularSector2d<double>& annulus, std::uint64_t frameWidth, std::uint64_t frameHeight,
              const qPoint64f& scale, const qPoint64f& offset, void* allocator);

    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;
    MaskType GetShapeType() const override;
    std::shared_ptr<ROI> DeepCopy() const override;

    /** The sector. */
    const AnnularSector2d<double>& GetShape() const;

private:
    AnnularSector2d<double> annulus;
};

/** The cells where a reference surface has a height. The reference may have another extent and origin than the frame: its
 *  origin is snapped to the frame's grid, half cells away from zero, and both the frame and the reference bound the box.
 *  Cells of the box that have no cell of the reference under them are outside. There are such cells when the reference
 *  lies wholly left of the frame or above it: the reference then bounds that axis no longer, and the box is as wide or as
 *  high as the frame. Wholly right of the frame or below it, the box is the reference's own, beside the frame.
 *
 *  The region is empty when the reference's cells differ in size from the frame's by 2 to the power -23 or more, when a
 *  layer that it needs is missing or of another type, or when the origins are more cells apart than an `int` can
 *  tell. The reference's arrays are shared, not copied. */
class ZDK_VISION_EXPORT SurfaceROI : public SingleROI
{
public:
    /** Shares the layers of @p surface, the reference. */
    SurfaceROI(const Surface& surface, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
               const qPoint64f& offset, void* allocator);

    /** A fresh region in the same place: data do not move with an anchor. */
    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;

    MaskType GetShapeType() const override;

    /** A SurfaceROI over a copy of every layer, made with this region's allocator; also of an IntensityROI, whose range is
     *  not carried over.
     *  @throws Zo::Exception the platform's status when a layer cannot be copied */
    std::shared_ptr<ROI> DeepCopy() const override;

    /** The reference. */
    const Surface& GetShape() const;

protected:
    void _CalculateBoundingBox() override;
    void _AssignMaskSliced() override;

    Surface surface;             ///< the reference
    qPoint32s surfaceCellOffset; ///< where cell (0, 0) of the box lies in the reference: column, row
};

/** The cells where a reference surface has a height and an intensity from a minimum to a maximum, both included. The
 *  intensity layer gives the extent; where a smaller height layer has no cell, there is no height. */
class ZDK_VISION_EXPORT IntensityROI : public SurfaceROI
{
public:
    /** Shares the layers of @p surface, the reference. Intensities from @p minimum to @p maximum are inside. */
    IntensityROI(const Surface& surface, std::uint64_t frameWidth, std::uint64_t frameHeight, const qPoint64f& scale,
                 const qPoint64f& offset, std::uint8_t minimum, std::uint8_t maximum, void* allocator);

    /** A fresh region in the same place: data do not move with an anchor. */
    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;

    MaskType GetShapeType() const override;

protected:
    void _AssignMaskSliced() override;

    /** Both ends are inside. */
    struct IntensityRange
    {
        std::uint8_t minimum; ///< the lowest intensity inside
        std::uint8_t maximum; ///< the highest intensity inside
    };

    IntensityRange intensityRange; ///< what is inside
};

/** The union of other regions: its box is the union of their boxes, and its mask the union of their masks, each laid into
 *  place. Members are shared with whoever else holds them; copies of a composition share its members. Compositions do not
 *  nest, and none can come to hold itself: Add() of a composition adds its members.
 *
 *  A composition notices that a member changed by the member's flags, each time that it is asked. Two consequences:
 *  - A change is missed when the member was evaluated by itself in the meantime: its flags are up again. The composition
 *    then keeps its union until it is rebuilt for another reason.
 *  - A box that is valid by its own flag stays, while GetMask() rebuilds the mask. A caller that wants both to agree after
 *    a change asks for the box first. Cells of members beside a stale box are cut off.
 *
 *  Members of different frames or scales are not refused: the union is one of cells, and what it means is the caller's
 *  affair. Two compositions with a common member must not be evaluated at the same time. */
class ZDK_VISION_EXPORT ComposedROI : public ROI
{
public:
    /** No members. */
    explicit ComposedROI(void* allocator = nullptr);
    ComposedROI(const ComposedROI&) = default;            ///< shares the members
    ComposedROI(ComposedROI&&) = default;                 ///< takes the members
    ComposedROI& operator=(const ComposedROI&) = default; ///< shares the members
    ComposedROI& operator=(ComposedROI&&) = default;      ///< takes the members

    /** Adds @p roi, or the members that it has now when it is a composition; null is ignored. Drops the caches. */
    void Add(const std::shared_ptr<ROI>& roi);

    std::vector<std::shared_ptr<ROI>>::const_iterator Begin() const; ///< the first member
    std::vector<std::shared_ptr<ROI>>::const_iterator End() const;   ///< behind the last member
    std::uint64_t GetRoiCount() const;                               ///< members

    /** The box of member @p index; throws #STATUS_BAD_PARAMETER when there is no such member, and as its
     *  ROI::GetBoundingBox(). */
    const Rect2d<int>& GetSubBoundingBox(std::uint64_t index) const;

    /** The mask of member @p index; throws #STATUS_BAD_PARAMETER when there is no such member, and as its
     *  ROI::GetMask(). */
    const Zo::Object<void*>& GetSubMask(std::uint64_t index) const;

    /** A composition of the moved members, which are new. This one and its members are unchanged. */
    std::shared_ptr<ROI> ApplyAnchor(const Anchor& anchor) override;

    MaskType GetShapeType() const override;

    /** A new composition of the same members: they are shared, not copied. */
    std::shared_ptr<ROI> DeepCopy() const override;

    /** Computes box and bounding region anew, whatever the flags say, and leaves the flags as they are. Members with an
     *  empty box extend the bounding region all the same. Throws as the members' ROI::GetBoundingBox(). */
    void _CalculateBoundingBox() override;

    /** Makes the mask anew for the present box, whatever the flags say, and leaves the flags as they are. Throws as the
     *  members' ROI::GetMask(), and the platform's status when the mask cannot be made. */
    void _AssignMaskSliced() override;

private:
    void _UpdateBBoxSize(const Rect2d<int>& box, const Region2d<double>& region);

    std::vector<std::shared_ptr<ROI>> rois;
};

/** Clears the cells of @p roi's mask whose heights are missing or outside [@p min, @p max]; the limits are those of the
 *  form that takes a rectangle and a mask. A surface without a height layer leaves @p roi untouched. The frame of
 *  @p roi must be that of the surface, which is the caller's duty; a box that does not fit leaves the mask as it was.
 *  Throws as ROI::GetMask(). */
ZDK_VISION_EXPORT void ThresholdHeight(const Surface& surface, double min, double max, ROI& roi);

/** How MaskOperation() combines two bytes. */
enum MaskOperationType : std::int32_t
{
    MaskOperationAnd = 0, ///< what is in both
    MaskOperationOr = 1   ///< what is in one of them
};

/** Combines @p a and @p b, two arrays of one type and size, byte by byte and bitwise, into @p out. Cells other than 0 and 1
 *  are not normalised. An array in @p out of the same type is kept and resized; any other object there is replaced.
 *  @p out may hold @p a or @p b, whose cells are then overwritten.
 *
 *  Nothing happens when @p out is null or the arrays are empty. With an unknown @p op, @p out gets the right shape and
 *  undefined cells.
 *
 *  @param allocator allocator of a new array; null is the platform's default
 *  @throws Zo::Exception
 *   - #STATUS_BAD_PARAMETER, with @p out untouched, when @p a or @p b is null or no #qArray2, when they differ in type or
 *     size, or when their items are platform objects
 *   - the platform's status when there is no memory
 *
 *  One pass on the calling thread. */
ZDK_VISION_EXPORT void MaskOperation(Zo::Object<void*> a, Zo::Object<void*> b, MaskOperationType op, qArray2* out,
                                     void* allocator);

/** Turns runs of cells into a mask and its box. The box reaches one column beyond the last cell of the runs, and that
 *  column of the mask is 0. Runs may come in any order and overlap; one of length 0 counts for the box alone.
 *
 *  Nothing happens without runs, or when @p mask and @p rect are both null.
 *
 *  @param runs a #qArrayList of 12-byte records, three 32-bit integers each: row, first column, cells. #xxqPoint3d32s_type
 *         is such a type.
 *  @param mask slot for a #qArray2 of q8u; what it held is replaced. May be null.
 *  @param rect receives the box. May be null.
 *  @param allocator allocator of the mask; null is the platform's default
 *  @throws Zo::Exception
 *   - #STATUS_BAD_PARAMETER, with nothing written, when @p runs is no list of such records, a length is negative, or the
 *     box does not fit 32 bits
 *   - the platform's status when there is no memory for the mask; @p rect is then written and @p mask null
 *
 *  Two passes over the runs and one over the mask, on the calling thread. */
ZDK_VISION_EXPORT void RLEToMask(qArrayList runs, qArray2* mask, Rect2d<int>* rect, void* allocator);

/** Unites masks, each with a box of its own, into one mask over the union of the boxes, with cells 0 and 1. Empty boxes
 *  add nothing. Nothing happens when there are no masks.
 *
 *  @param masks arrays of q8u, each as large as its box; a null one counts as 0 by 0
 *  @param rects one box for each mask
 *  @param merged slot for the union; what it held is replaced. It may be one of the handles in @p masks. May be null.
 *  @param mergedRect receives the union of the boxes. May be null.
 *  @param allocator allocator of the union; null is the platform's default
 *  @throws Zo::Exception
 *   - #STATUS_BAD_PARAMETER, with nothing written, when there are more masks than boxes or fewer, a mask is no q8u array
 *     of its box's size, or the union does not fit 32 bits
 *   - the platform's status when there is no memory; @p mergedRect is then written and @p merged null
 *
 *  One pass over each mask, in parallel over its rows. */
ZDK_VISION_EXPORT void MergeMasks(const std::vector<Zo::Object<void*>>& masks, const std::vector<Rect2d<int>>& rects,
                                  qArray2* merged, Rect2d<int>* mergedRect, void* allocator);

/** Cuts @p in down to the box of @p roi: heights outside the mask become missing (-32768), intensities outside it 0. The
 *  frame of @p roi must be that of @p in. Layers of @p out of the right type and size are reused, unless @p in or @p roi
 *  has them too, so that a caller who loops over scans allocates nothing after the first. Without intensities in @p in, a
 *  second layer of @p out stays as it was. Cells of the box that the mask does not reach are outside. @p out may be
 *  @p in.
 *
 *  Nothing happens when @p roi is null, or @p in has no layers, or a null one alone. An empty box leaves the mapping of
 *  @p in in @p out, whose layers stay.
 *
 *  @param allocator allocator of new layers; null is the platform's default
 *  @throws Zo::Exception
 *   - #STATUS_BAD_PARAMETER, with @p out untouched, when @p out is null, layer 0 of @p in is no q16s array, or layer 1 is
 *     there and no q8u array of the same size
 *   - #STATUS_BAD_PARAMETER, with the mapping of @p in in @p out, when the box does not lie inside @p in
 *   - what ROI::GetBoundingBox() and ROI::GetMask() throw, with the mapping of @p in in @p out
 *   - the platform's status when there is no memory; @p out then has the mapping of the box, and the layers that it got
 *
 *  One pass over the box on the calling thread. */
ZDK_VISION_EXPORT void ApplyMask(const Surface& in, std::shared_ptr<ROI> roi, Surface* out, void* allocator);

} // namespace Zvl
