#include "Common/RoiProfileSupport.h"
#include "support/FailingAllocator.h"

#include <cstring>

namespace
{

using namespace Zvl;
using namespace TestSupport;

const Profile kLow = HeightProfile(std::vector<std::int16_t>(10, 1));
const Profile kHigh = HeightProfile(std::vector<std::int16_t>(10, 9));

Member StretchMember(int first, int last)
{
    return std::make_shared<RectangleRoiProfile>(Stretch(first, last));
}

ComposedRoiProfile Union(const std::vector<Member>& members, void* allocator = nullptr)
{
    ComposedRoiProfile composed(kUniform, allocator);
    for (const Member& member : members)
    {
        composed.Add(member);
    }
    return composed;
}

TEST(ComposedRoiProfile, SpansTheGapBetweenItsMembers)
{
    ComposedRoiProfile composed = Union({StretchMember(6, 7), StretchMember(1, 2)});
    EXPECT_EQ(composed.GetShapeType(), MaskTypeComposed);
    ExpectFlags(composed, 0, 0);
    ExpectSegment(composed, 1, 7);
    ExpectFlags(composed, 1, 0);
    EXPECT_EQ(Picture(composed), "##...##");
    ExpectFlags(composed, 1, 1);
}

TEST(ComposedRoiProfile, OverlapsAreOne)
{
    ComposedRoiProfile composed = Union({StretchMember(2, 6), StretchMember(1, 4), StretchMember(3, 4)});
    ExpectSegment(composed, 1, 6);
    EXPECT_EQ(Picture(composed), "######"); // Picture() expects no cell above 1
}

TEST(ComposedRoiProfile, WithoutMembersItIsEmpty)
{
    ComposedRoiProfile composed(kUniform, nullptr);
    ExpectSegment(composed, 0, 0);
    ASSERT_NE(composed.GetMask().Get(), nullptr);
    EXPECT_EQ(Picture(composed), "");
    ExpectFlags(composed, 1, 1);
    composed.ApplyRoi(kLow);
    EXPECT_EQ(Picture(composed), "");
}

TEST(ComposedRoiProfile, MembersWithEmptySegmentsAddNothing)
{
    ComposedRoiProfile composed = Union({StretchMember(12, 14), StretchMember(3, 4), StretchMember(-4, -2)});
    ExpectSegment(composed, 3, 2);
    EXPECT_EQ(Picture(composed), "##");
    ComposedRoiProfile none = Union({StretchMember(12, 14)});
    ExpectSegment(none, 0, 0);
    EXPECT_EQ(Picture(none), "");
}

TEST(ComposedRoiProfile, AddTakesTheMembersOfACompositionAndDropsTheCaches)
{
    ComposedRoiProfile composed = Union({StretchMember(1, 2)});
    composed.GetMask();
    composed.Add(nullptr);
    ExpectFlags(composed, 1, 1);
    EXPECT_EQ(composed.GetRoiCount(), 1U);
    const auto three =
        std::make_shared<ComposedRoiProfile>(Union({StretchMember(4, 4), StretchMember(6, 6), StretchMember(8, 8)}));
    composed.Add(three);
    ExpectFlags(composed, 0, 0);
    ASSERT_EQ(composed.GetRoiCount(), 4U);
    EXPECT_EQ(composed.End() - composed.Begin(), 4);
    EXPECT_EQ(composed.Begin()[2], three->Begin()[1]);
    three->Add(StretchMember(9, 9));
    EXPECT_EQ(composed.GetRoiCount(), 4U);
    EXPECT_EQ(Picture(composed), "##.#.#.#");
    composed.Add(std::make_shared<ComposedRoiProfile>(kUniform, nullptr));
    EXPECT_EQ(composed.GetRoiCount(), 4U);
    ExpectFlags(composed, 0, 0);
    composed.Add(composed.Begin()[0]);
    EXPECT_EQ(composed.Begin()[4], composed.Begin()[0]);
}

TEST(ComposedRoiProfile, AddedToItselfItHasEachMemberTwice)
{
    const auto composed = std::make_shared<ComposedRoiProfile>(Union({StretchMember(1, 2), StretchMember(4, 5)}));
    composed->Add(composed);
    ASSERT_EQ(composed->GetRoiCount(), 4U);
    EXPECT_EQ(composed->Begin()[2], composed->Begin()[0]);
    EXPECT_EQ(composed->Begin()[3], composed->Begin()[1]);
    EXPECT_EQ(Picture(*composed), "##.##");
}

TEST(ComposedRoiProfile, MembersAreReachedByTheirIndex)
{
    const ComposedRoiProfile composed = Union({StretchMember(1, 2), StretchMember(5, 7)});
    EXPECT_EQ(composed.GetSubBoundingSegment(1).start, 5);
    EXPECT_EQ(&composed.GetSubMask(1), &composed.Begin()[1]->GetMask());
    EXPECT_EQ(PictureOf(composed.GetSubMask(0)), "##");
    for (const std::uint64_t index : {composed.GetRoiCount(), UINT64_MAX})
    {
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::ComposedRoiProfile::GetSubBoundingSegment",
                    [&] { composed.GetSubBoundingSegment(index); });
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::ComposedRoiProfile::GetSubMask", [&] { composed.GetSubMask(index); });
    }
}

TEST(ComposedRoiProfile, AppliesEachMemberAndUnitesTheirMasks)
{
    ComposedRoiProfile composed = Union({StretchMember(1, 3), StretchMember(3, 6)});
    const Profile profile = HeightProfile({1, 1, 9, 1, 1, kMissing, 1, 1, 1, 1});
    composed.ApplyRoi(profile);
    ExpectFlags(composed, 1, 1);
    EXPECT_EQ(Picture(composed), "#.##.#");
    EXPECT_EQ(PictureOf(composed.GetSubMask(1)), "##.#");
    composed.ApplyRoi(kLow);
    EXPECT_EQ(Picture(composed), "######");
}

TEST(ComposedRoiProfile, UnitesPairs)
{
    ComposedRoiProfile composed(kPairs, nullptr);
    composed.Add(std::make_shared<RectangleRoiProfile>(Stretch(1, 2, kPairs)));
    composed.Add(std::make_shared<RectangleRoiProfile>(Stretch(5, 6, kPairs)));
    CountPairs pairs(10, {0, 0});
    pairs[3] = {6, 1};
    pairs[8] = {1, 2};
    composed.ApplyRoi(PairProfile(pairs));
    ExpectSegment(composed, 0, 10);
    EXPECT_EQ(Picture(composed), "...#....#.");
}

TEST(ComposedRoiProfile, AProfileWithoutItemsStillMakesTheUnionAnew)
{
    ComposedRoiProfile composed = Union({StretchMember(1, 2), StretchMember(4, 5)});
    composed.ApplyRoi(Profile());
    ExpectFlags(composed, 1, 1);
    EXPECT_EQ(Picture(composed), "##.##");
    composed.Begin()[0]->ApplyRoi(kHigh);
    EXPECT_EQ(Picture(composed), "##.##"); // its member is valid: the union is that of before
    composed.ApplyRoi(Profile());
    EXPECT_EQ(Picture(composed), "...##");
}

TEST(ComposedRoiProfile, AsksItsMembersWhetherItIsValid)
{
    const auto changing = std::make_shared<RectangleRoiProfile>(Stretch(1, 2));
    ComposedRoiProfile composed = Union({StretchMember(4, 5), changing});
    composed.GetMask();
    *changing = Stretch(7, 8);
    ExpectFlags(composed, 0, 0);
    changing->GetMask();
    ExpectFlags(composed, 0, 0); // its own flags have fallen
    ExpectSegment(composed, 4, 5);
    EXPECT_EQ(Picture(composed), "##.##");
    *changing = Stretch(0, 1);
    changing->GetBoundingSegment();
    ExpectFlags(composed, 1, 0); // of the member only the mask is missing
}

TEST(ComposedRoiProfile, AMemberThatThrowsLeavesTheUnionAsItWas)
{
    const auto other = std::make_shared<RectangleRoiProfile>(Region2d<double>{5.0, 0.0, 1.0, 2.0, 0.0}, 10,
                                                             qPoint64f{1.0, 2.0}, kNoOffset, kUniform, nullptr);
    ComposedRoiProfile composed = Union({StretchMember(1, 2), other, StretchMember(8, 9)});
    EXPECT_EQ(Picture(composed), "##..##.##");
    for (int turn = 0; turn < 2; ++turn)
    {
        ExpectThrow(STATUS_MISMATCH, "Zvl::SingleRoiProfile::_CheckApplyRoiConditions",
                    [&] { composed.ApplyRoi(kHigh); });
        ExpectFlags(composed, 1, 1);
        EXPECT_EQ(Picture(composed), "##..##.##");
        // The first has its answers, the others have not been asked.
        EXPECT_EQ(std::memcmp(qArray1_Data(composed.GetSubMask(0)), "\0\0", 2), 0);
    }
    composed.Add(std::make_shared<RectangleRoiProfile>(Region2d<double>{5.0, 0.0, 1.0, 2.0, 0.0}, 10,
                                                       qPoint64f{kNull, 1.0}, kNoOffset, kUniform, nullptr));
    for (int turn = 0; turn < 2; ++turn)
    {
        ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonRoiProfile::_CalculateBoundingSegment",
                    [&] { composed.GetMask(); });
        ExpectFlags(composed, 0, 0);
    }
}

TEST(ComposedRoiProfile, AnchorsMoveEveryMember)
{
    FailingAllocator allocator;
    {
        const ComposedRoiProfile composed = Union({StretchMember(1, 2), StretchMember(4, 5)}, allocator.Get());
        Anchor anchor;
        anchor.x = 3.0;
        const auto moved = std::dynamic_pointer_cast<ComposedRoiProfile>(composed.ApplyAnchor(anchor));
        ASSERT_NE(moved, nullptr);
        ASSERT_EQ(moved->GetRoiCount(), 2U);
        EXPECT_NE(moved->Begin()[0], composed.Begin()[0]);
        ExpectFlags(*moved, 0, 0);
        ExpectSegment(*moved, 4, 5);
        EXPECT_EQ(Picture(*moved), "##.##");
        EXPECT_GT(allocator.LiveBlocks(), 0U);
        EXPECT_EQ(composed.GetSubBoundingSegment(0).start, 1);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

TEST(ComposedRoiProfile, ShortageOfMemoryIsThrownAndTheNextCallStartsAgain)
{
    FailingAllocator allocator;
    {
        ComposedRoiProfile composed = Union({StretchMember(1, 2)}, allocator.Get());
        allocator.FailAt(1);
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::RoiProfile::_ConstructMask", [&] { composed.GetMask(); });
        ExpectFlags(composed, 1, 0);
        allocator.FailNever();
        EXPECT_EQ(Picture(composed), "##");
        composed.Add(StretchMember(4, 5));
        allocator.FailAt(1);
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::RoiProfile::_ConstructMask", [&] { composed.GetMask(); });
        ExpectThrow(STATUS_OUT_OF_MEMORY, "Zvl::RoiProfile::_ConstructMask", [&] { composed.ApplyRoi(kLow); });
        ExpectFlags(composed, 1, 0);
        allocator.FailAt(1, Failing::OnlyNth);
        ExpectThrow(STATUS_OK, "Zvl::RoiProfile::_ConstructMask", [&] { composed.GetMask(); });
        ExpectFlags(composed, 1, 0);
        EXPECT_EQ(Picture(composed), "##.##");
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

// ---------------------------------------------------------------------------------------------------------
// Copies and shared masks

TEST(ComposedRoiProfileSharing, TheMaskIsMadeAnewInPlace)
{
    ComposedRoiProfile composed = Union({StretchMember(1, 2)});
    void* first = composed.GetMask().Get();
    composed.Add(StretchMember(4, 5));
    EXPECT_EQ(composed.GetMask().Get(), first);
    EXPECT_EQ(Picture(composed), "##.##");
}

TEST(ComposedRoiProfileSharing, CopiesShareMaskAndMembers)
{
    ComposedRoiProfile composed = Union({StretchMember(1, 2)});
    composed.GetMask();
    ComposedRoiProfile copy(composed);
    ExpectFlags(copy, 1, 1);
    EXPECT_EQ(copy.GetMask().Get(), composed.GetMask().Get());
    EXPECT_EQ(copy.Begin()[0], composed.Begin()[0]);

    composed.Add(StretchMember(4, 5));
    EXPECT_EQ(Picture(composed), "##.##");
    EXPECT_EQ(copy.GetRoiCount(), 1U);
    ExpectFlags(copy, 1, 1);
    ExpectSegment(copy, 1, 2);
    EXPECT_EQ(Picture(copy), "##.##"); // the array that both hold
    copy.ApplyRoi(kHigh);
    EXPECT_EQ(Picture(copy), "..");
    EXPECT_EQ(Picture(composed), "..");
    composed.ApplyRoi(kLow);
    EXPECT_EQ(Picture(composed), "##.##");
}

TEST(ComposedRoiProfileSharing, MembersMayShareTheirMask)
{
    const auto first = std::make_shared<CircleRoiProfile>(Disc(2, 6));
    first->GetMask();
    const auto second = std::make_shared<CircleRoiProfile>(*first);
    ComposedRoiProfile composed = Union({first, second, StretchMember(8, 9)});
    EXPECT_EQ(composed.GetSubMask(0).Get(), composed.GetSubMask(1).Get());
    EXPECT_EQ(Picture(composed), "#####.##");
    composed.ApplyRoi(HeightProfile({0, 0, 0, 0, 9, 0, 0, 0, 0, 0}));
    EXPECT_EQ(Picture(composed), "##.##.##");
}

TEST(ComposedRoiProfileSharing, CellsOfAMemberBesideAStaleSegmentAreLeftOut)
{
    const auto changing = std::make_shared<RectangleRoiProfile>(Stretch(3, 5));
    ComposedRoiProfile composed = Union({StretchMember(3, 6), changing});
    composed.ApplyRoi(kHigh);
    EXPECT_EQ(Picture(composed), "....");
    // Valid regions in the place of the member: the composition keeps its segment, 3 to 6.
    for (const auto& [first, last, picture] :
         {std::tuple{0, 4, "##.."}, {5, 9, "..##"}, {0, 9, "####"}, {0, 2, "...."}, {7, 9, "...."}, {4, 5, ".##."}})
    {
        RectangleRoiProfile other = Stretch(first, last);
        other.GetMask();
        *changing = other;
        ExpectFlags(composed, 1, 1);
        composed.ApplyRoi(Profile());
        ExpectSegment(composed, 3, 4);
        EXPECT_EQ(Picture(composed), picture);
    }
}

TEST(ComposedRoiProfileSharing, AMaskOfAMemberThatOthersMadeAnewIsTakenAsFarAsItGoes)
{
    ComposedRoiProfile composed = Union({StretchMember(1, 4), StretchMember(6, 8)});
    const Zo::Object<void*> mask = composed.GetSubMask(0);
    Zo::Test(qArray1_Allocate(mask, xxq8u_type, 2));
    Zo::Test(qMemSet(qArray1_Data(mask), 200, 2));
    EXPECT_EQ(Picture(composed), "##...###");
    Zo::Test(qArray1_Allocate(mask, xxq8u_type, 100));
    Zo::Test(qMemSet(qArray1_Data(mask), 200, 100));
    composed.ApplyRoi(Profile());
    EXPECT_EQ(Picture(composed), "####.###"); // not beyond the member's segment
    Zo::Test(qArray1_Allocate(mask, xxq16s_type, 4));
    composed.ApplyRoi(Profile());
    EXPECT_EQ(Picture(composed), ".....###");
}

TEST(ComposedRoiProfileSharing, AMemberMayHoldTheCompositionsOwnMask)
{
    for (const int last : {1, 9}) // the member makes the mask anew: shorter than the segment, or as long
    {
        const auto member = std::make_shared<RectangleRoiProfile>(Stretch(0, last));
        ComposedRoiProfile composed = Union({StretchMember(2, 5)});
        composed.GetMask();
        composed.Add(member);
        // Of the base alone, so that the shape stays: the mask is shared, and no flag is up.
        static_cast<RoiProfile&>(*member) = composed;
        composed.GetMask();
        EXPECT_EQ(composed.GetMask().Get(), member->GetMask().Get());
        EXPECT_EQ(qArray1_Count(composed.GetMask()), static_cast<std::size_t>(last) + 1);
        EXPECT_NO_THROW(composed.ApplyRoi(kLow));
        EXPECT_EQ(composed.GetMask().Get(), member->GetMask().Get());
    }
}

} // namespace
