#include "Common/SectorScan.h"

#include "Common/Rounding.h"
#include "Common/RowShare.h"
#include "Common/SectorOutline.h"
#include "Geometry/SectorTest.h"

#include <cmath>

namespace Zvl
{

namespace
{

/** The point test of an annular sector. */
class AnnularTest
{
public:
    explicit AnnularTest(const AnnularSector2d<double>& sector)
        : sector(sector), angles(NormalizeSectorAngles(sector.startAngle, sector.angleSpan))
    {
    }

    bool operator()(double x, double y) const { return PointIsInAnnularSector(sector, angles, x, y); }

private:
    const AnnularSector2d<double>& sector;
    SectorDirections angles;
};

/** The point test of an elliptical sector. */
class EllipticalTest
{
public:
    explicit EllipticalTest(const EllipticalSector2d<double>& sector)
        : sector(sector),
          angles(NormalizeSectorAngles(sector.startAngle, sector.angleSpan)),
          cosine(std::cos(EllipseFrameAngle(sector))),
          sine(std::sin(EllipseFrameAngle(sector)))
    {
    }

    bool operator()(double x, double y) const { return PointIsInEllipticalSector(sector, angles, cosine, sine, x, y); }

private:
    const EllipticalSector2d<double>& sector;
    SectorDirections angles;
    double cosine;
    double sine;
};

/** The columns of the box, by their world position. */
class Columns
{
public:
    Columns(const SectorScanReceiver& receiver, double centerX)
        : positions(AccumulatedPositions(receiver.boundingBox->x * receiver.scale->x + receiver.offset->x,
                                         receiver.scale->x, static_cast<std::size_t>(receiver.boundingBox->width))),
          step(receiver.scale->x),
          columnsPerUnit(1.0 / step)
    {
        fromCenter.reserve(positions.size());
        for (const double x : positions)
        {
            fromCenter.push_back(x - centerX);
        }
    }

    int Count() const { return static_cast<int>(positions.size()); }
    double Position(int column) const { return positions[static_cast<std::size_t>(column)]; }

    /** True when columns can be searched for by their distance from the centre. */
    bool AreSearchable() const
    {
        return step > 0.0 && std::isfinite(fromCenter.front()) && std::isfinite(fromCenter.back()) &&
               std::is_sorted(fromCenter.begin(), fromCenter.end());
    }

    /** The largest distance from the centre along x. */
    double Reach() const { return std::fmax(std::fabs(fromCenter.front()), std::fabs(fromCenter.back())); }

    /** The first column at @p distance from the centre or right of it: a guess, and a walk to where it is true. */
    int FirstFrom(double distance) const
    {
        int column = std::clamp(TruncateToInt((distance - fromCenter.front()) * columnsPerUnit), 0, Count());
        while (column > 0 && fromCenter[static_cast<std::size_t>(column) - 1] >= distance)
        {
            --column;
        }
        return FirstFrom(distance, column);
    }

    /** The same, if it is @p column or right of it. */
    int FirstFrom(double distance, int column) const
    {
        while (column < Count() && fromCenter[static_cast<std::size_t>(column)] < distance)
        {
            ++column;
        }
        return column;
    }

private:
    std::vector<double> positions;
    std::vector<double> fromCenter;
    double step;
    double columnsPerUnit;
};

/** Fills rows by the test @p Test, with as few tests as the outline allows. */
template <typename Test>
class SectorRows
{
public:
    SectorRows(const Test& test, const SectorOutline& outline, const Columns& columns, double centerY)
        : test(test),
          outline(outline),
          columns(columns),
          centerY(centerY),
          searchable(outline.IsRegular() && columns.AreSearchable())
    {
    }

    void Fill(double y, MaskRow& row)
    {
        if (!searchable || !outline.Locate(y - centerY, columns.Reach(), outlineRanges))
        {
            TestEach(0, columns.Count(), y, row);
            return;
        }
        LocateUncertain();
        int column = outer.first;
        for (std::size_t i = 0; i < uncertainCount && column < outer.end; ++i)
        {
            const Span& span = uncertain[i];
            FillCertain(column, span.first, y, row);
            TestEach(std::max(column, span.first), span.end, y, row);
            column = std::max(column, span.end);
        }
    }

private:
    struct Span
    {
        int first;
        int end;
    };

    /** The columns within the outline's ranges, in ascending order, and those that the outer curve encloses. */
    void LocateUncertain()
    {
        uncertainCount = 0;
        outer = {columns.Count(), 0};
        for (const OutlineRanges::Range& range : outlineRanges)
        {
            const int first = columns.FirstFrom(range.low);
            const Span span = {first, columns.FirstFrom(range.high, first)}; // narrow, as a rule between two columns
            Insert(span);
            if (outlineRanges.IsOfOuter(range))
            {
                outer = {std::min(outer.first, span.first), std::max(outer.end, span.end)};
            }
        }
    }

    void Insert(const Span& span)
    {
        std::size_t place = uncertainCount++;
        for (; place > 0 && uncertain[place - 1].first > span.first; --place)
        {
            uncertain[place] = uncertain[place - 1];
        }
        uncertain[place] = span;
    }

    void TestEach(int first, int end, double y, MaskRow& row) const
    {
        for (int column = first; column < end; ++column)
        {
            row.Set(column, test(columns.Position(column), y) ? 1 : 0);
        }
    }

    /** No outline passes these columns, so that one answers for all. */
    void FillCertain(int first, int end, double y, MaskRow& row) const
    {
        if (first < end && test(columns.Position(first), y))
        {
            row.Fill(first, end - 1, 1);
        }
    }

    const Test& test;
    const SectorOutline& outline;
    const Columns& columns;
    double centerY;
    bool searchable;
    OutlineRanges outlineRanges;
    std::array<Span, 6> uncertain = {};
    std::size_t uncertainCount = 0;
    Span outer = {}; // beyond it, no cell belongs to the sector
};

template <typename Test, typename Sector>
void FillRows(const SectorScanReceiver& receiver, const Sector& sector, const qParallelArgs* args)
{
    if (IsIdle(args))
    {
        return;
    }
    const Rect2d<int>& box = *receiver.boundingBox;
    const Cells<std::uint8_t> mask = CellsOf<std::uint8_t>(args->target);
    const RowShare share(args, mask.rows);
    const Test test(sector);
    const SectorOutline outline(sector);
    const Columns columns(receiver, sector.center.x);
    SectorRows<Test> rows(test, outline, columns, sector.center.y);
    double y = (box.y + static_cast<double>(share.begin)) * receiver.scale->y + receiver.offset->y;
    for (std::size_t index = share.begin; index < share.end; ++index)
    {
        MaskRow row(mask.Row(index), box.width);
        rows.Fill(y, row);
        y += receiver.scale->y;
    }
}

} // namespace

qStatus FillSectorRows(void* context, void* /*sender*/, const qParallelArgs* args)
{
    const auto& receiver = *static_cast<const SectorScanReceiver*>(context);
    if (receiver.annulus != nullptr)
    {
        FillRows<AnnularTest>(receiver, *receiver.annulus, args);
    }
    else
    {
        FillRows<EllipticalTest>(receiver, *receiver.ellipse, args);
    }
    return STATUS_OK;
}

} // namespace Zvl
