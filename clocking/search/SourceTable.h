// The table of errors: of every peripheral with every clock that a PLL can put out.
#pragma once

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <vector>

#include "clocking/search/CombinationList.h"
#include "clocking/search/ErrorRow.h"
#include "clocking/search/TreeShape.h"

namespace hbs_clocking {

/// An enabled peripheral as the search sees it.
struct SearchRequest {
    unsigned domain = 0;
    float mhz = 0.0F;
    bool isBarred = false;       ///< by its name, from PLLs 1 and 3
    float weight = 1.0F;         ///< of its error in the sum; at most 1
    std::uint8_t deniedPlls = 0; ///< a bit per PLL that it may not take
};

/// One step of the ladder, ready to be searched.
struct SearchProblem {
    const TreeShape* shape = nullptr;
    float refMhz = 0.0F;
    float maxCrossMhz = 0.0F;
    float tolerance = 0.0F;
    std::vector<SearchRequest> requests; ///< in the order of the enabled peripherals
    /// The output dividers of a role's PLL, by multiplier. Not asked for the NOC PLL.
    std::function<DividerRange(Role, unsigned)> outputDividers;
    /// The output divider of the NOC PLL, by multiplier.
    std::function<unsigned(unsigned)> nocDivider;
    CombinationList combinations;
};

class PriceBound;

/// The peripherals of one domain.
struct DomainRequests {
    std::vector<unsigned> positions; ///< among the enabled peripherals
    unsigned stride = 0;             ///< length of a row of errors

    [[nodiscard]] bool isEmpty() const { return positions.empty(); }
};

/// One setting of a PLL, and the row of errors of its clock in each domain, as `takeBetter` takes
/// them; null for a domain that it doesn't reach.
struct PllOption {
    std::uint8_t mul = 0;
    std::uint8_t div = 1;   ///< 1 for the NOC PLL, whose divider follows from the multiplier
    std::uint8_t cross = 4; ///< 4 for a PLL whose clock doesn't cross
    std::array<const float*, kDomains> errors{};
    float saving = 0.0F; ///< in all domains; see `PriceBound`
};

/// The options of one PLL: multipliers ascending, dividers and cross-domain dividers descending, as
/// they are enumerated. Of options of one multiplier with the same errors only the first is kept:
/// the others give the same sums later in the enumeration and can't win.
struct PllOptions {
    std::vector<PllOption> all;
    std::array<std::uint32_t, kMaxMultiplier + 2> firstOf{}; ///< by multiplier

    [[nodiscard]] std::span<const PllOption> of(unsigned mul) const {
        return std::span(all).subspan(firstOf[mul], firstOf[mul + 1] - firstOf[mul]);
    }
    [[nodiscard]] std::size_t indexOf(const PllOption& option) const {
        return static_cast<std::size_t>(&option - all.data());
    }
    /// Appends an option of the same multiplier as the last one or of a larger one.
    void add(const PllOption& option) {
        all.push_back(option);
        std::fill(firstOf.begin() + option.mul + 1, firstOf.end(),
                  static_cast<std::uint32_t>(all.size()));
    }
};

/// An arena of rows, which never move. Rows are made on demand: most trees need a small part of
/// those that there could be.
class RowStore {
public:
    /// All zeros.
    [[nodiscard]] float* add(std::size_t length);

private:
    std::vector<std::unique_ptr<float[]>> m_pages;
    std::size_t m_free = 0; ///< at the end of the last page
    std::size_t m_pageLength = 0;
};

/// Made once per step, then only read. Costs about peripherals × multipliers × dividers ×
/// cross-domain dividers.
class SourceTable {
public:
    explicit SourceTable(const SearchProblem& problem);
    /// Reduced cost fixing: the options and errors of another table that can be part of a sum
    /// within the ceiling. The other table must outlive this one.
    SourceTable(const SourceTable& whole, const PriceBound& bound, double ceiling);
    SourceTable(const SourceTable&) = delete;
    SourceTable& operator=(const SourceTable&) = delete;

    [[nodiscard]] const DomainRequests& domain(unsigned index) const { return m_domains[index]; }
    /// A role without a PLL has one option, of multiplier 0, which serves no peripheral.
    [[nodiscard]] const PllOptions& options(Role role) const { return m_options[indexOf(role)]; }
    /// Whether a PLL has no option at all, so that the step can't be solved.
    [[nodiscard]] bool lacksOptions() const;

private:
    /// Clocks of one kind that come to one domain; rows are made when first asked for.
    struct Block {
        std::vector<std::uint16_t> numbers; ///< by clock: 1 and up, 0 for a row not made yet
        std::vector<const float*> rows;
    };
    /// Clocks of one frequency share a row unless a peripheral treats their PLLs differently. The
    /// NOC PLL has a divider of its own; peripherals barred by name distinguish two PLLs from the
    /// others; peripherals with denied PLLs distinguish all of them: `OfRole` + role.
    enum Kind : std::uint8_t { Common, NocClock, BarredSecond, OfRole, kKinds = OfRole + kRoles };

    void addOptions(Role role, std::span<const std::uint8_t> multipliers);
    void addOption(Role role, PllOption option, float freqMhz);
    void setRows(Role role, unsigned domain, PllOption& option, float freqMhz);
    [[nodiscard]] const float* row(unsigned domain, Kind kind, const PllOption& option,
                                   unsigned cross, float freqMhz);
    [[nodiscard]] const float* makeRow(const DomainRequests& requests, Kind kind, float freqMhz);
    [[nodiscard]] float entry(const SearchRequest& request, Kind kind, float freqMhz) const;
    /// The row without errors above these.
    [[nodiscard]] const float* cutRow(const float* row, const std::vector<float>& most);
    void addUnlessRepeated(PllOptions& options, const PllOption& option) const;

    const SearchProblem& m_problem;
    std::array<DomainRequests, kDomains> m_domains;
    std::array<bool, kDomains> m_hasBarred{};
    std::array<bool, kDomains> m_hasDenied{};
    std::array<std::array<Block, kKinds>, kDomains> m_blocks;
    RowStore m_rows;
    std::array<PllOptions, kRoles> m_options;
    std::vector<float> m_nobody;
};

} // namespace hbs_clocking
