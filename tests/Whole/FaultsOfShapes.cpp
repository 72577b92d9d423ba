#include "Whole/FaultTable.h"

namespace WholeTest
{

using namespace Zvl;

namespace
{

const std::vector<Point2d<double>> kTriangle = {{0.0, 0.0}, {4.0, 0.0}, {0.0, 3.0}, {0.0, 0.0}};
const std::vector<Point3d<double>> kTriangle3d = {{0.0, 0.0, 1.0}, {4.0, 0.0, 1.0}, {0.0, 3.0, 1.0}, {0.0, 0.0, 1.0}};

void ConvertAndTest(Trial& trial)
{
    trial.Call(
        []
        {
            Region2d<double> flat;
            Region3d<double> solid;
            Rect2dTo3d(flat, &solid);
            Rect3dTo2d(solid, &flat);
            AnnularSector2d<double> ring;
            AnnularSector3d<double> tube;
            AnnularSector2dTo3d(ring, &tube);
            AnnularSector3dTo2d(tube, &ring);
            EllipticalSector2d<double> ellipse;
            EllipticalSector3d<double> cylinder;
            EllipticalSector2dTo3d(ellipse, &cylinder);
            EllipticalSector3dTo2d(cylinder, &ellipse);
            CheckPointInAnnularSector(ring, {1.0, 2.0});
            CheckPointInAnnularSector(tube, {1.0, 2.0, 3.0}, 1);
            CheckPointInEllipticalSector(ellipse, {1.0, 2.0});
            CheckPointInEllipticalSector(cylinder, {1.0, 2.0, 3.0}, 1);
        });
}

void AnchorShapes(Trial& trial)
{
    trial.Call(
        []
        {
            const Anchor anchor = {1.0, 2.0, 3.0, 30.0};
            Region2d<double> flat = {1.0, 2.0, 3.0, 4.0, 5.0};
            Region3d<double> solid = {1.0, 2.0, 3.0, 4.0, 5.0, 6.0, 7.0};
            AnchorRectangle(anchor, flat, &flat);
            AnchorRectangle(anchor, solid, &solid);
            AnchorSurfaceRegion(anchor, &solid, &solid);
            AnnularSector2d<double> ring;
            AnnularSector3d<double> tube;
            AnchorAnnularSector(anchor, ring, &ring);
            AnchorAnnularSector(anchor, tube, &tube);
            EllipticalSector2d<double> ellipse;
            EllipticalSector3d<double> cylinder;
            AnchorEllipticalSector(anchor, ellipse, &ellipse);
            AnchorEllipticalSector(anchor, cylinder, &cylinder);
            qPoint3d64f points[2] = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}};
            AnchorPointSetRegion(anchor, points, 2, points);
            Point3d<double> others[2] = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}};
            AnchorPointSetRegion(anchor, others, 2, others);
        });
}

/** A polygon that is replaced: without room for the new one it is empty or what it was. */
template <typename Point, typename Replace>
void ReplacePolygon(Trial& trial, std::size_t vertices, Replace&& replace)
{
    std::vector<Point> polygon(2);
    const bool done = trial.Call([&] { replace(&polygon); });
    EXPECT_TRUE(done ? polygon.size() == vertices : polygon.empty() || polygon.size() == 2) << polygon.size();
}

Zo::Object<void*> MakePoints()
{
    const qPoint3d64f points[3] = {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}, {7.0, 8.0, 9.0}};
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, 3, nullptr));
    Zo::Test(qArrayList_Import(list, points, 3));
    return list;
}

std::size_t CountIn(const Zo::Object<void*>& list)
{
    return qArrayList_Count(list);
}

void AnchorNewList(Trial& trial)
{
    const Zo::Object<void*> in = MakePoints();
    Zo::Object<void*> out;
    trial.KeepsUnchanged(in);
    void* source = in;
    const bool done = trial.Call(
        [&] {
            AnchorPointSetRegion(Anchor{1.0, 2.0, 3.0, 4.0}, &source, out.Slot(), trial.allocator);
        });
    EXPECT_TRUE(done ? CountIn(out) == 3 : out.Get() == nullptr);
}

void AnchorIntoList(Trial& trial)
{
    const Zo::Object<void*> in = MakePoints();
    Zo::Object<void*> out;
    Zo::Test(qArrayList_Construct(out.Slot(), xxqPoint3d64f_type, 0, nullptr));
    trial.KeepsUnchanged(in);
    void* source = in;
    void* target = out;
    const bool done = trial.Call([&] { AnchorPointSetRegion(Anchor{1.0, 2.0, 3.0, 4.0}, &source, &target, nullptr); });
    EXPECT_EQ(CountIn(out), done || (trial.Repeats() && CountIn(out) > 0) ? 3U : 0U);
    EXPECT_EQ(target, out.Get());
}

void Bound(Trial& trial, int rotated)
{
    const Surface surface = MakeFaultSurface();
    const std::vector<SurfaceSlice> slices = {{surface, kFaultBox, MakeFaultMask(surface)}};
    KeepsUnchanged(trial, surface);
    trial.KeepsUnchanged(slices[0].mask);
    trial.Call([&] { EXPECT_GT(GetBoundingBox(slices, rotated, trial.allocator).width, 0.0); });
}

} // namespace

std::vector<Entry> FaultsOfShapes()
{
    constexpr const char* kAnchorPoints = "Zvl::AnchorPointSetRegion";
    return {
        {{"Rect2dTo3d(Region2d<double> const&, Region3d<double>*)",
          "Rect3dTo2d(Region3d<double> const&, Region2d<double>*)",
          "AnnularSector2dTo3d(AnnularSector2d<double> const&, AnnularSector3d<double>*)",
          "AnnularSector3dTo2d(AnnularSector3d<double> const&, AnnularSector2d<double>*)",
          "EllipticalSector2dTo3d(EllipticalSector2d<double> const&, EllipticalSector3d<double>*)",
          "EllipticalSector3dTo2d(EllipticalSector3d<double> const&, EllipticalSector2d<double>*)",
          "CheckPointInAnnularSector(AnnularSector2d<double> const&, qPoint64f const&)",
          "CheckPointInAnnularSector(AnnularSector3d<double> const&, qPoint3d64f const&, int)",
          "CheckPointInEllipticalSector(EllipticalSector2d<double> const&, qPoint64f const&)",
          "CheckPointInEllipticalSector(EllipticalSector3d<double> const&, qPoint3d64f const&, int)"},
         kNothing,
         {},
         ConvertAndTest},
        {{"AnchorRectangle(Anchor const&, Region2d<double> const&, Region2d<double>*)",
          "AnchorRectangle(Anchor const&, Region3d<double> const&, Region3d<double>*)",
          "AnchorSurfaceRegion(Anchor const&, Region3d<double> const*, Region3d<double>*)",
          "AnchorAnnularSector(Anchor const&, AnnularSector2d<double> const&, AnnularSector2d<double>*)",
          "AnchorAnnularSector(Anchor const&, AnnularSector3d<double> const&, AnnularSector3d<double>*)",
          "AnchorEllipticalSector(Anchor const&, EllipticalSector2d<double> const&, EllipticalSector2d<double>*)",
          "AnchorEllipticalSector(Anchor const&, EllipticalSector3d<double> const&, EllipticalSector3d<double>*)",
          "AnchorPointSetRegion(Anchor, qPoint3d64f const*, unsigned long, qPoint3d64f*)",
          "AnchorPointSetRegion(Anchor, Point3d<double> const*, unsigned long, Point3d<double>*)"},
         kNothing,
         {},
         AnchorShapes},
        {{"AnchorPointSetRegion(Anchor const&, void* const*, void**, void*)"},
         kDefaultAllocator | kGivenAllocator | kOperations,
         {kAnchorPoints},
         AnchorNewList},
        {{"AnchorPointSetRegion(Anchor const&, void* const*, void**, void*)"},
         kDefaultAllocator | kOperations,
         {kAnchorPoints},
         AnchorIntoList},
        {{"Polygon2dTo3d(std::vector<Point2d<double>> const&, std::vector<Point3d<double>>*)"},
         kNew,
         {},
         [](Trial& trial)
         { ReplacePolygon<Point3d<double>>(trial, 4, [](auto* out) { Polygon2dTo3d(kTriangle, out); }); }},
        {{"Polygon3dTo2d(std::vector<Point3d<double>> const&, std::vector<Point2d<double>>*)"},
         kNew,
         {},
         [](Trial& trial)
         { ReplacePolygon<Point2d<double>>(trial, 4, [](auto* out) { Polygon3dTo2d(kTriangle3d, out); }); }},
        {{"AnchorPolygon(Anchor const&, std::vector<Point2d<double>> const&, std::vector<Point2d<double>>*)"},
         kNew,
         {},
         [](Trial& trial) {
             ReplacePolygon<Point2d<double>>(trial, 4, [](auto* out) { AnchorPolygon({1.0, 2.0}, kTriangle, out); });
         }},
        {{"AnchorPolygon(Anchor const&, std::vector<Point3d<double>> const&, std::vector<Point3d<double>>*)"},
         kNew,
         {},
         [](Trial& trial) {
             ReplacePolygon<Point3d<double>>(trial, 4, [](auto* out) { AnchorPolygon({1.0, 2.0}, kTriangle3d, out); });
         }},
        {{"ExtractPolygonFromRect(Region2d<double> const&, std::vector<Point2d<double>>*)"},
         kNew,
         {},
         [](Trial& trial)
         {
             ReplacePolygon<Point2d<double>>(trial, 5,
                                             [](auto* out) {
                                                 ExtractPolygonFromRect({1.0, 2.0, 3.0, 4.0, 5.0}, out);
                                             });
         }},
        {{"GetBoundingBox(std::vector<SurfaceSlice> const&, int, void*)"},
         kDefaultAllocator | kGivenAllocator | kOperations,
         {"Zvl::GetBoundingBox", "Zvl::AddConvex"},
         [](Trial& trial) { Bound(trial, 0); }},
        {{"GetBoundingBox(std::vector<SurfaceSlice> const&, int, void*)"},
         kDefaultAllocator | kGivenAllocator | kOperations,
         {"Zvl::GetBoundingBox", "Zvl::GetRotatedBounds", "Zvl::AddConvex"},
         [](Trial& trial) { Bound(trial, 1); }},
    };
}

} // namespace WholeTest
