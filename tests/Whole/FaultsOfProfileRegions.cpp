#include "Whole/FaultTable.h"

#include <ZdkVisionLib/Common/MaskProfile.h>

#include <memory>

namespace WholeTest
{

using namespace Zvl;

namespace
{

constexpr std::uint64_t kItems = 40;
constexpr qPoint64f kLineScale = {0.5, 0.1};
constexpr qPoint64f kLineOffset = {-10.0, 0.0};

const std::vector<Point2d<double>> kPentagon = {{-6.1, -1.2}, {5.3, -1.1}, {6.9, 2.3},
                                                {-1.2, 3.7},  {-6.3, 1.9}, {-6.1, -1.2}};
const Region2d<double> kRectangle = {-6.1, -1.2, 12.3, 4.1, 5.0};
const EllipticalSector2d<double> kEllipse = {0.5, 0.5, 6.0, 9.0, 0.0, 360.0, 10.0, {0.1, 0.2}};
const AnnularSector2d<double> kRing = {0.3, 4.9, 0.0, 360.0, {0.1, 0.2}};

/** A host's own shape: nothing belongs to it. */
class OwnRegion : public SingleRoiProfile
{
public:
    using SingleRoiProfile::SingleRoiProfile;

    std::shared_ptr<RoiProfile> ApplyAnchor(const Anchor& /*anchor*/) const override { return nullptr; }
    MaskType GetShapeType() const override { return MaskTypePolygon; }

private:
    void _CalculateBoundingSegment() override {}
    int _IsPointInRegion(const qPoint64f& /*point*/) const override { return 0; }
};

template <typename Region, typename Shape>
Region On(void* allocator, const Shape& shape, int isUniform = 1)
{
    return Region(shape, kItems, kLineScale, kLineOffset, isUniform, allocator);
}

Profile MakeLine(int isUniform)
{
    Profile profile(kLineOffset, kLineScale);
    profile.AddLayer(isUniform != 0 ? xxq16s_type : xxq32s_type, kItems, nullptr);
    Zo::Test(qArray1_Zero(profile.layers[0]));
    return profile;
}

template <typename Region, typename Shape>
void Construct(Trial& trial, const Shape& shape)
{
    trial.Call([&] { const Region region = On<Region>(trial.allocator, shape); });
}

template <typename Region, typename Shape>
void CopyConstruct(Trial& trial, const Shape& shape)
{
    const Region region = On<Region>(nullptr, shape);
    trial.Call([&] { const Region copy(region); });
}

/** The mask is made by the first call that has the memory. */
template <typename Region, typename Shape>
void Mask(Trial& trial, const Shape& shape)
{
    Region region = On<Region>(trial.allocator, shape);
    const bool done = trial.Call([&] { region.GetMask(); });
    EXPECT_EQ(region.IsMaskValid(), done ? 1 : 0);
    EXPECT_GT(qArray1_Count(region.GetMask()), 10U);
}

template <typename Region, typename Shape>
void Segment(Trial& trial, const Shape& shape)
{
    Region region = On<Region>(trial.allocator, shape);
    const bool done = trial.Call([&] { region.GetBoundingSegment(); });
    EXPECT_EQ(region.IsBoundingSegmentValid(), done ? 1 : 0);
    EXPECT_GT(region.GetBoundingSegment().length, 10);
}

template <typename Region, typename Shape>
void Apply(Trial& trial, const Shape& shape, int isUniform)
{
    Region region = On<Region>(trial.allocator, shape, isUniform);
    const Profile profile = MakeLine(isUniform);
    trial.KeepsUnchanged(profile.layers[0]);
    trial.Call([&] { region.ApplyRoi(profile); });
    region.ApplyRoi(profile);
    EXPECT_GT(qArray1_Count(region.GetMask()), 10U);
}

template <typename Region, typename Shape>
void Move(Trial& trial, const Shape& shape)
{
    const Region region = On<Region>(nullptr, shape);
    MoveRegion(trial, region);
}

std::unique_ptr<ComposedRoiProfile> MakeComposition(void* allocator)
{
    auto composed = std::make_unique<ComposedRoiProfile>(1, allocator);
    composed->Add(std::make_shared<CircleRoiProfile>(On<CircleRoiProfile>(allocator, kRing)));
    composed->Add(std::make_shared<RectangleRoiProfile>(On<RectangleRoiProfile>(allocator, kRectangle)));
    return composed;
}

void LookAtRegions(Trial& trial)
{
    PolygonRoiProfile polygon = On<PolygonRoiProfile>(nullptr, kPentagon);
    const RectangleRoiProfile rectangle = On<RectangleRoiProfile>(nullptr, kRectangle);
    const EllipseRoiProfile ellipse = On<EllipseRoiProfile>(nullptr, kEllipse);
    const CircleRoiProfile circle = On<CircleRoiProfile>(nullptr, kRing);
    const auto composed = MakeComposition(nullptr);
    composed->GetSubMask(0);
    trial.Call(
        [&]
        {
            EXPECT_EQ(polygon.GetShapeType(), MaskTypePolygon);
            EXPECT_EQ(polygon.GetShape().size(), 6U);
            EXPECT_EQ(rectangle.GetShapeType(), MaskTypeRectangle);
            EXPECT_EQ(rectangle.GetShape().x, kRectangle.x);
            EXPECT_EQ(ellipse.GetShapeType(), MaskTypeEllipse);
            EXPECT_EQ(ellipse.GetShape().rotation, kEllipse.rotation);
            EXPECT_EQ(circle.GetShapeType(), MaskTypeCircle);
            EXPECT_EQ(circle.GetShape().outerRadius, kRing.outerRadius);
            EXPECT_EQ(composed->GetShapeType(), MaskTypeComposed);
            EXPECT_EQ(composed->End() - composed->Begin(), static_cast<std::ptrdiff_t>(composed->GetRoiCount()));
            EXPECT_GT(composed->GetSubBoundingSegment(0).length, 10);
            EXPECT_NE(composed->GetSubMask(0).Get(), nullptr);
            EXPECT_EQ(composed->IsBoundingSegmentValid() + composed->IsMaskValid(), 0);
            EXPECT_EQ(polygon.IsBoundingSegmentValid() + polygon.IsMaskValid(), 0);
        });
}

void MaskOfComposition(Trial& trial)
{
    const auto composed = MakeComposition(trial.allocator);
    const bool done = trial.Call([&] { composed->GetMask(); });
    EXPECT_EQ(composed->IsMaskValid(), done ? 1 : 0);
    EXPECT_GT(qArray1_Count(composed->GetMask()), 10U);
}

void PartsOfComposition(Trial& trial)
{
    const auto composed = MakeComposition(trial.allocator);
    const bool done = trial.Call([&] { composed->GetSubMask(1); });
    EXPECT_EQ((*std::next(composed->Begin()))->IsMaskValid(), done ? 1 : 0);
}

void ApplyComposition(Trial& trial)
{
    const auto composed = MakeComposition(trial.allocator);
    const Profile profile = MakeLine(1);
    trial.KeepsUnchanged(profile.layers[0]);
    trial.Call([&] { composed->ApplyRoi(profile); });
    composed->ApplyRoi(profile);
    EXPECT_EQ(composed->IsMaskValid(), 1);
}

void AddMember(Trial& trial)
{
    const std::shared_ptr<RoiProfile> member = std::make_shared<CircleRoiProfile>(On<CircleRoiProfile>(nullptr, kRing));
    AddThird(trial, *MakeComposition(nullptr), member);
}

} // namespace

std::vector<Entry> FaultsOfProfileRegions()
{
    constexpr unsigned kMask = kDefaultAllocator | kGivenAllocator | kOperations;
    const std::vector<const char*> functions = {"Zvl::RoiProfile::_ConstructMask",
                                                "Zvl::RoiProfile::_ResetBoundingSegment",
                                                "Zvl::ComposedRoiProfile::_AssignMask"};
    return {
        {{"CircleRoiProfile::CircleRoiProfile(AnnularSector2d<double> const&, unsigned long, qPoint64f const&, "
          "qPoint64f "
          "const&, int, void*)",
          "EllipseRoiProfile::EllipseRoiProfile(unsigned long, qPoint64f const&, qPoint64f const&, int, void*)",
          "SingleRoiProfile::SingleRoiProfile(unsigned long, qPoint64f const&, qPoint64f const&, int, void*)",
          "RoiProfile::RoiProfile(int, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<CircleRoiProfile>(trial, kRing); }},
        {{"EllipseRoiProfile::EllipseRoiProfile(EllipticalSector2d<double> const&, unsigned long, qPoint64f const&, "
          "qPoint64f const&, int, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<EllipseRoiProfile>(trial, kEllipse); }},
        {{"PolygonRoiProfile::PolygonRoiProfile(std::vector<Point2d<double>> const&, unsigned long, qPoint64f const&, "
          "qPoint64f const&, int, void*)"},
         kNew,
         {},
         [](Trial& trial) { Construct<PolygonRoiProfile>(trial, kPentagon); }},
        {{"RectangleRoiProfile::RectangleRoiProfile(Region2d<double> const&, unsigned long, qPoint64f const&, "
          "qPoint64f "
          "const&, int, void*)",
          "PolygonRoiProfile::PolygonRoiProfile(unsigned long, qPoint64f const&, qPoint64f const&, int, void*)"},
         kNew,
         {},
         [](Trial& trial) { Construct<RectangleRoiProfile>(trial, kRectangle); }},
        {{"PolygonRoiProfile::PolygonRoiProfile(PolygonRoiProfile const&)"},
         kNew,
         {},
         [](Trial& trial) { CopyConstruct<PolygonRoiProfile>(trial, kPentagon); }},
        {{"RectangleRoiProfile::RectangleRoiProfile(RectangleRoiProfile const&)"},
         kNew,
         {},
         [](Trial& trial) { CopyConstruct<RectangleRoiProfile>(trial, kRectangle); }},
        {{"SingleRoiProfile::SingleRoiProfile(int, void*)"},
         kNothing,
         {},
         [](Trial& trial) { trial.Call([&] { const OwnRegion region(1, trial.allocator); }); }},
        {{"ComposedRoiProfile::ComposedRoiProfile(int, void*)"},
         kNothing,
         {},
         [](Trial& trial) { trial.Call([&] { const ComposedRoiProfile composed(1, trial.allocator); }); }},
        {{"RoiProfile::GetMask()", "RoiProfile::_ConstructMask()", "SingleRoiProfile::_AssignMask()"},
         kMask,
         functions,
         [](Trial& trial) { Mask<PolygonRoiProfile>(trial, kPentagon); }},
        {{"RoiProfile::GetBoundingSegment()", "PolygonRoiProfile::_CalculateBoundingSegment()",
          "SingleRoiProfile::RequireMapping(char const*) const",
          "SingleRoiProfile::SetBounds(RunLength<double> const&)"},
         kNothing,
         functions,
         [](Trial& trial) { Segment<PolygonRoiProfile>(trial, kPentagon); }},
        {{"RoiProfile::GetBoundingSegment()", "EllipseRoiProfile::_CalculateBoundingSegment()"},
         kNothing,
         functions,
         [](Trial& trial) { Segment<EllipseRoiProfile>(trial, kEllipse); }},
        {{"SingleRoiProfile::ApplyRoi(Profile const&)", "SingleRoiProfile::_CheckApplyRoiConditions(Profile const&)",
          "SingleRoiProfile::SelectHeights(void*)", "PolygonRoiProfile::_IsPointInRegion(qPoint64f const&) const"},
         kMask | kNew,
         functions,
         [](Trial& trial) { Apply<PolygonRoiProfile>(trial, kPentagon, 1); }},
        {{"SingleRoiProfile::ApplyRoi(Profile const&)",
          "RectangleRoiProfile::_IsPointInRegion(qPoint64f const&) const"},
         kMask | kNew,
         functions,
         [](Trial& trial) { Apply<RectangleRoiProfile>(trial, kRectangle, 1); }},
        {{"SingleRoiProfile::ApplyRoi(Profile const&)", "EllipseRoiProfile::_IsPointInRegion(qPoint64f const&) const"},
         kMask,
         functions,
         [](Trial& trial) { Apply<EllipseRoiProfile>(trial, kEllipse, 1); }},
        {{"SingleRoiProfile::ApplyRoi(Profile const&)", "SingleRoiProfile::SelectPairs(void*)",
          "CircleRoiProfile::_IsPointInRegion(qPoint64f const&) const"},
         kMask,
         functions,
         [](Trial& trial) { Apply<CircleRoiProfile>(trial, kRing, 0); }},
        {{"PolygonRoiProfile::ApplyAnchor(Anchor const&) const"},
         kNew,
         {},
         [](Trial& trial) { Move<PolygonRoiProfile>(trial, kPentagon); }},
        {{"RectangleRoiProfile::ApplyAnchor(Anchor const&) const"},
         kNew,
         {},
         [](Trial& trial) { Move<RectangleRoiProfile>(trial, kRectangle); }},
        {{"EllipseRoiProfile::ApplyAnchor(Anchor const&) const"},
         kNew,
         {},
         [](Trial& trial) { Move<EllipseRoiProfile>(trial, kEllipse); }},
        {{"CircleRoiProfile::ApplyAnchor(Anchor const&) const"},
         kNew,
         {},
         [](Trial& trial) { Move<CircleRoiProfile>(trial, kRing); }},
        {{"ComposedRoiProfile::Add(std::shared_ptr<RoiProfile> const&)"}, kNew, {}, AddMember},
        {{"ComposedRoiProfile::ApplyAnchor(Anchor const&) const"},
         kNew,
         {},
         [](Trial& trial) { MoveRegion(trial, *MakeComposition(nullptr)); }},
        {{"RoiProfile::GetMask()", "RoiProfile::_ResetBoundingSegment()", "ComposedRoiProfile::_AssignMask()",
          "ComposedRoiProfile::_CalculateBoundingSegment()",
          "ComposedRoiProfile::_UpdateBoundingSegment(RunLength<int> const&)"},
         kMask,
         functions,
         MaskOfComposition},
        {{"ComposedRoiProfile::GetSubMask(unsigned long) const"}, kMask, functions, PartsOfComposition},
        {{"ComposedRoiProfile::ApplyRoi(Profile const&)",
          "ComposedRoiProfile::_CheckApplyRoiConditions(Profile const&)"},
         kMask | kNew,
         functions,
         ApplyComposition},
        {{"PolygonRoiProfile::GetShape() const", "RectangleRoiProfile::GetShape() const",
          "EllipseRoiProfile::GetShape() const", "CircleRoiProfile::GetShape() const",
          "PolygonRoiProfile::GetShapeType() const", "RectangleRoiProfile::GetShapeType() const",
          "EllipseRoiProfile::GetShapeType() const", "CircleRoiProfile::GetShapeType() const",
          "ComposedRoiProfile::GetShapeType() const", "ComposedRoiProfile::Begin() const",
          "ComposedRoiProfile::End() const", "ComposedRoiProfile::GetRoiCount() const",
          "ComposedRoiProfile::GetSubBoundingSegment(unsigned long) const",
          "ComposedRoiProfile::IsBoundingSegmentValid()", "ComposedRoiProfile::IsMaskValid()",
          "RoiProfile::IsBoundingSegmentValid()", "RoiProfile::IsMaskValid()"},
         kNothing,
         {},
         LookAtRegions},
    };
}

} // namespace WholeTest
