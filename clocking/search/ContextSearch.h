// The search behind one setting of the main and the NOC PLL: the own PLLs of domains 2 and 3.
#pragma once

#include <array>
#include <cstdint>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

#include "clocking/search/NearMinimum.h"
#include "clocking/search/OwnChoices.h"

namespace hbs_clocking {

/// The combinations from `first` up to but not including `end`, by role.
struct CombinationRange {
    Combination first{};
    Combination end{};

    [[nodiscard]] bool contains(const Combination& muls) const {
        return first <= muls && muls < end;
    }
};

/// A setting of the main and the NOC PLL.
struct Context {
    const PllOption* main = nullptr;
    const PllOption* noc = nullptr;
    /// What the peripherals get from these two: in domains 0 and 1 that is all they get.
    std::array<ErrorRow, kDomains> errors;
    double nearSum = 0.0; ///< of domains 0 and 1, for bounds
};

/// Goes through the settings of the other PLLs that the bounds leave over, and offers the sums of
/// those that come out near the minimum. One object serves the contexts of one search, one after
/// the other.
class ContextSearch {
public:
    ContextSearch(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound,
                  const CombinationRange& range);

    /// False if an earlier context, already searched and remembered, has the same errors, and with
    /// them the same sums.
    [[nodiscard]] bool isWorthSearching(const Context& context);
    void search(const Context& context, NearMinimum& sums);

    /// Tuples whose sum was computed.
    [[nodiscard]] std::uint64_t evaluatedTuples() const { return m_evaluated; }

private:
    /// Options of the first own PLL of domain 2 that differ in the cross-domain divider only.
    struct OwnGroup {
        std::size_t begin;
        std::size_t end;
        double acrossSaving; ///< the largest
    };
    /// A setting of the second own PLL of domain 2.
    struct Second {
        const PllOption* option;
        unsigned id;   ///< of the errors: the same errors, the same number
        bool isOnEdge; ///< where the range begins amid the settings of domain 3
        double sum;
        ErrorRow errors;
    };

    void updateCeiling();
    /// Whether the range begins amid the settings behind the places of the head set so far. What
    /// comes before it must not stand for equals that come later.
    [[nodiscard]] bool isOnEdge(unsigned places) const;
    [[nodiscard]] bool boundContext(const CombinationTails& tails);
    [[nodiscard]] OwnGroup groupAt(std::size_t begin) const;
    void searchGroup(const OwnGroup& group, const CombinationTails& tails);
    void collectSeconds(const OwnGroup& group, const MultiplierMask& allowed);
    /// With the errors in `m_errors`.
    void addSecond(const PllOption& option, bool onEdge, double sum);
    void searchAcross(const PllOption& own, double acrossSaving, bool onEdge);
    [[nodiscard]] bool comesTooLate(const PllOption& own, const Second& second, unsigned listId);
    void evaluate(const PllOption& own, const Second& second, const OwnChoice& choice);

    const SearchProblem& m_problem;
    const SourceTable& m_table;
    const PriceBound& m_bound;
    const CombinationRange& m_range;
    OwnChoices m_ownChoices;
    std::vector<std::pair<unsigned, unsigned>> m_places; ///< domain and place of each peripheral
    bool m_tailsDependOnHead; ///< what goes with a context is a matter of its multipliers
    /// By errors: the earliest context that had them.
    std::unordered_map<std::string, std::array<unsigned, 2>> m_searched;
    std::size_t m_searchedBytes = 0; ///< of its keys
    std::uint64_t m_evaluated = 0;

    // Of the context under way.
    const Context* m_context = nullptr;
    NearMinimum* m_sums = nullptr;
    /// The places of the main and the NOC PLL and of domain 2's first. That of its second stays 0:
    /// no stage looks at it.
    Combination m_head{};
    double m_ceiling = 0.0;                  ///< bounds above this are of no interest
    std::array<PriceRow, kDomains> m_prices; ///< of domains 2 and 3, capped
    double m_domain3Prices = 0.0;
    double m_certain = 0.0; ///< near sum and capped prices
    SavingRow m_firstSavings;
    SavingRow m_acrossSavings;
    SavingRow m_secondSavings;
    MultiplierSavings m_firsts2; ///< across too
    MultiplierSavings m_seconds2;
    MultiplierSavings m_firsts3;
    MultiplierSavings m_seconds3;
    double m_best3Anyhow = 0.0; ///< what the own PLLs of domain 3 save, whatever the head
    double m_best3 = 0.0;       ///< behind the head set so far
    ErrorRow m_errors;
    std::vector<Second> m_seconds;
    std::unordered_map<unsigned, std::size_t> m_secondsKnown; ///< by id and edge
    double m_leastSecondSum = 0.0;
    bool m_anyOnEdge = false;
    std::unordered_map<std::string, unsigned> m_errorIds;
    /// By errors of domain 2 and list of choices for domain 3: the earliest place that had them.
    std::unordered_map<std::uint64_t, std::array<std::uint8_t, 5>> m_done;
};

} // namespace hbs_clocking
