#include "Fitting/LineRejection.h"

#include "Fitting/LineDistance.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <utility>

namespace Zvl
{

namespace
{

constexpr double kEpsilon = std::numeric_limits<double>::epsilon();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

/** Beyond this slope the length of (slope, -1) might swallow what tells two distances apart. */
constexpr double kSteepest = 1e10;

/** Below this, products and quotients may come into the range where digits are lost. */
constexpr double kSmallest = 1e-290;

/** After a pass that was not certain, some are left to the definition, twice as many each time up to this number:
 *  where points lie on a line up to rounding, none is certain, and asking costs more than answering. */
constexpr std::size_t kMostPassesByDefinition = 16;

constexpr std::size_t kLeastCandidates = 64;

/** Distance from the line as a multiple of the length of (slope, -1), which all points have in common. */
double ScaledDistance(const qPoint64f& point, const Line& line)
{
    return std::fabs(line.slope * point.x - point.y + line.intercept);
}

/** A quotient whose numerator and denominator are known up to an error. */
struct Quotient
{
    double value;
    double numeratorError;
    double denominator;
    double denominatorError;

    double Error() const
    {
        const double surely = std::fabs(denominator) - denominatorError;
        return surely > 0.0 ? (numeratorError + std::fabs(value) * denominatorError) / surely : kInfinity;
    }
};

} // namespace

LineRejection::LineRejection(const qPoint64f* inputPoints, int* excluded, std::size_t inputCount)
    : points(inputPoints), flags(excluded), count(inputCount), left(inputCount)
{
    FormSums();
}

bool LineRejection::RejectFarthest()
{
    std::optional<std::size_t> farthest = FarthestWhenCertain();
    if (!farthest)
    {
        farthest = FarthestByDefinition();
    }
    if (farthest)
    {
        Reject(*farthest);
    }
    return farthest.has_value();
}

void LineRejection::Reject(std::size_t index)
{
    flags[index] = 1;
    --left;
    if (IsPresent(points[index]))
    {
        sums.Subtract(points[index]);
    }
}

void LineRejection::FormSums()
{
    formed = SumPoints(points, flags, count);
    sums = formed;
    largestX = 0.0;
    largestY = 0.0;
    for (std::size_t i = 0; i < count; ++i)
    {
        if (flags[i] == 0)
        {
            largestX = std::max(largestX, std::fabs(points[i].x));
            largestY = std::max(largestY, std::fabs(points[i].y));
        }
    }
}

std::optional<std::size_t> LineRejection::FarthestByDefinition()
{
    FormSums();
    const Line line = SolveLine(sums, points, flags, count);
    std::optional<std::size_t> farthest;
    if (line.slope == GetNull<double>())
    {
        return farthest;
    }
    double largest = std::numeric_limits<double>::lowest();
    for (std::size_t i = 0; i < count; ++i)
    {
        if (flags[i] != 0)
        {
            continue;
        }
        const double distance = PointToLineDistance(&points[i], line.slope, line.intercept, nullptr, nullptr);
        if (distance > largest)
        {
            largest = distance;
            farthest = i;
        }
    }
    return farthest;
}

std::optional<std::size_t> LineRejection::FarthestWhenCertain()
{
    if (passesByDefinition > 0)
    {
        --passesByDefinition;
        return std::nullopt;
    }
    const std::optional<Indices::iterator> candidate = CertainCandidate();
    if (!candidate)
    {
        passesByDefinition = nextPassesByDefinition - 1;
        nextPassesByDefinition = std::min(2 * nextPassesByDefinition, kMostPassesByDefinition);
        return std::nullopt;
    }
    nextPassesByDefinition = 1;
    const std::size_t farthest = **candidate;
    **candidate = candidates.back();
    candidates.pop_back();
    return farthest;
}

/** The candidate that is surely the farthest of all points from the line of fresh sums; none when it is not sure. */
std::optional<LineRejection::Indices::iterator> LineRejection::CertainCandidate()
{
    const UpdatedLine updated = SolveUpdated();
    if (!std::isfinite(updated.error))
    {
        return std::nullopt;
    }
    const double margin = 2.0 * updated.error;
    Lead lead = LeadingCandidate(updated.line);
    if (!(lead.largest - OutsideCandidates(updated.line) > margin))
    {
        Gather(updated.line);
        lead = LeadingCandidate(updated.line);
    }
    const bool certain = lead.largest - std::max(lead.second, OutsideCandidates(updated.line)) > margin;
    return certain ? std::optional(lead.candidate) : std::nullopt;
}

/** A sum of n terms is wrong by at most n roundings of the sum of their magnitudes, which the squares bound by the
 *  Cauchy-Schwarz inequality: N. J. Higham, Accuracy and Stability of Numerical Algorithms, 2nd ed., 2002, section
 *  4.2. The bound holds for fresh and for updated sums, and takes in the few roundings of what follows. */
LineRejection::UpdatedLine LineRejection::SolveUpdated() const
{
    const Line line = sums.Solve();
    const double n = formed.N();
    const double share = 12.0 * n * kEpsilon;
    const double dxxError = share * n * formed.sxx;
    const double dyyError = share * n * formed.syy;
    const double nxyError = share * n * std::sqrt(formed.sxx) * std::sqrt(formed.syy);
    const double lead = std::fabs(sums.Dxx()) - std::fabs(sums.Dyy());
    const bool overX = lead > 0.0;

    const bool certain = std::fabs(lead) > dxxError + dyyError && std::fabs(line.slope) <= kSteepest &&
                         std::min(formed.sxx, formed.syy) >= kSmallest;
    if (!certain || sums.count != left)
    {
        return {line, kInfinity};
    }
    const Quotient slope = overX ? Quotient{line.slope, nxyError, sums.Dxx(), dxxError}
                                 : Quotient{line.slope, dyyError, sums.Nxy(), nxyError};
    const double interceptError =
        overX ? share * formed.sxx * std::sqrt(n * formed.syy) : share * formed.syy * std::sqrt(n * formed.sxx);
    const Quotient intercept{line.intercept, interceptError, slope.denominator, slope.denominatorError};
    const double rounding =
        8.0 * kEpsilon * (std::fabs(line.slope) * largestX + largestY + std::fabs(line.intercept)) + kSmallest;
    return {line, slope.Error() * largestX + intercept.Error() + rounding};
}

LineRejection::Lead LineRejection::LeadingCandidate(const Line& line)
{
    // The definition may have rejected candidates.
    candidates.erase(
        std::remove_if(candidates.begin(), candidates.end(), [this](std::size_t index) { return flags[index] != 0; }),
        candidates.end());
    Lead lead{candidates.end(), -kInfinity, -kInfinity};
    for (auto candidate = candidates.begin(); candidate != candidates.end(); ++candidate)
    {
        const double distance = ScaledDistance(points[*candidate], line);
        lead.second = std::max(lead.second, std::min(distance, lead.largest));
        if (distance > lead.largest)
        {
            lead.largest = distance;
            lead.candidate = candidate;
        }
    }
    return lead;
}

/** What no point but the candidates surpasses in distance from @p line. */
double LineRejection::OutsideCandidates(const Line& line) const
{
    return outsideThen + std::fabs(line.slope - gatheredAt.slope) * largestX +
           std::fabs(line.intercept - gatheredAt.intercept);
}

/** Makes candidates of the points farthest from @p line, about as many as make gathering them and looking through
 *  them equally dear. */
void LineRejection::Gather(const Line& line)
{
    std::vector<std::pair<double, std::size_t>> distances;
    distances.reserve(left);
    for (std::size_t i = 0; i < count; ++i)
    {
        if (flags[i] == 0)
        {
            distances.emplace_back(ScaledDistance(points[i], line), i);
        }
    }
    const std::size_t wanted =
        std::max(kLeastCandidates, static_cast<std::size_t>(3.0 * std::sqrt(static_cast<double>(left))));
    outsideThen = -kInfinity;
    if (wanted < distances.size())
    {
        const auto outside = distances.begin() + static_cast<std::ptrdiff_t>(wanted);
        std::nth_element(distances.begin(), outside, distances.end(), std::greater<>());
        outsideThen = outside->first;
        distances.erase(outside, distances.end());
    }
    candidates.resize(distances.size());
    std::transform(distances.begin(), distances.end(), candidates.begin(),
                   [](const std::pair<double, std::size_t>& pair) { return pair.second; });
    gatheredAt = line;
}

} // namespace Zvl
