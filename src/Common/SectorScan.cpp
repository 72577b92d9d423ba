#include "Common/SectorScan.h"

#include "Common/RowShare.h"
#include "Common/SectorOutline.h"
#include "Geometry/SectorTest.h"

#include <cmath>
#include <limits>

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
        fromCenter.reserve(positions.size() + 2);
        fromCenter.push_back(kNoNumber);
        for (const double x : positions)
        {
            fromCenter.push_back(x - centerX);
        }
        fromCenter.push_back(kNoNumber);
    }

    int Count() const { return static_cast<int>(positions.size()); }
    double Position(int column) const { return positions[static_cast<std::size_t>(column)]; }

    /** True when columns can be searched for by their distance from the centre. */
    bool AreSearchable() const
    {
        return step > 0.0 && std::isfinite(First()) && std::isfinite(Last()) &&
               std::is_sorted(fromCenter.begin() + 1, fromCenter.end() - 1);
    }

    /** The largest distance from the centre along x. */
    double Reach() const { return std::fmax(std::fabs(First()), std::fabs(Last())); }

    /** The first column at @p distance from the centre or right of it: a guess, and a walk to where it is true. */
    int FirstFrom(double distance) const
    {
        const double guess = (distance - First()) * columnsPerUnit;
        int column = !(guess > 0.0) ? 0 : guess < Count() ? static_cast<int>(guess) : Count();
        while (FromCenter(column - 1) >= distance)
        {
            --column;
        }
        return FirstFrom(distance, column);
    }

    /** The same, if it is @p column or right of it. */
    int FirstFrom(double distance, int column) const
    {
        while (FromCenter(column) < distance)
        {
            ++column;
        }
        return column;
    }

private:
    static constexpr double kNoNumber = std::numeric_limits<double>::quiet_NaN();

    double First() const { return fromCenter[1]; }
    double Last() const { return fromCenter[positions.size()]; }
    double FromCenter(int column) const { return *(fromCenter.begin() + 1 + column); }

    std::vector<double> positions;
    std::vector<double> fromCenter; // between two that are not a number, where every walk ends
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
          reach(columns.Reach()),
          searchable(outline.IsRegular() && columns.AreSearchable())
    {
    }

    void Fill(double y, MaskRow& row)
    {
        if (!searchable || !outline.Locate(y - centerY, reach, ranges))
        {
            TestEach(0, columns.Count(), y, row);
            return;
        }
        LocateUncertain();
        const Crossings crossings = {ranges.Count(), y > centerY};
        if (crossings != known || !AreInOrder())
        {
            known = crossings;
            PutInOrder();
            answers.fill(Answer::Unknown);
        }
        int column = 0;
        for (std::size_t i = 0; i < ranges.Count(); ++i)
        {
            const Span& span = uncertain[order[i]];
            FillCertain({column, span.first}, y, answers[i], row);
            TestEach(std::max(column, span.first), span.end, y, row);
            column = std::max(column, span.end);
        }
        FillCertain({column, columns.Count()}, y, answers[ranges.Count()], row);
    }

private:
    struct Span
    {
        int first;
        int end;
    };

    /** What the outline's curves have in common on rows that they cross in the same way. The curves share their centre: their
     *  ranges become fewer with the distance from it, those of the flatter one first, so that the number tells which there
     *  are. The rays are taken for whole lines, so that the side of the centre counts, too. */
    struct Crossings
    {
        std::size_t count;
        bool isAbove;

        bool operator==(const Crossings&) const = default;
    };

    /** Whether the cells of a stretch that no curve passes belong to the sector. */
    enum class Answer : std::uint8_t
    {
        Unknown,
        Outside,
        Inside
    };

    /** The columns within the outline's ranges. */
    void LocateUncertain()
    {
        std::size_t count = 0;
        for (const OutlineRanges::Range& range : ranges)
        {
            const int first = columns.FirstFrom(range.low);
            uncertain[count++] = {first, columns.FirstFrom(range.high, first)}; // narrow, as a rule between two columns
        }
    }

    /** True when the curves pass this row in the order of the row before, so that each stretch lies on the same side of each
     *  curve as there, and in the sector if it did there. */
    bool AreInOrder() const
    {
        for (std::size_t i = 1; i < known.count; ++i)
        {
            if (uncertain[order[i]].first < uncertain[order[i - 1]].first)
            {
                return false;
            }
        }
        return true;
    }

    void PutInOrder()
    {
        for (std::size_t i = 0; i < known.count; ++i)
        {
            std::size_t place = i;
            for (; place > 0 && uncertain[order[place - 1]].first > uncertain[i].first; --place)
            {
                order[place] = order[place - 1];
            }
            order[place] = i;
        }
    }

    void TestEach(int first, int end, double y, MaskRow& row) const
    {
        for (int column = first; column < end; ++column)
        {
            row.Set(column, test(columns.Position(column), y) ? 1 : 0);
        }
    }

    /** One cell answers for all between two curves. */
    void FillCertain(const Span& span, double y, Answer& answer, MaskRow& row) const
    {
        if (span.first >= span.end)
        {
            return;
        }
        if (answer == Answer::Unknown)
        {
            answer = test(columns.Position(span.first), y) ? Answer::Inside : Answer::Outside;
        }
        if (answer == Answer::Inside)
        {
            row.Fill(span.first, span.end - 1, 1);
        }
    }

    const Test& test;
    const SectorOutline& outline;
    const Columns& columns;
    double centerY;
    double reach;
    bool searchable;
    OutlineRanges ranges;
    std::array<Span, OutlineRanges::kMost> uncertain = {};
    Crossings known = {};
    std::array<std::size_t, OutlineRanges::kMost> order = {};  // of the curves, from left to right
    std::array<Answer, OutlineRanges::kMost + 1> answers = {}; // left of all curves, between the first two, and so on
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
