#pragma once

/** @file Where the outline of a sector can pass a row. A cell counts by the sector's point test, which is not
 *  cheap; but the test can change its answer only where the outline passes. The outline is therefore located in
 *  floating point, with a margin far above the rounding of the test: cells within the margin are tested one by
 *  one, and of each stretch between margins a single cell speaks for all. */

#include <ZdkVisionLib/Common/Common.h>

#include <array>
#include <cstddef>

namespace Zvl
{

/** Closed ranges of x, relative to the sector's centre, that can hold a point of the outline on one row. */
class OutlineRanges
{
public:
    struct Range
    {
        double low;
        double high;
    };

    // Two for each of the two curves, one for each of the two rays.
    static constexpr std::size_t kMost = 6;

    void Clear() { count = 0; }
    void Add(double low, double high) { ranges[count++] = {low, high}; }

    std::size_t Count() const { return count; }

    const Range* begin() const { return ranges.data(); }
    const Range* end() const { return ranges.data() + count; }

private:
    std::array<Range, kMost> ranges = {};
    std::size_t count = 0;
};

/** The outline of a sector: an outer curve, perhaps an inner one, and perhaps two rays. */
class SectorOutline
{
public:
    explicit SectorOutline(const AnnularSector2d<double>& sector);
    explicit SectorOutline(const EllipticalSector2d<double>& sector);

    /** False when the sector is too degenerate for margins (an axis of zero, a needle of an ellipse): then every cell
     *  has to be tested. */
    bool IsRegular() const { return regular; }

    /** Fills @p ranges for the row at @p dy from the centre, over x up to @p reach from the centre. False when
     *  every cell of the row has to be tested, since it passes too close to the centre. */
    bool Locate(double dy, double reach, OutlineRanges& ranges) const;

private:
    /** `xx dx^2 + 2 xy dx dy + yy dy^2 = 1` around the centre. */
    struct Conic
    {
        bool present = false;
        double xx = 0.0;
        double perXx = 0.0;       ///< `1 / xx`
        double shift = 0.0;       ///< `-xy / xx`: how the middle of a row moves with dy
        double determinant = 0.0; ///< `xx yy - xy^2`
    };

    /** A ray that crosses rows, along which x grows by @p slope for each unit of y. */
    struct Ray
    {
        bool crosses = false;
        double slope = 0.0;
        double margin = 0.0; ///< for each unit of y
    };

    static Conic ConicOf(double halfWidth, double halfHeight, double cosine, double sine);
    static void LocateConic(const Conic& conic, double dy, OutlineRanges& ranges);

    void SetCurves(double outerX, double outerY, double innerX, double innerY, double cosine, double sine);
    void SetRays(double startAngle, double angleSpan, double cosine, double sine);

    bool regular = true;
    Conic outer;
    Conic inner;
    bool hasRays = false;
    std::array<Ray, 2> rays = {};
};

} // namespace Zvl
