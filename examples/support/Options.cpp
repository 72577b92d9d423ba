#include "support/Options.h"

#include "support/InputError.h"
#include "support/ScanFile.h"
#include "support/Text.h"

#include <sstream>

namespace Examples
{
namespace
{

std::string DefaultOutput(const Description& description)
{
    return description.name + ".png";
}

class OptionReader
{
public:
    OptionReader(const std::vector<std::string>& all, const Description& program) : arguments(all), description(program)
    {
    }

    Options Read()
    {
        Options options{};
        options.output = DefaultOutput(description);
        while (next < arguments.size())
        {
            ReadOne(arguments[next++], &options);
        }
        if (!options.wantsHelp)
        {
            Check(options);
        }
        return options;
    }

private:
    void ReadOne(const std::string& name, Options* options)
    {
        if (name == "--input")
        {
            options->input = Value(name);
        }
        else if (name == "--json")
        {
            options->mapping = Value(name);
        }
        else if (name == "--known-part")
        {
            options->isKnownPart = true;
        }
        else if (name == "--save-input")
        {
            options->save = Value(name);
        }
        else if (name == "--output")
        {
            options->output = Value(name);
        }
        else if (name == "--progress")
        {
            options->wantsProgress = true;
        }
        else if (name == "--help" || name == "-h")
        {
            options->wantsHelp = true;
        }
        else
        {
            Refuse("cannot use argument '" + name + "'");
        }
    }

    std::string Value(const std::string& name)
    {
        if (next == arguments.size())
        {
            Refuse("no file name after '" + name + "'");
        }
        return arguments[next++];
    }

    /** What cannot work is refused before any work is done. */
    void Check(const Options& options) const
    {
        if (options.isKnownPart && !options.input)
        {
            Refuse("'--known-part' goes with '--input'");
        }
        if (options.mapping && !(options.input && NeedsMapping(*options.input)))
        {
            Refuse("'--json' goes with an '--input' that is a PNG or TIFF file");
        }
        for (const auto& scan : {options.input, options.save})
        {
            if (scan)
            {
                RequireScanFile(*scan);
            }
        }
    }

    [[noreturn]] void Refuse(const std::string& why) const
    {
        throw InputError(why + "; '" + description.name + " --help' lists the options");
    }

    const std::vector<std::string>& arguments;
    const Description& description;
    std::size_t next = 0;
};

} // namespace

std::string Options::Title(const std::string& simulated) const
{
    return input ? FileName(*input) : simulated;
}

Options ReadOptions(const std::vector<std::string>& arguments, const Description& description)
{
    return OptionReader(arguments, description).Read();
}

std::string HelpText(const Description& description)
{
    std::ostringstream text;
    text << description.name << ": " << description.summary << "\n\n"
         << "usage: " << description.name << " [options]\n\n"
         << description.task << '\n'
         << R"(
Options:
  --input FILE       the scan to measure; without one, a part is simulated whose truth is known
  --json FILE        scale and offset of a PNG or TIFF; default: beside it, with the extension .json
  --known-part       the input shows the part that would be simulated: values are checked
  --save-input FILE  write the scan that is measured, of the kind that the extension tells
  --output FILE      where the picture goes, a PNG; default: )"
         << DefaultOutput(description) << R"(
  --progress         tell on the error stream what is being done; on a terminal this is the default
  --help             print this text

)" << description.input
         << '\n'
         << description.knownPart << R"(
Files of scans, lengths in mm where nothing else is said:
  .png, .tif, .tiff  grey, 16 bits: height count + 32768, 0 where the height is missing; with a JSON object
                     {"scale": [x, y, z], "offset": [x, y, z]} in a file of its own
  .asc               ASCII grid: ncols, nrows, xllcorner, yllcorner, cellsize, NODATA_value, heights
  .ply               point cloud, text or binary, whose points lie on a grid along x and y
  .x3p               surface after ISO 25178-72, in metres
Heights that are no 16-bit counts become such: their own steps are kept where they fit, otherwise
a step is 1/65534 of their range. The step is told in the first line of the output.

Exit codes:
  0  done, and all values that are checked are within tolerance
  1  a value is out of tolerance, or nothing can be measured
  2  bad input or arguments, or a file cannot be written

Example:
  )" << description.name
         << " --input part.x3p --output part.png\n";
    return text.str();
}

} // namespace Examples
