#include "workbench/clocks/ClockConflicts.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <deque>
#include <map>
#include <set>

#include "clocking/SearchInterruption.h"

namespace tq {

namespace {

/// Places of peripherals, ascending.
using Members = std::vector<std::size_t>;

/// Beyond this many runs the search for further sets ends.
constexpr std::size_t kMostSolves = 600;

// The requests tried for a NOC clock that is free: dividers of the VCO, and multipliers spread
// evenly over its range.
constexpr float kLeastVcoMhz = 2160.0F;
constexpr unsigned kNocMultipliers = 5;
constexpr std::array<float, 4> kNocDividers = {8.0F, 4.0F, 2.0F, 1.0F};

[[nodiscard]] Members without(const Members& members, std::size_t left) {
    Members rest = members;
    rest.erase(std::remove(rest.begin(), rest.end(), left), rest.end());
    return rest;
}

[[nodiscard]] bool intersects(const Members& members, const std::set<std::size_t>& removed) {
    return std::any_of(members.begin(), members.end(),
                       [&](std::size_t member) { return removed.count(member) != 0; });
}

class ConflictSearch {
public:
    ConflictSearch(const ClockTree& tree, std::size_t most) : m_tree(tree), m_most(most) {
        for (std::size_t i = 0; i < tree.peripherals.size(); ++i) {
            if (!tree.peripherals[i].enabled)
                continue;
            m_enabled.push_back(i);
            if (tree.pllCount > 2 && tree.peripherals[i].noc)
                m_noc = i;
        }
    }

    ClockConflicts find() {
        if (!m_enabled.empty() && !meets(m_enabled))
            collect();
        std::sort(m_sets.begin(), m_sets.end(), [](const Members& a, const Members& b) {
            return a.size() != b.size() ? a.size() < b.size() : a < b;
        });
        for (const Members& set : m_sets)
            m_result.sets.push_back(explained(set));
        return m_result;
    }

private:
    /// The hitting-set tree: each node has removed one member of every set on its way.
    void collect() {
        std::deque<std::set<std::size_t>> open = {{}};
        std::set<std::set<std::size_t>> seen;
        while (!open.empty()) {
            if (m_sets.size() == m_most || m_result.solves > kMostSolves) {
                m_result.isComplete = false;
                return;
            }
            const std::set<std::size_t> removed = open.front();
            open.pop_front();
            const Members* const set = conflictWithout(removed);
            for (std::size_t i = 0; set != nullptr && i < set->size(); ++i) {
                std::set<std::size_t> next = removed;
                next.insert((*set)[i]);
                if ((*set)[i] != m_noc && seen.insert(next).second)
                    open.push_back(std::move(next));
            }
        }
    }

    /// A minimal set among those not removed, or null. The pointer lasts until the next call.
    [[nodiscard]] const Members* conflictWithout(const std::set<std::size_t>& removed) {
        for (const Members& known : m_sets)
            if (!intersects(known, removed))
                return &known;
        Members rest;
        for (const std::size_t member : m_enabled)
            if (removed.count(member) == 0)
                rest.push_back(member);
        if (meets(rest))
            return nullptr;
        m_sets.push_back(minimal(rest));
        return &m_sets.back();
    }

    /// A minimal set of a list that isn't met.
    [[nodiscard]] Members minimal(const Members& unmet) {
        if (m_noc && !meets({*m_noc}))
            return {*m_noc};
        Members others = m_noc ? without(unmet, *m_noc) : unmet;
        Members set = quickXplain({}, {}, others);
        // What is met needn't stay met with less: a domain keeps the tolerance that served it
        // first.
        for (std::size_t i = 0; i < set.size();) {
            const Members rest = without(set, set[i]);
            if (meetsWithNoc(rest))
                ++i;
            else
                set = rest, i = 0;
        }
        std::sort(set.begin(), set.end());
        if (m_noc && meetsWithAnotherNoc(set))
            set.insert(std::lower_bound(set.begin(), set.end(), *m_noc), *m_noc);
        return set;
    }

    /// The least part of `others` that isn't met together with `base`, which together aren't met.
    [[nodiscard]] Members quickXplain(const Members& base, const Members& added,
                                      const Members& others) {
        if (!added.empty() && !meetsWithNoc(base))
            return {};
        if (others.size() == 1)
            return others;
        const auto middle = others.begin() + static_cast<std::ptrdiff_t>(others.size() / 2);
        const Members firsts(others.begin(), middle);
        const Members seconds(middle, others.end());
        const Members ofSeconds = quickXplain(joined(base, firsts), firsts, seconds);
        Members all = quickXplain(joined(base, ofSeconds), ofSeconds, firsts);
        all.insert(all.end(), ofSeconds.begin(), ofSeconds.end());
        return all;
    }

    [[nodiscard]] static Members joined(const Members& a, const Members& b) {
        Members all = a;
        all.insert(all.end(), b.begin(), b.end());
        std::sort(all.begin(), all.end());
        return all;
    }

    [[nodiscard]] bool meetsWithNoc(const Members& members) {
        return meets(m_noc ? joined(members, {*m_noc}) : members);
    }

    [[nodiscard]] bool meetsWithAnotherNoc(const Members& others) {
        ClockTree tree = subTree(joined(others, {*m_noc}));
        const float octave = kLeastVcoMhz / tree.referenceMhz;
        for (const float divider : kNocDividers)
            for (unsigned i = 0; i < kNocMultipliers; ++i) {
                const float part = static_cast<float>(i) / (kNocMultipliers - 1);
                const float multiplier = std::ceil(octave * (1.0F + part * 0.98F));
                tree.peripherals[*m_noc].mhz = multiplier * tree.referenceMhz / divider;
                if (isMet(tree))
                    return true;
            }
        return false;
    }

    [[nodiscard]] bool meets(const Members& members) {
        if (members.empty())
            return true;
        const auto [entry, isNew] = m_met.try_emplace(members);
        if (isNew)
            entry->second = isMet(subTree(members), &m_tolerances[members]);
        return entry->second;
    }

    [[nodiscard]] ClockTree subTree(const Members& members) const {
        ClockTree tree = m_tree;
        for (std::size_t i = 0; i < tree.peripherals.size(); ++i)
            tree.peripherals[i].enabled = std::binary_search(members.begin(), members.end(), i);
        // The candidates for all PLLs are those that serve a request outside the NOC domain.
        if (m_noc && members == Members{*m_noc})
            tree.peripherals.push_back({"any clock will do", tree.domains.front().name});
        return tree;
    }

    [[nodiscard]] bool isMet(const ClockTree& tree, float* tolerance = nullptr) {
        hbs_clocking::SearchInterruption::raiseIfRequested();
        ++m_result.solves;
        const ClockRun run = runClockTree(tree, {}, &m_texts);
        if (tolerance != nullptr)
            *tolerance = run.solver->getToleranceFector();
        return meetsAllRequests(tree, *run.solver);
    }

    [[nodiscard]] ClockConflict explained(const Members& set) {
        ClockConflict conflict;
        for (const std::size_t member : set) {
            ClockConflict::Without without{member, false, std::nullopt};
            if (member != m_noc) {
                const Members others = tq::without(m_enabled, member);
                const Members rest = tq::without(set, member);
                without.allMet = !others.empty() && meets(others);
                if (without.allMet)
                    without.tolerance = m_tolerances[others];
                else if (!rest.empty() && meetsWithNoc(rest))
                    without.tolerance = m_tolerances[m_noc ? joined(rest, {*m_noc}) : rest];
            }
            conflict.members.push_back(without);
        }
        return conflict;
    }

    const ClockTree& m_tree;
    std::size_t m_most;
    Members m_enabled;
    std::optional<std::size_t> m_noc;
    LibraryTexts m_texts;
    std::map<Members, bool> m_met;
    std::map<Members, float> m_tolerances;
    std::vector<Members> m_sets;
    ClockConflicts m_result;
};

} // namespace

ClockConflicts findClockConflicts(const ClockTree& tree, std::size_t most) {
    return ConflictSearch(tree, most).find();
}

} // namespace tq
