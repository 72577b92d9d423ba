/** @file
 *  Operations on two height maps, beside what an OpenCV user composes: the same sums in 32 bits, packed to 16. Both sides
 *  make their results afresh, as the operations do by their contract; a variant of the peer reuses its matrices. OpenCV
 *  knows no missing heights and no world units, so that the peer does less. */

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

#include "support/BenchMap.h"

#include <benchmark/benchmark.h>

namespace
{

/** The map upside down, so that other cells are missing, with its heights counted from @p height on. */
Zvl::Surface OtherMap(double height)
{
    Zvl::Surface other = Bench::Map();
    other.layers[0] = Bench::NewArray(xxq16s_type);
    const cv::Mat from = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    cv::Mat to = Bench::MatOver(other.layers[0], CV_16S);
    cv::flip(from, to, 0);
    other.offset.z += height;
    return other;
}

void ApplyTo(benchmark::State& state, Zvl::ArithmeticOperator op, Zvl::ArithmeticLogic logic, double height)
{
    Zvl::Surface first = Bench::Map();
    Zvl::Surface second = OtherMap(height);
    for (auto _ : state)
    {
        Zvl::Surface result;
        Zvl::Arithmetics::Apply(op, logic, first, second, result);
        benchmark::DoNotOptimize(result.layers[0].Get());
    }
}
BENCHMARK_CAPTURE(ApplyTo, AddIntersection, Zvl::ArithmeticOperator::Add, Zvl::ArithmeticLogic::Intersection, 0.0)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ApplyTo, SubtractIntersection, Zvl::ArithmeticOperator::Subtract, Zvl::ArithmeticLogic::Intersection,
                  0.0)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ApplyTo, AverageIntersection, Zvl::ArithmeticOperator::Average, Zvl::ArithmeticLogic::Intersection,
                  0.0)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ApplyTo, AddUnion, Zvl::ArithmeticOperator::Add, Zvl::ArithmeticLogic::Union, 0.0)
    ->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(ApplyTo, AddUnionOfTwoFrames, Zvl::ArithmeticOperator::Add, Zvl::ArithmeticLogic::Union, 1.0)
    ->Unit(benchmark::kMillisecond);

void ApplyMaskOfAnotherMap(benchmark::State& state)
{
    Zvl::Surface first = Bench::Map();
    Zvl::Surface second = OtherMap(0.0);
    for (auto _ : state)
    {
        Zvl::Surface result;
        Zvl::Arithmetics::ApplyMask(first, second, result);
        benchmark::DoNotOptimize(result.layers[0].Get());
    }
}
BENCHMARK(ApplyMaskOfAnotherMap)->Unit(benchmark::kMillisecond);

void OpenCvAddAndConvert(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Zvl::Surface second = OtherMap(0.0);
    const cv::Mat a = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    const cv::Mat b = Bench::MatOver(second.layers[0], CV_16S);
    for (auto _ : state)
    {
        cv::Mat sum;
        cv::Mat packed;
        cv::add(a, b, sum, cv::noArray(), CV_32S);
        sum.convertTo(packed, CV_16S);
        benchmark::DoNotOptimize(packed.data);
    }
}
BENCHMARK(OpenCvAddAndConvert)->Unit(benchmark::kMillisecond);

void OpenCvAddAndConvertIntoTheSameMatrices(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Zvl::Surface second = OtherMap(0.0);
    const cv::Mat a = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    const cv::Mat b = Bench::MatOver(second.layers[0], CV_16S);
    cv::Mat sum;
    cv::Mat packed;
    for (auto _ : state)
    {
        cv::add(a, b, sum, cv::noArray(), CV_32S);
        sum.convertTo(packed, CV_16S);
        benchmark::ClobberMemory();
    }
}
BENCHMARK(OpenCvAddAndConvertIntoTheSameMatrices)->Unit(benchmark::kMillisecond);

void OpenCvCopyWhereTheOtherIsPresent(benchmark::State& state)
{
    cv::setNumThreads(1);
    const Zvl::Surface second = OtherMap(0.0);
    const cv::Mat a = Bench::MatOver(Bench::Map().layers[0], CV_16S);
    const cv::Mat b = Bench::MatOver(second.layers[0], CV_16S);
    for (auto _ : state)
    {
        cv::Mat present;
        cv::compare(b, cv::Scalar(Zvl::GetNull<short>()), present, cv::CMP_NE);
        cv::Mat masked(a.size(), CV_16S, cv::Scalar(Zvl::GetNull<short>()));
        a.copyTo(masked, present);
        benchmark::DoNotOptimize(masked.data);
    }
}
BENCHMARK(OpenCvCopyWhereTheOtherIsPresent)->Unit(benchmark::kMillisecond);

} // namespace
