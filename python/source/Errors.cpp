#include "Module.h"

#include <ZdkVisionLib/platform/ZoApi.h>

#include <opencv2/core.hpp>

#include <exception>
#include <utility>

namespace ZdkPython
{

namespace py = pybind11;

namespace
{

/** Raises @p failure as the exception of the module that stands for its status. */
void Raise(const Zo::Exception& failure)
{
    const bool memory = failure.GetStatus() == STATUS_OUT_OF_MEMORY;
    const py::object type = py::module_::import("zdkvision._errors").attr(memory ? "OutOfMemoryError" : "Error");
    const py::object error = type(failure.what(), failure.GetStatus(), failure.GetFunction(), failure.GetFile(),
                                  failure.GetLine(), failure.GetMessage());
    PyErr_SetObject(type.ptr(), error.ptr());
}

/** Images of an unfit size or type are unfit values; OpenCV tells of exhausted memory in the same way. */
void Raise(const cv::Exception& failure)
{
    PyErr_SetString(failure.code == cv::Error::StsNoMem ? PyExc_MemoryError : PyExc_ValueError,
                    (failure.func + ": " + failure.err).c_str());
}

} // namespace

void AddErrors(py::module_& /*module*/)
{
    py::register_exception_translator(
        [](std::exception_ptr failure)
        {
            try
            {
                std::rethrow_exception(std::move(failure));
            }
            catch (const Zo::Exception& exception)
            {
                Raise(exception);
            }
            catch (const cv::Exception& exception)
            {
                Raise(exception);
            }
        });
}

} // namespace ZdkPython
