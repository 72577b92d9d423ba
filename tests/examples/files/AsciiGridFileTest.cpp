#include "ScratchFolder.h"

namespace ExampleFiles
{
namespace
{

using AsciiGridFile = ScratchFolder;

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

TEST_F(AsciiGridFile, BeginsWithTheRowOfTheLargestY)
{
    const Zvl::Surface map = Read("map.asc", "ncols 3\nnrows 2\nxllcorner 10\nyllcorner -4\ncellsize 0.5\n"
                                             "NODATA_value -9999\n"
                                             "1 2 3\n"
                                             "4 -9999 6\n");
    ExpectPlane(map, {0.5, 0.5}, {10.25, -3.75}, 1e-12);
    ExpectMap(map, {{4.0, kMissing, 6.0}, {1.0, 2.0, 3.0}}, 1e-9);
}

TEST_F(AsciiGridFile, MayTellTheMiddleOfTheFirstCell)
{
    const Zvl::Surface map = Read("map.asc", "ncols 2 nrows 1 xllcenter 10 yllcenter -4 cellsize 0.5 1 2");
    ExpectPlane(map, {0.5, 0.5}, {10.0, -4.0}, 1e-12);
}

TEST_F(AsciiGridFile, MayHaveCellsThatAreNotSquare)
{
    const Zvl::Surface map = Read("map.asc", "ncols 2\nnrows 2\nxllcorner 0\nyllcorner 0\ndx 0.5\ndy 2\n1 2 3 4");
    ExpectPlane(map, {0.5, 2.0}, {0.25, 1.0}, 1e-12);
}

TEST_F(AsciiGridFile, MayHaveCapitalsOtherLineEndsAndAnyOrderOfKeys)
{
    const Zvl::Surface map =
        Read("map.asc", "NODATA_VALUE 1e+20\r\nCELLSIZE 1\r\nNROWS 2\r\nYLLCORNER 0\r\nXLLCORNER +0\r\nNCOLS 2\r\n"
                        "1.5e-1 nan\r\n1e20\t-7\r\n");
    ExpectMap(map, {{kMissing, -7.0}, {0.15, kMissing}}, 1e-9);
}

TEST_F(AsciiGridFile, IsRefusedWhenItsHeaderIsNotSound)
{
    const auto refused = [&](const std::string& header, const std::string& text)
    { ExpectRefusal(File("map.asc", header + "\n1 2\n3 4\n"), text); };
    const std::string place = " xllcorner 0 yllcorner 0 ";
    refused("nrows 2 cellsize 1" + place, "ncols is missing");
    refused("ncols 2 nrows 2" + place, "cellsize is missing");
    refused("ncols 2 nrows 2 cellsize 1 xllcorner 0", "yllcorner is missing");
    refused("ncols two nrows 2 cellsize 1" + place, "ncols must be a number, but is 'two'");
    refused("ncols 2.5 nrows 2 cellsize 1" + place, "ncols must be a whole number");
    refused("ncols -2 nrows 2 cellsize 1" + place, "ncols must be a whole number");
    refused("ncols nan nrows 2 cellsize 1" + place, "ncols must be a whole number");
    refused("ncols 1e300 nrows 2 cellsize 1" + place, "ncols must be a whole number");
    refused("ncols 100000000 nrows 100000000 cellsize 1" + place, "cells; 1 to");
    refused("ncols 2 ncols 2 nrows 2 cellsize 1" + place, "ncols is given twice");
    refused("ncols 2 nrows 2 cellsize 0" + place, "the scale must lie between");
    refused("ncols 2 nrows 2 cellsize -1" + place, "the scale must lie between");
    refused("ncols 2 nrows 2 cellsize inf" + place, "the scale must lie between");
    refused("ncols 2 nrows 2 cellsize 1e999" + place, "cellsize must be a number");
    refused("ncols 2 nrows 2 cellsize 1 xllcorner 1e300 yllcorner 0", "the offset must lie between");
    ExpectRefusal(File("end.asc", "ncols"), "ncols must be a number, but is ''");
}

TEST_F(AsciiGridFile, IsRefusedWhenItsHeightsAreNotSound)
{
    const std::string header = "ncols 2\nnrows 2\nxllcorner 0\nyllcorner 0\ncellsize 1\nNODATA_value -1\n";
    ExpectRefusal(File("short.asc", header + "1 2 3"), "holds 3 of 4 heights");
    ExpectRefusal(File("none.asc", header), "holds 0 of 4 heights");
    ExpectRefusal(File("long.asc", header + "1 2 3 4 5"), "more heights than its 4 cells");
    ExpectRefusal(File("text.asc", header + "1 2 three 4"), "must be a number, but is 'three'");
    ExpectRefusal(File("bytes.asc", header + "1 2 \x01\x02\x7f 4"), "must be a number, but is '" + std::string(3, '?'));
    ExpectRefusal(File("word.asc", header + "1 2 3 " + std::string(1000, '4') + "x"), "'444444444444444444444444...'");
    ExpectRefusal(File("infinite.asc", header + "1 2 inf 4"), "a height is infinite");
    ExpectRefusal(File("empty.asc", header + "-1 -1 nan -1"), "all heights are missing");
    ExpectRefusal(File("huge.asc", "ncols 10000\nnrows 10000\nxllcorner 0\nyllcorner 0\ncellsize 1\n1 2"),
                  "holds 2 of 100000000 heights");
}

} // namespace
} // namespace ExampleFiles
