#include "Whole/FaultTable.h"

#include <array>

namespace WholeTest
{

using namespace Zvl;

namespace
{

using Line = std::array<short, 40>;

Line MakeLine()
{
    Line line{};
    for (std::size_t i = 0; i < line.size(); ++i)
    {
        line[i] = i % 6 == 4 ? short{-32768} : static_cast<short>(10 * (i % 5) + i);
    }
    return line;
}

/** A second operation works on a copy of the first one's result. After a failure the filter goes on from there. */
template <typename Operation>
void FilterLine(Trial& trial, Operation&& operation)
{
    const Line in = MakeLine();
    Line out{};
    ProfileFilter filter(in.data(), in.size(), out.data(), trial.allocator);
    filter.Average(3, 1);
    const Line first = out;
    const bool done = trial.Call([&] { operation(filter); });
    EXPECT_TRUE(in == MakeLine());
    EXPECT_TRUE(!done || out != first);
    filter.Average(3, 1);
}

/** Buffers that overlap: the part of the input that the output covers is set aside. */
void FillOverlap(Trial& trial)
{
    std::array<short, 50> cells{};
    const Line line = MakeLine();
    std::copy(line.begin(), line.end(), cells.begin());
    ProfileFilter filter(cells.data(), line.size(), cells.data() + 5, trial.allocator);
    trial.Call([&] { filter.FillGap(4, 1000, 0); });
    EXPECT_TRUE(std::equal(cells.begin(), cells.begin() + 5, line.begin()));
}

void MakeLineFilter(Trial& trial)
{
    const Line in = MakeLine();
    Line out{};
    trial.Call([&] { const ProfileFilter filter(in.data(), in.size(), out.data(), trial.allocator); });
}

/** The line is its own output: it stays as it is until there is a copy of it. */
void AverageInPlace(Trial& trial)
{
    Line line = MakeLine();
    ProfileFilter filter(line.data(), line.size(), line.data(), trial.allocator);
    const bool done = trial.Call([&] { filter.Average(5, 0); });
    EXPECT_EQ(line != MakeLine(), done);
}

/** A window of 1 copies the line through. */
void CopyLine(Trial& trial)
{
    const Line in = MakeLine();
    Line out{};
    ProfileFilter filter(in.data(), in.size(), out.data(), trial.allocator);
    const bool done = trial.Call([&] { filter.Average(1, 0); });
    EXPECT_TRUE(done ? out == in : out == Line{} || trial.Repeats());
}

void MakeSurfaceFilter(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> out = TestSupport::MakeFilled<std::int16_t>(kFaultRows, kFaultColumns, 5);
    KeepsUnchanged(trial, surface);
    trial.KeepsUnchanged(out);
    trial.Call([&] { const SurfaceFilter filter(surface.layers[0], out, trial.allocator); });
}

/** The output array is as it was after a failure, and the filter goes on from there. */
void SmoothSurface(Trial& trial, std::size_t window, bool hasSmoothed)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> out = TestSupport::MakeFilled<std::int16_t>(kFaultRows, kFaultColumns, 5);
    SurfaceFilter filter(surface.layers[0], out, trial.allocator);
    if (hasSmoothed)
    {
        filter.Average({3, 3}, 1);
    }
    const std::vector<std::int16_t> before = TestSupport::CellsIn<std::int16_t>(out);
    KeepsUnchanged(trial, surface);
    const bool done = trial.Call([&] { filter.Average({window, window}, 0); });
    const bool isAsBefore = TestSupport::CellsIn<std::int16_t>(out) == before;
    EXPECT_TRUE(done ? !isAsBefore : isAsBefore || trial.Repeats());
}

template <typename T>
void Pad(Trial& trial, const Zo::Object<void*>& array)
{
    trial.KeepsUnchanged(array);
    Zo::Object<void*> padded;
    const bool done = trial.Call([&] { padded = PadArray2<T>(array, 2, 3, trial.allocator); });
    EXPECT_EQ(padded.Get() != nullptr, done);
}

void PadIntegers(Trial& trial)
{
    Zo::Object<void*> array;
    Zo::Test(qArray2_Construct(array.Slot(), xxq32s_type, 8, 9, nullptr));
    Zo::Test(qArray2_Zero(array));
    Pad<int>(trial, array);
}

void SmoothFull(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    KeepsUnchanged(trial, surface);
    Zo::Object<void*> mean;
    const bool done = trial.Call([&] { mean = SmoothFullArray2<short>(surface.layers[0], 4, 5, trial.allocator); });
    EXPECT_EQ(mean.Get() != nullptr, done);
}

void FillGaps(Trial& trial, double gapX, double gapY)
{
    const Surface surface = MakeFaultSurface();
    KeepsUnchanged(trial, surface);
    Zo::Object<void*> heights;
    Zo::Object<void*> intensities;
    const SurfaceFillGapParams params = {0.5, 0.5, 0.01, gapX, gapY, 60.0, 60.0, 0};
    const bool done = trial.Call(
        [&] { SurfaceFillGapXY(params, surface.layers[0], surface.layers[1], heights, intensities, trial.allocator); });
    EXPECT_EQ(heights.Get() != nullptr, done);
    EXPECT_EQ(intensities.Get() != nullptr, done);
}

void Decimate(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    KeepsUnchanged(trial, surface);
    Surface coarse;
    const bool done = trial.Call([&] { coarse = SurfaceDecimate(surface, {0, 0}, {0.4, 0.3}, trial.allocator); });
    EXPECT_EQ(coarse.layers.size(), done ? 2U : 0U);
}

void Crop(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> mask = MakeFaultMask(surface);
    KeepsUnchanged(trial, surface);
    trial.KeepsUnchanged(mask);
    Surface cropped;
    const bool done = trial.Call([&] { CropSurfaceFromROI(surface, kFaultBox, mask, cropped, trial.allocator); });
    EXPECT_TRUE(done ? cropped.layers.size() == 2 : cropped.layers.size() < 3);
    EXPECT_TRUE(!done || qArray2_Length(cropped.layers[1], 0) == 9);
}

template <typename T>
void NewPoints(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> mask = MakeFaultMask(surface);
    KeepsUnchanged(trial, surface);
    trial.KeepsUnchanged(mask);
    void* slot = nullptr;
    const bool done = trial.Call([&] { GetPointsFromROI<T>(surface, kFaultBox, mask, &slot); });
    const Zo::Object<void*> list(slot);
    EXPECT_TRUE(!done || qArrayList_Count(list) > 50);
    EXPECT_TRUE(done || trial.Repeats() || slot == nullptr || qArrayList_Count(list) == 0);
}

void MorePoints(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> mask = MakeFaultMask(surface);
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 1, nullptr));
    const short item = 77;
    Zo::Test(qArrayList_Add(list, &item));
    void* slot = list;
    const bool done = trial.Call([&] { GetPointsFromROI<short>(surface, kFaultBox, mask, &slot); });
    EXPECT_EQ(slot, list.Get());
    EXPECT_EQ(*static_cast<short*>(qArrayList_At(list, 0)), 77);
    EXPECT_TRUE(done ? qArrayList_Count(list) > 1 : qArrayList_Count(list) == 1 || trial.Repeats());
}

template <typename T>
void Threshold(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    const Zo::Object<void*> mask = MakeFaultMask(surface);
    const std::vector<std::uint8_t> before = TestSupport::CellsIn<std::uint8_t>(mask);
    KeepsUnchanged(trial, surface);
    const bool done = trial.Call([&] { ThresholdPercentile<T>(surface, 20.0, 70.0, kFaultBox, mask); });
    EXPECT_TRUE(done || TestSupport::CellsIn<std::uint8_t>(mask) == before);
}

} // namespace

std::vector<Entry> FaultsOfFilters()
{
    constexpr unsigned kWork = kDefaultAllocator | kGivenAllocator | kOperations;
    constexpr unsigned kList = kDefaultAllocator | kOperations;
    constexpr const char* kClone = "Zvl::ProfileFilter::Impl::CloneAndUpdateInProfile";
    constexpr const char* kCloneSurface = "Zvl::SurfaceFilter::Impl::CloneAndUpdateInSurface";
    constexpr const char* kAverage = "Zvl::SurfaceFilter::Average";
    constexpr const char* kPad = "Zvl::PadArray2";
    const std::vector<const char*> points = {"Zvl::GetPointsFromROI", "Zvl::CheckAndReserveqArrayList"};
    return {
        {{"ProfileFilter::ProfileFilter(short const*, unsigned long, short*, void*)"}, kNew, {}, MakeLineFilter},
        {{"ProfileFilter::Average(unsigned long, int)", "ProfileFilter::Impl::CloneAndUpdateInProfile(bool)",
          "ProfileFilter::Impl::Finish(int)"},
         kWork | kPerhapsNew,
         {kClone},
         [](Trial& trial) { FilterLine(trial, [](ProfileFilter& filter) { filter.Average(5, 0); }); }},
        {{"ProfileFilter::Average(unsigned long, int)",
          "ProfileFilter::Impl::CheckConditions(unsigned long, bool, bool)"},
         kOperations,
         {"Zvl::ProfileFilter::Impl::CheckConditions"},
         CopyLine},
        {{"ProfileFilter::Average(unsigned long, int)", "ProfileFilter::Impl::OutputMeetsWindow(unsigned long) const"},
         kWork | kPerhapsNew,
         {kClone},
         AverageInPlace},
        {{"ProfileFilter::Median(unsigned long, int)"},
         kWork | kNew,
         {kClone},
         [](Trial& trial) { FilterLine(trial, [](ProfileFilter& filter) { filter.Median(17, 0); }); }},
        {{"ProfileFilter::Median(unsigned long, int)"},
         kWork,
         {kClone},
         [](Trial& trial) { FilterLine(trial, [](ProfileFilter& filter) { filter.Median(5, 0); }); }},
        {{"ProfileFilter::Gaussian(unsigned long, double, int)"},
         kWork | kNew,
         {kClone},
         [](Trial& trial) { FilterLine(trial, [](ProfileFilter& filter) { filter.Gaussian(5, 1.0, 0); }); }},
        {{"ProfileFilter::Percentile(double, double, ProfileFilter::PercentileType)"},
         kNew,
         {kClone},
         [](Trial& trial)
         { FilterLine(trial, [](ProfileFilter& filter) { filter.Percentile(20.0, 60.0, ProfileFilter::Rank); }); }},
        {{"ProfileFilter::FillGap(unsigned long, int, int)", "ProfileFilter::Impl::SetOverlapAside()",
          "ProfileFilter::Impl::ReadLastResult()"},
         kWork,
         {kClone},
         FillOverlap},
        {{"SurfaceFilter::SurfaceFilter(Zo::Object<void*>, Zo::Object<void*>, void*)"},
         kOperations | kNew,
         {},
         MakeSurfaceFilter},
        {{"SurfaceFilter::Average(Point2d<unsigned long>, int)",
          "SurfaceFilter::Impl::Smooth(Point2d<unsigned long> const&, bool)"},
         kWork,
         {kAverage},
         [](Trial& trial) { SmoothSurface(trial, 5, false); }},
        {{"SurfaceFilter::Average(Point2d<unsigned long>, int)", "SurfaceFilter::Impl::CloneAndUpdateInSurface()"},
         kWork,
         {kAverage, kCloneSurface},
         [](Trial& trial) { SmoothSurface(trial, 5, true); }},
        {{"SurfaceFilter::Average(Point2d<unsigned long>, int)",
          "SurfaceFilter::Impl::CheckConditions(Point2d<unsigned long> const&)", "SurfaceFilter::Impl::CopyThrough()"},
         kOperations,
         {"Zvl::SurfaceFilter::Impl::CheckConditions"},
         [](Trial& trial) { SmoothSurface(trial, 1, false); }},
        {{"Zo::Object<void*> PadArray2<unsigned char>(Zo::Object<void*> const&, int, int, void*)"},
         kWork,
         {kPad},
         [](Trial& trial) { Pad<unsigned char>(trial, MakeFaultSurface().layers[1]); }},
        {{"Zo::Object<void*> PadArray2<short>(Zo::Object<void*> const&, int, int, void*)"},
         kWork,
         {kPad},
         [](Trial& trial) { Pad<short>(trial, MakeFaultSurface().layers[0]); }},
        {{"Zo::Object<void*> PadArray2<int>(Zo::Object<void*> const&, int, int, void*)"}, kWork, {kPad}, PadIntegers},
        {{"Zo::Object<void*> SmoothFullArray2<short>(Zo::Object<void*> const&, int, int, void*)"},
         kWork,
         {"Zvl::SmoothFullArray2"},
         SmoothFull},
        {{"SurfaceFillGapXY(SurfaceFillGapParams const&, Zo::Object<void*>, Zo::Object<void*>, Zo::Object<void*>&, "
          "Zo::Object<void*>&, void*)"},
         kWork,
         {"Zvl::SurfaceFillGapXY"},
         [](Trial& trial) { FillGaps(trial, 2.0, 2.0); }},
        {{"SurfaceFillGapXY(SurfaceFillGapParams const&, Zo::Object<void*>, Zo::Object<void*>, Zo::Object<void*>&, "
          "Zo::Object<void*>&, void*)"},
         kWork,
         {"Zvl::SurfaceFillGapXY"},
         [](Trial& trial) { FillGaps(trial, 0.0, 2.0); }},
        {{"SurfaceFillGapXY(SurfaceFillGapParams const&, Zo::Object<void*>, Zo::Object<void*>, Zo::Object<void*>&, "
          "Zo::Object<void*>&, void*)"},
         kWork,
         {"Zvl::SurfaceFillGapXY"},
         [](Trial& trial) { FillGaps(trial, 0.0, 0.0); }},
        {{"SurfaceDecimate(Surface const&, Point2d<unsigned long>, Point2d<double>, void*)"},
         kWork | kNew,
         {"Zvl::SurfaceDecimate"},
         Decimate},
        {{"CropSurfaceFromROI(Surface const&, Rect2d<int>, Zo::Object<void*>, Surface&, void*)"},
         kWork | kNew,
         {"Zvl::CropSurfaceFromROI"},
         Crop},
        {{"void GetPointsFromROI<unsigned char>(Surface const&, Rect2d<int>, Zo::Object<void*>, void**)"},
         kList | kNew,
         points,
         NewPoints<unsigned char>},
        {{"void GetPointsFromROI<short>(Surface const&, Rect2d<int>, Zo::Object<void*>, void**)"},
         kList | kNew,
         points,
         NewPoints<short>},
        {{"void GetPointsFromROI<short>(Surface const&, Rect2d<int>, Zo::Object<void*>, void**)"},
         kList | kNew,
         points,
         MorePoints},
        {{"void GetPointsFromROI<double>(Surface const&, Rect2d<int>, Zo::Object<void*>, void**)"},
         kList | kNew,
         points,
         NewPoints<double>},
        {{"void GetPointsFromROI<qPoint3d32s>(Surface const&, Rect2d<int>, Zo::Object<void*>, void**)"},
         kList | kNew,
         points,
         NewPoints<qPoint3d32s>},
        {{"void GetPointsFromROI<qPoint3d64f>(Surface const&, Rect2d<int>, Zo::Object<void*>, void**)"},
         kList | kNew,
         points,
         NewPoints<qPoint3d64f>},
        {{"void ThresholdPercentile<unsigned char>(Surface const&, double, double, Rect2d<int> const&, "
          "Zo::Object<void*>)"},
         kOperations | kNew,
         {},
         Threshold<unsigned char>},
        {{"void ThresholdPercentile<short>(Surface const&, double, double, Rect2d<int> const&, Zo::Object<void*>)"},
         kOperations | kNew,
         {},
         Threshold<short>},
        {{"void ThresholdPercentile<double>(Surface const&, double, double, Rect2d<int> const&, Zo::Object<void*>)"},
         kOperations | kNew,
         {},
         Threshold<double>},
    };
}

} // namespace WholeTest
