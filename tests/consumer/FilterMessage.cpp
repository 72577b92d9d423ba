// A host that takes a part of a surface message and halves its columns with operations of OpenCV.

#include <ZdkVisionLib/Common/Mat.h>
#include <ZdkVisionLib/platform/ZoVision.h>

#include <cstdio>

namespace
{

/** A message of 20 rows by 30 columns that rises by one height count per column. */
Zo::Object<void*> MakeMessage()
{
    Zo::Object<void*> message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 20, 30, 1, nullptr));
    const qPoint3d64f scale = {0.5, 0.5, 0.01};
    Zo::Test(ZvSurfaceMsg_SetScale(message, &scale));
    const qArray2 heights = ZvSurfaceMsg_PointsArray(message, 0);
    for (std::size_t row = 0; row < 20; ++row)
    {
        for (std::size_t column = 0; column < 30; ++column)
        {
            *static_cast<short*>(qArray2_At(heights, row, column)) = static_cast<short>(column);
        }
    }
    return message;
}

} // namespace

int main()
{
    const Zo::Object<void*> message = MakeMessage();
    Zvl::Region3d<double> region;
    Zvl::zvlMat::GetRegionFromMsg(message, 0, &region);
    region.x += 5.0; // from column 10 on
    region.width -= 5.0;
    const Zvl::zvlMat part(message, 0, &region, 0, 0);

    // The mean of each pair of neighbours along X, in the cells of a second object.
    const cv::Mat source = part.GetMat();
    Zvl::zvlMat halved;
    cv::Mat result = halved.GetDestinationMat(cv::Size(source.cols / 2, source.rows));
    for (int column = 0; column < result.cols; ++column)
    {
        cv::addWeighted(source.col(2 * column), 0.5, source.col(2 * column + 1), 0.5, 0.5, result.col(column));
    }

    const Zo::Object<void*> heights(halved.GetqArray2Ofq16s());
    const int first = *static_cast<const short*>(qArray2_At(heights, 0, 0));
    const int last = *static_cast<const short*>(qArray2_At(heights, 19, 9));
    std::printf("%d x %d cells, first %d, last %d\n", result.cols, result.rows, first, last);
    return result.size() == cv::Size(10, 20) && first == 11 && last == 29 ? 0 : 1;
}
