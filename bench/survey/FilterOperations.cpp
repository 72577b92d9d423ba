#include "survey/Maps.h"
#include "survey/Operation.h"
#include "survey/Peers.h"

#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Filter/Filter.h>
#include <ZdkVisionLib/Filter/SurfaceDecimate.h>
#include <ZdkVisionLib/Filter/SurfaceFillGap.h>
#include <ZdkVisionLib/Filter/SurfaceFilter.h>

#include <opencv2/imgproc.hpp>

#include <cstring>

namespace Survey
{

namespace
{

/** Box and mask of a disc that covers most of the map, missing heights excluded. */
struct Disc
{
    explicit Disc(int side)
    {
        const auto frame = static_cast<std::uint64_t>(side);
        Zvl::CircleROI roi(Position(side / 2.0, side / 2.0), 0.0, Length(0.488 * side), 0.0, 360.0, frame, frame,
                           Bench::kScale, Bench::kOffset, nullptr);
        Zvl::ThresholdHeight(Scan(side), Zvl::GetNull<double>(), Zvl::GetNull<double>(), roi);
        box = roi.GetBoundingBox();
        mask = roi.GetMask();
        cells = static_cast<double>(box.width) * box.height;
        points = cv::countNonZero(Bytes(mask));
    }

    Zvl::Rect2d<int> box;
    Zo::Object<void*> mask;
    double cells;
    double points;
};

/** What findNonZero leaves to be done: the world point of each cell. */
std::vector<cv::Point3d> WorldPoints(const Zvl::Surface& scan, const Zvl::Rect2d<int>& box,
                                     const std::vector<cv::Point>& cells)
{
    const cv::Mat heights = Heights(scan.layers[0]);
    std::vector<cv::Point3d> points(cells.size());
    for (std::size_t i = 0; i < cells.size(); ++i)
    {
        const int x = box.x + cells[i].x;
        const int y = box.y + cells[i].y;
        points[i] = {x * scan.scale.x + scan.offset.x, y * scan.scale.y + scan.offset.y,
                     heights.at<std::int16_t>(y, x) * scan.scale.z + scan.offset.z};
    }
    return points;
}

Case PointsCase(const Disc& disc)
{
    return {.items = disc.cells, .bytesMoved = 3.0 * disc.cells + 24.0 * disc.points};
}

Case FreshPoints(int side)
{
    const Disc disc(side);
    Case subject = PointsCase(disc);
    subject.outputBytes = 24.0 * disc.points;
    subject.ours = [side, disc]
    {
        Zo::Object<void*> list;
        Zvl::GetPointsFromROI<qPoint3d64f>(Scan(side), disc.box, disc.mask, list.Slot());
    };
    const auto findCells = [disc]
    {
        std::vector<cv::Point> cells;
        cv::findNonZero(Bytes(disc.mask), cells);
        return cells;
    };
    subject.peers = {
        {"`cv::findNonZero`, cells only", [=] { Keep(*findCells().data()); }},
        {"`cv::findNonZero` and a loop", [=] { Keep(*WorldPoints(Scan(side), disc.box, findCells()).data()); }}};
    return subject;
}

/** The list is kept and emptied, as in a host that measures part after part. */
Case KeptPoints(int side)
{
    const Disc disc(side);
    Case subject = PointsCase(disc);
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, 0, nullptr));
    subject.ours = [side, disc, list]
    {
        void* raw = list.Get();
        Zo::Test(qArrayList_Purge(raw));
        Zvl::GetPointsFromROI<qPoint3d64f>(Scan(side), disc.box, disc.mask, &raw);
    };
    subject.peers = {{"`cv::findNonZero`, cells only", [disc, cells = std::vector<cv::Point>()]() mutable
                      { cv::findNonZero(Bytes(disc.mask), cells); }}};
    return subject;
}

/** The mask is copied anew before each call, which clears cells of it. */
template <typename T>
Case Percentiles(int side)
{
    const Disc disc(side);
    Zo::Object<void*> mask;
    Zo::Test(xqObject_CloneImpl(mask.Slot(), disc.mask, nullptr, nullptr, 0));
    const auto ours = [side, disc, mask] { Zvl::ThresholdPercentile<T>(Scan(side), 1.0, 99.0, disc.box, mask); };
    const auto prepare = [disc, mask]
    {
        cv::Mat cells = Bytes(mask);
        Bytes(disc.mask).copyTo(cells);
    };
    return {.ours = ours, .prepare = prepare, .items = disc.cells};
}

Case Crop(int side)
{
    const Disc disc(side);
    const auto ours = [side, disc]
    {
        Zvl::Surface cropped;
        Zvl::CropSurfaceFromROI(Scan(side), disc.box, disc.mask, cropped, nullptr);
    };
    const auto peer = [side, disc]
    {
        const cv::Mat heights = Heights(Scan(side).layers[0]);
        cv::Mat cropped(disc.box.height, disc.box.width, CV_16S);
        cropped.setTo(Zvl::GetNull<short>());
        heights({disc.box.x, disc.box.y, disc.box.width, disc.box.height}).copyTo(cropped, Bytes(disc.mask));
        Keep(*cropped.data);
    };
    return {.ours = ours,
            .peers = {{"`copyTo` with a mask", peer}},
            .items = disc.cells,
            .bytesMoved = 5.0 * disc.cells,
            .outputBytes = 2.0 * disc.cells};
}

Case BoxMean(int side)
{
    const cv::Size window(15, 15);
    const auto ours = [side, out = Bench::NewArray(xxq16s_type, side, side)] {
        Zvl::SurfaceFilter(Scan(side).layers[0], out, nullptr).Average({15, 15}, 1);
    };
    const cv::Mat heights = Heights(Scan(side).layers[0]);
    const auto boxSums = [=](const cv::Mat& cells, cv::Mat& sums) {
        cv::boxFilter(cells, sums, CV_32F, window, {-1, -1}, false, cv::BORDER_CONSTANT);
    };
    const auto blur = [=, mean = cv::Mat()]() mutable { cv::blur(heights, mean, window); };
    return {.ours = ours,
            .peers = {{"two `cv::boxFilter` and their quotient", [=] { Keep(*QuotientOfTwo(heights, boxSums).data); }},
                      {"`cv::blur`, no missing heights", blur}},
            .items = Square(side),
            .bytesMoved = 4.0 * Square(side)};
}

/** Box means from two integral images of the padded map, one of the heights and one of the cells that have one. */
cv::Mat MeanOfIntegrals(const cv::Mat& heights, int half)
{
    cv::Mat filled;
    cv::Mat missing;
    cv::Mat sums;
    cv::Mat counts;
    cv::copyMakeBorder(heights, filled, half, half, half, half, cv::BORDER_REFLECT);
    cv::compare(filled, cv::Scalar(Zvl::GetNull<short>()), missing, cv::CMP_EQ);
    filled.setTo(0, missing);
    filled.convertTo(filled, CV_32F); // integral() takes no 16-bit cells
    cv::integral(filled, sums, CV_64F);
    cv::integral(missing / 255, counts, CV_32S);
    cv::Mat mean(heights.size(), CV_16S);
    const int cells = 4 * half * half;
    for (int row = 0; row < heights.rows; ++row)
    {
        const auto* in = heights.ptr<std::int16_t>(row);
        auto* out = mean.ptr<std::int16_t>(row);
        const auto boxAt = [=](const auto* top, const auto* bottom, int column)
        { return bottom[column + 2 * half] - bottom[column] - top[column + 2 * half] + top[column]; };
        for (int column = 0; column < heights.cols; ++column)
        {
            const double sum = boxAt(sums.ptr<double>(row + 1) + 1, sums.ptr<double>(row + 2 * half + 1) + 1, column);
            const int count =
                cells - boxAt(counts.ptr<int>(row + 1) + 1, counts.ptr<int>(row + 2 * half + 1) + 1, column);
            out[column] = in[column] == Zvl::GetNull<short>() ? in[column] : static_cast<std::int16_t>(sum / count);
        }
    }
    return mean;
}

Case SmoothedArray(int side)
{
    constexpr int kWindow = 31;
    const auto ours = [side] { Keep(Zvl::SmoothFullArray2<short>(Scan(side).layers[0], kWindow, kWindow, nullptr)); };
    const auto peer = [side] { Keep(*MeanOfIntegrals(Heights(Scan(side).layers[0]), kWindow / 2).data); };
    return {.ours = ours,
            .peers = {{"two `cv::integral` and a loop", peer}},
            .items = Square(side),
            .bytesMoved = 4.0 * Square(side),
            .outputBytes = 2.0 * Square(side)};
}

Case Decimated(int side, double ratio)
{
    const auto ours = [side, ratio] { Keep(Zvl::SurfaceDecimate(Scan(side), {0, 0}, {ratio, ratio}, nullptr)); };
    const auto peer = [side, ratio]
    {
        cv::Mat coarse;
        cv::resize(Heights(Scan(side).layers[0]), coarse, cv::Size(), ratio, ratio, cv::INTER_AREA);
        Keep(*coarse.data);
    };
    const double output = 2.0 * Square(std::round(side * ratio));
    return {.ours = ours,
            .peers = {{"`cv::resize`, `INTER_AREA`, no missing heights", peer}},
            .items = Square(side),
            .bytesMoved = 2.0 * Square(side) + output,
            .outputBytes = output};
}

Action FillGaps(const Zo::Object<void*>& heights)
{
    Zvl::SurfaceFillGapParams params;
    params.resolutionX = Bench::kScale.x;
    params.resolutionY = Bench::kScale.y;
    params.resolutionZ = 0.001;
    params.maxGapX = Length(20.0);
    params.maxGapY = Length(20.0);
    params.maxSlopeX = 60.0;
    params.maxSlopeY = 60.0;
    return [=]
    {
        Zo::Object<void*> filled;
        Zo::Object<void*> filledIntensity;
        Zvl::SurfaceFillGapXY(params, heights, Zo::Object<void*>(), filled, filledIntensity, nullptr);
    };
}

Case FilledGaps(int side)
{
    return {.ours = FillGaps(Scan(side).layers[0]), .items = Square(side), .outputBytes = 2.0 * Square(side)};
}

Case NoGaps(int side)
{
    const Zo::Object<void*> heights = WholeHeights(side);
    const auto copy = [side, heights]
    {
        const Zo::Object<void*> result = Bench::NewArray(xxq16s_type, side, side);
        std::memcpy(qArray2_At(result, 0, 0), qArray2_At(heights, 0, 0), static_cast<std::size_t>(2.0 * Square(side)));
        Keep(result);
    };
    return {.ours = FillGaps(heights),
            .peers = {{"`memcpy` into a new array", copy}},
            .items = Square(side),
            .bytesMoved = 4.0 * Square(side),
            .outputBytes = 2.0 * Square(side)};
}

} // namespace

std::vector<Operation> FilterOperations()
{
    return {
        {"`GetPointsFromROI<qPoint3d64f>`, disc", "cells", true, FreshPoints},
        {"`GetPointsFromROI<qPoint3d64f>` into a kept list", "cells", true, KeptPoints},
        {"`ThresholdPercentile<short>`, disc", "cells", false, Percentiles<short>},
        {"`ThresholdPercentile<double>`, disc", "cells", false, Percentiles<double>},
        {"`CropSurfaceFromROI`, disc", "cells", false, Crop},
        {"`SurfaceFilter::Average`, 15 x 15", "cells", false, BoxMean},
        {"`SmoothFullArray2`, 31 x 31", "cells", false, SmoothedArray},
        {"`SurfaceDecimate`, ratio 0.37", "cells", false, [](int side) { return Decimated(side, 0.37); }},
        {"`SurfaceDecimate`, ratio 0.5", "cells", false, [](int side) { return Decimated(side, 0.5); }},
        {"`SurfaceFillGapXY`, both directions", "cells", false, FilledGaps},
        {"`SurfaceFillGapXY` without gaps", "cells", false, NoGaps},
    };
}

} // namespace Survey
