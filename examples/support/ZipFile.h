#pragma once

#include <cstdint>
#include <map>
#include <memory>
#include <string>

struct zip;

namespace Examples
{

/** A ZIP archive that is read. */
class ZipFile
{
public:
    /** @throws InputError when the file cannot be read, or is no ZIP archive */
    explicit ZipFile(const std::string& filePath);

    /** The bytes of a member, unpacked.
     *  @param most bytes that it may have: an archive of a few bytes can claim to hold any number
     *  @throws InputError when there is none of that name, or it is larger or damaged */
    std::string Read(const std::string& name, std::uint64_t most) const;

private:
    std::string path;
    std::unique_ptr<zip, void (*)(zip*)> archive;
};

/** Writes an archive of members by name.
 *  @throws InputError when the file cannot be written */
void WriteZip(const std::string& path, const std::map<std::string, std::string>& members);

} // namespace Examples
