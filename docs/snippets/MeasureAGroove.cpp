//! [program]
#include "Scan.h"

#include <vector>

constexpr std::size_t kItems = 200;

/** A line scan over 20 mm: a face that rises a little, and a groove 1.5 mm deep from x = 8 mm to x = 11 mm. */
Zvl::Profile LineScan()
{
    Zvl::Profile line({0.0, 0.0}, {0.1, 0.001});
    line.AddLayer(xxq16s_type, kItems, nullptr);
    auto* heights = static_cast<short*>(qArray1_Data(line.layers[0]));
    for (std::size_t item = 0; item < kItems; ++item)
    {
        const bool isGroove = item >= 80 && item <= 110;
        heights[item] = static_cast<short>(4000 + item - (isGroove ? 1500 : 0));
    }
    return line;
}

/** The points of @p line that lie in @p region, which has been applied to it. */
std::vector<qPoint64f> PointsIn(const Zvl::Profile& line, Zvl::RoiProfile& region)
{
    const auto* heights = static_cast<const short*>(qArray1_Data(line.layers[0]));
    const auto* mask = static_cast<const unsigned char*>(qArray1_Data(region.GetMask()));
    const Zvl::RunLength<int> segment = region.GetBoundingSegment();
    std::vector<qPoint64f> points;
    for (int index = 0; index < segment.length; ++index)
    {
        if (mask[index] != 0)
        {
            const int item = segment.start + index;
            points.push_back({line.offset.x + item * line.scale.x, line.offset.y + heights[item] * line.scale.y});
        }
    }
    return points;
}

int main()
{
    const Zvl::Profile line = LineScan();
    const auto window = [&](double x, double y, double width, double height) -> std::shared_ptr<Zvl::RoiProfile>
    {
        return std::make_shared<Zvl::RectangleRoiProfile>(Zvl::Region2d<double>{x, y, width, height, 0.0}, kItems,
                                                          line.scale, line.offset, 1, nullptr);
    };

    // The face on both sides of the groove, as one region, and a line through it.
    Zvl::ComposedRoiProfile face(1, nullptr);
    face.Add(window(2.0, 3.0, 5.0, 2.0));
    face.Add(window(12.0, 3.0, 5.0, 2.0));
    face.ApplyRoi(line);
    const std::vector<qPoint64f> facePoints = PointsIn(line, face);
    double slope = 0.0;
    double intercept = 0.0;
    Zvl::FitLine(facePoints.data(), nullptr, facePoints.size(), &slope, &intercept);

    // The floor: what lies in the window far below the face.
    const std::shared_ptr<Zvl::RoiProfile> floor = window(6.0, 2.0, 7.0, 1.3);
    floor->ApplyRoi(line);
    const std::vector<qPoint64f> floorPoints = PointsIn(line, *floor);
    double depth = 0.0;
    for (const qPoint64f& point : floorPoints)
    {
        depth += (slope * point.x + intercept - point.y) / static_cast<double>(floorPoints.size());
    }
    const double width = floorPoints.back().x - floorPoints.front().x;
    std::printf("groove %.2f mm wide and %.3f mm deep\n", width, depth);
    Expect(IsNear(width, 3.0, 1e-9) && IsNear(depth, 1.5, 1e-9));
}
//! [program]
