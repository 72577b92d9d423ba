#pragma once

#include "support/FileBytes.h"
#include "support/HeightMap.h"
#include "support/InputError.h"
#include "support/ScanFile.h"

#include <gtest/gtest.h>

#include <cmath>
#include <filesystem>
#include <limits>
#include <string>
#include <unistd.h>
#include <vector>

namespace ExampleFiles
{

/** A folder that is empty when a test begins, and gone when it ends. */
class ScratchFolder : public testing::Test
{
public:
    ScratchFolder(const ScratchFolder&) = delete;
    ScratchFolder& operator=(const ScratchFolder&) = delete;

protected:
    ScratchFolder()
        : folder(std::filesystem::path(testing::TempDir()) / ("zdk-example-files-" + std::to_string(getpid())))
    {
        std::filesystem::create_directories(folder);
    }
    ~ScratchFolder() override { std::filesystem::remove_all(folder); }

    std::string PathOf(const std::string& name) const { return (folder / name).string(); }

    /** Writes bytes to a file, and returns its path. */
    std::string File(const std::string& name, const std::string& bytes) const
    {
        Examples::WriteBytes(PathOf(name), bytes);
        return PathOf(name);
    }

    Zvl::Surface Read(const std::string& name, const std::string& bytes) const
    {
        return Examples::ReadScan(File(name, bytes), std::nullopt);
    }

private:
    std::filesystem::path folder;
};

/** Reading ends in an InputError of one line that names the file and tells @p text. */
inline void ExpectRefusal(const std::string& path, const std::string& text)
{
    SCOPED_TRACE(path);
    try
    {
        Examples::ReadScan(path, std::nullopt);
        ADD_FAILURE() << "was read, but '" << text << "' was expected";
    }
    catch (const Examples::InputError& error)
    {
        const std::string message = error.what();
        EXPECT_NE(message.find(text), std::string::npos) << message;
        EXPECT_NE(message.find(std::filesystem::path(path).stem().string()), std::string::npos) << message;
        EXPECT_EQ(message.find('\n'), std::string::npos) << message;
    }
}

/** The world height of a cell; NaN where it is missing. */
inline double HeightAt(const Zvl::Surface& map, std::size_t row, std::size_t column)
{
    return Examples::IsMissing(Examples::HeightRow(map, row)[column]) ? std::numeric_limits<double>::quiet_NaN()
                                                                      : Examples::WorldPoint(map, row, column).z;
}

/** Compares size, place and heights with those of rows of numbers, of which NaN is missing. */
inline void ExpectMap(const Zvl::Surface& map, const std::vector<std::vector<double>>& heights, double tolerance)
{
    ASSERT_EQ(Examples::Rows(map), heights.size());
    ASSERT_EQ(Examples::Columns(map), heights.front().size());
    for (std::size_t row = 0; row < heights.size(); ++row)
    {
        for (std::size_t column = 0; column < heights[row].size(); ++column)
        {
            SCOPED_TRACE("row " + std::to_string(row) + ", column " + std::to_string(column));
            const double expected = heights[row][column];
            const double found = HeightAt(map, row, column);
            ASSERT_EQ(std::isnan(found), std::isnan(expected));
            if (!std::isnan(expected))
            {
                ASSERT_NEAR(found, expected, tolerance);
            }
        }
    }
}

inline void ExpectPlane(const Zvl::Surface& map, const qPoint64f& scale, const qPoint64f& offset, double tolerance)
{
    EXPECT_NEAR(map.scale.x, scale.x, tolerance);
    EXPECT_NEAR(map.scale.y, scale.y, tolerance);
    EXPECT_NEAR(map.offset.x, offset.x, tolerance);
    EXPECT_NEAR(map.offset.y, offset.y, tolerance);
}

} // namespace ExampleFiles
