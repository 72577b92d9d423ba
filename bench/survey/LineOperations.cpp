#include "survey/Maps.h"
#include "survey/Operation.h"
#include "survey/Peers.h"

#include <ZdkVisionLib/Filter/ProfileFilter.h>

#include <opencv2/imgproc.hpp>

namespace Survey
{

namespace
{

using LineFilter = std::function<void(Zvl::ProfileFilter&)>;
using ImageFilter = std::function<cv::Mat(const cv::Mat&)>;

/** The 40 lines that a scan is cut into, row after row, in turn: the branches over one short line would be learnt by
 *  heart. A tenth of the cells is missing. */
class Lines
{
public:
    explicit Lines(int side) : scan(Scan(side).layers[0]), length(ManyPoints(side)) {}

    std::size_t Length() const { return length; }

    std::int16_t* Next()
    {
        next = (next + 1) % 40;
        return static_cast<std::int16_t*>(qArray2_At(scan, 0, 0)) + next * length;
    }

private:
    Zo::Object<void*> scan;
    std::size_t length;
    std::size_t next = 0;
};

Case LineCase(int side, const LineFilter& operation)
{
    const auto ours = [lines = Lines(side), operation, result = std::vector<std::int16_t>(ManyPoints(side))]() mutable
    {
        Zvl::ProfileFilter filter(lines.Next(), lines.Length(), result.data(), nullptr);
        operation(filter);
        Keep(*result.data());
    };
    return {.ours = ours, .items = static_cast<double>(ManyPoints(side))};
}

/** A filter over the lines as images of one row. */
Action OpenCv(int side, const ImageFilter& filter)
{
    return [lines = Lines(side), filter]() mutable
    {
        const cv::Mat line(1, static_cast<int>(lines.Length()), CV_16S, lines.Next());
        Keep(*filter(line).data);
    };
}

Case Average(int side, int window)
{
    Case subject =
        LineCase(side, [=](Zvl::ProfileFilter& filter) { filter.Average(static_cast<std::size_t>(window), 1); });
    const auto boxSums = [=](const cv::Mat& cells, cv::Mat& sums) {
        cv::boxFilter(cells, sums, CV_32F, {window, 1}, {-1, -1}, false, cv::BORDER_CONSTANT);
    };
    const auto blur = [=](const cv::Mat& cells)
    {
        cv::Mat mean;
        cv::blur(cells, mean, {window, 1}, {-1, -1}, cv::BORDER_REPLICATE);
        return mean;
    };
    subject.peers = {{"two `cv::boxFilter` and their quotient",
                      OpenCv(side, [=](const cv::Mat& cells) { return QuotientOfTwo(cells, boxSums); })},
                     {"`cv::blur`, no missing heights", OpenCv(side, blur)}};
    subject.bytesMoved = 4.0 * subject.items;
    return subject;
}

/** OpenCV's median has square windows only, and for cells of 16 bits none above 5. */
Case Median(int side, int window)
{
    Case subject =
        LineCase(side, [=](Zvl::ProfileFilter& filter) { filter.Median(static_cast<std::size_t>(window), 1); });
    const auto medianBlur = [](const cv::Mat& cells)
    {
        cv::Mat median;
        cv::medianBlur(cells, median, 5);
        return median;
    };
    if (window == 5)
    {
        subject.peers = {{"`cv::medianBlur`, 5 x 5 cells, no missing heights", OpenCv(side, medianBlur)}};
    }
    return subject;
}

Case Gaussian(int side, int window)
{
    Case subject =
        LineCase(side, [=](Zvl::ProfileFilter& filter) { filter.Gaussian(static_cast<std::size_t>(window), 0.0, 1); });
    const auto blur = [=](const cv::Mat& cells)
    {
        cv::Mat mean;
        cv::GaussianBlur(cells, mean, {window, 1}, 0.0, 0.0, cv::BORDER_REPLICATE);
        return mean;
    };
    const auto weightedSums = [=](const cv::Mat& cells, cv::Mat& sums)
    {
        cells.convertTo(sums, CV_32F);
        cv::GaussianBlur(sums, sums, {window, 1}, 0.0, 0.0, cv::BORDER_CONSTANT);
    };
    subject.peers = {{"two `cv::GaussianBlur` and their quotient, single precision",
                      OpenCv(side, [=](const cv::Mat& cells) { return QuotientOfTwo(cells, weightedSums); })},
                     {"`cv::GaussianBlur`, no missing heights", OpenCv(side, blur)}};
    return subject;
}

Case FilledLine(int side)
{
    Case subject = LineCase(side, [](Zvl::ProfileFilter& filter) { filter.FillGap(20, 100, 0); });
    subject.bytesMoved = 4.0 * subject.items;
    return subject;
}

} // namespace

std::vector<Operation> LineOperations()
{
    std::vector<Operation> operations;
    const auto addWindows = [&operations](const std::string& name, Case (*make)(int, int))
    {
        for (const int window : {5, 51, 501})
        {
            operations.push_back({"`ProfileFilter::" + name + "`, window " + std::to_string(window), "cells", false,
                                  [=](int side) { return make(side, window); }});
        }
    };
    addWindows("Average", Average);
    addWindows("Median", Median);
    addWindows("Gaussian", Gaussian);
    operations.push_back({"`ProfileFilter::FillGap`", "cells", false, FilledLine});
    return operations;
}

} // namespace Survey
