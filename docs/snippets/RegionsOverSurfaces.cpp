#include "Scan.h"

#include <memory>
#include <numbers>

int main()
{
    //! [snippet]
    // A quarter of a ring around (8, 6), from 2 mm to 4 mm, from the x axis to the y axis.
    Zvl::CircleROI ring({8.0, 6.0}, 2.0, 4.0, 0.0, 90.0, kColumns, kRows, kCell, kOrigin, nullptr);

    const Zvl::Rect2d<int>& box = ring.GetBoundingBox(); // of the whole outer circle, in cells
    const int cells = CountCells(ring.GetMask());
    std::printf("box of %d x %d cells from (%d, %d), %d cells inside\n", box.width, box.height, box.x, box.y, cells);

    // Mask cell (r, c) stands for surface cell (box.y + r, box.x + c). Here: 2 mm further along both axes.
    const auto row = static_cast<std::size_t>(80 - box.y);
    const auto column = static_cast<std::size_t>(100 - box.x);
    Expect(*static_cast<const unsigned char*>(qArray2_At(ring.GetMask(), row, column)) == 1);

    // The area of the cells is that of the shape, but for cells at its outline.
    const double area = cells * kCell.x * kCell.y;
    Expect(IsNear(area, std::numbers::pi * (16.0 - 4.0) / 4.0, 0.3));

    // A turned rectangle, moved by what was found in this scan: a turn about the origin, then a shift.
    Zvl::RectangleROI slot(6.0, 5.0, 4.0, 2.0, 30.0, kColumns, kRows, kCell, kOrigin, nullptr);
    const std::shared_ptr<Zvl::ROI> moved = slot.ApplyAnchor({1.0, -0.5, Zvl::GetNull<double>(), 0.0});
    Expect(moved->GetBoundingBox().x == slot.GetBoundingBox().x + 10);
    //! [snippet]
}
