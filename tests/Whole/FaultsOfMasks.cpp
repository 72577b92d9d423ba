#include "Whole/FaultTable.h"

namespace WholeTest
{

using namespace Zvl;

namespace
{

Zo::Object<void*> MakeMask(std::uint8_t value)
{
    return TestSupport::MakeFilled<std::uint8_t>(9, 12, value);
}

void CombineIntoNew(Trial& trial)
{
    const Zo::Object<void*> a = MakeMask(1);
    const Zo::Object<void*> b = MakeMask(3);
    trial.KeepsUnchanged(a);
    trial.KeepsUnchanged(b);
    Zo::Object<void*> out;
    const bool done = trial.Call([&] { MaskOperation(a, b, MaskOperationOr, out.Slot(), trial.allocator); });
    EXPECT_EQ(out.Get() != nullptr, done);
}

/** An array of another size is kept and resized. */
void CombineIntoPresent(Trial& trial)
{
    const Zo::Object<void*> a = MakeMask(1);
    const Zo::Object<void*> b = MakeMask(3);
    trial.KeepsUnchanged(a);
    trial.KeepsUnchanged(b);
    const Zo::Object<void*> out = TestSupport::MakeFilled<std::uint8_t>(2, 3, 0);
    void* slot = out;
    const bool done = trial.Call([&] { MaskOperation(a, b, MaskOperationOr, &slot, nullptr); });
    EXPECT_EQ(slot, out.Get());
    const bool resized = qArray2_Length(out, 0) == 9;
    EXPECT_TRUE(done ? resized : !resized || trial.Repeats());
}

void DrawRuns(Trial& trial)
{
    const qPoint3d32s runs[2] = {{2, 3, 4}, {5, 1, 9}}; // row, column, cells
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqPoint3d32s_type, 2, nullptr));
    Zo::Test(qArrayList_Import(list, runs, 2));
    trial.KeepsUnchanged(list);
    Zo::Object<void*> mask;
    Rect2d<int> rect;
    const bool done = trial.Call([&] { RLEToMask(list, mask.Slot(), &rect, trial.allocator); });
    EXPECT_EQ(mask.Get() != nullptr, done);
    TestSupport::ExpectRect(rect, 1, 2, 10, 4);
}

/** Whether the masks could be merged into the union is not looked at. */
void Merge(Trial& trial)
{
    const std::vector<Zo::Object<void*>> masks = {MakeMask(1), MakeMask(1)};
    const std::vector<Rect2d<int>> rects = {{0, 0, 12, 9}, {8, 7, 12, 9}};
    for (const Zo::Object<void*>& mask : masks)
    {
        trial.KeepsUnchanged(mask);
    }
    Zo::Object<void*> merged;
    Rect2d<int> rect{7, 7, 7, 7};
    const bool done = trial.Call([&] { MergeMasks(masks, rects, merged.Slot(), &rect, trial.allocator); });
    EXPECT_EQ(merged.Get() != nullptr, done);
    EXPECT_TRUE(!done || rect.width == 20);
    EXPECT_TRUE(rect.width == 20 || rect.width == 7);
}

void ApplyMaskTo(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const std::shared_ptr<ROI> circle = std::make_shared<CircleROI>(
        0.1, 0.2, 1.0, 3.0, 0.0, 360.0, kFaultColumns, kFaultRows, kFaultScale, kFaultOffset, trial.allocator);
    KeepsUnchanged(trial, surface);
    Surface out;
    const bool done = trial.Call([&] { ApplyMask(surface, circle, &out, trial.allocator); });
    EXPECT_TRUE(!done || (out.layers.size() == 2 && out.layers[1].Get() != nullptr));
    EXPECT_LE(out.layers.size(), 2U);
}

} // namespace

std::vector<Entry> FaultsOfMasks()
{
    constexpr unsigned kMask = kDefaultAllocator | kGivenAllocator | kOperations;
    constexpr const char* kCombine =
        "MaskOperation(Zo::Object<void*>, Zo::Object<void*>, MaskOperationType, void**, void*)";
    return {
        {{kCombine}, kMask, {"Zvl::MaskOperation"}, CombineIntoNew},
        {{kCombine}, kDefaultAllocator | kOperations, {"Zvl::MaskOperation"}, CombineIntoPresent},
        {{"RLEToMask(void*, void**, Rect2d<int>*, void*)"}, kMask, {"Zvl::RLEToMask"}, DrawRuns},
        {{"MergeMasks(std::vector<Zo::Object<void*>> const&, std::vector<Rect2d<int>> const&, void**, Rect2d<int>*, "
          "void*)"},
         kMask | kNew | kAbsorbs,
         {"Zvl::MergeMasks"},
         Merge},
        {{"ApplyMask(Surface const&, std::shared_ptr<ROI>, Surface*, void*)"},
         kMask | kNew,
         {"Zvl::ApplyMask", "Zvl::ROI::_ConstructMask", "Zvl::EllipseROI::_AssignMaskSliced"},
         ApplyMaskTo},
    };
}

} // namespace WholeTest
