#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <vector>

namespace Examples
{

/** Equally spaced numbers: `first + index * pitch`. */
struct Lattice
{
    double first;
    double pitch;
    std::size_t count;

    /** The index of the nearest one to @p value, which lies on the lattice. */
    std::size_t IndexOf(double value) const;
};

/** Finds the lattice that numbers lie on, where some of its places may be empty, but not one of every two neighbours, and
 *  numbers may be off by rounding or noise. Coarse lattices are tried before fine ones, and a pitch of few digits is preferred.
 *  @param values at least one number; all finite
 *  @param most of places on the lattice
 *  @param isGood whether values may lie as far from a lattice as @p deviation
 *  @return nothing when there is no such lattice, or all numbers are the same */
std::optional<Lattice> FindLattice(std::vector<double> values, std::size_t most,
                                   const std::function<bool(double pitch, double deviation)>& isGood);

} // namespace Examples
