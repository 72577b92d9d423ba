//! [program]
#include "Scan.h"

int main()
{
    // A plate that rises by 0.2 mm over 10 mm along x.
    const Zvl::Surface plate = MakeScan([](double x, double) { return 5.0 + 0.02 * x; });

    // The region to measure in: a disc, in the mapping of the scan.
    Zvl::CircleROI disc({8.0, 6.0}, 0.0, 4.02, 0.0, 360.0, kColumns, kRows, kCell, kOrigin, nullptr);

    // Missing heights do not take part; no limits on the others.
    Zvl::ThresholdHeight(plate, Zvl::GetNull<double>(), Zvl::GetNull<double>(), disc);

    qPlane3d64f plane{};
    Zvl::FitPlane(plate, disc.GetBoundingBox(), disc.GetMask(), &plane);
    const double slope = -plane.normal.x / plane.normal.z;
    std::printf("rises %.3f mm per mm; %.3f mm high in the middle\n", slope, plane.point.z);
    Expect(IsNear(slope, 0.02, 1e-6) && IsNear(plane.point.z, 5.16, 1e-6));
}
//! [program]
