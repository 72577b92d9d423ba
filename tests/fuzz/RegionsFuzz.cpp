/** @file
 *  Regions of any shape over small frames, and what takes their boxes and masks. */

#include <ZdkVisionLib/Common/MaskUniformSurface.h>
#include <ZdkVisionLib/Filter/Filter.h>
#include <ZdkVisionLib/Geometry/Geometry.h>

#include "fuzz/Bytes.h"

#include <array>

namespace
{

using namespace Zvl;
using Fuzz::Bytes;

struct Frame
{
    std::uint64_t width;
    std::uint64_t height;
    qPoint64f scale;
    qPoint64f offset;
};

std::shared_ptr<ROI> AnyRegion(Bytes& bytes, const Surface& surface, int depth = 0)
{
    const Frame frame = {
        bytes.Size(0, 40), bytes.Size(0, 40), {bytes.Scale(), bytes.Scale()}, {bytes.Double(), bytes.Double()}};
    const auto make = [&]<typename Region>(auto... shape)
    { return std::make_shared<Region>(shape..., frame.width, frame.height, frame.scale, frame.offset, nullptr); };
    const auto number = [&bytes] { return bytes.Double(); };
    const auto numbers = [&]<std::size_t count>()
    {
        std::array<double, count> values;
        std::generate(values.begin(), values.end(), number); // in this order, whatever the compiler
        return values;
    };
    switch (bytes.Int(0, 6))
    {
    case 0:
    {
        std::vector<Point2d<double>> points(bytes.Size(0, 9));
        for (Point2d<double>& point : points)
        {
            point = {number(), number()};
        }
        return make.template operator()<PolygonROI>(points);
    }
    case 1:
    {
        const std::array<double, 5> n = numbers.template operator()<5>();
        return make.template operator()<RectangleROI>(n[0], n[1], n[2], n[3], n[4]);
    }
    case 2:
    {
        const std::array<double, 9> n = numbers.template operator()<9>();
        return make.template operator()<EllipseROI>(n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7], n[8]);
    }
    case 3:
    {
        const std::array<double, 6> n = numbers.template operator()<6>();
        return make.template operator()<CircleROI>(n[0], n[1], n[2], n[3], n[4], n[5]);
    }
    case 4:
        return make.template operator()<SurfaceROI>(surface);
    case 5:
    {
        const std::uint8_t lowest = bytes.Byte();
        return std::make_shared<IntensityROI>(surface, frame.width, frame.height, frame.scale, frame.offset, lowest,
                                              bytes.Byte(), nullptr);
    }
    default:
    {
        auto composed = std::make_shared<ComposedROI>();
        for (int member = bytes.Int(0, 3); member > 0 && depth < 2; --member)
        {
            composed->Add(AnyRegion(bytes, surface, depth + 1));
        }
        return composed;
    }
    }
}

void Use(Bytes& bytes)
{
    const Surface surface = Fuzz::AnySurface(bytes);
    const std::shared_ptr<ROI> region = AnyRegion(bytes, surface);
    const Rect2d<int> extent = region->GetBoundingBox();
    if (std::int64_t{extent.width} * extent.height > 1000000)
    {
        return; // members far apart: their union is as large as it says
    }
    region->GetMask();
    const std::uint64_t row = bytes.Read<std::uint16_t>();
    const std::uint64_t column = bytes.Read<std::uint16_t>();
    const double low = bytes.Double();
    const double high = bytes.Double();
    region->SetMaskPixel(row, column, bytes.Byte());
    Fuzz::Try([&] { ThresholdHeight(surface, low, high, *region); });
    const Rect2d<int> box = region->GetBoundingBox();
    const Zo::Object<void*> mask = region->GetMask();
    Fuzz::Try(
        [&]
        {
            Surface masked;
            ApplyMask(surface, region, &masked, nullptr);
        });
    Fuzz::Try(
        [&]
        {
            Surface cropped;
            CropSurfaceFromROI(surface, box, mask, cropped, nullptr);
        });
    Fuzz::Try(
        [&]
        {
            Zo::Object<void*> points;
            GetPointsFromROI<qPoint3d64f>(surface, box, mask, points.Slot());
        });
    Fuzz::Try([&] { ThresholdPercentile<short>(surface, low, high, box, mask); });
    Fuzz::Try([&] { ThresholdPercentile<double>(surface, low, high, box, mask); });
    GetBoundingBox({{surface, box, mask}}, bytes.Int(0, 1), nullptr);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    Fuzz::Try([&] { Use(bytes); });
    return 0;
}
