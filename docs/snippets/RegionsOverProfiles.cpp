#include "Scan.h"

int main()
{
    //! [snippet]
    // A line of 100 heights, 0.1 mm apart: a step from 1 mm to 3 mm at x = 5 mm.
    Zvl::Profile line({0.0, 0.0}, {0.1, 0.001}); // offset first, then scale
    line.AddLayer(xxq16s_type, 100, nullptr);
    auto* heights = static_cast<short*>(qArray1_Data(line.layers[0]));
    for (int item = 0; item < 100; ++item)
    {
        heights[item] = item < 50 ? 1000 : 3000;
    }

    // The rectangle from x = 3 mm to 8 mm and from 2 mm to 4 mm in height.
    const int isUniform = 1;
    Zvl::RectangleRoiProfile window({3.0, 2.0, 5.0, 2.0, 0.0}, 100, line.scale, line.offset, isUniform, nullptr);
    const Zvl::RunLength<int> segment = window.GetBoundingSegment();
    Expect(segment.start == 30 && segment.length == 51);

    // Only now is it known which items lie in the rectangle: those of the upper level.
    window.ApplyRoi(line);
    const auto* mask = static_cast<const unsigned char*>(qArray1_Data(window.GetMask()));
    int inside = 0;
    for (int index = 0; index < segment.length; ++index)
    {
        inside += mask[index] != 0 ? 1 : 0;
    }
    std::printf("items %d to %d, %d of them inside\n", segment.start, segment.start + segment.length - 1, inside);
    Expect(inside == 31 && mask[49 - segment.start] == 0 && mask[50 - segment.start] == 1);
    //! [snippet]
}
