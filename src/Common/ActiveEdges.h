#pragma once

/** @file
 *  The edges of a polygon, row by row. */

#include "Common/PolygonTests.h"

#include <vector>

namespace Zvl
{

/** The edges that can cross the present row, kept up from row to row. An edge is looked at only between the first and
 *  the last row that it reaches, so that a row costs its crossings and not all edges. The edges stay in the order of
 *  their last crossings, in which those of the next row are nearly sorted. */
class ActiveEdges
{
public:
    /** @param rowPositions height of each row, in the order in which the rows will be asked for */
    ActiveEdges(const std::vector<Point2d<double>>& points, const std::vector<double>& rowPositions);

    /** Fills @p out with the distinct crossings of row @p row, which lies at @p y, right of @p left; ascending. */
    void CollectCrossings(std::size_t row, double y, double left, std::vector<double>& out);

private:
    struct Edge
    {
        HorizontalCrossing crossing;
        std::size_t firstRow;
        std::size_t endRow;
    };

    struct Crossing
    {
        std::size_t edge;
        double x;
    };

    static void RestrictRows(Edge& edge, const std::vector<double>& rowPositions);
    void Activate(std::size_t row);
    void Cross(std::size_t row, double y, double left);
    void CollectInPolygonOrder(double left, std::vector<double>& out);

    std::vector<Edge> edges; ///< in the polygon's order
    std::vector<std::size_t> byFirstRow;
    std::vector<Crossing> active;
    std::vector<Crossing> ordered; ///< the same in the polygon's order, where a row wants it
    std::size_t next = 0;          ///< of `byFirstRow`, the first that is not active yet
};

} // namespace Zvl
