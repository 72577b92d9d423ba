#pragma once

/** @file
 *  The sums behind a least-squares polynomial. */

#include <ZdkVisionLib/platform/qApi.h>

#include <cstddef>
#include <span>
#include <vector>

namespace Zvl
{

/** Sums over points of the powers of x, each the one before it times x, and of y times these. Each point is added to the
 *  sums of those before it. */
class PowerSums
{
public:
    /** @throws std::bad_alloc or std::length_error when there is no memory */
    explicit PowerSums(std::size_t degree);

    template <typename Point>
    void Add(std::span<const Point> points);

    /** Of the powers 0 to twice the degree. */
    std::span<const double> OfPowers() const { return {sums.data(), powers}; }

    /** Of y times the powers 0 to @p degree. */
    std::span<const double> OfProducts() const { return {sums.data() + powers, products}; }

private:
    std::size_t powers;
    std::size_t products;
    std::vector<double> sums; ///< those of powers, those of products, and zeros up to a whole number of vectors
};

} // namespace Zvl
