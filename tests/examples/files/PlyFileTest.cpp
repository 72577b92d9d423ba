#include "ScratchFolder.h"
#include "support/ByteOrder.h"

#include <array>

namespace ExampleFiles
{
namespace
{

using PlyFile = ScratchFolder;

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();
constexpr const char* kCoordinates = "property double x\nproperty double y\nproperty double z\n";

std::string Header(const std::string& format, const std::string& elements)
{
    return "ply\nformat " + format + " 1.0\n" + elements + "end_header\n";
}

std::string Text(const std::string& count, const std::string& points)
{
    return Header("ascii", "element vertex " + count + "\n" + kCoordinates) + points;
}

template <typename T>
std::string Bytes(T number, bool isBig)
{
    std::string bytes;
    Examples::AppendLittleEndian(number, &bytes);
    return isBig ? std::string(bytes.rbegin(), bytes.rend()) : bytes;
}

TEST_F(PlyFile, PutsPointsOfAnyOrderIntoTheirCells)
{
    const Zvl::Surface map = Read("map.ply", Text("5", "1.5 7 3\n1 7 2\n1 6 5.5\n2 6 4\n1.5 6 2.5\n"));
    ExpectPlane(map, {0.5, 1.0}, {1.0, 6.0}, 1e-12);
    ExpectMap(map, {{5.5, 2.5, 4.0}, {2.0, 3.0, kMissing}}, 1e-9);
}

TEST_F(PlyFile, IsReadInBothByteOrders)
{
    for (const bool isBig : {false, true})
    {
        std::string bytes = Header(isBig ? "binary_big_endian" : "binary_little_endian",
                                   "comment from a scanner\nelement vertex 2\nproperty float x\nproperty uchar red\n"
                                   "property short y\nproperty list uchar int more\nproperty double z\n");
        for (const std::array<double, 3>& point : {std::array{0.5, 3.0, 1.25}, std::array{0.75, 3.0, 1.5}})
        {
            bytes += Bytes(static_cast<float>(point[0]), isBig) + Bytes('\x80', isBig);
            bytes += Bytes(static_cast<short>(point[1]), isBig);
            bytes += Bytes('\x02', isBig) + Bytes(7, isBig) + Bytes(8, isBig) + Bytes(point[2], isBig);
        }
        const Zvl::Surface map = Read("map.ply", bytes + "what follows is not read");
        ExpectPlane(map, {0.25, 0.25}, {0.5, 3.0}, 1e-12);
        ExpectMap(map, {{1.25, 1.5}}, 1e-9);
    }
}

TEST_F(PlyFile, MayHaveOtherElementsBeforeItsVertices)
{
    const std::string elements = "obj_info nothing\nelement nothing 18446744073709551615\nelement camera 1\n"
                                 "property list uint8 float32 view\nproperty int8 flag\nelement vertex 2\n";
    const Zvl::Surface map =
        Read("map.ply", Header("ascii", elements + kCoordinates) + "3 0.5 0.5 0.5 1\n0 0 1\n0 1 2\n");
    ExpectMap(map, {{1.0}, {2.0}}, 1e-9);
}

TEST_F(PlyFile, MayHaveLineEndsOfAnotherSystem)
{
    ExpectMap(Read("map.ply", "ply\r\nformat ascii 1.0\r\nelement vertex 2\r\nproperty float x\r\nproperty float y\r\n"
                              "property float z\r\nend_header\r\n0 0 1\r\n1 0 2\r\n"),
              {{1.0, 2.0}}, 1e-9);
}

TEST_F(PlyFile, MayHavePointsThatAreNotFinite)
{
    ExpectMap(Read("map.ply", Text("5", "0 0 1\n1 0 nan\nnan nan nan\ninf 0 2\n2 0 3\n")), {{1.0, kMissing, 3.0}},
              1e-9);
}

TEST_F(PlyFile, MayHaveCoordinatesThatAreRounded)
{
    std::string points;
    std::vector<std::vector<double>> heights(10);
    for (int row = 0; row < 10; ++row)
    {
        for (int column = 0; column < 400; ++column)
        {
            points += std::to_string(90000.0 + column / 3.0).substr(0, 8) + ' ' + std::to_string(row) + ' ' +
                      std::to_string(row + column) + '\n';
            heights[static_cast<std::size_t>(row)].push_back(row + column);
        }
    }
    const Zvl::Surface map = Read("map.ply", Text("4000", points));
    EXPECT_NEAR(map.scale.x, 1.0 / 3.0, 1e-4);
    ExpectMap(map, heights, 1e-9);
}

TEST_F(PlyFile, IsRefusedWhenItsPointsAreNoMap)
{
    ExpectRefusal(File("off.ply", Text("5", "0 0 1\n1 0 1\n2 0 1\n3.4 0 1\n7 1 2")), "do not lie on a grid along x");
    ExpectRefusal(File("off-y.ply", Text("5", "0 0 1\n1 1 1\n2 2 1\n3 3.4 1\n0 7 2")), "do not lie on a grid along y");
    ExpectRefusal(File("twice.ply", Text("3", "0 0 1\n1 0 1\n1 0 2")), "two points lie at");
    ExpectRefusal(File("one.ply", Text("1", "0 0 1")), "too few for a grid");
    ExpectRefusal(File("same.ply", Text("2", "0 0 1\n0 0 1")), ": ");
    ExpectRefusal(File("none.ply", Text("0", "")), "cells; 1 to");
    ExpectRefusal(File("wide.ply", Text("3", "0 0 1\n1 1 1\n1e8 1e8 1")), ": ");
    ExpectRefusal(File("far.ply", Text("2", "1e300 0 1\n-1e300 0 1")), ": ");
}

TEST_F(PlyFile, IsRefusedWhenItsHeaderIsNotSound)
{
    const auto refused = [&](const std::string& bytes, const std::string& text)
    { ExpectRefusal(File("map.ply", bytes), text); };
    refused("ply", "header is cut off");
    refused("plyx\nformat ascii 1.0\n", "is not a PLY file");
    refused("ply\nformat ascii 2.0\n", "format of PLY that cannot be read");
    refused("ply\nformat binary_middle_endian 1.0\n", "format of PLY that cannot be read");
    refused(Header("ascii", ""), "holds no vertices");
    refused(Header("ascii", "property float x\n"), "header line that is not known");
    refused(Header("ascii", "element vertex many\n"), "must be a whole number, but is 'many'");
    refused(Header("ascii", "element vertex -1\n"), "must be a whole number");
    refused(Header("ascii", "element vertex 99999999999999999999\n"), "must be a whole number");
    refused(Header("ascii", "element vertex 2\nproperty complex x\n"), "unknown type 'complex'");
    refused(Header("ascii", "element vertex 2\nproperty float x\nproperty float y\n"), "its vertices have no z");
    refused(Header("ascii", "element vertex 2\nproperty list int float x\n"), "its vertices have no x");
}

TEST_F(PlyFile, IsRefusedWhenItIsCutOff)
{
    const std::string vertices = std::string("element vertex 100000000\n") + kCoordinates;
    ExpectRefusal(File("text.ply", Text("3", "0 0 1\n1 0")), "cut off within its points");
    ExpectRefusal(File("word.ply", Text("2", "0 0 1\n1 0 high")), "expected, but found 'high'");
    ExpectRefusal(File("binary.ply", Header("binary_little_endian", vertices) + "12345678"), "cut off within");
    ExpectRefusal(File("count.ply", Text("999999999999", "0 0 1")), "cells; 1 to");
    ExpectRefusal(
        File("list.ply", Header("binary_little_endian", "element face 1\nproperty list uint uchar i\n" + vertices) +
                             "\xff\xff\xff\xff"),
        "cut off within");
    ExpectRefusal(File("faces.ply",
                       Header("ascii", "element face 18446744073709551615\nproperty uchar i\n" + vertices) + "1 2 3"),
                  "cut off within");
}

} // namespace
} // namespace ExampleFiles
