#include "support/X3pDescription.h"

#include "support/HeightGrid.h"
#include "support/InputError.h"
#include "support/Tokens.h"

#include <cmath>
#include <pugixml.hpp>
#include <sstream>
#include <string_view>

namespace Examples
{
namespace
{

/** Reads the parts of a surface. Prefixes of names are free, so they are not compared. */
class X3pParser
{
public:
    X3pParser(const pugi::xml_node& rootNode, const std::string& filePath) : root(rootNode), path(filePath) {}

    X3pDescription Parse() const
    {
        X3pDescription result;
        const pugi::xml_node axes = Need(Need(root, "Record1"), "Axes");
        result.x = Axis(Need(axes, "CX"));
        result.y = Axis(Need(axes, "CY"));
        result.z = Axis(Need(axes, "CZ"));
        if (!result.x.isIncremental || !result.y.isIncremental)
        {
            Refuse("its axes x and y must be incremental");
        }

        const pugi::xml_node record = Need(root, "Record3");
        const pugi::xml_node size = Need(record, "MatrixDimension");
        result.columns = Size(Need(size, "SizeX"));
        result.rows = Size(Need(size, "SizeY"));
        if (Size(Need(size, "SizeZ")) != 1)
        {
            Refuse("has several layers, but one can be read");
        }
        CellCount(result.rows, result.columns, path);
        ReadData(record, &result);
        return result;
    }

    static pugi::xml_node Find(const pugi::xml_node& parent, std::string_view name)
    {
        return parent.find_child([name](const pugi::xml_node& node) { return LocalName(node) == name; });
    }

    static std::string_view LocalName(const pugi::xml_node& node)
    {
        const std::string_view name = node.name();
        return name.substr(name.find(':') + 1); // the whole when there is no colon
    }

private:
    [[noreturn]] void Refuse(const std::string& why) const { throw InputError(path + ": " + why); }

    pugi::xml_node Need(const pugi::xml_node& parent, std::string_view name) const
    {
        const pugi::xml_node found = Find(parent, name);
        if (!found)
        {
            Refuse("its main.xml holds no " + std::string(name) + " within " + std::string(LocalName(parent)));
        }
        return found;
    }

    static std::string Text(const pugi::xml_node& node) { return std::string(Tokens(node.child_value()).Next()); }

    double Number(const pugi::xml_node& parent, std::string_view name, double otherwise) const
    {
        const std::string text = Text(Find(parent, name));
        const std::optional<double> number = text.empty() ? otherwise : ParseNumber(text);
        if (!number)
        {
            Refuse(std::string(name) + " must be a number, but is " + Quoted(text));
        }
        return *number;
    }

    X3pAxis Axis(const pugi::xml_node& node) const
    {
        X3pAxis axis;
        axis.isIncremental = Text(Need(node, "AxisType")) == "I";
        const std::string type = Text(Find(node, "DataType"));
        axis.dataType = type.empty() ? 'D' : type[0];
        if (type.size() > 1 || std::string_view("ILFD").find(axis.dataType) == std::string_view::npos)
        {
            Refuse("the type of an axis must be I, L, F or D, but is " + Quoted(type));
        }
        axis.increment = Number(node, "Increment", 1.0);
        axis.offset = Number(node, "Offset", 0.0);
        return axis;
    }

    std::uint64_t Size(const pugi::xml_node& node) const
    {
        const double size = Number(node.parent(), LocalName(node), 0.0);
        if (!(size >= 1.0 && size <= static_cast<double>(kMostCells) && size == std::floor(size)))
        {
            Refuse(std::string(LocalName(node)) + " must be a whole number from 1 to " + std::to_string(kMostCells));
        }
        return static_cast<std::uint64_t>(size);
    }

    void ReadData(const pugi::xml_node& record, X3pDescription* result) const
    {
        if (const pugi::xml_node link = Find(record, "DataLink"))
        {
            result->pointFile = Text(Need(link, "PointDataLink"));
            result->pointChecksum = Text(Find(link, "MD5ChecksumPointData"));
            result->validFile = Text(Find(link, "ValidPointsLink"));
            result->validChecksum = Text(Find(link, "MD5ChecksumValidPoints"));
            if (result->pointFile.empty())
            {
                Refuse("its PointDataLink names no file");
            }
            return;
        }
        for (const pugi::xml_node& datum : Need(record, "DataList").children())
        {
            if (LocalName(datum) == "Datum")
            {
                result->data.push_back(Text(datum));
            }
        }
    }

    pugi::xml_node root;
    std::string path;
};

pugi::xml_node AppendText(pugi::xml_node parent, const char* name, const std::string& text)
{
    pugi::xml_node node = parent.append_child(name);
    node.text().set(text.c_str());
    return node;
}

void AppendAxis(pugi::xml_node parent, const char* name, const X3pAxis& axis)
{
    pugi::xml_node node = parent.append_child(name);
    AppendText(node, "AxisType", axis.isIncremental ? "I" : "A");
    AppendText(node, "DataType", std::string(1, axis.dataType));
    AppendText(node, "Increment", ShortestText(axis.increment));
    AppendText(node, "Offset", ShortestText(axis.offset));
}

} // namespace

X3pDescription ParseX3p(const std::string& xml, const std::string& path)
{
    pugi::xml_document document;
    const pugi::xml_parse_result result = document.load_buffer(xml.data(), xml.size());
    if (!result)
    {
        throw InputError(path + ": its main.xml is not valid XML: " + result.description());
    }
    const pugi::xml_node root = document.document_element();
    if (X3pParser::LocalName(root) != "ISO5436_2")
    {
        throw InputError(path + ": its main.xml holds no ISO5436_2");
    }
    return X3pParser(root, path).Parse();
}

std::string X3pText(const X3pDescription& description)
{
    pugi::xml_document document;
    pugi::xml_node declaration = document.append_child(pugi::node_declaration);
    declaration.append_attribute("version") = "1.0";
    declaration.append_attribute("encoding") = "UTF-8";
    pugi::xml_node root = document.append_child("p:ISO5436_2");
    root.append_attribute("xmlns:p") = "http://www.opengps.eu/2008/ISO5436_2";

    pugi::xml_node first = root.append_child("Record1");
    AppendText(first, "Revision", "ISO5436 - 2000");
    AppendText(first, "FeatureType", "SUR");
    pugi::xml_node axes = first.append_child("Axes");
    AppendAxis(axes, "CX", description.x);
    AppendAxis(axes, "CY", description.y);
    AppendAxis(axes, "CZ", description.z);

    pugi::xml_node third = root.append_child("Record3");
    pugi::xml_node size = third.append_child("MatrixDimension");
    AppendText(size, "SizeX", std::to_string(description.columns));
    AppendText(size, "SizeY", std::to_string(description.rows));
    AppendText(size, "SizeZ", "1");
    pugi::xml_node link = third.append_child("DataLink");
    AppendText(link, "PointDataLink", description.pointFile);
    AppendText(link, "MD5ChecksumPointData", description.pointChecksum);
    AppendText(link, "ValidPointsLink", description.validFile);
    AppendText(link, "MD5ChecksumValidPoints", description.validChecksum);

    AppendText(root.append_child("Record4"), "ChecksumFile", "md5checksum.hex");
    std::ostringstream text;
    document.save(text, " ");
    return text.str();
}

} // namespace Examples
