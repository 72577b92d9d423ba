#pragma once

/** @file
 *  Which points a line fit takes out, and in which order. */

#include "Fitting/LineSums.h"

#include <optional>
#include <vector>

namespace Zvl
{

/** Rejects points one by one, each the farthest from the line through those that are left, the lowest index among
 *  equals.
 *
 *  The definition costs a pass over all points for the line and one more for the distances. Most rejections go
 *  without: sums from which a point was taken out again give the line up to rounding, and a line that moves little
 *  moves no distance by much, so that the few largest distances of an earlier pass hold the largest one still. The
 *  outcome is taken only when it is certain, that is, when the largest distance leads by more than rounding and
 *  motion can amount to. Otherwise the definition decides, so that all rejections are its own. */
class LineRejection
{
public:
    /** @param excluded a flag for each point, all 0; those of rejected points become 1. Both arrays must outlive
     *  it. */
    LineRejection(const qPoint64f* inputPoints, int* excluded, std::size_t inputCount);

    /** Rejects one point. @return false, with nothing rejected, when the points have no line or no distance from it
     *  is a number */
    bool RejectFarthest();

private:
    using Indices = std::vector<std::size_t>;

    /** The line of the updated sums, and how much farther than that a point may lie from the line of fresh ones,
     *  as a multiple of the length of (slope, -1). */
    struct UpdatedLine
    {
        Line line;
        double error;
    };

    /** The candidate farthest from a line, and how far it and the next one are. */
    struct Lead
    {
        Indices::iterator candidate;
        double largest;
        double second;
    };

    void FormSums();
    void Reject(std::size_t index);
    UpdatedLine SolveUpdated() const;
    std::optional<std::size_t> FarthestByDefinition();
    std::optional<std::size_t> FarthestWhenCertain();
    std::optional<Indices::iterator> CertainCandidate();
    Lead LeadingCandidate(const Line& line);
    double OutsideCandidates(const Line& line) const;
    void Gather(const Line& line);

    const qPoint64f* points;
    int* flags;
    std::size_t count;
    std::size_t left; ///< points that are not rejected

    LineSums formed; ///< the sums as last formed afresh
    LineSums sums;   ///< the same without the points rejected since
    double largestX = 0.0;
    double largestY = 0.0;

    Indices candidates;       ///< points with the largest distances from @ref gatheredAt
    Line gatheredAt;          ///< the line when the candidates were gathered
    double outsideThen = 0.0; ///< no other point was farther than this

    std::size_t passesByDefinition = 0;     ///< passes to come in which certainty is not asked for
    std::size_t nextPassesByDefinition = 1; ///< their number after the next one that is not certain
};

} // namespace Zvl
