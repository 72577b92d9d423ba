#include <ZdkVisionLib/Alignment/RefFrame.h>

#include "support/ExpectThrow.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();
constexpr double kTolerance = 1e-12;
constexpr qPoint3d64f kAxisX = {1.0, 0.0, 0.0};
constexpr qPoint3d64f kAxisY = {0.0, 1.0, 0.0};
constexpr qPoint3d64f kAxisZ = {0.0, 0.0, 1.0};

std::vector<double> FieldsOf(const RefFrame& frame)
{
    return {frame.GetIx(), frame.GetIy(), frame.GetIz(), frame.GetJx(), frame.GetJy(), frame.GetJz(),
            frame.GetKx(), frame.GetKy(), frame.GetKz(), frame.GetTx(), frame.GetTy(), frame.GetTz()};
}

const std::vector<double> kIdentityFields = {1, 0, 0, 0, 1, 0, 0, 0, 1, 0, 0, 0};

RefFrame CountingFrame()
{
    return RefFrame(1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12);
}

void ExpectNear(const qPoint3d64f& actual, const qPoint3d64f& expected, double tolerance = kTolerance)
{
    EXPECT_NEAR(actual.x, expected.x, tolerance);
    EXPECT_NEAR(actual.y, expected.y, tolerance);
    EXPECT_NEAR(actual.z, expected.z, tolerance);
}

void ExpectFieldsNear(const RefFrame& frame, const std::vector<double>& expected, double tolerance = kTolerance)
{
    const std::vector<double> fields = FieldsOf(frame);
    for (std::size_t index = 0; index < fields.size(); ++index)
    {
        EXPECT_NEAR(fields[index], expected[index], tolerance) << "field " << index;
    }
}

qPoint3d64f UnitVector(std::mt19937_64& random)
{
    std::normal_distribution<double> normal;
    const qPoint3d64f v = {normal(random), normal(random), normal(random)};
    const double length = std::sqrt(v.x * v.x + v.y * v.y + v.z * v.z);
    return {v.x / length, v.y / length, v.z / length};
}

RefFrame RandomRigidFrame(std::mt19937_64& random)
{
    std::uniform_real_distribution<double> angle(-400.0, 400.0);
    std::uniform_real_distribution<double> shift(-10.0, 10.0);
    RefFrame frame;
    frame.Rotate(angle(random), UnitVector(random)).Translate(shift(random), shift(random), shift(random));
    return frame;
}

} // namespace

// ---------------------------------------------------------------------------------------------------------
// Fields

TEST(RefFrame, DefaultIsIdentity)
{
    EXPECT_EQ(FieldsOf(RefFrame()), kIdentityFields);
}

TEST(RefFrame, StoresTwelveFieldsInOrder)
{
    EXPECT_EQ(FieldsOf(CountingFrame()), (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12}));
}

TEST(RefFrame, AssignmentCopiesAllFields)
{
    RefFrame frame;
    frame = CountingFrame();
    EXPECT_EQ(FieldsOf(frame), FieldsOf(CountingFrame()));
    EXPECT_EQ(FieldsOf(frame.SetIdentity()), kIdentityFields);
}

TEST(RefFrame, ColumnsAreTheImagesOfTheAxesAndTheOrigin)
{
    const RefFrame frame = CountingFrame();
    ExpectNear(frame.GetColumn(0), {1, 2, 3}, 0.0);
    ExpectNear(frame.GetColumn(1), {4, 5, 6}, 0.0);
    ExpectNear(frame.GetColumn(2), {7, 8, 9}, 0.0);
    ExpectNear(frame.GetColumn(3), {10, 11, 12}, 0.0);
    ExpectNear(frame.GetTranslation(), {10, 11, 12}, 0.0);
}

TEST(RefFrame, OtherColumnsAreNull)
{
    for (const std::size_t index : {std::size_t(4), std::size_t(5), std::size_t(-1)})
    {
        ExpectNear(CountingFrame().GetColumn(index), {kNull, kNull, kNull}, 0.0);
    }
}

TEST(RefFrame, ScaleIsTheLengthOfEachAxis)
{
    const RefFrame frame(2, 3, 6, 0, -4, 3, 0, 0, -7, 100, 100, 100);
    ExpectNear(frame.GetScale(), {7, 5, 7}, 0.0);
}

TEST(RobotPose, HoldsItsSixValues)
{
    RobotPose pose(1, 2, 3, 4, 5, 6);
    const RobotPose other(7, 8, 9, 10, 11, 12);
    EXPECT_EQ(pose.x, 1.0);
    EXPECT_EQ(pose.rotationX, 4.0);
    pose = other;
    EXPECT_EQ((std::vector<double>{pose.x, pose.y, pose.z, pose.rotationX, pose.rotationY, pose.rotationZ}),
              (std::vector<double>{7, 8, 9, 10, 11, 12}));
}

// ---------------------------------------------------------------------------------------------------------
// Mapping

TEST(RefFrame, MapsAPointByItsRows)
{
    // x' = 1*1 + 4*2 + 7*3 + 10, and so on
    ExpectNear(CountingFrame().Apply(qPoint3d64f{1, 2, 3}), {40, 47, 54}, 0.0);
}

TEST(RefFrame, MapsAPlanePointWithoutK)
{
    const qPoint64f mapped = CountingFrame().Apply(qPoint64f{1, 2});
    EXPECT_EQ(mapped.x, 19.0);
    EXPECT_EQ(mapped.y, 23.0);
}

TEST(RefFrame, MapsArraysInPlace)
{
    std::vector<qPoint3d64f> points = {{1, 2, 3}, {0, 0, 0}};
    CountingFrame().ApplyN(points.data(), points.size(), points.data());
    ExpectNear(points[0], {40, 47, 54}, 0.0);
    ExpectNear(points[1], {10, 11, 12}, 0.0);

    std::vector<Point3d<double>> records = {{1, 2, 3}, {0, 0, 0}};
    CountingFrame().ApplyN(records.data(), records.size(), records.data());
    ExpectNear(records[0], {40, 47, 54}, 0.0);
    ExpectNear(records[1], {10, 11, 12}, 0.0);
}

TEST(RefFrame, NoPointsNeedNoArrays)
{
    CountingFrame().ApplyN(static_cast<const qPoint3d64f*>(nullptr), 0, nullptr);
    CountingFrame().ApplyN(static_cast<const Point3d<double>*>(nullptr), 0, nullptr);
}

TEST(RefFrame, NullArraysOfPointsAreRejected)
{
    qPoint3d64f point = {1, 2, 3};
    const RefFrame frame;
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::RefFrame::ApplyN", [&] { frame.ApplyN(&point, 1, nullptr); });
    TestSupport::ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::RefFrame::ApplyN", [&] { frame.ApplyN(nullptr, 1, &point); });
}

// ---------------------------------------------------------------------------------------------------------
// Rotation

TEST(RefFrame, RotatesCounterClockwise)
{
    ExpectNear(RefFrame().Rotate(90, kAxisX).Apply(kAxisY), kAxisZ);
    ExpectNear(RefFrame().Rotate(90, kAxisY).Apply(kAxisZ), kAxisX);
    ExpectNear(RefFrame().Rotate(90, kAxisZ).Apply(kAxisX), kAxisY);
}

TEST(RefFrame, RotationEqualsTheClosedForm)
{
    std::mt19937_64 random(20240531);
    std::uniform_real_distribution<double> angles(-720.0, 720.0);
    for (int round = 0; round < 500; ++round)
    {
        const double angle = angles(random);
        const qPoint3d64f u = UnitVector(random);
        const double s = std::sin(angle * M_PI / 180.0);
        const double c = std::cos(angle * M_PI / 180.0);
        const double v = 1.0 - c;
        // Rodrigues' rotation formula, column by column
        ExpectFieldsNear(RefFrame().Rotate(angle, u),
                         {c + u.x * u.x * v, u.y * u.x * v + u.z * s, u.z * u.x * v - u.y * s, u.x * u.y * v - u.z * s,
                          c + u.y * u.y * v, u.z * u.y * v + u.x * s, u.x * u.z * v + u.y * s, u.y * u.z * v - u.x * s,
                          c + u.z * u.z * v, 0, 0, 0});
    }
}

TEST(RefFrame, AnAxisOfAnotherLengthChangesTheAngle)
{
    // The quaternion (0, 0, 2, 1) / sqrt(5): cosine 1 - 8 / 5, sine 4 / 5.
    RefFrame frame;
    frame.Rotate(90, {0, 0, 2});
    ExpectFieldsNear(frame, {-0.6, 0.8, 0, -0.8, -0.6, 0, 0, 0, 1, 0, 0, 0});
}

TEST(RefFrame, AZeroAxisRotatesNothing)
{
    EXPECT_EQ(FieldsOf(RefFrame().Rotate(70, {0, 0, 0})), kIdentityFields);
}

TEST(RefFrame, RotationComposesAndTurnsTheTranslation)
{
    RefFrame frame;
    frame.Translate(1, 2, 3).Rotate(90, kAxisZ);
    ExpectNear(frame.GetTranslation(), {-2, 1, 3});
    ExpectNear(frame.Apply(kAxisX), {-2, 2, 3});
}

TEST(RefFrame, RotateXyzTurnsAboutZFirst)
{
    ExpectNear(RefFrame().RotateXYZ(90, 0, 90).Apply(kAxisX), kAxisZ);
    ExpectNear(RefFrame().RotateXYZ(0, 90, 90).Apply(kAxisY), kAxisZ);
    ExpectNear(RefFrame().RotateXYZ(90, 90, 0).Apply(kAxisZ), kAxisX);
}

TEST(RefFrame, RotateZyxTurnsAboutXFirst)
{
    ExpectNear(RefFrame().RotateZYX(90, 0, 90).Apply(kAxisX), kAxisY);
    ExpectNear(RefFrame().RotateZYX(0, 90, 90).Apply(kAxisZ), kAxisY);
    ExpectNear(RefFrame().RotateZYX(90, 90, 0).Apply(kAxisY), kAxisX);
}

TEST(RefFrame, NullAnglesRotateNothing)
{
    RefFrame frame = CountingFrame();
    EXPECT_EQ(FieldsOf(frame.RotateXYZ(kNull, kNull, kNull)), FieldsOf(CountingFrame()));
    EXPECT_EQ(FieldsOf(frame.RotateZYX(kNull, kNull, kNull)), FieldsOf(CountingFrame()));
}

TEST(RefFrame, ANullAngleSkipsItsAxisOnly)
{
    for (const bool isXyz : {true, false})
    {
        const auto rotated = [isXyz](double x, double y, double z)
        {
            RefFrame frame;
            return FieldsOf(isXyz ? frame.RotateXYZ(x, y, z) : frame.RotateZYX(x, y, z));
        };
        EXPECT_EQ(rotated(30, kNull, kNull), FieldsOf(RefFrame().Rotate(30, kAxisX)));
        EXPECT_EQ(rotated(kNull, 30, kNull), FieldsOf(RefFrame().Rotate(30, kAxisY)));
        EXPECT_EQ(rotated(kNull, kNull, 30), FieldsOf(RefFrame().Rotate(30, kAxisZ)));
    }
}

TEST(RefFrame, RotateAroundPointKeepsThePointAndDiscardsTheFrame)
{
    RefFrame frame = CountingFrame();
    frame.RotateAroundPoint({3, 4, 5}, 90);
    ExpectNear(frame.Apply(qPoint3d64f{3, 4, 5}), {3, 4, 5});
    ExpectNear(frame.Apply(qPoint3d64f{4, 4, 6}), {3, 5, 6});
}

TEST(RefFrame, RotatingByARegionTurnsAboutItsCenterAndDiscardsTheFrame)
{
    RefFrame frame = CountingFrame();
    frame.Rotate(Region3d<double>{0, 0, 4, 2, 90, 10, 2});
    ExpectNear(frame.Apply(qPoint3d64f{2, 1, 11}), {2, 1, 11});
    ExpectNear(frame.Apply(qPoint3d64f{0, 0, 0}), {3, -1, 0});
}

TEST(RefFrame, SetFrameTurnsThenShiftsAndDiscardsTheFrame)
{
    RefFrame frame = CountingFrame();
    frame.SetFrame({1, 2, 3}, 90);
    ExpectFieldsNear(frame, {0, 1, 0, -1, 0, 0, 0, 0, 1, 1, 2, 3});
}

// ---------------------------------------------------------------------------------------------------------
// Shift, scale, composition, inverse

TEST(RefFrame, TranslateAddsToTheTranslation)
{
    RefFrame frame = CountingFrame();
    frame.Translate(1, 2, 3).Translate(qPoint3d64f{10, 20, 30});
    EXPECT_EQ(FieldsOf(frame), (std::vector<double>{1, 2, 3, 4, 5, 6, 7, 8, 9, 21, 33, 45}));
}

TEST(RefFrame, ScaleMultipliesTheCoordinatesOfEveryField)
{
    RefFrame frame = CountingFrame();
    frame.Scale({2, 10, 100});
    EXPECT_EQ(FieldsOf(frame), (std::vector<double>{2, 20, 300, 8, 50, 600, 14, 80, 900, 20, 110, 1200}));
}

TEST(RefFrame, AProductDoesItsLeftFactorFirst)
{
    RefFrame a(1, 2, 0, 0, 1, 3, 2, 0, 1, 5, 6, 7);
    const RefFrame b(2, 0, 1, 1, 1, 0, 0, 3, 1, 10, 20, 30);
    // I: (1,2,0) -> 1*(2,0,1) + 2*(1,1,0); J: (1,1,0) + 3*(0,3,1); K: 2*(2,0,1) + (0,3,1)
    // T: 5*(2,0,1) + 6*(1,1,0) + 7*(0,3,1) + (10,20,30)
    const std::vector<double> expected = {4, 2, 1, 1, 10, 3, 4, 3, 3, 26, 47, 42};
    EXPECT_EQ(FieldsOf(a * b), expected);
    EXPECT_EQ(FieldsOf(RefFrame::Mul(a, b)), expected);
    ExpectNear((a * b).Apply(qPoint3d64f{1, 2, 3}), b.Apply(a.Apply(qPoint3d64f{1, 2, 3})), 0.0);
}

TEST(RefFrame, InvertOrthoTransposesAndUsesTheOldValues)
{
    // -(1,2,3).(10,11,12) = -68, -(4,5,6).(10,11,12) = -167, -(7,8,9).(10,11,12) = -266
    EXPECT_EQ(FieldsOf(CountingFrame().InvertOrtho()),
              (std::vector<double>{1, 4, 7, 2, 5, 8, 3, 6, 9, -68, -167, -266}));
}

TEST(RefFrame, RigidFramesObeyTheLawsOfAGroup)
{
    std::mt19937_64 random(7);
    std::uniform_real_distribution<double> coordinates(-100.0, 100.0);
    for (int round = 0; round < 200; ++round)
    {
        RefFrame a = RandomRigidFrame(random);
        RefFrame b = RandomRigidFrame(random);
        const RefFrame c = RandomRigidFrame(random);
        RefFrame inverse = a;
        inverse.InvertOrtho();
        RefFrame inverseOfB = b;
        inverseOfB.InvertOrtho();

        EXPECT_EQ(FieldsOf(a * RefFrame()), FieldsOf(a));
        EXPECT_EQ(FieldsOf(RefFrame() * a), FieldsOf(a));
        ExpectFieldsNear(a * inverse, kIdentityFields);
        ExpectFieldsNear(inverse * a, kIdentityFields);
        ExpectFieldsNear((a * b) * c, FieldsOf(a * (b * c)));
        ExpectFieldsNear((a * b).InvertOrtho(), FieldsOf(inverseOfB * inverse));

        const qPoint3d64f point = {coordinates(random), coordinates(random), coordinates(random)};
        ExpectNear(inverse.Apply(a.Apply(point)), point);
    }
}

TEST(RefFrame, NullsAreValuesInArithmetic)
{
    RefFrame frame;
    frame.Translate(kNull, 0, 0);
    EXPECT_EQ(frame.GetTx(), kNull);
    frame.Translate(kNull, 0, 0);
    EXPECT_TRUE(std::isinf(frame.GetTx()));
}

} // namespace Zvl
