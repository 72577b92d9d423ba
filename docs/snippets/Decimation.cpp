#include "Scan.h"

int main()
{
    //! [snippet]
    const Zvl::Surface scan = MakeScan([](double x, double) { return x < 0.35 ? std::nan("") : 0.1 * x; });

    // A quarter of the columns and rows. The size is derived from the ratio when it holds a 0.
    const Zvl::Surface coarse = Zvl::SurfaceDecimate(scan, {0, 0}, {0.25, 0.25}, nullptr);
    std::printf("%zu x %zu cells of %.1f mm\n", qArray2_Length(coarse.layers[0], 1),
                qArray2_Length(coarse.layers[0], 0), coarse.scale.x);
    Expect(qArray2_Length(coarse.layers[0], 1) == 40 && qArray2_Length(coarse.layers[0], 0) == 30);

    // Each new cell lies in the middle of the four by four that it stands for.
    Expect(IsNear(coarse.scale.x, 0.4, 1e-12) && IsNear(coarse.offset.x, 0.15, 1e-12));
    Expect(HeightAt(coarse, 10, 0) == Zvl::GetNull<short>()); // none of its cells has a height
    Expect(HeightAt(coarse, 10, 1) == 55);                    // the mean of 40, 50, 60 and 70 counts
    //! [snippet]
}
