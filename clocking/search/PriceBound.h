// A Lagrangian bound of the sum of errors, separable by PLL. The prices are the Lagrange
// multipliers of the constraints "each peripheral takes one clock".
//
// Give each peripheral a price, any number not below 0. The saving of a clock for a peripheral is
// max(0, price - error). Proof of the bound: a peripheral takes one clock, of error e. The saving
// of that clock is at least price - e, and all other savings are at least 0, so e is at least the
// price less the savings of all clocks. Summed over the peripherals:
//
//     sum of errors >= sum of prices - sum over the PLLs of the savings of their settings.
//
// The right side needs one number per setting of a PLL and no combination of them. The largest
// saving of each PLL gives a bound for the whole step; with some PLLs fixed, their own savings give
// a bound for that part of the step. Every choice of prices is valid; good ones make it tight.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <span>
#include <vector>

#include "clocking/search/PairSavings.h"
#include "clocking/search/SourceTable.h"

namespace hbs_clocking {

/// One price per peripheral of a domain, laid out as its rows of errors.
using PriceRow = std::vector<float>;

/// The saving of a row of errors at these prices.
[[nodiscard]] inline float savingOf(const PriceRow& prices, const float* errors) {
    const float* const price = prices.data();
    std::array<float, kLanes> lanes{};
    for (std::size_t i = 0; i < prices.size(); i += kLanes)
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lanes[lane] += std::max(0.0F, price[i + lane] - std::fabs(errors[i + lane]));
    return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

/// Prices fitted to one step, with the savings of every setting. Made once, then only read.
class PriceBound {
public:
    PriceBound(const SearchProblem& problem, const SourceTable& table);

    /// Continues the ascent where the first prices leave much to search; `known` is the least sum
    /// known. Returns whether the gap to it closed enough for another try to be worthwhile.
    [[nodiscard]] bool raise(double known);

    [[nodiscard]] const PriceRow& prices(unsigned domain) const { return m_prices[domain]; }
    [[nodiscard]] double sumOfPrices() const { return m_sumOfPrices; }

    /// The saving of an option in all domains.
    [[nodiscard]] double saving(Role role, std::size_t option) const {
        return static_cast<double>(m_savings[indexOf(role)][option]);
    }
    /// The saving that an option of this PLL needs to reach `lowest()` with the other PLLs at their
    /// best. A tuple whose option saves less lies above `lowest()` by at least the difference (the
    /// reduced cost of the option).
    [[nodiscard]] double largestSaving(Role role) const { return m_largest[indexOf(role)]; }
    /// The largest saving of the own PLLs of domains 2 and 3, with multipliers that go together.
    [[nodiscard]] double ownSavings() const { return m_ownSavings; }
    /// The part of the PLLs of domain 2 (in all domains that they reach), or of domain 3.
    [[nodiscard]] double ownSavings(unsigned domain) const {
        return static_cast<double>(m_bestOwn[domain - 2].saving);
    }
    /// No sum lies below this.
    [[nodiscard]] double lowest() const { return m_lowest; }

    /// The setting of each PLL with the largest saving, by role: a heuristic for a first known sum.
    /// The multipliers may not be a combination of the list.
    using Favourites = std::array<const PllOption*, kRoles>;
    [[nodiscard]] const Favourites& favourites() const { return m_favourites; }

    /// A bound above this proves sums above `limit`, with the rounding of both allowed for.
    [[nodiscard]] double ceilingOf(double limit) const {
        return limit + (limit + m_sumOfPrices) * m_roundingFactor;
    }

    /// How far a tuple's rounded sum, if it isn't above `limit`, may lie from its exact sum.
    [[nodiscard]] double roundingOf(double limit) const {
        return limit * static_cast<double>(m_problem.requests.size() + 4) * 0x1p-23;
    }

private:
    /// One number per peripheral, laid out as the prices.
    using Counts = std::array<PriceRow, kDomains>;
    using Prices = std::array<PriceRow, kDomains>;
    /// The errors of the peripherals with one setting of each PLL.
    struct Service {
        double sum = 0.0;    ///< of the errors; infinite if a peripheral isn't served
        double capped = 0.0; ///< the same with no error above the tolerance
        Counts spare;        ///< PLLs with a saving for each peripheral, less the one that it needs
    };
    /// The state of the subgradient ascent.
    struct Ascent {
        double sum = 0.0;    ///< the least sum that favourites gave
        double capped = 0.0; ///< the least capped sum
        double lowest = 0.0; ///< the highest bound found
        Prices prices;       ///< those of that bound
        double reach = 1.0;  ///< factor of the step length
        unsigned idle = 0;   ///< rounds since the last better bound
    };

    [[nodiscard]] Prices firstPrices() const;
    void climb(double known, unsigned rounds);
    void evaluate();
    void evaluate(Role role, MultiplierSavings& byMultiplier);
    void keepBest();
    [[nodiscard]] Favourites pickFavourites() const;
    [[nodiscard]] const PllOption* favourite(Role role, unsigned mul) const;
    [[nodiscard]] Service serviceOf(const Favourites& favourites) const;
    /// A step against `spare`: lowers prices of peripherals that several PLLs serve, raises those
    /// of peripherals that none serves.
    void movePrices(const Counts& spare, double step);

    const SearchProblem& m_problem;
    const SourceTable& m_table;
    /// Of domains 2 and 3, with any head.
    std::array<CombinationTails, 2> m_ownTails;
    Prices m_prices;
    Ascent m_ascent;
    std::array<std::vector<float>, kRoles> m_savings;
    std::array<double, kRoles> m_largest{};
    std::array<PairSaving, 2> m_bestOwn;  ///< of domains 2 and 3
    std::array<unsigned, 2> m_bestMuls{}; ///< of the main and the NOC PLL
    Favourites m_favourites{};
    double m_sumOfPrices = 0.0;
    double m_ownSavings = 0.0;
    double m_lowest = 0.0;
    double m_roundingFactor = 0.0;
};

} // namespace hbs_clocking
