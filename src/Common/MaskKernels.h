#pragma once

/** @file
 *  The inner loops over mask cells, in the widest vectors that the processor offers. */

#include <cstddef>
#include <cstdint>

namespace Zvl
{

/** Stores 1 in each of @p count cells of @p out whose height is not missing, else 0. */
void MarkHeights(const std::int16_t* heights, std::uint8_t* out, std::size_t count);

/** Stores 1 in each of @p count cells of @p out whose height is not missing and whose intensity lies from @p minimum to
 *  @p maximum, both included, else 0. */
void MarkIntensities(const std::int16_t* heights, const std::uint8_t* intensities, std::uint8_t minimum,
                     std::uint8_t maximum, std::uint8_t* out, std::size_t count);

/** Stores 1 in each of @p count cells of @p target that is not 0 there or in @p source, else 0. */
void MergeCells(const std::uint8_t* source, std::uint8_t* target, std::size_t count);

/** Copies each of @p count heights whose mask cell is not 0, and stores the missing height for the others. */
void CopySelected(const std::int16_t* heights, const std::uint8_t* mask, std::int16_t* out, std::size_t count);

/** Copies each of @p count intensities whose mask cell is not 0, and stores 0 for the others. */
void CopySelected(const std::uint8_t* intensities, const std::uint8_t* mask, std::uint8_t* out, std::size_t count);

/** Stores `a AND b`, bitwise, in each of @p count bytes of @p out, which may be @p a or @p b. */
void AndBytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count);

/** Stores `a OR b`, bitwise, in each of @p count bytes of @p out, which may be @p a or @p b. */
void OrBytes(const std::uint8_t* a, const std::uint8_t* b, std::uint8_t* out, std::size_t count);

} // namespace Zvl
