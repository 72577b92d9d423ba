#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

#include <memory>
#include <mutex>

namespace ZdkPython
{

namespace
{

/** A line as the filter reads it: converted from no other type, and copied only when it does not lie in one piece. */
py::array_t<short> LineOf(const py::array& heights)
{
    if (!py::isinstance<py::array_t<short>>(heights) || heights.ndim() != 1)
    {
        throw py::type_error("heights: an int16 array of 1 dimension wanted");
    }
    return py::array_t<short, kPlain>(py::reinterpret_borrow<py::object>(heights));
}

/** The line that the filter writes: a new one, or the caller's. */
py::array_t<short> OutputOf(const py::object& out, py::ssize_t size)
{
    if (out.is_none())
    {
        return py::array_t<short>(size);
    }
    const bool fits = py::isinstance<py::array_t<short>>(out) && (py::array(out).flags() & kPlain) == kPlain &&
                      py::array(out).writeable() && py::array(out).ndim() == 1 && py::array(out).size() == size;
    if (!fits)
    {
        throw py::value_error("out: a writeable int16 array in one piece, as long as the heights, wanted");
    }
    return py::reinterpret_borrow<py::array_t<short>>(out);
}

/** A filter that holds both lines, and lets one thread in at a time. */
class HeldProfileFilter
{
public:
    HeldProfileFilter(const py::array& heights, const py::object& out)
        : in(LineOf(heights)),
          result(OutputOf(out, in.size())),
          filter(in.data(), static_cast<std::size_t>(in.size()), result.mutable_data(), nullptr)
    {
    }

    template <typename... Arguments>
    void Run(Zvl::ProfileFilter& (Zvl::ProfileFilter::*operation)(Arguments...), Arguments... arguments)
    {
        const py::gil_scoped_release free;
        const std::lock_guard lock(mutex);
        (filter.*operation)(arguments...);
    }

    const py::array_t<short>& Result() const { return result; }

private:
    py::array_t<short> in;
    py::array_t<short> result;
    Zvl::ProfileFilter filter;
    std::mutex mutex;
};

using Self = HeldProfileFilter;
using Filter = Zvl::ProfileFilter;

Self& FillGap(Self& self, std::size_t maxGap, int maxSlope, bool fillHigh)
{
    self.Run(&Filter::FillGap, maxGap, maxSlope, fillHigh ? 1 : 0);
    return self;
}

Self& Average(Self& self, std::size_t window, bool keepNulls)
{
    self.Run(&Filter::Average, window, keepNulls ? 1 : 0);
    return self;
}

Self& Median(Self& self, std::size_t window, bool keepNulls)
{
    self.Run(&Filter::Median, window, keepNulls ? 1 : 0);
    return self;
}

Self& Gaussian(Self& self, std::size_t window, double sigma, bool keepNulls)
{
    self.Run(&Filter::Gaussian, window, sigma, keepNulls ? 1 : 0);
    return self;
}

Self& Percentile(Self& self, double low, double high, Filter::PercentileType type)
{
    self.Run(&Filter::Percentile, low, high, type);
    return self;
}

} // namespace

void AddProfileFilter(py::module_& module)
{
    using namespace py::literals;
    const auto self = py::return_value_policy::reference; // the very object, which Python knows
    py::class_<Self>(
        module, "ProfileFilter",
        Documentation("Zvl::ProfileFilter", 0,
                      "\nHere both lines are NumPy arrays, used without a copy when they lie in one piece, and "
                      "held by the filter."))
        .def(py::init<const py::array&, const py::object&>(), "heights"_a, "out"_a = py::none(),
             "A filter from `heights`, an int16 line, to `out`, a line as long, which may be the same; without one it "
             "makes "
             "its own.")
        .def("fill_gap", &FillGap, self, "max_gap"_a, "max_slope"_a, "fill_high"_a = false,
             Documentation("Zvl::ProfileFilter::FillGap"))
        .def("average", &Average, self, "window"_a, "keep_nulls"_a = false,
             Documentation("Zvl::ProfileFilter::Average"))
        .def("median", &Median, self, "window"_a, "keep_nulls"_a = false, Documentation("Zvl::ProfileFilter::Median"))
        .def("gaussian", &Gaussian, self, "window"_a, "sigma"_a = 0.0, "keep_nulls"_a = false,
             Documentation("Zvl::ProfileFilter::Gaussian"))
        .def("percentile", &Percentile, self, "low"_a, "high"_a, "type"_a,
             Documentation("Zvl::ProfileFilter::Percentile"))
        .def_property_readonly("result", &Self::Result, "The output line, which every operation writes.");
}

} // namespace ZdkPython
