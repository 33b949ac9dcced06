// Memoised choices for the own PLLs of domain 2 or of domain 3, by the errors that the clocks from
// elsewhere leave.
//
// A peripheral's error depends on three groups of PLLs: the main and the NOC PLL (the context), the
// first own PLL of domain 2 (direct in domain 2, across in domain 3), and the PLLs that only this
// domain sees: the second one of domain 2, or the two of domain 3. The first two groups leave the
// errors `before`. Many settings leave the same errors, and the best choice for the third group
// depends on nothing else, so it is computed once per row of errors. The exception is a list of
// combinations whose tails depend on the head: then the head's multipliers are part of the key.
#pragma once

#include <array>
#include <span>
#include <vector>

#include "clocking/search/ErrorFront.h"
#include "clocking/search/RowIndex.h"
#include "clocking/search/ServiceMask.h"

namespace hbs_clocking {

/// A setting of a domain's own PLLs, and the errors of its peripherals with it.
struct OwnChoice {
    OwnSetting setting;
    double sum = 0.0; ///< exact
    unsigned row = 0; ///< number of the errors; see `ChoiceTable::errors`
    /// Choices of one segment lie in one chunk with all else the same; see `ChoiceHead`.
    unsigned segment = 0;
};

/// The PLLs before the domain's own ones in the enumeration, as multipliers by role.
struct ChoiceHead {
    Combination muls{}; ///< of the main, the NOC and the first own PLL of domain 2
    bool isKey = false; ///< whether the context's multipliers belong to the key
    /// The starts of chunks among the combinations with this head, by role. They divide the choices
    /// into segments. Each chunk has a winner of its own, so a choice can replace equal ones and
    /// dominate others in its own segment only.
    std::span<const Combination> chunkStarts;
};

struct ChoiceBudget {
    double sum = 0.0; ///< choices above this are of no interest
    /// Allowance for rounding. Tuples are compared by their rounded sums, so a choice is dominated
    /// only if its exact sum exceeds that of an earlier choice by more than this.
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
    /// A lower bound of the domain's sum with this context and this option of domain 2's first PLL,
    /// looked up: the Lagrangian bound with the context's errors as prices where they are lower.
    [[nodiscard]] double floorOf(unsigned context, std::size_t option);
    /// A tighter bound, which costs a scan: the least sum, rounded, if that is within the budget.
    [[nodiscard]] double least(unsigned context, std::size_t option, double budget);
    /// The settings in the list of combinations that serve the domain with a sum within the budget
    /// (the result may hold some above it), in the order of the enumeration. Dominated ones are
    /// left out: with all other PLLs the same, only a choice that is better than the earlier ones
    /// of its segment can win. Of choices with the same errors the first one stays. Valid until the
    /// next call.
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
        double least = 0.0; ///< exact if within `leastBudget`, else a lower bound
        double leastBudget = -1.0;
        double budget = -1.0; ///< the list holds all choices within this
        std::vector<OwnChoice> choices;
    };

    /// A step of the staircase of least sums by place: a later choice must lie below the last step
    /// before it.
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
    std::vector<OwnChoice> m_lows; ///< scratch: of the list that is being filled
    std::vector<Step> m_steps;
};

} // namespace hbs_clocking
