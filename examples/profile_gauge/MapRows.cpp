#include "profile_gauge/MapRows.h"

#include "profile_gauge/Line.h"
#include "support/HeightMap.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace ProfileGauge
{
namespace
{

constexpr std::size_t kMostScans = 60;

/** Mean over all rows, of the columns that have a height. */
std::vector<qPoint64f> MeanRow(const Zvl::Surface& map)
{
    std::vector<qPoint64f> points;
    for (std::size_t column = 0; column < Examples::Columns(map); ++column)
    {
        double sum = 0.0;
        std::size_t count = 0;
        for (std::size_t row = 0; row < Examples::Rows(map); ++row)
        {
            const short height = Examples::HeightRow(map, row)[column];
            sum += Examples::IsMissing(height) ? 0.0 : height;
            count += Examples::IsMissing(height) ? 0 : 1;
        }
        if (count > 0)
        {
            points.push_back({map.offset.x + static_cast<double>(column) * map.scale.x,
                              map.offset.z + sum / static_cast<double>(count) * map.scale.z});
        }
    }
    return points;
}

/** The mean of all rows over the line through it. */
class MeanGroove
{
public:
    explicit MeanGroove(const std::vector<qPoint64f>& meanRow) : points(meanRow)
    {
        const std::optional<Line> line = LineThrough(points);
        if (!line)
        {
            Refuse();
        }
        tilt = *line;
        for (const qPoint64f& point : points)
        {
            heights.push_back(tilt.Distance(point));
        }
        deepest = std::min_element(heights.begin(), heights.end()) - heights.begin();
        std::vector<double> sorted = heights;
        std::sort(sorted.begin(), sorted.end());
        land = sorted[sorted.size() * 3 / 4];
    }

    Groove Drawing() const
    {
        const double width = Wall(1, 0.5) - Wall(-1, 0.5);
        if (!(width > 0.0 && Depth() > 0.0))
        {
            Refuse();
        }
        const double draft = ((Wall(-1, 0.8) - Wall(-1, 0.2)) + (Wall(1, 0.2) - Wall(1, 0.8))) / 2.0 / 0.6;
        return {width, Depth(), draft, 0.5 * width, 0.25 * width};
    }

    Zvl::Anchor Place() const
    {
        const double middle = (Wall(-1, 0.5) + Wall(1, 0.5)) / 2.0;
        return {middle, tilt.At(middle).y + land, Zvl::GetNull<double>(), tilt.Degrees()};
    }

private:
    [[noreturn]] static void Refuse() { throw std::runtime_error("the mean of the map's rows shows no groove"); }

    double Depth() const { return land - heights[static_cast<std::size_t>(deepest)]; }

    /** The x where the wall on the left (@p step -1) or the right (1) rises above a share of the depth. */
    double Wall(std::ptrdiff_t step, double share) const
    {
        const auto end = static_cast<std::ptrdiff_t>(heights.size());
        for (std::ptrdiff_t at = deepest; at >= 0 && at < end; at += step)
        {
            if (heights[static_cast<std::size_t>(at)] > land - share * Depth())
            {
                return points[static_cast<std::size_t>(at)].x;
            }
        }
        Refuse();
    }

    std::vector<qPoint64f> points;
    std::vector<double> heights;
    Line tilt{};
    std::ptrdiff_t deepest;
    double land;
};

} // namespace

LineScan RowScan(const Zvl::Surface& map, std::size_t row)
{
    Zvl::Profile profile(&map.offset, &map.scale);
    profile.AddLayer(xxq16s_type, Examples::Columns(map), nullptr);
    std::copy_n(Examples::HeightRow(map, row), Examples::Columns(map),
                static_cast<short*>(qArray1_Data(profile.layers[0])));
    return {map.offset.y + static_cast<double>(row) * map.scale.y, profile};
}

Recording MapRows(const std::string& title, const Zvl::Surface& map)
{
    const MeanGroove mean(MeanRow(map));
    Recording recording{title, {}, mean.Drawing(), mean.Place(), std::nullopt};
    const std::size_t rows = Examples::Rows(map);
    const std::size_t scans = std::min(rows, kMostScans);
    for (std::size_t scan = 0; scan < scans; ++scan)
    {
        const std::size_t row = (2 * scan + 1) * rows / (2 * scans); // in the middle of each of as many strips
        recording.scans.push_back(RowScan(map, row));
    }
    return recording;
}

} // namespace ProfileGauge
