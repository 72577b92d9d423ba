#include "support/AsciiGridFile.h"

#include "support/FileBytes.h"
#include "support/HeightGrid.h"
#include "support/HeightMap.h"
#include "support/InputError.h"
#include "support/Text.h"
#include "support/Tokens.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <map>

namespace Examples
{
namespace
{

constexpr std::array<std::string_view, 10> kKeys = {"ncols",     "nrows",    "xllcorner", "xllcenter", "yllcorner",
                                                    "yllcenter", "cellsize", "dx",        "dy",        "nodata_value"};

/** The keys before the heights, and their values. */
class Header
{
public:
    explicit Header(const std::string& filePath) : path(filePath) {}

    /** Reads keys up to the first word that is none, which is returned. */
    std::string_view ReadFrom(Tokens* tokens)
    {
        for (;;)
        {
            const std::string_view word = tokens->Next();
            const std::string key = LowerCase(std::string(word));
            if (std::find(kKeys.begin(), kKeys.end(), key) == kKeys.end())
            {
                return word;
            }
            const std::string_view text = tokens->Next();
            const std::optional<double> value = ParseNumber(text);
            if (!value)
            {
                throw InputError(path + ": the value of " + key + " must be a number, but is " + Quoted(text));
            }
            if (!values.emplace(key, *value).second)
            {
                throw InputError(path + ": " + key + " is given twice");
            }
        }
    }

    std::optional<double> Find(const std::string& key) const
    {
        const auto found = values.find(key);
        return found == values.end() ? std::nullopt : std::optional(found->second);
    }

    double Get(const std::string& key) const
    {
        const std::optional<double> value = Find(key);
        if (!value)
        {
            throw InputError(path + ": is no ASCII grid, since " + key + " is missing");
        }
        return *value;
    }

    std::uint64_t Size(const std::string& key) const
    {
        const double size = Get(key);
        if (!(size >= 1.0 && size <= static_cast<double>(kMostCells) && size == std::floor(size)))
        {
            throw InputError(path + ": " + key + " must be a whole number from 1 to " + std::to_string(kMostCells));
        }
        return static_cast<std::uint64_t>(size);
    }

    /** Size of the cells along an axis. */
    double CellSize(const std::string& key) const
    {
        const std::optional<double> size = Find(key);
        return size ? *size : Get("cellsize");
    }

    /** Middle of the first cell along an axis. */
    double FirstCell(const std::string& axis, double cellSize) const
    {
        const std::optional<double> center = Find(axis + "llcenter");
        return center ? *center : Get(axis + "llcorner") + cellSize / 2.0;
    }

private:
    std::string path;
    std::map<std::string, double> values;
};

HeightGrid GridOf(const Header& header, const std::string& path)
{
    HeightGrid grid{};
    grid.rows = header.Size("nrows");
    grid.columns = header.Size("ncols");
    CellCount(grid.rows, grid.columns, path);
    grid.scale = {header.CellSize("dx"), header.CellSize("dy")};
    grid.offset = {header.FirstCell("x", grid.scale.x), header.FirstCell("y", grid.scale.y)};
    return grid;
}

/** The heights in the order of the file. @p word is the first of them. */
std::vector<double> ReadHeights(std::string_view word, Tokens* tokens, std::size_t cells, const std::string& path)
{
    std::vector<double> heights;
    for (; !word.empty(); word = tokens->Next())
    {
        const std::optional<double> height = ParseNumber(word);
        if (!height)
        {
            throw InputError(path + ": a height must be a number, but is " + Quoted(word));
        }
        if (heights.size() == cells)
        {
            throw InputError(path + ": holds more heights than its " + std::to_string(cells) + " cells");
        }
        heights.push_back(*height);
    }
    if (heights.size() < cells)
    {
        throw InputError(path + ": holds " + std::to_string(heights.size()) + " of " + std::to_string(cells) +
                         " heights");
    }
    return heights;
}

/** Rows of files go from the north to the south. */
void TurnUpsideDown(HeightGrid* grid)
{
    for (std::size_t row = 0; row < grid->rows / 2; ++row)
    {
        const auto upper = grid->heights.begin() + static_cast<std::ptrdiff_t>(row * grid->columns);
        const auto lower = grid->heights.begin() + static_cast<std::ptrdiff_t>((grid->rows - 1 - row) * grid->columns);
        std::swap_ranges(upper, upper + static_cast<std::ptrdiff_t>(grid->columns), lower);
    }
}

/** Texts of heights: all of one map have as many decimals. */
class HeightText
{
public:
    explicit HeightText(const Zvl::Surface& map) : scale(map.scale.z), offset(map.offset.z)
    {
        constexpr double kMoreDigits = 3.0; // than the step, so that offsets and odd steps are not lost
        decimals = static_cast<int>(std::clamp(std::ceil(kMoreDigits - std::log10(scale)), 0.0, 15.0));
    }

    void Append(short count, std::string* text) const
    {
        std::array<char, 400> digits{};
        char* const end = std::to_chars(digits.data(), digits.data() + digits.size(), offset + count * scale,
                                        std::chars_format::fixed, decimals)
                              .ptr;
        text->append(digits.begin(), end);
    }

private:
    double scale;
    double offset;
    int decimals;
};

} // namespace

Zvl::Surface ReadAsciiGrid(const std::string& path)
{
    const std::string text = ReadBytes(path);
    Tokens tokens(text);
    Header header(path);
    const std::string_view first = header.ReadFrom(&tokens);
    HeightGrid grid = GridOf(header, path);
    grid.heights = ReadHeights(first, &tokens, grid.rows * grid.columns, path);
    if (const std::optional<double> missing = header.Find("nodata_value"))
    {
        std::replace(grid.heights.begin(), grid.heights.end(), *missing, kMissingHeight);
    }
    TurnUpsideDown(&grid);
    return ToSurface(grid, path);
}

void WriteAsciiGrid(const std::string& path, const Zvl::Surface& map)
{
    const HeightText heights(map);
    std::string text = "ncols " + std::to_string(Columns(map)) + "\nnrows " + std::to_string(Rows(map)) +
                       "\nxllcenter " + ShortestText(map.offset.x) + "\nyllcenter " + ShortestText(map.offset.y) + '\n';
    text += map.scale.x == map.scale.y ? "cellsize " + ShortestText(map.scale.x)
                                       : "dx " + ShortestText(map.scale.x) + "\ndy " + ShortestText(map.scale.y);
    text += "\nNODATA_value ";
    heights.Append(Zvl::GetNull<short>(), &text); // the height of the missing count, which no other count has
    text += '\n';
    for (std::size_t line = 1; line <= Rows(map); ++line)
    {
        const std::size_t row = Rows(map) - line;
        for (std::size_t column = 0; column < Columns(map); ++column)
        {
            heights.Append(HeightRow(map, row)[column], &text);
            text += column + 1 < Columns(map) ? ' ' : '\n';
        }
    }
    WriteBytes(path, text);
}

} // namespace Examples
