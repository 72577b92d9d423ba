#pragma once

/** @file
 *  Maps to smooth. */

#include "support/InstructionSets.h"
#include "support/Surfaces.h"

#include <array>
#include <cstdint>
#include <random>
#include <vector>

namespace TestSupport
{

/** Heights, row after row. */
struct HeightMap
{
    std::size_t rows;
    std::size_t columns;
    std::vector<std::int16_t> cells;

    std::int16_t At(std::size_t row, std::size_t column) const { return cells[row * columns + column]; }
};

inline Zo::Object<void*> ArrayOf(const HeightMap& map)
{
    return MakeArray(map.rows, map.columns, map.cells);
}

/** Where heights are missing. */
enum class Holes
{
    None,
    Sprinkled,
    Clustered,
    Everywhere
};

constexpr std::array<Holes, 4> kAllHoles = {Holes::None, Holes::Sprinkled, Holes::Clustered, Holes::Everywhere};

/** Heights from -@p highest to @p highest. */
inline HeightMap RandomHeightMap(std::size_t rows, std::size_t columns, Holes holes, int highest, std::mt19937& random)
{
    HeightMap map = {rows, columns, std::vector<std::int16_t>(rows * columns)};
    std::uniform_int_distribution<int> height(-highest, highest);
    std::bernoulli_distribution sprinkled(0.2);
    std::bernoulli_distribution changes(0.1);
    bool isHole = false;
    for (std::int16_t& cell : map.cells)
    {
        isHole = isHole != changes(random);
        const bool isMissing = holes == Holes::Everywhere || (holes == Holes::Clustered && isHole) ||
                               (holes == Holes::Sprinkled && sprinkled(random));
        cell = isMissing ? kMissing : static_cast<std::int16_t>(height(random));
    }
    return map;
}

} // namespace TestSupport
