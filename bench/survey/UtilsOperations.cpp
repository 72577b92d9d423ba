#include "survey/Maps.h"
#include "survey/Operation.h"

#include <ZdkVisionLib/Utils/Utils.h>

namespace Survey
{

namespace
{

Case HeightLimits(int side)
{
    const cv::Mat heights = Heights(Scan(side).layers[0]);
    const auto ours = [side, mask = ValidMask(side)] {
        Zvl::ThresholdHeight(Scan(side), -1.0, 3.0, {0, 0, side, side}, mask);
    };
    const auto peer = [heights, array = ValidMask(side), inside = cv::Mat()]() mutable
    {
        cv::Mat mask = Bytes(array);
        cv::inRange(heights, cv::Scalar(-1000), cv::Scalar(3000), inside);
        cv::bitwise_and(mask, inside, mask);
    };
    return {.ours = ours,
            .peers = {{"`cv::inRange` and `cv::bitwise_and`", peer}},
            .items = Square(side),
            .bytesMoved = 4.0 * Square(side)};
}

} // namespace

std::vector<Operation> UtilsOperations()
{
    return {{"`ThresholdHeight` on a mask", "cells", false, HeightLimits}};
}

} // namespace Survey
