#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

#include "Arithmetic/HeightCounts.h"
#include "Common/Check.h"

#include <algorithm>

namespace Zvl
{

namespace
{

constexpr char kAdd[] = "Zvl::ArithmeticsPixelAdd::Operate";
constexpr char kSubtract[] = "Zvl::ArithmeticsPixelSubtract::Operate";
constexpr char kAverage[] = "Zvl::ArithmeticsPixelAverage::Operate";

/** The result for two heights: that of `formula(world a, world b)`, truncated to a count, when both are present. */
template <typename Formula>
std::int32_t OperateOnHeights(const ArithmeticsPixelOperation& operation, std::int16_t a, std::int16_t b,
                              Formula formula)
{
    constexpr std::int16_t missing = GetNull<short>();
    if (a == missing)
    {
        return b == missing ? GetNull<int>() : CountInFirstFrame(operation, b);
    }
    if (b == missing)
    {
        return a;
    }
    const double height = formula(a * operation.zScale + operation.zOffset0, b * operation.zScale + operation.zOffset1);
    return TruncateToCount(height / operation.zScale);
}

} // namespace

void ArithmeticsPixelOperation::SetScale(double value)
{
    zScale = value;
}

void ArithmeticsPixelOperation::SetOffsets(double offset0, double offset1)
{
    zOffset0 = offset0;
    zOffset1 = offset1;
}

void ArithmeticsPixelAdd::Operate(std::uint8_t a, std::uint8_t b, std::uint8_t* out) const
{
    ZVL_REQUIRE(kAdd, out != nullptr);
    *out = static_cast<std::uint8_t>(std::min(a + b, 255));
}

void ArithmeticsPixelAdd::Operate(std::int16_t a, std::int16_t b, std::int32_t* out) const
{
    ZVL_REQUIRE(kAdd, out != nullptr);
    *out = OperateOnHeights(*this, a, b, [this](double worldA, double worldB) { return worldA + worldB - zOffset0; });
}

void ArithmeticsPixelSubtract::Operate(std::uint8_t a, std::uint8_t b, std::uint8_t* out) const
{
    ZVL_REQUIRE(kSubtract, out != nullptr);
    *out = static_cast<std::uint8_t>(std::max(a - b, 0));
}

void ArithmeticsPixelSubtract::Operate(std::int16_t a, std::int16_t b, std::int32_t* out) const
{
    ZVL_REQUIRE(kSubtract, out != nullptr);
    *out = OperateOnHeights(*this, a, b, [this](double worldA, double worldB) { return worldA - worldB - zOffset0; });
}

void ArithmeticsPixelAverage::Operate(std::uint8_t a, std::uint8_t b, std::uint8_t* out) const
{
    ZVL_REQUIRE(kAverage, out != nullptr);
    *out = static_cast<std::uint8_t>((a + b) / 2);
}

void ArithmeticsPixelAverage::Operate(std::int16_t a, std::int16_t b, std::int32_t* out) const
{
    ZVL_REQUIRE(kAverage, out != nullptr);
    *out = OperateOnHeights(*this, a, b,
                            [this](double worldA, double worldB) { return (worldA + worldB) / 2.0 - zOffset0; });
}

std::shared_ptr<ArithmeticsPixelOperation> ArithmeticsPixelOperationFactory::Create(ArithmeticOperator op)
{
    switch (op)
    {
    case ArithmeticOperator::Add:
        return std::make_shared<ArithmeticsPixelAdd>();
    case ArithmeticOperator::Subtract:
        return std::make_shared<ArithmeticsPixelSubtract>();
    case ArithmeticOperator::Average:
        return std::make_shared<ArithmeticsPixelAverage>();
    }
    ZVL_THROW("Zvl::ArithmeticsPixelOperationFactory::Create", STATUS_NOT_SUPPORTED);
}

} // namespace Zvl
