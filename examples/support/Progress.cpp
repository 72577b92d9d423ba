#include "support/Progress.h"

#include <iostream>

namespace Examples
{

Progress::~Progress()
{
    End();
}

void Progress::Begin(const std::string& name)
{
    step = name;
    shownPercent = 0;
    Tell(step + " ...");
}

void Progress::End()
{
    if (!step.empty() && style == Style::InPlace)
    {
        Tell("");
    }
    step.clear();
}

void Progress::Reached(std::size_t done, std::size_t whole)
{
    const std::size_t percent = 100 * done / whole;
    const std::size_t stride = style == Style::Lines ? 10 : 1;
    if (percent / stride > shownPercent / stride)
    {
        shownPercent = percent;
        Tell(step + ' ' + std::to_string(percent) + " %");
    }
}

void Progress::Tell(const std::string& line) const
{
    switch (style)
    {
    case Style::Silent:
        break;
    case Style::InPlace:
        std::cerr << "\r\x1b[K" << line << std::flush; // back to the start of the line, and clear it
        break;
    case Style::Lines:
        std::cerr << line << '\n';
        break;
    }
}

} // namespace Examples
