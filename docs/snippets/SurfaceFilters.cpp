#include "Scan.h"

int main()
{
    //! [snippet]
    // A checkerboard of 1 mm and 3 mm, cell by cell, with one missing height.
    const Zvl::Surface scan = MakeScan(
        [](double x, double y)
        {
            const long parity = std::lround(x / kCell.x) + std::lround(y / kCell.y);
            return x < 0.05 && y < 0.05 ? std::nan("") : parity % 2 == 0 ? 1.0 : 3.0;
        });

    Zo::Object<void*> smooth;
    Zo::Test(qArray2_Construct(smooth.Slot(), xxq16s_type, kRows, kColumns, nullptr));
    const int keepNulls = 1;
    Zvl::SurfaceFilter(scan.layers[0], smooth, nullptr).Average({4, 4}, keepNulls);

    const auto at = [&](std::size_t row, std::size_t column)
    { return *static_cast<const short*>(qArray2_At(smooth, row, column)); };
    std::printf("in the middle %d, in the corner %d\n", at(60, 80), at(0, 0));
    Expect(at(60, 80) == 2000);                // windows of even size hold as many high cells as low ones
    Expect(at(0, 0) == Zvl::GetNull<short>()); // kept missing
    Expect(HeightAt(scan, 60, 80) == 1000);    // the input is as it was
    //! [snippet]
}
