#include "support/Program.h"

#include "support/InputError.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

namespace Examples
{
namespace
{

const char* const kUsage = "usage: [--map FILE.png FILE.json] [--output FILE.png]";

Options ReadOptions(const std::vector<std::string>& arguments, const std::string& defaultOutput)
{
    Options options{std::nullopt, defaultOutput};
    for (std::size_t next = 0; next < arguments.size();)
    {
        const std::string& name = arguments[next];
        const std::size_t left = arguments.size() - next - 1;
        if (name == "--map" && left >= 2)
        {
            options.map = {arguments[next + 1], arguments[next + 2]};
            next += 3;
        }
        else if (name == "--output" && left >= 1)
        {
            options.output = arguments[next + 1];
            next += 2;
        }
        else
        {
            throw InputError("cannot use argument '" + name + "'; " + kUsage);
        }
    }
    return options;
}

/** Messages of libraries may have several lines; the user gets one. */
int Complain(const std::string& message, int exitCode)
{
    std::string line = message;
    std::replace(line.begin(), line.end(), '\n', ' ');
    std::cerr << "error: " << line << '\n';
    return exitCode;
}

} // namespace

int RunProgram(int argumentCount, char** arguments, const std::string& defaultOutput,
               bool (*measure)(const Options& options))
{
    try
    {
        return measure(ReadOptions({arguments + 1, arguments + argumentCount}, defaultOutput)) ? 0 : 1;
    }
    catch (const InputError& error)
    {
        return Complain(error.what(), 2);
    }
    catch (const std::exception& error)
    {
        return Complain(error.what(), 1);
    }
}

} // namespace Examples
