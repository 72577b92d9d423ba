#include "Common/PolygonScan.h"

#include "Common/ActiveEdges.h"
#include "Common/Rounding.h"
#include "Common/RowShare.h"

#include <cmath>

namespace Zvl
{

namespace
{

/** From a world x to a position among the columns of the box. */
class ColumnMapping
{
public:
    ColumnMapping(const Rect2d<int>& box, double scale, double offset) : first(box.x), scale(scale), offset(offset) {}

    double At(double x) const { return (x - offset) / scale - first; }

private:
    double first;
    double scale;
    double offset;
};

/** Finds out whether a row's crossings hit a vertex. Only vertices level with the row can be hit. */
class VertexSearch
{
public:
    explicit VertexSearch(const std::vector<Point2d<double>>& points)
    {
        std::copy_if(points.begin(), points.end(), std::back_inserter(vertices),
                     [](const Point2d<double>& vertex) { return !std::isnan(vertex.y); });
        std::sort(vertices.begin(), vertices.end(),
                  [](const Point2d<double>& a, const Point2d<double>& b) { return a.y < b.y; });
    }

    /** Rows that follow each other are found in few steps from one to the next. */
    bool Hits(const std::vector<double>& crossings, double y)
    {
        const double low = y - 2.0 * kGeometricTolerance;
        const double high = y + 2.0 * kGeometricTolerance;
        while (first < vertices.size() && vertices[first].y < low)
        {
            ++first;
        }
        while (first > 0 && vertices[first - 1].y >= low)
        {
            --first;
        }
        for (std::size_t i = first; i < vertices.size() && vertices[i].y <= high; ++i)
        {
            for (const double x : crossings)
            {
                if (DistanceBetween({x, y}, vertices[i]) < kGeometricTolerance)
                {
                    return true;
                }
            }
        }
        return false;
    }

private:
    std::vector<Point2d<double>> vertices; ///< by ascending y
    std::size_t first = 0;                 ///< the first that is not below the present row
};

/** Span values by parity: each crossing leads from outside to inside, or back. */
class ParityValue
{
public:
    std::uint8_t Until(double /*x*/) const { return maskValue; }
    void Pass(double /*crossing*/, bool /*inBox*/) { maskValue = static_cast<std::uint8_t>(1 - maskValue); }

private:
    std::uint8_t maskValue = 0;
};

/** Span values by the span's midpoint: a ray through a vertex cannot be trusted to change parity. */
class MidpointValue
{
public:
    MidpointValue(const std::vector<Point2d<double>>& points, double y, double left, double step,
                  Intersections& intersections)
        : points(points), intersections(intersections), y(y), left(left), step(step)
    {
    }

    std::uint8_t Until(double x) const
    {
        return IsPointInPolygon({(left + x) * 0.5, y}, points, intersections) != 0 ? 1 : 0;
    }

    void Pass(double crossing, bool inBox)
    {
        if (inBox)
        {
            left = crossing + step;
        }
    }

private:
    const std::vector<Point2d<double>>& points;
    Intersections& intersections;
    double y;
    double left;
    double step;
};

/** Fills one row from its crossings. */
class RowScan
{
public:
    RowScan(const PolygonScanReceiver& receiver, const ColumnMapping& columns)
        : points(*receiver.polygonPoints),
          columns(columns),
          step(receiver.scale->x),
          left(receiver.boundingBox->x * receiver.scale->x + receiver.offset->x),
          right((static_cast<double>(receiver.boundingBox->x) + receiver.boundingBox->width - 1) * receiver.scale->x +
                receiver.offset->x)
    {
    }

    /** A lone crossing touches the polygon in one point: at most the one cell that it hits is inside. */
    void SingleCell(double crossing, MaskRow& row) const
    {
        const double t = columns.At(crossing);
        const int cell = TruncateToInt(t);
        if (t - cell < kGeometricTolerance && cell >= 0 && cell < row.Width())
        {
            row.Set(cell, 1);
        }
        else if (cell >= -1 && cell < row.Width() - 1 && cell + 1 - t < kGeometricTolerance)
        {
            row.Set(cell + 1, 1);
        }
    }

    void Parity(const std::vector<double>& crossings, MaskRow& row) const { FillSpans(crossings, ParityValue(), row); }

    void Midpoints(const std::vector<double>& crossings, double y, MaskRow& row)
    {
        FillSpans(crossings, MidpointValue(points, y, left, step, intersections), row);
    }

private:
    /** Fills the spans up to each crossing, and the rest of the row. A crossing that falls on a column puts that cell
     *  inside, whatever its span's value. Crossings left of the box write nothing. */
    template <typename SpanValue>
    void FillSpans(const std::vector<double>& crossings, SpanValue value, MaskRow& row) const
    {
        int start = 0;
        for (const double crossing : crossings)
        {
            const double t = columns.At(crossing);
            const double reached = t + kGeometricTolerance;
            if (reached >= row.Width())
            {
                break;
            }
            const bool inBox = reached >= 0.0;
            if (inBox)
            {
                const int end = static_cast<int>(reached); // the last column not to the right of the crossing
                if (start <= end)
                {
                    row.Fill(start, end, value.Until(crossing));
                    if (IsFirstNotLeftOf(t, end))
                    {
                        row.Set(end, 1);
                    }
                }
                start = end + 1;
            }
            value.Pass(crossing, inBox);
        }
        if (start < row.Width())
        {
            row.Fill(start, row.Width() - 1, value.Until(right));
        }
    }

    /** True when @p column is the first that is not to the left of the position @p t. */
    static bool IsFirstNotLeftOf(double t, int column)
    {
        const double reached = t - kGeometricTolerance;
        return reached <= column && reached > column - 1.0;
    }

    const std::vector<Point2d<double>>& points;
    const ColumnMapping& columns;
    double step;
    double left;
    double right;
    Intersections intersections;
};

} // namespace

qStatus FillPolygonRows(void* context, void* /*sender*/, const qParallelArgs* args)
{
    if (IsIdle(args))
    {
        return STATUS_OK;
    }
    const auto& receiver = *static_cast<const PolygonScanReceiver*>(context);
    const Rect2d<int>& box = *receiver.boundingBox;
    const Cells<std::uint8_t> mask = CellsOf<std::uint8_t>(args->target);
    const RowShare share(args, mask.rows);
    const double firstY = (box.y + static_cast<double>(share.begin)) * receiver.scale->y + receiver.offset->y;
    const std::vector<double> positions = AccumulatedPositions(firstY, receiver.scale->y, share.end - share.begin);
    // Far enough to the left that every crossing lies to the right of the ray's origin.
    const double rayOrigin = receiver.boundingRegion->x - 10.0;

    const ColumnMapping columns(box, receiver.scale->x, receiver.offset->x);
    RowScan scan(receiver, columns);
    VertexSearch vertices(*receiver.polygonPoints);
    ActiveEdges edges(*receiver.polygonPoints, positions);
    std::vector<double> intersectXs;
    for (std::size_t i = 0; i < positions.size(); ++i)
    {
        MaskRow row(mask.Row(share.begin + i), box.width);
        edges.CollectCrossings(i, positions[i], rayOrigin, intersectXs);
        if (intersectXs.size() == 1)
        {
            scan.SingleCell(intersectXs.front(), row);
        }
        else if (intersectXs.size() > 1)
        {
            if (vertices.Hits(intersectXs, positions[i]))
            {
                scan.Midpoints(intersectXs, positions[i], row);
            }
            else
            {
                scan.Parity(intersectXs, row);
            }
        }
    }
    return STATUS_OK;
}

} // namespace Zvl
