/** @file
 *  Fits of any points with any parameters. */

#include <ZdkVisionLib/Fitting/Fit.h>

#include "fuzz/Bytes.h"

namespace
{

using namespace Zvl;
using Fuzz::Bytes;

/** On a small grid, where points coincide and lie on lines, or anywhere. */
std::vector<qPoint64f> AnyPoints(Bytes& bytes)
{
    std::vector<qPoint64f> points(bytes.Size(0, 24));
    const std::uint8_t kind = bytes.Byte();
    for (qPoint64f& point : points)
    {
        point = kind < 128 ? qPoint64f{double(bytes.Int(-4, 4)), double(bytes.Int(-4, 4))}
                           : qPoint64f{bytes.Double(), bytes.Double()};
    }
    return points;
}

void FitLines(Bytes& bytes, const std::vector<qPoint64f>& points)
{
    double slope = 0.0;
    double intercept = 0.0;
    Zo::Object<void*> outliers;
    FitLine(points.data(), nullptr, points.size(), &slope, &intercept);
    Fuzz::Try(
        [&] {
            FitLineIterative(points.data(), points.size(), bytes.Double(), &slope, &intercept, outliers.Slot(),
                             nullptr);
        });
    const double sampleRatio = bytes.Double();
    const std::size_t iterations = bytes.Size(0, 20);
    FitLineRansac(points.data(), points.size(), sampleRatio, iterations, bytes.Double(), &slope, &intercept);
}

void FitCircles(Bytes& bytes, const std::vector<qPoint64f>& points)
{
    qPoint64f center{};
    double minRadius = 0.0;
    double maxRadius = 0.0;
    std::vector<qPoint64f> kept;
    const double percent = bytes.Double();
    FitCircle(points.data(), points.size(), percent, static_cast<CircleType>(bytes.Int(0, 2)), &center, &minRadius,
              &maxRadius, nullptr, nullptr, nullptr, nullptr, &kept, nullptr);
}

void FitTrimmedCircle(Bytes& bytes, const std::vector<qPoint64f>& points)
{
    qPoint64f center{};
    double radius = 0.0;
    unsigned seed = bytes.Byte();
    std::vector<int> outliers(points.size());
    const double percent = bytes.Flag() ? bytes.Int(0, 90) : bytes.Double();
    FitCircleByRLTS(points.data(), points.size(), percent, center, radius, outliers.data(), &seed, bytes.Int(0, 1));
}

void FitPolynomials(Bytes& bytes, const std::vector<qPoint64f>& points)
{
    const std::size_t degree = bytes.Size(0, 12);
    std::vector<double> coefficients(degree + 1);
    FitPolynomial(points.data(), points.size(), degree, coefficients.data());
    CalculatePolynomialValue(coefficients.data(), degree, bytes.Double());
}

void FitSpheres(Bytes& bytes, const std::vector<qPoint64f>& points)
{
    std::vector<qPoint3d64f> inSpace;
    for (const qPoint64f& point : points)
    {
        inSpace.push_back({point.x, point.y, bytes.Double()});
    }
    qPoint3d64f center{};
    double radius = 0.0;
    Fuzz::Try(
        [&]
        {
            const double percent = bytes.Double();
            FitSphere(inSpace.data(), inSpace.size(), &center, &radius, nullptr, percent, nullptr, nullptr,
                      bytes.Size(0, 5));
        });
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d64f_type, 0, nullptr));
    Zo::Test(qArrayList_Import(list, inSpace.data(), inSpace.size()));
    const int plane = bytes.Int(0, 1);
    FitCircle_Deprecated(list, plane, bytes.Double(), &center, &radius);
}

void FitPlanes(Bytes& bytes, const std::vector<qPoint64f>& /*points*/)
{
    const Surface surface = Fuzz::AnySurface(bytes);
    const Rect2d<int> rect = {bytes.Int(-2, 9), bytes.Int(-2, 9), bytes.Int(-1, 9), bytes.Int(-1, 9)};
    const std::size_t rows = bytes.Size(0, 9);
    const std::size_t columns = bytes.Size(0, 9);
    const Zo::Object<void*> mask = Fuzz::ByteArray(bytes, rows, columns);
    qPlane3d64f plane{};
    FitPlane(surface, rect, mask, &plane);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    using Fit = void (*)(Bytes&, const std::vector<qPoint64f>&);
    static constexpr Fit kFits[] = {FitLines, FitCircles, FitTrimmedCircle, FitPolynomials, FitSpheres, FitPlanes};
    const Fit fit = kFits[bytes.Size(0, std::size(kFits) - 1)];
    Fuzz::Try([&] { fit(bytes, AnyPoints(bytes)); });
    return 0;
}
