#include "survey/Maps.h"
#include "survey/Operation.h"

#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include <opencv2/imgproc.hpp>

#include <memory>

namespace Survey
{

namespace
{

constexpr double kPi = 3.141592653589793;

/** Lengths that are given for a map of 2048 x 2048 cells, in proportion. */
double Scaled(int side, double cells)
{
    return cells * side / Bench::kSide;
}

int RoundedScaled(int side, double cells)
{
    return cvRound(Scaled(side, cells));
}

/** A fresh mask in each call, as a region makes it whenever its frame changes; the old one is given up first. */
Action RebuildMask(std::shared_ptr<Zvl::SingleROI> roi)
{
    return [roi]
    {
        roi->SetScale(Bench::kScale);
        Keep(roi->GetMask());
    };
}

/** A mask of zeros in which @p draw sets cells. */
template <typename Draw>
Action DrawIntoFreshMask(int side, Draw draw)
{
    return [=]
    {
        cv::Mat mask = cv::Mat::zeros(side, side, CV_8U);
        draw(mask);
        Keep(*mask.data);
    };
}

/** A case whose least work is to write the mask's cells, and to read @p bytesRead for each of them. */
Case MaskCase(const std::shared_ptr<Zvl::SingleROI>& roi, const Peer& peer, double bytesRead = 0.0)
{
    const Zvl::Rect2d<int> box = roi->GetBoundingBox();
    const double cells = static_cast<double>(box.width) * box.height;
    return {.ours = RebuildMask(roi), .peers = {peer}, .items = cells, .bytesMoved = cells * (1.0 + bytesRead)};
}

Case PolygonMask(int side)
{
    constexpr int kVertices = 100;
    std::vector<qPoint64f> corners;
    std::vector<std::vector<cv::Point>> polygons(1);
    for (int i = 0; i < kVertices; ++i)
    {
        const double angle = 2.0 * kPi * i / kVertices;
        const double radius = Scaled(side, i % 2 == 0 ? 1000.3 : 700.7);
        const double x = Scaled(side, 1023.7) + radius * std::cos(angle);
        const double y = Scaled(side, 1023.9) + radius * std::sin(angle);
        corners.push_back(Position(x, y));
        polygons[0].emplace_back(cvRound(x), cvRound(y));
    }
    const auto roi = std::make_shared<Zvl::PolygonROI>(corners.data(), corners.size(), side, side, Bench::kScale,
                                                       Bench::kOffset, nullptr);
    const auto draw = [=](cv::Mat& mask) { cv::fillPoly(mask, polygons, cv::Scalar(1)); };
    return MaskCase(roi, {"`cv::fillPoly`", DrawIntoFreshMask(side, draw)});
}

Case EllipseMask(int side)
{
    const auto roi = std::make_shared<Zvl::EllipseROI>(Position(side / 2.0, side / 2.0), 0.0, 0.0,
                                                       Length(Scaled(side, 1200.0)), Length(Scaled(side, 1800.0)), 0.0,
                                                       360.0, 30.0, side, side, Bench::kScale, Bench::kOffset, nullptr);
    const auto draw = [=](cv::Mat& mask)
    {
        cv::ellipse(mask, {side / 2, side / 2}, {RoundedScaled(side, 900.0), RoundedScaled(side, 600.0)}, 30.0, 0.0,
                    360.0, cv::Scalar(1), cv::FILLED);
    };
    return MaskCase(roi, {"`cv::ellipse`, filled", DrawIntoFreshMask(side, draw)});
}

Case RingSectorMask(int side)
{
    const auto roi = std::make_shared<Zvl::CircleROI>(Position(side / 2.0, side / 2.0), Length(Scaled(side, 500.0)),
                                                      Length(Scaled(side, 900.0)), 20.0, 250.0, side, side,
                                                      Bench::kScale, Bench::kOffset, nullptr);
    const auto draw = [=](cv::Mat& mask)
    {
        const auto sector = [&](double radius, double value)
        {
            const int cells = RoundedScaled(side, radius);
            cv::ellipse(mask, {side / 2, side / 2}, {cells, cells}, 0.0, 20.0, 270.0, cv::Scalar(value), cv::FILLED);
        };
        sector(900.0, 1.0);
        sector(500.0, 0.0);
    };
    return MaskCase(roi, {"two `cv::ellipse`, filled", DrawIntoFreshMask(side, draw)});
}

/** The heights that are not missing, 255 each, as OpenCV makes them in a fresh matrix. */
cv::Mat Valid(const cv::Mat& heights)
{
    cv::Mat valid;
    cv::inRange(heights, -32767, 32767, valid);
    return valid;
}

Case SurfaceMask(int side)
{
    const auto roi = std::make_shared<Zvl::SurfaceROI>(Scan(side), side, side, Bench::kScale, Bench::kOffset, nullptr);
    const cv::Mat heights = Heights(Scan(side).layers[0]);
    return MaskCase(roi, {"`cv::inRange`", [=] { Keep(*Valid(heights).data); }}, 2.0);
}

Case IntensityMask(int side)
{
    constexpr std::uint8_t kMinimum = 60;
    constexpr std::uint8_t kMaximum = 190;
    const Zvl::Surface scan = ScanWithIntensities(side);
    const auto roi = std::make_shared<Zvl::IntensityROI>(scan, side, side, Bench::kScale, Bench::kOffset, kMinimum,
                                                         kMaximum, nullptr);
    const auto peer = [scan]
    {
        cv::Mat mask;
        cv::inRange(Bytes(scan.layers[1]), kMinimum, kMaximum, mask);
        cv::bitwise_and(mask, Valid(Heights(scan.layers[0])), mask);
        Keep(*mask.data);
    };
    return MaskCase(roi, {"two `cv::inRange` and `cv::bitwise_and`", peer}, 3.0);
}

Case OrOfMasks(int side)
{
    const std::vector<Zo::Object<void*>> masks = {RandomMask(side, 1), RandomMask(side, 2)};
    // Both write to the same array: where it lies can make more of a difference than who writes to it.
    const Zo::Object<void*> result = Bench::NewArray(xxq8u_type, side, side);
    const auto ours = [masks, result]
    {
        qArray2 out = result.Get();
        Zvl::MaskOperation(masks[0], masks[1], Zvl::MaskOperationOr, &out, nullptr);
    };
    const auto peer = [masks, result] { cv::bitwise_or(Bytes(masks[0]), Bytes(masks[1]), Bytes(result)); };
    return {
        .ours = ours, .peers = {{"`cv::bitwise_or`", peer}}, .items = Square(side), .bytesMoved = 3.0 * Square(side)};
}

Case MergedMasks(int side)
{
    const std::vector<Zo::Object<void*>> masks = {RandomMask(side, 1), RandomMask(side, 2)};
    const std::vector<Zvl::Rect2d<int>> rects(2, {0, 0, side, side});
    const auto ours = [masks, rects]
    {
        Zo::Object<void*> merged;
        Zvl::MergeMasks(masks, rects, merged.Slot(), nullptr, nullptr);
    };
    const auto peer = [masks]
    {
        cv::Mat result;
        cv::bitwise_or(Bytes(masks[0]), Bytes(masks[1]), result);
        Keep(*result.data);
    };
    return {.ours = ours,
            .peers = {{"`cv::bitwise_or`", peer}},
            .items = Square(side),
            .bytesMoved = 3.0 * Square(side),
            .outputBytes = Square(side)};
}

Case MaskedSurface(int side)
{
    const auto disc =
        std::make_shared<Zvl::CircleROI>(Position(side / 2.0, side / 2.0), 0.0, Length(Scaled(side, 1020.0)), 0.0,
                                         360.0, side, side, Bench::kScale, Bench::kOffset, nullptr);
    const Zvl::Rect2d<int> box = disc->GetBoundingBox();
    const auto ours = [side, disc]
    {
        Zvl::Surface masked;
        Zvl::ApplyMask(Scan(side), disc, &masked, nullptr);
    };
    const cv::Mat heights = Heights(Scan(side).layers[0])({box.x, box.y, box.width, box.height});
    const auto peer = [heights, mask = disc->GetMask()]
    {
        cv::Mat masked(heights.size(), CV_16S);
        masked.setTo(Zvl::GetNull<short>()); // faster than the constructor with a value
        heights.copyTo(masked, Bytes(mask));
        Keep(*masked.data);
    };
    const double cells = static_cast<double>(box.width) * box.height;
    return {.ours = ours,
            .peers = {{"`copyTo` with a mask", peer}},
            .items = cells,
            .bytesMoved = 5.0 * cells,
            .outputBytes = 2.0 * cells};
}

} // namespace

std::vector<Operation> CommonOperations()
{
    return {
        {"`PolygonROI` mask, star of 100 vertices", "cells", true, PolygonMask},
        {"`EllipseROI` mask, turned", "cells", true, EllipseMask},
        {"`CircleROI` mask, ring of 250 degrees", "cells", true, RingSectorMask},
        {"`SurfaceROI` mask", "cells", true, SurfaceMask},
        {"`IntensityROI` mask", "cells", true, IntensityMask},
        {"`MaskOperation`, union", "cells", false, OrOfMasks},
        {"`MergeMasks` of two", "cells", true, MergedMasks},
        {"`ApplyMask` of a disc", "cells", false, MaskedSurface},
    };
}

} // namespace Survey
