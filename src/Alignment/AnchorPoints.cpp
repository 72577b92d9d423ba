#include <ZdkVisionLib/Alignment/Anchor.h>

#include "Common/Check.h"
#include <ZdkVisionLib/Alignment/RefFrame.h>

#include <cstring>

namespace Zvl
{

namespace
{

constexpr double kNull = GetNull<double>();

constexpr const char* kPointSetFunction = "Zvl::AnchorPointSetRegion";
constexpr const char* kPolygonFunction = "Zvl::AnchorPolygon";

bool MovesNothing(const Anchor& anchor)
{
    return anchor.x == kNull && anchor.y == kNull && anchor.z == kNull && anchor.angle == kNull;
}

double ZeroIfNull(double field)
{
    return field == kNull ? 0.0 : field;
}

template <typename Point>
void MovePoints(const Anchor& anchor, const Point* in, std::size_t count, Point* out)
{
    ZVL_REQUIRE(kPointSetFunction, count == 0 || (in != nullptr && out != nullptr));
    if (count == 0)
    {
        return;
    }
    if (MovesNothing(anchor))
    {
        std::memmove(out, in, count * sizeof(Point));
        return;
    }
    RefFrame frame;
    frame.SetFrame({ZeroIfNull(anchor.x), ZeroIfNull(anchor.y), ZeroIfNull(anchor.z)}, ZeroIfNull(anchor.angle));
    frame.ApplyN(in, count, out);
}

bool IsList(qObject object)
{
    return xqCastClass_ObjectIs(object, xxqArrayList_type);
}

bool IsListOfPoints(qObject object)
{
    return IsList(object) && qArrayList_Type(object) == xxqPoint3d64f_type;
}

void FillList(const Anchor& anchor, qArrayList in, std::size_t count, qArrayList out)
{
    ZVL_CHECK(kPointSetFunction, qArrayList_Resize(out, count));
    MovePoints(anchor, static_cast<const qPoint3d64f*>(qArrayList_Data(in)), count,
               static_cast<qPoint3d64f*>(qArrayList_Data(out)));
}

} // namespace

void AnchorPointSetRegion(Anchor anchor, const qPoint3d64f* in, std::size_t count, qPoint3d64f* out)
{
    MovePoints(anchor, in, count, out);
}

void AnchorPointSetRegion(Anchor anchor, const Point3d<double>* in, std::size_t count, Point3d<double>* out)
{
    MovePoints(anchor, in, count, out);
}

void AnchorPointSetRegion(const Anchor& anchor, void* const* in, void** out, void* allocator)
{
    ZVL_REQUIRE(kPointSetFunction, in != nullptr && out != nullptr && IsListOfPoints(*in));
    if (*out != nullptr)
    {
        ZVL_REQUIRE(kPointSetFunction, IsList(*out));
        ZVL_CHECK(kPointSetFunction, qArrayList_Purge(*out));
    }
    const std::size_t count = qArrayList_Count(*in);
    if (count == 0)
    {
        return;
    }
    if (*out != nullptr)
    {
        ZVL_REQUIRE(kPointSetFunction, IsListOfPoints(*out));
        FillList(anchor, *in, count, *out);
        return;
    }
    Zo::Object<void*> list;
    ZVL_CHECK(kPointSetFunction, qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, count, allocator));
    FillList(anchor, *in, count, list);
    *out = list.Detach();
}

void AnchorPolygon(const Anchor& anchor, const std::vector<Point2d<double>>& in, std::vector<Point2d<double>>* out)
{
    ZVL_REQUIRE(kPolygonFunction, out != nullptr);
    if (in.empty())
    {
        return;
    }
    std::vector<Point3d<double>> moved;
    moved.reserve(in.size());
    for (const Point2d<double>& vertex : in)
    {
        moved.emplace_back(vertex.x, vertex.y, 0.0);
    }
    MovePoints(anchor, moved.data(), moved.size(), moved.data());
    out->clear();
    out->reserve(moved.size());
    for (const Point3d<double>& vertex : moved)
    {
        out->emplace_back(vertex.x, vertex.y);
    }
}

void AnchorPolygon(const Anchor& anchor, const std::vector<Point3d<double>>& in, std::vector<Point3d<double>>* out)
{
    ZVL_REQUIRE(kPolygonFunction, out != nullptr);
    if (in.empty())
    {
        return;
    }
    out->resize(in.size());
    MovePoints(anchor, in.data(), in.size(), out->data());
}

} // namespace Zvl
