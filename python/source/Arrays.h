#pragma once

/** @file
 *  Cells between the library's arrays and NumPy.
 *
 *  From the library to NumPy nothing is copied: a NumPy array looks at the cells, and its base holds one count of the
 *  object, so that either side may go first.
 *
 *  From NumPy to the library nothing is copied for an array that the library made (by `empty()`, or as a result), as a
 *  whole and writeable: its base tells the object. The cells of an array of the platform always lie in memory from its own
 *  allocator, with a word of its own ahead of them; memory that NumPy made cannot be lent, and is copied once. */

#include <ZdkVisionLib/platform/ZoApi.h>

#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>

#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace ZdkPython
{

namespace py = pybind11;

/** In one piece, row after row, and aligned: what a plain pointer can walk over. */
constexpr int kPlain =
    static_cast<int>(py::array::c_style) | static_cast<int>(py::detail::npy_api::constants::NPY_ARRAY_ALIGNED_);

/** Numbers as the fits take them: converted, and copied unless they are so already. */
using Numbers = py::array_t<double, kPlain | static_cast<int>(py::array::forcecast)>;

/** The name of a type of cells, for people. */
inline std::string NameOf(const py::dtype& type)
{
    return py::str(static_cast<const py::object&>(type));
}

/** A capsule of @p name that holds @p value: the base of an array over memory of that value. */
template <typename T>
py::capsule Hold(T value, const char* name = nullptr)
{
    auto held = std::make_unique<T>(std::move(value));
    py::capsule capsule(held.get(), name,
                        [](PyObject* self)
                        { delete static_cast<T*>(PyCapsule_GetPointer(self, PyCapsule_GetName(self))); });
    static_cast<void>(held.release()); // the capsule's from now on
    return capsule;
}

/** A NumPy array over the cells of a one- or two-dimensional array, or over the items of a list; points become rows. */
py::array View(const Zo::Object<void*>& object);

/** View(), or None for a null handle. */
py::object ViewOrNone(const Zo::Object<void*>& object);

/** A new array of the library of @p shape, one or two lengths, contents undefined. */
Zo::Object<void*> NewArray(const py::dtype& type, const std::vector<py::ssize_t>& shape);

/** The library's array of the cells of @p array: the very cells, where that is possible, or else a copy.
 *  @param type what the cells must be, or null for any plain type; truth values pass for bytes
 *  @param dimensions 1, 2, or 0 for either
 *  @param what tells an unfit array's part in the call */
Zo::Object<void*> Take(const py::array& array, qType type, py::ssize_t dimensions, const char* what);

/** Take(), or a null handle for None. */
Zo::Object<void*> TakeOptional(const std::optional<py::array>& array, qType type, py::ssize_t dimensions,
                               const char* what);

inline Zo::Object<void*> TakeHeights(const py::array& array)
{
    return Take(array, xxq16s_type, 2, "heights");
}

inline Zo::Object<void*> TakeMask(const py::array& array)
{
    return Take(array, xxq8u_type, 2, "mask");
}

/** A mask that a call edits: the very cells, or a copy that Finish() writes back. A read-only one is refused. */
class EditedMask
{
public:
    explicit EditedMask(const py::array& mask);

    const Zo::Object<void*>& Cells() const { return cells; }
    void Finish();

private:
    py::array mask;
    Zo::Object<void*> cells;
};

/** Points as a NumPy array of rows, over the vector itself. */
py::array ViewPoints(std::vector<qPoint64f> points);
py::array ViewPoints(std::vector<qPoint3d64f> points);

/** Flags as truth values. */
py::array_t<bool> Flags(const int* flags, std::size_t count);

/** @p array, when it has @p columns columns; without any value it may have any shape. */
Numbers Rows(const Numbers& array, py::ssize_t columns);

/** A NumPy array of points as the library's, for the length of a call. */
template <typename Point>
class Points
{
public:
    explicit Points(const Numbers& array) : rows(Rows(array, sizeof(Point) / sizeof(double))) {}

    const Point* Data() const { return reinterpret_cast<const Point*>(rows.data()); }
    std::size_t Count() const { return rows.size() == 0 ? 0 : static_cast<std::size_t>(rows.shape(0)); }
    std::vector<Point> ToVector() const { return std::vector<Point>(Data(), Data() + Count()); }

private:
    Numbers rows;
};

using Points2 = Points<qPoint64f>;
using Points3 = Points<qPoint3d64f>;

/** Calls @p work with the interpreter free for other threads. */
template <typename Work>
auto WithoutInterpreter(const Work& work)
{
    const py::gil_scoped_release free;
    return work();
}

} // namespace ZdkPython
