#include "Arrays.h"
#include "Documentation.h"
#include "Module.h"
#include "Records.h"

namespace ZdkPython
{

namespace
{

using Zvl::ArithmeticsPixelOperation;

template <typename Operation>
Zvl::Surface Compute(const Zvl::Surface& first, const Zvl::Surface& second, const Operation& operation)
{
    Zvl::Surface a = first;
    Zvl::Surface b = second;
    return WithoutInterpreter(
        [&]
        {
            Zvl::Surface result;
            operation(a, b, result);
            return result;
        });
}

Zvl::Surface Apply(Zvl::ArithmeticOperator op, Zvl::ArithmeticLogic logic, const Zvl::Surface& surface0,
                   const Zvl::Surface& surface1)
{
    return Compute(surface0, surface1,
                   [&](Zvl::Surface& a, Zvl::Surface& b, Zvl::Surface& result)
                   { Zvl::Arithmetics::Apply(op, logic, a, b, result); });
}

Zvl::Surface ApplyMask(const Zvl::Surface& surface, const Zvl::Surface& maskSurface)
{
    return Compute(surface, maskSurface, &Zvl::Arithmetics::ApplyMask);
}

std::uint8_t OperateOnIntensities(const ArithmeticsPixelOperation& operation, std::uint8_t a, std::uint8_t b)
{
    std::uint8_t result = 0;
    operation.Operate(a, b, &result);
    return result;
}

std::optional<std::int32_t> OperateOnHeights(const ArithmeticsPixelOperation& operation, std::int16_t a, std::int16_t b)
{
    std::int32_t result = 0;
    operation.Operate(a, b, &result);
    return result == Zvl::GetNull<int>() ? std::nullopt : std::optional(result);
}

template <typename Operation>
void AddOperation(py::module_& module, const char* name)
{
    py::class_<Operation, ArithmeticsPixelOperation, std::shared_ptr<Operation>>(
        module, name, Documentation(std::string("Zvl::") + name))
        .def(py::init<>(), "An operation of unit scale without offsets.");
}

void AddPixelOperations(py::module_& module)
{
    using namespace py::literals;
    py::class_<ArithmeticsPixelOperation, std::shared_ptr<ArithmeticsPixelOperation>>(
        module, "ArithmeticsPixelOperation", Documentation("Zvl::ArithmeticsPixelOperation"))
        .def_static("create", &Zvl::ArithmeticsPixelOperationFactory::Create, "op"_a,
                    Documentation("Zvl::ArithmeticsPixelOperationFactory::Create"))
        .def("operate_intensities", &OperateOnIntensities, "a"_a, "b"_a,
             Documentation("Zvl::ArithmeticsPixelOperation::Operate", 0))
        .def("operate_heights", &OperateOnHeights, "a"_a, "b"_a,
             Documentation("Zvl::ArithmeticsPixelOperation::Operate", 1, "Null is None here."))
        .def("set_scale", &ArithmeticsPixelOperation::SetScale, "value"_a, "Sets `z_scale`.")
        .def("set_offsets", &ArithmeticsPixelOperation::SetOffsets, "offset0"_a, "offset1"_a,
             "Sets `z_offset0` and `z_offset1`.")
        .def_readwrite("z_scale", &ArithmeticsPixelOperation::zScale,
                       Documentation("Zvl::ArithmeticsPixelOperation::zScale"))
        .def_readwrite("z_offset0", &ArithmeticsPixelOperation::zOffset0,
                       Documentation("Zvl::ArithmeticsPixelOperation::zOffset0"))
        .def_readwrite("z_offset1", &ArithmeticsPixelOperation::zOffset1,
                       Documentation("Zvl::ArithmeticsPixelOperation::zOffset1"));
    AddOperation<Zvl::ArithmeticsPixelAdd>(module, "ArithmeticsPixelAdd");
    AddOperation<Zvl::ArithmeticsPixelSubtract>(module, "ArithmeticsPixelSubtract");
    AddOperation<Zvl::ArithmeticsPixelAverage>(module, "ArithmeticsPixelAverage");
}

} // namespace

void AddArithmetic(py::module_& module)
{
    using namespace py::literals;
    AddPixelOperations(module);
    constexpr char kReturnsSurface[] = "\nReturns `result`, a new surface.";
    py::class_<Zvl::Arithmetics>(module, "Arithmetics", Documentation("Zvl::Arithmetics"))
        .def_static("apply", &Apply, "op"_a, "logic"_a, "surface0"_a, "surface1"_a,
                    Documentation("Zvl::Arithmetics::Apply", 0, kReturnsSurface))
        .def_static("apply_mask", &ApplyMask, "surface"_a, "mask_surface"_a,
                    Documentation("Zvl::Arithmetics::ApplyMask", 0, kReturnsSurface));
}

} // namespace ZdkPython
