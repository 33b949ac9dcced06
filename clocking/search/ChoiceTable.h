// What the own PLLs of domain 2, or of domain 3, can do for its peripherals once the clocks that
// come from elsewhere are known: a memo by these clocks' errors.
//
// A domain sees three things: the main and the NOC PLL (the context), the first own PLL of domain 2
// (direct in domain 2, across in domain 3), and the PLLs that are its own alone: the second one of
// domain 2, the two of domain 3. The first two leave the errors `before`. Many settings leave the
// same ones, and what the rest can do depends on nothing else, except for the combinations that it
// may be part of. Where these depend on the head, its multipliers are part of the key.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "clocking/search/ErrorFront.h"
#include "clocking/search/RowIndex.h"
#include "clocking/search/ServiceMask.h"

namespace hbs_clocking {

/// A setting of a domain's own PLLs, and what its peripherals end up with.
struct OwnChoice {
    OwnSetting setting;
    double sum = 0.0; ///< exact
    unsigned row = 0; ///< number of the errors; see `ChoiceTable::errors`
    /// Choices of one segment lie in one chunk with all else the same; see `ChoiceHead`.
    unsigned segment = 0;
};

/// The settings before that a domain sees, as multipliers by role.
struct ChoiceHead {
    Combination muls{}; ///< of the main, the NOC and the first own PLL of domain 2
    bool isKey = false; ///< whether the context's part has to be told apart
    /// Where chunks of the enumeration begin behind the head, as combinations by role. A choice
    /// represents equal ones, or beats others, only within its segment between these.
    std::span<const Combination> chunkStarts;
};

struct ChoiceBudget {
    double sum = 0.0;
    /// What the rounding of tuples' sums may hide: so much may a choice be worse than one before
    /// it.
    double room = 0.0;
};

/// Used by one thread.
class ChoiceTable {
public:
    /// All must outlive the table.
    ChoiceTable(const SearchProblem& problem, const SourceTable& table, unsigned domain,
                const PriceRow& prices, const ErrorFront& front);

    /// A number for the errors that a context leaves.
    [[nodiscard]] unsigned contextOf(const ErrorRow& errors, const ChoiceHead& head);
    /// A number that no sum lies below behind a context and an option of domain 2's first PLL: the
    /// Lagrangian bound with the context's errors for prices where they are lower.
    [[nodiscard]] double floorOf(unsigned context, std::size_t option);
    /// A better one, which costs more: the least sum, rounded, if that is within the budget.
    [[nodiscard]] double least(unsigned context, std::size_t option, double budget);
    /// The settings that go with the head, serve the domain and give a sum within the budget, and
    /// maybe more, in the order of the enumeration. With all else the same, only a choice that is
    /// better than those before it in its segment can win: others are left out, and of those that
    /// end in the same errors all but the first. Valid until the next call.
    [[nodiscard]] std::span<const OwnChoice> choices(unsigned context, std::size_t option,
                                                     const ChoiceBudget& budget,
                                                     const ChoiceHead& head);
    /// Equal numbers mean equal choices.
    [[nodiscard]] unsigned entryNumber(unsigned context, std::size_t option);
    [[nodiscard]] const float* errors(unsigned row) const { return m_results.at(row); }

    [[nodiscard]] std::size_t bytes() const;
    void clear();

private:
    struct Entry {
        double least = 0.0; ///< exact if within the budget that it was found for
        double leastBudget = -1.0;
        double budget = -1.0; ///< that the list holds all choices for
        std::vector<OwnChoice> choices;
    };

    /// The least sums so far by place: what has to be undercut.
    struct Step {
        std::array<unsigned, 4> place;
        unsigned segment;
        double sum;
    };

    [[nodiscard]] Entry& entryOf(unsigned context, std::size_t option);
    void addFloors(unsigned context);
    void setBefore(unsigned context, std::size_t option);
    void fill(Entry& entry, std::size_t option, const ChoiceBudget& budget, const ChoiceHead& head);
    [[nodiscard]] bool setErrors(const OwnSetting& setting);
    void keepLow(const OwnSetting& setting, unsigned segment, double room);
    void addLows(Entry& entry, double room);
    [[nodiscard]] unsigned segmentOf(const OwnSetting& setting, const ChoiceHead& head) const;

    const SearchProblem& m_problem;
    const PllOptions& m_options; ///< of domain 2's first PLL
    const CombinationStage& m_stage;
    bool m_looksAtHead; ///< whether the domain's combinations depend on the head
    const PriceRow& m_prices;
    const ErrorFront& m_front;
    unsigned m_domain;
    std::size_t m_stride;
    Completion m_completion;
    RowIndex m_contexts;             ///< errors, then the multipliers of the head
    RowIndex m_befores;              ///< likewise
    RowIndex m_results;              ///< errors
    std::vector<unsigned> m_entryOf; ///< by context and option: number of the entry + 1
    std::vector<Entry> m_entries;    ///< by number in `m_befores`
    std::vector<float> m_floors;     ///< by context and option
    std::size_t m_choicesKept = 0;
    ErrorRow m_before;
    ErrorRow m_errors;
    std::vector<OwnChoice> m_lows; ///< of the list that is being filled
    std::vector<Step> m_steps;
};

} // namespace hbs_clocking
