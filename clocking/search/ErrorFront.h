// The Pareto front of the choices for the own PLLs of a domain.
//
// A choice gives each peripheral of the domain an error: the smallest that its clocks offer. With
// other clocks, which leave the errors `before`, the domain's sum is at least the sum of
// min(before, error). Three facts make the least of these sums cheap to find:
// - Bound: with prices p (see `PriceBound`) the sum is at least the sum of min(before, p) less the
//   choice's saving, the sum of max(0, p - error). Choices are in descending order of the saving,
//   which doesn't depend on `before`, so a scan ends at the first one whose bound exceeds the least
//   sum found.
// - Dominance: a choice whose errors are all at least those of another one can't have the smaller
//   sum, whatever the errors before. It is kept below the other one, its leader, and a scan for the
//   least sum looks at leaders only. A scan for all choices within a budget descends only below
//   leaders that are within it.
// - Pairs with the same errors are twins: with any other clocks they leave the same errors, so only
//   the first of them in the enumeration can win. This holds only if the clocks of each pair differ
//   clearly for each peripheral, or not at all: otherwise the margin by which a later clock must be
//   better decides, and the order of the pair matters.
// A rounded sum of non-negative numbers never falls when one of them rises, so these facts also
// hold for sums that are rounded, as long as all are added in one fixed order.
#pragma once

#include <vector>

#include "clocking/search/PriceBound.h"

namespace hbs_clocking {

/// Settings of the own PLLs of a domain; `second` is null where only one is to be chosen.
struct OwnSetting {
    const PllOption* first = nullptr;
    const PllOption* second = nullptr;

    /// The place in the enumeration, where multipliers come before dividers.
    [[nodiscard]] std::array<unsigned, 4> place() const {
        if (second == nullptr)
            return {first->mul, 0, 8U - first->div, 0};
        return {first->mul, second->mul, 8U - first->div, 8U - second->div};
    }
};

/// Filled and arranged once, then only read. Arranging costs at most settings × peripherals × the
/// limits of the dominance test in the source.
class ErrorFront {
public:
    /// The prices, of this domain, must outlive the front.
    ErrorFront(unsigned domain, const PriceRow& prices) : m_domain(domain), m_prices(prices) {}

    /// Takes a setting that saves at least `least`; others are left out.
    void add(const OwnSetting& setting, double least);
    /// To be called once, after the last `add`.
    void arrange();

    /// The sum of min(before, price): the bound before a setting's saving is subtracted.
    [[nodiscard]] double certain(const ErrorRow& before) const {
        return sumOfSmaller(before.data(), m_prices.data(), m_prices.data());
    }
    /// The largest saving of a setting at these prices, none of which is above the front's own.
    [[nodiscard]] double largestSaving(const PriceRow& prices) const;
    /// A lower bound of all settings' sums with the errors `before`: the least sum itself if that
    /// is within the budget. Infinite for an empty front.
    [[nodiscard]] double least(const ErrorRow& before, double budget) const;
    /// Calls `action` with each setting whose sum of min(before, error) is within the budget; with
    /// the first of twins alone unless `withTwins`.
    template <class Action>
    void forEachWithin(const ErrorRow& before, double budget, bool withTwins,
                       const Action& action) const {
        const double sumBefore = certain(before);
        for (std::size_t i = 0; i < m_nodes.size();) {
            const Node& node = m_nodes[i];
            if (sumBefore - node.saving > budget || (node.isTwin && !withTwins) ||
                sumBehind(before, node.setting) > budget) {
                i = node.end;
                continue;
            }
            action(node.setting);
            ++i;
        }
    }

private:
    struct Node {
        OwnSetting setting;
        double saving;
        std::size_t hash; ///< of the errors
        std::size_t end;  ///< one past the nodes below this one, which follow it
        bool isTwin;      ///< of one that comes earlier in the enumeration
    };
    struct Tree;

    [[nodiscard]] const float* firstErrors(const OwnSetting& setting) const {
        return setting.first->errors[m_domain];
    }
    [[nodiscard]] const float* secondErrors(const OwnSetting& setting) const {
        return (setting.second == nullptr ? setting.first : setting.second)->errors[m_domain];
    }
    [[nodiscard]] double sumBehind(const ErrorRow& before, const OwnSetting& setting) const {
        return sumOfSmaller(before.data(), firstErrors(setting), secondErrors(setting));
    }
    [[nodiscard]] double sumOfSmaller(const float* before, const float* first,
                                      const float* second) const;
    [[nodiscard]] double savingOf(const PriceRow& prices, const OwnSetting& setting) const;
    [[nodiscard]] std::size_t hashOf(const OwnSetting& setting) const;
    [[nodiscard]] bool isClear(const OwnSetting& setting) const;
    [[nodiscard]] bool areTwins(const Node& a, const Node& b) const;
    void markTwins();
    [[nodiscard]] Tree buildTree() const;
    void flatten(const Tree& tree, std::vector<Node>& nodes) const;
    [[nodiscard]] bool dominates(const OwnSetting& leader, const OwnSetting& other) const;

    unsigned m_domain;
    const PriceRow& m_prices;
    std::vector<Node> m_nodes; ///< once arranged, the tree in preorder
};

} // namespace hbs_clocking
