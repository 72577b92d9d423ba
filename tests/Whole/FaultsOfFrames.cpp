#include "Whole/FaultTable.h"

#include <ZdkVisionLib/Alignment/RefFrame.h>

#include <cstring>

namespace WholeTest
{

using namespace Zvl;

namespace
{

const RefFrame kFrame(1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0, 8.0, 9.0, 10.0, 11.0, 12.0);

bool AreEqual(const RefFrame& a, const RefFrame& b)
{
    static_assert(sizeof(RefFrame) == 12 * sizeof(double));
    return std::memcmp(&a, &b, sizeof(RefFrame)) == 0;
}

void MoveFrames(Trial& trial)
{
    trial.Call(
        []
        {
            RefFrame frame;
            frame.SetIdentity().Translate(1.0, 2.0, 3.0).Translate({1.0, 2.0, 3.0});
            frame.Rotate(30.0, {0.0, 0.0, 1.0}).RotateXYZ(1.0, 2.0, 3.0).RotateZYX(1.0, 2.0, 3.0);
            frame.InvertOrtho().Scale({2.0, 3.0, 4.0});
            frame.SetFrame({1.0, 2.0, 3.0}, 40.0);
            frame.RotateAroundPoint({1.0, 2.0, 3.0}, 50.0);
            frame.Rotate(Region3d<double>{1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0});
            frame = RefFrame::Mul(frame, frame * kFrame);
            qPoint3d64f points[2] = {frame.GetScale(), frame.GetColumn(3)};
            frame.ApplyN(points, 2, points);
            Point3d<double> others[2] = {frame.GetTranslation(), frame.Apply(points[0])};
            frame.ApplyN(others, 2, others);
            frame.Apply(qPoint64f{1.0, 2.0});
        });
}

void Serialize(Trial& trial)
{
    Zo::Object<void*> bytes;
    const bool done = trial.Call([&] { kFrame.Serialize(bytes.Slot()); });
    EXPECT_TRUE(done ? qArray1_Count(bytes) == 102 : bytes.Get() == nullptr);
}

void Deserialize(Trial& trial)
{
    Zo::Object<void*> bytes;
    kFrame.Serialize(bytes.Slot());
    trial.KeepsUnchanged(bytes);
    RefFrame frame;
    const bool done =
        trial.Call([&] { frame.Deserialize(qArray1_Data(bytes), qArray1_Count(bytes), trial.allocator); });
    EXPECT_TRUE(!done || AreEqual(frame, kFrame));
    // Values are read straight into the frame: those ahead of the failure are new, the others old.
    double values[12];
    double expected[12];
    std::memcpy(values, &frame, sizeof(values));
    std::memcpy(expected, &kFrame, sizeof(expected));
    const auto firstOld = std::mismatch(std::begin(values), std::end(values), std::begin(expected)).first - values;
    std::memcpy(expected, &static_cast<const RefFrame&>(RefFrame()), sizeof(expected));
    for (std::ptrdiff_t i = firstOld; i < 12; ++i)
    {
        EXPECT_EQ(values[i], expected[i]) << i;
    }
}

const std::vector<qPoint64f> kFlatPoints = {{0.0, 0.0}, {4.0, 0.0}, {0.0, 3.0}};
const std::vector<qPoint3d64f> kSolidPoints = {{0.0, 0.0, 0.0}, {4.0, 0.0, 0.0}, {0.0, 3.0, 0.0}, {0.0, 0.0, 2.0}};

/** Without memory for the matrices the frame is the identity, with which the estimation begins. */
void EstimateFlat(Trial& trial)
{
    std::vector<qPoint64f> moved = kFlatPoints;
    moved[1].y += 1.0;
    RefFrame frame = kFrame;
    const bool done = trial.Call([&] { frame.SetFrame(moved, kFlatPoints); });
    EXPECT_FALSE(AreEqual(frame, kFrame));
    EXPECT_NE(AreEqual(frame, RefFrame()), done);
}

/** The one platform call has a status of its own, which is returned. */
void EstimateSolid(Trial& trial)
{
    qL3dTransform3d transform{};
    int status = STATUS_OK;
    const bool done = trial.Call([&] { status = EstimateRigidTransformation(kSolidPoints, kSolidPoints, &transform); });
    EXPECT_EQ(done && status == STATUS_OK, transform.entries[0] != 0.0) << status;
}

} // namespace

std::vector<Entry> FaultsOfFrames()
{
    return {
        {{"RefFrame::RefFrame()",
          "RefFrame::RefFrame(double, double, double, double, double, double, double, double, double, double, double, "
          "double)",
          "RefFrame::SetIdentity()",
          "RefFrame::Translate(double, double, double)",
          "RefFrame::Translate(qPoint3d64f)",
          "RefFrame::Rotate(double, qPoint3d64f)",
          "RefFrame::Rotate(Region3d<double> const&)",
          "RefFrame::RotateXYZ(double, double, double)",
          "RefFrame::RotateZYX(double, double, double)",
          "RefFrame::RotateAroundPoint(qPoint3d64f, double)",
          "RefFrame::Scale(qPoint3d64f)",
          "RefFrame::InvertOrtho()",
          "RefFrame::SetFrame(qPoint3d64f, double)",
          "RefFrame::Mul(RefFrame const&, RefFrame const&)",
          "RefFrame::operator*(RefFrame const&)",
          "RefFrame::GetScale() const",
          "RefFrame::GetColumn(unsigned long) const",
          "RefFrame::GetTranslation() const",
          "RefFrame::Apply(qPoint3d64f) const",
          "RefFrame::Apply(qPoint64f) const",
          "RefFrame::ApplyN(qPoint3d64f const*, unsigned long, qPoint3d64f*) const",
          "RefFrame::ApplyN(Point3d<double> const*, unsigned long, Point3d<double>*) const"},
         kNothing,
         {},
         MoveFrames},
        {{"RefFrame::Serialize(void**) const"},
         kDefaultAllocator | kOperations,
         {"Zvl::RefFrame::Serialize"},
         Serialize},
        {{"RefFrame::Deserialize(void*, unsigned long, void*)"},
         kDefaultAllocator | kGivenAllocator | kOperations,
         {"Zvl::RefFrame::Deserialize"},
         Deserialize},
        {{"RefFrame::SetFrame(std::vector<qPoint64f> const&, std::vector<qPoint64f> const&)"}, kNew, {}, EstimateFlat},
        {{"EstimateRigidTransformation(std::vector<qPoint3d64f> const&, std::vector<qPoint3d64f> const&, "
          "qL3dTransform3d*)"},
         kOperations | kNew | kAbsorbs,
         {},
         EstimateSolid},
        {{"DecomposeEigen(double*, double*, int, int)"},
         kNothing,
         {},
         [](Trial& trial)
         {
             double matrix[9] = {2.0, 1.0, 0.0, 1.0, 2.0, 1.0, 0.0, 1.0, 2.0};
             double vectors[9];
             trial.Call([&] { DecomposeEigen(matrix, vectors, 3, 0); });
         }},
    };
}

} // namespace WholeTest
