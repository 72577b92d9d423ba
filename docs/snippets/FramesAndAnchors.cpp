#include "Scan.h"

#include <vector>

int main()
{
    //! [snippet]
    // Three holes of the part, in its drawing and where they were found in this scan.
    const std::vector<qPoint64f> drawn = {{2.0, 2.0}, {10.0, 2.0}, {6.0, 8.0}};
    const std::vector<qPoint64f> found = {{1.0, 3.0}, {1.0, 11.0}, {-5.0, 7.0}}; // turned by 90 degrees, and shifted

    // Carries the second set onto the first: from the drawing into the scan.
    Zvl::RefFrame toScan;
    toScan.SetFrame(found, drawn);
    const qPoint64f hole = toScan.Apply(qPoint64f{6.0, 2.0});
    std::printf("(6, 2) of the drawing lies at (%.3f, %.3f)\n", hole.x, hole.y);
    Expect(IsNear(hole.x, 1.0, 1e-12) && IsNear(hole.y, 7.0, 1e-12));

    // Frames compose in reading order: first toScan, then the shift.
    const Zvl::RefFrame shifted = toScan * Zvl::RefFrame().Translate(0.5, 0.0, 0.0);
    Expect(IsNear(shifted.Apply(qPoint64f{6.0, 2.0}).x, 1.5, 1e-12));

    // The inverse leads back.
    Zvl::RefFrame toDrawing = toScan;
    toDrawing.InvertOrtho();
    Expect(IsNear(toDrawing.Apply(hole).x, 6.0, 1e-12));

    // The same displacement as an anchor: a turn about the origin, then a shift.
    Zvl::Region2d<double> pocket = {5.0, 1.5, 2.0, 1.0, 0.0};
    Zvl::AnchorRectangle({toScan.GetTx(), toScan.GetTy(), Zvl::GetNull<double>(), 90.0}, pocket, &pocket);
    Expect(IsNear(pocket.x + pocket.width / 2.0, 1.0, 1e-12) && IsNear(pocket.angle, 90.0, 1e-12));
    //! [snippet]
}
