//! [program]
#include "Scan.h"

double Shape(double x, double y)
{
    return 2.0 + 0.1 * std::sin(x) * std::cos(y);
}

int main()
{
    // The golden surface, and a scan with a dent 0.08 mm deep about (5, 6). The scan begins 1 mm further right.
    Zvl::Surface golden = MakeScan(Shape);
    Zvl::Surface scan = MakeScan([](double x, double y)
                                 { return Shape(x + 1.0, y) - (std::hypot(x - 4.0, y - 6.0) < 0.8 ? 0.08 : 0.0); });
    scan.offset.x = 1.0;

    // The scan minus the golden surface, where both have a height.
    Zvl::Surface difference;
    Zvl::Arithmetics::Apply(Zvl::ArithmeticOperator::Subtract, Zvl::ArithmeticLogic::Intersection, scan, golden,
                            difference);

    // What is lower than 0.05 mm under it, anywhere in the difference.
    Zvl::SurfaceInputData data{};
    Zvl::RetrieveSurfaceInputData(difference, &data);
    const qPoint64f origin = {difference.offset.x, difference.offset.y};
    Zvl::RectangleROI dents(origin.x, origin.y, static_cast<double>(data.width - 1) * kCell.x,
                            static_cast<double>(data.height - 1) * kCell.y, 0.0, data.width, data.height, kCell, origin,
                            nullptr);
    Zvl::ThresholdHeight(difference, -30.0, -0.05, dents);
    const int cells = CountCells(dents.GetMask());

    // Its box. Here x, y and z are the centre of the box.
    const Zvl::Region3d<double> box =
        Zvl::GetBoundingBox({{difference, dents.GetBoundingBox(), dents.GetMask()}}, 0, nullptr);
    std::printf("dent of %.2f mm2 about (%.1f, %.1f)\n", cells * kCell.x * kCell.y, box.x, box.y);
    Expect(cells > 180 && cells < 220 && IsNear(box.x, 5.0, 0.1) && IsNear(box.y, 6.0, 0.1));
}
//! [program]
