#pragma once

/** @file
 *  What stands between the platform's statuses and C++: the exception and the counted handle. */

#include <ZdkVisionLib/platform/qApi.h>

#include <exception>
#include <memory>
#include <string>

/** The platform's exception and its counted handle. */
namespace Zo
{

/** The one exception of the library: where a call failed, with which status. Copies share their texts, so that
 *  copying never throws. */
class ZDK_PLATFORM_EXPORT Exception : public std::exception
{
public:
    /** @param line source line of the check
     *  @param file source path; null counts as empty
     *  @param status the failing status
     *  @param function qualified function name, such as "Zvl::RefFrame::SetFrame"; null counts as empty
     *  @param format printf-style message, or null for none */
    Exception(int line, const char* file, int status, const char* function, const char* format, ...)
        __attribute__((format(printf, 6, 7)));

    /** An exception that knows only its status and a message. */
    Exception(int status, const std::string& message);

    Exception(const Exception&) noexcept = default;            ///< shares the texts
    Exception& operator=(const Exception&) noexcept = default; ///< shares the texts
    ~Exception() override;

    int GetLine() const noexcept;             ///< source line of the check; 0 when it is not known
    const char* GetFile() const noexcept;     ///< source path, relative to the project; may be empty
    int GetStatus() const noexcept;           ///< the failing status
    const char* GetFunction() const noexcept; ///< qualified name of the function that failed; may be empty
    const char* GetMessage() const noexcept;  ///< what was told beyond that; as a rule empty

    /** One line for a person: what failed, why, and where. */
    const char* what() const noexcept override;

private:
    struct Details;

    int line = 0;
    int status = 0;
    std::shared_ptr<const Details> details; ///< the texts; null when there was no memory for them
};

/** Does nothing for #STATUS_OK and throws an Exception bearing @p status for anything else. */
ZDK_PLATFORM_EXPORT void Test(int status);

/** Handle over a platform object; only `Object<void*>` exists. */
template <typename Handle>
class Object;

/** Handle over a platform object, one pointer wide: owns exactly one count of what it holds, or holds null.
 *  Copies may be made on any thread; one handle object belongs to one thread at a time. */
template <>
class Object<void*>
{
public:
    Object() noexcept = default; ///< holds null

    /** Takes over the caller's count of @p raw. */
    Object(void* raw) noexcept : handle(raw) {}

    /** Adds a count. Throws when @p other holds an object that is no longer alive. */
    Object(const Object& other) : handle(other.handle)
    {
        if (handle != nullptr)
        {
            ShareOrDrop();
        }
    }

    /** Takes the count of @p other, which then holds null. */
    Object(Object&& other) noexcept : handle(other.handle) { other.handle = nullptr; }

    /** Adds a count of what @p other holds, then releases what this handle held. */
    Object& operator=(const Object& other)
    {
        // The share comes first, so that self-assignment never drops the last count.
        Object shared(other);
        void* old = handle;
        handle = shared.handle;
        shared.handle = nullptr;
        Test(GiveUp(old, 1));
        return *this;
    }

    /** Releases what this handle held, then takes the count of @p other. When the release fails, both keep what they
     *  held. */
    // Releasing what it held may report a failure.
    // NOLINTNEXTLINE(performance-noexcept-move-constructor,bugprone-exception-escape)
    Object& operator=(Object&& other)
    {
        if (this != &other)
        {
            Test(GiveUp(handle, 1));
            handle = other.handle;
            other.handle = nullptr;
        }
        return *this;
    }

    ~Object() { Release(); }

    /** Releases what the handle holds and takes over the caller's count of @p raw. When the release fails, the handle
     *  keeps what it held, and the caller that count. */
    void Reset(void* raw = nullptr)
    {
        Test(GiveUp(handle, 0));
        handle = raw;
    }

    /** The raw handle; no count changes. */
    void* Get() const noexcept { return handle; }
    operator void*() const noexcept { return handle; } ///< the raw handle; no count changes

    /** Address of the slot, for a construct call to fill. What the handle holds is released first: when a check
     *  makes a construct call twice, the object of the first call must not leak. */
    void** Slot()
    {
        Reset();
        return &handle;
    }

    /** Gives the count that the handle owns to the caller, and holds null from then on. */
    void* Detach() noexcept
    {
        void* raw = handle;
        handle = nullptr;
        return raw;
    }

private:
    /** Gives up one count of @p raw; null needs no call into the platform. */
    static qStatus GiveUp(void* raw, int form) { return raw == nullptr ? STATUS_OK : xqObject_DestroyImpl(raw, form); }

    void ShareOrDrop()
    {
        const qStatus status = qObject_Share(handle);
        if (status != STATUS_OK)
        {
            handle = nullptr;
            Test(status);
        }
    }

    void Release() noexcept
    {
        try
        {
            GiveUp(handle, 1);
        }
        catch (...) // a destructor has nobody to report to
        {
        }
        handle = nullptr;
    }

    void* handle = nullptr;
};

} // namespace Zo
