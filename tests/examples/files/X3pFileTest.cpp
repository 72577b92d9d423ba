#include "ScratchFolder.h"
#include "support/ByteOrder.h"
#include "support/ZipFile.h"

#include <map>

namespace ExampleFiles
{
namespace
{

constexpr double kMissing = std::numeric_limits<double>::quiet_NaN();

/** The parts of a main.xml, of which tests exchange some. */
struct Xml
{
    std::string x = "<AxisType>I</AxisType><DataType>D</DataType><Increment>5e-4</Increment><Offset>1e-2</Offset>";
    std::string y = "<AxisType>I</AxisType><DataType>D</DataType><Increment>2e-3</Increment><Offset>0</Offset>";
    std::string z = "<AxisType>A</AxisType><DataType>D</DataType>";
    std::string size = "<SizeX>3</SizeX><SizeY>2</SizeY><SizeZ>1</SizeZ>";
    std::string data = "<DataLink><PointDataLink>bindata/data.bin</PointDataLink></DataLink>";

    std::string Text() const
    {
        return "<?xml version=\"1.0\" encoding=\"UTF-8\"?><p:ISO5436_2 "
               "xmlns:p=\"http://www.opengps.eu/2008/ISO5436_2\">"
               "<Record1><Revision>ISO5436 - 2000</Revision><FeatureType>SUR</FeatureType><Axes><CX>" +
               x + "</CX><CY>" + y + "</CY><CZ>" + z + "</CZ></Axes></Record1><Record3><MatrixDimension>" + size +
               "</MatrixDimension>" + data + "</Record3></p:ISO5436_2>";
    }
};

template <typename T>
std::string Pack(const std::vector<T>& numbers)
{
    std::string bytes;
    for (const T number : numbers)
    {
        Examples::AppendLittleEndian(number, &bytes);
    }
    return bytes;
}

class X3pFile : public ScratchFolder
{
protected:
    std::string Archive(const std::map<std::string, std::string>& members) const
    {
        Examples::WriteZip(PathOf("map.x3p"), members);
        return PathOf("map.x3p");
    }

    std::string Archive(const Xml& xml, const std::string& data) const
    {
        return Archive({{"main.xml", xml.Text()}, {"bindata/data.bin", data}});
    }

    void ExpectHeights(const std::string& path, const std::vector<std::vector<double>>& heights) const
    {
        const Zvl::Surface map = Examples::ReadScan(path, std::nullopt);
        ExpectPlane(map, {0.5, 2.0}, {10.0, 0.0}, 1e-9);
        ExpectMap(map, heights, 1e-6);
    }
};

TEST_F(X3pFile, OfFloatingPointHoldsMetres)
{
    Xml xml;
    ExpectHeights(Archive(xml, Pack<double>({1e-3, 2e-3, kMissing, 4e-3, 5e-3, 6e-3})),
                  {{1.0, 2.0, kMissing}, {4.0, 5.0, 6.0}});
    xml.z = "<AxisType>A</AxisType><DataType>F</DataType><Increment>7</Increment><Offset>1e-3</Offset>";
    ExpectHeights(Archive(xml, Pack<float>({0.25F, 0.5F, NAN, 1.0F, 0.75F, 0.0F})),
                  {{251.0, 501.0, kMissing}, {1001.0, 751.0, 1.0}});
}

TEST_F(X3pFile, OfIntegersCountsIncrements)
{
    Xml xml;
    xml.z = "<AxisType>A</AxisType><DataType>I</DataType><Increment>1e-6</Increment><Offset>2e-3</Offset>";
    ExpectHeights(Archive(xml, Pack<std::int16_t>({-32767, 0, 1, 500, -1, 32767})),
                  {{2.0 - 32.767, 2.0, 2.001}, {2.5, 1.999, 2.0 + 32.767}});
    xml.z = "<AxisType>A</AxisType><DataType>L</DataType><Increment>1e-6</Increment>";
    ExpectHeights(Archive(xml, Pack<std::int32_t>({100000, 100001, 100500, 101000, 99000, 100002})),
                  {{100.0, 100.001, 100.5}, {101.0, 99.0, 100.002}});
}

TEST_F(X3pFile, MayMarkWhichPointsAreValid)
{
    Xml xml;
    xml.z = "<AxisType>A</AxisType><DataType>I</DataType><Increment>1e-6</Increment>";
    xml.data = "<DataLink><PointDataLink>points</PointDataLink><MD5ChecksumPointData/>"
               "<ValidPointsLink>valid</ValidPointsLink></DataLink>";
    const std::string points = Pack<std::int16_t>({1000, 2000, 3000, 4000, 5000, 6000});
    ExpectHeights(Archive({{"main.xml", xml.Text()}, {"points", points}, {"valid", "\x2d"}}), // bits 0, 2, 3 and 5
                  {{1.0, kMissing, 3.0}, {4.0, kMissing, 6.0}});
    ExpectRefusal(Archive({{"main.xml", xml.Text()}, {"points", points}, {"valid", "\x01\x02"}}),
                  "valid has 2 bytes, more than the 1");
    ExpectRefusal(Archive({{"main.xml", xml.Text()}, {"points", points}}), "holds no valid");
}

TEST_F(X3pFile, MayHoldItsHeightsAsText)
{
    Xml xml;
    xml.data = "<DataList><Datum>1e-3</Datum><Datum> 2E-3 </Datum><Datum/><Datum>4e-3</Datum><Datum>nan</Datum>"
               "<Datum>6e-3</Datum></DataList>";
    ExpectHeights(Archive({{"main.xml", xml.Text()}}), {{1.0, 2.0, kMissing}, {4.0, kMissing, 6.0}});
    xml.data = "<DataList><Datum>1e-3</Datum></DataList>";
    ExpectRefusal(Archive({{"main.xml", xml.Text()}}), "holds 1 of 6 heights");
    xml.size = "<SizeX>2</SizeX><SizeY>1</SizeY><SizeZ>1</SizeZ>";
    xml.data = "<DataList><Datum>1e-3</Datum><Datum>deep</Datum></DataList>";
    ExpectRefusal(Archive({{"main.xml", xml.Text()}}), "a datum must be a number, but is 'deep'");
}

TEST_F(X3pFile, MustHaveTheChecksumThatItTells)
{
    const std::string data = Pack<double>({1e-3, 2e-3, 3e-3, 4e-3, 5e-3, 6e-3});
    const auto archive = [&](const std::string& checksum)
    {
        Xml xml;
        xml.data = "<DataLink><PointDataLink>bindata/data.bin</PointDataLink><MD5ChecksumPointData>" + checksum +
                   "</MD5ChecksumPointData></DataLink>";
        return Archive(xml, data);
    };
    // The MD5 of these 48 bytes, by the command md5sum.
    ExpectHeights(archive("849d4d70b4152c0447a055e4a7b952a1"), {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
    ExpectHeights(archive("849D4D70B4152C0447A055E4A7B952A1"), {{1.0, 2.0, 3.0}, {4.0, 5.0, 6.0}});
    ExpectRefusal(archive("00000000000000000000000000000000"), "does not have the MD5 checksum");
    ExpectRefusal(archive("12"), "does not have the MD5 checksum");
}

TEST_F(X3pFile, IsRefusedWhenItsDescriptionIsNotSound)
{
    const std::string data = Pack<double>({1e-3, 2e-3, 3e-3, 4e-3, 5e-3, 6e-3});
    const auto refused = [&](std::string Xml::*part, const std::string& xmlText, const std::string& text)
    {
        Xml xml;
        xml.*part = xmlText;
        ExpectRefusal(Archive(xml, data), text);
    };
    refused(&Xml::x, "<AxisType>A</AxisType>", "x and y must be incremental");
    refused(&Xml::y, "", "no AxisType within CY");
    refused(&Xml::y, "<AxisType>I</AxisType><Increment>0</Increment>", "the scale must lie between");
    refused(&Xml::x, "<AxisType>I</AxisType><Increment>wide</Increment>", "Increment must be a number, but is 'wide'");
    refused(&Xml::x, "<AxisType>I</AxisType><Increment>1</Increment><Offset>1e300</Offset>", "the offset must lie");
    refused(&Xml::z, "<AxisType>A</AxisType><DataType>Q</DataType>", "type of an axis must be I, L, F or D");
    refused(&Xml::z, "<AxisType>A</AxisType><DataType>DD</DataType>", "type of an axis must be I, L, F or D");
    refused(&Xml::size, "<SizeX>3</SizeX><SizeY>2</SizeY><SizeZ>2</SizeZ>", "several layers");
    refused(&Xml::size, "<SizeX>3</SizeX><SizeY>2</SizeY>", "no SizeZ within MatrixDimension");
    refused(&Xml::size, "<SizeX>-3</SizeX><SizeY>2</SizeY><SizeZ>1</SizeZ>", "SizeX must be a whole number");
    refused(&Xml::size, "<SizeX>1e8</SizeX><SizeY>1e8</SizeY><SizeZ>1</SizeZ>", "cells; 1 to");
    refused(&Xml::data, "", "no DataList within Record3");
    refused(&Xml::data, "<DataLink><PointDataLink/></DataLink>", "names no file");
    refused(&Xml::data, "<DataLink><PointDataLink>../secret</PointDataLink></DataLink>", "holds no ../secret");
}

TEST_F(X3pFile, IsRefusedWhenItsArchiveIsNotSound)
{
    const Xml xml;
    const std::string data = Pack<double>({1e-3, 2e-3, 3e-3, 4e-3, 5e-3, 6e-3});
    ExpectRefusal(Archive({{"other.xml", xml.Text()}}), "holds no main.xml");
    ExpectRefusal(Archive({{"main.xml", "<p:ISO5436_2>"}}), "is not valid XML");
    ExpectRefusal(Archive({{"main.xml", ""}}), "is not valid XML");
    ExpectRefusal(Archive({{"main.xml", "<html/>"}}), "holds no ISO5436_2");
    ExpectRefusal(Archive({{"main.xml", "<ISO5436_2/>"}}), "no Record1 within ISO5436_2");
    ExpectRefusal(Archive({{"main.xml", xml.Text()}}), "holds no bindata/data.bin");
    ExpectRefusal(Archive(xml, data.substr(1)), "has 47 bytes, not the 48");
    ExpectRefusal(Archive(xml, data + "."), "has 49 bytes, more than the 48");

    std::string bytes = Examples::ReadBytes(Archive(xml, data));
    const std::size_t end = bytes.find("PK\x01\x02"); // the packed heights end where the directory begins
    bytes[end - 3] = static_cast<char>(bytes[end - 3] ^ 1);
    ExpectRefusal(File("map.x3p", bytes), "is damaged");
}

TEST_F(X3pFile, ThatUnpacksToFarMoreThanItsCellsIsNotUnpacked)
{
    ExpectRefusal(Archive(Xml(), std::string(std::size_t{1} << 26, '\0')), "has 67108864 bytes, more than the 48");
    EXPECT_LT(std::filesystem::file_size(PathOf("map.x3p")), 100000U);
}

TEST_F(X3pFile, MayNestElementsDeeplyAndMissThePoint)
{
    std::string text = "<ISO5436_2>";
    for (int level = 0; level < 200000; ++level)
    {
        text += "<a>";
    }
    ExpectRefusal(Archive({{"main.xml", text}}), "is not valid XML");
}

} // namespace
} // namespace ExampleFiles
