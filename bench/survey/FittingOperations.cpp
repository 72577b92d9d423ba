#include "survey/Maps.h"
#include "survey/Operation.h"

#include "Fitting/CircleCircumscribed.h"

#include <ZdkVisionLib/Fitting/Fit.h>

#include <opencv2/imgproc.hpp>

#include <Eigen/Dense>

#include <algorithm>

namespace Survey
{

namespace
{

using Points = std::vector<qPoint64f>;

std::vector<cv::Point2f> InSinglePrecision(const Points& points)
{
    std::vector<cv::Point2f> converted;
    for (const qPoint64f& point : points)
    {
        converted.emplace_back(static_cast<float>(point.x), static_cast<float>(point.y));
    }
    return converted;
}

/** Two passes over the cells, as one writes them with Eigen: the mean, then the sum of outer products. */
void PlaneByCovariance(const cv::Mat& heights, const cv::Mat& mask)
{
    const auto forEachCell = [&](auto action)
    {
        for (int row = 0; row < heights.rows; ++row)
        {
            for (int column = 0; column < heights.cols; ++column)
            {
                if (mask.at<std::uint8_t>(row, column) != 0)
                {
                    action(Eigen::Vector3d(column, row, heights.at<std::int16_t>(row, column)));
                }
            }
        }
    };
    Eigen::Vector3d mean = Eigen::Vector3d::Zero();
    forEachCell([&](const Eigen::Vector3d& point) { mean += point; });
    mean /= cv::countNonZero(mask);
    Eigen::Matrix3d covariance = Eigen::Matrix3d::Zero();
    forEachCell([&](const Eigen::Vector3d& point)
                { covariance.noalias() += (point - mean) * (point - mean).transpose(); });
    Keep(Eigen::SelfAdjointEigenSolver<Eigen::Matrix3d>(covariance).eigenvectors().col(0).eval());
}

Case Plane(int side)
{
    const Zo::Object<void*> mask = ValidMask(side);
    const auto ours = [side, mask]
    {
        qPlane3d64f plane;
        Zvl::FitPlane(Scan(side), {0, 0, side, side}, mask, &plane);
        Keep(plane);
    };
    const auto peer = [side, mask] { PlaneByCovariance(Heights(Scan(side).layers[0]), Bytes(mask)); };
    return {.ours = ours,
            .peers = {{"covariance with Eigen", peer}},
            .items = Square(side),
            .bytesMoved = 3.0 * Square(side)};
}

std::vector<qPoint3d64f> NoisySphere(std::size_t count)
{
    std::mt19937_64 random(1);
    std::normal_distribution<double> normal;
    std::vector<qPoint3d64f> points(count);
    for (qPoint3d64f& point : points)
    {
        const Eigen::Vector3d direction = Eigen::Vector3d(normal(random), normal(random), normal(random)).normalized();
        const Eigen::Vector3d p = (12.0 + 0.05 * normal(random)) * direction;
        point = {3.0 + p.x(), -4.0 + p.y(), 5.0 + p.z()};
    }
    return points;
}

void SphereByNormalEquations(const std::vector<qPoint3d64f>& points)
{
    Eigen::Matrix4d matrix = Eigen::Matrix4d::Zero();
    Eigen::Vector4d vector = Eigen::Vector4d::Zero();
    for (const qPoint3d64f& point : points)
    {
        const Eigen::Vector4d row(point.x, point.y, point.z, 1.0);
        matrix.noalias() += row * row.transpose();
        vector += row * row.head<3>().squaredNorm();
    }
    const Eigen::Vector4d solution = matrix.inverse() * vector;
    Keep(std::sqrt(solution(3) + solution.head<3>().squaredNorm() / 4.0));
}

Case Sphere(int side, double percent)
{
    const std::vector<qPoint3d64f> points = NoisySphere(ManyPoints(side));
    Case subject;
    subject.items = static_cast<double>(points.size());
    subject.ours = [=]
    {
        qPoint3d64f center;
        double radius = 0.0;
        Zvl::FitSphere(points.data(), points.size(), &center, &radius, nullptr, percent, nullptr, nullptr, 10);
        Keep(radius);
    };
    if (percent == 0.0)
    {
        subject.peers = {{"normal equations with Eigen", [=] { SphereByNormalEquations(points); }}};
    }
    return subject;
}

/** A rough, lobed circle of a radius of about 10, from angle to angle. With points in it, too, the innermost have
 *  @p inside of the radius. */
Points PolarPoints(std::size_t count, double inside, double roughness)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> areas(inside * inside, 1.0);
    std::normal_distribution<double> noise;
    Points points(count);
    for (std::size_t i = 0; i < count; ++i)
    {
        const double angle = 6.283185307179586 * static_cast<double>(i) / static_cast<double>(count);
        const double radius = 10.0 * std::sqrt(areas(random)) + 0.1 * std::cos(3.0 * angle) + roughness * noise(random);
        points[i] = {25.0 + radius * std::cos(angle), -40.0 + radius * std::sin(angle)};
    }
    return points;
}

Points Disc(std::size_t count)
{
    return PolarPoints(count, 0.0, 0.0);
}

Points Ring(std::size_t count)
{
    return PolarPoints(count, 1.0, 0.003);
}

Points Shuffled(Points points)
{
    std::shuffle(points.begin(), points.end(), std::mt19937_64(3));
    return points;
}

/** The circle by a QR decomposition, which is made anew after each rejection of the farthest point. */
void CircleByQr(const Points& points, double percent)
{
    Eigen::MatrixX3d matrix(points.size(), 3);
    Eigen::VectorXd squares(points.size());
    for (Eigen::Index i = 0; i < matrix.rows(); ++i)
    {
        const qPoint64f& point = points[static_cast<std::size_t>(i)];
        matrix.row(i) << point.x, point.y, 0.5;
        squares(i) = (point.x * point.x + point.y * point.y) / 2.0;
    }
    const auto rejected = static_cast<Eigen::Index>(static_cast<double>(points.size()) * percent / 100.0);
    for (Eigen::Index count = matrix.rows();; --count)
    {
        const auto used = matrix.topRows(count);
        const Eigen::RowVector3d solution = used.colPivHouseholderQr().solve(squares.head(count)).transpose();
        const double radius = std::sqrt(solution(2) + solution.head<2>().squaredNorm());
        if (count == matrix.rows() - rejected)
        {
            Keep(radius);
            return;
        }
        const auto distances = (used.leftCols<2>().rowwise() - solution.head<2>()).rowwise().norm();
        Eigen::Index farthest = 0;
        (distances.array() - radius).abs().maxCoeff(&farthest);
        matrix.row(farthest) = matrix.row(count - 1); // the order of the rows matters to nobody
        squares(farthest) = squares(count - 1);
    }
}

/** The definition asks for a pass over the points after each rejection. */
double PointsOfAllPasses(std::size_t points, double percent)
{
    const auto count = static_cast<double>(points);
    return count * (1.0 + count * percent / 100.0);
}

Case Circle(int side, double percent)
{
    const Points points = PolarPoints(FewPoints(side), 1.0, 0.05);
    const auto ours = [=]
    {
        qPoint64f center;
        double radius = 0.0;
        Zvl::FitCircle(points.data(), points.size(), percent, Zvl::CIRCLE_LSC, &center, &radius, nullptr, nullptr,
                       nullptr, nullptr, nullptr, nullptr, nullptr);
        Keep(radius);
    };
    return {.ours = ours,
            .peers = {{percent > 0.0 ? "QR with Eigen in each pass" : "QR with Eigen",
                       [=] { CircleByQr(points, percent); }}},
            .items = PointsOfAllPasses(points.size(), percent)};
}

Case CircumscribedCircle(const Points& points)
{
    const auto ours = [points]
    {
        double radius = 0.0;
        Zvl::FitCircle_MCC(points.data(), points.size(), nullptr, &radius, nullptr, nullptr, nullptr, nullptr, nullptr);
        Keep(radius);
    };
    const auto peer = [converted = InSinglePrecision(points)]
    {
        cv::Point2f center;
        float radius = 0.0F;
        cv::minEnclosingCircle(converted, center, radius);
        Keep(radius);
    };
    return {.ours = ours,
            .peers = {{"`cv::minEnclosingCircle`, single precision", peer}},
            .items = static_cast<double>(points.size())};
}

Case MinimumZone(int side)
{
    const Points points = Ring(FewPoints(side));
    const auto ours = [points]
    {
        double radii[2] = {};
        Zvl::FitCircle(points.data(), points.size(), 0.0, Zvl::CIRCLE_MZC, nullptr, &radii[0], &radii[1], nullptr,
                       nullptr, nullptr, nullptr, nullptr, nullptr);
        Keep(radii);
    };
    return {.ours = ours, .items = static_cast<double>(points.size())};
}

/** Every other point is an outlier. */
Case TrimmedCircle(int side)
{
    Points points = PolarPoints(FewPoints(side) / 5, 1.0, 0.05);
    std::mt19937_64 random(2);
    std::uniform_real_distribution<double> box(-30.0, 30.0);
    for (std::size_t i = 0; i < points.size(); i += 2)
    {
        points[i] = {25.0 + box(random), -40.0 + box(random)};
    }
    const auto ours = [points, seed = 1U]() mutable
    {
        qPoint64f center;
        double radius = 0.0;
        Zvl::FitCircleByRLTS(points.data(), points.size(), 50.0, center, radius, nullptr, &seed, 0);
        Keep(radius);
    };
    return {.ours = ours, .items = static_cast<double>(points.size())};
}

Points NoisyCurve(std::size_t count, double curvature)
{
    std::mt19937_64 random(1);
    std::uniform_real_distribution<double> along(-2.0, 2.0);
    std::normal_distribution<double> noise(0.0, 0.05);
    Points points(count);
    for (qPoint64f& point : points)
    {
        const double x = along(random);
        point = {x, curvature * x * x + 0.3 * x + 12.0 + noise(random)};
    }
    return points;
}

Case Line(int side)
{
    const Points points = NoisyCurve(FewPoints(side), 0.0);
    const auto ours = [points]
    {
        double line[2] = {};
        Zvl::FitLine(points.data(), nullptr, points.size(), &line[0], &line[1]);
        Keep(line);
    };
    const auto peer = [converted = InSinglePrecision(points)]
    {
        cv::Vec4f line;
        cv::fitLine(converted, line, cv::DIST_L2, 0.0, 0.01, 0.01);
        Keep(line);
    };
    return {.ours = ours,
            .peers = {{"`cv::fitLine`, single precision", peer}},
            .items = static_cast<double>(points.size())};
}

/** A line by OpenCV, made anew after each rejection of the farthest point. */
void LineWithRejectionByOpenCv(std::vector<cv::Point2f> points, double percent)
{
    const std::size_t kept =
        points.size() - static_cast<std::size_t>(static_cast<double>(points.size()) * percent / 100.0);
    cv::Vec4f line;
    cv::fitLine(points, line, cv::DIST_L2, 0.0, 0.01, 0.01);
    while (points.size() > kept)
    {
        const auto distance = [&line](const cv::Point2f& point)
        { return std::fabs((point.x - line[2]) * line[1] - (point.y - line[3]) * line[0]); };
        std::size_t farthest = 0;
        float largest = -1.0F;
        for (std::size_t i = 0; i < points.size(); ++i)
        {
            if (distance(points[i]) > largest)
            {
                largest = distance(points[i]);
                farthest = i;
            }
        }
        points[farthest] = points.back();
        points.pop_back();
        cv::fitLine(points, line, cv::DIST_L2, 0.0, 0.01, 0.01);
    }
    Keep(line);
}

Case LineWithRejection(int side)
{
    constexpr double kPercent = 10.0;
    const Points points = NoisyCurve(FewPoints(side), 0.0);
    const auto ours = [points]
    {
        double line[2] = {};
        Zvl::FitLineIterative(points.data(), points.size(), kPercent, &line[0], &line[1], nullptr, nullptr);
        Keep(line);
    };
    const auto peer = [converted = InSinglePrecision(points)] { LineWithRejectionByOpenCv(converted, kPercent); };
    return {.ours = ours,
            .peers = {{"`cv::fitLine` in each pass, single precision", peer}},
            .items = PointsOfAllPasses(points.size(), kPercent)};
}

void PolynomialByQr(const Points& points, Eigen::Index degree)
{
    Eigen::MatrixXd powers(points.size(), degree + 1);
    Eigen::VectorXd y(points.size());
    for (Eigen::Index i = 0; i < y.size(); ++i)
    {
        const qPoint64f& point = points[static_cast<std::size_t>(i)];
        powers(i, 0) = 1.0;
        for (Eigen::Index j = 1; j <= degree; ++j)
        {
            powers(i, j) = powers(i, j - 1) * point.x;
        }
        y(i) = point.y;
    }
    Keep(powers.householderQr().solve(y).eval());
}

Case Polynomial(int side, std::size_t degree)
{
    const Points points = NoisyCurve(FewPoints(side), 0.3);
    const auto ours = [points, degree, coefficients = std::vector<double>(degree + 1)]() mutable
    { Keep(Zvl::FitPolynomial(points.data(), points.size(), degree, coefficients.data())); };
    return {.ours = ours,
            .peers = {{"QR with Eigen", [=] { PolynomialByQr(points, static_cast<Eigen::Index>(degree)); }}},
            .items = static_cast<double>(points.size())};
}

} // namespace

std::vector<Operation> FittingOperations()
{
    return {
        {"`FitPlane`", "cells", false, Plane},
        {"`FitSphere`", "points", false, [](int side) { return Sphere(side, 0.0); }},
        {"`FitSphere`, 10 % rejected in 10 passes", "points", false, [](int side) { return Sphere(side, 10.0); }},
        {"`FitCircle`", "points", false, [](int side) { return Circle(side, 0.0); }},
        {"`FitCircle`, 10 % rejected", "points of all passes", false, [](int side) { return Circle(side, 10.0); }},
        {"`FitCircle`, minimum zone", "points", false, MinimumZone},
        {"Circumscribed circle, disc", "points", false,
         [](int side) { return CircumscribedCircle(Shuffled(Disc(FewPoints(side)))); }},
        {"Circumscribed circle, ring in order", "points", false,
         [](int side) { return CircumscribedCircle(Ring(FewPoints(side))); }},
        {"Circumscribed circle, ring in random order", "points", false,
         [](int side) { return CircumscribedCircle(Shuffled(Ring(FewPoints(side)))); }},
        {"`FitCircleByRLTS`, half outliers", "points", false, TrimmedCircle},
        {"`FitLine`", "points", false, Line},
        {"`FitLineIterative`, 10 % rejected", "points of all passes", false, LineWithRejection},
        {"`FitPolynomial`, degree 2", "points", false, [](int side) { return Polynomial(side, 2); }},
        {"`FitPolynomial`, degree 5", "points", false, [](int side) { return Polynomial(side, 5); }},
    };
}

} // namespace Survey
