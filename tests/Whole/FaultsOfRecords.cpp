#include "Whole/FaultTable.h"

#include <ZdkVisionLib/platform/ZoVision.h>

namespace WholeTest
{

using namespace Zvl;

namespace
{

void MakeRecords(Trial& trial)
{
    trial.Call(
        []
        {
            const qPoint3d64f mapping = {1.0, 2.0, 3.0};
            const Surface surface;
            const Profile empty;
            const Profile flat(qPoint64f{0.0, 0.0}, qPoint64f{1.0, 1.0});
            const Profile solid(&mapping, &mapping);
            GetqType<unsigned char>();
            GetqType<short>();
            GetqType<double>();
            GetqType<qPoint3d32s>();
            GetqType<qPoint3d64f>();
        });
}

void AddNewLayer(Trial& trial)
{
    Profile profile;
    const bool done = trial.Call([&] { profile.AddLayer(xxq16s_type, 100, trial.allocator); });
    // A layer that could not be made stays as a null one, unless there was no room for its handle.
    EXPECT_LE(profile.layers.size(), 1U);
    const bool hasLayer = !profile.layers.empty() && profile.layers[0].Get() != nullptr;
    EXPECT_TRUE(done ? hasLayer : !hasLayer || trial.Repeats());
}

void AddPresentLayer(Trial& trial)
{
    Zo::Object<void*> layer;
    Zo::Test(qArray1_Construct(layer.Slot(), xxq16s_type, 100, nullptr));
    Zo::Test(qArray1_Zero(layer));
    trial.KeepsUnchanged(layer);
    Profile profile;
    const bool done = trial.Call([&] { profile.AddLayer(layer); });
    EXPECT_EQ(profile.layers.size(), done ? 1U : 0U);
}

void FindCells(Trial& trial)
{
    const Surface surface = MakeFaultSurface();
    trial.Call(
        [&]
        {
            SurfaceInputData data{};
            RetrieveSurfaceInputData(surface, &data);
            const RunLength<double> stretch = {1.0, 2.0};
            const Region2d<double> flat = {-1.0, -1.0, 2.0, 2.0, 0.0};
            const Region3d<double> solid = {-1.0, -1.0, 2.0, 2.0, 0.0, 0.0, 1.0};
            RunLength<int> run;
            Rect2d<int> rect;
            Rect3d<int> box;
            GetRegionPixel(100, 0.0, 0.5, &stretch, &run, nullptr, 1);
            GetRegionPixel(kFaultColumns, kFaultRows, kFaultOffset, kFaultScale, &flat, &rect, nullptr, 1);
            GetRegionPixel(kFaultColumns, kFaultRows, surface.offset, surface.scale, &solid, &box, nullptr, 1);
            GetRegionPixel(&data, &solid, &box, nullptr, 1);
            GetRegionXZPixel(kFaultColumns, kFaultOffset, kFaultScale, &flat, &rect, nullptr, 1);
        });
}

Zo::Object<void*> MakeMessage()
{
    Zo::Object<void*> message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 4, 5, 1, nullptr));
    return message;
}

/** An empty slot, and a list without room. */
template <typename T>
void MakeRoom(Trial& trial)
{
    Zo::Object<void*> list;
    void* slot = nullptr;
    const bool done = trial.Call([&] { CheckAndReserveqArrayList<T>(&slot, 1000, trial.allocator); });
    list.Reset(slot);
    EXPECT_EQ(list.Get() != nullptr, done);
}

template <typename T>
void MakeMoreRoom(Trial& trial)
{
    Zo::Object<void*> list;
    Zo::Test(qArrayList_Construct(list.Slot(), GetqType<T>(), 0, nullptr));
    const T item{};
    Zo::Test(qArrayList_Add(list, &item));
    trial.KeepsUnchanged(list);
    void* slot = list;
    trial.Call([&] { CheckAndReserveqArrayList<T>(&slot, 1000, nullptr); });
    EXPECT_EQ(slot, list.Get());
}

void OperateOnPixels(Trial& trial)
{
    trial.Call(
        []
        {
            std::uint8_t intensity = 0;
            std::int32_t height = 0;
            ArithmeticsPixelAdd sum;
            sum.SetScale(0.5);
            sum.SetOffsets(1.0, 2.0);
            sum.Operate(std::uint8_t{1}, std::uint8_t{2}, &intensity);
            sum.Operate(std::int16_t{1}, std::int16_t{2}, &height);
            const ArithmeticsPixelSubtract difference;
            difference.Operate(std::uint8_t{1}, std::uint8_t{2}, &intensity);
            difference.Operate(std::int16_t{1}, std::int16_t{2}, &height);
            const ArithmeticsPixelAverage mean;
            mean.Operate(std::uint8_t{1}, std::uint8_t{2}, &intensity);
            mean.Operate(std::int16_t{1}, std::int16_t{2}, &height);
        });
}

template <typename Combine>
void CombineSurfaces(Trial& trial, double zScale, Combine&& combine)
{
    Surface first = MakeFaultSurface();
    Surface second = MakeFaultSurface();
    first.scale.z = zScale;
    second.offset.z = 400.0; // in fine counts the sum does not fit in 16 bits, and must be packed
    KeepsUnchanged(trial, first);
    KeepsUnchanged(trial, second);
    Surface result;
    const bool done = trial.Call([&] { combine(first, second, result); });
    EXPECT_LE(result.layers.size(), 2U);
    EXPECT_TRUE(!done || qArray2_Type(result.layers.at(0)) == xxq16s_type);
    EXPECT_TRUE(done || result.layers.empty() || result.scale.x == first.scale.x);
}

void Add(Surface& first, Surface& second, Surface& result)
{
    Arithmetics::Apply(ArithmeticOperator::Add, ArithmeticLogic::Union, first, second, result);
}

} // namespace

std::vector<Entry> FaultsOfRecords()
{
    constexpr unsigned kNewList = kDefaultAllocator | kGivenAllocator | kOperations;
    constexpr unsigned kLongerList = kDefaultAllocator | kOperations;
    constexpr const char* kRoom = "Zvl::CheckAndReserveqArrayList";
    return {
        {{"Surface::Surface()", "Profile::Profile()", "Profile::Profile(qPoint64f, qPoint64f)",
          "Profile::Profile(qPoint3d64f const*, qPoint3d64f const*)", "void* GetqType<unsigned char>()",
          "void* GetqType<short>()", "void* GetqType<double>()", "void* GetqType<qPoint3d32s>()",
          "void* GetqType<qPoint3d64f>()"},
         kNothing,
         {},
         MakeRecords},
        {{"Profile::AddLayer(void*, unsigned long, void*)"},
         kDefaultAllocator | kGivenAllocator | kOperations | kNew,
         {"Zvl::Profile::AddLayer"},
         AddNewLayer},
        {{"Profile::AddLayer(Zo::Object<void*>)"}, kOperations | kNew, {}, AddPresentLayer},
        {{"RetrieveSurfaceInputData(Surface const&, SurfaceInputData*)",
          "GetRegionPixel(unsigned long, double, double, RunLength<double> const*, RunLength<int>*, double*, int)",
          "GetRegionPixel(unsigned long, unsigned long, qPoint64f const&, qPoint64f const&, Region2d<double> const*, "
          "Rect2d<int>*, qPoint64f*, int)",
          "GetRegionPixel(unsigned long, unsigned long, qPoint3d64f const&, qPoint3d64f const&, Region3d<double> "
          "const*, "
          "Rect3d<int>*, qPoint3d64f*, int)",
          "GetRegionPixel(SurfaceInputData const*, Region3d<double> const*, Rect3d<int>*, qPoint3d64f*, int)",
          "GetRegionXZPixel(unsigned long, qPoint64f const&, qPoint64f const&, Region2d<double> const*, Rect2d<int>*, "
          "qPoint64f*, int)"},
         kNothing,
         {},
         FindCells},
        {{"GetSurfaceItemOffset(void*, int)"},
         kOperations,
         {"Zvl::GetSurfaceItemOffset"},
         [](Trial& trial)
         {
             const Zo::Object<void*> message = MakeMessage();
             trial.Call([&] { GetSurfaceItemOffset(message, 0); });
         }},
        {{"unsigned char* CheckAndReserveqArrayList<unsigned char>(void**, unsigned long, void*)"},
         kNewList,
         {kRoom},
         MakeRoom<unsigned char>},
        {{"short* CheckAndReserveqArrayList<short>(void**, unsigned long, void*)"}, kNewList, {kRoom}, MakeRoom<short>},
        {{"double* CheckAndReserveqArrayList<double>(void**, unsigned long, void*)"},
         kNewList,
         {kRoom},
         MakeRoom<double>},
        {{"qPoint3d32s* CheckAndReserveqArrayList<qPoint3d32s>(void**, unsigned long, void*)"},
         kNewList,
         {kRoom},
         MakeRoom<qPoint3d32s>},
        {{"qPoint3d64f* CheckAndReserveqArrayList<qPoint3d64f>(void**, unsigned long, void*)"},
         kNewList,
         {kRoom},
         MakeRoom<qPoint3d64f>},
        {{"qPoint3d64f* CheckAndReserveqArrayList<qPoint3d64f>(void**, unsigned long, void*)"},
         kLongerList,
         {kRoom},
         MakeMoreRoom<qPoint3d64f>},
        {{"ArithmeticsPixelOperation::SetScale(double)", "ArithmeticsPixelOperation::SetOffsets(double, double)",
          "ArithmeticsPixelAdd::Operate(unsigned char, unsigned char, unsigned char*) const",
          "ArithmeticsPixelAdd::Operate(short, short, int*) const",
          "ArithmeticsPixelSubtract::Operate(unsigned char, unsigned char, unsigned char*) const",
          "ArithmeticsPixelSubtract::Operate(short, short, int*) const",
          "ArithmeticsPixelAverage::Operate(unsigned char, unsigned char, unsigned char*) const",
          "ArithmeticsPixelAverage::Operate(short, short, int*) const"},
         kNothing,
         {},
         OperateOnPixels},
        {{"ArithmeticsPixelOperationFactory::Create(ArithmeticOperator)"},
         kNew,
         {},
         [](Trial& trial)
         { trial.Call([] { ArithmeticsPixelOperationFactory::Create(ArithmeticOperator::Subtract); }); }},
        {{"Arithmetics::Apply(ArithmeticOperator, ArithmeticLogic, Surface&, Surface&, Surface&)"},
         kDefaultAllocator | kOperations | kNew,
         {"Zvl::Arithmetics::Apply", "Zvl::Arithmetics::ConvertSurface32sTo16s"},
         [](Trial& trial) { CombineSurfaces(trial, 0.01, Add); }},
        {{"Arithmetics::Apply(ArithmeticOperator, ArithmeticLogic, Surface&, Surface&, Surface&)"},
         kDefaultAllocator | kOperations | kNew,
         {"Zvl::Arithmetics::Apply"},
         [](Trial& trial) { CombineSurfaces(trial, 1.0, Add); }},
        {{"Arithmetics::ApplyMask(Surface&, Surface&, Surface&)"},
         kDefaultAllocator | kOperations | kNew,
         {"Zvl::Arithmetics::ApplyMask"},
         [](Trial& trial) { CombineSurfaces(trial, 0.01, Arithmetics::ApplyMask); }},
    };
}

} // namespace WholeTest
