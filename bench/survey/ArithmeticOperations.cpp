#include "survey/Maps.h"
#include "survey/Operation.h"

#include <ZdkVisionLib/Arithmetic/Arithmetic.h>

namespace Survey
{

namespace
{

/** The scan upside down, so that other cells are missing. */
Zvl::Surface OtherScan(int side)
{
    Zvl::Surface other = Scan(side);
    other.layers[0] = Bench::NewArray(xxq16s_type, side, side);
    cv::Mat cells = Heights(other.layers[0]);
    cv::flip(Heights(Scan(side).layers[0]), cells, 0);
    return other;
}

Case Sum(int side)
{
    const auto ours = [first = Scan(side), second = OtherScan(side)]() mutable
    {
        Zvl::Surface sum;
        Zvl::Arithmetics::Apply(Zvl::ArithmeticOperator::Add, Zvl::ArithmeticLogic::Intersection, first, second, sum);
    };
    const auto peer = [first = Scan(side), second = OtherScan(side)]
    {
        cv::Mat sum;
        cv::Mat packed;
        cv::add(Heights(first.layers[0]), Heights(second.layers[0]), sum, cv::noArray(), CV_32S);
        sum.convertTo(packed, CV_16S);
        Keep(*packed.data);
    };
    return {.ours = ours,
            .peers = {{"`cv::add` and `convertTo`", peer}},
            .items = Square(side),
            .bytesMoved = 6.0 * Square(side),
            .outputBytes = 2.0 * Square(side)};
}

} // namespace

std::vector<Operation> ArithmeticOperations()
{
    return {{"`Arithmetics::Apply`, sum", "cells", false, Sum}};
}

} // namespace Survey
