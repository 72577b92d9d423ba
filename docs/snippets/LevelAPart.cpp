//! [program]
#include "Scan.h"

/** A tilted plate with a boss 0.5 mm high about (11, 6). */
Zvl::Surface ScanOfPart()
{
    return MakeScan([](double x, double y)
                    { return 3.0 + 0.03 * x - 0.02 * y + (std::hypot(x - 11.0, y - 6.0) < 2.0 ? 0.5 : 0.0); });
}

/** The plane through the face of the part, which is seen on the left. */
qPlane3d64f FaceOf(const Zvl::Surface& scan)
{
    Zvl::RectangleROI face(0.5, 0.5, 7.0, 11.0, 0.0, kColumns, kRows, kCell, kOrigin, nullptr);
    Zvl::ThresholdHeight(scan, Zvl::GetNull<double>(), Zvl::GetNull<double>(), face);
    qPlane3d64f plane{};
    Zvl::FitPlane(scan, face.GetBoundingBox(), face.GetMask(), &plane);
    return plane;
}

/** Takes the height of @p plane off each cell, so that 0 is on the face. Cells stay where they are, which is right for
 *  tilts of a few degrees. */
void Level(const Zvl::Surface& scan, const qPlane3d64f& plane)
{
    for (std::size_t row = 0; row < kRows; ++row)
    {
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            short& height = HeightAt(scan, row, column);
            if (height != Zvl::GetNull<short>())
            {
                const double x = scan.offset.x + static_cast<double>(column) * scan.scale.x - plane.point.x;
                const double y = scan.offset.y + static_cast<double>(row) * scan.scale.y - plane.point.y;
                const double z = scan.offset.z + height * scan.scale.z;
                const double onFace = plane.point.z - (plane.normal.x * x + plane.normal.y * y) / plane.normal.z;
                height = static_cast<short>(std::lround((z - onFace - scan.offset.z) / scan.scale.z));
            }
        }
    }
}

int main()
{
    const Zvl::Surface scan = ScanOfPart();
    Level(scan, FaceOf(scan));
    std::printf("face %d counts, boss %d counts\n", HeightAt(scan, 10, 10), HeightAt(scan, 60, 110));
    Expect(std::abs(HeightAt(scan, 10, 10)) <= 1 && std::abs(HeightAt(scan, 60, 110) - 500) <= 1);
}
//! [program]
