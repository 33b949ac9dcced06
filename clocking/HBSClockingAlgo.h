// The base of the clock tree solvers: the tree, the order of a run, and all that the solvers of 1,
// 2, 4 and 6 PLLs share.
#pragma once

#include <cstdint>
#include <memory>
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

class SavedResults;
class SolverRun;

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
/// The solver owns its domains and peripherals; pointers to them are valid as long as it
/// exists. One thread at a time.
///
/// Nothing is thrown but what the standard library throws. For a tree of the wrong shape or
/// without an enabled peripheral a run prints one line on standard output and returns false, with
/// the earlier result left readable; a search that finds nothing returns false and prints nothing.
/// A search of four or six PLLs that is interrupted raises `SearchInterrupted`
/// (`clocking/SearchInterruption.h`). Requests and references that are negative, NaN or infinite
/// are safe: quotients without an integer saturate. Trees of one and two PLLs find nothing for such
/// a request; in larger ones it saturates the divider and counts as met.
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
    /// identifies trees by names, frequencies and limits alone. True unless set. A caller of many
    /// trees whose allowed errors or domains differ turns it off, to get each tree's own answer.
    [[nodiscard]] bool getSharesSolutions() const { return m_sharesSolutions; }
    void setSharesSolutions(bool shares) { m_sharesSolutions = shares; }

    /// Conditions for the next runs. A run with terms neither takes from the process's store of
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
    // Shape checks of the solvers.

    /// The complaint about a tree whose domains haven't one PLL each, or null. A domain without any
    /// comes first, whatever its index; `severalText` is for a domain with more than one.
    [[nodiscard]] const char* faultOfPllCounts(const char* severalText) const;
    /// What the solvers of four and six PLLs check after their PLLs: the place of the NOC domain,
    /// which is only complained of, and the reference.
    [[nodiscard]] bool validateNocAndReference() const;
    /// Name of a PLL by the positions of its domain and within it; empty where there is none.
    [[nodiscard]] std::string getPllNameAt(unsigned domainIndex, unsigned pllIndex) const;

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
    friend class SolverRun;
};

} // namespace hbs_clocking
