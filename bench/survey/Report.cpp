#include "survey/Report.h"

#include <nlohmann/json.hpp>

#include <cstdio>
#include <fstream>
#include <numeric>
#include <sstream>
#include <stdexcept>

namespace Survey
{

namespace
{

constexpr const char* kBegin = "<!-- table: begin -->\n";
constexpr const char* kEnd = "<!-- table: end -->\n";
constexpr double kWantedCopyShare = 0.6;
constexpr double kToleratedGrowth = 1.25;

template <typename... Values>
std::string Text(const char* format, Values... values)
{
    char text[256];
    static_cast<void>(std::snprintf(text, sizeof(text), format, values...));
    return text;
}

/** Three digits that tell something. */
std::string Digits(double value)
{
    return Text(value < 10.0 ? "%.2f" : value < 100.0 ? "%.1f" : "%.0f", value);
}

std::string TimeText(double seconds)
{
    return seconds < 1e-3 ? Digits(seconds * 1e6) + " µs" : Digits(seconds * 1e3) + " ms";
}

std::string SizeText(double bytes)
{
    return bytes < 1048576.0 ? Text("%.0f KiB", std::ceil(bytes / 1024.0)) : Digits(bytes / 1048576.0) + " MiB";
}

std::string GrowthText(const Result& result)
{
    return Digits(result.growth) + (result.copyGrowth > 0.0 ? " (" + Digits(result.copyGrowth) + ")" : "");
}

std::string WorkersText(const Result& result)
{
    return result.workersGain > 0.0 ? Digits(result.workersGain) + " (" + Digits(result.tinyGain) + ")" : "";
}

/** Peer, its time and the ratio. Without a peer stands the throughput. */
std::string PeerCells(const Result& result, std::size_t peer)
{
    if (peer < result.peers.size())
    {
        const PeerTime& time = result.peers[peer];
        return time.name + " | " + TimeText(time.seconds) + " | " + Digits(time.seconds / result.seconds);
    }
    return Digits(result.items / result.seconds / 1e6) + " million " + result.item + " a second | | ";
}

std::string Rows(const Result& result)
{
    std::string rows = "| " + result.name + " | " + TimeText(result.seconds) + " | " + PeerCells(result, 0) + " | " +
                       (result.copyShare > 0.0 ? Text("%.0f %%", 100.0 * result.copyShare) : "") + " | " +
                       GrowthText(result) + " | " + WorkersText(result) + " | " + Digits(result.callersGain) + " | " +
                       SizeText(result.scratchBytes) + " |\n";
    for (std::size_t peer = 1; peer < result.peers.size(); ++peer)
    {
        rows += "| | | " + PeerCells(result, peer) + " | | | | | |\n";
    }
    return rows;
}

/** A point of a list, with the entries below it. */
std::string Listed(const std::string& title, const std::vector<std::string>& entries)
{
    std::string text = "- " + title + ":" + (entries.empty() ? " none" : "") + "\n";
    for (const std::string& entry : entries)
    {
        text += "  - " + entry + "\n";
    }
    return text;
}

double GeometricMean(const std::vector<double>& ratios)
{
    const double logarithms = std::accumulate(ratios.begin(), ratios.end(), 0.0,
                                              [](double sum, double ratio) { return sum + std::log(ratio); });
    return std::exp(logarithms / static_cast<double>(ratios.size()));
}

std::string Summary(const std::vector<Result>& results)
{
    std::vector<double> ratios;
    std::vector<std::string> behind;
    std::vector<std::string> slowMemory;
    std::vector<std::string> growing;
    for (const Result& result : results)
    {
        for (const PeerTime& peer : result.peers)
        {
            ratios.push_back(peer.seconds / result.seconds);
            if (ratios.back() < 1.0)
            {
                behind.push_back(result.name + " beside " + peer.name + Text(" (%.2f)", ratios.back()));
            }
        }
        if (result.copyShare > 0.0 && result.copyShare < kWantedCopyShare)
        {
            slowMemory.push_back(result.name + Text(" (%.0f %%)", 100.0 * result.copyShare));
        }
        if (result.growth > std::max(kToleratedGrowth, result.copyGrowth))
        {
            growing.push_back(result.name + " (" + Digits(result.growth) + ")");
        }
    }
    std::string text;
    if (!ratios.empty())
    {
        text += Text("- Geometric mean of %zu ratios: %s\n", ratios.size(), Digits(GeometricMean(ratios)).c_str());
    }
    return text + Listed("Behind their peer", behind) + Listed("Below 60 % of `memcpy`", slowMemory) +
           Listed("Time for a cell or point grows by more than a quarter, and by more than that of `memcpy`", growing);
}

std::string ReadFile(const std::string& path)
{
    const std::ifstream file(path);
    if (!file)
    {
        throw std::runtime_error("cannot read " + path);
    }
    std::ostringstream text;
    text << file.rdbuf();
    return text.str();
}

void WriteFile(const std::string& path, const std::string& text)
{
    std::ofstream file(path, std::ios::trunc);
    file << text;
    if (!file.flush())
    {
        throw std::runtime_error("cannot write " + path);
    }
}

/** Our times in a file of WriteJson(), in its order. */
std::vector<std::pair<std::string, double>> ReadTimes(const std::string& path)
{
    std::vector<std::pair<std::string, double>> times;
    for (const nlohmann::json& row : nlohmann::json::parse(ReadFile(path)))
    {
        times.emplace_back(row.at("operation").get<std::string>(), row.at("seconds").get<double>());
    }
    return times;
}

} // namespace

std::string Markdown(const std::vector<Result>& results)
{
    std::string text =
        "| Operation | Ours | Peer | Its time | Ratio | Of `memcpy` | Growth | Two workers | Two callers | Scratch |\n"
        "|---|--:|---|--:|--:|--:|--:|--:|--:|--:|\n";
    for (const Result& result : results)
    {
        text += Rows(result);
    }
    return text + "\n" + Summary(results);
}

void ReplaceBetweenMarkers(const std::string& path, const std::string& text)
{
    const std::string page = ReadFile(path);
    const std::size_t begin = page.find(kBegin);
    const std::size_t end = page.find(kEnd);
    if (begin == std::string::npos || end == std::string::npos || end < begin)
    {
        throw std::runtime_error("no markers of the table in " + path);
    }
    WriteFile(path, page.substr(0, begin) + kBegin + "\n" + text + "\n" + page.substr(end));
}

void WriteJson(const std::string& path, const std::vector<Result>& results)
{
    nlohmann::ordered_json rows = nlohmann::ordered_json::array();
    for (const Result& result : results)
    {
        nlohmann::ordered_json peers = nlohmann::ordered_json::object();
        for (const PeerTime& peer : result.peers)
        {
            peers[peer.name] = peer.seconds;
        }
        rows.push_back({{"operation", result.name},
                        {"item", result.item},
                        {"items", result.items},
                        {"usesWorkers", result.usesWorkers},
                        {"seconds", result.seconds},
                        {"peers", peers},
                        {"copyShare", result.copyShare},
                        {"growth", result.growth},
                        {"copyGrowth", result.copyGrowth},
                        {"workersGain", result.workersGain},
                        {"tinyGain", result.tinyGain},
                        {"callersGain", result.callersGain},
                        {"scratchBytes", result.scratchBytes}});
    }
    WriteFile(path, rows.dump(1) + "\n");
}

std::string Comparison(const std::vector<std::string>& paths)
{
    std::vector<std::string> names;
    std::map<std::string, std::vector<double>> ratiosOf;
    for (std::size_t i = 0; i + 1 < paths.size(); i += 2)
    {
        const auto before = ReadTimes(paths[i]);
        const std::map<std::string, double> known(before.begin(), before.end());
        for (const auto& [name, seconds] : ReadTimes(paths[i + 1]))
        {
            if (known.count(name) > 0)
            {
                if (ratiosOf.count(name) == 0)
                {
                    names.push_back(name);
                }
                ratiosOf[name].push_back(seconds / known.at(name));
            }
        }
    }
    std::string text;
    std::vector<double> ratios;
    for (const std::string& name : names)
    {
        ratios.push_back(Median(ratiosOf[name]));
        text += Text("%6.3f  ", ratios.back()) + name + "\n";
    }
    return text + (ratios.empty() ? "No operation in common\n"
                                  : Text("%6.3f  geometric mean of %zu\n", GeometricMean(ratios), ratios.size()));
}

} // namespace Survey
