#include "Scan.h"

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

int main()
{
    //! [snippet]
    // A picture that brightens from left to right, with a scratch three columns wide.
    cv::Mat picture(60, 80, CV_8UC1);
    cv::Mat scratch = cv::Mat::zeros(picture.size(), CV_8UC1);
    for (int row = 0; row < picture.rows; ++row)
    {
        for (int column = 0; column < picture.cols; ++column)
        {
            const bool isScratched = column >= 40 && column < 43;
            picture.at<unsigned char>(row, column) = isScratched ? 0 : static_cast<unsigned char>(2 * column);
            scratch.at<unsigned char>(row, column) = isScratched ? 255 : 0;
        }
    }

    cv::Mat repaired;
    Zvl::Inpaint(picture, scratch, repaired, 4.0, Zvl::CV_INPAINT_TELEA);
    const int middle = repaired.at<unsigned char>(30, 41);
    std::printf("in the middle of the scratch: %d, where 82 was\n", middle);
    Expect(IsNear(middle, 82.0, 4.0));
    Expect(repaired.at<unsigned char>(30, 20) == 40); // what is not masked stays
    //! [snippet]
}
