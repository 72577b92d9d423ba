/** @file
 *  Frames from any bytes, and Voronoi diagrams of any points. */

#include <ZdkVisionLib/Alignment/RefFrame.h>

#include "Geometry/Voronoi.h"
#include "fuzz/Bytes.h"

namespace
{

using Fuzz::Bytes;

void Deserialize(Bytes& bytes)
{
    std::vector<std::uint8_t> content(bytes.Size(0, 300));
    std::generate(content.begin(), content.end(), [&bytes] { return bytes.Byte(); });
    Zvl::RefFrame frame;
    frame.Deserialize(content.data(), content.size(), nullptr);
}

void DrawVoronoi(Bytes& bytes)
{
    std::vector<qPoint64f> points(bytes.Size(0, 40));
    const bool onGrid = bytes.Flag();
    for (qPoint64f& point : points)
    {
        point = onGrid ? qPoint64f{double(bytes.Int(0, 6)), double(bytes.Int(0, 6))}
                       : qPoint64f{bytes.Double(), bytes.Double()};
    }
    const Zvl::VoronoiRect rect = {{bytes.Double(), bytes.Double()}, {bytes.Double(), bytes.Double()}};
    Zvl::VoronoiOwner diagram;
    Zvl::GenerateVoronoi(static_cast<std::int32_t>(points.size()), points.data(), bytes.Flag() ? &rect : nullptr,
                         diagram.Get());
    Zvl::BuildVoronoiVertices(diagram.Get());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    Bytes bytes(data, size);
    Fuzz::Try([&] { bytes.Flag() ? Deserialize(bytes) : DrawVoronoi(bytes); });
    return 0;
}
