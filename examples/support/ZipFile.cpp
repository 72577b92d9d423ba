#include "support/ZipFile.h"

#include "support/InputError.h"

#include <filesystem>
#include <zip.h>

namespace Examples
{
namespace
{

/** Forgets what was added and not written, too. */
void Discard(zip* archive)
{
    if (archive != nullptr)
    {
        zip_discard(archive);
    }
}

} // namespace

ZipFile::ZipFile(const std::string& filePath) : path(filePath), archive(nullptr, Discard)
{
    if (std::filesystem::is_regular_file(path))
    {
        archive.reset(zip_open(path.c_str(), ZIP_RDONLY, nullptr));
    }
    if (!archive)
    {
        throw InputError(path + ": cannot be read, or is not a ZIP archive");
    }
}

std::string ZipFile::Read(const std::string& name, std::uint64_t most) const
{
    zip_stat_t status{};
    if (zip_stat(archive.get(), name.c_str(), 0, &status) != 0 || (status.valid & ZIP_STAT_SIZE) == 0)
    {
        throw InputError(path + ": holds no " + name);
    }
    if (status.size > most)
    {
        throw InputError(path + ": " + name + " has " + std::to_string(status.size) + " bytes, more than the " +
                         std::to_string(most) + " that it may have");
    }
    const std::unique_ptr<zip_file_t, int (*)(zip_file_t*)> member(zip_fopen_index(archive.get(), status.index, 0),
                                                                   zip_fclose);
    std::string bytes(status.size, '\0');
    std::uint64_t filled = 0;
    zip_int64_t count = 1;
    while (member && filled < bytes.size() && count > 0)
    {
        count = zip_fread(member.get(), bytes.data() + filled, bytes.size() - filled);
        filled += count > 0 ? static_cast<std::uint64_t>(count) : 0;
    }
    char more = 0; // the checksum is tested at the end of the data
    if (!member || filled < bytes.size() || zip_fread(member.get(), &more, 1) != 0)
    {
        throw InputError(path + ": " + name + " is damaged");
    }
    return bytes;
}

void WriteZip(const std::string& path, const std::map<std::string, std::string>& members)
{
    std::unique_ptr<zip, void (*)(zip*)> owner(zip_open(path.c_str(), ZIP_CREATE | ZIP_TRUNCATE, nullptr), Discard);
    bool isWritten = owner != nullptr;
    for (const auto& [name, bytes] : members)
    {
        zip_source_t* source = isWritten ? zip_source_buffer(owner.get(), bytes.data(), bytes.size(), 0) : nullptr;
        isWritten = source != nullptr && zip_file_add(owner.get(), name.c_str(), source, ZIP_FL_OVERWRITE) >= 0;
    }
    if (!isWritten || zip_close(owner.get()) != 0)
    {
        throw InputError(path + ": cannot be written");
    }
    static_cast<void>(owner.release()); // closing has freed it
}

} // namespace Examples
