#include "Scan.h"

int main()
{
    //! [snippet]
    // A ramp with a shadow of 5 columns, and a hole of 2 mm by 2 mm.
    const Zvl::Surface scan = MakeScan(
        [](double x, double y)
        {
            const bool isShadow = x > 3.95 && x < 4.45;
            const bool isHole = IsNear(x, 11.0, 1.0) && IsNear(y, 6.0, 1.0);
            return isShadow || isHole ? std::nan("") : 0.1 * x;
        });

    Zvl::SurfaceFillGapParams limits;
    limits.resolutionX = kCell.x;
    limits.resolutionY = kCell.y;
    limits.resolutionZ = kCount;
    limits.maxGapX = 1.0;    // mm
    limits.maxSlopeX = 45.0; // degrees; steeper gaps take their lower end
    Zo::Object<void*> filled;
    Zo::Object<void*> noIntensity;
    Zvl::SurfaceFillGapXY(limits, scan.layers[0], nullptr, filled, noIntensity, nullptr);

    const short inShadow = *static_cast<const short*>(qArray2_At(filled, 60, 42));
    const short inHole = *static_cast<const short*>(qArray2_At(filled, 60, 110));
    std::printf("in the shadow %d, in the hole %d\n", inShadow, inHole);
    Expect(inShadow == 420);                 // 0.42 mm, interpolated
    Expect(inHole == Zvl::GetNull<short>()); // wider than 1 mm, and left open
    //! [snippet]
}
