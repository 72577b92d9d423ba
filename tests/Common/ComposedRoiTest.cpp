#include <ZdkVisionLib/Common/MaskUniformSurface.h>

#include "support/FailingAllocator.h"
#include "support/Regions.h"

namespace
{

using namespace Zvl;
using TestSupport::ExpectBox;
using TestSupport::ExpectThrow;
using TestSupport::kNoOffset;
using TestSupport::kUnitScale;
using TestSupport::Picture;

/** An upright rectangle around @p columns by @p rows cells in a frame of 300 by 300, a quarter of a cell wider on each
 *  side. */
std::shared_ptr<RectangleROI> Cells(int x, int y, int columns, int rows)
{
    return std::make_shared<RectangleROI>(x - 0.25, y - 0.25, columns - 0.5, rows - 0.5, 0.0, 300, 300, kUnitScale,
                                          kNoOffset, nullptr);
}

/** The composition of @p members. */
ComposedROI Composed(const std::vector<std::shared_ptr<ROI>>& members)
{
    ComposedROI composed;
    for (const std::shared_ptr<ROI>& member : members)
    {
        composed.Add(member);
    }
    return composed;
}

/** A region that says that it is a composition, and is none. */
class FalseComposition : public RectangleROI
{
public:
    FalseComposition() : RectangleROI(0.75, 0.75, 1.5, 0.5, 0.0, 10, 10, kUnitScale, kNoOffset, nullptr) {}
    MaskType GetShapeType() const override { return MaskTypeComposed; }
};

TEST(ComposedRoi, UnitesBoxesAndMasks)
{
    ComposedROI composed = Composed({Cells(2, 3, 3, 2), Cells(4, 4, 3, 2)});
    EXPECT_EQ(composed.GetShapeType(), MaskTypeComposed);
    EXPECT_EQ(composed.GetRoiCount(), 2U);
    ExpectBox(composed, 2, 3, 5, 3);
    // The overlap at column 4 of row 4 is 1 like any other cell.
    EXPECT_EQ(Picture(composed), "###.. ##### ..###");
    const Region2d<double> region = composed.GetBoundingRegion();
    EXPECT_EQ(region.x, 1.75);
    EXPECT_EQ(region.y, 2.75);
    EXPECT_EQ(region.width, 4.5);
    EXPECT_EQ(region.height, 2.5);
}

TEST(ComposedRoi, LeavesTheGapBetweenItsMembersOut)
{
    ComposedROI composed = Composed({Cells(5, 7, 1, 1), Cells(2, 6, 2, 1)});
    ExpectBox(composed, 2, 6, 4, 2);
    EXPECT_EQ(Picture(composed), "##.. ...#");
}

TEST(ComposedRoi, WithoutMembersItIsEmptyAndValid)
{
    ComposedROI composed;
    EXPECT_EQ(composed.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(composed.GetMask().Get(), nullptr);
    EXPECT_EQ(composed.GetBoundingBoxValidity(), 1);
    EXPECT_EQ(composed.GetMaskValidity(), 1);
    ExpectBox(composed, 0, 0, 0, 0);
    EXPECT_EQ(composed.GetBoundingRegion().width, 0.0);
    EXPECT_EQ(composed.Begin(), composed.End());
}

TEST(ComposedRoi, AddDropsTheCachesUnlessThereIsNothingToAdd)
{
    ComposedROI composed = Composed({Cells(2, 3, 3, 2)});
    composed.GetMask();
    composed.Add(nullptr);
    EXPECT_EQ(composed.GetRoiCount(), 1U);
    EXPECT_EQ(composed.GetBoundingBoxValidity(), 1);
    EXPECT_EQ(composed.GetMaskValidity(), 1);
    composed.Add(Cells(0, 0, 1, 1));
    EXPECT_EQ(composed.GetRoiCount(), 2U);
    EXPECT_EQ(composed.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(composed.GetMaskValidity(), 0);
}

TEST(ComposedRoi, AddOfACompositionAddsItsMembersAtThatMoment)
{
    const auto inner =
        std::make_shared<ComposedROI>(Composed({Cells(0, 0, 1, 1), Cells(2, 0, 1, 1), Cells(4, 0, 1, 1)}));
    ComposedROI composed = Composed({Cells(6, 0, 1, 1)});
    composed.Add(inner);
    EXPECT_EQ(composed.GetRoiCount(), 4U);
    inner->Add(Cells(8, 0, 1, 1));
    EXPECT_EQ(composed.GetRoiCount(), 4U);
    EXPECT_EQ(Picture(composed), "#.#.#.#");
    EXPECT_EQ(*(composed.Begin() + 1), *inner->Begin());
}

TEST(ComposedRoi, ACompositionCannotComeToHoldItself)
{
    const auto composed = std::make_shared<ComposedROI>(Composed({Cells(0, 0, 1, 1), Cells(2, 0, 1, 1)}));
    composed->Add(composed);
    EXPECT_EQ(composed->GetRoiCount(), 4U);
    const auto other = std::make_shared<ComposedROI>();
    other->Add(composed);
    composed->Add(other);
    EXPECT_EQ(composed->GetRoiCount(), 8U);
    for (auto member = composed->Begin(); member != composed->End(); ++member)
    {
        EXPECT_NE((*member)->GetShapeType(), MaskTypeComposed);
    }
    EXPECT_EQ(Picture(*composed), "#.#");
}

TEST(ComposedRoi, ARegionThatOnlyClaimsToBeACompositionIsAMember)
{
    const auto claims = std::make_shared<FalseComposition>();
    ComposedROI composed = Composed({claims});
    EXPECT_EQ(composed.GetRoiCount(), 1U);
    EXPECT_EQ(Picture(composed), "##");
    EXPECT_EQ(Picture(*claims), "##"); // its walk finds no members
    ExpectBox(*claims, 1, 1, 2, 1);
}

TEST(ComposedRoi, AMemberWithAnEmptyBoxExtendsTheRegionOnly)
{
    ComposedROI composed = Composed({Cells(2, 3, 3, 2), Cells(400, 3, 2, 2)});
    ExpectBox(composed, 2, 3, 3, 2);
    EXPECT_EQ(composed.GetBoundingRegion().width, 399.5);
    EXPECT_EQ(composed.GetSubMask(1).Get(), nullptr);
    EXPECT_EQ(Picture(composed), "### ###");
}

TEST(ComposedRoi, GivesAccessToItsMembers)
{
    const ComposedROI composed = Composed({Cells(2, 3, 3, 2), Cells(4, 4, 1, 2)});
    EXPECT_EQ(composed.GetSubBoundingBox(1).x, 4);
    EXPECT_EQ(qArray2_Length(composed.GetSubMask(1), 0), 2U);
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::ComposedROI::GetSubMask", [&] { composed.GetSubMask(2); });
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::ComposedROI::GetSubBoundingBox",
                [&] { composed.GetSubBoundingBox(UINT64_MAX); });
}

TEST(ComposedRoi, AMemberThatChangesIsNoticed)
{
    const auto member = Cells(2, 3, 3, 2);
    ComposedROI composed = Composed({Cells(0, 3, 1, 1), member});
    EXPECT_EQ(Picture(composed), "#.### ..###");
    member->SetOffset({-1.0, 0.0});
    ExpectBox(composed, 0, 3, 6, 2);
    EXPECT_EQ(composed.GetMaskValidity(), 1); // nobody has asked for the mask yet
    EXPECT_EQ(Picture(composed), "#..### ...###");
}

TEST(ComposedRoi, AMaskRebuiltWithoutAskingForTheBoxKeepsTheOldBox)
{
    const auto member = Cells(2, 3, 3, 2);
    ComposedROI composed = Composed({Cells(0, 3, 1, 1), member});
    composed.GetMask();
    member->SetOffset({-1.0, -1.0}); // now columns 3 to 5, rows 4 and 5
    EXPECT_EQ(Picture(composed), "#.... ...##");
    ExpectBox(composed, 0, 3, 5, 2); // the member was evaluated on the way, so its flag is up again
}

TEST(ComposedRoi, AMemberThatWasEvaluatedAloneIsNotNoticed)
{
    const auto member = Cells(2, 3, 3, 2);
    ComposedROI composed = Composed({Cells(0, 3, 1, 1), member});
    composed.GetMask();
    member->SetOffset({-1.0, 0.0});
    member->GetMask();
    EXPECT_EQ(Picture(composed), "#.### ..###");
    ExpectBox(composed, 0, 3, 5, 2);
}

TEST(ComposedRoi, ABoxRefreshedBetweenLeavesTheMaskOfTheOldBox)
{
    const auto member = Cells(2, 3, 3, 2);
    ComposedROI composed = Composed({Cells(0, 3, 1, 1), member});
    composed.GetMask();
    member->SetOffset({-1.0, 0.0});
    ExpectBox(composed, 0, 3, 6, 2);
    member->GetMask();
    EXPECT_EQ(Picture(composed), "#.### ..###");
    ExpectBox(composed, 0, 3, 6, 2);
}

TEST(ComposedRoi, TheStepsMayBeTakenOneByOne)
{
    ComposedROI composed = Composed({Cells(2, 3, 2, 1)});
    composed._CalculateBoundingBox();
    composed._AssignMaskSliced();
    EXPECT_EQ(composed.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(composed.GetMaskValidity(), 0);
    EXPECT_EQ(Picture(composed), "##");
    ComposedROI empty;
    empty._AssignMaskSliced();
    EXPECT_EQ(empty.GetMask().Get(), nullptr);
}

TEST(ComposedRoi, AnAnchorMovesCopiesOfTheMembers)
{
    const auto member = Cells(2, 3, 3, 2);
    Surface reference = TestSupport::MakeSurface(1, 2, {5, 6});
    const auto data = std::make_shared<SurfaceROI>(reference, 300, 300, kUnitScale, kNoOffset, nullptr);
    ComposedROI composed = Composed({member, data});
    Anchor anchor;
    anchor.x = 4.0;
    const auto moved = std::dynamic_pointer_cast<ComposedROI>(composed.ApplyAnchor(anchor));
    ASSERT_NE(moved, nullptr);
    ASSERT_EQ(moved->GetRoiCount(), 2U);
    EXPECT_NE(*moved->Begin(), *composed.Begin());
    EXPECT_NE(*(moved->Begin() + 1), *(composed.Begin() + 1));
    EXPECT_EQ(moved->GetSubBoundingBox(0).x, 6);
    EXPECT_EQ(moved->GetSubBoundingBox(1).x, 0); // data do not move
    ExpectBox(*member, 2, 3, 3, 2);
}

TEST(ComposedRoi, ADeepCopySharesTheMembers)
{
    const auto member = Cells(2, 3, 3, 2);
    ComposedROI composed = Composed({member});
    composed.GetMask();
    const auto copy = std::dynamic_pointer_cast<ComposedROI>(composed.DeepCopy());
    ASSERT_NE(copy, nullptr);
    EXPECT_EQ(*copy->Begin(), *composed.Begin());
    EXPECT_EQ(copy->GetMaskValidity(), 0);
    copy->GetMask();
    member->SetScale({0.5, 1.0});
    ExpectBox(*copy, 4, 3, 5, 2);
    member->SetScale({0.5, 1.0});
    ExpectBox(composed, 4, 3, 5, 2);
}

TEST(ComposedRoi, CopiesShareMembersAndMask)
{
    ComposedROI composed = Composed({Cells(2, 3, 3, 2)});
    composed.GetMask();
    ComposedROI copy = composed;
    EXPECT_EQ(copy.GetMaskValidity(), 1);
    EXPECT_EQ(copy.GetMask().Get(), composed.GetMask().Get());
    EXPECT_EQ(*copy.Begin(), *composed.Begin());
    copy.Add(Cells(0, 3, 1, 1));
    EXPECT_EQ(composed.GetRoiCount(), 1U);
    EXPECT_EQ(Picture(copy), "#.### ..###");
    EXPECT_EQ(Picture(composed), "### ###");
    const ComposedROI moved = std::move(copy);
    EXPECT_EQ(moved.GetRoiCount(), 2U);
    composed = moved;
    EXPECT_EQ(composed.GetRoiCount(), 2U);
}

TEST(ComposedRoi, TheFailureOfAMemberPassesThroughAndTheNextCallStartsAgain)
{
    const auto unset =
        std::make_shared<RectangleROI>(Cells(1, 1, 2, 2)->GetShape(), 10, 10, kUnitScale, kNoOffset, nullptr);
    ComposedROI composed = Composed({Cells(2, 3, 3, 2), unset});
    unset->SetScale({TestSupport::kNull, 1.0});
    ExpectThrow(STATUS_BAD_PARAMETER, "Zvl::PolygonROI::_CalculateBoundingBox", [&] { composed.GetMask(); });
    EXPECT_EQ(composed.GetBoundingBoxValidity(), 0);
    EXPECT_EQ(composed.GetMaskValidity(), 0);
    unset->SetScale(kUnitScale);
    EXPECT_EQ(Picture(composed), "##.. ##.. .### .###");
}

TEST(ComposedRoi, EveryShortageOfMemoryIsThrown)
{
    for (const auto mode : {TestSupport::Failing::FromNthOn, TestSupport::Failing::OnlyNth})
    {
        const std::size_t failures = TestSupport::ExpectEachFailureThrown(
            {"Zvl::ROI::_ConstructMask", "Zvl::ComposedROI::_AssignMaskSliced"},
            [&] {
                Composed({Cells(2, 3, 3, 2), Cells(4, 4, 3, 2)}).GetMask();
            },
            mode);
        EXPECT_GE(failures, 4U); // the mask is made twice, and each member has one
    }
}

class ComposedMasks : public testing::TestWithParam<std::size_t>
{
};

TEST_P(ComposedMasks, AgreeWithTheUnionOfTheCells)
{
    const TestSupport::WorkerCount workers(GetParam());
    std::mt19937 random(31);
    for (int turn = 0; turn < 20; ++turn)
    {
        ComposedROI composed;
        std::vector<std::uint8_t> expected(std::size_t{300} * 300, 0);
        const int members = 1 + static_cast<int>(random() % 5);
        for (int i = 0; i < members; ++i)
        {
            const double x = static_cast<double>(random() % 350) - 25.0;
            const double y = static_cast<double>(random() % 350) - 25.0;
            const double radius = 1.0 + static_cast<double>(random() % 120);
            auto disc = std::make_shared<CircleROI>(qPoint64f{x, y}, 0.0, radius, 0.0, 360.0, 300, 300, kUnitScale,
                                                    kNoOffset, nullptr);
            composed.Add(disc);
            const Rect2d<int> box = disc->GetBoundingBox();
            const Zo::Object<void*> mask = disc->GetMask();
            for (int row = 0; mask.Get() != nullptr && row < box.height; ++row)
            {
                for (int column = 0; column < box.width; ++column)
                {
                    expected[static_cast<std::size_t>((box.y + row) * 300 + box.x + column)] |=
                        *static_cast<const std::uint8_t*>(
                            qArray2_At(mask, static_cast<std::size_t>(row), static_cast<std::size_t>(column)));
                }
            }
        }
        const Rect2d<int> box = composed.GetBoundingBox();
        const Zo::Object<void*> mask = composed.GetMask();
        std::size_t inBox = 0;
        const std::vector<std::uint8_t> cells =
            mask.Get() == nullptr ? std::vector<std::uint8_t>() : TestSupport::CellsIn<std::uint8_t>(mask);
        for (std::size_t i = 0; i < cells.size(); ++i)
        {
            const auto width = static_cast<std::size_t>(box.width);
            const std::size_t cell =
                (static_cast<std::size_t>(box.y) + i / width) * 300 + static_cast<std::size_t>(box.x) + i % width;
            ASSERT_EQ(cells[i], expected[cell]) << "turn " << turn;
            inBox += cells[i];
        }
        std::size_t all = 0;
        for (const std::uint8_t cell : expected)
        {
            all += cell;
        }
        EXPECT_EQ(inBox, all) << "turn " << turn;
    }
}

INSTANTIATE_TEST_SUITE_P(Workers, ComposedMasks, testing::Values(1, 2, 3, 8, 17));

/** A host's own composition that does not pass for one. */
class Disguised : public ComposedROI
{
public:
    Disguised() : ComposedROI(nullptr) {}
    MaskType GetShapeType() const override { return MaskTypePolygon; }
};

TEST(ComposedRoi, WhatDoesNotSayThatItIsComposedIsAMember)
{
    ComposedROI composed(nullptr);
    composed.Add(std::make_shared<Disguised>());
    EXPECT_EQ(composed.GetRoiCount(), 1U);
}

} // namespace
