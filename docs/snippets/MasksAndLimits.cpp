#include "Scan.h"

int main()
{
    //! [snippet]
    // A ramp from 0 mm to 1.59 mm, with a column of missing heights at x = 8 mm.
    const Zvl::Surface scan = MakeScan([](double x, double) { return IsNear(x, 8.0, 0.01) ? std::nan("") : 0.1 * x; });

    // A rectangle of 40 by 20 cells; of these, the heights from 0.7 mm to 0.85 mm.
    Zvl::RectangleROI region(6.0, 5.0, 3.9, 1.9, 0.0, kColumns, kRows, kCell, kOrigin, nullptr);
    Expect(CountCells(region.GetMask()) == 40 * 20);
    Zvl::ThresholdHeight(scan, 0.7, 0.85, region);
    Expect(CountCells(region.GetMask()) == 15 * 20); // 16 columns of that height, of which one is missing

    // Then the middle half of these, by rank.
    Zvl::ThresholdPercentile<short>(scan, 25.0, 75.0, region.GetBoundingBox(), region.GetMask());
    const int kept = CountCells(region.GetMask());
    std::printf("%d cells in the middle half\n", kept);
    Expect(kept > 5 * 20 && kept < 10 * 20);

    // Masks with boxes of their own are merged into one with a box around all.
    Zvl::RectangleROI other(1.0, 1.0, 0.9, 0.9, 0.0, kColumns, kRows, kCell, kOrigin, nullptr);
    Zo::Object<void*> merged;
    Zvl::Rect2d<int> box;
    Zvl::MergeMasks({region.GetMask(), other.GetMask()}, {region.GetBoundingBox(), other.GetBoundingBox()},
                    merged.Slot(), &box, nullptr);
    Expect(CountCells(merged) == kept + 100 && box.x == 10 && box.y == 10);

    // The scan cut down to the region: heights outside the mask are missing.
    Zvl::Surface part;
    Zvl::CropSurfaceFromROI(scan, region.GetBoundingBox(), region.GetMask(), part, nullptr);
    Expect(qArray2_Length(part.layers[0], 1) == 40 && IsNear(part.offset.x, 6.0, 1e-12));
    //! [snippet]
}
