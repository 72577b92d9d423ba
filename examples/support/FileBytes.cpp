#include "support/FileBytes.h"

#include "support/InputError.h"

#include <cstdint>
#include <filesystem>
#include <fstream>

namespace Examples
{

std::string ReadBytes(const std::string& path)
{
    constexpr std::uintmax_t kMostBytes = std::uintmax_t{1} << 32;
    std::error_code error;
    const bool isFile = std::filesystem::is_regular_file(path, error); // a folder or a device may have no end
    const std::uintmax_t size = isFile ? std::filesystem::file_size(path, error) : 0;
    if (error || !isFile)
    {
        throw InputError(path + ": cannot be read");
    }
    if (size > kMostBytes)
    {
        throw InputError(path + ": is larger than 4 GiB");
    }
    std::string bytes(size, '\0');
    std::ifstream file(path, std::ios::binary);
    file.read(bytes.data(), static_cast<std::streamsize>(size));
    if (!file)
    {
        throw InputError(path + ": cannot be read");
    }
    return bytes;
}

void WriteBytes(const std::string& path, const std::string& bytes)
{
    std::ofstream file(path, std::ios::binary);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    file.close();
    if (!file)
    {
        throw InputError(path + ": cannot be written");
    }
}

} // namespace Examples
