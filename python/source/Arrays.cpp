#include "Arrays.h"

#include "Documentation.h"
#include "Module.h"

#include <string>

namespace ZdkPython
{

namespace
{

constexpr char kCapsuleName[] = "zdkvision.object";

/** An element type of the library, and what it is in NumPy: scalars, or rows of them. */
struct ElementType
{
    qType type;
    py::dtype scalar;
    py::ssize_t scalars;
};

std::vector<ElementType> ElementTypes()
{
    return {
        {xxq8u_type, py::dtype::of<std::uint8_t>(), 1},   {xxq16u_type, py::dtype::of<std::uint16_t>(), 1},
        {xxq16s_type, py::dtype::of<std::int16_t>(), 1},  {xxq32s_type, py::dtype::of<std::int32_t>(), 1},
        {xxq64s_type, py::dtype::of<std::int64_t>(), 1},  {xxq64f_type, py::dtype::of<double>(), 1},
        {xxqBool_type, py::dtype::of<std::int32_t>(), 1}, {xxqPoint32s_type, py::dtype::of<std::int32_t>(), 2},
        {xxqPoint64f_type, py::dtype::of<double>(), 2},   {xxqPoint3d32s_type, py::dtype::of<std::int32_t>(), 3},
        {xxqPoint3d64f_type, py::dtype::of<double>(), 3},
    };
}

bool AreEqual(const py::dtype& a, const py::dtype& b)
{
    return py::detail::npy_api::get().PyArray_EquivTypes_(a.ptr(), b.ptr());
}

ElementType ElementOf(qType type)
{
    for (ElementType& element : ElementTypes())
    {
        if (element.type == type)
        {
            return element;
        }
    }
    throw py::type_error("the array holds objects, which NumPy cannot show");
}

/** The plain element type of @p scalar; truth values are bytes. Null when there is none. */
qType TypeOf(const py::dtype& scalar)
{
    if (AreEqual(scalar, py::dtype::of<bool>()))
    {
        return xxq8u_type;
    }
    for (const ElementType& element : ElementTypes())
    {
        if (element.scalars == 1 && AreEqual(element.scalar, scalar))
        {
            return element.type;
        }
    }
    return nullptr;
}

bool IsOf(void* object, qType objectClass)
{
    return xqCastClass_ObjectIs(object, objectClass);
}

/** The lengths of an array or list, and where its cells are. */
struct Extent
{
    std::vector<py::ssize_t> shape;
    qType type;
    void* data;
};

Extent ExtentOf(void* object)
{
    if (IsOf(object, xxqArray2_type))
    {
        const std::size_t rows = qArray2_Length(object, 0);
        const std::size_t columns = qArray2_Length(object, 1);
        return {{static_cast<py::ssize_t>(rows), static_cast<py::ssize_t>(columns)},
                qArray2_Type(object),
                rows == 0 || columns == 0 ? nullptr : qArray2_At(object, 0, 0)};
    }
    if (IsOf(object, xxqArray1_type))
    {
        return {{static_cast<py::ssize_t>(qArray1_Count(object))}, qArray1_Type(object), qArray1_Data(object)};
    }
    return {{static_cast<py::ssize_t>(qArrayList_Count(object))}, qArrayList_Type(object), qArrayList_Data(object)};
}

/** The object behind @p array, when it is an array of the library as a whole that may be written; else null. */
Zo::Object<void*> ObjectBehind(const py::array& array)
{
    if (!array.writeable() || (array.flags() & py::array::c_style) == 0)
    {
        return {};
    }
    py::object base = array.base();
    while (base && py::isinstance<py::array>(base))
    {
        base = py::reinterpret_borrow<py::array>(base).base();
    }
    if (!base || PyCapsule_IsValid(base.ptr(), kCapsuleName) == 0)
    {
        return {};
    }
    const auto& object = *static_cast<Zo::Object<void*>*>(PyCapsule_GetPointer(base.ptr(), kCapsuleName));
    if (!IsOf(object, xxqArray1_type) && !IsOf(object, xxqArray2_type))
    {
        return {};
    }
    const Extent extent = ExtentOf(object);
    const bool whole = extent.data == array.data() && extent.type == TypeOf(array.dtype()) &&
                       std::vector<py::ssize_t>(array.shape(), array.shape() + array.ndim()) == extent.shape;
    return whole ? object : Zo::Object<void*>();
}

/** Copies all cells, whatever strides and byte order either side has. */
void Assign(const py::array& destination, const py::array& source)
{
    destination[py::ellipsis()] = source;
}

py::array Bytes(const py::array& array)
{
    return AreEqual(array.dtype(), py::dtype::of<bool>()) ? py::array(array.attr("view")("uint8")) : array;
}

template <typename Point>
py::array ViewVector(std::vector<Point> points)
{
    const auto count = static_cast<py::ssize_t>(points.size());
    const Point* items = points.data(); // moving the vector leaves them where they are
    return py::array(py::dtype::of<double>(), {count, static_cast<py::ssize_t>(sizeof(Point) / sizeof(double))}, items,
                     Hold(std::move(points)));
}

py::array Empty(const py::object& shape, const py::object& type)
{
    const auto lengths = py::isinstance<py::int_>(shape) ? std::vector<py::ssize_t>{shape.cast<py::ssize_t>()}
                                                         : shape.cast<std::vector<py::ssize_t>>();
    return View(NewArray(py::dtype::from_args(type), lengths));
}

py::array Copy(const py::array& array)
{
    py::array copy = View(NewArray(array.dtype(), {array.shape(), array.shape() + array.ndim()}));
    Assign(copy, Bytes(array));
    return copy;
}

} // namespace

py::array View(const Zo::Object<void*>& object)
{
    Extent extent = ExtentOf(object);
    const ElementType element = ElementOf(extent.type);
    if (element.scalars > 1)
    {
        extent.shape.push_back(element.scalars);
    }
    return py::array(element.scalar, extent.shape, extent.data, Hold(object, kCapsuleName));
}

py::object ViewOrNone(const Zo::Object<void*>& object)
{
    return object.Get() == nullptr ? py::object(py::none()) : py::object(View(object));
}

Zo::Object<void*> NewArray(const py::dtype& type, const std::vector<py::ssize_t>& shape)
{
    const qType elements = TypeOf(type);
    if (elements == nullptr)
    {
        throw py::type_error("no array of the library has cells of " + NameOf(type));
    }
    if (shape.empty() || shape.size() > 2 || shape.front() < 0 || shape.back() < 0)
    {
        throw py::value_error("an array has one or two lengths, neither of them negative");
    }
    Zo::Object<void*> made;
    Zo::Test(shape.size() == 1 ? qArray1_Construct(made.Slot(), elements, static_cast<std::size_t>(shape[0]), nullptr)
                               : qArray2_Construct(made.Slot(), elements, static_cast<std::size_t>(shape[0]),
                                                   static_cast<std::size_t>(shape[1]), nullptr));
    return made;
}

Zo::Object<void*> Take(const py::array& array, qType type, py::ssize_t dimensions, const char* what)
{
    const qType found = TypeOf(array.dtype());
    if (found == nullptr || (type != nullptr && found != type))
    {
        const std::string needed = type == nullptr ? "numbers" : NameOf(ElementOf(type).scalar);
        throw py::type_error(std::string(what) + ": " + needed + " wanted, not " + NameOf(array.dtype()));
    }
    if (dimensions == 0 ? array.ndim() != 1 && array.ndim() != 2 : array.ndim() != dimensions)
    {
        throw py::value_error(std::string(what) + ": an array of " +
                              (dimensions == 0 ? "1 or 2" : std::to_string(dimensions)) + " dimensions wanted, not " +
                              std::to_string(array.ndim()));
    }
    Zo::Object<void*> object = ObjectBehind(array);
    if (object.Get() == nullptr)
    {
        object = NewArray(array.dtype(), {array.shape(), array.shape() + array.ndim()});
        Assign(View(object), Bytes(array));
    }
    return object;
}

Zo::Object<void*> TakeOptional(const std::optional<py::array>& array, qType type, py::ssize_t dimensions,
                               const char* what)
{
    return array ? Take(*array, type, dimensions, what) : Zo::Object<void*>();
}

EditedMask::EditedMask(const py::array& mask) : mask(mask)
{
    if (!mask.writeable())
    {
        throw py::value_error("mask: the call changes it, but it is read-only");
    }
    cells = TakeMask(mask);
}

void EditedMask::Finish()
{
    if (ObjectBehind(mask).Get() == nullptr)
    {
        Assign(Bytes(mask), View(cells));
    }
}

py::array ViewPoints(std::vector<qPoint64f> points)
{
    return ViewVector(std::move(points));
}

py::array ViewPoints(std::vector<qPoint3d64f> points)
{
    return ViewVector(std::move(points));
}

py::array_t<bool> Flags(const int* flags, std::size_t count)
{
    py::array_t<bool> result(static_cast<py::ssize_t>(count));
    bool* values = result.mutable_data();
    for (std::size_t index = 0; index < count; ++index)
    {
        values[index] = flags[index] != 0;
    }
    return result;
}

Numbers Rows(const Numbers& array, py::ssize_t columns)
{
    if (array.size() != 0 && (array.ndim() != 2 || array.shape(1) != columns))
    {
        throw py::value_error("points are rows of " + std::to_string(columns) + " numbers");
    }
    return array;
}

void AddArrays(py::module_& module)
{
    module.def(
        "empty", &Empty, py::arg("shape"), py::arg("dtype"),
        "A NumPy array, contents undefined, whose cells lie in the library: it can be used on both sides without a "
        "copy.\n\nIts length or its two lengths are `shape`; `dtype` is uint8 (or bool, which is uint8 as well), "
        "uint16, int16, int32, int64 or float64.");
    module.def("array", &Copy, py::arg("values"),
               "A copy of a NumPy array whose cells lie in the library, see `empty`.");
    module.def(
        "worker_count", [] { return qThreadPool_Count(qThreadPool_Default()); },
        Documentation("qThreadPool_Count", 0, "This is the pool of all calls."));
    module.def(
        "set_worker_count", [](std::size_t count) { Zo::Test(qThreadPool_SetCount(qThreadPool_Default(), count)); },
        py::arg("count"), Documentation("qThreadPool_SetCount"));
}

} // namespace ZdkPython
