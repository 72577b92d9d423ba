#pragma once

/** @file
 *  Regions of interest over profiles. A region lies in the plane of a line scan, x along the line and y the height. It
 *  answers two questions, each when asked and each remembered: which stretch of the profile's items it may concern (a
 *  segment) and which items of that stretch belong to it (a mask).
 *
 *  Whether an item lies in a shape depends on its height, so a shape alone cannot tell: until RoiProfile::ApplyRoi()
 *  has seen a profile, the mask selects the whole segment; from then on it holds what was found in the last profile.
 *
 *  A profile has its items in layer 0, a #qArray1, in one of two forms, and a region is told which when it is made:
 *  - *uniform*: heights, q16s, at regular x. Only the items along x within the shape are in the segment.
 *  - *pairs*: x and height, two 16-bit counts, each pair in four bytes. Pairs lie in any order, so the segment is the
 *    whole frame. The type of the items is not examined: pair i is bytes 4 i to 4 i + 3 of the array.
 *
 *  A mask is a #qArray1 of q8u, as long as the segment; 0 is outside, 1 inside, and any non-zero cell reads as inside.
 *  Its cell i stands for item `segment.start` + i. A region with an empty segment has a mask of no cells. An item with
 *  a missing count is outside.
 *
 *  A region fills its caches inside its accessors: one region object belongs to one thread at a time, and so do regions
 *  that share a mask. Nothing here runs in parallel. */

#include <ZdkVisionLib/Common/Common.h>
#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include <cstdint>
#include <memory>
#include <vector>

namespace Zvl
{

/** A region over a profile. Copies share the mask's cells, and go on sharing them: a mask is rebuilt in place. What one
 *  of them finds in a profile is seen by all. Polygons and rectangles that are copy-constructed share nothing. A region
 *  that was moved from may only be assigned to or destroyed. */
class ZDK_VISION_EXPORT RoiProfile
{
public:
    /** @param isUniform not 0 for uniform profiles, 0 for pairs
     *  @param allocator allocator of the mask; null is the platform's default */
    RoiProfile(int isUniform, void* allocator);
    RoiProfile(const RoiProfile&) = default;            ///< shares the mask's cells
    RoiProfile& operator=(const RoiProfile&) = default; ///< shares the mask's cells
    virtual ~RoiProfile() = default;

    /** A region of the same class, moved by @p anchor, with empty caches. This region is unchanged. */
    virtual std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& anchor) const = 0;

    /** The kind of shape. */
    virtual MaskType GetShapeType() const = 0;

    /** Finds which items of @p profile belong to the region, and keeps the answers in the mask until the next call. A
     *  profile without a layer 0, and a region with an empty segment, change nothing. Time is linear in the segment,
     *  and in the vertices of a polygon.
     *  @throws Zo::Exception from "Zvl::SingleRoiProfile::_CheckApplyRoiConditions", with the mask as it was:
     *          #STATUS_BAD_PARAMETER when the segment reaches past the layer, which also has to hold four bytes for
     *          each pair, or when the layer is no #qArray1, or one of objects in place of pairs; #STATUS_MISMATCH when
     *          a uniform profile's layer is not of q16s, or a field of the profile's mapping differs from the region's
     *          by more than 2 to the power -23. Otherwise as GetMask() */
    virtual void ApplyRoi(const Profile& profile) = 0;

    /** 1 while the segment holds the present shape. */
    virtual int IsBoundingSegmentValid();

    /** 1 while the mask belongs to the present shape. */
    virtual int IsMaskValid();

    /** The segment in items, clipped to the frame. An empty one may have a start beyond the frame, and a length below 0
     *  when the shape lies between two items or the scale is negative.
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when the frame's mapping was never set */
    const RunLength<int>& GetBoundingSegment();

    /** The mask; never null. Throws as GetBoundingSegment(), and the platform's status when the mask cannot be made;
     *  the next call then starts again. */
    const Zo::Object<void*>& GetMask();

protected:
    /** Fills `boundingSegment` and, of uniform profiles, `boundingRegion`. */
    virtual void _CalculateBoundingSegment() = 0;

    /** Fills the mask that _ConstructMask() has made. */
    virtual void _AssignMask() = 0;

    /** Throws when @p profile does not fit the region. */
    virtual void _CheckApplyRoiConditions(const Profile& profile) = 0;

    /** Clears the bytes of segment and bounding region. */
    void _ResetBoundingSegment();

    void* allocator;                       ///< of the mask; null is the platform's default
    Zo::Object<void*> mask;                ///< the mask, or null
    RunLength<double> boundingRegion;      ///< the unclipped extent along x in world units; not used for pairs
    RunLength<int> boundingSegment;        ///< the segment in items
    std::int32_t boundingSegmentValid = 0; ///< 1 while the segment holds the present shape
    std::int32_t maskValid = 0;            ///< 1 while the mask belongs to the present shape
    std::int32_t isUniform;                ///< 0 for pairs

private:
    void _ConstructMask();
};

/** A region of one shape in a frame: the number of items and the mapping of the profiles that it will be applied to,
 *  which are fixed. In `scale` and `offset`, x runs along the line and y is the height. Without a frame the mapping is
 *  null. */
class ZDK_VISION_EXPORT SingleRoiProfile : public RoiProfile
{
public:
    /** Without a frame. */
    SingleRoiProfile(int isUniform, void* allocator);

    /** In a frame of @p frameWidth items. */
    SingleRoiProfile(std::uint64_t frameWidth, const qPoint64f& scale, const qPoint64f& offset, int isUniform,
                     void* allocator);

    void ApplyRoi(const Profile& profile) override;

protected:
    /** Selects the whole segment. */
    void _AssignMask() override;

    void _CheckApplyRoiConditions(const Profile& profile) override;

    /** Not 0 when @p point, in world units, belongs to the shape. */
    virtual int _IsPointInRegion(const qPoint64f& point) const = 0;

    /** Throws #STATUS_BAD_PARAMETER for @p function when a field of the mapping is null. */
    void RequireMapping(const char* function) const;

    /** Takes @p extent for `boundingRegion` and computes `boundingSegment` from it, clipped to the frame. */
    void SetBounds(const RunLength<double>& extent);

    std::uint64_t frameWidth = 0; ///< items of the frame
    qPoint64f scale;              ///< world size of an item (x) and of a height count (y)
    qPoint64f offset;             ///< world position of item 0 and of height count 0

private:
    void SelectHeights(void* layer);
    void SelectPairs(void* layer);
};

/** A polygon, closed by repetition: its last vertex equals its first. A point is inside when the ray to its right
 *  crosses the outline at an odd number of places: so a left edge belongs to the region and a right edge does not,
 *  self-crossing polygons follow the parity rule, and a ray through a vertex, which counts once, may miss the truth.
 *  With fewer than four entries the segment in a uniform profile is empty. */
class ZDK_VISION_EXPORT PolygonRoiProfile : public SingleRoiProfile
{
public:
    /** Takes @p points as they are: the caller closes the polygon. */
    PolygonRoiProfile(const std::vector<Point2d<double>>& points, std::uint64_t frameWidth, const qPoint64f& scale,
                      const qPoint64f& offset, int isUniform, void* allocator);

    /** A region of the same shape and frame, with empty caches. */
    PolygonRoiProfile(const PolygonRoiProfile& other);

    /** Takes the caches along and shares the mask. */
    PolygonRoiProfile& operator=(const PolygonRoiProfile&) = default;

    std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& anchor) const override;
    MaskType GetShapeType() const override;

    /** The vertices. */
    const std::vector<Point2d<double>>& GetShape() const;

protected:
    /** No vertices, in a frame: for shapes that are polygons underneath. */
    PolygonRoiProfile(std::uint64_t frameWidth, const qPoint64f& scale, const qPoint64f& offset, int isUniform,
                      void* allocator);

    void _CalculateBoundingSegment() override;
    int _IsPointInRegion(const qPoint64f& point) const override;

    std::vector<Point2d<double>> polygonPoints; ///< the vertices

private:
    mutable std::vector<double> crossings; ///< of the last point's ray; its memory serves the next one
};

/** A rectangle. When its angle is 2 to the power -23 or less in magnitude, all of its edges belong to it; otherwise it
 *  is the polygon of its corners. */
class ZDK_VISION_EXPORT RectangleRoiProfile : public PolygonRoiProfile
{
public:
    /** In a frame of @p frameWidth items; see RoiProfile for @p isUniform and @p allocator. */
    RectangleRoiProfile(const Region2d<double>& rectangle, std::uint64_t frameWidth, const qPoint64f& scale,
                        const qPoint64f& offset, int isUniform, void* allocator);

    /** A region of the same shape and frame, with empty caches. */
    RectangleRoiProfile(const RectangleRoiProfile& other);

    /** Takes the caches along and shares the mask. */
    RectangleRoiProfile& operator=(const RectangleRoiProfile&) = default;

    std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& anchor) const override;

    /** #MaskTypeRectangle at every angle. */
    MaskType GetShapeType() const override;

    /** The rectangle. */
    const Region2d<double>& GetShape() const;

protected:
    int _IsPointInRegion(const qPoint64f& point) const override;

private:
    Region2d<double> rectangle;
};

/** A sector between two ellipses of one centre; both ellipses and both ends of the sector belong to it. The segment is
 *  that of the whole outer ellipse, as narrow as the turned ellipse is. Diameters of 0 exclude what
 *  CheckPointInEllipticalSector() excludes: nothing where a quotient is not a number. */
class ZDK_VISION_EXPORT EllipseRoiProfile : public SingleRoiProfile
{
public:
    /** In a frame of @p frameWidth items; see RoiProfile for @p isUniform and @p allocator. */
    EllipseRoiProfile(const EllipticalSector2d<double>& ellipse, std::uint64_t frameWidth, const qPoint64f& scale,
                      const qPoint64f& offset, int isUniform, void* allocator);

    std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& anchor) const override;
    MaskType GetShapeType() const override;

    /** The sector. */
    const EllipticalSector2d<double>& GetShape() const;

protected:
    /** A sector of zeros, in a frame. */
    EllipseRoiProfile(std::uint64_t frameWidth, const qPoint64f& scale, const qPoint64f& offset, int isUniform,
                      void* allocator);

    void _CalculateBoundingSegment() override;
    int _IsPointInRegion(const qPoint64f& point) const override;

    EllipticalSector2d<double> ellipse; ///< the sector
};

/** A sector of a ring. Its segment is that of the ellipse it amounts to; its points are tested against the ring, as
 *  CheckPointInAnnularSector() does. */
class ZDK_VISION_EXPORT CircleRoiProfile : public EllipseRoiProfile
{
public:
    /** In a frame of @p frameWidth items; see RoiProfile for @p isUniform and @p allocator. */
    CircleRoiProfile(const AnnularSector2d<double>& annulus, std::uint64_t frameWidth, const qPoint64f& scale,
                     const qPoint64f& offset, int isUniform, void* allocator);

    std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& anchor) const override;
    MaskType GetShapeType() const override;

    /** The sector. */
    const AnnularSector2d<double>& GetShape() const;

protected:
    int _IsPointInRegion(const qPoint64f& point) const override;

private:
    AnnularSector2d<double> annulus;
};

/** The union of regions. Its segment reaches over those of its members and the gaps between them; its mask is their
 *  masks, each laid into place. Members are shared with whoever else holds them, and copies of a composition share
 *  them, too. They should be of one frame: nothing tests that, and cells of a member that fall outside of the segment
 *  are left out. */
class ZDK_VISION_EXPORT ComposedRoiProfile : public RoiProfile
{
public:
    /** No members. */
    ComposedRoiProfile(int isUniform, void* allocator);

    /** A composition of the moved members. */
    std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& anchor) const override;

    MaskType GetShapeType() const override;

    /** Applies each member in order and unites their masks. The members test the profile, each against its own frame;
     *  when one throws, those before it keep their new masks, and the union stays that of before. */
    void ApplyRoi(const Profile& profile) override;

    /** 1 while the segment holds the present shape and that of every member is valid. */
    int IsBoundingSegmentValid() override;

    /** 1 while the mask belongs to the present shape and that of every member is valid. A member that was applied on
     *  its own is valid: the union is then that of before. */
    int IsMaskValid() override;

    /** Adds @p roi as the last member, or the members of a composition, which itself is not kept; an empty pointer adds
     *  nothing. */
    void Add(const std::shared_ptr<RoiProfile>& roi);

    std::vector<std::shared_ptr<RoiProfile>>::const_iterator Begin() const; ///< the first member
    std::vector<std::shared_ptr<RoiProfile>>::const_iterator End() const;   ///< behind the last member
    std::uint64_t GetRoiCount() const;                                      ///< members

    /** The segment of member @p index.
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when there is no such member; else as its GetBoundingSegment() */
    const RunLength<int>& GetSubBoundingSegment(std::uint64_t index) const;

    /** The mask of member @p index.
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when there is no such member; else as its GetMask() */
    const Zo::Object<void*>& GetSubMask(std::uint64_t index) const;

protected:
    void _CalculateBoundingSegment() override;
    void _AssignMask() override;

    /** Does nothing: the members test the profile. */
    void _CheckApplyRoiConditions(const Profile& profile) override;

private:
    void _UpdateBoundingSegment(const RunLength<int>& segment);

    std::vector<std::shared_ptr<RoiProfile>> rois;
};

} // namespace Zvl
