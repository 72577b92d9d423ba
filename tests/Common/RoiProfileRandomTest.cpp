/** @file Random regions of every shape over random profiles, beside the plainest possible statement of what belongs to
 *  them. Polygons and upright rectangles lie on a grid of quarters, where all positions are exact, so that points on
 *  edges and rays through vertices abound; the other shapes lie anywhere. */

#include "Common/RoiProfileSupport.h"

#include <cmath>
#include <functional>

namespace
{

using namespace Zvl;
using namespace TestSupport;

constexpr int kRounds = 3000;
constexpr double kPi = 3.141592653589793;

/** The frame of one random profile. */
struct Frame
{
    std::size_t width;
    qPoint64f scale;
    qPoint64f offset;
};

/** A region, its extent along x, and whether a point belongs to it. */
struct Shape
{
    Member roi;
    double low;
    double high;
    std::function<bool(double, double)> holds;
};

class RoiProfileRandom : public testing::TestWithParam<int>
{
protected:
    int Integer(int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); }
    double Real(double low, double high) { return std::uniform_real_distribution<double>(low, high)(random); }
    double Quarter(int low, int high) { return Integer(4 * low, 4 * high) / 4.0; }

    /** Items on the grid of quarters. */
    Frame GridFrame()
    {
        const double steps[] = {0.25, 0.5, 1.0};
        return {static_cast<std::size_t>(Integer(1, 64)),
                {steps[Integer(0, 2)], steps[Integer(0, 2)]},
                {Quarter(-12, 4), Quarter(-2, 2)}};
    }

    Frame AnyFrame()
    {
        return {static_cast<std::size_t>(Integer(1, 64)),
                {Real(0.1, 1.0), Real(0.1, 1.0)},
                {Real(-12.0, 4.0), Real(-2.0, 2.0)}};
    }

    /** A count of a point within about 8 world units of the origin, or, one time in ten, a missing one. */
    std::int16_t Count(double scale, double offset)
    {
        if (Integer(0, 9) == 0)
        {
            return kMissing;
        }
        return static_cast<std::int16_t>(std::lround((Real(-8.0, 8.0) - offset) / scale));
    }

    std::vector<std::int16_t> Heights(const Frame& frame)
    {
        std::vector<std::int16_t> heights(frame.width + static_cast<std::size_t>(Integer(0, 3)));
        for (std::int16_t& height : heights)
        {
            height = Count(frame.scale.y, frame.offset.y);
        }
        return heights;
    }

    CountPairs Pairs(const Frame& frame)
    {
        CountPairs pairs(frame.width + static_cast<std::size_t>(Integer(0, 3)));
        for (auto& [x, z] : pairs)
        {
            x = Count(frame.scale.x, frame.offset.x);
            z = Count(frame.scale.y, frame.offset.y);
        }
        return pairs;
    }

    /** Expects segment and mask of @p shape over uniform profiles: one and then another, as a mask is used again. */
    void CompareUniform(const Shape& shape, const Frame& frame)
    {
        std::vector<std::size_t> items;
        for (std::size_t i = 0; i < frame.width; ++i)
        {
            const double x = static_cast<double>(i) * frame.scale.x + frame.offset.x;
            if (x >= shape.low - 0.0005 && x <= shape.high + 0.0005)
            {
                items.push_back(i);
            }
        }
        const RunLength<int> segment = shape.roi->GetBoundingSegment();
        ASSERT_EQ(static_cast<std::size_t>(std::max(segment.length, 0)), items.size());
        ASSERT_TRUE(items.empty() || segment.start == static_cast<int>(items[0]));
        EXPECT_EQ(Picture(*shape.roi), std::string(items.size(), '#'));
        for (int profiles = 0; profiles < 2 && !items.empty(); ++profiles)
        {
            const std::vector<std::int16_t> heights = Heights(frame);
            std::string expected;
            double x = static_cast<double>(items[0]) * frame.scale.x + frame.offset.x;
            for (const std::size_t item : items)
            {
                const double z = heights[item] * frame.scale.y + frame.offset.y;
                expected += heights[item] != kMissing && shape.holds(x, z) ? '#' : '.';
                x += frame.scale.x;
            }
            shape.roi->ApplyRoi(HeightProfile(heights, frame.scale, frame.offset));
            ASSERT_EQ(Picture(*shape.roi), expected);
            CountCells(expected);
        }
    }

    void ComparePairs(const Shape& shape, const Frame& frame)
    {
        ExpectSegment(*shape.roi, 0, static_cast<int>(frame.width));
        const CountPairs pairs = Pairs(frame);
        std::string expected;
        for (std::size_t i = 0; i < frame.width; ++i)
        {
            const auto& [x, z] = pairs[i];
            const bool present = x != kMissing && z != kMissing;
            expected += present && shape.holds(x * frame.scale.x + frame.offset.x, z * frame.scale.y + frame.offset.y)
                            ? '#'
                            : '.';
        }
        shape.roi->ApplyRoi(PairProfile(pairs, frame.scale, frame.offset));
        ASSERT_EQ(Picture(*shape.roi), expected);
        CountCells(expected);
    }

    void Compare(const Shape& shape, const Frame& frame)
    {
        if (GetParam() == kUniform)
        {
            CompareUniform(shape, frame);
        }
        else
        {
            ComparePairs(shape, frame);
        }
    }

    /** Compares many shapes as @p make makes them, and expects that some points were inside and some were outside. */
    template <typename Make>
    void CompareMany(Make make)
    {
        for (int round = 0; round < kRounds && !HasFatalFailure(); ++round)
        {
            SCOPED_TRACE(round);
            make();
        }
        EXPECT_GT(inside, static_cast<std::size_t>(kRounds));
        EXPECT_GT(outside, static_cast<std::size_t>(kRounds));
    }

    void CountCells(const std::string& cells)
    {
        const auto selected = static_cast<std::size_t>(std::count(cells.begin(), cells.end(), '#'));
        inside += selected;
        outside += cells.size() - selected;
    }

    std::mt19937 random{20240611};
    std::size_t inside = 0;
    std::size_t outside = 0;
};

// ---------------------------------------------------------------------------------------------------------
// Polygons in whole numbers of quarters

struct GridPoint
{
    std::int64_t x;
    std::int64_t y;
};

GridPoint ToGrid(double x, double y)
{
    EXPECT_TRUE(x * 4.0 == std::floor(x * 4.0) && y * 4.0 == std::floor(y * 4.0));
    return {std::llround(x * 4.0), std::llround(y * 4.0)};
}

/** A crossing with a horizontal line, as a fraction with a denominator above 0. */
struct Fraction
{
    std::int64_t numerator;
    std::int64_t denominator;

    bool operator==(const Fraction& other) const
    {
        return numerator * other.denominator == other.numerator * denominator;
    }
};

/** True when the line to the right of (@p x, @p y) meets the edges that are not level at an odd number of places. */
bool CrossesAtOddPlaces(const std::vector<Point2d<double>>& vertices, double x, double y)
{
    const GridPoint point = ToGrid(x, y);
    std::vector<Fraction> places;
    for (std::size_t i = 1; i < vertices.size(); ++i)
    {
        GridPoint lower = ToGrid(vertices[i - 1].x, vertices[i - 1].y);
        GridPoint upper = ToGrid(vertices[i].x, vertices[i].y);
        if (lower.y > upper.y)
        {
            std::swap(lower, upper);
        }
        if (lower.y == upper.y || point.y < lower.y || point.y > upper.y)
        {
            continue;
        }
        const Fraction place = {lower.x * (upper.y - lower.y) + (point.y - lower.y) * (upper.x - lower.x),
                                upper.y - lower.y};
        const bool isRight = place.numerator > point.x * place.denominator;
        if (isRight && std::find(places.begin(), places.end(), place) == places.end())
        {
            places.push_back(place);
        }
    }
    return places.size() % 2 == 1;
}

TEST_P(RoiProfileRandom, PolygonsFollowTheCountOfCrossings)
{
    CompareMany(
        [&]
        {
            std::vector<Point2d<double>> vertices(static_cast<std::size_t>(Integer(3, 9)));
            for (Point2d<double>& vertex : vertices)
            {
                vertex = {Quarter(-8, 8), Quarter(-8, 8)};
            }
            vertices.push_back(vertices.front());
            double low = vertices[0].x;
            double high = vertices[0].x;
            for (const Point2d<double>& vertex : vertices)
            {
                low = std::min(low, vertex.x);
                high = std::max(high, vertex.x);
            }
            const Frame frame = GridFrame();
            const auto roi = std::make_shared<PolygonRoiProfile>(vertices, frame.width, frame.scale, frame.offset,
                                                                 GetParam(), nullptr);
            const auto holds = [&](double x, double z) { return CrossesAtOddPlaces(vertices, x, z); };
            Compare({roi, low, high, holds}, frame);
        });
}

TEST_P(RoiProfileRandom, UprightRectanglesHoldTheirEdges)
{
    CompareMany(
        [&]
        {
            const Region2d<double> box = {Quarter(-8, 6), Quarter(-8, 6), Quarter(0, 12), Quarter(0, 12), 0.0};
            const Frame frame = GridFrame();
            const auto roi =
                std::make_shared<RectangleRoiProfile>(box, frame.width, frame.scale, frame.offset, GetParam(), nullptr);
            const auto holds = [&](double x, double z)
            { return box.x <= x && x <= box.x + box.width && box.y <= z && z <= box.y + box.height; };
            Compare({roi, box.x, box.x + box.width, holds}, frame);
        });
}

// ---------------------------------------------------------------------------------------------------------
// Shapes anywhere

/** A point in the axes of a shape at (@p centreX, @p centreZ) that is turned by @p degrees. */
std::pair<double, double> InAxes(double x, double z, double centreX, double centreZ, double degrees)
{
    const double distance = std::hypot(x - centreX, z - centreZ);
    const double direction = std::atan2(z - centreZ, x - centreX) - degrees / 180.0 * kPi;
    return {distance * std::cos(direction), distance * std::sin(direction)};
}

/** True when the direction of (@p x, @p z) lies in the sector: how far it is on from the sector's first end. */
bool InSector(double x, double z, double start, double span)
{
    const double first = span < 0.0 ? start + span : start;
    const double onward = std::fmod(std::atan2(z, x) / kPi * 180.0 - first, 360.0);
    return std::fabs(span) >= 360.0 || (onward < 0.0 ? onward + 360.0 : onward) <= std::fabs(span);
}

TEST_P(RoiProfileRandom, TurnedRectanglesHoldWhatIsNearTheirAxes)
{
    CompareMany(
        [&]
        {
            const Region2d<double> box = {Real(-8.0, 0.0), Real(-8.0, 0.0), Real(1.0, 12.0), Real(1.0, 12.0),
                                          Real(-400.0, 400.0)};
            const Frame frame = AnyFrame();
            const auto roi =
                std::make_shared<RectangleRoiProfile>(box, frame.width, frame.scale, frame.offset, GetParam(), nullptr);
            const double centreX = box.x + box.width / 2.0;
            const double centreZ = box.y + box.height / 2.0;
            const double radians = box.angle / 180.0 * kPi;
            const double half =
                (box.width * std::fabs(std::cos(radians)) + box.height * std::fabs(std::sin(radians))) / 2.0;
            const auto holds = [&](double x, double z)
            {
                const auto [along, across] = InAxes(x, z, centreX, centreZ, box.angle);
                return std::fabs(along) < box.width / 2.0 && std::fabs(across) < box.height / 2.0;
            };
            Compare({roi, centreX - half, centreX + half, holds}, frame);
        });
}

TEST_P(RoiProfileRandom, RingsHoldWhatIsAtTheRightDistanceAndDirection)
{
    CompareMany(
        [&]
        {
            const double outer = Real(1.0, 8.0);
            const AnnularSector2d<double> ring = {
                Real(0.0, outer), outer, Real(-720.0, 720.0), Real(-450.0, 450.0), {Real(-4.0, 4.0), Real(-4.0, 4.0)}};
            const Frame frame = AnyFrame();
            const auto roi =
                std::make_shared<CircleRoiProfile>(ring, frame.width, frame.scale, frame.offset, GetParam(), nullptr);
            const auto holds = [&](double x, double z)
            {
                const double distance = std::hypot(x - ring.center.x, z - ring.center.y);
                return distance >= ring.innerRadius && distance <= ring.outerRadius &&
                       InSector(x - ring.center.x, z - ring.center.y, ring.startAngle, ring.angleSpan);
            };
            Compare({roi, ring.center.x - outer, ring.center.x + outer, holds}, frame);
        });
}

TEST_P(RoiProfileRandom, EllipsesHoldWhatIsBetweenThemInTheirAxes)
{
    CompareMany(
        [&]
        {
            const double height = Real(1.0, 16.0);
            const double width = Real(1.0, 16.0);
            const EllipticalSector2d<double> ellipse = {Real(0.0, height),
                                                        Real(0.0, width),
                                                        height,
                                                        width,
                                                        Real(-720.0, 720.0),
                                                        Real(-450.0, 450.0),
                                                        Real(-400.0, 400.0),
                                                        {Real(-4.0, 4.0), Real(-4.0, 4.0)}};
            const Frame frame = AnyFrame();
            const auto roi = std::make_shared<EllipseRoiProfile>(ellipse, frame.width, frame.scale, frame.offset,
                                                                 GetParam(), nullptr);
            const auto holds = [&](double x, double z)
            {
                const auto [along, across] = InAxes(x, z, ellipse.center.x, ellipse.center.y, ellipse.rotation);
                return std::hypot(along / ellipse.outerWidth, across / ellipse.outerHeight) <= 0.5 &&
                       std::hypot(along / ellipse.innerWidth, across / ellipse.innerHeight) >= 0.5 &&
                       InSector(along, across, ellipse.startAngle, ellipse.angleSpan);
            };
            // The widest point of the ellipse, searched along its outline in steps fine enough for the segment.
            double half = 0.0;
            const double radians = ellipse.rotation / 180.0 * kPi;
            for (int step = 0; step < 2000; ++step)
            {
                const double along = width / 2.0 * std::cos(step * kPi / 1000.0);
                const double across = height / 2.0 * std::sin(step * kPi / 1000.0);
                half = std::max(half, along * std::cos(radians) - across * std::sin(radians));
            }
            Compare({roi, ellipse.center.x - half, ellipse.center.x + half, holds}, frame);
        });
}

INSTANTIATE_TEST_SUITE_P(Forms, RoiProfileRandom, testing::Values(kUniform, kPairs),
                         [](const testing::TestParamInfo<int>& form)
                         { return form.param == kUniform ? "Uniform" : "Pairs"; });

// ---------------------------------------------------------------------------------------------------------
// Unions

TEST(ComposedRoiProfileRandom, HoldsWhatOneOfItsMembersHolds)
{
    std::mt19937 random(7);
    const auto integer = [&](int low, int high) { return std::uniform_int_distribution<int>(low, high)(random); };
    for (int round = 0; round < kRounds; ++round)
    {
        ComposedRoiProfile composed(kUniform, nullptr);
        std::vector<Member> members(static_cast<std::size_t>(integer(0, 5)));
        std::vector<std::int16_t> heights(10);
        std::generate(heights.begin(), heights.end(), [&] { return static_cast<std::int16_t>(integer(-1, 3)); });
        std::string line(10, '.');
        int first = 10;
        int end = 0;
        for (Member& member : members)
        {
            const int start = integer(-4, 12);
            const int last = start + integer(0, 5);
            member = std::make_shared<RectangleRoiProfile>(Stretch(start, last));
            composed.Add(member);
            for (int item = std::max(start, 0); item <= std::min(last, 9); ++item)
            {
                const auto place = static_cast<std::size_t>(item);
                first = std::min(first, item);
                end = std::max(end, item + 1);
                line[place] = heights[place] >= 0 && heights[place] <= 2 ? '#' : '.';
            }
        }
        composed.ApplyRoi(HeightProfile(heights));
        const std::string expected =
            first < end ? line.substr(static_cast<std::size_t>(first), static_cast<std::size_t>(end - first)) : "";
        ASSERT_EQ(Picture(composed), expected);
        ExpectSegment(composed, first < end ? first : 0, static_cast<int>(expected.size()));
    }
}

} // namespace
