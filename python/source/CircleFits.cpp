#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

#include <mutex>

namespace ZdkPython
{

namespace
{

py::object FitCircleOf(const Numbers& points, double outlierPercent, Zvl::CircleType type)
{
    const Points2 in(points);
    qPoint64f center;
    double minRadius = 0.0;
    double maxRadius = 0.0;
    double maxDistance = 0.0;
    double minDistance = 0.0;
    std::vector<qPoint64f> farthest;
    std::vector<qPoint64f> nearest;
    std::vector<qPoint64f> kept;
    std::vector<qPoint64f> outliers;
    WithoutInterpreter(
        [&]
        {
            Zvl::FitCircle(in.Data(), in.Count(), outlierPercent, type, &center, &minRadius, &maxRadius, &maxDistance,
                           &minDistance, &farthest, &nearest, &kept, &outliers);
        });
    return Record("CircleFit", center, NumberOrNone(minRadius), NumberOrNone(maxRadius), NumberOrNone(maxDistance),
                  NumberOrNone(minDistance), ViewPoints(std::move(farthest)), ViewPoints(std::move(nearest)),
                  ViewPoints(std::move(kept)), ViewPoints(std::move(outliers)));
}

py::object FitRobustly(const Numbers& points, double outlierPercent, std::optional<unsigned> seed, bool useWeights)
{
    static std::mutex generator; // `rand` is the whole process's
    const Points2 in(points);
    qPoint64f center;
    double radius = 0.0;
    std::vector<int> outliers(in.Count());
    WithoutInterpreter(
        [&]
        {
            const std::lock_guard lock(generator);
            Zvl::FitCircleByRLTS(in.Data(), in.Count(), outlierPercent, center, radius, outliers.data(),
                                 seed ? &*seed : nullptr, useWeights ? 1 : 0);
        });
    return Record("RobustCircleFit", center, NumberOrNone(radius), Flags(outliers.data(), outliers.size()));
}

py::object FitProjected(const Numbers& points, int plane, double outlierPercent)
{
    const Points3 in(points);
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, 0, nullptr));
    Zo::Test(qArrayList_Import(list, in.Data(), in.Count()));
    qPoint3d64f center;
    double radius = 0.0;
    WithoutInterpreter([&] { Zvl::FitCircle_Deprecated(list, plane, outlierPercent, &center, &radius); });
    return Record("ProjectedCircleFit", center, NumberOrNone(radius), View(list));
}

} // namespace

void AddCircleFits(py::module_& module)
{
    using namespace py::literals;
    module.def("fit_circle", &FitCircleOf, "points"_a, "outlier_percent"_a = 0.0, "type"_a = Zvl::CIRCLE_LSC,
               Documentation("Zvl::FitCircle", 0, "\nReturns a CircleFit."));
    module.def(
        "fit_circle_by_rlts", &FitRobustly, "points"_a, "outlier_percent"_a, "seed"_a = py::none(),
        "use_weights"_a = false,
        Documentation("Zvl::FitCircleByRLTS", 0,
                      "\nReturns a RobustCircleFit; flags that are left alone are False. Calls of this module take "
                      "turns."));
    module.def(
        "fit_circle_deprecated", &FitProjected, "points"_a, "plane"_a = 0, "outlier_percent"_a = 0.0,
        Documentation("Zvl::FitCircle_Deprecated", 0, "\nReturns a ProjectedCircleFit; `points` stays as it is."));
}

} // namespace ZdkPython
