// What the function of the README is called with: the scan of a ball of radius 20 mm below the sensor. tests/consumer/run puts
// the function in front of it.

#include <cmath>
#include <cstdio>

int main()
{
    constexpr int kSide = 200;
    Zvl::Surface scan; // cells of 0.1 mm, heights in counts of 1 um
    scan.scale = {0.1, 0.1, 0.001};
    scan.offset = {-10.0, -10.0, 0.0};
    scan.layers.resize(1);
    Zo::Test(qArray2_Construct(scan.layers[0].Slot(), xxq16s_type, kSide, kSide, nullptr));
    for (int row = 0; row < kSide; ++row)
    {
        for (int column = 0; column < kSide; ++column)
        {
            const double height = std::sqrt(400.0 - std::pow(0.1 * column - 10.0, 2) - std::pow(0.1 * row - 10.0, 2));
            *static_cast<short*>(
                qArray2_At(scan.layers[0], static_cast<std::size_t>(row), static_cast<std::size_t>(column))) =
                static_cast<short>(std::lround(1000.0 * height));
        }
    }
    const double radius = RadiusOfBall(scan, kSide, kSide);
    std::printf("radius %.2f mm\n", radius);
    return std::abs(radius - 20.0) < 0.005 ? 0 : 1;
}
