#include "survey/Maps.h"
#include "survey/Operation.h"

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

namespace Survey
{

namespace
{

/** Spots of 21 cells, 3 % of the image. */
cv::Mat Spots(int side)
{
    cv::RNG random(8);
    cv::Mat mask(side, side, CV_8U, cv::Scalar(0));
    for (int spot = side * side / 700; spot > 0; --spot)
    {
        const int row = random.uniform(0, side - 5);
        const int column = random.uniform(0, side - 5);
        mask(cv::Rect(column + 1, row, 3, 5)).setTo(255);
        mask(cv::Rect(column, row + 1, 5, 3)).setTo(255);
    }
    return mask;
}

/** A grey image of the scan's heights. */
cv::Mat Image(int side)
{
    cv::Mat image;
    Heights(WholeHeights(side)).convertTo(image, CV_8U, 0.02, 128.0);
    return image;
}

Case Repair(int side, int method)
{
    cv::Mat holes = Spots(side);
    const double repairedCells = cv::countNonZero(holes);
    const auto ours = [image = Image(side), holes, repaired = cv::Mat(), method]() mutable
    { Zvl::Inpaint(image, holes, repaired, 5.0, method); };
    return {.ours = ours, .items = repairedCells};
}

} // namespace

std::vector<Operation> ImageProcessingOperations()
{
    return {
        {"`Inpaint`, Telea, range 5", "repaired cells", false,
         [](int side) { return Repair(side, Zvl::CV_INPAINT_TELEA); }},
        {"`Inpaint`, Navier-Stokes, range 5", "repaired cells", false,
         [](int side) { return Repair(side, Zvl::CV_INPAINT_NS); }},
    };
}

} // namespace Survey
