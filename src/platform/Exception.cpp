#include <ZdkVisionLib/platform/ZoApi.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <utility>

namespace Zo
{

namespace
{

const char* StatusName(int status) noexcept
{
    switch (status)
    {
    case STATUS_OK:
        return "success on repetition";
    case STATUS_BAD_PARAMETER:
        return "bad parameter";
    case STATUS_NOT_SUPPORTED:
        return "not supported";
    case STATUS_OUT_OF_MEMORY:
        return "out of memory";
    case STATUS_ABORTED:
        return "aborted";
    case STATUS_BAD_DATA:
        return "bad data";
    case STATUS_MISMATCH:
        return "type mismatch";
    case STATUS_END_OF_STREAM:
        return "end of stream";
    default:
        return "status";
    }
}

std::string OrEmpty(const char* text)
{
    return text == nullptr ? std::string() : std::string(text);
}

} // namespace

struct Exception::Details
{
    Details(int line, const char* sourceFile, int status, const char* functionName, std::string text)
        : file(OrEmpty(sourceFile)), function(OrEmpty(functionName)), message(std::move(text))
    {
        what = (function.empty() ? "Platform operation" : function) + " failed: " + StatusName(status) + " (" +
               std::to_string(status) + ")";
        if (!message.empty())
        {
            what += ": " + message;
        }
        if (!file.empty())
        {
            what += " [" + file + ":" + std::to_string(line) + "]";
        }
    }

    std::string file;
    std::string function;
    std::string message;
    std::string what;
};

// An exception that reports exhausted memory must survive exhausted memory: it then goes without its texts.
Exception::Exception(int sourceLine, const char* file, int statusCode, const char* function, const char* format, ...)
    : line(sourceLine), status(statusCode)
{
    std::va_list measured;
    std::va_list written;
    va_start(measured, format);
    va_start(written, format);
    try
    {
        // The analyser does not follow va_start in constructors.
        // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
        const int length = format == nullptr ? 0 : std::vsnprintf(nullptr, 0, format, measured);
        std::string message(static_cast<std::size_t>(std::max(length, 0)), '\0');
        if (!message.empty())
        {
            // NOLINTNEXTLINE(clang-analyzer-valist.Uninitialized)
            static_cast<void>(std::vsnprintf(message.data(), message.size() + 1, format, written));
        }
        details = std::make_shared<const Details>(line, file, status, function, std::move(message));
    }
    catch (...)
    {
        details.reset();
    }
    va_end(written);
    va_end(measured);
}

Exception::Exception(int statusCode, const std::string& message) : status(statusCode)
{
    try
    {
        details = std::make_shared<const Details>(0, nullptr, status, nullptr, message);
    }
    catch (...)
    {
        details.reset();
    }
}

Exception::~Exception() = default;

int Exception::GetLine() const noexcept
{
    return line;
}

const char* Exception::GetFile() const noexcept
{
    return details ? details->file.c_str() : "";
}

int Exception::GetStatus() const noexcept
{
    return status;
}

const char* Exception::GetFunction() const noexcept
{
    return details ? details->function.c_str() : "";
}

const char* Exception::GetMessage() const noexcept
{
    return details ? details->message.c_str() : "";
}

const char* Exception::what() const noexcept
{
    return details ? details->what.c_str() : StatusName(status);
}

void Test(int status)
{
    if (status != STATUS_OK)
    {
        throw Exception(0, nullptr, status, nullptr, nullptr);
    }
}

} // namespace Zo
