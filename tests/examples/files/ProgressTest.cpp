#include "support/Progress.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace ExampleFiles
{
namespace
{

using Examples::Progress;

/** What is told of a step of seven parts. */
std::string Told(Progress::Style style)
{
    testing::internal::CaptureStderr();
    {
        Progress progress(style);
        progress.Begin("sawing");
        for (std::size_t part = 1; part <= 7; ++part)
        {
            progress.Reached(part, 7);
        }
    }
    return testing::internal::GetCapturedStderr();
}

TEST(Progress, TellsStepsAndEveryTenthInLines)
{
    EXPECT_EQ(Told(Progress::Style::Lines),
              "sawing ...\nsawing 14 %\nsawing 28 %\nsawing 42 %\nsawing 57 %\nsawing 71 %\nsawing 85 %\n"
              "sawing 100 %\n");
}

TEST(Progress, IsWrittenOverInPlaceAndGoneAtTheEnd)
{
    const std::string told = Told(Progress::Style::InPlace);
    EXPECT_EQ(told.find('\n'), std::string::npos);
    EXPECT_NE(told.find("\r\x1b[Ksawing 57 %"), std::string::npos);
    EXPECT_EQ(told.substr(told.size() - 4), "\r\x1b[K");
}

TEST(Progress, CanBeSilent)
{
    EXPECT_EQ(Told(Progress::Style::Silent), "");
}

TEST(Progress, TellsNoPercentTwice)
{
    testing::internal::CaptureStderr();
    Progress progress(Progress::Style::Lines);
    progress.Begin("filing");
    for (std::size_t part = 1; part <= 10000; ++part)
    {
        progress.Reached(part, 10000);
    }
    const std::string told = testing::internal::GetCapturedStderr();
    EXPECT_EQ(std::count(told.begin(), told.end(), '\n'), 11);
}

} // namespace
} // namespace ExampleFiles
