#include "ScratchFolder.h"

#include <algorithm>
#include <random>

namespace ExampleFiles
{
namespace
{

/** A tilted, grainy map of a sensor's counts: cells are not square, some are missing, and the corners are there. */
Zvl::Surface SensorMap()
{
    constexpr std::size_t kRows = 37;
    constexpr std::size_t kColumns = 53;
    Zvl::Surface map = Examples::MakeSurface(kRows, kColumns, {0.05, 0.125, 0.0002}, {-12.5, 300.25, 7.3}, false);
    std::mt19937 generator(17);
    std::uniform_int_distribution<int> grain(-90, 90);
    std::uniform_int_distribution<int> dice(1, 6);
    for (std::size_t row = 0; row < kRows; ++row)
    {
        for (std::size_t column = 0; column < kColumns; ++column)
        {
            const int count = 400 * static_cast<int>(row) - 300 * static_cast<int>(column) + grain(generator);
            const bool isCorner = row % (kRows - 1) == 0 && column % (kColumns - 1) == 0;
            const bool isThere = isCorner || dice(generator) > 1;
            Examples::HeightRow(map, row)[column] = isThere ? static_cast<short>(count) : Zvl::GetNull<short>();
        }
    }
    return map;
}

std::vector<std::vector<double>> HeightsOf(const Zvl::Surface& map)
{
    std::vector<std::vector<double>> heights(Examples::Rows(map));
    for (std::size_t row = 0; row < heights.size(); ++row)
    {
        for (std::size_t column = 0; column < Examples::Columns(map); ++column)
        {
            heights[row].push_back(HeightAt(map, row, column));
        }
    }
    return heights;
}

class ScanFile : public ScratchFolder, public testing::WithParamInterface<const char*>
{
};

TEST_P(ScanFile, GivesBackWhatWasWritten)
{
    const Zvl::Surface map = SensorMap();
    const std::string path = PathOf(std::string("map") + GetParam());
    Examples::WriteScan(path, map);
    const Zvl::Surface read = Examples::ReadScan(path, std::nullopt);
    ExpectPlane(read, {0.05, 0.125}, {-12.5, 300.25}, 1e-12);
    EXPECT_NEAR(read.scale.z, 0.0002, 1e-12);
    ExpectMap(read, HeightsOf(map), 1e-3 * map.scale.z);
}

TEST_P(ScanFile, HoldsTheWholeRangeOfCounts)
{
    const Zvl::Surface map = Examples::MakeSurface(1, 5, {1.0, 1.0, 0.001}, {0.0, 0.0, 0.0}, false);
    const std::vector<short> counts = {-32767, 0, 1, 2, 32767};
    std::copy(counts.begin(), counts.end(), Examples::HeightRow(map, 0));
    const std::string path = PathOf(std::string("range") + GetParam());
    Examples::WriteScan(path, map);
    ExpectMap(Examples::ReadScan(path, std::nullopt), HeightsOf(map), 1e-6);
}

TEST_P(ScanFile, IsRefusedWhenItIsAbsentOrAFolder)
{
    ExpectRefusal(PathOf(std::string("absent") + GetParam()), "cannot be read");
    std::filesystem::create_directory(PathOf(std::string("folder") + GetParam()));
    ExpectRefusal(PathOf(std::string("folder") + GetParam()), "cannot be read");
    ExpectRefusal("/dev/null/device" + std::string(GetParam()), "cannot be read");
}

TEST_P(ScanFile, IsRefusedWhenItIsEmptyOrText)
{
    ExpectRefusal(File(std::string("empty") + GetParam(), ""), ": ");
    ExpectRefusal(File(std::string("prose") + GetParam(), "It was a dark and stormy night.\n"), ": ");
}

TEST_P(ScanFile, CannotBeWrittenWhereThereIsNoFolder)
{
    EXPECT_THROW(Examples::WriteScan("/nowhere/map" + std::string(GetParam()), SensorMap()), Examples::InputError);
}

/** Changes bytes, cuts off an end or repeats a piece. */
std::string Damage(std::string bytes, std::mt19937* generator)
{
    const auto place = [&] { return std::uniform_int_distribution<std::size_t>(0, bytes.size() - 1)(*generator); };
    switch (std::uniform_int_distribution<int>(0, 3)(*generator))
    {
    case 0:
        bytes.resize(place());
        break;
    case 1:
        bytes.insert(place(), bytes.substr(place(), 64));
        break;
    default:
        for (int change = 0; change < 4; ++change)
        {
            bytes[place() / (change % 2 == 0 ? 1 : 8)] = static_cast<char>((*generator)()); // headers come first
        }
    }
    return bytes;
}

TEST_P(ScanFile, EndsInAMapOrARefusalWhereverItIsDamaged)
{
    const std::string sound = PathOf(std::string("sound") + GetParam());
    Examples::WriteScan(sound, SensorMap());
    const std::string bytes = Examples::ReadBytes(sound);
    const std::string damaged = PathOf(std::string("damaged") + GetParam());
    if (Examples::NeedsMapping(damaged))
    {
        std::filesystem::copy_file(PathOf("sound.json"), PathOf("damaged.json"));
    }
    std::mt19937 generator(23);
    int refused = 0;
    testing::internal::CaptureStderr();
    for (int trial = 0; trial < 150; ++trial)
    {
        Examples::WriteBytes(damaged, Damage(bytes, &generator));
        try
        {
            Examples::ReadScan(damaged, std::nullopt);
        }
        catch (const Examples::InputError&)
        {
            ++refused;
        }
    }
    EXPECT_EQ(testing::internal::GetCapturedStderr(), "");
    EXPECT_GT(refused, 40);
}

INSTANTIATE_TEST_SUITE_P(Kinds, ScanFile, testing::Values(".png", ".tif", ".tiff", ".asc", ".ply", ".x3p"),
                         [](const auto& kind) { return kind.param + 1; });

using ScanFiles = ScratchFolder;

TEST_F(ScanFiles, KeepCountsAndMappingOfPicturesAsTheyAre)
{
    const Zvl::Surface map = SensorMap();
    for (const char* name : {"map.png", "map.tif"})
    {
        Examples::WriteScan(PathOf(name), map);
        const Zvl::Surface read = Examples::ReadScan(PathOf(name), std::nullopt);
        ASSERT_EQ(Examples::Rows(read), Examples::Rows(map));
        EXPECT_EQ(read.scale.z, map.scale.z);
        EXPECT_EQ(read.offset.z, map.offset.z);
        EXPECT_EQ(read.offset.x, map.offset.x);
        for (std::size_t row = 0; row < Examples::Rows(map); ++row)
        {
            const short* counts = Examples::HeightRow(map, row);
            EXPECT_TRUE(std::equal(counts, counts + Examples::Columns(map), Examples::HeightRow(read, row)));
        }
    }
}

TEST_F(ScanFiles, MayHaveAMappingOfAnotherName)
{
    Examples::WriteScan(PathOf("map.png"), SensorMap());
    std::filesystem::rename(PathOf("map.json"), PathOf("elsewhere.json"));
    EXPECT_THROW(Examples::ReadScan(PathOf("map.png"), std::nullopt), Examples::InputError);
    EXPECT_EQ(Examples::ReadScan(PathOf("map.png"), PathOf("elsewhere.json")).scale.y, 0.125);
}

TEST_F(ScanFiles, AreToldByTheirExtensionInSmallOrCapitalLetters)
{
    Examples::WriteScan(PathOf("MAP.X3P"), SensorMap());
    EXPECT_EQ(Examples::Rows(Examples::ReadScan(PathOf("MAP.X3P"), std::nullopt)), 37U);
    for (const char* name : {"map", "map.bmp", "map.", ".png.txt"})
    {
        EXPECT_THROW(Examples::RequireScanFile(name), Examples::InputError) << name;
        EXPECT_THROW(Examples::WriteScan(PathOf(name), SensorMap()), Examples::InputError) << name;
    }
}

} // namespace
} // namespace ExampleFiles
