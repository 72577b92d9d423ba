#pragma once

/** @file
 *  Surfaces and profiles as arguments, and the frame that a region takes from them. */

#include "Arrays.h"
#include "Records.h"

#include <cstdint>

namespace ZdkPython
{

/** The size in cells and the mapping of the surfaces that a region is for; null without them. */
struct Frame
{
    std::uint64_t width = 0;
    std::uint64_t height = 0;
    qPoint64f scale = {Zvl::GetNull<double>(), Zvl::GetNull<double>()};
    qPoint64f offset = {Zvl::GetNull<double>(), Zvl::GetNull<double>()};
};

/** The number of items and the mapping of the profiles that a region is for. */
struct ProfileFrame
{
    std::uint64_t width = 0;
    qPoint64f scale = {Zvl::GetNull<double>(), Zvl::GetNull<double>()};
    qPoint64f offset = {Zvl::GetNull<double>(), Zvl::GetNull<double>()};
};

Frame FrameOf(const Zvl::Surface& surface);
ProfileFrame FrameOf(const Zvl::Profile& profile);

template <>
struct RecordTraits<Frame>
{
    static constexpr const char* kName = "Frame";
    static constexpr auto kFields = std::make_tuple(&Frame::width, &Frame::height, &Frame::scale, &Frame::offset);
};

template <>
struct RecordTraits<ProfileFrame>
{
    static constexpr const char* kName = "ProfileFrame";
    static constexpr auto kFields = std::make_tuple(&ProfileFrame::width, &ProfileFrame::scale, &ProfileFrame::offset);
};

/** A frame is read from its record, or from the @p Data that it belongs to. */
template <typename FrameType, typename Data>
struct FrameCaster : RecordCaster<FrameType>
{
    bool load(py::handle source, bool convert)
    {
        if (py::isinstance<Data>(source))
        {
            static_cast<FrameType&>(*this) = FrameOf(py::cast<const Data&>(source));
            return true;
        }
        return RecordCaster<FrameType>::load(source, convert);
    }
};

} // namespace ZdkPython

template <>
struct pybind11::detail::type_caster<ZdkPython::Frame> : ZdkPython::FrameCaster<ZdkPython::Frame, Zvl::Surface>
{
    static constexpr auto name = const_name("Frame");
};

template <>
struct pybind11::detail::type_caster<ZdkPython::ProfileFrame>
    : ZdkPython::FrameCaster<ZdkPython::ProfileFrame, Zvl::Profile>
{
    static constexpr auto name = const_name("ProfileFrame");
};
