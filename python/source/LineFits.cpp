#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

namespace ZdkPython
{

namespace
{

/** A line as a fit leaves it when it finds none. */
struct Line
{
    double slope = Zvl::GetNull<double>();
    double intercept = Zvl::GetNull<double>();

    py::object ToRecord() const { return Record("LineFit", NumberOrNone(slope), NumberOrNone(intercept)); }
};

using Exclusion = py::array_t<int, py::array::c_style | py::array::forcecast>;

py::object FitPlainLine(const Numbers& points, const std::optional<Exclusion>& excluded)
{
    const Points2 in(points);
    if (excluded && static_cast<std::size_t>(excluded->size()) != in.Count())
    {
        throw py::value_error("excluded: a flag for each point wanted");
    }
    const int* flags = excluded ? excluded->data() : nullptr;
    Line line;
    WithoutInterpreter([&] { Zvl::FitLine(in.Data(), flags, in.Count(), &line.slope, &line.intercept); });
    return line.ToRecord();
}

py::object FitWithRejection(const Numbers& points, double outlierPercent)
{
    const Points2 in(points);
    Line line;
    Zo::Object<void*> outliers;
    WithoutInterpreter(
        [&]
        {
            Zvl::FitLineIterative(in.Data(), in.Count(), outlierPercent, &line.slope, &line.intercept, outliers.Slot(),
                                  nullptr);
        });
    return Record("IterativeLineFit", NumberOrNone(line.slope), NumberOrNone(line.intercept),
                  Flags(static_cast<const int*>(qArrayList_Data(outliers)), qArrayList_Count(outliers)));
}

py::object FitByConsensus(const Numbers& points, double sampleRatio, std::size_t iterations, double threshold)
{
    const Points2 in(points);
    Line line;
    WithoutInterpreter(
        [&] {
            Zvl::FitLineRansac(in.Data(), in.Count(), sampleRatio, iterations, threshold, &line.slope, &line.intercept);
        });
    return line.ToRecord();
}

template <typename Point>
py::object PolynomialThrough(const Point* points, std::size_t count, std::size_t degree)
{
    if (degree >= count)
    {
        return py::none(); // there is no fit, and no need for room
    }
    py::array_t<double> coefficients(static_cast<py::ssize_t>(degree + 1));
    double* room = coefficients.mutable_data();
    const int status = WithoutInterpreter([&] { return Zvl::FitPolynomial(points, count, degree, room); });
    return status == 0 ? py::object(coefficients) : py::object(py::none());
}

/** The form for single precision, and the form for all other numbers. */
py::object FitPolynomialOf(const py::object& points, std::size_t degree)
{
    const bool single = py::isinstance<py::array_t<float>>(points);
    const Points2 rows{Numbers(points)};
    if (!single)
    {
        return PolynomialThrough(rows.Data(), rows.Count(), degree);
    }
    const py::array_t<float, kPlain> floats(points);
    return PolynomialThrough(reinterpret_cast<const qPoint32f*>(floats.data()), rows.Count(), degree);
}

py::object PolynomialValue(const Numbers& coefficients, double x)
{
    if (coefficients.size() == 0)
    {
        return py::none();
    }
    return NumberOrNone(
        Zvl::CalculatePolynomialValue(coefficients.data(), static_cast<std::size_t>(coefficients.size() - 1), x));
}

} // namespace

void AddLineFits(py::module_& module)
{
    using namespace py::literals;
    module.def("fit_line", &FitPlainLine, "points"_a, "excluded"_a = py::none(),
               Documentation("Zvl::FitLine", 0, "\nReturns a LineFit."));
    module.def("fit_line_iterative", &FitWithRejection, "points"_a, "outlier_percent"_a,
               Documentation("Zvl::FitLineIterative", 0, "\nReturns an IterativeLineFit."));
    module.def("fit_line_ransac", &FitByConsensus, "points"_a, "sample_ratio"_a, "iterations"_a, "threshold"_a,
               Documentation("Zvl::FitLineRansac", 0, "\nReturns a LineFit; results that are left alone are None."));
    module.def("fit_polynomial", &FitPolynomialOf, "points"_a, "degree"_a,
               Documentation("Zvl::FitPolynomial", 0, "\nReturns the coefficients; None where -1 is told."));
    module.def("calculate_polynomial_value", &PolynomialValue, "coefficients"_a, "x"_a,
               Documentation("Zvl::CalculatePolynomialValue", 0,
                             "\nThe degree is that of the array; without coefficients the result is None."));
}

} // namespace ZdkPython
