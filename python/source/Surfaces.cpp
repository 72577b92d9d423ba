#include "Surfaces.h"

#include "Documentation.h"
#include "Module.h"

namespace ZdkPython
{

namespace
{

using OptionalArray = std::optional<py::array>;
using OptionalArrays = std::vector<OptionalArray>;

/** Puts @p layer at @p index; a null one is no reason to make room. */
template <typename Data>
void SetLayer(Data& data, std::size_t index, Zo::Object<void*> layer)
{
    if (data.layers.size() <= index && layer.Get() != nullptr)
    {
        data.layers.resize(index + 1);
    }
    if (index < data.layers.size())
    {
        data.layers[index] = std::move(layer);
    }
}

template <typename Data>
py::object ViewLayer(const Data& data, std::size_t index)
{
    return index < data.layers.size() ? ViewOrNone(data.layers[index]) : py::object(py::none());
}

template <typename Data>
py::list ViewLayers(const Data& data)
{
    py::list layers;
    for (const Zo::Object<void*>& layer : data.layers)
    {
        layers.append(ViewOrNone(layer));
    }
    return layers;
}

template <typename Data>
void SetLayers(Data& data, const OptionalArrays& arrays)
{
    std::vector<Zo::Object<void*>> layers;
    layers.reserve(arrays.size());
    for (const OptionalArray& array : arrays)
    {
        layers.push_back(TakeOptional(array, nullptr, 0, "layer"));
    }
    data.layers = std::move(layers);
}

/** A copy with layers of its own. */
template <typename Data>
Data DeepCopy(const Data& data)
{
    return WithoutInterpreter(
        [source = data]
        {
            Data copy = source;
            for (std::size_t index = 0; index < source.layers.size(); ++index)
            {
                Zo::Test(xqObject_CloneImpl(copy.layers[index].Slot(), source.layers[index], nullptr, nullptr, 0));
            }
            return copy;
        });
}

void SetHeights(Zvl::Surface& surface, const OptionalArray& heights)
{
    SetLayer(surface, 0, TakeOptional(heights, xxq16s_type, 2, "heights"));
}

void SetIntensities(Zvl::Surface& surface, const OptionalArray& intensities)
{
    SetLayer(surface, 1, TakeOptional(intensities, xxq8u_type, 2, "intensities"));
}

Zvl::Surface MakeSurface(const OptionalArray& heights, const OptionalArray& intensities, const qPoint3d64f& scale,
                         const qPoint3d64f& offset)
{
    Zvl::Surface surface;
    surface.scale = scale;
    surface.offset = offset;
    SetHeights(surface, heights);
    SetIntensities(surface, intensities);
    return surface;
}

/** Heights as one line: pairs of counts, a row each, follow each other. */
Zo::Object<void*> TakeLine(const OptionalArray& heights)
{
    if (heights && heights->ndim() == 2 && heights->shape(1) == 2)
    {
        return Take(py::array(heights->attr("reshape")(-1)), xxq16s_type, 1, "heights");
    }
    return TakeOptional(heights, xxq16s_type, 1, "heights");
}

void SetLine(Zvl::Profile& profile, const OptionalArray& heights)
{
    SetLayer(profile, 0, TakeLine(heights));
}

Zvl::Profile MakeProfile(const OptionalArray& heights, const qPoint64f& scale, const qPoint64f& offset)
{
    Zvl::Profile profile(offset, scale);
    SetLine(profile, heights);
    return profile;
}

std::size_t AddLayer(Zvl::Profile& profile, const py::array& values)
{
    return profile.AddLayer(Take(values, nullptr, 1, "layer"));
}

constexpr char kLayersEnding[] =
    "\nThe attributes `heights` and `intensities`, and the list `layers`, are NumPy arrays over the cells themselves, "
    "or "
    "None. An array that is assigned is shared when the library made it (see `empty`), as a whole and writeable; any "
    "other is copied.";

} // namespace

Frame FrameOf(const Zvl::Surface& surface)
{
    Zvl::SurfaceInputData data;
    Zvl::RetrieveSurfaceInputData(surface, &data);
    return {data.width, data.height, {data.scale.x, data.scale.y}, {data.offset.x, data.offset.y}};
}

ProfileFrame FrameOf(const Zvl::Profile& profile)
{
    const bool present = !profile.layers.empty() && profile.layers.front().Get() != nullptr;
    return {present ? qArray1_Count(profile.layers.front()) : 0, profile.scale, profile.offset};
}

void AddSurfaces(py::module_& module)
{
    const qPoint3d64f null3 = Zvl::Surface().scale;
    const qPoint64f null2 = Zvl::Profile().scale;

    py::class_<Zvl::Surface>(module, "Surface", Documentation("Zvl::Surface", 0, kLayersEnding))
        .def(py::init(&MakeSurface), py::arg("heights") = py::none(), py::arg("intensities") = py::none(),
             py::arg("scale") = null3, py::arg("offset") = null3,
             "A surface of the given layers and mapping; what is left out is null.")
        .def_readwrite("scale", &Zvl::Surface::scale, Documentation("Zvl::Surface::scale"))
        .def_readwrite("offset", &Zvl::Surface::offset, Documentation("Zvl::Surface::offset"))
        .def_property(
            "heights", [](const Zvl::Surface& self) { return ViewLayer(self, 0); }, &SetHeights,
            "Layer 0: int16 counts, -32768 missing.")
        .def_property(
            "intensities", [](const Zvl::Surface& self) { return ViewLayer(self, 1); }, &SetIntensities,
            "Layer 1: uint8.")
        .def_property("layers", &ViewLayers<Zvl::Surface>, &SetLayers<Zvl::Surface>,
                      Documentation("Zvl::Surface::layers"))
        .def(
            "__copy__", [](const Zvl::Surface& self) { return self; }, "A surface that shares the layers.")
        .def(
            "__deepcopy__", [](const Zvl::Surface& self, const py::dict&) { return DeepCopy(self); }, py::arg("memo"),
            "A surface with layers of its own.");

    py::class_<Zvl::Profile>(module, "Profile", Documentation("Zvl::Profile", 0, kLayersEnding))
        .def(py::init(&MakeProfile), py::arg("heights") = py::none(), py::arg("scale") = null2,
             py::arg("offset") = null2,
             "A line scan of the given heights and mapping; what is left out is null. Pairs of counts, x and height, "
             "may "
             "be rows of two.")
        .def_readwrite("scale", &Zvl::Profile::scale, Documentation("Zvl::Profile::scale"))
        .def_readwrite("offset", &Zvl::Profile::offset, Documentation("Zvl::Profile::offset"))
        .def_property(
            "heights", [](const Zvl::Profile& self) { return ViewLayer(self, 0); }, &SetLine,
            "Layer 0: int16 counts, -32768 missing.")
        .def_property("layers", &ViewLayers<Zvl::Profile>, &SetLayers<Zvl::Profile>,
                      Documentation("Zvl::Profile::layers"))
        .def("add_layer", &AddLayer, py::arg("layer"), Documentation("Zvl::Profile::AddLayer", 1))
        .def(
            "__copy__", [](const Zvl::Profile& self) { return self; }, "A profile that shares the layers.")
        .def(
            "__deepcopy__", [](const Zvl::Profile& self, const py::dict&) { return DeepCopy(self); }, py::arg("memo"),
            "A profile with layers of its own.");
}

} // namespace ZdkPython
