#include "Scan.h"

#include <vector>

int main()
{
    //! [snippet]
    // A ball of radius 10 mm that rises through a plate at z = 4 mm; the middle of the ball is at z = -3 mm.
    const auto ballHeight = [](double x, double y)
    { return -3.0 + std::sqrt(100.0 - (x - 8.0) * (x - 8.0) - (y - 6.0) * (y - 6.0)); };
    const Zvl::Surface scan = MakeScan([&](double x, double y) { return std::fmax(4.0, ballHeight(x, y)); });

    // The cap: what is higher than 5 mm, within 5 mm of the middle.
    Zvl::CircleROI cap({8.0, 6.0}, 0.0, 5.0, 0.0, 360.0, kColumns, kRows, kCell, kOrigin, nullptr);
    Zvl::ThresholdHeight(scan, 5.0, 10.0, cap);
    qPoint3d64f center{};
    double radius = 0.0;
    std::vector<qPoint3d64f> points;
    std::vector<qPoint3d64f> rejected;
    Zvl::FitSphere(scan, cap.GetBoundingBox(), cap.GetMask(), &center, &radius, points, nullptr, 1.0, nullptr,
                   &rejected, 1);
    std::printf("radius %.4f mm from %zu points without %zu\n", radius, points.size(), rejected.size());
    Expect(IsNear(radius, 10.0, 0.001) && IsNear(center.z, -3.0, 0.001));

    // The plate: what is lower than 4.1 mm. The region is the whole scan.
    Zvl::RectangleROI whole(0.0, 0.0, 15.9, 11.9, 0.0, kColumns, kRows, kCell, kOrigin, nullptr);
    Zvl::ThresholdHeight(scan, 3.9, 4.0, whole);
    qPlane3d64f plate{};
    Zvl::FitPlane(scan, whole.GetBoundingBox(), whole.GetMask(), &plate);
    std::printf("plate at %.3f mm, normal (%.3f, %.3f, %.3f)\n", plate.point.z, plate.normal.x, plate.normal.y,
                plate.normal.z);
    Expect(IsNear(plate.point.z, 4.0, 1e-9) && IsNear(plate.normal.z, 1.0, 1e-9));
    //! [snippet]
}
