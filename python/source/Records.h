#pragma once

/** @file
 *  Plain records of the library are named tuples in Python, and its enumerations are `IntEnum`s; both stand in
 *  `zdkvision/_records.py`. Where Python has None, the library has the null of the field's type. */

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <pybind11/pybind11.h>
#include <pybind11/stl.h>

#include <cmath>
#include <optional>
#include <tuple>
#include <utility>

namespace ZdkPython
{

namespace py = pybind11;

/** The class of @p name among the records. */
inline py::object RecordClass(const char* name)
{
    return py::module_::import("zdkvision._records").attr(name);
}

/** A named tuple of @p name. */
template <typename... Fields>
py::object Record(const char* name, Fields&&... fields)
{
    return RecordClass(name)(std::forward<Fields>(fields)...);
}

/** A number, or None for null. */
inline py::object NumberOrNone(double value)
{
    return value == Zvl::GetNull<double>() ? py::object(py::none()) : py::object(py::float_(value));
}

inline double NumberOrNull(const std::optional<double>& value)
{
    return value.value_or(Zvl::GetNull<double>());
}

inline bool IsNull(const qPoint64f& point)
{
    return point.x == Zvl::GetNull<double>() && point.y == Zvl::GetNull<double>();
}

inline bool IsNull(const qPoint3d64f& point)
{
    return IsNull(qPoint64f{point.x, point.y}) && point.z == Zvl::GetNull<double>();
}

/** What a record is called in Python, and the pointers to its members in the order of its fields there. */
template <typename T>
struct RecordTraits;

} // namespace ZdkPython

// The macro keeps the table readable: a row per record.
#define ZDK_RECORD(TYPE, NAME, ...)                                                                                    \
    template <>                                                                                                        \
    struct ZdkPython::RecordTraits<TYPE>                                                                               \
    {                                                                                                                  \
        using Self = TYPE;                                                                                             \
        static constexpr const char* kName = NAME;                                                                     \
        static constexpr auto kFields = std::make_tuple(__VA_ARGS__);                                                  \
    };                                                                                                                 \
    template <>                                                                                                        \
    struct pybind11::detail::type_caster<TYPE> : ZdkPython::RecordCaster<TYPE>                                         \
    {                                                                                                                  \
        static constexpr auto name = pybind11::detail::const_name(NAME);                                               \
    };

namespace ZdkPython
{

/** @name Fields
 *  A number may be null; everything else is converted as an argument would be.
 *  @{ */

inline bool LoadField(py::handle source, double& field)
{
    if (source.is_none())
    {
        field = Zvl::GetNull<double>();
        return true;
    }
    field = PyFloat_AsDouble(source.ptr());
    if (field == -1.0 && PyErr_Occurred() != nullptr)
    {
        PyErr_Clear();
        return false;
    }
    return true;
}

inline py::object SaveField(double field)
{
    return NumberOrNone(field);
}

template <typename T>
bool LoadField(py::handle source, T& field);

template <typename T>
py::object SaveField(const T& field);

/** @} */

/** True when @p source may be read as a record of @p name: such a record, or a plain sequence; not another record. */
inline bool IsReadableAs(const char* name, py::handle source)
{
    if (PySequence_Check(source.ptr()) == 0 || py::isinstance<py::str>(source))
    {
        return false;
    }
    return !py::hasattr(source, "_fields") || py::isinstance(source, RecordClass(name));
}

template <typename T>
struct RecordCaster
{
    /** Points may be None, which is null in all fields; other records may not. */
    static constexpr bool kNullable = std::is_same_v<T, qPoint64f> || std::is_same_v<T, qPoint3d64f>;
    static constexpr std::size_t kCount = std::tuple_size_v<decltype(RecordTraits<T>::kFields)>;

    template <typename U>
    using cast_op_type = pybind11::detail::movable_cast_op_type<U>;

    operator T*() { return &value; }
    operator T&() { return value; }
    operator T&&() && { return std::move(value); }

    bool load(py::handle source, bool /*convert*/)
    {
        if (kNullable && source.is_none())
        {
            return LoadEach([](auto& field) { return LoadField(py::none(), field); });
        }
        if (!IsReadableAs(RecordTraits<T>::kName, source) || py::len_hint(source) != kCount)
        {
            return false;
        }
        const auto sequence = py::reinterpret_borrow<py::sequence>(source);
        std::size_t index = 0;
        return LoadEach([&](auto& field) { return LoadField(py::object(sequence[index++]), field); });
    }

    static py::handle cast(const T& source, py::return_value_policy /*policy*/, py::handle /*parent*/)
    {
        if constexpr (kNullable)
        {
            if (IsNull(source))
            {
                return py::none().release();
            }
        }
        return std::apply([&](auto... member)
                          { return Record(RecordTraits<T>::kName, SaveField(source.*member)...).release(); },
                          RecordTraits<T>::kFields);
    }

    static py::handle cast(const T* source, py::return_value_policy policy, py::handle parent)
    {
        return source == nullptr ? py::none().release() : cast(*source, policy, parent);
    }

private:
    template <typename Load>
    bool LoadEach(const Load& load)
    {
        return std::apply([&](auto... member) { return (load(value.*member) && ...); }, RecordTraits<T>::kFields);
    }

    T value{};
};

} // namespace ZdkPython

ZDK_RECORD(qPoint64f, "Point2", &Self::x, &Self::y)
ZDK_RECORD(qPoint3d64f, "Point3", &Self::x, &Self::y, &Self::z)
ZDK_RECORD(qPlane3d64f, "Plane", &Self::point, &Self::normal)
ZDK_RECORD(Zvl::RunLength<int>, "RunLength", &Self::start, &Self::length)
ZDK_RECORD(Zvl::RunLength<double>, "RunLength", &Self::start, &Self::length)
ZDK_RECORD(Zvl::Rect2d<int>, "Rect2d", &Self::x, &Self::y, &Self::width, &Self::height)
ZDK_RECORD(Zvl::Rect3d<int>, "Rect3d", &Self::x, &Self::y, &Self::width, &Self::height, &Self::z, &Self::depth)
ZDK_RECORD(Zvl::Region2d<double>, "Region2d", &Self::x, &Self::y, &Self::width, &Self::height, &Self::angle)
ZDK_RECORD(Zvl::Region3d<double>, "Region3d", &Self::x, &Self::y, &Self::width, &Self::height, &Self::angle, &Self::z,
           &Self::depth)
ZDK_RECORD(Zvl::AnnularSector2d<double>, "AnnularSector2d", &Self::innerRadius, &Self::outerRadius, &Self::startAngle,
           &Self::angleSpan, &Self::center)
ZDK_RECORD(Zvl::AnnularSector3d<double>, "AnnularSector3d", &Self::innerRadius, &Self::outerRadius, &Self::startAngle,
           &Self::angleSpan, &Self::z, &Self::depth, &Self::center)
ZDK_RECORD(Zvl::EllipticalSector2d<double>, "EllipticalSector2d", &Self::innerHeight, &Self::innerWidth,
           &Self::outerHeight, &Self::outerWidth, &Self::startAngle, &Self::angleSpan, &Self::rotation, &Self::center)
ZDK_RECORD(Zvl::EllipticalSector3d<double>, "EllipticalSector3d", &Self::innerHeight, &Self::innerWidth,
           &Self::outerHeight, &Self::outerWidth, &Self::startAngle, &Self::angleSpan, &Self::rotation, &Self::z,
           &Self::depth, &Self::center)
ZDK_RECORD(Zvl::Anchor, "Anchor", &Self::x, &Self::y, &Self::z, &Self::angle)
ZDK_RECORD(Zvl::SurfaceFillGapParams, "SurfaceFillGapParams", &Self::resolutionX, &Self::resolutionY,
           &Self::resolutionZ, &Self::maxGapX, &Self::maxGapY, &Self::maxSlopeX, &Self::maxSlopeY, &Self::fillHigh)

#undef ZDK_RECORD

namespace ZdkPython
{

template <typename T>
bool LoadField(py::handle source, T& field)
{
    py::detail::make_caster<T> caster;
    if (!caster.load(source, true))
    {
        return false;
    }
    field = py::detail::cast_op<T&>(caster);
    return true;
}

template <typename T>
py::object SaveField(const T& field)
{
    return py::cast(field);
}

/** Takes and gives enumerators of the class of the same name; a plain number is not taken. */
template <typename Enum>
struct EnumCaster
{
    template <typename U>
    using cast_op_type = pybind11::detail::movable_cast_op_type<U>;

    operator Enum*() { return &value; }
    operator Enum&() { return value; }
    operator Enum&&() && { return std::move(value); }

    bool load(py::handle source, bool /*convert*/)
    {
        if (!py::isinstance(source, RecordClass(py::detail::type_caster<Enum>::name.text)))
        {
            return false;
        }
        value = static_cast<Enum>(py::cast<int>(source));
        return true;
    }

    static py::handle cast(Enum source, py::return_value_policy /*policy*/, py::handle /*parent*/)
    {
        return RecordClass(py::detail::type_caster<Enum>::name.text)(static_cast<int>(source)).release();
    }

private:
    Enum value{};
};

} // namespace ZdkPython

#define ZDK_ENUM(TYPE, NAME)                                                                                           \
    template <>                                                                                                        \
    struct pybind11::detail::type_caster<TYPE> : ZdkPython::EnumCaster<TYPE>                                           \
    {                                                                                                                  \
        static constexpr auto name = pybind11::detail::const_name(NAME);                                               \
    };

ZDK_ENUM(Zvl::MaskType, "MaskType")
ZDK_ENUM(Zvl::MaskOperationType, "MaskOperationType")
ZDK_ENUM(Zvl::CircleType, "CircleType")
ZDK_ENUM(Zvl::ArithmeticOperator, "ArithmeticOperator")
ZDK_ENUM(Zvl::ArithmeticLogic, "ArithmeticLogic")
ZDK_ENUM(Zvl::ProfileFilter::PercentileType, "PercentileType")

#undef ZDK_ENUM
