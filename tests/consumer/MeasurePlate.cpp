// A host that fits a plane to a tilted plate, and sees what a failing call reports.

#include <ZdkVisionLib/ZdkVisionLib.h>

#include <cmath>
#include <cstdio>
#include <string>

namespace
{

constexpr std::size_t kRows = 60;
constexpr std::size_t kColumns = 80;

/** A plate that rises by one height count per column. */
Zvl::Surface MakePlate()
{
    Zvl::Surface plate;
    plate.scale = {0.5, 0.5, 0.5};
    plate.offset = {0.0, 0.0, 0.0};
    plate.layers.resize(1);
    Zo::Test(qArray2_Construct(plate.layers[0].Slot(), xxq16s_type, kRows, kColumns, nullptr));
    for (std::size_t row = 0; row < kRows; ++row)
    {
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            *static_cast<short*>(qArray2_At(plate.layers[0], row, column)) = static_cast<short>(column);
        }
    }
    return plate;
}

bool PlaneIsFound()
{
    const Zvl::Surface plate = MakePlate();
    Zvl::CircleROI disc({20.0, 15.0}, 0.0, 10.0, 0.0, 360.0, kColumns, kRows, {0.5, 0.5}, {0.0, 0.0}, nullptr);

    qPlane3d64f plane{};
    Zvl::FitPlane(plate, disc.GetBoundingBox(), disc.GetMask(), &plane);
    const double half = std::sqrt(0.5);
    std::printf("normal %.6f %.6f %.6f\n", plane.normal.x, plane.normal.y, plane.normal.z);
    return std::abs(plane.normal.x + half) < 1e-9 && std::abs(plane.normal.y) < 1e-9 &&
           std::abs(plane.normal.z - half) < 1e-9;
}

bool FailureIsCaught()
{
    try
    {
        Zvl::RetrieveSurfaceInputData(Zvl::Surface(), nullptr);
    }
    catch (const Zo::Exception& exception)
    {
        std::printf("%s\n", exception.what());
        return exception.GetStatus() == STATUS_BAD_PARAMETER &&
               std::string(exception.GetFunction()) == "Zvl::RetrieveSurfaceInputData";
    }
    return false;
}

} // namespace

int main()
{
    return PlaneIsFound() && FailureIsCaught() ? 0 : 1;
}
