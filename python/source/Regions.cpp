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
using Held = std::shared_ptr<Region>;

constexpr char kFrame[] =
    "\n`frame` is a Frame, or the Surface that it is taken from; without one the mapping is null.";

void AddBase(py::module_& module)
{
    using Zvl::ROI;
    py::class_<ROI, Held<ROI>>(
        module, "ROI",
        Documentation("Zvl::ROI", 0,
                      "\nA mask is a NumPy array over the cells of the present mask. The regions of "
                      "all threads take turns."))
        .def("apply_anchor", Locked(&ROI::ApplyAnchor), "anchor"_a, Documentation("Zvl::ROI::ApplyAnchor"))
        .def("deep_copy", Locked(&ROI::DeepCopy), Documentation("Zvl::ROI::DeepCopy"))
        .def_property_readonly("shape_type", &ROI::GetShapeType, Documentation("Zvl::ROI::GetShapeType"))
        .def_property_readonly("bounding_box", Locked(&ROI::GetBoundingBox), Documentation("Zvl::ROI::GetBoundingBox"))
        .def_property_readonly("bounding_region", Locked(&ROI::GetBoundingRegion),
                               Documentation("Zvl::ROI::GetBoundingRegion"))
        .def_property_readonly(
            "mask", [](ROI& self) { return ViewOrNone(Locked(&ROI::GetMask)(self)); },
            Documentation("Zvl::ROI::GetMask"))
        .def_property_readonly(
            "mask_valid", [](const ROI& self) { return Locked(&ROI::GetMaskValidity)(self) != 0; },
            Documentation("Zvl::ROI::GetMaskValidity"))
        .def_property_readonly(
            "bounding_box_valid", [](const ROI& self) { return Locked(&ROI::GetBoundingBoxValidity)(self) != 0; },
            Documentation("Zvl::ROI::GetBoundingBoxValidity"))
        .def("set_mask_pixel", Locked(&ROI::SetMaskPixel), "row"_a, "column"_a, "value"_a,
             Documentation("Zvl::ROI::SetMaskPixel"));
}

void AddSingle(py::module_& module)
{
    using Zvl::SingleROI;
    const auto about = [](const char* setter)
    { return Documentation(std::string("Zvl::SingleROI::") + setter, 0, "The caches are dropped in any case."); };
    py::class_<SingleROI, Zvl::ROI, Held<SingleROI>>(module, "SingleROI", Documentation("Zvl::SingleROI"))
        .def("set_frame", Locked(&SingleROI::SetFrame), "width"_a, "height"_a, about("SetFrame"))
        .def("set_frame_width", Locked(&SingleROI::SetFrameWidth), "width"_a, about("SetFrameWidth"))
        .def("set_frame_height", Locked(&SingleROI::SetFrameHeight), "height"_a, about("SetFrameHeight"))
        .def("set_scale", Locked(&SingleROI::SetScale), "value"_a, about("SetScale"))
        .def("set_offset", Locked(&SingleROI::SetOffset), "value"_a, about("SetOffset"));
}

Held<Zvl::PolygonROI> MakePolygon(const Numbers& points, const Frame& frame, bool closed)
{
    const Points2 in(points);
    return closed
               ? std::make_shared<Zvl::PolygonROI>(std::vector<Zvl::Point2d<double>>(in.Data(), in.Data() + in.Count()),
                                                   frame.width, frame.height, frame.scale, frame.offset, nullptr)
               : std::make_shared<Zvl::PolygonROI>(in.Data(), in.Count(), frame.width, frame.height, frame.scale,
                                                   frame.offset, nullptr);
}

py::array Vertices(const Zvl::PolygonROI& region)
{
    const auto points = Locked(&Zvl::PolygonROI::GetShape)(region);
    return ViewPoints(std::vector<qPoint64f>(points.begin(), points.end()));
}

/** A region of the one record that is its shape. */
template <typename Region, typename Shape>
Held<Region> FromShape(const Shape& shape, const Frame& frame)
{
    return std::make_shared<Region>(shape, frame.width, frame.height, frame.scale, frame.offset, nullptr);
}

Held<Zvl::RectangleROI> MakeRectangle(double x, double y, double width, double height, double angle, const Frame& frame)
{
    return FromShape<Zvl::RectangleROI>(Zvl::Region2d<double>{x, y, width, height, angle}, frame);
}

Held<Zvl::EllipseROI> MakeEllipse(const qPoint64f& center, double innerHeight, double innerWidth, double outerHeight,
                                  double outerWidth, double startAngle, double angleSpan, double rotation,
                                  const Frame& frame)
{
    const Zvl::EllipticalSector2d<double> sector{innerHeight, innerWidth, outerHeight, outerWidth,
                                                 startAngle,  angleSpan,  rotation,    center};
    return FromShape<Zvl::EllipseROI>(sector, frame);
}

Held<Zvl::CircleROI> MakeCircle(const qPoint64f& center, double innerRadius, double outerRadius, double startAngle,
                                double angleSpan, const Frame& frame)
{
    const Zvl::AnnularSector2d<double> sector{innerRadius, outerRadius, startAngle, angleSpan, center};
    return FromShape<Zvl::CircleROI>(sector, frame);
}

void AddShapes2d(py::module_& module)
{
    using Zvl::CircleROI;
    using Zvl::EllipseROI;
    using Zvl::PolygonROI;
    using Zvl::RectangleROI;
    const auto noFrame = "frame"_a = Frame();

    py::class_<PolygonROI, Zvl::SingleROI, Held<PolygonROI>>(module, "PolygonROI", Documentation("Zvl::PolygonROI"))
        .def(py::init(&MakePolygon), "points"_a, noFrame, "closed"_a = false,
             Documentation("Zvl::PolygonROI::PolygonROI", 2,
                           "Points that are `closed` already are taken as they are.\n"
                           "\n`frame` is a Frame, or the Surface that it is taken from."))
        .def_property_readonly("shape", &Vertices, Documentation("Zvl::PolygonROI::GetShape", 0, "It is a copy."));

    py::class_<RectangleROI, PolygonROI, Held<RectangleROI>>(module, "RectangleROI",
                                                             Documentation("Zvl::RectangleROI", 0, kFrame))
        .def(py::init(&FromShape<RectangleROI, Zvl::Region2d<double>>), "rectangle"_a, noFrame,
             "The region of a Region2d.")
        .def(py::init(&MakeRectangle), "x"_a, "y"_a, "width"_a, "height"_a, "angle"_a = 0.0, noFrame,
             "The rectangle whose corner of smallest coordinates is at `x` and `y` before it is turned about its "
             "centre.")
        .def_property_readonly("shape", Locked(&RectangleROI::GetShape), Documentation("Zvl::RectangleROI::GetShape"));

    py::class_<EllipseROI, Zvl::SingleROI, Held<EllipseROI>>(module, "EllipseROI",
                                                             Documentation("Zvl::EllipseROI", 0, kFrame))
        .def(py::init(&FromShape<EllipseROI, Zvl::EllipticalSector2d<double>>), "ellipse"_a, noFrame,
             "The region of an EllipticalSector2d.")
        .def(py::init(&MakeEllipse), "center"_a, "inner_height"_a, "inner_width"_a, "outer_height"_a, "outer_width"_a,
             "start_angle"_a = 0.0, "angle_span"_a = 360.0, "rotation"_a = 0.0, noFrame, "The sector of these sizes.")
        .def_property_readonly("shape", Locked(&EllipseROI::GetShape), Documentation("Zvl::EllipseROI::GetShape"));

    py::class_<CircleROI, EllipseROI, Held<CircleROI>>(module, "CircleROI", Documentation("Zvl::CircleROI", 0, kFrame))
        .def(py::init(&FromShape<CircleROI, Zvl::AnnularSector2d<double>>), "annulus"_a, noFrame,
             "The region of an AnnularSector2d.")
        .def(py::init(&MakeCircle), "center"_a, "inner_radius"_a, "outer_radius"_a, "start_angle"_a = 0.0,
             "angle_span"_a = 360.0, noFrame, "The sector of these sizes.")
        .def_property_readonly("shape", Locked(&CircleROI::GetShape), Documentation("Zvl::CircleROI::GetShape"));
}

Held<Zvl::IntensityROI> MakeIntensity(const Zvl::Surface& surface, std::uint8_t minimum, std::uint8_t maximum,
                                      const Frame& frame)
{
    return std::make_shared<Zvl::IntensityROI>(surface, frame.width, frame.height, frame.scale, frame.offset, minimum,
                                               maximum, nullptr);
}

void AddDataRegions(py::module_& module)
{
    using Zvl::IntensityROI;
    using Zvl::SurfaceROI;
    py::class_<SurfaceROI, Zvl::SingleROI, Held<SurfaceROI>>(module, "SurfaceROI", Documentation("Zvl::SurfaceROI"))
        .def(py::init(&FromShape<SurfaceROI, Zvl::Surface>), "surface"_a, "frame"_a,
             "The cells where `surface` has a height, in the frame of another surface.")
        .def_property_readonly("shape", Locked(&SurfaceROI::GetShape),
                               Documentation("Zvl::SurfaceROI::GetShape", 0, "It shares the layers."));

    py::class_<IntensityROI, SurfaceROI, Held<IntensityROI>>(module, "IntensityROI", Documentation("Zvl::IntensityROI"))
        .def(py::init(&MakeIntensity), "surface"_a, "minimum"_a, "maximum"_a, "frame"_a,
             "The cells where `surface` has a height and an intensity in a range, in the frame of another surface.");
}

std::vector<Held<Zvl::ROI>> Members(const Zvl::ComposedROI& composition)
{
    return WithRegions([&] { return std::vector<Held<Zvl::ROI>>(composition.Begin(), composition.End()); });
}

void AddComposition(py::module_& module)
{
    using Zvl::ComposedROI;
    py::class_<ComposedROI, Zvl::ROI, Held<ComposedROI>>(module, "ComposedROI", Documentation("Zvl::ComposedROI"))
        .def(py::init<>(), "No members.")
        .def("add", Locked(&ComposedROI::Add), "roi"_a, Documentation("Zvl::ComposedROI::Add"))
        .def("__len__", Locked(&ComposedROI::GetRoiCount), "The number of members.")
        .def(
            "__iter__", [](const ComposedROI& self) { return py::iter(py::cast(Members(self))); },
            "The members at this moment.")
        .def("get_sub_bounding_box", Locked(&ComposedROI::GetSubBoundingBox), "index"_a,
             Documentation("Zvl::ComposedROI::GetSubBoundingBox"))
        .def(
            "get_sub_mask",
            [](const ComposedROI& self, std::uint64_t index)
            { return ViewOrNone(Locked(&ComposedROI::GetSubMask)(self, index)); },
            "index"_a, Documentation("Zvl::ComposedROI::GetSubMask"));
}

} // namespace

void AddRegions(py::module_& module)
{
    AddBase(module);
    AddSingle(module);
    AddShapes2d(module);
    AddDataRegions(module);
    AddComposition(module);
}

} // namespace ZdkPython
