#include "Whole/FaultTrial.h"

#include "Whole/CountedMalloc.h"
#include "Whole/CountedNew.h"
#include "Whole/PlatformFaults.h"

#include <opencv2/core.hpp>

#include <algorithm>
#include <cstring>
#include <new>

namespace WholeTest
{

namespace
{

using TestSupport::Failing;
using TestSupport::FailingAllocator;

constexpr std::size_t kMostRuns = 20000;

/** The cells of an array or the items of a list. */
std::vector<unsigned char> BytesOf(void* object)
{
    const unsigned char* data = nullptr;
    std::size_t size = 0;
    if (xqCastClass_ObjectIs(object, xxqArray2_type))
    {
        size = qArray2_Length(object, 0) * qArray2_Length(object, 1) * qType_Size(qArray2_Type(object));
        data = size == 0 ? nullptr : static_cast<const unsigned char*>(qArray2_At(object, 0, 0));
    }
    else if (xqCastClass_ObjectIs(object, xxqArray1_type))
    {
        size = qArray1_Count(object) * qType_Size(qArray1_Type(object));
        data = static_cast<const unsigned char*>(qArray1_Data(object));
    }
    else
    {
        size = qArrayList_Count(object) * qType_Size(qArrayList_Type(object));
        data = static_cast<const unsigned char*>(qArrayList_Data(object));
    }
    return size == 0 ? std::vector<unsigned char>() : std::vector<unsigned char>(data, data + size);
}

const char* NameOf(Use kind)
{
    switch (kind)
    {
    case kDefaultAllocator:
        return "the default allocator";
    case kGivenAllocator:
        return "the given allocator";
    case kOperations:
        return "the platform";
    case kNew:
        return "new";
    default:
        return "malloc";
    }
}

} // namespace

struct Trial::Left
{
    enum What
    {
        Nothing,
        Returned,
        Exception,
        BadAlloc,
        OfOpenCv
    };

    What what = Nothing;
    int status = STATUS_OK;
    std::string function;
};

Trial::Trial(const Entry& tested, const Fault& injected, FailingAllocator& ofDefault, FailingAllocator& given)
    : allocator(injected.kind == kGivenAllocator ? given.Get() : nullptr),
      entry(tested),
      fault(injected),
      allocators{&ofDefault, &given}
{
}

bool Trial::Call(const std::function<void()>& call)
{
    return CallStatus(
        [&]
        {
            call();
            return STATUS_OK;
        });
}

bool Trial::CallStatus(const std::function<qStatus()>& call)
{
    EXPECT_FALSE(called) << "a body makes one call";
    called = true;
    const Left left = Watch(call);
    const bool failed = left.what != Left::Nothing;
    EXPECT_TRUE(met || !failed) << "failed without a fault: " << left.status << " from " << left.function;
    CheckInputs(failed);
    if (left.what == Left::Returned)
    {
        EXPECT_TRUE(left.status == STATUS_OUT_OF_MEMORY) << left.status;
    }
    else if (fault.kind == kNew || fault.kind == kMalloc)
    {
        CheckOutOfMemory(left);
    }
    else if (failed)
    {
        EXPECT_EQ(left.what, Left::Exception);
        CheckStatus(left.status, left.function);
    }
    else if (met)
    {
        EXPECT_NE(entry.uses & kAbsorbs, 0U) << "the fault was not reported";
    }
    return !failed;
}

/** Makes the call with the fault in wait. */
Trial::Left Trial::Watch(const std::function<qStatus()>& call)
{
    struct Armed
    {
        explicit Armed(Trial& armed) : trial(armed) { trial.Arm(); }
        ~Armed() { trial.Disarm(); }
        Trial& trial;
    };
    try
    {
        qStatus status = STATUS_OK;
        {
            const Armed armed(*this);
            status = call();
        }
        return {status == STATUS_OK ? Left::Nothing : Left::Returned, status, ""};
    }
    catch (const Zo::Exception& exception)
    {
        return {Left::Exception, exception.GetStatus(), exception.GetFunction()};
    }
    catch (const std::bad_alloc&)
    {
        return {Left::BadAlloc, STATUS_OUT_OF_MEMORY, ""};
    }
    catch (const cv::Exception& exception)
    {
        return {Left::OfOpenCv, exception.code, exception.func};
    }
}

/** The library's own memory may be exhausted without a word where a result does not depend on it. Exceptions then go
 *  without their texts. */
void Trial::CheckOutOfMemory(const Left& left) const
{
    if (left.what == Left::OfOpenCv)
    {
        EXPECT_EQ(left.status, cv::Error::StsNoMem) << left.function;
    }
    else if (left.what == Left::Exception)
    {
        EXPECT_TRUE(left.status == STATUS_OUT_OF_MEMORY ||
                    (left.status == STATUS_OK && Repeats() && fault.kind == kMalloc))
            << left.status << " from " << left.function;
        EXPECT_TRUE(left.function.empty() || Bears(left.function)) << left.function;
    }
}

void Trial::KeepsUnchanged(void* object)
{
    inputs.push_back({object, qObject_ShareCount(object), BytesOf(object)});
}

void Trial::Arm()
{
    const bool onwards = fault.mode == Failing::FromNthOn;
    allocators[0]->FailAt(fault.kind == kDefaultAllocator ? fault.nth : 0, fault.mode);
    allocators[1]->FailAt(fault.kind == kGivenAllocator ? fault.nth : 0, fault.mode);
    FailOperationAt(fault.kind == kOperations ? fault.nth : 0, onwards);
    FailNewAt(fault.kind == kNew ? fault.nth : 0, onwards);
    FailMallocAt(fault.kind == kMalloc ? fault.nth : 0, onwards);
}

void Trial::Disarm()
{
    met = FailuresOfNew() + FailuresOfMalloc() + FailedOperations() + allocators[0]->Failures() +
              allocators[1]->Failures() >
          0;
    failedOperation = FirstFailedOperation() == nullptr ? "" : FirstFailedOperation();
    FailNewAt(0, false);
    FailMallocAt(0, false);
    FailOperationAt(0, false);
    for (FailingAllocator* each : allocators)
    {
        each->FailNever();
    }
}

/** Of a checked call the status of its repetition is thrown; the copy of a handle has no name and no second try. */
void Trial::CheckStatus(int status, const std::string& function) const
{
    const bool repeatedInVain = !Repeats();
    if (fault.kind != kOperations)
    {
        EXPECT_EQ(status, repeatedInVain ? STATUS_OUT_OF_MEMORY : STATUS_OK) << function;
        EXPECT_TRUE(Bears(function)) << function;
        return;
    }
    if ((entry.uses & kAbsorbs) != 0 && repeatedInVain)
    {
        EXPECT_LE(status, kFirstFault) << function; // of a later one
        EXPECT_TRUE(function.empty() || Bears(function)) << function;
        return;
    }
    if (failedOperation == std::string("qObject_Share"))
    {
        EXPECT_EQ(status, kFirstFault) << function;
        EXPECT_EQ(function, "");
        return;
    }
    EXPECT_EQ(status, repeatedInVain ? kSecondFault : STATUS_OK) << function << ", " << failedOperation;
    EXPECT_TRUE(Bears(function)) << function << ", " << failedOperation;
}

void Trial::CheckInputs(bool failed) const
{
    for (const Input& input : inputs)
    {
        EXPECT_TRUE(BytesOf(input.object) == input.bytes) << "an input was changed";
        EXPECT_TRUE(!failed || qObject_ShareCount(input.object) <= input.shares) << "a count of an input was kept";
    }
}

bool Trial::Bears(const std::string& function) const
{
    return std::find(entry.functions.begin(), entry.functions.end(), function) != entry.functions.end();
}

namespace
{

/** Runs the body once. Nothing that it makes with the two allocators may be left over.
 *  @return whether the fault happened */
bool RunBody(const Entry& entry, const Fault& fault)
{
    FailingAllocator ofDefault;
    FailingAllocator given;
    if (fault.kind != kMalloc) // which is behind the built-in heap
    {
        ofDefault.MakeDefault();
    }
    bool met = false;
    {
        Trial trial(entry, fault, ofDefault, given);
        entry.body(trial);
        met = trial.Met();
        EXPECT_TRUE(trial.HasCalled());
    }
    for (const FailingAllocator* allocator : {&ofDefault, &given})
    {
        EXPECT_EQ(allocator->LiveBlocks(), 0U);
        EXPECT_EQ(allocator->LiveBytes(), 0U);
    }
    return met;
}

/** As RunBody(); nor may anything be left over of `new`. */
bool Run(const Entry& entry, const Fault& fault)
{
    const LiveMemory before = LiveOfNew();
    const bool met = RunBody(entry, fault);
    if (!testing::Test::HasFailure()) // whose report takes memory
    {
        const LiveMemory after = LiveOfNew();
        EXPECT_EQ(after.blocks, before.blocks);
        EXPECT_EQ(after.bytes, before.bytes);
    }
    return met;
}

/** Lets the first, the second, ... of a kind fail until a run meets no fault.
 *  @return whether there was one at all */
bool RunThrough(const Entry& entry, Use kind, Failing mode)
{
    for (std::size_t nth = 1; nth <= kMostRuns; ++nth)
    {
        const testing::ScopedTrace trace(__FILE__, __LINE__,
                                         std::string(NameOf(kind)) + ", " + std::to_string(nth) +
                                             (mode == Failing::FromNthOn ? " and on" : " alone"));
        if (!Run(entry, {kind, nth, mode}))
        {
            return nth > 1;
        }
        if (testing::Test::HasFailure())
        {
            return true; // one report is enough
        }
    }
    ADD_FAILURE() << "the faults do not end";
    return true;
}

} // namespace

void ExpectEveryFaultSurvived(const Entry& entry)
{
    const testing::ScopedTrace trace(__FILE__, __LINE__, entry.symbols.front());
    RunBody(entry, {}); // what is made once in a process is made now
    for (const Use kind : {kDefaultAllocator, kGivenAllocator, kOperations, kNew, kMalloc})
    {
        if (kind == kOperations && (entry.uses & kIsPlatform) != 0)
        {
            continue;
        }
        const unsigned reasons = kind == kMalloc ? kMalloc | kDefaultAllocator : kind;
        for (const Failing mode : {Failing::FromNthOn, Failing::OnlyNth})
        {
            const bool mayFail = RunThrough(entry, kind, mode);
            if (kind != kNew || (entry.uses & kPerhapsNew) == 0)
            {
                EXPECT_EQ(mayFail, (entry.uses & reasons) != 0) << NameOf(kind);
            }
        }
    }
}

} // namespace WholeTest
