/** @file
 *  The repair of small images of every type, beside the plain method. */

#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include "ImageProcessing/InpaintPlain.h"
#include "fuzz/Bytes.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Fuzz::Bytes bytes(data, size);
    static constexpr int kTypes[] = {CV_8UC1, CV_16UC1, CV_16SC1, CV_32FC1, CV_8UC3};
    const int rows = bytes.Int(1, 12);
    const int columns = bytes.Int(1, 12);
    cv::Mat image(rows, columns, kTypes[bytes.Size(0, 4)]);
    cv::Mat mask(image.size(), CV_8UC1);
    const int range = bytes.Int(1, 6);
    const int flags = bytes.Int(0, 1);
    const int share = bytes.Int(0, 255);
    for (int row = 0; row < image.rows; ++row)
    {
        for (int cell = 0; cell < image.cols; ++cell)
        {
            mask.at<std::uint8_t>(row, cell) = bytes.Byte() < share ? 1 : 0;
        }
        for (std::size_t byte = 0; byte < static_cast<std::size_t>(image.cols) * image.elemSize(); ++byte)
        {
            image.ptr(row)[byte] = bytes.Byte();
        }
    }
    cv::Mat repaired;
    Zvl::Inpaint(image, mask, repaired, range, flags);
    const cv::Mat plain = PlainInpaint::Repair(image, mask, range, flags == Zvl::CV_INPAINT_TELEA);
    for (int row = 0; row < image.rows && image.depth() != CV_32F; ++row) // what is not a number has many bit patterns
    {
        const std::size_t count = static_cast<std::size_t>(image.cols) * image.elemSize();
        Fuzz::Require(std::equal(plain.ptr(row), plain.ptr(row) + count, repaired.ptr(row)));
    }
    return 0;
}
