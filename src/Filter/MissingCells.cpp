#include "Filter/MissingCells.h"

#include <ZdkVisionLib/Common/Common.h>

#include <limits>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Filter/MissingCells.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

namespace hn = hwy::HWY_NAMESPACE;

/** The marks of up to 64 cells, one by one. */
std::uint64_t WordOfSome(const std::int16_t* cells, std::size_t count)
{
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < count; ++i)
    {
        word |= static_cast<std::uint64_t>(cells[i] == GetNull<short>()) << i;
    }
    return word;
}

/** The marks of 64 cells. */
HWY_INLINE std::uint64_t WordOfAll(const std::int16_t* cells)
{
    const hn::CappedTag<std::int16_t, kWordCells> wide;
    const std::size_t lanes = hn::Lanes(wide);
    if (lanes < 8) // less than a byte of marks
    {
        return WordOfSome(cells, kWordCells);
    }
    const auto missing = hn::Set(wide, GetNull<short>());
    auto lowest = hn::Set(wide, std::numeric_limits<std::int16_t>::max());
    for (std::size_t i = 0; i < kWordCells; i += lanes)
    {
        lowest = hn::Min(lowest, hn::LoadU(wide, cells + i)); // no height is below a missing one
    }
    if (hn::AllFalse(wide, hn::Eq(lowest, missing)))
    {
        return 0;
    }
    std::uint8_t bytes[8 + 8]; // a vector's marks may be written as eight bytes, however few they are
    for (std::size_t i = 0; i < kWordCells; i += lanes)
    {
        hn::StoreMaskBits(wide, hn::Eq(hn::LoadU(wide, cells + i), missing), bytes + i / 8);
    }
    std::uint64_t word = 0;
    for (std::size_t i = 0; i < 8; ++i)
    {
        word |= static_cast<std::uint64_t>(bytes[i]) << (8 * i);
    }
    return word;
}

void MarkMissingIn(const std::int16_t* cells, std::size_t count, std::uint64_t* words)
{
    for (; count >= kWordCells; count -= kWordCells)
    {
        *words++ = WordOfAll(cells);
        cells += kWordCells;
    }
    if (count > 0)
    {
        *words = WordOfSome(cells, count);
    }
}

/** One vector's copy at a time, four of them together so that looking costs nothing beside the copying. */
bool CopyAndLookIn(const std::int16_t* in, std::int16_t* out, std::size_t count)
{
    // At most 32 bytes: copying waits for memory, and wider stores are no faster, on some processors slower.
    const hn::CappedTag<std::int16_t, 16> wide;
    const std::size_t lanes = hn::Lanes(wide);
    auto lowest = hn::Set(wide, std::numeric_limits<std::int16_t>::max());
    std::size_t i = 0;
    for (; i + 4 * lanes <= count; i += 4 * lanes)
    {
        const auto first = hn::LoadU(wide, in + i);
        const auto second = hn::LoadU(wide, in + i + lanes);
        const auto third = hn::LoadU(wide, in + i + 2 * lanes);
        const auto fourth = hn::LoadU(wide, in + i + 3 * lanes);
        hn::StoreU(first, wide, out + i);
        hn::StoreU(second, wide, out + i + lanes);
        hn::StoreU(third, wide, out + i + 2 * lanes);
        hn::StoreU(fourth, wide, out + i + 3 * lanes);
        lowest = hn::Min(lowest, hn::Min(hn::Min(first, second), hn::Min(third, fourth)));
    }
    bool found = !hn::AllFalse(wide, hn::Eq(lowest, hn::Set(wide, GetNull<short>())));
    for (; i < count; ++i)
    {
        out[i] = in[i];
        found = found || in[i] == GetNull<short>();
    }
    return found;
}

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(MarkMissingIn);
HWY_EXPORT(CopyAndLookIn);

void MarkMissing(const std::int16_t* cells, std::size_t count, std::uint64_t* words)
{
    HWY_DYNAMIC_DISPATCH(MarkMissingIn)(cells, count, words);
}

bool CopyAndLook(const std::int16_t* in, std::int16_t* out, std::size_t count)
{
    return HWY_DYNAMIC_DISPATCH(CopyAndLookIn)(in, out, count);
}

} // namespace Zvl
#endif
