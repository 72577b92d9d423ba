#pragma once

#include <cstddef>
#include <string>

namespace Examples
{

/** Tells on the error stream what a program is at: the step, and how much of it is done. */
class Progress
{
public:
    enum class Style
    {
        Silent,
        InPlace, ///< one line that is written over, and is gone at the end: for terminals
        Lines    ///< a line for every tenth of a step: for files and pipes
    };

    explicit Progress(Style progressStyle) : style(progressStyle) {}
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /** The next step begins. */
    void Begin(const std::string& name);

    /** Nothing is being done, or the output comes next. */
    void End();

    /** So many of the parts of the step are done; @p whole is above 0. */
    void Reached(std::size_t done, std::size_t whole);

private:
    void Tell(const std::string& line) const;

    Style style;
    std::string step;
    std::size_t shownPercent = 0;
};

} // namespace Examples
