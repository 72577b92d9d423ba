#include "profile_gauge/Gauge.h"

#include "support/HeightMap.h"

#include <algorithm>
#include <cmath>

namespace ProfileGauge
{
namespace
{

constexpr int kUniform = 1;
constexpr std::size_t kFewestPoints = 3;

/** Makes regions in the frame of a scan. */
class RegionMaker
{
public:
    explicit RegionMaker(const Zvl::Profile& frame)
        : count(qArray1_Count(frame.layers[0])), scale(frame.scale), offset(frame.offset)
    {
    }

    std::shared_ptr<Zvl::RoiProfile> Rectangle(double left, double right, double bottom, double top) const
    {
        return std::make_shared<Zvl::RectangleRoiProfile>(
            Zvl::Region2d<double>{left, bottom, right - left, top - bottom, 0.0}, count, scale, offset, kUniform,
            nullptr);
    }

private:
    std::size_t count;
    qPoint64f scale;
    qPoint64f offset;
};

/** The regions around a groove that lies in the origin. They keep away from its corners, which are never sharp, and leave
 *  out what is too high for the part: stray light. */
Regions RegionsOf(const Groove& groove, const RegionMaker& maker)
{
    const double margin = 0.1 * groove.width;
    const double half = groove.width / 2.0;
    const double outer = half + groove.draft / 2.0 + margin;
    const double inner = std::max(half - groove.draft / 2.0 - margin, margin);
    const double above = 0.4 * groove.depth;
    const double below = -1.4 * groove.depth;

    const auto lands = std::make_shared<Zvl::ComposedRoiProfile>(kUniform, nullptr);
    lands->Add(maker.Rectangle(-outer - groove.land, -outer, -above, above));
    lands->Add(maker.Rectangle(outer, outer + groove.land, -above, above));
    return {lands, maker.Rectangle(-outer, -inner, below, above), maker.Rectangle(inner, outer, below, above),
            maker.Rectangle(-inner, inner, below, -0.6 * groove.depth)};
}

/** Where a wall passes down through the level at @p distance from the land: between the two items that part the most
 *  items above the level from the most items below, so that stray ones do not matter. Nothing when it never does. */
std::optional<qPoint64f> Edge(const std::vector<qPoint64f>& wall, const Line& land, double distance)
{
    long balance = 0;
    long best = 0;
    std::size_t below = 0;
    for (std::size_t item = 0; item < wall.size(); ++item)
    {
        balance += land.Distance(wall[item]) > distance ? 1 : -1;
        if (balance > best)
        {
            best = balance;
            below = item + 1;
        }
    }
    if (below == 0 || below == wall.size())
    {
        return std::nullopt;
    }
    const qPoint64f& from = wall[below - 1];
    const qPoint64f& to = wall[below];
    const double part = (land.Distance(from) - distance) / (land.Distance(from) - land.Distance(to));
    return qPoint64f{from.x + part * (to.x - from.x), from.y + part * (to.y - from.y)};
}

/** The line through the items of the lands, or nothing when one side of @p middle shows none. */
std::optional<Line> LandLine(const Zvl::Profile& scan, Zvl::RoiProfile& lands, double middle)
{
    const std::vector<qPoint64f> points = PointsIn(scan, lands);
    const bool areBothSeen = !points.empty() && points.front().x < middle && points.back().x > middle;
    return areBothSeen ? LineThrough(points) : std::nullopt;
}

std::vector<qPoint64f> Reversed(std::vector<qPoint64f> points)
{
    std::reverse(points.begin(), points.end());
    return points;
}

const short* Heights(const Zvl::Profile& scan)
{
    return static_cast<const short*>(qArray1_Data(scan.layers[0]));
}

qPoint64f PointOf(const Zvl::Profile& scan, std::size_t item)
{
    return {scan.offset.x + static_cast<double>(item) * scan.scale.x,
            scan.offset.y + Heights(scan)[item] * scan.scale.y};
}

} // namespace

Regions Regions::ApplyAnchor(const Zvl::Anchor& anchor) const
{
    return {lands->ApplyAnchor(anchor), leftWall->ApplyAnchor(anchor), rightWall->ApplyAnchor(anchor),
            floor->ApplyAnchor(anchor)};
}

Gauge::Gauge(const Groove& groove, const Zvl::Anchor& expectedPlace, const Zvl::Profile& frame)
    : expected(expectedPlace)
{
    const RegionMaker maker(frame);
    const double reach = (groove.width + groove.draft) / 2.0 + groove.play;
    search = maker.Rectangle(-reach, reach, -1.5 * groove.depth, -0.5 * groove.depth)->ApplyAnchor(expected);
    drawn = RegionsOf(groove, maker);
}

/** Along x the groove lies where the scan is deep; height and tilt are those of the land beside it. */
std::optional<Zvl::Anchor> Gauge::Locate(const Zvl::Profile& scan) const
{
    const std::vector<qPoint64f> deep = PointsIn(scan, *search);
    if (deep.size() < kFewestPoints)
    {
        return std::nullopt;
    }
    Zvl::Anchor place = expected;
    place.x = Mean(deep).x;
    const std::optional<Line> land = LandLine(scan, *drawn.lands->ApplyAnchor(place), place.x);
    if (!land)
    {
        return std::nullopt;
    }
    place.y = land->At(place.x).y;
    place.angle = land->Degrees();
    return place;
}

std::optional<Reading> Gauge::Measure(const Zvl::Profile& scan) const
{
    const std::optional<Zvl::Anchor> place = Locate(scan);
    if (!place)
    {
        return std::nullopt;
    }
    const Regions regions = drawn.ApplyAnchor(*place);
    const std::optional<Line> land = LandLine(scan, *regions.lands, place->x);
    const std::vector<qPoint64f> floor = PointsIn(scan, *regions.floor);
    if (!land || floor.size() < kFewestPoints)
    {
        return std::nullopt;
    }
    const double depth = -land->Distance(Mean(floor)); // the mean distance is that of the mean
    const auto left = Edge(PointsIn(scan, *regions.leftWall), *land, -depth / 2.0);
    const auto right = Edge(Reversed(PointsIn(scan, *regions.rightWall)), *land, -depth / 2.0);
    if (!left || !right)
    {
        return std::nullopt;
    }
    return Reading{*land, *left, *right, std::hypot(right->x - left->x, right->y - left->y), depth, regions};
}

std::vector<qPoint64f> PointsOf(const Zvl::Profile& scan)
{
    std::vector<qPoint64f> points;
    for (std::size_t item = 0; item < qArray1_Count(scan.layers[0]); ++item)
    {
        if (!Examples::IsMissing(Heights(scan)[item]))
        {
            points.push_back(PointOf(scan, item));
        }
    }
    return points;
}

std::vector<qPoint64f> PointsIn(const Zvl::Profile& scan, Zvl::RoiProfile& region)
{
    region.ApplyRoi(scan);
    const Zvl::RunLength<int>& segment = region.GetBoundingSegment();
    const auto* mask = static_cast<const unsigned char*>(qArray1_Data(region.GetMask()));
    std::vector<qPoint64f> points;
    for (int index = 0; index < segment.length; ++index)
    {
        if (mask[index] != 0)
        {
            points.push_back(PointOf(scan, static_cast<std::size_t>(segment.start) + static_cast<std::size_t>(index)));
        }
    }
    return points;
}

} // namespace ProfileGauge
