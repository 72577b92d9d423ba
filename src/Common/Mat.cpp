#include <ZdkVisionLib/Common/Mat.h>

#include "Common/Rounding.h"

#include <algorithm>
#include <utility>

namespace Zvl
{

namespace
{

/** A deep copy of @p cells, or null when there are none or no memory for it. */
Zo::Object<void*> CopyOf(qArray2 cells)
{
    Zo::Object<void*> copy;
    if (cells == nullptr || qArray2_Construct(copy.Slot(), xxq16u_type, 1, 1, nullptr) != STATUS_OK ||
        xqArray2_Assign(copy, cells, 0) != STATUS_OK)
    {
        return {};
    }
    return copy;
}

} // namespace

zvlMat::zvlMat() : scale{0.0, 0.0, 0.0}, offset{0.0, 0.0, 0.0}, state(0) {}

zvlMat::zvlMat(const zvlMat& other)
    : cells(CopyOf(other.cells)), scale(other.scale), offset(other.offset), state(other.state)
{
}

zvlMat& zvlMat::operator=(zvlMat other)
{
    cells = std::move(other.cells);
    scale = other.scale;
    offset = other.offset;
    state = other.state;
    return *this;
}

cv::Mat zvlMat::GetMat() const
{
    return GetMat(GetSize());
}

cv::Mat zvlMat::GetMat(cv::Size size) const
{
    const cv::Size whole = GetSize();
    if (cells.Get() == nullptr || size.width < 0 || size.height < 0 || size.width > whole.width ||
        size.height > whole.height)
    {
        return {};
    }
    if (size.empty())
    {
        return {size, CV_16U}; // nothing to look at, but it has a shape
    }
    const std::size_t step = static_cast<std::size_t>(whole.width) * sizeof(std::uint16_t);
    return {size, CV_16U, qArray2_At(cells, 0, 0), step};
}

cv::Mat zvlMat::GetDestinationMat(cv::Size size)
{
    if (cells.Get() != nullptr && GetSize() != size)
    {
        cells.Reset();
    }
    if (cells.Get() == nullptr && size.width >= 0 && size.height >= 0)
    {
        // A construct that fails leaves the slot null.
        qArray2_Construct(cells.Slot(), xxq16u_type, static_cast<std::size_t>(size.height),
                          static_cast<std::size_t>(size.width), nullptr);
    }
    return GetMat();
}

void zvlMat::SetDestinationParameters(const qPoint3d64f& scale, const qPoint3d64f& offset)
{
    this->scale = scale;
    this->offset = offset;
}

void zvlMat::SetDestinationParameters(const zvlMat& other)
{
    SetDestinationParameters(other.scale, other.offset);
}

cv::Size zvlMat::GetSize() const
{
    if (cells.Get() == nullptr)
    {
        return {0, 0};
    }
    return {ClampToInt(qArray2_Length(cells, 1)), ClampToInt(qArray2_Length(cells, 0))};
}

cv::Size zvlMat::GetSmallestSize(const zvlMat& a, const zvlMat& b)
{
    const cv::Size sizeOfA = a.GetSize();
    const cv::Size sizeOfB = b.GetSize();
    return {std::min(sizeOfA.width, sizeOfB.width), std::min(sizeOfA.height, sizeOfB.height)};
}

void* zvlMat::GetqArray2Ofq16s() const
{
    Zo::Object<void*> heights;
    if (cells.Get() == nullptr || qArray2_Construct(heights.Slot(), xxq16s_type, qArray2_Length(cells, 0),
                                                    qArray2_Length(cells, 1), nullptr) != STATUS_OK)
    {
        return nullptr;
    }
    const cv::Mat source = GetMat();
    for (int row = 0; row < source.rows && source.cols > 0; ++row)
    {
        const auto* cell = source.ptr<std::uint16_t>(row);
        auto* height = static_cast<std::int16_t*>(qArray2_At(heights, static_cast<std::size_t>(row), 0));
        std::transform(cell, cell + source.cols, height,
                       [](std::uint16_t value) { return static_cast<std::int16_t>(value - 32768); });
    }
    return heights.Detach();
}

} // namespace Zvl
