// Which multipliers serve all peripherals of a power domain, and the tolerance that a domain keeps.
#pragma once

#include <span>
#include <vector>

#include "clocking/run/RunTypes.h"

namespace hbs_clocking {

class HBSClockingAlgo;

[[nodiscard]] MultiplierBitMap buildMultiplierBits(const CandidateMap& candidates);

/// The multipliers, in their order, that alone cover the domain. Locks its tolerance when there
/// are any.
[[nodiscard]] std::vector<unsigned>
filterMultipliersForDomain(const HBSClockingAlgo& tree, std::span<const unsigned> multipliers,
                           const MultiplierBitMap& multiplierBits, unsigned domainIndex);

/// Lowers the domain's error limit to the present tolerance. Called whenever combinations were
/// found for a domain: it keeps that step's tolerance while other domains go on loosening.
void lockTolerance(const HBSClockingAlgo& tree, unsigned domainIndex);

} // namespace hbs_clocking
