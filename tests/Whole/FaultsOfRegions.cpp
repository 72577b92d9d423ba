#include "Whole/FaultTable.h"

#include <memory>
#include <tuple>

namespace WholeTest
{

using namespace Zvl;

namespace
{

const std::vector<Point2d<double>> kPentagon = {{-4.1, -3.2}, {2.3, -3.1}, {4.9, 2.3},
                                                {-1.2, 0.7},  {-4.3, 3.9}, {-4.1, -3.2}};
const Region2d<double> kRectangle = {-3.1, -2.2, 5.3, 4.1, 20.0};
const EllipticalSector2d<double> kEllipse = {1.0, 1.5, 6.0, 7.0, 10.0, 250.0, 30.0, {0.1, 0.2}};
const AnnularSector2d<double> kRing = {1.1, 3.9, 0.0, 360.0, {0.1, 0.2}};

/** A region in the frame of the small world. */
template <typename Region, typename... Shape>
Region On(void* allocator, const Shape&... shape)
{
    return Region(shape..., std::uint64_t{kFaultColumns}, std::uint64_t{kFaultRows}, kFaultScale, kFaultOffset,
                  allocator);
}

IntensityROI Bright(void* allocator, const Surface& surface)
{
    return {surface, kFaultColumns, kFaultRows, kFaultScale, kFaultOffset, 50, 200, allocator};
}

template <typename Region, typename... Shape>
void Construct(Trial& trial, const Shape&... shape)
{
    trial.Call([&] { const Region region = On<Region>(trial.allocator, shape...); });
}

template <typename Region>
void ConstructEmpty(Trial& trial)
{
    trial.Call([&] { const Region region(trial.allocator); });
}

/** The mask is null after a failure, and the next call makes it. */
template <typename Region>
void Mask(Trial& trial, Region region)
{
    const bool done = trial.Call([&] { region.GetMask(); });
    EXPECT_EQ(region.GetMaskValidity(), done ? 1 : 0);
    const Zo::Object<void*> mask = region.GetMask();
    const std::vector<std::uint8_t> cells = TestSupport::CellsIn<std::uint8_t>(mask);
    EXPECT_GT(std::count(cells.begin(), cells.end(), 1), 10);
}

/** A region that has its box already. */
template <typename Region>
void Box(Trial& trial, Region region)
{
    const bool done = trial.Call(
        [&]
        {
            region.GetBoundingBox();
            region.GetBoundingRegion();
        });
    EXPECT_EQ(region.GetBoundingBoxValidity(), done ? 1 : 0);
    EXPECT_GT(region.GetBoundingBox().width, 4);
}

template <typename Region>
void Copy(Trial& trial, const Region& region)
{
    std::shared_ptr<ROI> copy;
    const bool done = trial.Call([&] { copy = region.DeepCopy(); });
    EXPECT_EQ(copy != nullptr, done);
}

void LookAtRegions(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    PolygonROI polygon = On<PolygonROI>(nullptr, kPentagon);
    RectangleROI rectangle = On<RectangleROI>(nullptr, kRectangle);
    const EllipseROI ellipse = On<EllipseROI>(nullptr, kEllipse);
    const CircleROI circle = On<CircleROI>(nullptr, kRing);
    const SurfaceROI reference = On<SurfaceROI>(nullptr, surface);
    const IntensityROI bright = Bright(nullptr, surface);
    ComposedROI composed;
    composed.Add(circle.DeepCopy());
    composed.GetSubMask(0);
    trial.Call(
        [&]
        {
            EXPECT_EQ(polygon.GetShape().size(), 6U);
            EXPECT_EQ(rectangle.GetShape().x, kRectangle.x);
            EXPECT_EQ(ellipse.GetShape().rotation, kEllipse.rotation);
            EXPECT_EQ(circle.GetShape().outerRadius, kRing.outerRadius);
            EXPECT_EQ(reference.GetShape().layers.size(), 2U);
            EXPECT_EQ(polygon.GetShapeType(), MaskTypePolygon);
            EXPECT_EQ(rectangle.GetShapeType(), MaskTypeRotatedRectangle);
            EXPECT_EQ(ellipse.GetShapeType(), MaskTypeEllipse);
            EXPECT_EQ(circle.GetShapeType(), MaskTypeCircle);
            EXPECT_EQ(reference.GetShapeType(), MaskTypeSurface);
            EXPECT_EQ(bright.GetShapeType(), MaskTypeIntensity);
            EXPECT_EQ(composed.GetShapeType(), MaskTypeComposed);
            EXPECT_EQ(composed.End() - composed.Begin(), static_cast<std::ptrdiff_t>(composed.GetRoiCount()));
            EXPECT_EQ(composed.GetSubBoundingBox(0).width, composed.GetSubBoundingBox(0).width);
            EXPECT_NE(composed.GetSubMask(0).Get(), nullptr);
            EXPECT_EQ(polygon.GetMaskValidity() + polygon.GetBoundingBoxValidity(), 0);
            rectangle.SetFrame(10, 20);
            rectangle.SetFrameWidth(30);
            rectangle.SetFrameHeight(40);
            rectangle.SetScale(kFaultScale);
            rectangle.SetOffset(kFaultOffset);
            rectangle.SetAllocator(nullptr);
        });
}

void SetPixel(Trial& trial)
{
    CircleROI circle = On<CircleROI>(nullptr, kRing);
    const Zo::Object<void*> mask = circle.GetMask();
    const auto corner = [&] { return *static_cast<const std::uint8_t*>(qArray2_At(mask, 0, 0)); };
    EXPECT_EQ(corner(), 0);
    const bool done = trial.Call([&] { circle.SetMaskPixel(0, 0, 1); });
    EXPECT_EQ(corner(), done || trial.Repeats() ? 1 : 0);
}

std::unique_ptr<ComposedROI> MakeComposition(void* allocator)
{
    auto composed = std::make_unique<ComposedROI>(allocator);
    composed->Add(std::make_shared<CircleROI>(On<CircleROI>(allocator, kRing)));
    composed->Add(std::make_shared<RectangleROI>(On<RectangleROI>(allocator, kRectangle)));
    return composed;
}

void AddMember(Trial& trial)
{
    const std::shared_ptr<ROI> member = std::make_shared<CircleROI>(On<CircleROI>(nullptr, kRing));
    AddThird(trial, *MakeComposition(nullptr), member);
}

/** Whether the masks of the members could be merged is not looked at. */
void MaskOfComposition(Trial& trial)
{
    const auto composed = MakeComposition(trial.allocator);
    const bool done = trial.Call([&] { composed->GetMask(); });
    EXPECT_EQ(composed->GetMaskValidity(), done ? 1 : 0);
    EXPECT_NE(composed->GetMask().Get(), nullptr);
}

void BoxOfComposition(Trial& trial)
{
    const auto composed = MakeComposition(nullptr);
    const bool done = trial.Call([&] { composed->GetBoundingBox(); });
    EXPECT_EQ(composed->GetBoundingBoxValidity(), done ? 1 : 0);
    EXPECT_GT(composed->GetBoundingBox().width, 8);
}

void PartsOfComposition(Trial& trial)
{
    const auto composed = MakeComposition(trial.allocator);
    const bool done = trial.Call(
        [&]
        {
            composed->GetSubBoundingBox(0);
            composed->GetSubMask(0);
        });
    EXPECT_EQ((*composed->Begin())->GetMaskValidity(), done ? 1 : 0);
}

void Threshold(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    CircleROI circle = On<CircleROI>(trial.allocator, kRing);
    KeepsUnchanged(trial, surface);
    const bool done = trial.Call([&] { ThresholdHeight(surface, -1.0, 1.0, circle); });
    EXPECT_TRUE(!done || circle.GetMaskValidity() == 1);
}

void ThresholdMask(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> mask = TestSupport::MakeFilled<std::uint8_t>(9, 12, 1);
    KeepsUnchanged(trial, surface);
    const bool done = trial.Call([&] { ThresholdHeight(surface, 0.0, 1.0, kFaultBox, mask); });
    const std::vector<std::uint8_t> cells = TestSupport::CellsIn<std::uint8_t>(mask);
    EXPECT_EQ(std::count(cells.begin(), cells.end(), 0) > 0, done);
}

// How regions are made, masked, copied and moved.

std::vector<Entry> OfConstructors()
{
    return {
        {{"CircleROI::CircleROI(void*)", "EllipseROI::EllipseROI(void*)", "SingleROI::SingleROI(void*)",
          "ROI::ROI(void*)"},
         kNothing,
         {},
         ConstructEmpty<CircleROI>},
        {{"PolygonROI::PolygonROI(void*)"}, kNothing, {}, ConstructEmpty<PolygonROI>},
        {{"RectangleROI::RectangleROI(void*)"}, kNothing, {}, ConstructEmpty<RectangleROI>},
        {{"EllipseROI::EllipseROI(void*)"}, kNothing, {}, ConstructEmpty<EllipseROI>},
        {{"ComposedROI::ComposedROI(void*)"}, kNothing, {}, ConstructEmpty<ComposedROI>},
        {{"CircleROI::CircleROI(AnnularSector2d<double> const&, unsigned long, unsigned long, qPoint64f const&, "
          "qPoint64f "
          "const&, void*)",
          "EllipseROI::EllipseROI(unsigned long, unsigned long, qPoint64f const&, qPoint64f const&, void*)",
          "SingleROI::SingleROI(unsigned long, unsigned long, qPoint64f const&, qPoint64f const&, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<CircleROI>(trial, kRing); }},
        {{"CircleROI::CircleROI(double, double, double, double, double, double, unsigned long, unsigned long, "
          "qPoint64f "
          "const&, qPoint64f const&, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<CircleROI>(trial, 0.1, 0.2, 1.0, 3.0, 0.0, 360.0); }},
        {{"CircleROI::CircleROI(qPoint64f const&, double, double, double, double, unsigned long, unsigned long, "
          "qPoint64f "
          "const&, qPoint64f const&, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<CircleROI>(trial, kRing.center, 1.0, 3.0, 0.0, 360.0); }},
        {{"EllipseROI::EllipseROI(EllipticalSector2d<double> const&, unsigned long, unsigned long, qPoint64f const&, "
          "qPoint64f const&, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<EllipseROI>(trial, kEllipse); }},
        {{"EllipseROI::EllipseROI(double, double, double, double, double, double, double, double, double, unsigned "
          "long, "
          "unsigned long, qPoint64f const&, qPoint64f const&, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<EllipseROI>(trial, 0.1, 0.2, 1.0, 1.5, 6.0, 7.0, 10.0, 250.0, 30.0); }},
        {{"EllipseROI::EllipseROI(qPoint64f const&, double, double, double, double, double, double, double, unsigned "
          "long, "
          "unsigned long, qPoint64f const&, qPoint64f const&, void*)"},
         kNothing,
         {},
         [](Trial& trial) { Construct<EllipseROI>(trial, kEllipse.center, 1.0, 1.5, 6.0, 7.0, 10.0, 250.0, 30.0); }},
        {{"PolygonROI::PolygonROI(std::vector<Point2d<double>> const&, unsigned long, unsigned long, qPoint64f const&, "
          "qPoint64f const&, void*)"},
         kNew,
         {},
         [](Trial& trial) { Construct<PolygonROI>(trial, kPentagon); }},
        {{"PolygonROI::PolygonROI(qPoint64f const*, unsigned long, unsigned long, unsigned long, qPoint64f const&, "
          "qPoint64f const&, void*)"},
         kNew,
         {},
         [](Trial& trial)
         {
             const qPoint64f points[3] = {{0.0, 0.0}, {4.0, 0.0}, {0.0, 3.0}};
             Construct<PolygonROI>(trial, &points[0], std::uint64_t{3});
         }},
        {{"RectangleROI::RectangleROI(Region2d<double> const&, unsigned long, unsigned long, qPoint64f const&, "
          "qPoint64f "
          "const&, void*)",
          "PolygonROI::PolygonROI(unsigned long, unsigned long, qPoint64f const&, qPoint64f const&, void*)"},
         kNew,
         {},
         [](Trial& trial) { Construct<RectangleROI>(trial, kRectangle); }},
        {{"RectangleROI::RectangleROI(double, double, double, double, double, unsigned long, unsigned long, qPoint64f "
          "const&, qPoint64f const&, void*)"},
         kNew,
         {},
         [](Trial& trial) { Construct<RectangleROI>(trial, 1.0, 2.0, 3.0, 4.0, 5.0); }},
        {{"RectangleROI::RectangleROI(qPoint64f, double, double, double, unsigned long, unsigned long, qPoint64f "
          "const&, "
          "qPoint64f const&, void*)"},
         kNew,
         {},
         [](Trial& trial) { Construct<RectangleROI>(trial, kRing.center, 3.0, 4.0, 5.0); }},
        {{"SurfaceROI::SurfaceROI(Surface const&, unsigned long, unsigned long, qPoint64f const&, qPoint64f const&, "
          "void*)"},
         kOperations | kNew,
         {},
         [](Trial& trial) { Construct<SurfaceROI>(trial, MakeFaultSurface()); }},
        {{"IntensityROI::IntensityROI(Surface const&, unsigned long, unsigned long, qPoint64f const&, qPoint64f "
          "const&, "
          "unsigned char, unsigned char, void*)"},
         kOperations | kNew,
         {},
         [](Trial& trial)
         {
             const Surface surface = MakeFaultSurface();
             KeepsUnchanged(trial, surface);
             trial.Call([&] { Bright(trial.allocator, surface); });
         }},
    };
}

std::vector<Entry> OfMasks()
{
    constexpr unsigned kMask = kDefaultAllocator | kGivenAllocator | kOperations;
    constexpr const char* kConstruct = "Zvl::ROI::_ConstructMask";
    constexpr const char* kInitialize = "Zvl::ROI::_InitializeBoundingBox";
    return {
        {{"ROI::GetMask()", "ROI::_ConstructMask()", "PolygonROI::_AssignMaskSliced()",
          "PolygonROI::_CalculateBoundingBox()"},
         kMask | kNew,
         {kConstruct, kInitialize, "Zvl::PolygonROI::_AssignMaskSliced"},
         [](Trial& trial) { Mask(trial, On<PolygonROI>(trial.allocator, kPentagon)); }},
        {{"ROI::GetMask()"},
         kMask | kNew,
         {kConstruct, kInitialize, "Zvl::PolygonROI::_AssignMaskSliced"},
         [](Trial& trial) { Mask(trial, On<RectangleROI>(trial.allocator, kRectangle)); }},
        {{"ROI::GetMask()", "EllipseROI::_AssignMaskSliced()", "EllipseROI::_CalculateBoundingBox()"},
         kMask | kNew,
         {kConstruct, kInitialize, "Zvl::EllipseROI::_AssignMaskSliced"},
         [](Trial& trial) { Mask(trial, On<EllipseROI>(trial.allocator, kEllipse)); }},
        {{"ROI::GetMask()"},
         kMask | kNew,
         {kConstruct, kInitialize, "Zvl::EllipseROI::_AssignMaskSliced"},
         [](Trial& trial) { Mask(trial, On<CircleROI>(trial.allocator, kRing)); }},
        {{"ROI::GetMask()", "SurfaceROI::_AssignMaskSliced()", "SurfaceROI::_CalculateBoundingBox()"},
         kMask,
         {kConstruct, kInitialize, "Zvl::SurfaceROI::_AssignMaskSliced"},
         [](Trial& trial) { Mask(trial, On<SurfaceROI>(trial.allocator, MakeFaultSurface())); }},
        {{"ROI::GetMask()", "IntensityROI::_AssignMaskSliced()"},
         kMask,
         {kConstruct, kInitialize, "Zvl::IntensityROI::_AssignMaskSliced"},
         [](Trial& trial) { Mask(trial, Bright(trial.allocator, MakeFaultSurface())); }},
        {{"ROI::GetMask()", "ComposedROI::_AssignMaskSliced()"},
         kMask | kNew | kAbsorbs,
         {kConstruct, kInitialize, "Zvl::ComposedROI::_AssignMaskSliced", "Zvl::EllipseROI::_AssignMaskSliced",
          "Zvl::PolygonROI::_AssignMaskSliced"},
         MaskOfComposition},
        {{"ComposedROI::GetSubMask(unsigned long) const", "ComposedROI::GetSubBoundingBox(unsigned long) const"},
         kMask | kNew,
         {kConstruct, kInitialize, "Zvl::EllipseROI::_AssignMaskSliced"},
         PartsOfComposition},
        {{"ROI::SetMaskPixel(unsigned long, unsigned long, unsigned char)"},
         kOperations,
         {"Zvl::ROI::SetMaskPixel"},
         SetPixel},
        {{"ThresholdHeight(Surface const&, double, double, ROI&)"},
         kMask | kNew,
         {kConstruct, kInitialize, "Zvl::EllipseROI::_AssignMaskSliced"},
         Threshold},
        {{"ThresholdHeight(Surface const&, double, double, Rect2d<int>, Zo::Object<void*>)"},
         kOperations,
         {},
         ThresholdMask},
    };
}

std::vector<Entry> OfBoxes()
{
    constexpr const char* kInitialize = "Zvl::ROI::_InitializeBoundingBox";
    return {
        {{"ROI::GetBoundingBox()", "ROI::GetBoundingRegion()", "ROI::_CalculateBoundingBoxInternal()",
          "SingleROI::RequireMapping(char const*) const", "SingleROI::SetBounds(Region2d<double> const&)"},
         kNothing,
         {},
         [](Trial& trial) { Box(trial, On<PolygonROI>(nullptr, kPentagon)); }},
        {{"ROI::GetBoundingBox()"}, kNew, {}, [](Trial& trial) { Box(trial, On<EllipseROI>(nullptr, kEllipse)); }},
        {{"ROI::GetBoundingBox()", "ROI::_InitializeBoundingBox()"},
         kOperations,
         {kInitialize},
         [](Trial& trial) { Box(trial, On<SurfaceROI>(nullptr, MakeFaultSurface())); }},
        {{"ROI::GetBoundingBox()", "ComposedROI::_CalculateBoundingBox()",
          "ComposedROI::_UpdateBBoxSize(Rect2d<int> const&, Region2d<double> const&)"},
         kOperations | kNew,
         {kInitialize},
         BoxOfComposition},
    };
}

std::vector<Entry> OfCopies()
{
    return {
        {{"PolygonROI::DeepCopy() const"},
         kNew,
         {},
         [](Trial& trial) { Copy(trial, On<PolygonROI>(nullptr, kPentagon)); }},
        {{"RectangleROI::DeepCopy() const"},
         kNew,
         {},
         [](Trial& trial) { Copy(trial, On<RectangleROI>(nullptr, kRectangle)); }},
        {{"EllipseROI::DeepCopy() const"},
         kNew,
         {},
         [](Trial& trial) { Copy(trial, On<EllipseROI>(nullptr, kEllipse)); }},
        {{"CircleROI::DeepCopy() const"}, kNew, {}, [](Trial& trial) { Copy(trial, On<CircleROI>(nullptr, kRing)); }},
        {{"SurfaceROI::DeepCopy() const"},
         kDefaultAllocator | kGivenAllocator | kOperations | kNew,
         {"Zvl::SurfaceROI::DeepCopy"},
         [](Trial& trial) { Copy(trial, On<SurfaceROI>(trial.allocator, MakeFaultSurface())); }},
        {{"ComposedROI::DeepCopy() const"}, kNew, {}, [](Trial& trial) { Copy(trial, *MakeComposition(nullptr)); }},
        {{"ComposedROI::Add(std::shared_ptr<ROI> const&)"}, kNew, {}, AddMember},
        {{"PolygonROI::ApplyAnchor(Anchor const&)"},
         kNew,
         {},
         [](Trial& trial)
         {
             auto region = On<PolygonROI>(nullptr, kPentagon);
             MoveRegion(trial, region);
         }},
        {{"RectangleROI::ApplyAnchor(Anchor const&)"},
         kNew,
         {},
         [](Trial& trial)
         {
             auto region = On<RectangleROI>(nullptr, kRectangle);
             MoveRegion(trial, region);
         }},
        {{"EllipseROI::ApplyAnchor(Anchor const&)"},
         kNew,
         {},
         [](Trial& trial)
         {
             auto region = On<EllipseROI>(nullptr, kEllipse);
             MoveRegion(trial, region);
         }},
        {{"CircleROI::ApplyAnchor(Anchor const&)"},
         kNew,
         {},
         [](Trial& trial)
         {
             auto region = On<CircleROI>(nullptr, kRing);
             MoveRegion(trial, region);
         }},
        {{"SurfaceROI::ApplyAnchor(Anchor const&)"},
         kOperations | kNew,
         {},
         [](Trial& trial)
         {
             auto region = On<SurfaceROI>(nullptr, MakeFaultSurface());
             MoveRegion(trial, region);
         }},
        {{"IntensityROI::ApplyAnchor(Anchor const&)"},
         kOperations | kNew,
         {},
         [](Trial& trial)
         {
             auto region = Bright(nullptr, MakeFaultSurface());
             MoveRegion(trial, region);
         }},
        {{"ComposedROI::ApplyAnchor(Anchor const&)"},
         kNew,
         {},
         [](Trial& trial) { MoveRegion(trial, *MakeComposition(nullptr)); }},
        {{"PolygonROI::GetShape() const",
          "RectangleROI::GetShape() const",
          "EllipseROI::GetShape() const",
          "CircleROI::GetShape() const",
          "SurfaceROI::GetShape() const",
          "PolygonROI::GetShapeType() const",
          "RectangleROI::GetShapeType() const",
          "EllipseROI::GetShapeType() const",
          "CircleROI::GetShapeType() const",
          "SurfaceROI::GetShapeType() const",
          "IntensityROI::GetShapeType() const",
          "ComposedROI::GetShapeType() const",
          "ComposedROI::Begin() const",
          "ComposedROI::End() const",
          "ComposedROI::GetRoiCount() const",
          "ROI::GetMaskValidity() const",
          "ROI::GetBoundingBoxValidity() const",
          "SingleROI::SetFrame(unsigned long const&, unsigned long const&)",
          "SingleROI::SetFrameWidth(unsigned long const&)",
          "SingleROI::SetFrameHeight(unsigned long const&)",
          "SingleROI::SetScale(qPoint64f const&)",
          "SingleROI::SetOffset(qPoint64f const&)",
          "SingleROI::SetAllocator(void* const&)",
          "SingleROI::DropCaches()"},
         kNothing,
         {},
         LookAtRegions},
    };
}

} // namespace

std::vector<Entry> FaultsOfRegions()
{
    std::vector<Entry> entries = OfConstructors();
    for (const std::vector<Entry>& part : {OfMasks(), OfBoxes(), OfCopies()})
    {
        entries.insert(entries.end(), part.begin(), part.end());
    }
    return entries;
}

} // namespace WholeTest
