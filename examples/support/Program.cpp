#include "support/Program.h"

#include "support/InputError.h"

#include <algorithm>
#include <exception>
#include <iostream>
#include <string>
#include <unistd.h>

namespace Examples
{
namespace
{

Progress::Style StyleOf(const Options& options)
{
    if (isatty(STDERR_FILENO) != 0)
    {
        return Progress::Style::InPlace;
    }
    return options.wantsProgress ? Progress::Style::Lines : Progress::Style::Silent;
}

/** Messages of libraries may have several lines; the user gets one. */
int Complain(const std::string& message, int exitCode)
{
    std::string line = message;
    std::replace_if(
        line.begin(), line.end(), [](char letter) { return letter == '\n' || letter == '\r'; }, ' ');
    std::cerr << "error: " << line << '\n';
    return exitCode;
}

} // namespace

int RunProgram(int argumentCount, char** arguments, const Description& description,
               bool (*measure)(const Options& options, Progress& progress))
{
    try
    {
        const Options options = ReadOptions({arguments + 1, arguments + argumentCount}, description);
        if (options.wantsHelp)
        {
            std::cout << HelpText(description);
            return 0;
        }
        Progress progress(StyleOf(options));
        return measure(options, progress) ? 0 : 1;
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
