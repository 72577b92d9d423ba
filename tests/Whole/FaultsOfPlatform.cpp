#include "Whole/FaultTable.h"

#include <ZdkVisionLib/platform/ZoVision.h>
#include <ZdkVisionLib/platform/qVision.h>

#include <cstring>
#include <functional>
#include <string>

namespace WholeTest
{

namespace
{

using Handle = Zo::Object<void*>;

using Construct = qStatus (*)(void** slot, qAlloc allocator);

/** A construction that fails leaves the slot as it was. */
void Make(Trial& trial, Construct construct)
{
    void* slot = nullptr;
    const bool done = trial.CallStatus([&] { return construct(&slot, trial.allocator); });
    const Handle owner(slot);
    EXPECT_EQ(slot != nullptr, done);
}

Handle MakeArray1()
{
    const std::int16_t cells[4] = {1, 2, 3, 4};
    Handle array;
    Zo::Test(qArray1_Construct(array.Slot(), xxq16s_type, 4, nullptr));
    std::memcpy(qArray1_Data(array), cells, sizeof(cells));
    return array;
}

Handle MakeArray2(std::size_t rows = 2, std::size_t columns = 2)
{
    Handle array;
    Zo::Test(qArray2_Construct(array.Slot(), xxq64f_type, rows, columns, nullptr));
    for (std::size_t i = 0; i < rows * columns; ++i)
    {
        const double cell = i % (columns + 1) == 0 ? 2.0 : 0.25 * static_cast<double>(i % 3);
        Zo::Test(qArray2_SetItem(array, i / columns, i % columns, &cell));
    }
    return array;
}

Handle MakeList()
{
    const std::int16_t items[4] = {1, 2, 3, 4};
    Handle list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxq16s_type, 4, nullptr));
    Zo::Test(qArrayList_Import(list, items, 4));
    return list;
}

/** A call that changes @p object, or leaves it as it was and fails. */
void Change(Trial& trial, const Handle& object, const std::function<qStatus()>& call,
            const std::function<std::size_t()>& count)
{
    const std::size_t before = count();
    const bool done = trial.CallStatus(call);
    EXPECT_TRUE(done || count() == before);
    EXPECT_EQ(qObject_ShareCount(object), 1);
}

void ReshapeArray1(Trial& trial)
{
    const Handle array = MakeArray1();
    Change(
        trial, array, [&] { return qArray1_Allocate(array, xxq64f_type, 100); }, [&] { return qArray1_Count(array); });
}

void ReshapeArray2(Trial& trial)
{
    const Handle array = MakeArray2();
    Change(
        trial, array, [&] { return qArray2_Allocate(array, xxq8u_type, 50, 60); },
        [&] { return qArray2_Length(array, 0); });
}

void AssignArray2(Trial& trial)
{
    const Handle source = MakeArray2(30, 40);
    const Handle target = MakeArray2();
    trial.KeepsUnchanged(source);
    Change(
        trial, target, [&] { return xqArray2_Assign(target, source, 0); }, [&] { return qArray2_Length(target, 0); });
}

void AddToList(Trial& trial)
{
    const Handle list = MakeList();
    const std::int16_t item = 5;
    Change(
        trial, list, [&] { return qArrayList_Add(list, &item); }, [&] { return qArrayList_Count(list); });
}

void ImportIntoList(Trial& trial)
{
    const Handle list = MakeList();
    const std::int16_t items[200] = {};
    Change(
        trial, list, [&] { return qArrayList_Import(list, items, 200); }, [&] { return qArrayList_Count(list); });
}

void ResizeList(Trial& trial)
{
    const Handle list = MakeList();
    Change(
        trial, list, [&] { return qArrayList_Resize(list, 200); }, [&] { return qArrayList_Count(list); });
}

void ReserveList(Trial& trial)
{
    const Handle list = MakeList();
    trial.KeepsUnchanged(list);
    trial.CallStatus([&] { return qArrayList_Reserve(list, 200); });
}

/** A list of arrays: every copy that was made goes again when one cannot be. */
void CloneNested(Trial& trial)
{
    Handle list;
    Zo::Test(qArrayList_Construct(list.Slot(), xxqObject_type, 2, nullptr));
    for (int i = 0; i < 2; ++i)
    {
        Handle array = MakeArray1();
        void* raw = array.Detach();
        Zo::Test(qArrayList_Add(list, &raw));
    }
    void* slot = nullptr;
    const bool done =
        trial.CallStatus([&] { return xqObject_CloneImpl(&slot, list, trial.allocator, trial.allocator, 0); });
    const Handle owner(slot);
    EXPECT_EQ(slot != nullptr, done);
    EXPECT_EQ(qArrayList_Count(list), 2U);
}

void UseArrays(Trial& trial)
{
    const Handle line = MakeArray1();
    const Handle grid = MakeArray2();
    trial.CallStatus(
        [&]
        {
            double cell = 0.0;
            Zo::Test(qArray2_Item(grid, 0, 1, &cell));
            Zo::Test(qArray2_SetItem(grid, 1, 0, &cell));
            Zo::Test(qArray2_Zero(grid));
            EXPECT_EQ(qArray1_Count(line) + qArray2_Length(grid, 1), 6U);
            EXPECT_EQ(qType_Size(qArray1_Type(line)) + qType_Size(qArray2_Type(grid)), 10U);
            EXPECT_NE(qArray1_Data(line), nullptr);
            return qArray1_Zero(line);
        });
}

void UseList(Trial& trial)
{
    const Handle list = MakeList();
    trial.CallStatus(
        [&]
        {
            EXPECT_EQ(qArrayList_At(list, 0), qArrayList_Data(list));
            EXPECT_EQ(qArrayList_Type(list), xxq16s_type);
            Zo::Test(qArrayList_Remove(list, 1, nullptr));
            EXPECT_EQ(qArrayList_Count(list), 3U);
            Zo::Test(qArrayList_Zero(list));
            return qArrayList_Purge(list);
        });
}

void UseObjects(Trial& trial)
{
    const Handle list = MakeList();
    trial.CallStatus(
        [&]
        {
            Zo::Test(STATUS_OK);
            Zo::Test(qObject_Share(list));
            EXPECT_EQ(qObject_ShareCount(list), 2);
            EXPECT_TRUE(xqCastClass_ObjectIs(list, xxqArrayList_type));
            EXPECT_TRUE(xqCastClass_ObjectIsValid(list));
            return xqObject_DestroyImpl(list, 0);
        });
}

void UseMemory(Trial& trial)
{
    trial.CallStatus(
        []
        {
            unsigned char bytes[4] = {1, 2, 3, 4};
            unsigned char others[4] = {};
            Zo::Test(qMemCopy(others, bytes, 4));
            Zo::Test(qMemReverse(others, 4));
            Zo::Test(qMemReverseCopy(bytes, others, 4));
            qRandomSize();
            qL3dTransform3d transform{};
            Zo::Test(qL3dTransform3d_Identity(&transform));
            return qMemSet(bytes, 0, 4);
        });
}

void RunJob(Trial& trial)
{
    const Handle target = MakeArray1();
    const TestSupport::WorkerCount workers(3);
    trial.CallStatus(
        [&]
        {
            Zo::Test(qThreadPool_SetCount(qThreadPool_Default(), 2));
            EXPECT_EQ(qThreadPool_Count(qThreadPool_Default()), 2U);
            return qParallel_Execute(
                [](void*, void*, const qParallelArgs* args) -> qStatus {
                    return qParallelArgs_Begin(args, 0, 4) <= qParallelArgs_End(args, 0, 4) ? STATUS_OK
                                                                                            : STATUS_ABORTED;
                },
                nullptr, target);
        });
}

void UseMessage(Trial& trial)
{
    Handle message;
    Zo::Test(ZvSurfaceMsg_Construct(message.Slot(), 4, 5, 1, nullptr));
    trial.CallStatus(
        [&]
        {
            qPoint3d64f mapping = {1.0, 2.0, 3.0};
            Zo::Test(ZvSurfaceMsg_SetScale(message, &mapping));
            Zo::Test(ZvSurfaceMsg_SetOffset(message, 0, &mapping));
            EXPECT_EQ(ZvSurfaceMsg_Width(message) + ZvSurfaceMsg_Length(message), 9U);
            EXPECT_EQ(ZvSurfaceMsg_Scale(message).z, 3.0);
            EXPECT_NE(ZvSurfaceMsg_PointsArray(message, 0), nullptr);
            return ZvSurfaceMsg_OffsetForRef(message, 0, &mapping);
        });
}

/** A calculation whose result keeps its cells when it fails. */
void Calculate(Trial& trial, const std::vector<Handle>& inputs, const Handle& result,
               const std::function<qStatus()>& calculation)
{
    for (const Handle& input : inputs)
    {
        trial.KeepsUnchanged(input);
    }
    const std::vector<double> before = TestSupport::CellsIn<double>(result);
    const bool done = trial.CallStatus(calculation);
    EXPECT_TRUE(done || TestSupport::CellsIn<double>(result) == before);
}

/** The system of equations is large enough to need the heap. */
void SolveSystem(Trial& trial)
{
    const Handle matrix = MakeArray2(60, 5);
    const Handle rightSide = MakeArray2(60, 1);
    const Handle solution = MakeArray2(5, 1);
    Calculate(trial, {matrix, rightSide}, solution, [&] { return qMatrix_SolveSystem(matrix, solution, rightSide); });
}

void Invert(Trial& trial)
{
    const Handle matrix = MakeArray2(12, 12);
    const Handle inverse = MakeArray2(12, 12);
    Calculate(trial, {matrix}, inverse, [&] { return qMatrix_Invert(matrix, inverse, nullptr); });
}

void Multiply(Trial& trial)
{
    const Handle a = MakeArray2(20, 20);
    const Handle b = MakeArray2(20, 20);
    const Handle product = MakeArray2(20, 20);
    Calculate(trial, {a, b}, product, [&] { return qMatrix_Mul64f(a, b, product); });
}

struct Stream
{
    Handle memory;
    Handle serializer;

    Stream()
    {
        Zo::Test(qMemory_Construct(memory.Slot(), nullptr, 0));
        Zo::Test(qSerializer_Construct(serializer.Slot(), memory, nullptr, nullptr));
    }
};

void OpenSerializer(Trial& trial)
{
    Handle memory;
    Zo::Test(qMemory_Construct(memory.Slot(), nullptr, 0));
    void* slot = nullptr;
    const bool done = trial.CallStatus([&] { return qSerializer_Construct(&slot, memory, nullptr, trial.allocator); });
    const Handle owner(slot);
    EXPECT_EQ(slot != nullptr, done);
    EXPECT_EQ(qObject_ShareCount(memory), done ? 2 : 1);
}

void Write(Trial& trial)
{
    const Stream stream;
    const std::vector<double> values(1000, 1.5);
    trial.CallStatus([&] { return xqSerializer_WritePrimitives(stream.serializer, values.data(), values.size(), 3); });
}

void OpenBlock(Trial& trial)
{
    const Stream stream;
    trial.CallStatus([&] { return qSerializer_BeginWrite(stream.serializer, xxq16u_type, 0); });
}

/** What was written stays in the serializer when the stream has no room for it, and can be flushed later. */
void Flush(Trial& trial)
{
    const Stream stream;
    Zo::Test(qSerializer_BeginWrite(stream.serializer, xxq16u_type, 0));
    Zo::Test(qSerializer_Write32s(stream.serializer, 7));
    Zo::Test(qSerializer_EndWrite(stream.serializer));
    const bool done = trial.CallStatus([&] { return xqSerializer_FlushEx(stream.serializer, 1); });
    EXPECT_EQ(qMemory_Length(stream.memory), done ? 6U : 0U);
    Zo::Test(xqSerializer_FlushEx(stream.serializer, 1));
    EXPECT_EQ(qMemory_Length(stream.memory), 6U);
    EXPECT_NE(qMemory_At(stream.memory, 5), nullptr);
}

void CloseBlock(Trial& trial)
{
    const Stream stream;
    Zo::Test(qSerializer_BeginWrite(stream.serializer, xxq16u_type, 0));
    trial.CallStatus([&] { return qSerializer_EndWrite(stream.serializer); });
}

void Read(Trial& trial)
{
    unsigned char bytes[6] = {0, 4, 0, 0, 0, 7};
    const Stream stream;
    trial.CallStatus(
        [&]
        {
            Zo::Test(qMemory_Attach(stream.memory, bytes, 0, 6, 6));
            return qSerializer_SetByteSwap(stream.serializer, 1);
        });
    EXPECT_EQ(qMemory_Length(stream.memory), 6U);
    EXPECT_EQ(qMemory_At(stream.memory, 5), bytes + 5);
}

void ReadBlock(Trial& trial)
{
    unsigned char bytes[6] = {4, 0, 7, 0, 0, 0};
    const Stream stream;
    Zo::Test(qMemory_Attach(stream.memory, bytes, 0, 6, 6));
    std::int32_t value = 0;
    const bool done = trial.CallStatus(
        [&]
        {
            const qStatus begun = qSerializer_BeginRead(stream.serializer, xxq16u_type, 0);
            if (begun != STATUS_OK)
            {
                return begun;
            }
            Zo::Test(xqSerializer_ReadPrimitives(stream.serializer, &value, 1, 2));
            return qSerializer_EndRead(stream.serializer);
        });
    EXPECT_EQ(value, done ? 7 : 0);
}

/** Exceptions go without their texts when there is no memory for them. */
void MakeExceptions(Trial& trial)
{
    const std::string message = "a message that does not fit into the string itself";
    trial.Call(
        [&]
        {
            const Zo::Exception full(1, "File", STATUS_ABORTED, "Function", "%s", message.c_str());
            const Zo::Exception brief(STATUS_ABORTED, message);
            const Zo::Exception copy(full); // NOLINT(performance-unnecessary-copy-initialization)
            EXPECT_EQ(copy.GetStatus() + brief.GetStatus(), 2 * STATUS_ABORTED);
            EXPECT_EQ(copy.GetLine(), 1);
            EXPECT_TRUE(copy.GetFile() == std::string("File") || copy.GetFile() == std::string());
            EXPECT_TRUE(copy.GetFunction() == std::string("Function") || copy.GetFunction() == std::string());
            EXPECT_TRUE(brief.GetMessage() == message || brief.GetMessage() == std::string());
            EXPECT_GT(std::strlen(brief.what()), 0U);
        });
}

void Report(Trial& trial)
{
    trial.Call(
        []
        {
            EXPECT_THROW(xqApiLib_CastFailHandler("File", 1), Zo::Exception);
            EXPECT_THROW(xqApiLib_AssertHandler("File", 1), Zo::Exception);
        });
}

void UseAllocators(Trial& trial)
{
    trial.CallStatus(
        []
        {
            Handle allocator;
            return qAlloc_Construct(
                allocator.Slot(), [](void*, std::size_t size) { return std::malloc(size); },
                [](void*, void* memory) { std::free(memory); }, nullptr);
        });
    qAlloc_SetDefault(nullptr); // the last act of this body: the trial's allocator is asked for nothing more
}

std::vector<Entry> OfObjects()
{
    constexpr unsigned kMake = kDefaultAllocator | kGivenAllocator | kIsPlatform;
    constexpr unsigned kGrow = kDefaultAllocator | kIsPlatform;
    return {
        {{"qArray1_Construct(void**, void*, unsigned long, void*)"},
         kMake,
         {},
         [](Trial& trial) {
             Make(trial,
                  [](void** slot, qAlloc allocator) { return qArray1_Construct(slot, xxq16s_type, 9, allocator); });
         }},
        {{"qArray2_Construct(void**, void*, unsigned long, unsigned long, void*)"},
         kMake,
         {},
         [](Trial& trial) {
             Make(trial,
                  [](void** slot, qAlloc allocator) { return qArray2_Construct(slot, xxq16s_type, 9, 8, allocator); });
         }},
        {{"qArrayList_Construct(void**, void*, unsigned long, void*)"},
         kMake,
         {},
         [](Trial& trial) {
             Make(trial,
                  [](void** slot, qAlloc allocator) { return qArrayList_Construct(slot, xxq16s_type, 9, allocator); });
         }},
        {{"qMemory_Construct(void**, void*, int)"},
         kMake,
         {},
         [](Trial& trial)
         { Make(trial, [](void** slot, qAlloc allocator) { return qMemory_Construct(slot, allocator, 0); }); }},
        {{"ZvSurfaceMsg_Construct(void**, unsigned long, unsigned long, unsigned long, void*)"},
         kMake,
         {},
         [](Trial& trial) {
             Make(trial,
                  [](void** slot, qAlloc allocator) { return ZvSurfaceMsg_Construct(slot, 4, 5, 2, allocator); });
         }},
        {{"qSerializer_Construct(void**, void*, void*, void*)"}, kMake, {}, OpenSerializer},
        {{"xqObject_CloneImpl(void**, void*, void*, void*, int)"}, kMake, {}, CloneNested},
        {{"qArray1_Allocate(void*, void*, unsigned long)"}, kGrow, {}, ReshapeArray1},
        {{"qArray2_Allocate(void*, void*, unsigned long, unsigned long)"}, kGrow, {}, ReshapeArray2},
        {{"xqArray2_Assign(void*, void*, int)"}, kGrow, {}, AssignArray2},
        {{"qArrayList_Add(void*, void const*)"}, kGrow, {}, AddToList},
        {{"qArrayList_Import(void*, void const*, unsigned long)"}, kGrow, {}, ImportIntoList},
        {{"qArrayList_Resize(void*, unsigned long)"}, kGrow, {}, ResizeList},
        {{"qArrayList_Reserve(void*, unsigned long)"}, kGrow, {}, ReserveList},
        {{"qArray1_Count(void*)", "qArray1_Data(void*)", "qArray1_Type(void*)", "qArray1_Zero(void*)",
          "qArray2_Item(void*, unsigned long, unsigned long, void*)",
          "qArray2_SetItem(void*, unsigned long, unsigned long, void const*)", "qArray2_Length(void*, unsigned long)",
          "qArray2_Type(void*)", "qArray2_Zero(void*)", "qType_Size(void*)"},
         kIsPlatform,
         {},
         UseArrays},
        {{"qArrayList_At(void*, unsigned long)", "qArrayList_Count(void*)", "qArrayList_Data(void*)",
          "qArrayList_Type(void*)", "qArrayList_Remove(void*, unsigned long, void*)", "qArrayList_Zero(void*)",
          "qArrayList_Purge(void*)"},
         kIsPlatform,
         {},
         UseList},
        {{"Zo::Test(int)", "qObject_Share(void*)", "qObject_ShareCount(void*)", "xqCastClass_ObjectIs(void*, void*)",
          "xqCastClass_ObjectIsValid(void*)", "xqObject_DestroyImpl(void*, int)"},
         kIsPlatform,
         {},
         UseObjects},
        {{"ZvSurfaceMsg_SetScale(void*, qPoint3d64f const*)", "ZvSurfaceMsg_SetOffset(void*, int, qPoint3d64f const*)",
          "ZvSurfaceMsg_Width(void*)", "ZvSurfaceMsg_Length(void*)", "ZvSurfaceMsg_Scale(void*)",
          "ZvSurfaceMsg_PointsArray(void*, int)", "ZvSurfaceMsg_OffsetForRef(void*, int, qPoint3d64f*)"},
         kIsPlatform,
         {},
         UseMessage},
    };
}

std::vector<Entry> OfTheRest()
{
    constexpr unsigned kGrow = kDefaultAllocator | kIsPlatform;
    return {
        {{"qMemCopy(void*, void const*, unsigned long)", "qMemReverse(void*, unsigned long)",
          "qMemReverseCopy(void*, void const*, unsigned long)", "qMemSet(void*, unsigned char, unsigned long)",
          "qRandomSize()", "qL3dTransform3d_Identity(qL3dTransform3d*)"},
         kIsPlatform,
         {},
         UseMemory},
        {{"qParallel_Execute(int (*)(void*, void*, qParallelArgs const*), void*, void*)",
          "qParallelArgs_Begin(qParallelArgs const*, unsigned long, unsigned long)",
          "qParallelArgs_End(qParallelArgs const*, unsigned long, unsigned long)", "qThreadPool_Default()",
          "qThreadPool_Count(void*)", "qThreadPool_SetCount(void*, unsigned long)"},
         kIsPlatform,
         {},
         RunJob},
        {{"qMatrix_SolveSystem(void*, void*, void*)"}, kMalloc | kIsPlatform, {}, SolveSystem},
        {{"qMatrix_Invert(void*, void*, double*)"}, kMalloc | kIsPlatform, {}, Invert},
        {{"qMatrix_Mul64f(void*, void*, void*)"}, kIsPlatform, {}, Multiply},
        {{"xqSerializer_WritePrimitives(void*, void const*, unsigned long, int)"}, kGrow, {}, Write},
        {{"qSerializer_BeginWrite(void*, void*, int)"}, kGrow, {}, OpenBlock},
        {{"qSerializer_EndWrite(void*)"}, kIsPlatform, {}, CloseBlock},
        {{"xqSerializer_FlushEx(void*, int)", "qMemory_Length(void*)", "qMemory_At(void*, unsigned long)"},
         kGrow,
         {},
         Flush},
        {{"qMemory_Attach(void*, void*, unsigned long, unsigned long, unsigned long)",
          "qSerializer_SetByteSwap(void*, int)"},
         kIsPlatform,
         {},
         Read},
        {{"qSerializer_BeginRead(void*, void*, int)", "xqSerializer_ReadPrimitives(void*, void*, unsigned long, int)",
          "qSerializer_EndRead(void*)"},
         kGrow,
         {},
         ReadBlock},
        {{"Zo::Exception::Exception(int, char const*, int, char const*, char const*, ...)",
          "Zo::Exception::Exception(int, std::__cxx11::basic_string<char, std::char_traits<char>> const&)",
          "Zo::Exception::GetFile() const", "Zo::Exception::GetFunction() const", "Zo::Exception::GetLine() const",
          "Zo::Exception::GetMessage() const", "Zo::Exception::GetStatus() const", "Zo::Exception::what() const"},
         kNew | kIsPlatform,
         {},
         MakeExceptions},
        {{"xqApiLib_CastFailHandler(char const*, int)", "xqApiLib_AssertHandler(char const*, int)"},
         kNew | kIsPlatform,
         {},
         Report},
        {{"qAlloc_Construct(void**, void* (*)(void*, unsigned long), void (*)(void*, void*), void*)",
          "qAlloc_SetDefault(void*)"},
         kMalloc | kIsPlatform,
         {},
         UseAllocators},
    };
}

} // namespace

std::vector<Entry> FaultsOfPlatform()
{
    std::vector<Entry> entries = OfObjects();
    const std::vector<Entry> rest = OfTheRest();
    entries.insert(entries.end(), rest.begin(), rest.end());
    return entries;
}

} // namespace WholeTest
