// The base of the clock tree solvers: the tree, the order of a run, and all that the solvers of 1,
// 2, 4 and 6 PLLs share.
#pragma once

#include <array>
#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "HATAttrObj.h"
#include "clocking/ClockSearchTypes.h"
#include "clocking/HBSPeripheral.h"
#include "clocking/HBSPll.h"
#include "clocking/HBSPowerDomain.h"
#include "clocking/SearchTerms.h"
#include "tq_export.h"

namespace hbs_clocking {

// Of the searches of four and six PLLs (clocking/search).
class CombinationList;
class SavedResults;
struct ComboResult;
struct DividerRange;
struct RunTerms;
struct SearchProblem;
class SettingList;
struct StepCandidates;
struct TreeShape;
struct Tuple;
using Combination = std::array<std::uint8_t, 6>;
using ClkoutDivCombos = std::array<DividerRange, 6>;

/// How the last search of a tree of four or six PLLs went, at the step that ended it.
struct SearchStatistics {
    /// Combinations of multipliers; each has up to 15,552 settings of the dividers.
    std::uint64_t combinations = 0;
    /// Settings of all multipliers and dividers whose sum of errors was computed, counted at each
    /// look. The rest was proven to be worse.
    std::uint64_t evaluatedTuples = 0;
};

/// Given one reference clock, PLLs in power domains and peripherals that each ask for a frequency,
/// finds multipliers and dividers so that every enabled peripheral is within tolerance and the sum
/// of relative errors is smallest.
///
///     HBSClockingAlgo1Pll solver("tree");
///     solver.setRefClkFreq(33.333F);
///     solver.createPllConfig("PLL0", "DOMAIN0")->setMaxPllFreq(2000.0F);
///     HBSPeripheral* uart = solver.addPeripheral("UART", "DOMAIN0", 100.0F, true);
///     if (solver.runSolution())
///         use(uart->getPllName(), uart->getClkoutDiv(), uart->getActualFreq());
///
/// The tolerance walks from 0.001 to 1.0 in eight steps; the first step with a solution ends the
/// search, however good the sum at a looser step would be.
///
/// Frequencies are MHz; errors are fractions, save the allowed error of a peripheral, a percentage.
/// The solver owns its domains and peripherals; pointers stay valid as long as it lives. One
/// thread at a time.
///
/// Nothing is thrown but what the standard library throws. A tree that can't be solved as it
/// stands is one line on standard output and false, with the earlier result left readable; a
/// search that finds nothing is false without a word. A search of four or six PLLs that somebody
/// ends raises `SearchInterrupted` (`clocking/SearchInterruption.h`). Requests and references that
/// are negative, NaN or infinite are safe: quotients without an integer saturate. Trees of one and
/// two PLLs find nothing for such a request; in larger ones it saturates the divider and counts as
/// met.
class TQ_EXPORT HBSClockingAlgo : public HATAttrObj {
public:
    explicit HBSClockingAlgo(const std::string& name);
    virtual ~HBSClockingAlgo();

    /// Solves the tree. True exactly when a solution was found and written to the PLLs and
    /// peripherals. May be run again after changes.
    virtual bool runSolution() = 0;
    /// Whether the tree has the shape that the solver expects; prints what is wrong.
    [[nodiscard]] virtual bool validateConfig() const = 0;

protected:
    /// Lists the multipliers that can serve each peripheral outside the NOC domain at the present
    /// tolerance. A peripheral of no domain gets none.
    virtual void collectPeripheralMultipliers(const std::vector<HBSPeripheral*>& peripherals,
                                              CandidateMap& candidatesByPeripheral,
                                              MultiplierSet& allMultipliers);
    /// Lists the multipliers that can serve the NOC peripherals, and locks the NOC domain's error
    /// limit when there are any.
    virtual void collectNocMultipliers(const std::vector<HBSPeripheral*>& peripherals,
                                       CandidateMap& candidatesByPeripheral,
                                       MultiplierSet& allMultipliers);

public:
    /// Clears the results and the error limits; only the actual frequencies stay.
    virtual void resetResults();
    /// Name of the PLL at a position of the solver's order. Prints "Index out of range\n" for a bad
    /// one.
    [[nodiscard]] virtual std::string getPllNameByIndex(unsigned index) const = 0;

    HBSClockingAlgo(const HBSClockingAlgo&) = delete;
    HBSClockingAlgo& operator=(const HBSClockingAlgo&) = delete;

    // Setting up.

    /// Always a new domain, whether the name exists or not. The solvers go by the order.
    HBSPowerDomain* addPowerDomain(const std::string& name);
    /// Adds a PLL to the first domain of that name, which is made when absent.
    HBSPll* createPllConfig(const std::string& pllName, const std::string& domainName);
    /// The domain must exist: a peripheral added before its domain belongs to none (index -1), and
    /// a run with it enabled finds nothing. Duplicate names are accepted.
    HBSPeripheral* addPeripheral(const std::string& name, const std::string& domainName,
                                 float freqMhz, bool enabled);
    /// Does nothing: peripherals belong to the solver that made them.
    void addPeripherals(const std::vector<HBSPeripheral*>& peripherals);

    [[nodiscard]] float getRefClkFreq() const { return m_refClkFreq; }
    void setRefClkFreq(float refClkFreqMhz) { m_refClkFreq = refClkFreqMhz; }
    /// Highest frequency of a clock that crosses a domain, in trees with cross-domain dividers.
    [[nodiscard]] float getMaxCrossDomainFreq() const { return m_maxCrossDomainFreq; }
    void setMaxCrossDomainFreq(float freqMhz) { m_maxCrossDomainFreq = freqMhz; }
    /// Whether domain 1 of a 2-PLL tree may take PLL 0. No other solver reads it.
    [[nodiscard]] bool getAllowCrossDomain() const { return m_allowCrossDomain; }
    void setAllowCrossDomain(bool allow) { m_allowCrossDomain = allow; }

    /// Whether runs of four and six PLLs take part in the process's store of ten solutions, which
    /// tells trees apart by names, frequencies and limits alone. True unless set. A caller of many
    /// trees whose allowed errors or domains differ turns it off, to get each tree's own answer.
    [[nodiscard]] bool getSharesSolutions() const { return m_sharesSolutions; }
    void setSharesSolutions(bool shares) { m_sharesSolutions = shares; }

    /// What the next runs must keep to. A run with terms neither takes from the process's store of
    /// solutions nor adds to it.
    void setTerms(SearchTerms terms) { m_terms = std::move(terms); }
    [[nodiscard]] const SearchTerms& getTerms() const { return m_terms; }
    /// The best settings of the step that the last run ended with, its answer first: as many as its
    /// terms ask for, each with another multiplier or source than all others. Among them, every
    /// peripheral takes the best clock that it may.
    [[nodiscard]] const std::vector<ClockSetting>& getSettings() const { return m_settings; }

    // Looking up. The first of that name, or null.

    [[nodiscard]] std::string getName() const { return m_name; }
    [[nodiscard]] HBSPeripheral* getPeripheral(const std::string& name) const;
    [[nodiscard]] HBSPowerDomain* getPowerDomain(const std::string& name) const;
    [[nodiscard]] HBSPll* getPll(const std::string& name) const;
    /// In order of addition; PLLs domain by domain.
    [[nodiscard]] std::vector<HBSPeripheral*> getAllPeripherals() const;
    [[nodiscard]] std::vector<HBSPeripheral*> getEnabledPeripherals() const;
    [[nodiscard]] std::vector<HBSPll*> getAllPlls() const;

    // Reading the result.

    [[nodiscard]] bool is_result_found() const { return m_resultFound; }
    /// The tolerance that succeeded; 1.0 after a search that found nothing, 0.001 before any.
    [[nodiscard]] float getToleranceFector() const { return m_toleranceFactor; }
    /// Sum of the relative errors; 1000 without a result.
    [[nodiscard]] float getTotalRelativeError() const { return m_totalRelativeError; }

    /// Zeros for trees of one and two PLLs, and for a solution that was taken from the store.
    [[nodiscard]] const SearchStatistics& getSearchStatistics() const { return m_searchStatistics; }

    // For the solvers.

    /// Enabled and marked as NOC peripheral.
    [[nodiscard]] std::vector<HBSPeripheral*> getNocPeripherals() const;
    /// Null for a bad index.
    [[nodiscard]] HBSPowerDomain* getPowerDomainAt(unsigned index) const;
    /// The first domain's index, or -1.
    [[nodiscard]] std::int32_t getPowerDomainIndex(const std::string& name) const;

protected:
    /// What a run starts with: the enabled peripherals, of a tree that has its shape and no earlier
    /// result any more. None, after a line that says why and with the earlier result left, for a
    /// tree that has no valid shape.
    [[nodiscard]] std::vector<HBSPeripheral*> startRun();
    /// Takes the tolerances of the ladder in order, each as the present one, until `solveStep`
    /// returns true. False, with the last tolerance left, if it never does.
    [[nodiscard]] bool climbLadder(const std::function<bool()>& solveStep);
    /// The complaint about a tree whose domains haven't one PLL each, or null. A domain without any
    /// comes first, whatever its index; `severalText` is for a domain with more than one.
    [[nodiscard]] const char* faultOfPllCounts(const char* severalText) const;
    /// Name of a PLL by the positions of its domain and within it; empty where there is none.
    [[nodiscard]] std::string getPllNameAt(unsigned domainIndex, unsigned pllIndex) const;

    // Terms (HBSClockingAlgo_terms.cpp).

    /// Whether runs may take part in the store of solutions.
    [[nodiscard]] bool usesStore() const;
    [[nodiscard]] RunTerms runTerms(const std::vector<HBSPeripheral*>& enabled) const;
    /// The multipliers to try for a PLL: its own by the terms, else all of the list. The NOC PLL's
    /// own one must be in the list.
    [[nodiscard]] std::vector<unsigned> allowedMultipliers(unsigned pll,
                                                           std::span<const unsigned> list) const;
    /// Whether the terms name one of two PLLs, which can't be swapped then.
    [[nodiscard]] bool tellApart(unsigned pllA, unsigned pllB) const;
    /// Position of a domain's first PLL in the solver's order.
    [[nodiscard]] unsigned firstPllOf(unsigned domainIndex) const;
    /// The answer of a run as a setting; `m_totalRelativeError` is its sum.
    [[nodiscard]] ClockSetting settingOf(const std::vector<HBSPeripheral*>& enabled,
                                         const PeripheralResult& peripheralResult,
                                         const PllResult& pllResult) const;
    /// Ends a run: what `getSettings` gives, if the terms ask for settings.
    void keepSettings(SettingList& list, const ClockSetting& answer);

    // Dividers (HBSClockingAlgo_dividers.cpp).

    /// Smallest PLL output divider of 1, 2, 4 and 8 that keeps the PLL under its domain's limit; 1
    /// for a domain that doesn't exist.
    [[nodiscard]] unsigned computeClkoutDiv(unsigned mul, unsigned domainIndex) const;
    /// Output divider of the NOC PLL, any integer; 1 unless exactly one NOC peripheral is enabled.
    [[nodiscard]] unsigned computeNocClkoutDiv(unsigned mul) const;
    /// The clock in MHz that leaves a PLL of that domain: multiplier × reference ÷ output divider.
    [[nodiscard]] float pllFreqMhz(unsigned mul, unsigned domainIndex) const;
    /// Takes the best of the clocks for one peripheral: `out` is its position and the divider, the
    /// result its relative error. -1 when none is under the present tolerance; see `isNoDivider`.
    /// Ties go to the first clock.
    [[nodiscard]] float findBestDivider(std::span<const float> frequenciesMhz, float targetMhz,
                                        DividerChoice& out) const;
    /// The same over slots, empty ones skipped, with the divider of `nearestDivider`.
    [[nodiscard]] float findBestDividerInSlots(std::span<const ClockSlot> slots, float targetMhz,
                                               DividerChoice& out) const;

    // Reduction per domain (HBSClockingAlgo_domains.cpp).

    /// The candidates of the present tolerance as bit sets and their union, ascending. False when a
    /// peripheral has none.
    [[nodiscard]] bool collectCandidates(const std::vector<HBSPeripheral*>& enabled,
                                         MultiplierBitMap& multiplierBits,
                                         std::vector<unsigned>& multipliers);
    [[nodiscard]] static MultiplierBitMap buildMultiplierBits(const CandidateMap& candidates);
    /// The bit sets of a domain's peripherals: what a combination has to cover.
    [[nodiscard]] static std::vector<MultiplierBits>
    getDomainNeeds(const MultiplierBitMap& multiplierBits, unsigned domainIndex);
    /// The multipliers, in their order, that alone cover the domain. Locks its tolerance.
    [[nodiscard]] std::vector<unsigned>
    filterMultipliersForDomain(std::span<const unsigned> multipliers,
                               const MultiplierBitMap& multiplierBits, unsigned domainIndex);
    /// Lowers the domain's error limit to the present tolerance. Called whenever combinations were
    /// found for a domain: it keeps that step's tolerance while other domains go on loosening.
    void lockTolerance(unsigned domainIndex);

    // Combinations (HBSClockingAlgo_combinations.cpp). The lists aren't laid out. Those that test a
    // domain lock its tolerance, unless it is said otherwise.

    /// `[a, b]` with `a` from the candidates and `b` from the others that cover the domain.
    [[nodiscard]] CombinationList buildPairsForDomain(const StepCandidates& candidates,
                                                      std::span<const unsigned> others,
                                                      unsigned domainIndex);
    /// `[a, b]` without a test.
    [[nodiscard]] static CombinationList buildFreePairs(std::span<const unsigned> firsts,
                                                        std::span<const unsigned> others);
    /// Combinations continued by one candidate, as a whole covering the domain.
    [[nodiscard]] CombinationList extendCombosForDomain(const StepCandidates& candidates,
                                                        const CombinationList& combos,
                                                        unsigned domainIndex);
    /// Pairs of different candidates, in both orders, that cover the domain.
    [[nodiscard]] CombinationList buildOrderedPairsForDomain(const StepCandidates& candidates,
                                                             unsigned domainIndex);
    /// Combinations continued by such a pair, as a whole covering the domain.
    [[nodiscard]] CombinationList extendCombosWithPairsForDomain(const StepCandidates& candidates,
                                                                 const CombinationList& combos,
                                                                 unsigned domainIndex);
    /// Pairs of candidates, the smaller first, that cover the domain.
    [[nodiscard]] CombinationList buildUnorderedPairsForDomain(const StepCandidates& candidates,
                                                               unsigned domainIndex);
    /// Combinations continued by every element of the list, without a test.
    [[nodiscard]] static CombinationList appendToCombos(const CombinationList& combos,
                                                        std::span<const unsigned> list);
    /// Combinations continued by every pair, without a test.
    [[nodiscard]] static CombinationList appendPairsToCombos(const CombinationList& combos,
                                                             const CombinationList& pairs);
    /// Combinations continued by pairs, the smaller first, that cover the domain together with what
    /// may cross from places 0 and 2. Doesn't lock the tolerance.
    [[nodiscard]] CombinationList extendCombosWithCrossCheck(const StepCandidates& candidates,
                                                             const CombinationList& combos,
                                                             unsigned domainIndex) const;

    // Trees with a NOC clock (HBSClockingAlgo_search.cpp).

    /// Combinations that a solver tries at one step; empty to go on to the next.
    using ComboBuilder = std::function<CombinationList(const StepCandidates&)>;

    /// What the solvers of four and six PLLs check after their PLLs: the place of the NOC domain,
    /// which is only complained of, and the reference.
    [[nodiscard]] bool validateNocAndReference() const;
    /// The whole run.
    [[nodiscard]] bool runLadder(const TreeShape& shape, const ComboBuilder& buildCombos);
    /// The tuples of output dividers of a combination, as a range per PLL.
    [[nodiscard]] ClkoutDivCombos buildClkoutDivCombos(const TreeShape& shape,
                                                       const Combination& combination) const;
    /// The best of all combinations; split among threads when they are many. False for none.
    [[nodiscard]] bool searchCombos(const TreeShape& shape,
                                    const std::vector<HBSPeripheral*>& enabled,
                                    const CombinationList& combos, ComboResult& result);

    // Solutions (HBSClockingAlgo_solutions.cpp).

    /// Writes a solution to the PLLs and peripherals, and marks it found.
    void applySolution(const PeripheralResult& peripheralResult, const PllResult& pllResult);
    /// What a stored solution is found by.
    [[nodiscard]] std::vector<std::pair<std::string, float>>
    buildSolutionKey(const std::vector<HBSPeripheral*>& enabled) const;
    /// Takes the solution from the process's store when it is there, and says so.
    [[nodiscard]] bool applyCachedSolution(const std::vector<HBSPeripheral*>& enabled);
    /// Puts a solution into the process's store, unless that is full.
    void storeSolution(const std::vector<HBSPeripheral*>& enabled,
                       const PeripheralResult& peripheralResult, const PllResult& pllResult) const;

    std::uint32_t m_pllCount = 0; ///< set by the solver
    std::string m_name;
    bool m_resultFound = false;
    bool m_allowCrossDomain = false;
    bool m_sharesSolutions = true;
    SearchTerms m_terms;
    std::vector<ClockSetting> m_settings;
    float m_refClkFreq = 33.333F;
    float m_maxCrossDomainFreq = 1000.0F;
    float m_toleranceFactor = 0.001F;
    float m_totalRelativeError = 1000.0F;
    std::vector<std::unique_ptr<HBSPowerDomain>> m_powerDomains;
    std::vector<std::unique_ptr<HBSPeripheral>> m_peripherals;
    SearchStatistics m_searchStatistics;

private:
    friend class SavedResults;

    void climbSearchLadder(const TreeShape& shape, const ComboBuilder& buildCombos,
                           const std::vector<HBSPeripheral*>& enabled,
                           const std::vector<HBSPeripheral*>& noc);
    [[nodiscard]] CombinationList lockIfAny(CombinationList combos, unsigned domainIndex);
    [[nodiscard]] bool collectStepCandidates(const std::vector<HBSPeripheral*>& enabled,
                                             const std::vector<HBSPeripheral*>& noc,
                                             StepCandidates& candidates);
    void complainOfNocPeripherals(const TreeShape& shape, const CombinationList& combos) const;
    [[nodiscard]] SearchProblem problemOf(const TreeShape& shape,
                                          const std::vector<HBSPeripheral*>& enabled,
                                          const CombinationList& combos) const;
    void listSettings(const TreeShape& shape, const std::vector<HBSPeripheral*>& enabled,
                      const CombinationList& combos, const ComboResult& result);
    void writeDecisions(const TreeShape& shape, const std::vector<HBSPeripheral*>& enabled,
                        const Tuple& tuple, ComboResult& result) const;
    void sendTimingMessage(std::size_t enabledCount,
                           std::chrono::steady_clock::time_point start) const;
    void configurePll(const std::string& name, const std::vector<unsigned>& config);
};

} // namespace hbs_clocking
