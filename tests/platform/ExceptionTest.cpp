#include "platform/FailingNew.h"
#include "platform/Fixtures.h"

#include <new>
#include <type_traits>
#include <utility>

namespace
{

using namespace PlatformTest;

static_assert(sizeof(Handle) == sizeof(void*));
static_assert(std::is_nothrow_copy_constructible_v<Zo::Exception>);
static_assert(std::has_virtual_destructor_v<Zo::Exception>);

TEST(Exception, CarriesAllThatItWasGiven)
{
    const Zo::Exception exception(42, "src/Alignment/RefFrame.cpp", STATUS_BAD_DATA, "Zvl::RefFrame::SetFrame",
                                  "%d of %s", 3, "four");
    EXPECT_EQ(exception.GetLine(), 42);
    EXPECT_STREQ(exception.GetFile(), "src/Alignment/RefFrame.cpp");
    EXPECT_EQ(exception.GetStatus(), -984);
    EXPECT_STREQ(exception.GetFunction(), "Zvl::RefFrame::SetFrame");
    EXPECT_STREQ(exception.GetMessage(), "3 of four");
    EXPECT_STREQ(exception.what(),
                 "Zvl::RefFrame::SetFrame failed: bad data (-984): 3 of four [src/Alignment/RefFrame.cpp:42]");
}

TEST(Exception, DoesWithoutAMessage)
{
    const Zo::Exception exception(7, "a.cpp", STATUS_OUT_OF_MEMORY, "Zvl::F", nullptr);
    EXPECT_STREQ(exception.GetMessage(), "");
    EXPECT_STREQ(exception.what(), "Zvl::F failed: out of memory (-992) [a.cpp:7]");
}

TEST(Exception, NullTextsCountAsEmpty)
{
    const Zo::Exception exception(7, nullptr, 0, nullptr, nullptr);
    EXPECT_STREQ(exception.GetFile(), "");
    EXPECT_STREQ(exception.GetFunction(), "");
    EXPECT_STREQ(exception.what(), "Platform operation failed: status (0)");
}

TEST(Exception, ShortFormKnowsStatusAndMessage)
{
    const Zo::Exception exception(STATUS_BAD_PARAMETER, "Empty Data");
    EXPECT_EQ(exception.GetStatus(), -997);
    EXPECT_EQ(exception.GetLine(), 0);
    EXPECT_STREQ(exception.GetMessage(), "Empty Data");
    EXPECT_STREQ(exception.what(), "Platform operation failed: bad parameter (-997): Empty Data");
}

TEST(Exception, LongMessagesAreKeptWhole)
{
    const std::string text(5000, 'x');
    const Zo::Exception exception(1, "a.cpp", 0, "f", "%s|%s", text.c_str(), "end");
    EXPECT_EQ(exception.GetMessage(), text + "|end");
}

TEST(Exception, CopiesOutliveTheOriginal)
{
    Zo::Exception copy(0, "");
    {
        const Zo::Exception original(5, "b.cpp", STATUS_ABORTED, "Zvl::G", "why");
        copy = original;
    }
    EXPECT_STREQ(copy.what(), "Zvl::G failed: aborted (-988): why [b.cpp:5]");
}

TEST(Exception, WithoutMemoryTheStatusIsLeft)
{
    PlatformTest::newFails = true;
    const Zo::Exception exception(42, "a-source-path-of-some-length.cpp", STATUS_OUT_OF_MEMORY, "Zvl::F", "%d", 1);
    const Zo::Exception copy(exception);
    PlatformTest::newFails = false;
    EXPECT_EQ(copy.GetStatus(), STATUS_OUT_OF_MEMORY);
    EXPECT_EQ(copy.GetLine(), 42);
    EXPECT_STREQ(copy.GetFile(), "");
    EXPECT_STREQ(copy.GetFunction(), "");
    EXPECT_STREQ(copy.GetMessage(), "");
    EXPECT_STREQ(copy.what(), "out of memory");
}

TEST(Exception, EveryStatusHasAName)
{
    const auto text = [](int status) { return std::string(Zo::Exception(status, "").what()); };
    EXPECT_EQ(text(STATUS_NOT_SUPPORTED), "Platform operation failed: not supported (-996)");
    EXPECT_EQ(text(STATUS_MISMATCH), "Platform operation failed: type mismatch (-980)");
    EXPECT_EQ(text(STATUS_END_OF_STREAM), "Platform operation failed: end of stream (-976)");
    EXPECT_EQ(text(STATUS_OK), "Platform operation failed: success on repetition (1)");
    EXPECT_EQ(text(-12345), "Platform operation failed: status (-12345)");
}

TEST(Test, OnlyOneIsSuccess)
{
    EXPECT_NO_THROW(Zo::Test(STATUS_OK));
    for (const int status : {0, 2, -1, STATUS_BAD_PARAMETER})
    {
        try
        {
            Zo::Test(status);
            ADD_FAILURE() << status;
        }
        catch (const Zo::Exception& exception)
        {
            EXPECT_EQ(exception.GetStatus(), status);
        }
    }
}

TEST(Handlers, ThrowWithTheCallersPosition)
{
    try
    {
        xqApiLib_CastFailHandler("x.cpp", 12);
        ADD_FAILURE();
    }
    catch (const Zo::Exception& exception)
    {
        EXPECT_EQ(exception.GetLine(), 12);
        EXPECT_STREQ(exception.GetFile(), "x.cpp");
        EXPECT_EQ(exception.GetStatus(), STATUS_BAD_PARAMETER);
    }
    EXPECT_THROW(xqApiLib_AssertHandler(nullptr, 0), Zo::Exception);
}

TEST(Handle, NullNeedsNoPlatformCall)
{
    // Sharing null would be stopped by the platform; nothing is thrown, so nothing was called.
    EXPECT_STOPPED(qObject_Share(nullptr));
    Handle null;
    Handle copy(null);
    copy = null;
    Handle moved(std::move(copy));
    moved = std::move(null);
    moved.Reset();
    EXPECT_EQ(moved.Get(), nullptr);
}

TEST(Handle, RawConstructionTakesOverTheCount)
{
    void* raw = MakeArray1(xxq8u_type, 1).Detach();
    {
        const Handle handle(raw);
        EXPECT_EQ(handle.Get(), raw);
        EXPECT_EQ(qObject_ShareCount(raw), 1);
    }
    EXPECT_FALSE(xqCastClass_ObjectIsValid(raw));
}

TEST(Handle, CopiesShareAndMovesDoNot)
{
    Handle first = MakeArray1(xxq8u_type, 1);
    void* raw = first.Get();
    Handle second(first);
    EXPECT_EQ(qObject_ShareCount(raw), 2);
    Handle third;
    third = second;
    EXPECT_EQ(qObject_ShareCount(raw), 3);
    Handle fourth(std::move(third));
    EXPECT_EQ(third.Get(), nullptr);
    EXPECT_EQ(qObject_ShareCount(raw), 3);
    second = std::move(fourth);
    EXPECT_EQ(fourth.Get(), nullptr);
    EXPECT_EQ(qObject_ShareCount(raw), 2);
    second.Reset();
    EXPECT_EQ(qObject_ShareCount(raw), 1);
}

TEST(Handle, SelfAssignmentLeavesTheCount)
{
    Handle handle = MakeArray1(xxq8u_type, 1);
    Handle& same = handle;
    handle = same;
    EXPECT_EQ(qObject_ShareCount(handle), 1);
    handle = std::move(same);
    EXPECT_EQ(qObject_ShareCount(handle), 1);
}

TEST(Handle, AssignmentReleasesWhatItHeld)
{
    Handle target = MakeArray1(xxq8u_type, 1);
    void* old = target.Get();
    const Handle source = MakeArray1(xxq8u_type, 1);
    target = source;
    EXPECT_FALSE(xqCastClass_ObjectIsValid(old));
    EXPECT_EQ(qObject_ShareCount(source), 2);
}

TEST(Handle, FillingASlotTwiceLeaksNothing)
{
    Handle handle;
    ASSERT_EQ(qArray1_Construct(handle.Slot(), xxq8u_type, 1, nullptr), STATUS_OK);
    void* first = handle.Get();
    qObject_Share(first);
    ASSERT_EQ(qArray1_Construct(handle.Slot(), xxq8u_type, 1, nullptr), STATUS_OK);
    EXPECT_EQ(qObject_ShareCount(first), 1);
    xqObject_DestroyImpl(first, 1);
}

TEST(Handle, CopyOfADeadHandleThrows)
{
    Handle dead(DeadHandle());
    EXPECT_THROW(Handle{dead}, Zo::Exception);
    Handle target = MakeArray1(xxq8u_type, 1);
    EXPECT_THROW(target = dead, Zo::Exception);
    EXPECT_EQ(qObject_ShareCount(target), 1);
    dead.Detach();
}

TEST(Handle, DestructionOfADeadHandleIsQuiet)
{
    EXPECT_NO_THROW({ const Handle dead(DeadHandle()); });
}

} // namespace
