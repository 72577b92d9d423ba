//! [program]
#include "Scan.h"

#include <memory>

int main()
{
    const Zvl::Surface scan = MakeScan([](double x, double y) { return 1.0 + 0.01 * x + 0.02 * y; });

    // Two pads and a polygon between them. Members are shared: keep a pointer to change one later.
    const auto left = std::make_shared<Zvl::CircleROI>(qPoint64f{4.0, 6.0}, 0.0, 2.0, 0.0, 360.0, kColumns, kRows,
                                                       kCell, kOrigin, nullptr);
    const auto right = std::make_shared<Zvl::CircleROI>(qPoint64f{12.0, 6.0}, 0.0, 2.0, 0.0, 360.0, kColumns, kRows,
                                                        kCell, kOrigin, nullptr);
    const qPoint64f corners[] = {{4.0, 5.5}, {12.0, 5.5}, {12.0, 6.5}, {4.0, 6.5}};
    Zvl::ComposedROI part;
    part.Add(left);
    part.Add(right);
    part.Add(std::make_shared<Zvl::PolygonROI>(corners, 4, kColumns, kRows, kCell, kOrigin, nullptr));

    const Zvl::Rect2d<int> box = part.GetBoundingBox();
    const int cells = CountCells(part.GetMask());
    std::printf("%zu members, %d x %d cells, %d inside\n", static_cast<std::size_t>(part.GetRoiCount()), box.width,
                box.height, cells);
    Expect(cells < CountCells(left->GetMask()) + CountCells(right->GetMask()) + 81 * 11);

    // In the next scan the part lies 1 mm further down. The members follow; this composition stays as it is.
    const std::shared_ptr<Zvl::ROI> moved = part.ApplyAnchor({0.0, 1.0, Zvl::GetNull<double>(), 0.0});
    Expect(moved->GetBoundingBox().y == box.y + 10 && CountCells(moved->GetMask()) == cells);

    // The scan as seen through the union.
    Zvl::Surface seen;
    Zvl::ApplyMask(scan, moved, &seen, nullptr);
    Expect(HeightAt(seen, 0, 0) == Zvl::GetNull<short>()); // a corner of the box, between the shapes
    Expect(IsNear(seen.offset.x, box.x * kCell.x, 1e-12));
}
//! [program]
