#include "Fitting/PowerSums.h"

#include <algorithm>
#include <limits>
#include <new>

#undef HWY_TARGET_INCLUDE
#define HWY_TARGET_INCLUDE "Fitting/PowerSums.cpp"
#include <hwy/foreach_target.h>
#include <hwy/highway.h>

HWY_BEFORE_NAMESPACE();
namespace Zvl
{
namespace HWY_NAMESPACE
{

#if HWY_MAX_BYTES >= 32 && !HWY_HAVE_SCALABLE

namespace hn = hwy::HWY_NAMESPACE;

using Reals = hn::FixedTag<double, 4>;
using Vector = hn::Vec<Reals>;

constexpr std::size_t kLanes = 4;
constexpr std::size_t kVectors = 4; // of points at once, so that the sums need not be loaded for each
constexpr std::size_t kMostTerms = 32;

/** Adds four terms of four points, a vector for each term, to the sums of the terms, point by point. */
HWY_INLINE Vector AddByPoint(const Vector& sums, const Vector (&terms)[kMostTerms], std::size_t first)
{
    const Reals d;
    const auto even01 = hn::InterleaveLower(d, terms[first], terms[first + 1]);
    const auto odd01 = hn::InterleaveUpper(d, terms[first], terms[first + 1]);
    const auto even23 = hn::InterleaveLower(d, terms[first + 2], terms[first + 3]);
    const auto odd23 = hn::InterleaveUpper(d, terms[first + 2], terms[first + 3]);
    auto sum = hn::Add(sums, hn::ConcatLowerLower(d, even23, even01));
    sum = hn::Add(sum, hn::ConcatLowerLower(d, odd23, odd01));
    sum = hn::Add(sum, hn::ConcatUpperUpper(d, even23, even01));
    return hn::Add(sum, hn::ConcatUpperUpper(d, odd23, odd01));
}

/** The sums of a point wait for those of the point before, but each term for itself: four of them are added at once.
 *  @param degree of the polynomial: terms are the powers of x from 1 to twice as much, and the products
 *  @return the number of points that were added, the first ones */
std::size_t AddWholeVectors(const double* x, const double* y, std::size_t count, std::size_t degree, double* sums)
{
    constexpr std::size_t kPoints = kVectors * kLanes;
    const Reals d;
    const std::size_t powers = 2 * degree;
    const std::size_t used = powers + degree + 1;
    if (used > kMostTerms)
    {
        return 0;
    }
    const std::size_t whole = count / kPoints * kPoints;
    Vector totals[kMostTerms / kLanes];
    for (std::size_t first = 0; first < used; first += kLanes)
    {
        totals[first / kLanes] = hn::LoadU(d, sums + first);
    }
    Vector terms[kVectors][kMostTerms];
    for (auto& vector : terms)
    {
        std::fill(vector + used, vector + (used + kLanes - 1) / kLanes * kLanes, hn::Zero(d)); // the rest of a vector
    }
    for (std::size_t begin = 0; begin < whole; begin += kPoints)
    {
        for (std::size_t i = 0; i < kVectors; ++i)
        {
            const auto pointX = hn::LoadU(d, x + begin + i * kLanes);
            const auto pointY = hn::LoadU(d, y + begin + i * kLanes);
            auto power = pointX;
            for (std::size_t j = 0; j < powers; ++j)
            {
                terms[i][j] = power;
                power = hn::Mul(power, pointX);
            }
            terms[i][powers] = pointY;
            for (std::size_t j = 0; j < degree; ++j)
            {
                terms[i][powers + 1 + j] = hn::Mul(pointY, terms[i][j]);
            }
        }
        for (std::size_t first = 0; first < used; first += kLanes)
        {
            Vector total = totals[first / kLanes];
            for (const auto& vector : terms)
            {
                total = AddByPoint(total, vector, first);
            }
            totals[first / kLanes] = total;
        }
    }
    for (std::size_t first = 0; first < used; first += kLanes)
    {
        hn::StoreU(totals[first / kLanes], d, sums + first);
    }
    return whole;
}

#else

std::size_t AddWholeVectors(const double* /*x*/, const double* /*y*/, std::size_t /*count*/, std::size_t /*degree*/,
                            double* /*sums*/)
{
    return 0; // with two lanes or fewer, moving terms costs what is gained
}

#endif

} // namespace HWY_NAMESPACE
} // namespace Zvl
HWY_AFTER_NAMESPACE();

#if HWY_ONCE
namespace Zvl
{

HWY_EXPORT(AddWholeVectors);

namespace
{

constexpr std::size_t kAtOnce = 256;
constexpr std::size_t kMostLanes = 4;

void AddPoint(double x, double y, std::span<double> ofPowers, std::span<double> ofProducts)
{
    double power = 1.0;
    for (double& sum : ofProducts)
    {
        sum += y * power;
        power *= x;
    }
    power = 1.0;
    for (double& sum : ofPowers)
    {
        sum += power;
        power *= x;
    }
}

/** @throws std::bad_alloc when no memory can hold the sums */
std::size_t Usable(std::size_t degree)
{
    if (degree > std::numeric_limits<std::size_t>::max() / 64)
    {
        throw std::bad_alloc();
    }
    return degree;
}

} // namespace

PowerSums::PowerSums(std::size_t degree)
    : powers(2 * Usable(degree) + 1), products(degree + 1), sums(powers + products + kMostLanes - 1)
{
}

template <typename Point>
void PowerSums::Add(std::span<const Point> points)
{
    const std::span<double> ofPowers(sums.data(), powers);
    const std::span<double> ofProducts(sums.data() + powers, products);
    const std::size_t degree = products - 1;
    double x[kAtOnce];
    double y[kAtOnce];
    for (std::span<const Point> rest = points; !rest.empty(); rest = rest.subspan(std::min(kAtOnce, rest.size())))
    {
        const std::size_t count = std::min(kAtOnce, rest.size());
        for (std::size_t i = 0; i < count; ++i)
        {
            x[i] = static_cast<double>(rest[i].x);
            y[i] = static_cast<double>(rest[i].y);
        }
        const std::size_t added = HWY_DYNAMIC_DISPATCH(AddWholeVectors)(x, y, count, degree, &sums[1]);
        sums[0] += static_cast<double>(added); // as exact as ones that are added one by one
        for (std::size_t i = added; i < count; ++i)
        {
            AddPoint(x[i], y[i], ofPowers, ofProducts);
        }
    }
}

template void PowerSums::Add<qPoint32f>(std::span<const qPoint32f> points);
template void PowerSums::Add<qPoint64f>(std::span<const qPoint64f> points);

} // namespace Zvl
#endif
