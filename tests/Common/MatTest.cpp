#include "Common/MatSupport.h"

#include "support/FailingAllocator.h"

#include <opencv2/imgproc.hpp>

#include <type_traits>
#include <utility>

namespace MatTest
{

// Private members have no other way in: the names in an explicit instantiation are free of access checks, and the
// friends that it defines hand the members out.
cv::Mat CallGetMat(const Zvl::zvlMat& mat, cv::Size size);
int StateOf(const Zvl::zvlMat& mat);

template <cv::Mat (Zvl::zvlMat::*GetMat)(cv::Size) const, int Zvl::zvlMat::*State>
struct Members
{
    friend cv::Mat CallGetMat(const Zvl::zvlMat& mat, cv::Size size) { return (mat.*GetMat)(size); }
    friend int StateOf(const Zvl::zvlMat& mat) { return mat.*State; }
};

template struct Members<&Zvl::zvlMat::GetMat, &Zvl::zvlMat::state>;

} // namespace MatTest

namespace
{

using namespace Zvl;
using MatTest::CallGetMat;
using MatTest::CellsOf;
using MatTest::FlatRegion;
using MatTest::Handle;
using MatTest::HeightsOf;
using MatTest::IsSame;
using MatTest::Region;
using MatTest::StateOf;

using Heights = std::vector<int>;

static_assert(std::is_constructible_v<zvlMat, zvlMat&>);
static_assert(std::is_constructible_v<zvlMat, const zvlMat&>);
static_assert(std::is_nothrow_move_constructible_v<zvlMat>);
static_assert(std::is_assignable_v<zvlMat&, const zvlMat&>);
static_assert(std::is_assignable_v<zvlMat&, zvlMat&&>);

constexpr qPoint3d64f kScale = {0.5, 0.25, 0.125};
constexpr qPoint3d64f kOffset = {10.0, 20.0, 30.0};
constexpr qPoint3d64f kZero = {0.0, 0.0, 0.0};

/** Two rows of three cells, heights 1 to 6, at kOffset with kScale. */
zvlMat MakeSix()
{
    const Handle message = MatTest::MakeMessage(2, 3, MatTest::Numbered(6), kScale, kOffset);
    Region region;
    zvlMat::GetRegionFromMsg(message, 0, &region);
    return {message, 0, &region, 0, 0};
}

void ExpectSix(const zvlMat& mat)
{
    EXPECT_EQ(HeightsOf(mat), Heights({1, 2, 3, 4, 5, 6}));
    EXPECT_EQ(mat.GetSize(), cv::Size(3, 2));
    EXPECT_TRUE(IsSame(mat.GetScale(), kScale));
    EXPECT_TRUE(IsSame(mat.GetOffset(), kOffset));
    EXPECT_EQ(StateOf(mat), 1);
}

void ExpectNoCells(const zvlMat& mat)
{
    EXPECT_TRUE(mat.GetMat().empty());
    EXPECT_EQ(mat.GetSize(), cv::Size(0, 0));
    EXPECT_EQ(mat.GetqArray2Ofq16s(), nullptr);
}

TEST(Mat, ADefaultOneHasNothing)
{
    const zvlMat mat;
    ExpectNoCells(mat);
    EXPECT_TRUE(IsSame(mat.GetScale(), kZero));
    EXPECT_TRUE(IsSame(mat.GetOffset(), kZero));
    EXPECT_EQ(StateOf(mat), 0);
    EXPECT_EQ(StateOf(zvlMat(nullptr, 0, nullptr, 0, 0)), 1);
}

TEST(Mat, ACopyHasCellsOfItsOwn)
{
    zvlMat original = MakeSix();
    const zvlMat copy(original);
    const zvlMat ofConstant(copy);
    original.GetMat().setTo(7);
    EXPECT_EQ(CellsOf(original.GetMat()), Heights({7, 7, 7, 7, 7, 7}));
    ExpectSix(copy);
    ExpectSix(ofConstant);
    EXPECT_NE(copy.GetMat().data, ofConstant.GetMat().data);
}

TEST(Mat, ACopyWithoutCellsHasTheMapping)
{
    zvlMat original;
    original.SetDestinationParameters(kScale, kOffset);
    const zvlMat copy(original);
    ExpectNoCells(copy);
    EXPECT_TRUE(IsSame(copy.GetScale(), kScale));
    EXPECT_TRUE(IsSame(copy.GetOffset(), kOffset));
    EXPECT_EQ(StateOf(copy), 0);
}

TEST(Mat, ACopyOfCellsWithoutMemoryHasTheMapping)
{
    const zvlMat original = MakeSix();
    const auto copyIt = [&]
    {
        const zvlMat copy(original);
        EXPECT_EQ(HeightsOf(copy), copy.GetMat().empty() ? Heights() : Heights({1, 2, 3, 4, 5, 6}));
        EXPECT_TRUE(IsSame(copy.GetOffset(), kOffset));
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(copyIt), 3U);
    ExpectSix(original);
}

TEST(Mat, MovingTakesTheCellsAndLeavesTheMapping)
{
    zvlMat original = MakeSix();
    const void* data = original.GetMat().data;
    const zvlMat moved(std::move(original));
    ExpectSix(moved);
    EXPECT_EQ(moved.GetMat().data, data);
    ExpectNoCells(original); // NOLINT(bugprone-use-after-move): what is left behind is promised
    EXPECT_TRUE(IsSame(original.GetScale(), kScale));
    EXPECT_TRUE(IsSame(original.GetOffset(), kOffset));
}

TEST(Mat, AssignmentCopiesOrMoves)
{
    const zvlMat original = MakeSix();
    zvlMat copy;
    copy.GetDestinationMat({9, 9});
    copy = original;
    ExpectSix(copy);
    EXPECT_NE(copy.GetMat().data, original.GetMat().data);

    zvlMat taken;
    taken = std::move(copy);
    ExpectSix(taken);
    ExpectNoCells(copy); // NOLINT(bugprone-use-after-move)

    taken = zvlMat();
    ExpectNoCells(taken);
    EXPECT_TRUE(IsSame(taken.GetScale(), kZero));
    EXPECT_EQ(StateOf(taken), 0);
}

TEST(Mat, AssignmentToItselfChangesNothing)
{
    zvlMat mat = MakeSix();
    zvlMat& alias = mat;
    mat = alias;
    ExpectSix(mat);
    mat = std::move(alias);
    ExpectSix(mat);
    zvlMat empty;
    zvlMat& emptyAlias = empty;
    empty = emptyAlias;
    empty = std::move(emptyAlias);
    ExpectNoCells(empty);
}

TEST(Mat, OpenCvLooksAtTheObjectsOwnCells)
{
    const zvlMat mat = MakeSix();
    cv::Mat view = mat.GetMat();
    EXPECT_EQ(view.type(), CV_16UC1);
    EXPECT_EQ(view.step[0], 6U);
    EXPECT_TRUE(view.isContinuous());
    view.at<std::uint16_t>(1, 2) = 32768 + 99;
    EXPECT_EQ(HeightsOf(mat), Heights({1, 2, 3, 4, 5, 99}));
}

TEST(Mat, APartOfTheViewKeepsTheRowStep)
{
    const zvlMat mat = MakeSix();
    const cv::Mat part = CallGetMat(mat, {2, 2});
    EXPECT_EQ(CellsOf(part), Heights({32769, 32770, 32772, 32773}));
    EXPECT_EQ(part.step[0], 6U);
    EXPECT_EQ(part.data, mat.GetMat().data);
    EXPECT_EQ(CallGetMat(mat, {3, 2}).size(), cv::Size(3, 2));
}

TEST(Mat, AViewLargerThanTheCellsIsEmpty)
{
    const zvlMat mat = MakeSix();
    const zvlMat none;
    for (const cv::Size& size : {cv::Size(4, 2), cv::Size(3, 3), cv::Size(2147483647, 1), cv::Size(-1, 2),
                                 cv::Size(3, -2147483647 - 1), cv::Size(0, 2), cv::Size(3, 0)})
    {
        EXPECT_TRUE(CallGetMat(mat, size).empty()) << size;
        EXPECT_TRUE(CallGetMat(none, size).empty()) << size;
    }
    EXPECT_TRUE(CallGetMat(none, {1, 1}).empty());
}

TEST(Mat, ADestinationIsMadeOnceForEachSize)
{
    zvlMat mat;
    cv::Mat view = mat.GetDestinationMat({3, 2});
    EXPECT_EQ(view.size(), cv::Size(3, 2));
    EXPECT_EQ(view.type(), CV_16UC1);
    EXPECT_EQ(mat.GetSize(), cv::Size(3, 2));
    view.setTo(5);
    EXPECT_EQ(mat.GetDestinationMat({3, 2}).data, view.data);
    EXPECT_EQ(CellsOf(mat.GetMat()), Heights({5, 5, 5, 5, 5, 5}));

    mat.SetDestinationParameters(kScale, kOffset);
    mat.GetDestinationMat({2, 3}).setTo(6);
    EXPECT_EQ(mat.GetSize(), cv::Size(2, 3));
    EXPECT_EQ(CellsOf(mat.GetMat()), Heights({6, 6, 6, 6, 6, 6}));
    EXPECT_TRUE(IsSame(mat.GetScale(), kScale));
}

TEST(Mat, ADestinationWithoutCellsIsEmpty)
{
    for (const cv::Size& size : {cv::Size(-1, 2), cv::Size(2, -1), cv::Size(-2147483647 - 1, -2147483647 - 1)})
    {
        zvlMat mat = MakeSix();
        EXPECT_TRUE(mat.GetDestinationMat(size).empty());
        ExpectNoCells(mat);
        EXPECT_TRUE(mat.GetDestinationMat(size).empty());
    }
    zvlMat mat = MakeSix();
    EXPECT_TRUE(mat.GetDestinationMat({0, 4}).empty());
    EXPECT_EQ(mat.GetSize(), cv::Size(0, 4));
    const Handle heights(mat.GetqArray2Ofq16s());
    EXPECT_EQ(qArray2_Length(heights, 0), 4U);
    EXPECT_EQ(qArray2_Length(heights, 1), 0U);
    const zvlMat copy(mat);
    EXPECT_EQ(copy.GetSize(), cv::Size(0, 4));
}

TEST(Mat, ADestinationWithoutMemoryIsEmpty)
{
    const auto make = []
    {
        zvlMat mat;
        const cv::Mat view = mat.GetDestinationMat({3, 2});
        EXPECT_EQ(view.size(), mat.GetSize());
        EXPECT_EQ(view.empty(), mat.GetSize() == cv::Size(0, 0));
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(make), 2U);
}

TEST(Mat, AMappingIsSetOrTakenFromAnother)
{
    zvlMat mat;
    mat.SetDestinationParameters(kScale, kOffset);
    EXPECT_TRUE(IsSame(mat.GetScale(), kScale));
    EXPECT_TRUE(IsSame(mat.GetOffset(), kOffset));
    mat.SetDestinationParameters(zvlMat());
    EXPECT_TRUE(IsSame(mat.GetScale(), kZero));
    EXPECT_TRUE(IsSame(mat.GetOffset(), kZero));
    mat.SetDestinationParameters(MakeSix());
    mat.SetDestinationParameters(mat);
    EXPECT_TRUE(IsSame(mat.GetScale(), kScale));
    EXPECT_TRUE(IsSame(mat.GetOffset(), kOffset));
}

TEST(Mat, TheSmallestSizeIsTakenForEachAxis)
{
    zvlMat wide;
    wide.GetDestinationMat({7, 2});
    zvlMat tall;
    tall.GetDestinationMat({3, 5});
    EXPECT_EQ(zvlMat::GetSmallestSize(wide, tall), cv::Size(3, 2));
    EXPECT_EQ(zvlMat::GetSmallestSize(tall, wide), cv::Size(3, 2));
    EXPECT_EQ(zvlMat::GetSmallestSize(tall, zvlMat()), cv::Size(0, 0));
}

TEST(Mat, EveryCellBecomesItsHeightAgain)
{
    zvlMat mat;
    cv::Mat view = mat.GetDestinationMat({256, 256});
    for (int cell = 0; cell < 65536; ++cell)
    {
        view.at<std::uint16_t>(cell / 256, cell % 256) = static_cast<std::uint16_t>(cell);
    }
    const Handle heights(mat.GetqArray2Ofq16s());
    EXPECT_EQ(qObject_ShareCount(heights), 1);
    ASSERT_EQ(qArray2_Length(heights, 1), 256U);
    const std::vector<std::int16_t> decoded = TestSupport::CellsIn<std::int16_t>(heights);
    ASSERT_EQ(decoded.size(), 65536U);
    for (int cell = 0; cell < 65536; ++cell)
    {
        ASSERT_EQ(decoded[static_cast<std::size_t>(cell)], cell - 32768);
    }
}

TEST(Mat, HeightsWithoutMemoryAreNull)
{
    const zvlMat mat = MakeSix();
    std::size_t made = 0;
    const auto decode = [&]
    {
        const Handle heights(mat.GetqArray2Ofq16s());
        made += heights.Get() != nullptr ? 1 : 0;
    };
    EXPECT_EQ(TestSupport::ForEachFailingAllocation(decode), 2U);
    EXPECT_EQ(made, 1U); // the run in which nothing failed
}

TEST(Mat, AMessageGoesThroughAFilterOfOpenCvToASurface)
{
    std::vector<std::int16_t> heights(25, 100);
    heights[12] = 20000; // a spike amid the plate
    const Handle message = MatTest::MakeMessage(5, 5, heights, kScale, kOffset);
    const Region region = {
        kOffset.x + 1 * kScale.x, kOffset.y + 1 * kScale.y, 4 * kScale.x, 3 * kScale.y, 0.0, 0.0, 0.0};
    const zvlMat spiked(message, 0, &region, 0, 0);
    EXPECT_EQ(HeightsOf(spiked), Heights({100, 100, 100, 100, 100, 20000, 100, 100, 100, 100, 100, 100}));

    zvlMat smooth;
    cv::medianBlur(spiked.GetMat(), smooth.GetDestinationMat(spiked.GetSize()), 3);
    smooth.SetDestinationParameters(spiked);

    Surface surface;
    surface.scale = smooth.GetScale();
    surface.offset = smooth.GetOffset();
    surface.layers.emplace_back(smooth.GetqArray2Ofq16s());
    EXPECT_EQ(TestSupport::CellsIn<std::int16_t>(surface.layers[0]), std::vector<std::int16_t>(12, 100));
    EXPECT_EQ(qArray2_Length(surface.layers[0], 0), 3U);
    EXPECT_TRUE(IsSame(surface.scale, kScale));
    EXPECT_TRUE(IsSame(surface.offset, {10.5, 20.25, 30.0}));
}

} // namespace
