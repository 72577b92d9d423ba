#pragma once

/** @file
 *  Cell by cell operations on two height maps: their sum, difference or mean, and one map where the other has data. */

#include <ZdkVisionLib/Common/Common.h>

#include <cstdint>
#include <memory>

namespace Zvl
{

/** What becomes of two heights, or of two intensities. */
enum class ArithmeticOperator : std::int32_t
{
    Add = 0,      ///< first plus second
    Subtract = 1, ///< first minus second
    Average = 2   ///< mean of both
};

/** Which cells a result has. */
enum class ArithmeticLogic : std::int32_t
{
    Intersection = 0, ///< the overlap of the two footprints
    Union = 1         ///< the bounding rectangle of the two footprints
};

/** An operation on one pair of cells. Heights are counts of #zScale; those of the first surface start at #zOffset0,
 *  those of the second at #zOffset1, and the result is a count in the frame of the first. Constant time, and one object
 *  may be used by many threads as long as none changes it. */
class ZDK_VISION_EXPORT ArithmeticsPixelOperation
{
public:
    ArithmeticsPixelOperation() = default;                                            ///< unit scale, no offsets
    ArithmeticsPixelOperation(const ArithmeticsPixelOperation&) = default;            ///< copies scale and offsets
    ArithmeticsPixelOperation& operator=(const ArithmeticsPixelOperation&) = default; ///< copies scale and offsets
    virtual ~ArithmeticsPixelOperation() = default;

    /** The operation on two intensities.
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p out is null */
    virtual void Operate(std::uint8_t a, std::uint8_t b, std::uint8_t* out) const = 0;

    /** The operation on two heights. With one of them missing the result is the other, in the frame of the first
     *  surface but with its own sign; with both missing it is the null of `int`, and so it is where the outcome is not
     *  a number or needs more than 32 bits.
     *  @throws Zo::Exception #STATUS_BAD_PARAMETER when @p out is null */
    virtual void Operate(std::int16_t a, std::int16_t b, std::int32_t* out) const = 0;

    void SetScale(double value);                     ///< sets #zScale
    void SetOffsets(double offset0, double offset1); ///< sets #zOffset0 and #zOffset1

    double zScale = 1.0;   ///< world size of a height count of both surfaces
    double zOffset0 = 0.0; ///< world position of count 0 of the first surface
    double zOffset1 = 0.0; ///< world position of count 0 of the second surface
};

/** Sums: heights as world values above the first surface's offset, truncated to counts; intensities up to 255. */
class ZDK_VISION_EXPORT ArithmeticsPixelAdd : public ArithmeticsPixelOperation
{
public:
    void Operate(std::uint8_t a, std::uint8_t b, std::uint8_t* out) const override;
    void Operate(std::int16_t a, std::int16_t b, std::int32_t* out) const override;
};

/** Differences: heights as world values above the first surface's offset, truncated to counts; intensities down to
 *  0. */
class ZDK_VISION_EXPORT ArithmeticsPixelSubtract : public ArithmeticsPixelOperation
{
public:
    void Operate(std::uint8_t a, std::uint8_t b, std::uint8_t* out) const override;
    void Operate(std::int16_t a, std::int16_t b, std::int32_t* out) const override;
};

/** Means: heights as world values above the first surface's offset, truncated to counts; intensities rounded down. */
class ZDK_VISION_EXPORT ArithmeticsPixelAverage : public ArithmeticsPixelOperation
{
public:
    void Operate(std::uint8_t a, std::uint8_t b, std::uint8_t* out) const override;
    void Operate(std::int16_t a, std::int16_t b, std::int32_t* out) const override;
};

/** Makes the operation on one pair of cells. */
class ZDK_VISION_EXPORT ArithmeticsPixelOperationFactory
{
public:
    /** A new operation of unit scale without offsets, for heights and intensities alike.
     *  @throws Zo::Exception #STATUS_NOT_SUPPORTED for a value that is no operator */
    static std::shared_ptr<ArithmeticsPixelOperation> Create(ArithmeticOperator op);
};

/** Operations on two height maps of any sizes and offsets. Both take a surface's footprint to reach from its `offset` to
 *  `offset + count * scale`, find the grid that the footprints have in common, and lay each source under it at the
 *  nearest whole cell, with no interpolation. The scales of the first surface count for both; those of the second are not
 *  read.
 *
 *  Cells, and where the sources begin, are counted in 16 bits. Of a source with more than 32767 rows or columns only as
 *  many take part as are left of their number in 16 bits, none if that is negative; a grid of such a size has missing
 *  heights and intensities of 0 in the cells beyond.
 *
 *  Intensities are dealt with when both surfaces have a second layer, which is then q8u and as large as the heights.
 *
 *  @p result is meant to come without layers. Layers are appended to it, but it is the first one or two that are replaced
 *  by the result, so that appended ones stay empty behind old ones. It may be one of the sources, which are read as they
 *  were at the start.
 *
 *  Each call is one pass over the grid on the calling thread. Calls on different surfaces may run at once. */
class ZDK_VISION_EXPORT Arithmetics
{
public:
    /** Adds, subtracts or averages two height maps. With a and b the world heights of the sources, `offset + count * scale`
     *  in their own frames, the world height of a cell of the result, in the frame of @p surface0 and truncated to a count
     *  of it, is:
     *
     *  | sources with a height | Intersection | Union           |
     *  |-----------------------|--------------|-----------------|
     *  | both                  | a op b       | a op b          |
     *  | first only            | missing      | a               |
     *  | second only           | missing      | b, also to subtract |
     *  | none                  | missing      | missing         |
     *
     *  Intensities: a op b where both heights are present, else 0, for the intersection. For the union a op b wherever
     *  both sources have a cell, whatever their heights are, and the intensity of the one source elsewhere.
     *
     *  The heights are computed in 32 bits. When they do not fit in 16, all are shifted and @p result has another z
     *  offset; when their range does not fit either, @p result has a coarser z scale, too. A missing height under a part
     *  of a union that one source covers alone then counts as a height of -32768: it takes part in the range and comes
     *  out as a real height. A height that comes to lie on -32768 reads as missing, and so does one that 32 bits could
     *  not hold.
     *
     *  A @p logic that is neither of the two gives a result without cells. Of a result with more than two layers, those
     *  behind the second are dropped.
     *
     *  @throws Zo::Exception
     *   - #STATUS_BAD_PARAMETER with the message "Empty Data" when a surface has no first layer
     *   - #STATUS_BAD_PARAMETER from "Zvl::Arithmetics::Apply" when a first layer is not a #qArray2 of q16s, or
     *     intensities are dealt with and a second layer is not as told
     *   - #STATUS_BAD_PARAMETER from "Zvl::Arithmetics::getBoundaries" when a length of the grid or a distance in cells
     *     is not finite (a mapping that was never set, a scale of 0)
     *   - #STATUS_NOT_SUPPORTED from "Zvl::ArithmeticsPixelOperationFactory::Create" when @p op is no operator
     *   - the platform's status from "Zvl::Arithmetics::Apply" or "Zvl::Arithmetics::ConvertSurface32sTo16s" when a layer
     *     cannot be made, as for footprints that do not meet and therefore have an intersection of negative size
     *
     *  After a failure @p result has the scale and offset of @p surface0, with the grid's x and y once that is known,
     *  and the layers made so far; a first layer that was not packed yet is q32s. Time is linear in the cells. Memory
     *  beyond the result is a row of 32-bit heights, and a whole layer of them when they do not fit in 16 bits. */
    static void Apply(ArithmeticOperator op, ArithmeticLogic logic, Surface& surface0, Surface& surface1,
                      Surface& result);

    /** Copies the cells of @p surface, on the intersection of the two footprints, where both surfaces have a height.
     *  Other heights are missing and other intensities 0.
     *
     *  @throws Zo::Exception as Apply(), with "Zvl::Arithmetics::ApplyMask" in place of "Zvl::Arithmetics::Apply". After
     *          a failure @p result has the scale and offset of @p surface, with the grid's x and y once that is known,
     *          and the layers made so far. Time and memory are linear in the cells. */
    static void ApplyMask(Surface& surface, Surface& maskSurface, Surface& result);
};

} // namespace Zvl
