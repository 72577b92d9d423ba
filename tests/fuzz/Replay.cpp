/** @file
 *  Feeds a fuzz target without a fuzzer: with the files that are named, and with a number of inputs of its own making.
 *
 *      fuzz_fits [FILE...] [--random COUNT] */

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <random>
#include <string_view>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace
{

void FeedRandom(int count)
{
    std::mt19937 random(2024);
    std::vector<std::uint8_t> input;
    for (int i = 0; i < count; ++i)
    {
        input.resize(random() % 600);
        // Some inputs have few different bytes, as those have that someone made up.
        const unsigned different = random() % 4 == 0 ? 3 : 256;
        for (std::uint8_t& byte : input)
        {
            byte = static_cast<std::uint8_t>(random() % different * (different == 3 ? 119 : 1));
        }
        LLVMFuzzerTestOneInput(input.data(), input.size());
    }
}

bool FeedFile(const char* path)
{
    std::ifstream file(path, std::ios::binary);
    if (!file)
    {
        std::fprintf(stderr, "cannot read %s\n", path);
        return false;
    }
    const std::vector<char> content{std::istreambuf_iterator<char>(file), {}};
    LLVMFuzzerTestOneInput(reinterpret_cast<const std::uint8_t*>(content.data()), content.size());
    return true;
}

} // namespace

int main(int argumentCount, char** arguments)
{
    for (int i = 1; i < argumentCount; ++i)
    {
        if (std::string_view(arguments[i]) == "--random" && i + 1 < argumentCount)
        {
            FeedRandom(std::atoi(arguments[++i]));
        }
        else if (!FeedFile(arguments[i]))
        {
            return 2;
        }
    }
    return 0;
}
