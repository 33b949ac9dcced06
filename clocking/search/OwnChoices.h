// What the own PLLs of domain 3 can do for its peripherals, once the clocks from other domains are
// known.
#pragma once

#include <string>
#include <unordered_map>
#include <vector>

#include "clocking/search/PriceBound.h"

namespace hbs_clocking {

/// A row of errors as a key: its bytes.
[[nodiscard]] std::string keyOf(const ErrorRow& errors);

/// The saving of every option of one PLL at prices for one domain.
using SavingRow = std::vector<float>;
void computeSavings(const PllOptions& options, unsigned domain, const PriceRow& prices,
                    SavingRow& savings);

/// Lowers the prices to the errors that are certain already: the clocks before can't save any more.
/// Gives their sum.
[[nodiscard]] double capPrices(PriceRow& prices, const ErrorRow& errors, float tolerance);

/// A setting of the own PLLs of domain 3, and what its peripherals end up with.
struct OwnChoice {
    const PllOption* first = nullptr;
    const PllOption* second = nullptr;
    double sum = 0.0; ///< for bounds
    ErrorRow errors;
};

/// Of settings that end in the same errors only the first in the enumeration is here.
struct OwnChoiceList {
    unsigned id = 0;
    double budget = 0.0; ///< sums above it were left out
    std::vector<OwnChoice> choices;
};

/// Finds settings, and remembers them by the errors before: many settings of the other PLLs come to
/// the same. One search costs about options + pairs that the prices leave over; forgets all when it
/// grows beyond a few megabytes.
class OwnChoices {
public:
    OwnChoices(const SearchProblem& problem, const SourceTable& table, const PriceBound& bound);

    /// The multipliers of the two PLLs.
    using Muls = std::array<std::uint8_t, 2>;

    /// All settings that go with this head, give a sum of at most `budget` for domain 3 and don't
    /// come before `from`. `before` are the errors with the clocks from other domains. Valid until
    /// the next call.
    [[nodiscard]] const OwnChoiceList& find(const ErrorRow& before, const Combination& head,
                                            double budget, const Muls& from = {});

private:
    void search(OwnChoiceList& list, const ErrorRow& before, const Combination& head,
                const Muls& from);
    /// Those with this first, whose errors stand in `m_withFirst`, and a second that saves at least
    /// what is missing.
    void searchSeconds(OwnChoiceList& list, const PllOption& first, const MultiplierMask& allowed,
                       double missing, const Muls& from);
    void add(OwnChoiceList& list, const PllOption& first, const PllOption& second);

    const SearchProblem& m_problem;
    const SourceTable& m_table;
    const PriceBound& m_bound;
    std::unordered_map<std::string, OwnChoiceList> m_known;
    std::size_t m_floatsKept = 0;
    unsigned m_nextId = 0;

    // Of the search under way.
    PriceRow m_prices;
    SavingRow m_firstSavings;
    SavingRow m_secondSavings;
    MultiplierSavings m_seconds;
    ErrorRow m_errors;
    ErrorRow m_withFirst;
    std::unordered_map<std::string, std::size_t> m_distinct;
};

} // namespace hbs_clocking
