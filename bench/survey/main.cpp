/** @file
 *  Measures every hot operation of the library beside its peer.
 *
 *  survey [--quick] [--only TEXT] [--ours] [--markdown FILE] [--json FILE]
 *  survey --compare BEFORE.json AFTER.json [BEFORE.json AFTER.json ...]
 *
 *  --quick takes fewer samples, --only takes the operations with TEXT in their names, --ours leaves out all but our
 *  times. The table goes to the standard output, and with --markdown into FILE, between its two markers. */

#include "survey/Report.h"

#include <iostream>
#include <stdexcept>

namespace
{

using namespace Survey;

struct Options
{
    int samples = 15;
    bool onlyOurs = false;
    std::string only;
    std::string markdown;
    std::string json;
    std::vector<std::string> compared;
};

Options Parse(const std::vector<std::string>& arguments)
{
    Options options;
    for (std::size_t i = 0; i < arguments.size(); ++i)
    {
        const std::string& argument = arguments[i];
        const auto value = [&]
        {
            if (++i == arguments.size())
            {
                throw std::runtime_error(argument + " takes a value");
            }
            return arguments[i];
        };
        if (argument == "--quick")
        {
            options.samples = 5;
        }
        else if (argument == "--ours")
        {
            options.onlyOurs = true;
        }
        else if (argument == "--only")
        {
            options.only = value();
        }
        else if (argument == "--markdown")
        {
            options.markdown = value();
        }
        else if (argument == "--json")
        {
            options.json = value();
        }
        else if (argument == "--compare" && (arguments.size() - i) % 2 == 1 && arguments.size() - i > 2)
        {
            options.compared.assign(arguments.begin() + static_cast<std::ptrdiff_t>(i) + 1, arguments.end());
            break;
        }
        else
        {
            throw std::runtime_error("cannot do " + argument);
        }
    }
    return options;
}

std::vector<Operation> AllOperations()
{
    std::vector<Operation> all;
    for (const auto& folder : {UtilsOperations(), CommonOperations(), GeometryOperations(), ArithmeticOperations(),
                               FilterOperations(), LineOperations(), FittingOperations(), ImageProcessingOperations()})
    {
        all.insert(all.end(), folder.begin(), folder.end());
    }
    return all;
}

std::vector<Result> MeasureAll(const Options& options)
{
    // The C library maps large blocks, and gives them back to the system, until it has seen the first of their size go:
    // from then on it keeps them. A host is past that point, and so is every operation here, whichever are measured.
    Keep(*std::vector<char>(std::size_t{30} << 20U).data());

    std::vector<Result> results;
    for (const Operation& operation : AllOperations())
    {
        if (operation.name.find(options.only) != std::string::npos)
        {
            std::cerr << operation.name << "\n";
            results.push_back(Measure(operation, options.samples, options.onlyOurs));
        }
    }
    return results;
}

void Run(const Options& options)
{
    if (!options.compared.empty())
    {
        std::cout << Comparison(options.compared);
        return;
    }
    const std::vector<Result> results = MeasureAll(options);
    if (results.empty())
    {
        throw std::runtime_error("no operation has " + options.only + " in its name");
    }
    if (!options.json.empty())
    {
        WriteJson(options.json, results);
    }
    if (!options.onlyOurs)
    {
        const std::string table = Markdown(results);
        std::cout << table;
        if (!options.markdown.empty())
        {
            ReplaceBetweenMarkers(options.markdown, table);
        }
    }
}

} // namespace

int main(int argc, char** argv)
{
    try
    {
        Run(Parse({argv + 1, argv + argc}));
        return 0;
    }
    catch (const std::exception& failure)
    {
        std::cerr << "survey: " << failure.what() << '\n';
        return 2;
    }
}
