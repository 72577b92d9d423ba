#include "Arithmetic/PlainArithmetic.h"

namespace
{

using namespace Zvl;
using PlainArithmetic::kNull32;
using TestSupport::ExpectThrow;
using TestSupport::kMissing;

constexpr ArithmeticOperator kOperators[] = {ArithmeticOperator::Add, ArithmeticOperator::Subtract,
                                             ArithmeticOperator::Average};

std::shared_ptr<ArithmeticsPixelOperation> Make(ArithmeticOperator op, double scale = 1.0, double offset0 = 0.0,
                                                double offset1 = 0.0)
{
    std::shared_ptr<ArithmeticsPixelOperation> operation = ArithmeticsPixelOperationFactory::Create(op);
    operation->SetScale(scale);
    operation->SetOffsets(offset0, offset1);
    return operation;
}

std::int32_t Heights(const std::shared_ptr<ArithmeticsPixelOperation>& operation, int a, int b)
{
    std::int32_t out = 7;
    operation->Operate(static_cast<std::int16_t>(a), static_cast<std::int16_t>(b), &out);
    return out;
}

int Intensities(ArithmeticOperator op, int a, int b)
{
    std::uint8_t out = 7;
    Make(op)->Operate(static_cast<std::uint8_t>(a), static_cast<std::uint8_t>(b), &out);
    return out;
}

TEST(PixelOperation, OperatorsHaveFixedNumbers)
{
    EXPECT_EQ(static_cast<int>(ArithmeticOperator::Add), 0);
    EXPECT_EQ(static_cast<int>(ArithmeticOperator::Subtract), 1);
    EXPECT_EQ(static_cast<int>(ArithmeticOperator::Average), 2);
    EXPECT_EQ(static_cast<int>(ArithmeticLogic::Intersection), 0);
    EXPECT_EQ(static_cast<int>(ArithmeticLogic::Union), 1);
    EXPECT_EQ(sizeof(ArithmeticOperator), 4U);
    EXPECT_EQ(sizeof(ArithmeticLogic), 4U);
}

TEST(PixelOperation, TheFactoryMakesEachKindWithAUnitFrame)
{
    EXPECT_NE(dynamic_cast<ArithmeticsPixelAdd*>(Make(ArithmeticOperator::Add).get()), nullptr);
    EXPECT_NE(dynamic_cast<ArithmeticsPixelSubtract*>(Make(ArithmeticOperator::Subtract).get()), nullptr);
    EXPECT_NE(dynamic_cast<ArithmeticsPixelAverage*>(Make(ArithmeticOperator::Average).get()), nullptr);
    for (const ArithmeticOperator op : kOperators)
    {
        const auto operation = ArithmeticsPixelOperationFactory::Create(op);
        EXPECT_EQ(operation->zScale, 1.0);
        EXPECT_EQ(operation->zOffset0, 0.0);
        EXPECT_EQ(operation->zOffset1, 0.0);
    }
}

TEST(PixelOperation, AnUnknownOperatorIsRefused)
{
    for (const int value : {-1, 3, 1000000})
    {
        ExpectThrow(STATUS_NOT_SUPPORTED, "Zvl::ArithmeticsPixelOperationFactory::Create",
                    [&] { ArithmeticsPixelOperationFactory::Create(static_cast<ArithmeticOperator>(value)); });
    }
}

TEST(PixelOperation, SettersStoreTheFrame)
{
    const auto operation = Make(ArithmeticOperator::Add, 0.5, 3.0, -4.0);
    EXPECT_EQ(operation->zScale, 0.5);
    EXPECT_EQ(operation->zOffset0, 3.0);
    EXPECT_EQ(operation->zOffset1, -4.0);
}

TEST(PixelOperation, IntensitiesAreClampedAndMeansRoundedDown)
{
    EXPECT_EQ(Intensities(ArithmeticOperator::Add, 100, 55), 155);
    EXPECT_EQ(Intensities(ArithmeticOperator::Add, 200, 56), 255);
    EXPECT_EQ(Intensities(ArithmeticOperator::Subtract, 100, 55), 45);
    EXPECT_EQ(Intensities(ArithmeticOperator::Subtract, 55, 100), 0);
    EXPECT_EQ(Intensities(ArithmeticOperator::Average, 5, 6), 5);
    EXPECT_EQ(Intensities(ArithmeticOperator::Average, 255, 255), 255);
}

TEST(PixelOperation, HeightsInOneFrame)
{
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Add), 32767, 32767), 65534);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Subtract), 32767, -32767), 65534);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Average), 2, 3), 2);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Average), -2, -3), -2);
}

TEST(PixelOperation, HeightsAreCountedFromTheFirstOffset)
{
    // World heights 12 and 23 above offsets 10 and 20.
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Add, 0.5, 10.0, 20.0), 4, 6), 50);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Subtract, 0.5, 10.0, 20.0), 4, 6), -42);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Average, 0.5, 10.0, 20.0), 4, 6), 15);
}

TEST(PixelOperation, AMissingHeightGivesTheOtherWithItsOwnSign)
{
    for (const ArithmeticOperator op : kOperators)
    {
        EXPECT_EQ(Heights(Make(op), kMissing, kMissing), kNull32);
        EXPECT_EQ(Heights(Make(op), 8, kMissing), 8);
        EXPECT_EQ(Heights(Make(op), kMissing, 6), 6);
        EXPECT_EQ(Heights(Make(op, 0.5, 10.0, 20.0), kMissing, kMissing), kNull32);
        EXPECT_EQ(Heights(Make(op, 0.5, 10.0, 20.0), 8, kMissing), 8);
        EXPECT_EQ(Heights(Make(op, 0.5, 10.0, 20.0), kMissing, 6), 26);
    }
}

TEST(PixelOperation, CountsAreTruncatedFromRoundedWorldHeights)
{
    // The double nearest to 0.1 is above it and that nearest to 0.6 below: their quotient is less than 6.
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Add, 0.1), 1, 5), 5);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Add, 0.125), 1, 5), 6);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Subtract, 0.1), 3, 4), 0);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Subtract, 0.125), 3, 4), -1);
}

TEST(PixelOperation, AHeightThatIsNo32BitCountIsNull)
{
    const double infinity = std::numeric_limits<double>::infinity();
    const double nan = std::numeric_limits<double>::quiet_NaN();
    for (const ArithmeticOperator op : kOperators)
    {
        EXPECT_EQ(Heights(Make(op, 0.0), 1, 2), kNull32);
        EXPECT_EQ(Heights(Make(op, nan), 1, 2), kNull32);
        EXPECT_EQ(Heights(Make(op, infinity), 1, 2), kNull32);
        EXPECT_EQ(Heights(Make(op, 1.0, 0.0, 1e300), 1, 2), kNull32);
        EXPECT_EQ(Heights(Make(op, 1.0, 0.0, -1e300), kMissing, 2), kNull32);
        EXPECT_EQ(Heights(Make(op, 1.0, nan, nan), kMissing, 2), kNull32);
    }
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Add, 1.0, 0.0, 2147483645.0), 1, 1), 2147483647);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Add, 1.0, 0.0, 2147483645.0), 1, 2), kNull32);
    EXPECT_EQ(Heights(Make(ArithmeticOperator::Add, 1.0, 0.0, -2147483649.0), 1, 1), -2147483647);
}

TEST(PixelOperation, RandomCellsAgreeWithThePlainFormulas)
{
    std::mt19937 random(1);
    const double scales[] = {1.0, 0.1, 0.001, 0.0037, -0.5};
    const double offsets[] = {0.0, 1.7, -300.25};
    for (int i = 0; i < 100000; ++i)
    {
        const ArithmeticOperator op = kOperators[random() % 3];
        const double scale = scales[random() % 5];
        const double offset0 = offsets[random() % 3];
        const double offset1 = offsets[random() % 3];
        const std::int16_t a = random() % 8 == 0 ? kMissing : static_cast<std::int16_t>(random());
        const std::int16_t b = random() % 8 == 0 ? kMissing : static_cast<std::int16_t>(random());
        ASSERT_EQ(Heights(Make(op, scale, offset0, offset1), a, b),
                  PlainArithmetic::HeightOf(op, a, b, scale, offset0, offset1))
            << a << " " << b << " " << scale << " " << offset0 << " " << offset1;
        const int ia = static_cast<int>(random() % 256);
        const int ib = static_cast<int>(random() % 256);
        ASSERT_EQ(Intensities(op, ia, ib), PlainArithmetic::IntensityOf(op, ia, ib));
    }
}

TEST(PixelOperation, WithoutAnOutputNothingIsWritten)
{
    const auto refused = [](ArithmeticOperator op, const char* function)
    {
        ExpectThrow(STATUS_BAD_PARAMETER, function,
                    [&] { Make(op)->Operate(std::uint8_t{1}, std::uint8_t{2}, nullptr); });
        ExpectThrow(STATUS_BAD_PARAMETER, function,
                    [&] { Make(op)->Operate(std::int16_t{1}, std::int16_t{2}, nullptr); });
    };
    refused(ArithmeticOperator::Add, "Zvl::ArithmeticsPixelAdd::Operate");
    refused(ArithmeticOperator::Subtract, "Zvl::ArithmeticsPixelSubtract::Operate");
    refused(ArithmeticOperator::Average, "Zvl::ArithmeticsPixelAverage::Operate");
}

} // namespace
