#pragma once

/** @file
 *  The bridge from surface messages to OpenCV. This header needs the headers of OpenCV's core module, and what uses it
 *  is linked with that module; it is therefore no part of ZdkVisionLib.h. The CMake target `ZdkVisionLib::OpenCV` and
 *  the pkg-config module `zdkvisionlib-opencv` bring both along. */

#include <ZdkVisionLib/Common/Common.h>

#include <opencv2/core.hpp>

namespace Zvl
{

/** A part of a surface message as unsigned 16-bit cells that OpenCV can work on without a copy, with the mapping of
 *  that part to the world.
 *
 *  A height count h is stored as h + 32768, so that the order of heights is kept and the missing height becomes 0:
 *
 *  | height         | cell  |
 *  |----------------|-------|
 *  | -32768 missing | 0     |
 *  | -32767         | 1     |
 *  | 0              | 32768 |
 *  | 32767          | 65535 |
 *
 *  A cell for which there is no height, or none within the limits, holds 0 as well.
 *
 *  The object owns its cells, and what GetMat() and GetDestinationMat() return looks at them: a write through the
 *  `cv::Mat` changes the object, and the `cv::Mat` must not be used once the cells are gone (with the object, by an
 *  assignment to it, or by GetDestinationMat() with another size). Moving the object takes the cells along. Cells are
 *  made with the default allocator; when memory is exhausted, there are none, and nothing is thrown.
 *
 *  Different objects may be used from different threads at once; one object belongs to one thread at a time. */
class ZDK_VISION_EXPORT zvlMat
{
public:
    /** No cells; scale and offset are 0. */
    zvlMat();

    /** The cells of item @p index of a surface message that lie in @p region.
     *
     *  The first cell is the one at the corner of the region, and there are as many as its extent holds, all truncated
     *  toward zero. GetScale() is then the message's, and GetOffset() is the position of that first cell, with the
     *  item's own Z. There are no cells, though the mapping is set, when the region has no whole cell along an axis, when
     *  it has more of them than an `int` counts, when its corner is not a number, or when memory is exhausted. A corner
     *  beyond the cells that an `int` counts is taken as the nearest of them.
     *
     *  Linear time in the number of cells; on the calling thread.
     *  @param message a surface message, which is not changed; with null there are no cells, and scale and offset are 0
     *  @param region in world units; its angle is not read. Null is the same as a null @p message
     *  @param useZLimits not 0 to keep only the heights from the region's `z`, truncated toward zero to a height count, to
     *         `z + depth`, rounded half away from zero, both inclusive. With a limit that is not a number none is kept
     *  @param noClip 0 to cut the region to the message first; otherwise cells outside of the message hold 0
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p message is not a surface message; the platform's status when
     *          there is no such item */
    zvlMat(void* message, int index, const Region3d<double>* region, int useZLimits, int noClip);

    /** A deep copy, made with the default allocator. Without cells there, or without memory, the copy has none; its
     *  mapping is copied all the same. Linear time. */
    zvlMat(const zvlMat& other);

    /** Takes the cells; the mapping stays in both. */
    zvlMat(zvlMat&& other) noexcept = default;

    /** Takes the cells and the mapping of @p other, which is a copy or has been moved from its origin. */
    zvlMat& operator=(zvlMat other);

    ~zvlMat() = default;

    /** A header of type `CV_16UC1` over all cells, rows by columns; an empty `cv::Mat` without cells. Constant time. */
    cv::Mat GetMat() const;

    /** Makes room for a result: cells of another size are given up and new ones made, contents undefined; cells
     *  of this size stay as they are. The mapping is unchanged, see SetDestinationParameters().
     *  @param size columns and rows; a negative one leaves no cells
     *  @return GetMat() */
    cv::Mat GetDestinationMat(cv::Size size);

    /** Sets the mapping of the cells to the world. */
    void SetDestinationParameters(const qPoint3d64f& scale, const qPoint3d64f& offset);

    /** Takes the mapping of @p other. */
    void SetDestinationParameters(const zvlMat& other);

    qPoint3d64f GetOffset() const noexcept { return offset; } ///< world position of cell (0, 0) and of height count 0
    qPoint3d64f GetScale() const noexcept { return scale; }   ///< world size of a cell (x, y) and of a height count (z)

    /** Columns and rows; (0, 0) without cells. */
    cv::Size GetSize() const;

    /** The smaller width and the smaller height of two. */
    static cv::Size GetSmallestSize(const zvlMat& a, const zvlMat& b);

    /** The heights that the cells stand for, 0 being the missing height: the way back from OpenCV to a Surface. Linear
     *  time.
     *  @return a new #qArray2 of q16s, made with the default allocator, of which the caller owns the one count; null
     *          without cells or without memory */
    void* GetqArray2Ofq16s() const;

    /** The region that item @p index of a surface message covers: all its cells, from one edge of the first to the same
     *  edge behind the last, and all heights from -32768 to 32767. Nothing happens when @p message or @p region is
     *  null. Constant time.
     *  @param region receives all but its angle; untouched when this throws
     *  @throws Zo::Exception as the constructor from a message */
    static void GetRegionFromMsg(void* message, int index, Region3d<double>* region);

    /** @name Common regions
     *  The part that two regions share, or the least region around both. Angles are not looked at. @p result may be one
     *  of the two, and takes all fields of @p a, the angle with them, before it is changed, unless it is @p b, which keeps
     *  its own. When all three are one region, or one of them is null, nothing happens. Constant time; nothing is
     *  thrown.
     *  @{ */

    /** The shared part; an axis along which the regions are apart gets a size below 0, and none at all when they just
     *  touch. */
    static void ComputeOverlappingRegion(const Region3d<double>* a, const Region3d<double>* b,
                                         Region3d<double>* result);

    /** The region around both. */
    static void ComputeContainerRegion(const Region3d<double>* a, const Region3d<double>* b, Region3d<double>* result);

    /** @} */

private:
    /** A header over the first rows and columns; an empty `cv::Mat` without cells, or when there are fewer. */
    cv::Mat GetMat(cv::Size size) const;

    /** Cuts @p region to @p bound along X and Y. */
    static void RegionClipXY(const Region3d<double>* bound, Region3d<double>* region);

    /** Widens @p region to hold @p bound along X and Y. */
    static void RegionMergeXY(const Region3d<double>* bound, Region3d<double>* region);

    Zo::Object<void*> cells; ///< #qArray2 of q16u, not shared with anyone; or null
    qPoint3d64f scale;
    qPoint3d64f offset;
    int state; ///< 1 when made from a message, otherwise 0; for people who look at an object in a debugger
};

} // namespace Zvl
