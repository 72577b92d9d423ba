#include <ZdkVisionLib/Alignment/RefFrame.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <limits>
#include <random>

namespace Zvl
{

namespace
{

using Points = std::vector<qPoint3d64f>;

Points RandomPoints(std::mt19937_64& random, std::size_t count)
{
    std::uniform_real_distribution<double> coordinates(-50.0, 50.0);
    Points points(count);
    for (qPoint3d64f& point : points)
    {
        point = {coordinates(random), coordinates(random), coordinates(random)};
    }
    return points;
}

RefFrame FrameOf(const qL3dTransform3d& m)
{
    const double* e = m.entries;
    return RefFrame(e[0], e[4], e[8], e[1], e[5], e[9], e[2], e[6], e[10], e[3], e[7], e[11]);
}

Points Mapped(const RefFrame& frame, const Points& points)
{
    Points mapped(points.size());
    frame.ApplyN(points.data(), points.size(), mapped.data());
    return mapped;
}

double SquaredDistance(const Points& a, const Points& b)
{
    double sum = 0.0;
    for (std::size_t index = 0; index < a.size(); ++index)
    {
        sum += std::pow(a[index].x - b[index].x, 2) + std::pow(a[index].y - b[index].y, 2) +
               std::pow(a[index].z - b[index].z, 2);
    }
    return sum;
}

void ExpectProperRotation(const qL3dTransform3d& transform)
{
    RefFrame rotation = FrameOf(transform);
    rotation.Translate(-rotation.GetTx(), -rotation.GetTy(), -rotation.GetTz());
    RefFrame transposed = rotation;
    transposed.InvertOrtho();
    const RefFrame product = rotation * transposed;
    for (std::size_t column = 0; column < 3; ++column)
    {
        EXPECT_NEAR(product.GetColumn(column).x, column == 0 ? 1.0 : 0.0, 1e-12);
        EXPECT_NEAR(product.GetColumn(column).y, column == 1 ? 1.0 : 0.0, 1e-12);
        EXPECT_NEAR(product.GetColumn(column).z, column == 2 ? 1.0 : 0.0, 1e-12);
    }
    const qPoint3d64f i = rotation.GetColumn(0);
    const qPoint3d64f j = rotation.GetColumn(1);
    const qPoint3d64f k = rotation.GetColumn(2);
    const double determinant =
        k.x * (i.y * j.z - i.z * j.y) + k.y * (i.z * j.x - i.x * j.z) + k.z * (i.x * j.y - i.y * j.x);
    EXPECT_NEAR(determinant, 1.0, 1e-12);
}

/** No small turn about the target's centroid comes closer. */
void ExpectLocallyBest(const qL3dTransform3d& transform, const Points& source, const Points& target)
{
    qPoint3d64f centroid = {0, 0, 0};
    for (const qPoint3d64f& point : target)
    {
        centroid.x += point.x / static_cast<double>(target.size());
        centroid.y += point.y / static_cast<double>(target.size());
        centroid.z += point.z / static_cast<double>(target.size());
    }
    const double found = SquaredDistance(Mapped(FrameOf(transform), source), target);
    for (const qPoint3d64f axis : {qPoint3d64f{1, 0, 0}, qPoint3d64f{0, 1, 0}, qPoint3d64f{0, 0, 1}})
    {
        for (const double angle : {-5.0, -0.5, 0.5, 5.0})
        {
            RefFrame turned = FrameOf(transform);
            turned.Translate(-centroid.x, -centroid.y, -centroid.z).Rotate(angle, axis).Translate(centroid);
            EXPECT_LE(found, SquaredDistance(Mapped(turned, source), target) + 1e-9);
        }
    }
}

} // namespace

TEST(EstimateRigidTransformation, BadInputIsReportedAndLeavesTheTransform)
{
    const Points two = {{0, 0, 0}, {1, 0, 0}};
    const Points three = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    const Points four = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
    qL3dTransform3d transform;
    std::fill_n(transform.entries, 12, 42.0);
    EXPECT_EQ(EstimateRigidTransformation({}, {}, &transform), STATUS_BAD_PARAMETER);
    EXPECT_EQ(EstimateRigidTransformation(two, two, &transform), STATUS_BAD_PARAMETER);
    EXPECT_EQ(EstimateRigidTransformation(three, four, &transform), STATUS_BAD_PARAMETER);
    EXPECT_EQ(EstimateRigidTransformation(four, three, &transform), STATUS_BAD_PARAMETER);
    EXPECT_EQ(EstimateRigidTransformation(three, three, nullptr), STATUS_BAD_PARAMETER);
    EXPECT_EQ(std::count(transform.entries, transform.entries + 12, 42.0), 12);
}

TEST(EstimateRigidTransformation, FindsAQuarterTurnAboutZAndAShift)
{
    const Points source = {{0, 0, 0}, {2, 0, 0}, {0, 3, 0}, {0, 0, 4}};
    const Points target = {{10, 20, 30}, {10, 22, 30}, {7, 20, 30}, {10, 20, 34}};
    qL3dTransform3d transform;
    ASSERT_EQ(EstimateRigidTransformation(source, target, &transform), STATUS_OK);
    const std::vector<double> expected = {0, -1, 0, 10, 1, 0, 0, 20, 0, 0, 1, 30};
    for (std::size_t index = 0; index < 12; ++index)
    {
        EXPECT_NEAR(transform.entries[index], expected[index], 1e-12) << index;
    }
}

TEST(EstimateRigidTransformation, RecoversKnownMovements)
{
    std::mt19937_64 random(21);
    std::uniform_real_distribution<double> values(-180.0, 180.0);
    for (int round = 0; round < 200; ++round)
    {
        RefFrame movement;
        movement.RotateXYZ(values(random), values(random), values(random))
            .Translate(values(random), values(random), values(random));
        const Points source = RandomPoints(random, 3 + static_cast<std::size_t>(round) % 20);
        const Points target = Mapped(movement, source);
        qL3dTransform3d transform;
        ASSERT_EQ(EstimateRigidTransformation(source, target, &transform), STATUS_OK);
        ExpectProperRotation(transform);
        EXPECT_LE(SquaredDistance(Mapped(FrameOf(transform), source), target), 1e-15);
    }
}

TEST(EstimateRigidTransformation, UnrelatedSetsGiveTheBestProperRotation)
{
    std::mt19937_64 random(22);
    for (int round = 0; round < 50; ++round)
    {
        const Points source = RandomPoints(random, 8);
        const Points target = RandomPoints(random, 8);
        qL3dTransform3d transform;
        ASSERT_EQ(EstimateRigidTransformation(source, target, &transform), STATUS_OK);
        ExpectProperRotation(transform);
        ExpectLocallyBest(transform, source, target);
    }
}

TEST(EstimateRigidTransformation, MirroredSetsGiveARotation)
{
    std::mt19937_64 random(23);
    for (int round = 0; round < 50; ++round)
    {
        const Points source = RandomPoints(random, 6);
        Points target = source;
        for (qPoint3d64f& point : target)
        {
            point.z = -point.z;
        }
        qL3dTransform3d transform;
        ASSERT_EQ(EstimateRigidTransformation(source, target, &transform), STATUS_OK);
        ExpectProperRotation(transform);
        ExpectLocallyBest(transform, source, target);
    }
}

TEST(EstimateRigidTransformation, CollinearAndCoincidentPointsGiveSomeProperRotation)
{
    const Points line = {{0, 0, 0}, {1, 2, 3}, {2, 4, 6}};
    const Points otherLine = {{5, 5, 5}, {5, 5, 5 + std::sqrt(14.0)}, {5, 5, 5 + 2 * std::sqrt(14.0)}};
    qL3dTransform3d transform;
    ASSERT_EQ(EstimateRigidTransformation(line, otherLine, &transform), STATUS_OK);
    ExpectProperRotation(transform);
    EXPECT_LE(SquaredDistance(Mapped(FrameOf(transform), line), otherLine), 1e-20);

    const Points spot(4, qPoint3d64f{1, 2, 3});
    const Points otherSpot(4, qPoint3d64f{-7, 0, 9});
    ASSERT_EQ(EstimateRigidTransformation(spot, otherSpot, &transform), STATUS_OK);
    ExpectProperRotation(transform);
    EXPECT_LE(SquaredDistance(Mapped(FrameOf(transform), spot), otherSpot), 1e-20);
}

TEST(EstimateRigidTransformation, ValuesThatAreNotFiniteEndInSomeTransform)
{
    for (const double bad :
         {std::numeric_limits<double>::quiet_NaN(), std::numeric_limits<double>::infinity(), GetNull<double>(), 1e160})
    {
        const Points source = {{0, bad, 0}, {1, 0, bad}, {bad, 1, 0}};
        const Points target = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
        qL3dTransform3d transform;
        EXPECT_EQ(EstimateRigidTransformation(source, target, &transform), STATUS_OK);
        EXPECT_EQ(EstimateRigidTransformation(target, source, &transform), STATUS_OK);
    }
}

} // namespace Zvl
