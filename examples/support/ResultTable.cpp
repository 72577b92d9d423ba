#include "support/ResultTable.h"

#include "support/Text.h"

#include <algorithm>
#include <cmath>
#include <string_view>

namespace Examples
{
namespace
{

const char* const kAbsent = "-";

std::string Count(std::optional<std::size_t> value)
{
    return value ? std::to_string(*value) : kAbsent;
}

void PrintCell(std::ostream& stream, std::string_view text, std::size_t width, bool toTheLeft = false)
{
    const std::string fill(width - std::min(width, text.size()), ' ');
    stream << (toTheLeft ? "" : fill) << text << (toTheLeft ? fill : "") << "  ";
}

void PrintRow(std::ostream& stream, const std::string& feature, const std::string& unit, const std::string& nominal,
              const std::string& measured, const std::string& deviation, const std::string& kept,
              const std::string& rejected, const std::string& time)
{
    PrintCell(stream, feature, 26, true);
    PrintCell(stream, unit, 4, true);
    PrintCell(stream, nominal, 10);
    PrintCell(stream, measured, 10);
    PrintCell(stream, deviation, 10);
    PrintCell(stream, kept, 8);
    PrintCell(stream, rejected, 8);
    PrintCell(stream, time, 9);
    stream << '\n';
}

} // namespace

bool Result::IsFine() const
{
    // Written positively, so that a measured NaN is not fine.
    return !expected || (measured && std::abs(*measured - expected->nominal) <= expected->tolerance);
}

void ResultTable::Print(std::ostream& stream) const
{
    PrintRow(stream, "feature", "unit", "nominal", "measured", "deviation", "kept", "rejected", "time/ms");
    for (const Result& result : results)
    {
        const bool isKnown = result.expected && result.measured;
        PrintRow(stream, result.feature, result.unit, result.expected ? MeasureText(result.expected->nominal) : kAbsent,
                 result.measured ? MeasureText(*result.measured) : kAbsent,
                 isKnown ? DeviationText(*result.measured - result.expected->nominal) : kAbsent, Count(result.kept),
                 Count(result.rejected), result.milliseconds ? NumberText(*result.milliseconds, 2) : "");
    }
}

bool ResultTable::PrintVerdict(std::ostream& stream) const
{
    std::size_t checked = 0;
    std::size_t off = 0;
    for (const Result& result : results)
    {
        checked += result.expected ? 1 : 0;
        if (!result.IsFine())
        {
            ++off;
            stream << "OUT OF TOLERANCE: " << result.feature << " may deviate by "
                   << MeasureText(result.expected->tolerance) << ' ' << result.unit << '\n';
        }
    }
    if (off == 0 && checked > 0)
    {
        stream << "all " << checked << " checked values are within tolerance\n";
    }
    return off == 0;
}

} // namespace Examples
