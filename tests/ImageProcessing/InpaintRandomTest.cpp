#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include "ImageProcessing/InpaintPlain.h"
#include "support/InstructionSets.h"

#include <gtest/gtest.h>

#include <random>

namespace
{

using namespace Zvl;

constexpr int kTypes[] = {CV_8UC1, CV_16UC1, CV_16SC1, CV_32FC1, CV_8UC3};

/** Slopes and noise over the whole range of the type. */
cv::Mat RandomImage(int rows, int columns, int type, std::mt19937& random)
{
    std::uniform_real_distribution<double> unit(0.0, 1.0);
    const double low = CV_MAT_DEPTH(type) == CV_16S ? -32768.0 : 0.0;
    const double span = CV_MAT_DEPTH(type) == CV_8U ? 255.0 : 65535.0;
    const double noise = unit(random);
    const double slope = unit(random);
    cv::Mat image(rows, columns, CV_64FC(CV_MAT_CN(type)));
    for (int i = 0; i < rows; ++i)
    {
        for (int j = 0; j < columns * image.channels(); ++j)
        {
            const double level = 0.5 + 0.5 * std::sin(slope * (0.3 * i + 0.2 * j));
            image.ptr<double>(i)[j] = low + span * (noise * unit(random) + (1.0 - noise) * level);
        }
    }
    cv::Mat cells;
    image.convertTo(cells, type);
    return cells;
}

/** Spots, lines and blocks. */
cv::Mat RandomMask(int rows, int columns, std::mt19937& random)
{
    cv::Mat mask(rows, columns, CV_8UC1, cv::Scalar(0));
    const auto upTo = [&](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); };
    const int spots = upTo(rows * columns / 8 + 2);
    for (int spot = 0; spot < spots; ++spot)
    {
        mask.at<std::uint8_t>(upTo(rows), upTo(columns)) = static_cast<std::uint8_t>(1 + upTo(255));
    }
    for (int block = upTo(3); block > 0; --block)
    {
        const int row = upTo(rows);
        const int column = upTo(columns);
        mask(cv::Range(row, row + 1 + upTo(rows - row)), cv::Range(column, column + 1 + upTo(columns - column)))
            .setTo(255);
    }
    return mask;
}

/** Bit for bit, also of floats. */
bool AreSame(const cv::Mat& a, const cv::Mat& b)
{
    if (a.size() != b.size() || a.type() != b.type())
    {
        return false;
    }
    for (int i = 0; i < a.rows; ++i)
    {
        if (!std::equal(a.ptr(i), a.ptr(i) + static_cast<std::size_t>(a.cols) * a.elemSize(), b.ptr(i)))
        {
            return false;
        }
    }
    return true;
}

void ExpectSame(cv::Mat image, cv::Mat mask, int range)
{
    for (const bool telea : {false, true})
    {
        cv::Mat repaired;
        Inpaint(image, mask, repaired, range, telea ? CV_INPAINT_TELEA : CV_INPAINT_NS);
        ASSERT_TRUE(AreSame(repaired, PlainInpaint::Repair(image, mask, range, telea)))
            << image.rows << " x " << image.cols << ", type " << image.type() << ", range " << range
            << (telea ? ", Telea" : ", Navier-Stokes");
    }
}

TEST(InpaintAgainstPlainLoops, SmallImagesOfEveryType)
{
    TestSupport::InEachInstructionSet(
        []
        {
            std::mt19937 random(70);
            for (int round = 0; round < 60; ++round)
            {
                const int rows = std::uniform_int_distribution<int>(1, 24)(random);
                const int columns = std::uniform_int_distribution<int>(1, 40)(random);
                const int range = std::uniform_int_distribution<int>(1, 6)(random);
                for (const int type : kTypes)
                {
                    const cv::Mat image = RandomImage(rows, columns, type, random);
                    ASSERT_NO_FATAL_FAILURE(ExpectSame(image, RandomMask(rows, columns, random), range));
                }
            }
        });
}

TEST(InpaintAgainstPlainLoops, NarrowImages)
{
    std::mt19937 random(71);
    for (int length = 1; length <= 12; ++length)
    {
        for (const int width : {1, 2, 3})
        {
            for (const int type : kTypes)
            {
                for (const bool upright : {false, true})
                {
                    const int rows = upright ? length : width;
                    const int columns = upright ? width : length;
                    const cv::Mat image = RandomImage(rows, columns, type, random);
                    ASSERT_NO_FATAL_FAILURE(
                        ExpectSame(image, RandomMask(rows, columns, random), 1 + static_cast<int>(random() % 4)));
                }
            }
        }
    }
}

TEST(InpaintAgainstPlainLoops, WideRanges)
{
    std::mt19937 random(72);
    for (const int range : {7, 11, 20, 100})
    {
        for (const int type : {CV_8UC1, CV_8UC3, CV_32FC1})
        {
            const cv::Mat image = RandomImage(40, 70, type, random);
            ASSERT_NO_FATAL_FAILURE(ExpectSame(image, RandomMask(40, 70, random), range));
        }
    }
}

TEST(InpaintAgainstPlainLoops, FloatsOfEveryMagnitude)
{
    std::mt19937 random(73);
    for (const float scale : {1e-38F, 1e-10F, 1.0F, 1e10F, 1e30F, 3e38F})
    {
        for (int round = 0; round < 10; ++round)
        {
            cv::Mat image = RandomImage(20, 30, CV_32FC1, random);
            image = (image / 65535.0 - 0.5) * scale;
            ASSERT_NO_FATAL_FAILURE(ExpectSame(image, RandomMask(20, 30, random), 4));
        }
    }
}

/** Few enough holes that some are too far apart to matter to each other, and others just do. */
TEST(InpaintAgainstPlainLoops, ScatteredHoles)
{
    std::mt19937 random(75);
    const auto upTo = [&](int count) { return std::uniform_int_distribution<int>(0, count - 1)(random); };
    for (int round = 0; round < 200; ++round)
    {
        const int type = kTypes[static_cast<std::size_t>(round) % std::size(kTypes)];
        const cv::Mat image = RandomImage(40, 60, type, random);
        cv::Mat mask(40, 60, CV_8UC1, cv::Scalar(0));
        for (int hole = 2 + upTo(8); hole > 0; --hole)
        {
            mask(cv::Rect(upTo(57), upTo(37), 1 + upTo(3), 1 + upTo(3))).setTo(1);
        }
        ASSERT_NO_FATAL_FAILURE(ExpectSame(image, mask, 1 + upTo(7)));
    }
}

/** A flat image, whose gradients vanish. */
TEST(InpaintAgainstPlainLoops, FlatImages)
{
    std::mt19937 random(74);
    for (const int type : kTypes)
    {
        const cv::Mat image(25, 33, type, cv::Scalar::all(17));
        ASSERT_NO_FATAL_FAILURE(ExpectSame(image, RandomMask(25, 33, random), 3));
    }
}

} // namespace
