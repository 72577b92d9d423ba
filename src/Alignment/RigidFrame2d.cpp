#include <ZdkVisionLib/Alignment/RefFrame.h>

#include "Common/Check.h"
#include "Utils/MeanOfPoints.h"

#include <opencv2/core.hpp>

namespace Zvl
{

namespace
{

/** The sum of the outer products of paired points about their centroids. */
cv::Mat Covariance(const std::vector<qPoint64f>& a, const qPoint64f& centroidA, const std::vector<qPoint64f>& b,
                   const qPoint64f& centroidB)
{
    double xx = 0.0;
    double xy = 0.0;
    double yx = 0.0;
    double yy = 0.0;
    for (std::size_t index = 0; index < a.size(); ++index)
    {
        const qPoint64f da = {a[index].x - centroidA.x, a[index].y - centroidA.y};
        const qPoint64f db = {b[index].x - centroidB.x, b[index].y - centroidB.y};
        xx += da.x * db.x;
        xy += da.x * db.y;
        yx += da.y * db.x;
        yy += da.y * db.y;
    }
    return (cv::Mat_<double>(2, 2) << xx, xy, yx, yy);
}

/** The proper rotation that is nearest to @p covariance. The determinant is used as it comes, not rounded to
 *  +1 or -1. */
cv::Mat ProperRotation(const cv::Mat& covariance)
{
    cv::Mat w;
    cv::Mat u;
    cv::Mat vt;
    cv::SVD::compute(covariance, w, u, vt, cv::SVD::FULL_UV);
    const cv::Mat reflection = (cv::Mat_<double>(2, 2) << 1.0, 0.0, 0.0, cv::determinant(u * vt));
    return u * reflection * vt;
}

} // namespace

void RefFrame::SetFrame(const std::vector<qPoint64f>& a, const std::vector<qPoint64f>& b)
{
    if (a.size() < 2 || a.size() != b.size())
    {
        ZVL_THROW("Zvl::RefFrame::SetFrame", STATUS_BAD_DATA);
    }
    SetIdentity();
    const qPoint64f centroidA = MeanOfPoints(a);
    const qPoint64f centroidB = MeanOfPoints(b);
    const cv::Mat rotation = ProperRotation(Covariance(a, centroidA, b, centroidB));
    i.x = rotation.at<double>(0, 0);
    j.x = rotation.at<double>(0, 1);
    i.y = rotation.at<double>(1, 0);
    j.y = rotation.at<double>(1, 1);
    t.x = centroidA.x - i.x * centroidB.x - j.x * centroidB.y;
    t.y = centroidA.y - i.y * centroidB.x - j.y * centroidB.y;
}

} // namespace Zvl
