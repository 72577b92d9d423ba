#include "Fitting/CircleAroundFew.h"
#include "Fitting/CircleCircumscribed.h"
#include "Fitting/OuterPoints.h"
#include "Utils/MeanOfPoints.h"

#include "ZoneSupport.h"

namespace
{

using namespace ZoneSupport;
using Zvl::DistPoint;
using Zvl::ShrinkingCircle;
using Zvl::Spreading;

std::optional<ShrinkingCircle> SpreadAroundFew(const Points& points)
{
    return Zvl::SpreadAroundFew(points, Zvl::MeanOfPoints(points), Zvl::OutermostPoints(points));
}

/** A disc with a random middle, in random order. */
Points Disc(std::size_t count, std::uint64_t seed)
{
    std::mt19937_64 random(seed);
    std::uniform_real_distribution<double> share(0.0, 1.0);
    Points points(count);
    for (qPoint64f& p : points)
    {
        const double radius = 10.0 * std::sqrt(share(random));
        const double angle = 6.283185307179586 * share(random);
        p = {25.0 + radius * std::cos(angle), -40.0 + radius * std::sin(angle)};
    }
    return points;
}

/** Point clouds of several forms, sizes, roundings and scales. */
Points CloudOf(std::size_t count, std::uint64_t seed)
{
    Points points = seed % 4 == 0   ? Scattered(count, 30.0, seed)
                    : seed % 4 == 1 ? LobedRing(count, 0.002 * static_cast<double>(1 + seed % 7), seed)
                                    : Disc(count, seed);
    std::mt19937_64 random(seed);
    std::shuffle(points.begin(), points.end(), random);
    const double grid = seed % 5 == 0 ? 16.0 : 0.0;
    const double scale = seed % 11 == 0 ? std::pow(10.0, static_cast<double>(seed % 17) - 8.0) : 1.0;
    for (qPoint64f& p : points)
    {
        p = grid > 0.0 ? qPoint64f{std::round(p.x * grid) / grid, std::round(p.y * grid) / grid} : p;
        p = {p.x * scale, p.y * scale};
    }
    return points;
}

ShrinkingCircle SpreadAroundAll(const Points& points, Spreading& ending)
{
    std::vector<DistPoint> items;
    for (const qPoint64f& p : points)
    {
        items.push_back({p, 0.0});
    }
    ShrinkingCircle circle = Zvl::CircleAround(Zvl::MeanOfPoints(points), items);
    ending = Zvl::ShrinkUntilSpread(circle, [](const auto&, const auto&) { return true; });
    return circle;
}

Points PointsOf(const std::vector<DistPoint>& items)
{
    Points points;
    for (const DistPoint& item : items)
    {
        points.push_back(item.point);
    }
    return points;
}

/** @return true when there is a result; it is compared with that of the steps over all points */
bool IsProvenAndTheSame(const std::optional<ShrinkingCircle>& few, const Points& points)
{
    if (!few.has_value())
    {
        return false;
    }
    Spreading ending{};
    const ShrinkingCircle all = SpreadAroundAll(points, ending);
    EXPECT_TRUE(ending == Spreading::Done || ending == Spreading::DoneOnDiameter);
    ExpectPoints({few->center}, {all.center});
    EXPECT_EQ(few->radius, all.radius);
    ExpectPoints(PointsOf(few->tempControlPoints), PointsOf(all.tempControlPoints));
    return true;
}

TEST(SpreadAroundFew, EndsAsTheStepsOverAllPointsDo)
{
    std::size_t proven = 0;
    std::size_t onDiameter = 0;
    for (std::uint64_t seed = 1; seed <= 300; ++seed)
    {
        SCOPED_TRACE(seed);
        const Points points = CloudOf(seed % 10 == 0 ? 8000 : 50 + 7 * seed, seed);
        const std::optional<ShrinkingCircle> few = SpreadAroundFew(points);
        if (IsProvenAndTheSame(few, points))
        {
            EXPECT_LT(few->pDistances.size(), std::max<std::size_t>(513, points.size()));
            ++proven;
            onDiameter += few->tempControlPoints.size() == 2 ? 1 : 0;
        }
    }
    EXPECT_GT(proven, 200U);
    EXPECT_GT(onDiameter, 20U);
}

TEST(SpreadAroundFew, ManyPointsOnOneCircleMatterAllOrAreRefused)
{
    for (const std::size_t count : {128U, 1000U, 5000U})
    {
        const Points points = LobedRing(count, 1e-12, 1);
        const Points circle = VoronoiSupport::Ring(count, {3.0, 4.0}, 5.0);
        for (const Points& some : {points, circle})
        {
            const auto few = SpreadAroundFew(some);
            if (few.has_value())
            {
                Spreading ending{};
                EXPECT_EQ(few->radius, SpreadAroundAll(some, ending).radius);
            }
        }
    }
}

TEST(SpreadAroundFew, PointsThatAPeerOfTheirGroupHidesAreNotForgotten)
{
    // A group shows only its farthest point. Some dozen points are in one group, whatever the number of lanes up to 8 is, and
    // may lie far outside of the circles around the points that are shown.
    std::size_t proven = 0;
    for (std::uint64_t seed = 1; seed <= 400; ++seed)
    {
        SCOPED_TRACE(seed);
        Points points = Disc(4096, seed);
        std::mt19937_64 random(seed);
        std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
        std::uniform_real_distribution<double> radius(9.0, 10.0 + 0.1 * static_cast<double>(seed % 40));
        for (std::size_t hidden = 0; hidden < 12; ++hidden)
        {
            const double direction = angle(random);
            const double distance = radius(random);
            points[8 * hidden] = {25.0 + distance * std::cos(direction), -40.0 + distance * std::sin(direction)};
        }
        proven += IsProvenAndTheSame(SpreadAroundFew(points), points) ? 1 : 0;
    }
    EXPECT_GT(proven, 100U);
}

/** The lists of outer points that a guess may begin with, good and bad. */
std::vector<std::vector<DistPoint>> SomeOuterPoints(const Points& points, std::uint64_t seed)
{
    const qPoint64f mean = Zvl::MeanOfPoints(points);
    std::vector<DistPoint> items;
    for (const qPoint64f& p : points)
    {
        items.push_back({p, Zvl::Distance(p, mean)});
    }
    std::vector<std::vector<DistPoint>> all = {{items[0], items[1]}, {4, items[seed % items.size()]}};
    std::mt19937_64 random(seed);
    std::sort(items.begin(), items.end(), [](const DistPoint& a, const DistPoint& b) { return a.value < b.value; });
    all.emplace_back(items.begin(), items.begin() + 20); // the innermost
    all.emplace_back(items.end() - 5, items.end());
    std::sort(items.begin(), items.end(), [](const DistPoint& a, const DistPoint& b) { return a.point.x < b.point.x; });
    all.emplace_back(items.end() - 30, items.end()); // one side
    std::shuffle(items.begin(), items.end(), random);
    all.emplace_back(items.begin(), items.begin() + 20);
    return all;
}

TEST(SpreadAroundFew, WhateverItBeginsWithEndsAsTheStepsOverAllPointsDo)
{
    std::size_t proven = 0;
    for (std::uint64_t seed = 1; seed <= 100; ++seed)
    {
        SCOPED_TRACE(seed);
        const Points points = CloudOf(600 + 20 * seed, seed);
        for (const std::vector<DistPoint>& outer : SomeOuterPoints(points, seed))
        {
            const auto few = Zvl::SpreadAroundFew(points, Zvl::MeanOfPoints(points), outer);
            proven += IsProvenAndTheSame(few, points) ? 1 : 0;
        }
    }
    EXPECT_GT(proven, 300U);
}

TEST(SpreadAroundFew, RoughRingsWithTheirMeanBesideTheMiddleAreProven)
{
    std::size_t proven = 0;
    for (std::uint64_t seed = 1; seed <= 50; ++seed)
    {
        std::mt19937_64 random(seed);
        std::uniform_real_distribution<double> angle(0.0, 6.283185307179586);
        std::normal_distribution<double> radius(10.0, 0.003);
        Points points(5000);
        for (qPoint64f& p : points)
        {
            const double direction = angle(random);
            const double distance = radius(random);
            p = {25.0 + distance * std::cos(direction), -40.0 + distance * std::sin(direction)};
        }
        proven += SpreadAroundFew(points).has_value() ? 1 : 0;
    }
    EXPECT_GE(proven, 49U);
}

TEST(SpreadAroundFew, DegeneratePointsAreNothingToProve)
{
    for (const Points& points : DegeneratePoints())
    {
        const auto few = SpreadAroundFew(points);
        Spreading ending{};
        const ShrinkingCircle all = SpreadAroundAll(points, ending);
        if (few.has_value())
        {
            ASSERT_NE(ending, Spreading::Stuck);
            ExpectPoints(PointsOf(few->tempControlPoints), PointsOf(all.tempControlPoints));
        }
    }
}

/** Clouds that deceive the pass over some of the points: where these lie says little of where the others are. */
std::vector<Points> DeceivingClouds(std::uint64_t seed)
{
    Points outliers = Disc(3000, seed);
    std::mt19937_64 random(seed);
    for (std::size_t i = 0; i < outliers.size() / 8; ++i)
    {
        outliers[random() % outliers.size()] = {300.0 + 1e-3 * static_cast<double>(i), 200.0};
    }
    Points nearlyOne(3000, {25.0, -40.0});
    for (const qPoint64f& p : Disc(12, seed))
    {
        nearlyOne[random() % nearlyOne.size()] = p;
    }
    Points lateRing(4000, {25.0, -40.0});
    const Points ring = LobedRing(40, 0.05, seed);
    std::copy(ring.begin(), ring.end(), lateRing.end() - 40);
    return {outliers, nearlyOne, lateRing};
}

TEST(SpreadAroundFew, DeceivingCloudsEndAsTheStepsOverAllPointsDo)
{
    std::size_t proven = 0;
    for (std::uint64_t seed = 1; seed <= 30; ++seed)
    {
        SCOPED_TRACE(seed);
        for (const Points& points : DeceivingClouds(seed))
        {
            proven += IsProvenAndTheSame(SpreadAroundFew(points), points) ? 1 : 0;
        }
    }
    EXPECT_EQ(proven, 90U);
}

/** The circle with all its outputs, also the distance of the nearest point, from the steps over all points. */
TEST(CircumscribedCircle, ManyPointsGiveWhatTheStepsOverAllOfThemGive)
{
    std::size_t compared = 0;
    for (std::uint64_t seed = 1; seed <= 200; ++seed)
    {
        SCOPED_TRACE(seed);
        const Points points = CloudOf(128 + 11 * seed, seed);
        Spreading ending{};
        const ShrinkingCircle all = SpreadAroundAll(points, ending);
        if (ending == Spreading::Stuck)
        {
            continue;
        }
        Points onCircle = PointsOf(all.tempControlPoints);
        onCircle.resize(std::min<std::size_t>(onCircle.size(), 3));
        const auto nearest = std::min_element(all.pDistances.begin(), all.pDistances.end(),
                                              [](const DistPoint& a, const DistPoint& b) { return a.value < b.value; });
        const Circle circle = FitTo(Zvl::FitCircle_MCC, points);
        ExpectPoints(circle.controlPoints, onCircle);
        ExpectPoints(circle.maxDistPoints, onCircle);
        ExpectPoints(circle.minDistPoints, {nearest->point});
        EXPECT_EQ(circle.minDistance, nearest->value);
        ++compared;
    }
    EXPECT_GT(compared, 150U);
}

} // namespace
