// The combinations of multipliers that cover the power domains, as implicit lists.
#pragma once

#include <span>
#include <vector>

#include "clocking/run/RunTypes.h"
#include "clocking/search/CombinationList.h"

namespace hbs_clocking {

class SolverRun;

/// What the candidate stage found at one tolerance.
struct StepCandidates {
    MultiplierBitMap bits;                ///< per peripheral outside the NOC domain
    std::vector<unsigned> multipliers;    ///< the union, ascending
    std::vector<unsigned> nocMultipliers; ///< ascending
};

/// Builds the lists of one step of the ladder. The operations that test a domain lock its
/// tolerance when they find something, unless said otherwise. The terms of the run may narrow the
/// multipliers of each PLL.
class CombinationBuilder {
public:
    /// Both must outlive the builder.
    CombinationBuilder(const SolverRun& run, const StepCandidates& candidates)
        : m_run(run), m_candidates(candidates) {}

    /// The multipliers for a PLL that alone cover the domain.
    [[nodiscard]] std::vector<unsigned> filterMultipliersForDomain(unsigned pll,
                                                                   unsigned domainIndex) const;
    /// The multipliers of the NOC PLL.
    [[nodiscard]] std::vector<unsigned> nocMultipliers() const;

    /// `[a, b]` with `a` from the candidates and `b` from the others that cover the domain.
    [[nodiscard]] CombinationList buildPairsForDomain(std::span<const unsigned> others,
                                                      unsigned domainIndex) const;
    /// `[a, b]` without a test.
    [[nodiscard]] static CombinationList buildFreePairs(std::span<const unsigned> firsts,
                                                        std::span<const unsigned> others);
    /// Combinations continued by one candidate, as a whole covering the domain.
    [[nodiscard]] CombinationList extendCombosForDomain(const CombinationList& combos,
                                                        unsigned domainIndex) const;
    /// Pairs of different candidates, in both orders, that cover the domain.
    [[nodiscard]] CombinationList buildOrderedPairsForDomain(unsigned domainIndex) const;
    /// Combinations continued by such a pair, as a whole covering the domain.
    [[nodiscard]] CombinationList extendCombosWithPairsForDomain(const CombinationList& combos,
                                                                 unsigned domainIndex) const;
    /// Pairs of candidates, the smaller first, that cover the domain.
    [[nodiscard]] CombinationList buildUnorderedPairsForDomain(unsigned domainIndex) const;
    /// Combinations continued by every element of the list, without a test.
    [[nodiscard]] static CombinationList appendToCombos(const CombinationList& combos,
                                                        std::span<const unsigned> list);
    /// Combinations continued by every pair, without a test.
    [[nodiscard]] static CombinationList appendPairsToCombos(const CombinationList& combos,
                                                             const CombinationList& pairs);
    /// Combinations continued by pairs, the smaller first, that cover the domain together with what
    /// may cross from places 0 and 2. Doesn't lock the tolerance.
    [[nodiscard]] CombinationList extendCombosWithCrossCheck(const CombinationList& combos,
                                                             unsigned domainIndex) const;

private:
    [[nodiscard]] CombinationList lockIfAny(CombinationList combos, unsigned domainIndex) const;
    /// Both multiplier lists of a domain with two PLLs, as the next stage of a list.
    [[nodiscard]] CombinationStage pairStage(unsigned domainIndex, CombinationStage::Order order,
                                             std::vector<CoverNeed> needs,
                                             std::vector<std::uint8_t> places) const;
    /// Ascending pairs, as the two PLLs of the domain can be swapped; both orders if the terms name
    /// one of them.
    [[nodiscard]] CombinationStage::Order unorderedOf(unsigned domainIndex) const;
    [[nodiscard]] std::vector<std::uint8_t> candidatesOf(unsigned pll) const;

    const SolverRun& m_run;
    const StepCandidates& m_candidates;
};

} // namespace hbs_clocking
