#include <ZdkVisionLib/Alignment/RefFrame.h>

#include <opencv2/core.hpp>

#include <limits>

namespace Zvl
{

namespace
{

cv::Mat Centroid(const std::vector<qPoint3d64f>& points)
{
    double x = 0.0;
    double y = 0.0;
    double z = 0.0;
    for (const qPoint3d64f& point : points)
    {
        x += point.x;
        y += point.y;
        z += point.z;
    }
    const auto count = static_cast<double>(points.size());
    return (cv::Mat_<double>(3, 1) << x / count, y / count, z / count);
}

/** The points about @p centroid, one column each. */
cv::Mat CenteredColumns(const std::vector<qPoint3d64f>& points, const cv::Mat& centroid)
{
    cv::Mat columns(3, static_cast<int>(points.size()), CV_64F);
    double* x = columns.ptr<double>(0);
    double* y = columns.ptr<double>(1);
    double* z = columns.ptr<double>(2);
    for (const qPoint3d64f& point : points)
    {
        *x++ = point.x - centroid.at<double>(0);
        *y++ = point.y - centroid.at<double>(1);
        *z++ = point.z - centroid.at<double>(2);
    }
    return columns;
}

/** The proper rotation R for which R * source is nearest to target, of their covariance. */
cv::Mat ProperRotation(const cv::Mat& covariance)
{
    cv::Mat w;
    cv::Mat u;
    cv::Mat vt;
    cv::SVD::compute(covariance, w, u, vt);
    cv::Mat v = vt.t();
    if (cv::determinant(u) * cv::determinant(v) < 0.0)
    {
        // The third direction has the smallest singular value, so that turning it round costs least.
        v.col(2) *= -1.0;
    }
    return v * u.t();
}

} // namespace

int EstimateRigidTransformation(const std::vector<qPoint3d64f>& source, const std::vector<qPoint3d64f>& target,
                                qL3dTransform3d* transform)
{
    constexpr auto kMaxPoints = static_cast<std::size_t>(std::numeric_limits<int>::max());
    const bool usable =
        transform != nullptr && source.size() == target.size() && source.size() >= 3 && source.size() <= kMaxPoints;
    if (!usable)
    {
        return STATUS_BAD_PARAMETER;
    }

    const cv::Mat sourceCentroid = Centroid(source);
    const cv::Mat targetCentroid = Centroid(target);
    const cv::Mat covariance = CenteredColumns(source, sourceCentroid) * CenteredColumns(target, targetCentroid).t();
    const cv::Mat rotation = ProperRotation(covariance);
    const cv::Mat translation = targetCentroid - rotation * sourceCentroid;

    const qStatus status = qL3dTransform3d_Identity(transform);
    if (status != STATUS_OK)
    {
        return status;
    }
    double* entry = transform->entries;
    for (int row = 0; row < 3; ++row)
    {
        for (int column = 0; column < 3; ++column)
        {
            *entry++ = rotation.at<double>(row, column);
        }
        *entry++ = translation.at<double>(row);
    }
    return STATUS_OK;
}

} // namespace Zvl
