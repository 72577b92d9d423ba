#include "ImageProcessing/InpaintPlanes.h"

#include "ImageProcessing/InpaintKernel.h"

#include <opencv2/imgproc.hpp>

#include <algorithm>
#include <vector>

namespace Zvl
{

namespace
{

/** A plane of @p size with slack behind each row. */
template <typename T>
cv::Mat_<T> NewPlane(const cv::Size& size)
{
    cv::Mat_<T> plane(size.height, size.width + static_cast<int>(kRunSlack));
    return plane.colRange(0, size.width);
}

/** Makes #CELL_FRONT of the image's cells beside a #CELL_HOLE. */
void AddFront(cv::Mat_<std::uint8_t>& f)
{
    const auto columns = static_cast<std::size_t>(f.cols);
    std::vector<std::uint8_t> holes(columns); // of one row, which the loop over its cells does not change
    for (int i = 1; i < f.rows - 1; ++i)
    {
        std::uint8_t* state = f[i];
        const std::uint8_t* above = f[i - 1];
        const std::uint8_t* below = f[i + 1];
        std::copy_n(state, columns, holes.begin());
        for (std::size_t j = 1; j < columns - 1; ++j)
        {
            const auto beside = (above[j] | holes[j - 1] | below[j] | holes[j + 1]) & CELL_HOLE;
            const auto known = beside != 0 ? CELL_FRONT : CELL_SETTLED;
            state[j] = holes[j] == CELL_HOLE ? CELL_HOLE : known;
        }
    }
}

} // namespace

cv::Mat_<std::uint8_t> StatesOf(const cv::Mat& inputMask)
{
    cv::Mat_<std::uint8_t> f = NewPlane<std::uint8_t>(inputMask.size() + cv::Size(2, 2));
    f.setTo(CELL_SETTLED);
    f(cv::Rect({1, 1}, inputMask.size())).setTo(CELL_HOLE, inputMask);
    AddFront(f);
    return f;
}

cv::Mat_<float> TimesInside(const cv::Mat_<std::uint8_t>& f)
{
    cv::Mat_<float> t = NewPlane<float>(f.size());
    t.setTo(kNever);
    return t;
}

cv::Mat_<float> TimesAround(const cv::Mat_<std::uint8_t>& f, int range, CvPriorityQueueFloat& queue)
{
    // The highest state within the range, and then the states of the march outwards.
    const cv::Mat el_range = cv::getStructuringElement(cv::MORPH_RECT, {2 * range + 1, 2 * range + 1}, {range, range});
    cv::Mat_<std::uint8_t> out;
    cv::dilate(f, out, el_range, {range, range}, 1, cv::BORDER_CONSTANT | cv::BORDER_ISOLATED);
    cv::Mat_<float> t = NewPlane<float>(f.size());
    const int columns = t.cols;
    for (int i = 0; i < t.rows; ++i)
    {
        const std::uint8_t* state = f[i];
        std::uint8_t* outer = out[i];
        float* time = t[i];
        for (int j = 0; j < columns; ++j)
        {
            // Only a settled cell is that far below a hole.
            const bool awaits = outer[j] - state[j] == CELL_HOLE;
            outer[j] = static_cast<std::uint8_t>(awaits ? CELL_HOLE : state[j] & CELL_FRONT);
        }
        for (int j = 0; j < columns; ++j)
        {
            time[j] = outer[j] == CELL_HOLE ? kAwaitsFront : kNever;
        }
        time[0] = kNever;
        time[columns - 1] = kNever;
    }
    t.row(0).setTo(kNever);
    t.row(t.rows - 1).setTo(kNever);
    return queue.Init(out) ? t : cv::Mat_<float>();
}

} // namespace Zvl
