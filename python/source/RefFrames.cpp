#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

namespace ZdkPython
{

namespace
{

using Zvl::RefFrame;

constexpr char kName[] = "Zvl::RefFrame";

/** One of the twelve numbers: where it is read, and what it is called. */
struct Entry
{
    const char* name;
    double (RefFrame::*get)() const noexcept;
    const char* cppName;
};

constexpr Entry kEntries[] = {
    {"ix", &RefFrame::GetIx, "Zvl::RefFrame::GetIx"}, {"iy", &RefFrame::GetIy, "Zvl::RefFrame::GetIy"},
    {"iz", &RefFrame::GetIz, "Zvl::RefFrame::GetIz"}, {"jx", &RefFrame::GetJx, "Zvl::RefFrame::GetJx"},
    {"jy", &RefFrame::GetJy, "Zvl::RefFrame::GetJy"}, {"jz", &RefFrame::GetJz, "Zvl::RefFrame::GetJz"},
    {"kx", &RefFrame::GetKx, "Zvl::RefFrame::GetKx"}, {"ky", &RefFrame::GetKy, "Zvl::RefFrame::GetKy"},
    {"kz", &RefFrame::GetKz, "Zvl::RefFrame::GetKz"}, {"tx", &RefFrame::GetTx, "Zvl::RefFrame::GetTx"},
    {"ty", &RefFrame::GetTy, "Zvl::RefFrame::GetTy"}, {"tz", &RefFrame::GetTz, "Zvl::RefFrame::GetTz"},
};

void SetFromPairs(RefFrame& frame, const Numbers& a, const Numbers& b)
{
    const std::vector<qPoint64f> first = Points2(a).ToVector();
    const std::vector<qPoint64f> second = Points2(b).ToVector();
    frame.SetFrame(first, second);
}

py::array MapPoints(const RefFrame& frame, const Numbers& points)
{
    const Points3 in(points);
    std::vector<qPoint3d64f> mapped(in.Count());
    WithoutInterpreter([&, copy = frame] { copy.ApplyN(in.Data(), in.Count(), mapped.data()); });
    return ViewPoints(std::move(mapped));
}

py::bytes ToBytes(const RefFrame& frame)
{
    Zo::Object<void*> bytes;
    frame.Serialize(bytes.Slot());
    return py::bytes(static_cast<const char*>(qArray1_Data(bytes)), qArray1_Count(bytes));
}

void FromBytes(RefFrame& frame, const py::bytes& data)
{
    std::string copy = data; // the call takes memory that could be written
    frame.Deserialize(copy.data(), copy.size(), nullptr);
}

void AddRefFrame(py::module_& module)
{
    using namespace py::literals;
    const auto self = py::return_value_policy::reference; // the very object, which Python knows
    py::class_<RefFrame> frame(module, "RefFrame", Documentation(kName));
    frame.def(py::init<>(), Documentation("Zvl::RefFrame::RefFrame"))
        .def(py::init<double, double, double, double, double, double, double, double, double, double, double, double>(),
             "ix"_a, "iy"_a, "iz"_a, "jx"_a, "jy"_a, "jz"_a, "kx"_a, "ky"_a, "kz"_a, "tx"_a, "ty"_a, "tz"_a,
             Documentation("Zvl::RefFrame::RefFrame", 1))
        .def("get_scale", &RefFrame::GetScale, Documentation("Zvl::RefFrame::GetScale"))
        .def("get_column", &RefFrame::GetColumn, "index"_a, Documentation("Zvl::RefFrame::GetColumn"))
        .def("get_translation", &RefFrame::GetTranslation, Documentation("Zvl::RefFrame::GetTranslation"))
        .def("set_identity", &RefFrame::SetIdentity, self, Documentation("Zvl::RefFrame::SetIdentity"))
        .def("set_frame", py::overload_cast<qPoint3d64f, double>(&RefFrame::SetFrame), "point"_a, "angle"_a,
             Documentation("Zvl::RefFrame::SetFrame", 0))
        .def("set_frame", &SetFromPairs, "a"_a, "b"_a, Documentation("Zvl::RefFrame::SetFrame", 1))
        .def("translate", py::overload_cast<qPoint3d64f>(&RefFrame::Translate), self, "vector"_a,
             Documentation("Zvl::RefFrame::Translate", 1))
        .def("translate", py::overload_cast<double, double, double>(&RefFrame::Translate), self, "x"_a, "y"_a, "z"_a,
             Documentation("Zvl::RefFrame::Translate", 0))
        .def("rotate", py::overload_cast<double, qPoint3d64f>(&RefFrame::Rotate), self, "angle"_a, "axis"_a,
             Documentation("Zvl::RefFrame::Rotate", 0))
        .def("rotate", py::overload_cast<const Zvl::Region3d<double>&>(&RefFrame::Rotate), self, "region"_a,
             Documentation("Zvl::RefFrame::Rotate", 1))
        .def("rotate_around_point", &RefFrame::RotateAroundPoint, self, "point"_a, "angle"_a,
             Documentation("Zvl::RefFrame::RotateAroundPoint"))
        .def("scale", &RefFrame::Scale, self, "factors"_a, Documentation("Zvl::RefFrame::Scale"))
        .def("invert_ortho", &RefFrame::InvertOrtho, self, Documentation("Zvl::RefFrame::InvertOrtho"))
        .def("apply", py::overload_cast<qPoint3d64f>(&RefFrame::Apply, py::const_), "point"_a,
             Documentation("Zvl::RefFrame::Apply", 0))
        .def("apply", py::overload_cast<qPoint64f>(&RefFrame::Apply, py::const_), "point"_a,
             Documentation("Zvl::RefFrame::Apply", 1))
        .def("apply_n", &MapPoints, "points"_a, Documentation("Zvl::RefFrame::ApplyN", 0, "\nReturns a new array."))
        .def("__mul__", &RefFrame::operator*, "other"_a, py::is_operator(), Documentation("Zvl::RefFrame::operator*"))
        .def_static("mul", &RefFrame::Mul, "a"_a, "b"_a, Documentation("Zvl::RefFrame::Mul"))
        .def("serialize", &ToBytes, Documentation("Zvl::RefFrame::Serialize", 0, "\nReturns the bytes."))
        .def("deserialize", &FromBytes, "data"_a, Documentation("Zvl::RefFrame::Deserialize"));
    const auto turn = [&](const char* name, RefFrame& (RefFrame::*rotate)(double, double, double), const char* text)
    {
        frame.def(
            name,
            [rotate](RefFrame& rotated, std::optional<double> x, std::optional<double> y,
                     std::optional<double> z) -> RefFrame&
            { return (rotated.*rotate)(NumberOrNull(x), NumberOrNull(y), NumberOrNull(z)); },
            self, "x"_a, "y"_a, "z"_a, text);
    };
    turn("rotate_xyz", &RefFrame::RotateXYZ, Documentation("Zvl::RefFrame::RotateXYZ"));
    turn("rotate_zyx", &RefFrame::RotateZYX, Documentation("Zvl::RefFrame::RotateZYX"));
    for (const Entry& entry : kEntries)
    {
        frame.def_property_readonly(entry.name,
                                    py::cpp_function([get = entry.get](const RefFrame& read) { return (read.*get)(); }),
                                    Documentation(entry.cppName));
    }
}

py::array EstimateRigid(const Numbers& source, const Numbers& target)
{
    const std::vector<qPoint3d64f> from = Points3(source).ToVector();
    const std::vector<qPoint3d64f> to = Points3(target).ToVector();
    qL3dTransform3d transform;
    const int status = WithoutInterpreter([&] { return Zvl::EstimateRigidTransformation(from, to, &transform); });
    if (status != STATUS_OK)
    {
        throw Zo::Exception(__LINE__, __FILE__, status, "Zvl::EstimateRigidTransformation", nullptr);
    }
    return py::array_t<double>({3, 4}, transform.entries);
}

py::object Decompose(const Numbers& matrix, bool valuesOnly)
{
    if (matrix.ndim() != 2 || matrix.shape(0) != matrix.shape(1) || matrix.shape(0) > std::numeric_limits<int>::max())
    {
        throw py::value_error("matrix: as many rows as columns wanted");
    }
    const py::ssize_t size = matrix.shape(0);
    py::array_t<double> values({size, size}, matrix.data());
    py::array_t<double> vectors({size, size});
    double* diagonal = values.mutable_data();
    double* rows = vectors.mutable_data();
    WithoutInterpreter([&] { Zvl::DecomposeEigen(diagonal, rows, static_cast<int>(size), valuesOnly ? 1 : 0); });
    return Record("EigenDecomposition", values.attr("diagonal")().attr("copy")(),
                  valuesOnly ? py::object(py::none()) : py::object(vectors));
}

} // namespace

void AddRefFrames(py::module_& module)
{
    using namespace py::literals;
    AddRefFrame(module);
    module.def(
        "estimate_rigid_transformation", &EstimateRigid, "source"_a, "target"_a,
        Documentation("Zvl::EstimateRigidTransformation", 0,
                      "\nReturns R and t as an array of 3 rows by 4 columns; a status that is no success is raised "
                      "as an Error."));
    module.def("decompose_eigen", &Decompose, "matrix"_a, "values_only"_a = false,
               Documentation("Zvl::DecomposeEigen", 0, "\nReturns an EigenDecomposition; `matrix` stays as it is."));
}

} // namespace ZdkPython
