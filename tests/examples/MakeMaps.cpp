// Writes the maps that the examples are tested with into the folder given on the command line.

#include <opencv2/core.hpp>
#include <opencv2/imgcodecs.hpp>

#include <cmath>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iostream>
#include <string>
#include <vector>

namespace
{

constexpr int kRows = 200;
constexpr int kColumns = 240;
constexpr int kMiddleRow = kRows / 2;
constexpr int kMiddleColumn = kColumns / 2;
constexpr double kCell = 0.1;    // mm, as in the JSON
constexpr double kCount = 0.001; // mm
constexpr double kMissing = -1e9;

const char* const kSoundJson = R"({"scale": [0.1, 0.1, 0.001], "offset": [0.0, 0.0, 0.0]})";

double FromMiddle(int row, int column)
{
    return kCell * std::hypot(row - kMiddleRow, column - kMiddleColumn);
}

/** A grain of up to 2 counts, the same in every run, since no real surface is exactly even. */
double Grain(int row, int column)
{
    return kCount * ((row * 31 + column * 17) % 5 - 2);
}

/** The map of a height function, in millimetres. */
cv::Mat Map(const std::function<double(int row, int column)>& height)
{
    cv::Mat map(kRows, kColumns, CV_16UC1);
    for (int row = 0; row < kRows; ++row)
    {
        for (int column = 0; column < kColumns; ++column)
        {
            const double value = height(row, column);
            map.at<std::uint16_t>(row, column) =
                value == kMissing ? std::uint16_t{0} : static_cast<std::uint16_t>(std::lround(value / kCount) + 32768);
        }
    }
    return map;
}

double Hole(int row, int column)
{
    return FromMiddle(row, column) < 4.0 ? kMissing : Grain(row, column);
}

/** A sphere of radius 10 mm, sunk in by 1 mm. */
double Bowl(int row, int column)
{
    const double away = FromMiddle(row, column);
    return std::min(0.0, 9.0 - std::sqrt(std::max(0.0, 100.0 - away * away))) + Grain(row, column);
}

/** A funnel of slope 1/2 whose rim, of radius 5 mm, has three lobes of 0.2 mm to both sides. */
double Funnel(int row, int column)
{
    const double angle = std::atan2(row - kMiddleRow, column - kMiddleColumn);
    return std::min(0.0, 0.5 * (FromMiddle(row, column) - 5.0 - 0.2 * std::cos(3.0 * angle))) + Grain(row, column);
}

/** A hole of 9 by 9 cells, whose edge is four straight lines. */
double SquareHole(int row, int column)
{
    return std::max(std::abs(row - kMiddleRow), std::abs(column - kMiddleColumn)) < 5 ? kMissing : Grain(row, column);
}

/** A hole whose edge is the same in all four quarters, about the corner of a cell. */
double SmallHole(int row, int column)
{
    return std::hypot(row - kMiddleRow - 0.5, column - kMiddleColumn - 0.5) < 4.5 ? kMissing : Grain(row, column);
}

double Grooves(int row, int column)
{
    const bool isGroove = column % 120 >= 60 && column % 120 < 80 && row > 5 && row < 195;
    return (isGroove ? -1.0 : 0.0) + Grain(row, column);
}

/** The upper half of the rows shows the groove in the middle, the lower half nothing. */
double HalfGroove(int row, int column)
{
    const bool isGroove = std::abs(column - kMiddleColumn) < 15;
    return row < kMiddleRow ? (isGroove ? -1.0 : 0.0) + Grain(row, column) : kMissing;
}

/** Each row shows the groove's left or its right part. */
double TornGroove(int row, int column)
{
    const bool isSeen = (row % 2 == 0) == (column < kMiddleColumn);
    return isSeen ? HalfGroove(0, column) : kMissing;
}

/** Three round knobs of different height on a plane, none in line with another. */
double Knobs(int row, int column)
{
    const auto knob = [&](int middleRow, int middleColumn, double height)
    {
        const double away = kCell * std::hypot(row - middleRow, column - middleColumn);
        return height * std::exp(-away * away / 0.5);
    };
    return knob(55, 60, 1.0) + knob(65, 175, 0.8) + knob(140, 115, 1.2) + Grain(row, column);
}

/** Every tenth cell of every tenth row is missing. */
double Speckled(int row, int column)
{
    return row % 10 == 5 && column % 10 == 5 ? kMissing : Grain(row, column);
}

/** One height in the corner. */
double Corner(int row, int column)
{
    return row == 0 && column == 0 ? 0.0 : kMissing;
}

/** A cylinder of radius 15 mm with its axis along the rows. */
double LyingCylinder(int row, int column)
{
    const double away = kCell * (row - kMiddleRow);
    return std::sqrt(225.0 - away * away) - 15.0 + Grain(row, column);
}

std::vector<char> Read(const std::filesystem::path& path)
{
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Write(const std::filesystem::path& path, const std::vector<char>& bytes)
{
    std::ofstream(path, std::ios::binary).write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
}

void WriteText(const std::filesystem::path& path, const std::string& text)
{
    std::ofstream(path) << text << '\n';
}

void WritePictures(const std::filesystem::path& folder)
{
    cv::imwrite(folder / "hole.png", Map(Hole));
    cv::imwrite(folder / "bowl.png", Map(Bowl));
    cv::imwrite(folder / "funnel.png", Map(Funnel));
    cv::imwrite(folder / "square-hole.png", Map(SquareHole));
    cv::imwrite(folder / "small-hole.png", Map(SmallHole));
    cv::imwrite(folder / "grooves.png", Map(Grooves));
    cv::imwrite(folder / "half-groove.png", Map(HalfGroove));
    cv::imwrite(folder / "torn-groove.png", Map(TornGroove));
    cv::imwrite(folder / "knobs.png", Map(Knobs));
    cv::imwrite(folder / "lying-cylinder.png", Map(LyingCylinder));
    cv::imwrite(folder / "flat.png", Map([](int, int) { return 0.0; }));
    cv::imwrite(folder / "speckled.png", Map(Speckled));
    cv::imwrite(folder / "corner.png", Map(Corner));
    cv::imwrite(folder / "row.png", Map(Grain).row(0));
    cv::imwrite(folder / "column.png", Map(Grain).col(0));
    cv::imwrite(folder / "empty.png", Map([](int, int) { return kMissing; }));
    cv::imwrite(folder / "eight-bits.png", cv::Mat::ones(kRows, kColumns, CV_8UC1));
    cv::imwrite(folder / "colours.png", cv::Mat(kRows, kColumns, CV_16UC3, cv::Scalar::all(1000.0)));

    std::vector<char> bytes = Read(folder / "hole.png");
    bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 1);
    Write(folder / "flipped.png", bytes);
    bytes.resize(bytes.size() / 2);
    Write(folder / "truncated.png", bytes);
}

void WriteMappings(const std::filesystem::path& folder)
{
    for (const char* name : {"text.png", "text.tif", "text.asc", "text.ply", "text.x3p"})
    {
        WriteText(folder / name, "It was a dark and stormy night.");
    }
    WriteText(folder / "sound.json", kSoundJson);
    WriteText(folder / "far.json", R"({"scale": [0.1, 0.1, 0.001], "offset": [90000.0, -50000.0, 20.0]})");
    WriteText(folder / "malformed.json", R"({"scale": [0.1, 0.1,)");
    WriteText(folder / "array.json", R"([1, 2, 3])");
    WriteText(folder / "no-scale.json", R"({"offset": [0, 0, 0]})");
    WriteText(folder / "no-offset.json", R"({"scale": [1, 1, 1]})");
    WriteText(folder / "short-scale.json", R"({"scale": [1, 1], "offset": [0, 0, 0]})");
    WriteText(folder / "text-scale.json", R"({"scale": [1, 1, "1"], "offset": [0, 0, 0]})");
    WriteText(folder / "huge-number.json", R"({"scale": [1, 1, 1e999], "offset": [0, 0, 0]})");
    WriteText(folder / "zero-scale.json", R"({"scale": [1, 1, 0], "offset": [0, 0, 0]})");
}

} // namespace

int main(int argumentCount, char** arguments)
{
    if (argumentCount != 2)
    {
        std::cerr << "usage: make_maps FOLDER\n";
        return 2;
    }
    const std::filesystem::path folder = arguments[1];
    std::filesystem::create_directories(folder);
    WritePictures(folder);
    WriteMappings(folder);
    return 0;
}
