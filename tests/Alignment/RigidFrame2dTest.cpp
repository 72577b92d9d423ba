#include <ZdkVisionLib/Alignment/RefFrame.h>

#include "support/ExpectThrow.h"

#include <gtest/gtest.h>
#include <opencv2/core.hpp>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>
#include <utility>
#include <vector>

namespace Zvl
{

namespace
{

using Points = std::vector<qPoint64f>;

Points RandomPoints(std::mt19937_64& random, std::size_t count)
{
    std::uniform_real_distribution<double> coordinates(-50.0, 50.0);
    Points points(count);
    for (qPoint64f& point : points)
    {
        point = {coordinates(random), coordinates(random)};
    }
    return points;
}

Points Mapped(const RefFrame& frame, const Points& points)
{
    Points mapped;
    for (const qPoint64f& point : points)
    {
        mapped.push_back(frame.Apply(point));
    }
    return mapped;
}

qPoint64f Centroid(const Points& points)
{
    qPoint64f sum = {0, 0};
    for (const qPoint64f& point : points)
    {
        sum = {sum.x + point.x, sum.y + point.y};
    }
    const auto count = static_cast<double>(points.size());
    return {sum.x / count, sum.y / count};
}

double SquaredDistance(const Points& a, const Points& b)
{
    double sum = 0.0;
    for (std::size_t index = 0; index < a.size(); ++index)
    {
        sum += std::pow(a[index].x - b[index].x, 2) + std::pow(a[index].y - b[index].y, 2);
    }
    return sum;
}

/** The least distance over rotations in steps of a tenth of a degree, with the best shift for each. */
double LeastSquaredDistance(const Points& a, const Points& b)
{
    const qPoint64f ca = Centroid(a);
    const qPoint64f cb = Centroid(b);
    double least = std::numeric_limits<double>::infinity();
    for (int step = 0; step < 3600; ++step)
    {
        RefFrame frame;
        frame.Translate(-cb.x, -cb.y, 0).Rotate(step * 0.1, {0, 0, 1}).Translate(ca.x, ca.y, 0);
        least = std::min(least, SquaredDistance(a, Mapped(frame, b)));
    }
    return least;
}

double Determinant(const RefFrame& frame)
{
    return frame.GetIx() * frame.GetJy() - frame.GetIy() * frame.GetJx();
}

void ExpectProperRotationInThePlane(const RefFrame& frame)
{
    EXPECT_NEAR(Determinant(frame), 1.0, 1e-12);
    EXPECT_NEAR(frame.GetScale().x, 1.0, 1e-12);
    EXPECT_NEAR(frame.GetIx() * frame.GetJx() + frame.GetIy() * frame.GetJy(), 0.0, 1e-12);
    EXPECT_EQ(frame.GetIz(), 0.0);
    EXPECT_EQ(frame.GetJz(), 0.0);
    EXPECT_EQ(frame.GetKx(), 0.0);
    EXPECT_EQ(frame.GetKy(), 0.0);
    EXPECT_EQ(frame.GetKz(), 1.0);
    EXPECT_EQ(frame.GetTz(), 0.0);
}

} // namespace

TEST(RigidFrame2d, TooFewOrUnequalPointsThrowAndKeepTheFrame)
{
    const Points none;
    const Points one = {{1, 2}};
    const Points two = {{1, 2}, {3, 4}};
    const Points three = {{1, 2}, {3, 4}, {5, 7}};
    RefFrame frame(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
    for (const auto& sets : {std::pair(none, none), std::pair(one, one), std::pair(two, three), std::pair(three, two),
                             std::pair(two, none), std::pair(one, two)})
    {
        TestSupport::ExpectThrow(STATUS_BAD_DATA, "Zvl::RefFrame::SetFrame",
                                 [&] { frame.SetFrame(sets.first, sets.second); });
        EXPECT_EQ(frame.GetIx(), 1.0);
        EXPECT_EQ(frame.GetKy(), 8.0);
        EXPECT_EQ(frame.GetTz(), 12.0);
    }
}

TEST(RigidFrame2d, EqualSetsGiveTheIdentity)
{
    const Points points = {{1, 2}, {4, 2}, {3, 7}};
    RefFrame frame(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
    frame.SetFrame(points, points);
    ExpectProperRotationInThePlane(frame);
    EXPECT_NEAR(frame.GetIx(), 1.0, 1e-15);
    EXPECT_NEAR(frame.GetIy(), 0.0, 1e-15);
    EXPECT_NEAR(frame.GetTx(), 0.0, 1e-14);
    EXPECT_NEAR(frame.GetTy(), 0.0, 1e-14);
}

TEST(RigidFrame2d, CarriesTheSecondSetOntoTheFirst)
{
    // A quarter turn, then a shift by (10, 20).
    RefFrame frame;
    frame.SetFrame(Points{{10, 20}, {10, 21}}, Points{{0, 0}, {1, 0}});
    ExpectProperRotationInThePlane(frame);
    EXPECT_NEAR(frame.GetIx(), 0.0, 1e-14);
    EXPECT_NEAR(frame.GetIy(), 1.0, 1e-14);
    EXPECT_NEAR(frame.GetJx(), -1.0, 1e-14);
    EXPECT_NEAR(frame.GetTx(), 10.0, 1e-13);
    EXPECT_NEAR(frame.GetTy(), 20.0, 1e-13);
}

TEST(RigidFrame2d, RecoversKnownMovements)
{
    std::mt19937_64 random(11);
    std::uniform_real_distribution<double> values(-180.0, 180.0);
    for (int round = 0; round < 200; ++round)
    {
        const Points b = RandomPoints(random, 2 + static_cast<std::size_t>(round) % 9);
        RefFrame movement;
        movement.SetFrame({values(random), values(random), 0}, values(random));
        RefFrame found;
        found.SetFrame(Mapped(movement, b), b);
        for (const std::size_t column : {std::size_t(0), std::size_t(1), std::size_t(3)})
        {
            EXPECT_NEAR(found.GetColumn(column).x, movement.GetColumn(column).x, 1e-9);
            EXPECT_NEAR(found.GetColumn(column).y, movement.GetColumn(column).y, 1e-9);
        }
    }
}

TEST(RigidFrame2d, PartsFarFromTheOriginKeepTheirAngle)
{
    // The centroids cannot be exact here: products of deviations from one of them alone would be off by its size.
    std::mt19937_64 random(13);
    for (int round = 0; round < 50; ++round)
    {
        Points near = RandomPoints(random, 7);
        Points far = near;
        for (std::size_t index = 0; index < far.size(); ++index)
        {
            near[index] = {near[index].x + 1e9, near[index].y - 2e9};
            far[index] = {far[index].x - 3e9, far[index].y + 1e9};
        }
        RefFrame frame;
        frame.SetFrame(far, near);
        EXPECT_NEAR(frame.GetIx(), 1.0, 1e-7);
        EXPECT_NEAR(frame.GetIy(), 0.0, 1e-7);
    }
}

TEST(RigidFrame2d, MirroredSetsGiveTheBestProperRotation)
{
    std::mt19937_64 random(12);
    for (int round = 0; round < 10; ++round)
    {
        const Points b = RandomPoints(random, 3 + static_cast<std::size_t>(round));
        Points mirrored;
        for (const qPoint64f& point : b)
        {
            mirrored.push_back({-point.x + 3.0, point.y});
        }
        RefFrame frame;
        frame.SetFrame(mirrored, b);
        ExpectProperRotationInThePlane(frame);
        EXPECT_LE(SquaredDistance(mirrored, Mapped(frame, b)), LeastSquaredDistance(mirrored, b) + 1e-6);
    }
}

TEST(RigidFrame2d, NoisySetsGiveTheBestProperRotation)
{
    std::mt19937_64 random(13);
    for (int round = 0; round < 10; ++round)
    {
        const Points a = RandomPoints(random, 6);
        const Points b = RandomPoints(random, 6);
        RefFrame frame;
        frame.SetFrame(a, b);
        ExpectProperRotationInThePlane(frame);
        EXPECT_LE(SquaredDistance(a, Mapped(frame, b)), LeastSquaredDistance(a, b) + 1e-6);
    }
}

TEST(RigidFrame2d, CoincidentPointsGiveSomeProperRotation)
{
    const Points a = {{1, 2}, {1, 2}, {1, 2}};
    const Points b = {{5, 5}, {5, 5}, {5, 5}};
    RefFrame frame;
    frame.SetFrame(a, b);
    ExpectProperRotationInThePlane(frame);
    EXPECT_NEAR(frame.Apply(b[0]).x, 1.0, 1e-12);
    EXPECT_NEAR(frame.Apply(b[0]).y, 2.0, 1e-12);
}

TEST(RigidFrame2d, TheDeterminantIsNotRounded)
{
    std::mt19937_64 random(14);
    std::uniform_real_distribution<double> values(-1.0, 1.0);
    int roundingWouldShow = 0;
    for (int round = 0; round < 200; ++round)
    {
        // Points about the origin in pairs, so that both centroids are exactly 0 and the sums are known.
        const qPoint64f p = {values(random), values(random)};
        const qPoint64f q = {values(random), values(random)};
        const Points a = {p, {-p.x, -p.y}};
        const Points b = {q, {-q.x, -q.y}};
        const cv::Matx22d h(2 * (p.x * q.x), 2 * (p.x * q.y), 2 * (p.y * q.x), 2 * (p.y * q.y));
        cv::Mat w;
        cv::Mat u;
        cv::Mat vt;
        cv::SVD::compute(h, w, u, vt, cv::SVD::FULL_UV);
        const double determinant = cv::determinant(u * vt);
        const cv::Mat exact = u * cv::Mat(cv::Matx22d(1, 0, 0, determinant)) * vt;
        const cv::Mat rounded = u * cv::Mat(cv::Matx22d(1, 0, 0, std::round(determinant))) * vt;

        RefFrame frame;
        frame.SetFrame(a, b);
        EXPECT_EQ(frame.GetIx(), exact.at<double>(0, 0));
        EXPECT_EQ(frame.GetJx(), exact.at<double>(0, 1));
        EXPECT_EQ(frame.GetIy(), exact.at<double>(1, 0));
        EXPECT_EQ(frame.GetJy(), exact.at<double>(1, 1));
        roundingWouldShow += cv::countNonZero(exact != rounded) != 0 ? 1 : 0;
    }
    EXPECT_GT(roundingWouldShow, 0);
}

TEST(RigidFrame2d, ValuesThatAreNotFiniteEndInSomeFrame)
{
    for (const double bad : {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(),
                             GetNull<double>(), 1e160, 1e-170})
    {
        RefFrame frame;
        frame.SetFrame(Points{{bad, 0}, {1, 1}, {2, bad}}, Points{{0, 0}, {bad, 1}, {2, 5}});
        EXPECT_EQ(frame.GetKz(), 1.0);
        EXPECT_EQ(frame.GetTz(), 0.0);
    }
}

} // namespace Zvl
