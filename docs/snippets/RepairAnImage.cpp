//! [program]
#include "Scan.h"

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

double Shape(double x, double y)
{
    return 2.0 + 0.02 * (x - 8.0) * (x - 8.0) + 0.03 * y;
}

int main()
{
    // A curved face with dropouts of 0.8 mm, 3 mm apart.
    const Zvl::Surface scan = MakeScan(
        [](double x, double y) {
            return std::hypot(std::remainder(x, 3.0), std::remainder(y - 1.5, 3.0)) < 0.4 ? std::nan("") : Shape(x, y);
        });

    // The heights as a matrix of OpenCV, which looks at the same cells, and a mask of the missing ones.
    cv::Mat heights(static_cast<int>(kRows), static_cast<int>(kColumns), CV_16SC1, qArray2_At(scan.layers[0], 0, 0));
    cv::Mat missing = heights == Zvl::GetNull<short>();

    // Holes at the border may show in the result: let them hold the mean height instead of the missing one.
    heights.setTo(cv::mean(heights, ~missing), missing);
    cv::Mat repaired;
    Zvl::Inpaint(heights, missing, repaired, 5.0, Zvl::CV_INPAINT_TELEA);

    double largest = 0.0;
    for (int row = 0; row < repaired.rows; ++row)
    {
        for (int column = 0; column < repaired.cols; ++column)
        {
            const double truth = Shape(column * kCell.x, row * kCell.y);
            largest = std::fmax(largest, std::abs(repaired.at<short>(row, column) * kCount - truth));
        }
    }
    std::printf("%d cells repaired, off by %.3f mm at most\n", cv::countNonZero(missing), largest);
    Expect(cv::countNonZero(missing) > 500 && largest < 0.15);
}
//! [program]
