#include <ZdkVisionLib/ImageProcessing/Inpaint.h>

#include <gtest/gtest.h>

#include <opencv2/imgproc.hpp>

#include <cmath>
#include <limits>
#include <vector>

namespace
{

using namespace Zvl;

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

template <typename T>
cv::Mat Image(int rows, int columns, std::vector<T> cells)
{
    return cv::Mat(rows, columns, cv::traits::Type<T>::value, cells.data()).clone();
}

template <typename T>
std::vector<T> CellsOf(const cv::Mat& image)
{
    std::vector<T> cells;
    for (int i = 0; i < image.rows; ++i)
    {
        cells.insert(cells.end(), image.ptr<T>(i), image.ptr<T>(i) + image.cols);
    }
    return cells;
}

using Bytes = std::vector<std::uint8_t>;

/** A mask of @p rows by @p columns cells with a block of holes. */
cv::Mat MaskWithBlock(int rows, int columns, const cv::Rect& block)
{
    cv::Mat mask(rows, columns, CV_8UC1, cv::Scalar(0));
    mask(block).setTo(255);
    return mask;
}

cv::Mat Repaired(cv::Mat image, cv::Mat mask, double range, int flags)
{
    cv::Mat repaired;
    Inpaint(image, mask, repaired, range, flags);
    return repaired;
}

/** A slope with a little texture. */
cv::Mat Slope(int rows, int columns, int type)
{
    cv::Mat image(rows, columns, type);
    for (int i = 0; i < rows; ++i)
    {
        for (int j = 0; j < columns; ++j)
        {
            const double value = 40.0 + 3.0 * i + 2.0 * j + (i * 7 + j * 5) % 4;
            const cv::Scalar cell = cv::Scalar::all(value);
            cv::Mat(1, 1, type, cell).copyTo(image(cv::Rect(j, i, 1, 1)));
        }
    }
    return image;
}

template <typename Call>
void ExpectError(int status, const char* message, const char* function, Call call)
{
    try
    {
        call();
        ADD_FAILURE() << "nothing was thrown";
    }
    catch (const cv::Exception& error)
    {
        EXPECT_EQ(error.code, status);
        EXPECT_EQ(error.err, message);
        EXPECT_EQ(error.func, function);
        EXPECT_NE(error.file.find("Inpaint"), std::string::npos);
        EXPECT_GT(error.line, 0);
    }
}

/** Counts the errors that OpenCV hands to the host's handler. */
int CountError(int /*status*/, const char* /*function*/, const char* /*message*/, const char* /*file*/, int /*line*/,
               void* count)
{
    ++*static_cast<int*>(count);
    return 0;
}

TEST(Inpaint, ErrorsPassTheHandlerThatTheHostHasGivenToOpenCv)
{
    int count = 0;
    cv::redirectError(CountError, &count);
    const cv::Mat mask = MaskWithBlock(3, 3, {1, 1, 1, 1});
    EXPECT_THROW(Repaired(mask.clone(), mask, 3.0, 9), cv::Exception);
    EXPECT_THROW(Repaired(cv::Mat::zeros(3, 3, CV_8UC2), mask, 3.0, 0), cv::Exception);
    cv::redirectError(nullptr);
    EXPECT_EQ(count, 2);
}

/** An image of one level around a hole of a single cell, repaired from the four neighbours of the hole. */
cv::Mat RepairedLevel(int type, double level, int method)
{
    cv::Mat image(5, 5, type, cv::Scalar::all(level));
    image(cv::Rect(2, 2, 1, 1)).setTo(0);
    return Repaired(image, MaskWithBlock(5, 5, {2, 2, 1, 1}), 1, method);
}

TEST(Inpaint, AHoleInALevelImageIsClosed)
{
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16SC1, CV_32FC1})
    {
        const cv::Mat level(5, 5, type, cv::Scalar::all(90));
        EXPECT_EQ(cv::norm(RepairedLevel(type, 90, CV_INPAINT_NS), level, cv::NORM_INF), 0.0);
    }
}

// Telea's method adds a half, which leaves ties on level images: the even neighbour is taken.
TEST(Inpaint, TiesAreRoundedToEven)
{
    for (const int type : {CV_8UC1, CV_8UC3, CV_16UC1, CV_16SC1})
    {
        for (const double level : {90.0, 91.0, 92.0})
        {
            const cv::Mat repaired = RepairedLevel(type, level, CV_INPAINT_TELEA);
            const double expected = level == 91.0 ? 92.0 : level;
            EXPECT_EQ(
                cv::norm(repaired(cv::Rect(2, 2, 1, 1)), cv::Mat(1, 1, type, cv::Scalar::all(expected)), cv::NORM_INF),
                0.0);
        }
    }
    EXPECT_EQ(RepairedLevel(CV_32FC1, 91, CV_INPAINT_TELEA).at<float>(2, 2), 91.5F);
}

// Both neighbours of the hole weigh alike, since nothing changes across the row. The left one stands in the first column,
// and is read at the hole itself: (77 + 30) / 2 = 53.5, of which the even neighbour is 54.
TEST(Inpaint, TheFirstColumnAndRowAreReadOneCellFurtherInside)
{
    const cv::Mat mask = Image<std::uint8_t>(1, 3, {0, 1, 0});
    const cv::Mat image = Image<std::uint8_t>(1, 3, {10, 77, 30});
    EXPECT_EQ(CellsOf<std::uint8_t>(Repaired(image, mask, 1, CV_INPAINT_NS)), (Bytes{10, 54, 30}));
    EXPECT_EQ(CellsOf<std::uint8_t>(Repaired(image.t(), mask.t(), 1, CV_INPAINT_NS)), (Bytes{10, 54, 30}));
}

// From 10 above to 31 below: the isophote runs from the cell on the left, 20, to the one on the right, 22. These two weigh
// 1/2 each, the cells above and below, whose gradients vanish, a millionth of that.
TEST(Inpaint, IsophotesGoOnThroughTheHole)
{
    cv::Mat image(5, 5, CV_32FC1);
    image.rowRange(0, 2).setTo(10);
    image.rowRange(3, 5).setTo(31);
    image(cv::Rect(0, 2, 2, 1)).setTo(20);
    image(cv::Rect(2, 2, 3, 1)).setTo(22);
    const cv::Mat mask = MaskWithBlock(5, 5, {2, 2, 1, 1});
    EXPECT_NEAR(Repaired(image, mask, 1, CV_INPAINT_NS).at<float>(2, 2), (21.0 + 41.0 * 5e-7) / 1.000001, 4e-6);
}

TEST(Inpaint, AnEmptyMaskGivesACopyWhateverTheFlags)
{
    const cv::Mat none(20, 30, CV_8UC1, cv::Scalar(0));
    for (const int type : {CV_8UC1, CV_16UC1, CV_16SC1, CV_32FC1, CV_8UC3})
    {
        const cv::Mat image = Slope(20, 30, type);
        for (const int flags : {0, 1, 2, -1})
        {
            const cv::Mat repaired = Repaired(image, none, 5, flags);
            EXPECT_EQ(repaired.type(), type);
            EXPECT_EQ(cv::norm(repaired, image, cv::NORM_INF), 0.0);
            EXPECT_NE(repaired.data, image.data);
        }
    }
}

TEST(Inpaint, AMaskOfTheWholeImageGivesACopy)
{
    for (const int flags : {CV_INPAINT_NS, CV_INPAINT_TELEA})
    {
        for (const cv::Size size : {cv::Size(1, 1), cv::Size(9, 1), cv::Size(1, 9), cv::Size(7, 8)})
        {
            const cv::Mat image = Slope(size.height, size.width, CV_16SC1);
            const cv::Mat repaired = Repaired(image, cv::Mat(size, CV_8UC1, cv::Scalar(1)), 5, flags);
            EXPECT_EQ(cv::norm(repaired, image, cv::NORM_INF), 0.0);
        }
    }
}

// All but one cell. Telea's method adds a half at each cell, and up to the square root of 2 where values rise.
TEST(Inpaint, ASingleKnownCellSpreads)
{
    for (const int flags : {CV_INPAINT_NS, CV_INPAINT_TELEA})
    {
        cv::Mat mask(9, 9, CV_8UC1, cv::Scalar(255));
        mask.at<std::uint8_t>(4, 4) = 0;
        const cv::Mat image(9, 9, CV_16UC1, cv::Scalar(500));
        const double most = flags == CV_INPAINT_NS ? 0.0 : 8 * 2.0; // the cells lie within 8 steps
        EXPECT_LE(cv::norm(Repaired(image, mask, 3, flags), image, cv::NORM_INF), most);
    }
}

TEST(Inpaint, TheRangeIsRoundedAndLimited)
{
    const cv::Mat image = Slope(40, 40, CV_8UC1);
    const cv::Mat mask = MaskWithBlock(40, 40, {10, 12, 15, 14});
    for (const int flags : {CV_INPAINT_NS, CV_INPAINT_TELEA})
    {
        const auto same = [&](double range, double as) {
            return cv::norm(Repaired(image, mask, range, flags), Repaired(image, mask, as, flags), cv::NORM_INF) == 0.0;
        };
        EXPECT_FALSE(same(1, 2));
        EXPECT_FALSE(same(2, 3));
        EXPECT_TRUE(same(0.4, 1));
        EXPECT_TRUE(same(-7, 1));
        EXPECT_TRUE(same(1.5, 2));
        EXPECT_TRUE(same(2.5, 2));
        EXPECT_TRUE(same(2.6, 3));
        EXPECT_TRUE(same(kNan, 1));
        EXPECT_TRUE(same(-kInfinity, 1));
        EXPECT_TRUE(same(kInfinity, 100));
        EXPECT_TRUE(same(1000, 100));
        EXPECT_TRUE(same(1e300, 100));
    }
}

TEST(Inpaint, HolesAtEveryBorderAndCornerAreClosed)
{
    const cv::Mat flat(12, 12, CV_8UC1, cv::Scalar(50));
    for (const cv::Rect& block : {cv::Rect(0, 0, 3, 3), cv::Rect(9, 0, 3, 4), cv::Rect(0, 9, 4, 3),
                                  cv::Rect(9, 9, 3, 3), cv::Rect(0, 5, 12, 2), cv::Rect(5, 0, 2, 12)})
    {
        for (const int flags : {CV_INPAINT_NS, CV_INPAINT_TELEA})
        {
            cv::Mat image = flat.clone();
            // Only the outermost cells are read from within the hole; deeper ones may hold anything.
            const cv::Rect deep = block & cv::Rect(3, 3, 6, 6);
            image(deep).setTo(255);
            const double most = flags == CV_INPAINT_NS ? 0.0 : 2.0;
            EXPECT_LE(cv::norm(Repaired(image, MaskWithBlock(12, 12, block), 2, flags), flat, cv::NORM_INF), most);
        }
    }
}

TEST(Inpaint, KnownCellsStayAsTheyAre)
{
    const cv::Mat image = Slope(30, 30, CV_32FC1);
    const cv::Mat mask = MaskWithBlock(30, 30, {8, 8, 9, 5});
    for (const int flags : {CV_INPAINT_NS, CV_INPAINT_TELEA})
    {
        const cv::Mat repaired = Repaired(image, mask, 3, flags);
        EXPECT_EQ(cv::norm(repaired, image, cv::NORM_INF, mask == 0), 0.0);
        // The slope goes on through the hole. Telea's gradients count fourfold, and it adds half a unit.
        EXPECT_LT(cv::norm(repaired, image, cv::NORM_INF, mask), 12.0);
        EXPECT_GT(cv::norm(repaired, image, cv::NORM_INF, mask), 0.0);
    }
}

TEST(Inpaint, FloatsThatAreNotFiniteSpreadOnlyWithinRange)
{
    for (const float bad : {std::numeric_limits<float>::quiet_NaN(), std::numeric_limits<float>::infinity()})
    {
        for (const int flags : {CV_INPAINT_NS, CV_INPAINT_TELEA})
        {
            cv::Mat image = Slope(30, 60, CV_32FC1);
            cv::Mat mask = MaskWithBlock(30, 60, {10, 10, 1, 1});
            mask.at<std::uint8_t>(10, 40) = 1;
            image.at<float>(10, 8) = bad;
            const cv::Mat repaired = Repaired(image, mask, 3, flags);
            EXPECT_FALSE(std::isfinite(repaired.at<float>(10, 10)));
            EXPECT_TRUE(std::isfinite(repaired.at<float>(10, 40)));
        }
    }
}

TEST(Inpaint, TheDestinationMayBeTheSourceOrTheMask)
{
    for (const int flags : {CV_INPAINT_NS, CV_INPAINT_TELEA})
    {
        const cv::Mat image = Slope(20, 20, CV_8UC1);
        const cv::Mat mask = MaskWithBlock(20, 20, {5, 6, 7, 4});
        const cv::Mat expected = Repaired(image, mask, 3, flags);
        cv::Mat source = image.clone();
        cv::Mat holes = mask.clone();
        Inpaint(source, holes, source, 3, flags);
        EXPECT_EQ(cv::norm(source, expected, cv::NORM_INF), 0.0);
        EXPECT_EQ(cv::norm(holes, mask, cv::NORM_INF), 0.0);
        source = image.clone();
        Inpaint(source, holes, holes, 3, flags);
        EXPECT_EQ(cv::norm(holes, expected, cv::NORM_INF), 0.0);
        EXPECT_EQ(cv::norm(source, image, cv::NORM_INF), 0.0);
        // Of another type, it is made anew while the mask is still in use.
        cv::Mat wide = Slope(20, 20, CV_16SC1);
        const cv::Mat expectedWide = Repaired(wide, mask, 3, flags);
        holes = mask.clone();
        Inpaint(wide, holes, holes, 3, flags);
        EXPECT_EQ(holes.type(), CV_16SC1);
        EXPECT_EQ(cv::norm(holes, expectedWide, cv::NORM_INF), 0.0);
    }
}

TEST(Inpaint, PartsOfAMatrixMayOverlap)
{
    const cv::Rect from(4, 3, 20, 20);
    const cv::Mat mask = MaskWithBlock(20, 20, {5, 6, 7, 4});
    for (const cv::Rect& to :
         {cv::Rect(4, 3, 20, 20), cv::Rect(5, 3, 20, 20), cv::Rect(2, 8, 20, 20), cv::Rect(9, 0, 20, 20)})
    {
        cv::Mat all = Slope(40, 40, CV_16UC1);
        const cv::Mat before = all.clone();
        cv::Mat source = all(from);
        cv::Mat holes = mask;
        cv::Mat destination = all(to);
        const cv::Mat expected = Repaired(source.clone(), mask, 4, CV_INPAINT_TELEA);
        Inpaint(source, holes, destination, 4, CV_INPAINT_TELEA);
        EXPECT_EQ(destination.data, all(to).data);
        EXPECT_EQ(cv::norm(destination, expected, cv::NORM_INF), 0.0);
        cv::Mat elsewhere(40, 40, CV_8UC1, cv::Scalar(1));
        elsewhere(to).setTo(0);
        EXPECT_EQ(cv::norm(all, before, cv::NORM_INF, elsewhere), 0.0);
    }
}

TEST(Inpaint, ADestinationOfAnotherSizeOrTypeIsMadeAnew)
{
    const cv::Mat image = Slope(10, 12, CV_8UC3);
    cv::Mat source = image;
    cv::Mat mask = MaskWithBlock(10, 12, {3, 3, 2, 2});
    cv::Mat destination(4, 4, CV_32FC1);
    Inpaint(source, mask, destination, 3, CV_INPAINT_NS);
    EXPECT_EQ(destination.type(), CV_8UC3);
    EXPECT_EQ(destination.size(), image.size());
    EXPECT_EQ(cv::norm(destination, Repaired(image, mask, 3, CV_INPAINT_NS), cv::NORM_INF), 0.0);
}

TEST(Inpaint, ImagesWithoutCellsStayEmpty)
{
    for (const cv::Size size : {cv::Size(0, 0), cv::Size(0, 5), cv::Size(5, 0)})
    {
        for (const int flags : {0, 1, 9})
        {
            EXPECT_TRUE(Repaired(cv::Mat(size, CV_16SC1), cv::Mat(size, CV_8UC1), 3, flags).empty());
        }
    }
    EXPECT_TRUE(Repaired(cv::Mat(), cv::Mat(), 3, CV_INPAINT_NS).empty());
}

TEST(Inpaint, SizesMustAgree)
{
    const char* message = "All the input and output images must have the same size";
    const cv::Mat image = Slope(6, 6, CV_8UC1);
    for (const cv::Size size : {cv::Size(5, 6), cv::Size(6, 7), cv::Size(0, 0)})
    {
        ExpectError(-209, message, "Zvl::icvInpaint",
                    [&] { Repaired(image, cv::Mat(size, CV_8UC1, cv::Scalar(0)), 3, CV_INPAINT_NS); });
    }
    // The sizes are looked at before the types.
    ExpectError(-209, message, "Zvl::icvInpaint",
                [&] { Repaired(Slope(6, 6, CV_64FC1), cv::Mat(2, 2, CV_16UC1), 3, 7); });
}

TEST(Inpaint, OnlySomeTypesAreTaken)
{
    cv::Mat mask = MaskWithBlock(6, 6, {2, 2, 1, 1});
    for (const int type : {CV_8SC1, CV_32SC1, CV_64FC1, CV_8UC2, CV_8UC4, CV_16UC3, CV_32FC3})
    {
        ExpectError(-210,
                    "8-bit, 16-bit unsigned or 32-bit float 1-channel and 8-bit 3-channel input/output images are "
                    "supported",
                    "Zvl::icvInpaint", [&] { Repaired(cv::Mat(6, 6, type, cv::Scalar::all(1)), mask, 3, 0); });
    }
    for (const int type : {CV_8SC1, CV_8UC3, CV_16UC1, CV_32FC1})
    {
        cv::Mat source = Slope(6, 6, CV_8UC1);
        cv::Mat holes(6, 6, type, cv::Scalar::all(1));
        cv::Mat destination(6, 6, CV_8UC1, cv::Scalar(3));
        ExpectError(-210, "The mask must be 8-bit 1-channel image", "Zvl::icvInpaint",
                    [&] { Inpaint(source, holes, destination, 3, 0); });
        EXPECT_EQ(cv::norm(destination, cv::Mat(6, 6, CV_8UC1, cv::Scalar(3)), cv::NORM_INF), 0.0);
    }
}

TEST(Inpaint, UnknownFlagsAreNoticedLast)
{
    for (const int flags : {-1, 2, 1000})
    {
        cv::Mat source = Slope(8, 8, CV_8UC1);
        cv::Mat mask = MaskWithBlock(8, 8, {2, 2, 3, 3});
        cv::Mat destination(8, 8, CV_8UC1, cv::Scalar(3));
        ExpectError(-5, "The flags argument must be one of CV_INPAINT_TELEA or CV_INPAINT_NS", "Zvl::icvInpaint",
                    [&] { Inpaint(source, mask, destination, 3, flags); });
        EXPECT_EQ(cv::norm(destination, source, cv::NORM_INF), 0.0);
    }
}

TEST(Inpaint, MoreThanTwoDimensionsAreRefused)
{
    const int sizes[] = {3, 4, 5};
    const cv::Mat deep(3, sizes, CV_8UC1, cv::Scalar(1));
    cv::Mat source = Slope(6, 6, CV_8UC1);
    cv::Mat solid = deep;
    cv::Mat destination(2, 2, CV_8UC1, cv::Scalar(3));
    ExpectError(-215, "m.dims <= 2", "Zvl::Inpaint", [&] { Inpaint(solid, source, destination, 3, 0); });
    ExpectError(-215, "m.dims <= 2", "Zvl::Inpaint", [&] { Inpaint(source, solid, destination, 3, 0); });
    EXPECT_EQ(destination.size(), cv::Size(2, 2));
    cv::Mat mask = MaskWithBlock(6, 6, {2, 2, 1, 1});
    Inpaint(source, mask, solid, 3, 0); // a destination is made anew
    EXPECT_EQ(solid.dims, 2);
}

TEST(Inpaint, ViewsOfSharedMemoryWork)
{
    std::vector<std::uint8_t> memory(2560, 7);
    cv::Mat view(30, 50, CV_8UC1, memory.data() + 5, 64);
    view.setTo(90);
    cv::Mat maskMemory(60, 100, CV_8UC1, cv::Scalar(0));
    cv::Mat mask = maskMemory(cv::Rect(20, 10, 50, 30));
    mask(cv::Rect(45, 25, 5, 5)).setTo(1);
    maskMemory(cv::Rect(0, 0, 100, 10)).setTo(1); // beyond the view
    view(cv::Rect(47, 27, 1, 1)).setTo(200);
    Inpaint(view, mask, view, 4, CV_INPAINT_NS);
    EXPECT_EQ(cv::norm(view, cv::Mat(30, 50, CV_8UC1, cv::Scalar(90)), cv::NORM_INF), 0.0);
    EXPECT_EQ(memory[4], 7);
    EXPECT_EQ(memory[55], 7);
}

} // namespace
