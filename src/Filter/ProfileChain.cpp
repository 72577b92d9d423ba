#include "Filter/ProfileChain.h"

#include "Common/Check.h"

#include <cstdlib>

namespace Zvl
{

bool ProfileFilter::Impl::CheckConditions(std::size_t window, bool requireOdd, bool mayClone)
{
    constexpr const char* kFunction = "Zvl::ProfileFilter::Impl::CheckConditions";
    ZVL_REQUIRE(kFunction, !requireOdd || window % 2 != 0);
    SetOverlapAside();
    if (window < 2)
    {
        if (filtered == 0 && in != out)
        {
            ZVL_CHECK(kFunction, qMemCopy(out, in, size * sizeof(short)));
        }
        return false;
    }
    if (mayClone && filtered != 0)
    {
        CloneAndUpdateInProfile(false);
    }
    else if (mayClone && OutputMeetsWindow(window))
    {
        CloneAndUpdateInProfile(true);
    }
    return true;
}

/** True when cells that are written may still be read: the output begins inside the input, or less than half a window
 *  before it. Half windows count in 32 bits, which differs only for windows beyond any line. */
bool ProfileFilter::Impl::OutputMeetsWindow(std::size_t window) const
{
    const std::uint32_t half = static_cast<std::uint32_t>(window / 2) + 1U;
    const std::ptrdiff_t distance = CellDistance(in, out);
    return distance >= 0 ? static_cast<std::size_t>(distance) < size : -distance < static_cast<std::int64_t>(half);
}

void ProfileFilter::Impl::CloneAndUpdateInProfile(bool fromInput)
{
    constexpr const char* kFunction = "Zvl::ProfileFilter::Impl::CloneAndUpdateInProfile";
    if (inClone.Get() == nullptr)
    {
        ZVL_CHECK(kFunction, qArray1_Construct(inClone.Slot(), xxq16s_type, size, alloc));
    }
    else if (fromInput && in == qArray1_Data(inClone))
    {
        return; // an operation failed after this step: the copy stands
    }
    else
    {
        ZVL_CHECK(kFunction, qArray1_Allocate(inClone, xxq16s_type, size));
    }
    auto* cells = static_cast<short*>(qArray1_Data(inClone));
    ZVL_CHECK(kFunction, qMemCopy(cells, fromInput ? in : out, size * sizeof(short)));
    in = cells;
}

void ProfileFilter::Impl::SetOverlapAside()
{
    const std::ptrdiff_t distance = CellDistance(in, out);
    if (filtered == 0 && distance != 0 && static_cast<std::size_t>(std::abs(distance)) < size)
    {
        CloneAndUpdateInProfile(true);
    }
}

void ProfileFilter::Impl::ReadLastResult()
{
    if (filtered != 0)
    {
        in = out;
    }
}

void ProfileFilter::Impl::Finish(int keepNulls)
{
    if (keepNulls != 0)
    {
        for (std::size_t i = 0; i < size; ++i)
        {
            out[i] = in[i] == kMissingHeight ? kMissingHeight : out[i];
        }
    }
    filtered = 1;
}

} // namespace Zvl
