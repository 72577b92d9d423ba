#include "support/MappingFile.h"

#include "support/FileBytes.h"
#include "support/HeightGrid.h"
#include "support/InputError.h"

#include <nlohmann/json.hpp>

#include <algorithm>

namespace Examples
{
namespace
{

nlohmann::json Parse(const std::string& path)
{
    const std::string text = ReadBytes(path);
    try
    {
        return nlohmann::json::parse(text);
    }
    catch (const nlohmann::json::exception& error)
    {
        throw InputError(path + ": is not valid JSON: " + error.what());
    }
}

qPoint3d64f ReadTriple(const nlohmann::json& object, const std::string& key, const std::string& path)
{
    const auto found = object.find(key);
    if (found == object.end())
    {
        throw InputError(path + ": key \"" + key + "\" is missing");
    }
    const auto isNumber = [](const nlohmann::json& item) { return item.is_number(); };
    if (!found->is_array() || found->size() != 3 || !std::all_of(found->begin(), found->end(), isNumber))
    {
        throw InputError(path + ": \"" + key + "\" must be an array of three numbers");
    }
    return {(*found)[0].get<double>(), (*found)[1].get<double>(), (*found)[2].get<double>()};
}

} // namespace

Mapping ReadMapping(const std::string& path)
{
    const nlohmann::json object = Parse(path);
    if (!object.is_object())
    {
        throw InputError(path + ": must hold a JSON object");
    }
    const Mapping mapping{ReadTriple(object, "scale", path), ReadTriple(object, "offset", path)};
    RequireMapping(mapping.scale, mapping.offset, path);
    return mapping;
}

void WriteMapping(const std::string& path, const Mapping& mapping)
{
    const nlohmann::json object = {{"scale", {mapping.scale.x, mapping.scale.y, mapping.scale.z}},
                                   {"offset", {mapping.offset.x, mapping.offset.y, mapping.offset.z}}};
    WriteBytes(path, object.dump(1) + '\n');
}

} // namespace Examples
