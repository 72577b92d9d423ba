#include "Documentation.h"
#include "Module.h"
#include "RegionLock.h"
#include "Surfaces.h"

namespace ZdkPython
{

namespace
{

using namespace py::literals;

template <typename Region>
using HeldProfile = std::shared_ptr<Region>;

constexpr char kProfileFrame[] = "\n`frame` is a ProfileFrame, or the Profile that it is taken from, whose `width` is "
                                 "the number of items; of pairs, "
                                 "give it as a ProfileFrame. `uniform` is false for pairs.";

/** A copy of a mask: the region makes room for the next mask in the same array, under whoever looks at it. */
py::array CopyMask(const Zo::Object<void*>& mask)
{
    return py::array(View(mask).attr("copy")());
}

/** Copies under the lock, since the mask is written in place. */
template <typename Mask>
py::array CopyLocked(const Mask& mask)
{
    const Zo::Object<void*> copy = WithRegions(
        [&]
        {
            Zo::Object<void*> made;
            Zo::Test(xqObject_CloneImpl(made.Slot(), mask(), nullptr, nullptr, 0));
            return made;
        });
    return CopyMask(copy);
}

void ApplyRegion(Zvl::RoiProfile& region, const Zvl::Profile& profile)
{
    WithRegions([&, copy = profile] { region.ApplyRoi(copy); });
}

void AddProfileBase(py::module_& module)
{
    using Zvl::RoiProfile;
    py::class_<RoiProfile, HeldProfile<RoiProfile>>(
        module, "RoiProfile",
        Documentation(
            "Zvl::RoiProfile", 0,
            "\nA mask is given as a copy: the region rebuilds its own in place. The regions of all threads take "
            "turns."))
        .def("apply_anchor", Locked(&RoiProfile::ApplyAnchor), "anchor"_a,
             Documentation("Zvl::RoiProfile::ApplyAnchor"))
        .def("apply_roi", &ApplyRegion, "profile"_a, Documentation("Zvl::RoiProfile::ApplyRoi"))
        .def_property_readonly("shape_type", &RoiProfile::GetShapeType, Documentation("Zvl::RoiProfile::GetShapeType"))
        .def_property_readonly("bounding_segment", Locked(&RoiProfile::GetBoundingSegment),
                               Documentation("Zvl::RoiProfile::GetBoundingSegment"))
        .def_property_readonly(
            "mask",
            [](RoiProfile& self)
            {
                return CopyLocked([&]() -> void* { return self.GetMask(); });
            },
            Documentation("Zvl::RoiProfile::GetMask", 0, "It is a copy."))
        .def_property_readonly(
            "bounding_segment_valid",
            [](RoiProfile& self) { return Locked(&RoiProfile::IsBoundingSegmentValid)(self) != 0; },
            Documentation("Zvl::RoiProfile::IsBoundingSegmentValid"))
        .def_property_readonly(
            "mask_valid", [](RoiProfile& self) { return Locked(&RoiProfile::IsMaskValid)(self) != 0; },
            Documentation("Zvl::RoiProfile::IsMaskValid"));
    py::class_<Zvl::SingleRoiProfile, RoiProfile, HeldProfile<Zvl::SingleRoiProfile>>(
        module, "SingleRoiProfile", Documentation("Zvl::SingleRoiProfile"));
}

template <typename Region, typename Shape>
HeldProfile<Region> FromProfileShape(const Shape& shape, const ProfileFrame& frame, bool uniform)
{
    return std::make_shared<Region>(shape, frame.width, frame.scale, frame.offset, uniform ? 1 : 0, nullptr);
}

/** Takes the points as they are, or closes them. */
HeldProfile<Zvl::PolygonRoiProfile> MakeProfilePolygon(const Numbers& points, const ProfileFrame& frame, bool uniform,
                                                       bool closed)
{
    const Points2 in(points);
    std::vector<Zvl::Point2d<double>> vertices(in.Data(), in.Data() + in.Count());
    if (!closed && !vertices.empty())
    {
        vertices.push_back(vertices.front());
    }
    return FromProfileShape<Zvl::PolygonRoiProfile>(vertices, frame, uniform);
}

py::array ProfileVertices(const Zvl::PolygonRoiProfile& region)
{
    const auto points = Locked(&Zvl::PolygonRoiProfile::GetShape)(region);
    return ViewPoints(std::vector<qPoint64f>(points.begin(), points.end()));
}

/** A region of the one record that is its shape, and nothing more. */
template <typename Region, typename Base, typename Shape>
void AddProfileShape(py::module_& module, const char* name, const char* argument, const char* cppName)
{
    py::class_<Region, Base, HeldProfile<Region>>(module, name, Documentation(cppName, 0, kProfileFrame))
        .def(py::init(&FromProfileShape<Region, Shape>), py::arg(argument), "frame"_a, "uniform"_a = true,
             "The region of a shape in a frame.")
        .def_property_readonly("shape", Locked(&Region::GetShape), Documentation(std::string(cppName) + "::GetShape"));
}

std::vector<HeldProfile<Zvl::RoiProfile>> ProfileMembers(const Zvl::ComposedRoiProfile& composition)
{
    return WithRegions([&]
                       { return std::vector<HeldProfile<Zvl::RoiProfile>>(composition.Begin(), composition.End()); });
}

HeldProfile<Zvl::ComposedRoiProfile> MakeProfileComposition(bool uniform)
{
    return std::make_shared<Zvl::ComposedRoiProfile>(uniform ? 1 : 0, nullptr);
}

void AddProfileComposition(py::module_& module)
{
    using Zvl::ComposedRoiProfile;
    py::class_<ComposedRoiProfile, Zvl::RoiProfile, HeldProfile<ComposedRoiProfile>>(
        module, "ComposedRoiProfile", Documentation("Zvl::ComposedRoiProfile"))
        .def(py::init(&MakeProfileComposition), "uniform"_a = true,
             Documentation("Zvl::ComposedRoiProfile::ComposedRoiProfile"))
        .def("add", Locked(&ComposedRoiProfile::Add), "roi"_a, Documentation("Zvl::ComposedRoiProfile::Add"))
        .def("__len__", Locked(&ComposedRoiProfile::GetRoiCount), "The number of members.")
        .def(
            "__iter__", [](const ComposedRoiProfile& self) { return py::iter(py::cast(ProfileMembers(self))); },
            "The members at this moment.")
        .def("get_sub_bounding_segment", Locked(&ComposedRoiProfile::GetSubBoundingSegment), "index"_a,
             Documentation("Zvl::ComposedRoiProfile::GetSubBoundingSegment"))
        .def(
            "get_sub_mask",
            [](const ComposedRoiProfile& self, std::uint64_t index)
            {
                return CopyLocked([&]() -> void* { return self.GetSubMask(index); });
            },
            "index"_a, Documentation("Zvl::ComposedRoiProfile::GetSubMask", 0, "It is a copy."));
}

} // namespace

void AddProfileRegions(py::module_& module)
{
    using Zvl::PolygonRoiProfile;
    AddProfileBase(module);
    py::class_<PolygonRoiProfile, Zvl::SingleRoiProfile, HeldProfile<PolygonRoiProfile>>(
        module, "PolygonRoiProfile", Documentation("Zvl::PolygonRoiProfile", 0, kProfileFrame))
        .def(py::init(&MakeProfilePolygon), "points"_a, "frame"_a, "uniform"_a = true, "closed"_a = false,
             "The polygon of these vertices; they are closed by repetition of the first, unless they are `closed` "
             "already.")
        .def_property_readonly("shape", &ProfileVertices,
                               Documentation("Zvl::PolygonRoiProfile::GetShape", 0, "It is a copy."));
    AddProfileShape<Zvl::RectangleRoiProfile, PolygonRoiProfile, Zvl::Region2d<double>>(
        module, "RectangleRoiProfile", "rectangle", "Zvl::RectangleRoiProfile");
    AddProfileShape<Zvl::EllipseRoiProfile, Zvl::SingleRoiProfile, Zvl::EllipticalSector2d<double>>(
        module, "EllipseRoiProfile", "ellipse", "Zvl::EllipseRoiProfile");
    AddProfileShape<Zvl::CircleRoiProfile, Zvl::EllipseRoiProfile, Zvl::AnnularSector2d<double>>(
        module, "CircleRoiProfile", "annulus", "Zvl::CircleRoiProfile");
    AddProfileComposition(module);
}

} // namespace ZdkPython
