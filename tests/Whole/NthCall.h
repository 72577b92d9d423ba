#pragma once

/** @file
 *  Which of many calls are to fail. */

#include <cstddef>

namespace WholeTest
{

/** Counts the calls of one kind, and tells of each whether it must fail. */
class NthCall
{
public:
    /** Starts anew: the @p nth call from now on fails (1 is the next one), and with @p onwards all later ones. With 0 none
     *  does. */
    constexpr void FailAt(std::size_t nth, bool onwards) noexcept
    {
        calls = 0;
        failures = 0;
        failAt = nth;
        failOnwards = onwards;
    }

    constexpr bool MustFail() noexcept
    {
        ++calls;
        const bool fails = failAt != 0 && (failOnwards ? calls >= failAt : calls == failAt);
        failures += fails ? 1U : 0U;
        return fails;
    }

    constexpr std::size_t Calls() const noexcept { return calls; }
    constexpr std::size_t Failures() const noexcept { return failures; }

private:
    std::size_t calls = 0;
    std::size_t failures = 0;
    std::size_t failAt = 0;
    bool failOnwards = false;
};

} // namespace WholeTest
