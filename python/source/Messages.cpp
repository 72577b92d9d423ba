#include "Messages.h"

#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

namespace ZdkPython
{

namespace
{

SurfaceMessage MakeMessage(std::size_t rows, std::size_t columns, std::size_t itemCount)
{
    SurfaceMessage message;
    Zo::Test(ZvSurfaceMsg_Construct(message.handle.Slot(), rows, columns, itemCount, nullptr));
    return message;
}

/** The cells, which all items have in common. They are held by themselves, and outlive the message. */
py::object ViewHeights(const SurfaceMessage& message)
{
    void* cells = ZvSurfaceMsg_PointsArray(message.handle, 0);
    if (cells == nullptr)
    {
        return py::none();
    }
    Zo::Test(qObject_Share(cells));
    return View(Zo::Object<void*>(cells));
}

void SetScale(const SurfaceMessage& message, const qPoint3d64f& scale)
{
    Zo::Test(ZvSurfaceMsg_SetScale(message.handle, &scale));
}

void SetOffset(const SurfaceMessage& message, int index, const qPoint3d64f& offset)
{
    Zo::Test(ZvSurfaceMsg_SetOffset(message.handle, index, &offset));
}

qPoint3d64f OffsetOf(const SurfaceMessage& message, int index)
{
    return Zvl::GetSurfaceItemOffset(message.handle, index);
}

} // namespace

void AddMessages(py::module_& module)
{
    py::class_<SurfaceMessage>(module, "SurfaceMessage",
                               "What a sensor pipeline delivers: one grid of 16-bit heights, its scale, and one world "
                               "offset per surface item; all items share the grid.")
        .def(py::init(&MakeMessage), py::arg("rows"), py::arg("columns"), py::arg("item_count") = 1,
             Documentation("ZvSurfaceMsg_Construct"))
        .def_property_readonly(
            "rows", [](const SurfaceMessage& self) { return ZvSurfaceMsg_Length(self.handle); },
            Documentation("ZvSurfaceMsg_Length"))
        .def_property_readonly(
            "columns", [](const SurfaceMessage& self) { return ZvSurfaceMsg_Width(self.handle); },
            Documentation("ZvSurfaceMsg_Width"))
        .def_property(
            "scale", [](const SurfaceMessage& self) { return ZvSurfaceMsg_Scale(self.handle); }, &SetScale,
            Documentation("ZvSurfaceMsg_Scale"))
        .def("get_offset", &OffsetOf, py::arg("index"), Documentation("Zvl::GetSurfaceItemOffset"))
        .def("set_offset", &SetOffset, py::arg("index"), py::arg("offset"), Documentation("ZvSurfaceMsg_SetOffset"))
        .def_property_readonly("heights", &ViewHeights,
                               Documentation("ZvSurfaceMsg_PointsArray", 0,
                                             "It is a NumPy array over the cells themselves, and holds them."));
}

} // namespace ZdkPython
