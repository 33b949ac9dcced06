// A Lagrangian bound of the sum of errors, which falls apart into one term per PLL; the prices are
// its multipliers.
//
// Give each peripheral a price, any number not below 0. A clock saves a peripheral as much as its
// error lies under the price. Whatever clocks are chosen, the error of a peripheral is at least its
// price less the savings of all of them, since the clock that it takes already saves that much. So
//
//     sum of errors >= sum of prices - sum over the PLLs of the savings of their settings,
//
// and the right side needs one number per setting of a PLL. The best setting of each PLL gives a
// bound for the whole step; a fixed setting here and there gives one for a part of it.
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

/// What a row of errors saves at these prices.
[[nodiscard]] inline float savingOf(const PriceRow& prices, const float* errors) {
    const float* const price = prices.data();
    std::array<float, kLanes> lanes{};
    for (std::size_t i = 0; i < prices.size(); i += kLanes)
        for (std::size_t lane = 0; lane < kLanes; ++lane)
            lanes[lane] += std::max(0.0F, price[i + lane] - std::fabs(errors[i + lane]));
    return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

/// Good prices for one step, with the savings of every setting. Made once, then only read.
class PriceBound {
public:
    PriceBound(const SearchProblem& problem, const SourceTable& table);

    /// Looks for better prices where those found first leave much to search. Says whether the bound
    /// came notably closer to the least sum known.
    [[nodiscard]] bool raise(double known);

    [[nodiscard]] const PriceRow& prices(unsigned domain) const { return m_prices[domain]; }
    [[nodiscard]] double sumOfPrices() const { return m_sumOfPrices; }

    /// What an option saves in all domains.
    [[nodiscard]] double saving(Role role, std::size_t option) const {
        return static_cast<double>(m_savings[indexOf(role)][option]);
    }
    /// The most that an option of the PLL saves that may go with the others' best: tuples with less
    /// lie above the bound by the difference.
    [[nodiscard]] double largestSaving(Role role) const { return m_largest[indexOf(role)]; }
    /// The best that the PLLs of domains 2 and 3 can save, with multipliers that go together.
    [[nodiscard]] double ownSavings() const { return m_ownSavings; }
    /// Those of domain 2, across too, or of domain 3.
    [[nodiscard]] double ownSavings(unsigned domain) const {
        return static_cast<double>(m_bestOwn[domain - 2].saving);
    }
    /// No sum lies below this.
    [[nodiscard]] double lowest() const { return m_lowest; }

    /// A setting of each PLL that looks good at the prices, by role: a place to begin, no more. Its
    /// multipliers may not be in the list.
    using Favourites = std::array<const PllOption*, kRoles>;
    [[nodiscard]] const Favourites& favourites() const { return m_favourites; }

    /// A bound above this is above the limit, however the sums were rounded.
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
    /// What a setting of each PLL does for the peripherals.
    struct Service {
        double sum = 0.0;    ///< of the errors; infinite if somebody isn't served
        double capped = 0.0; ///< the same with no error above the tolerance
        Counts spare;        ///< how many save something for each, less the one that it needs
    };
    /// How far the search for prices has come.
    struct Ascent {
        double sum = 0.0;    ///< the least that favourites came to
        double capped = 0.0; ///< likewise
        double lowest = 0.0; ///< the highest bound found
        Prices prices;       ///< that gave it
        double reach = 1.0;
        unsigned idle = 0;
    };

    [[nodiscard]] Prices firstPrices() const;
    void climb(double known, unsigned rounds);
    void evaluate();
    void evaluate(Role role, MultiplierSavings& byMultiplier);
    void keepBest();
    [[nodiscard]] Favourites pickFavourites() const;
    [[nodiscard]] const PllOption* favourite(Role role, unsigned mul) const;
    [[nodiscard]] Service serviceOf(const Favourites& favourites) const;
    /// Lowers the prices where servers are to spare and raises them where there are none.
    void movePrices(const Counts& spare, double step);

    const SearchProblem& m_problem;
    const SourceTable& m_table;
    /// Of domains 2 and 3, behind whatever head.
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
