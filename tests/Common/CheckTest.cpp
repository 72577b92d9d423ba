#include "Common/Check.h"

#include "support/FailingAllocator.h"

#include <gtest/gtest.h>

namespace
{

/** A platform call that answers with one status after the other. */
class Call
{
public:
    explicit Call(std::vector<qStatus> statuses) : statuses(std::move(statuses)) {}

    qStatus Make() { return statuses.at(made++); }
    std::size_t Made() const { return made; }

private:
    std::vector<qStatus> statuses;
    std::size_t made = 0;
};

/** The exception that checking @p call throws. */
Zo::Exception Thrown(Call& call)
{
    try
    {
        ZVL_CHECK("Zvl::Some::Function", call.Make());
    }
    catch (const Zo::Exception& exception)
    {
        return exception;
    }
    ADD_FAILURE() << "nothing was thrown";
    return Zo::Exception(0, nullptr, 0, nullptr, nullptr);
}

TEST(Check, ASuccessfulCallIsMadeOnce)
{
    Call call({STATUS_OK});
    EXPECT_NO_THROW(ZVL_CHECK("Zvl::Some::Function", call.Make()));
    EXPECT_EQ(call.Made(), 1U);
}

TEST(Check, AFailedCallIsMadeTwiceAndTheSecondStatusIsThrown)
{
    Call call({STATUS_BAD_DATA, STATUS_MISMATCH});
    const Zo::Exception exception = Thrown(call);
    EXPECT_EQ(call.Made(), 2U);
    EXPECT_EQ(exception.GetStatus(), STATUS_MISMATCH);
    EXPECT_STREQ(exception.GetFunction(), "Zvl::Some::Function");
    EXPECT_STREQ(exception.GetMessage(), "");
    EXPECT_GT(exception.GetLine(), 0);
    EXPECT_STREQ(exception.GetFile(), "tests/Common/CheckTest.cpp");
}

TEST(Check, ASecondSuccessIsThrownAllTheSame)
{
    Call call({STATUS_BAD_DATA, STATUS_OK});
    EXPECT_EQ(Thrown(call).GetStatus(), STATUS_OK);
    EXPECT_EQ(call.Made(), 2U);
}

TEST(Check, AStatusOfZeroIsAFailure)
{
    Call call({0, 0});
    EXPECT_EQ(Thrown(call).GetStatus(), 0);
}

TEST(Check, ARequirementThrowsBadParameter)
{
    EXPECT_NO_THROW(ZVL_REQUIRE("Zvl::Some::Function", true));
    try
    {
        ZVL_REQUIRE("Zvl::Some::Function", false);
        FAIL() << "nothing was thrown";
    }
    catch (const Zo::Exception& exception)
    {
        EXPECT_EQ(exception.GetStatus(), STATUS_BAD_PARAMETER);
        EXPECT_STREQ(exception.GetFunction(), "Zvl::Some::Function");
    }
}

/** What a host's platform may do: construct the object, and report a failure none the less. */
qStatus ConstructAndFail(void** slot, qAlloc allocator)
{
    const qStatus status = qArray1_Construct(slot, xxq8u_type, 10, allocator);
    return status == STATUS_OK ? STATUS_ABORTED : status;
}

TEST(Check, AConstructionThatFillsItsSlotTwiceLeaksNothing)
{
    TestSupport::FailingAllocator allocator;
    {
        Zo::Object<void*> array;
        EXPECT_THROW(ZVL_CHECK("Zvl::Some::Function", ConstructAndFail(array.Slot(), allocator.Get())), Zo::Exception);
        EXPECT_NE(array.Get(), nullptr);
    }
    EXPECT_EQ(allocator.LiveBlocks(), 0U);
}

} // namespace
