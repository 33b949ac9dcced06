#include "clocking/search/CombinationList.h"

#include <algorithm>
#include <map>
#include <string>

namespace hbs_clocking {

namespace {

[[nodiscard]] bool isServedByHead(const CoverNeed& need, const CombinationStage& stage,
                                  const Combination& head, unsigned headWidth) {
    return need.headServes &&
           std::any_of(stage.headPlaces.begin(), stage.headPlaces.end(), [&](unsigned place) {
               return place < headWidth && need.served.contains(head[place]);
           });
}

/// Counts the continuations of heads, memoised: heads that leave the same needs open have the same
/// continuations, so each kind of head is counted once.
class ContinuationCounter {
public:
    explicit ContinuationCounter(std::span<const CombinationStage> stages)
        : m_stages(stages), m_counts(stages.size()), m_used(stages.size()) {}

    std::uint64_t count(std::size_t stage, const Combination& head, unsigned headWidth) {
        if (stage == m_stages.size())
            return 1;
        const auto [entry, isNew] = m_counts[stage].try_emplace(kindOf(stage, head, headWidth), 0);
        if (isNew)
            entry->second = countAnew(stage, head, headWidth);
        return entry->second;
    }

    /// Values that occur in a combination counted so far: of a stage's first and second place.
    [[nodiscard]] const std::array<MultiplierMask, 2>& used(std::size_t stage) const {
        return m_used[stage];
    }

private:
    /// Which needs of this and later stages the head serves already.
    [[nodiscard]] std::string kindOf(std::size_t stage, const Combination& head,
                                     unsigned headWidth) const {
        std::string kind;
        for (std::size_t i = stage; i < m_stages.size(); ++i) {
            if (m_stages[i].headPlaces.empty())
                continue;
            for (const CoverNeed& need : m_stages[i].needs)
                kind += isServedByHead(need, m_stages[i], head, headWidth) ? '1' : '0';
        }
        return kind;
    }

    /// Whether a later stage looks at this place.
    [[nodiscard]] bool isLookedAt(unsigned place, std::size_t stage) const {
        return std::any_of(m_stages.begin() + static_cast<std::ptrdiff_t>(stage) + 1,
                           m_stages.end(),
                           [place](const CombinationStage& later) { return later.looksAt(place); });
    }

    [[nodiscard]] std::uint64_t countAnew(std::size_t stage, Combination head, unsigned headWidth) {
        const CombinationStage& own = m_stages[stage];
        const CombinationTails tails(own, head);
        const unsigned nextWidth = headWidth + own.width();
        // Unless a later stage looks at the second place, all its values have equally many
        // continuations: one count, multiplied.
        const bool eachSecond = own.width() == 2 && isLookedAt(headWidth + 1, stage);
        std::uint64_t sum = 0;
        for (const std::uint8_t first : own.firsts) {
            const MultiplierMask seconds = tails.seconds(first);
            if (seconds.isEmpty())
                continue;
            head[headWidth] = first;
            std::uint64_t behindFirst = 0;
            if (!eachSecond) {
                behindFirst = seconds.size() * count(stage + 1, head, nextWidth);
                if (behindFirst != 0)
                    m_used[stage][1] |= seconds;
            }
            for (std::size_t i = 0; eachSecond && i < own.seconds.size(); ++i) {
                if (!seconds.contains(own.seconds[i]))
                    continue;
                head[headWidth + 1] = own.seconds[i];
                const std::uint64_t behind = count(stage + 1, head, nextWidth);
                behindFirst += behind;
                if (behind != 0)
                    m_used[stage][1].insert(own.seconds[i]);
            }
            if (behindFirst != 0)
                m_used[stage][0].insert(first);
            sum += behindFirst;
        }
        return sum;
    }

    std::span<const CombinationStage> m_stages;
    std::vector<std::map<std::string, std::uint64_t>> m_counts;
    std::vector<std::array<MultiplierMask, 2>> m_used;
};

void keepOnly(std::vector<std::uint8_t>& values, const MultiplierMask& used) {
    std::erase_if(values, [&](std::uint8_t value) { return !used.contains(value); });
}

} // namespace

bool CombinationStage::looksAt(unsigned place) const {
    return std::count(headPlaces.begin(), headPlaces.end(), place) != 0;
}

void CombinationStage::simplify() {
    // A combination that covers a need covers every superset of it as well.
    std::vector<CoverNeed> kept;
    for (std::size_t i = 0; i < needs.size(); ++i) {
        bool implied = false;
        for (std::size_t j = 0; j < needs.size() && !implied; ++j) {
            const bool narrower = needs[j].served.isSubsetOf(needs[i].served) &&
                                  needs[j].headServes <= needs[i].headServes;
            implied = j != i && narrower && (needs[j] != needs[i] || j < i);
        }
        if (!implied)
            kept.push_back(needs[i]);
    }
    needs = std::move(kept);
}

template <class IsServed>
CombinationTails::CombinationTails(const CombinationStage& stage, const IsServed& isServed)
    : m_stage(stage) {
    if (stage.width() == 1)
        m_alphabet.insert(0);
    for (const std::uint8_t second : stage.seconds)
        m_alphabet.insert(second);
    for (const CoverNeed& need : stage.needs)
        if (!isServed(need))
            m_missing.push_back(need.served);
}

CombinationTails::CombinationTails(const CombinationStage& stage, const Combination& head)
    : CombinationTails(stage, [&](const CoverNeed& need) {
          return isServedByHead(need, stage, head, static_cast<unsigned>(head.size()));
      }) {}

CombinationTails::CombinationTails(const CombinationStage& stage)
    : CombinationTails(stage, [&](const CoverNeed& need) {
          return need.headServes && !stage.headPlaces.empty();
      }) {}

MultiplierMask CombinationTails::seconds(unsigned first) const {
    MultiplierMask result = m_alphabet;
    if (m_stage.order == CombinationStage::Order::Different)
        result.erase(first);
    else if (m_stage.order == CombinationStage::Order::Ascending)
        result.eraseUpTo(first);
    // Each need that the first place leaves open must be covered by the second.
    for (const MultiplierMask& need : m_missing)
        if (!need.contains(first))
            result &= need;
    return result;
}

CombinationList::CombinationList(CombinationStage stage) {
    *this = extendedBy(std::move(stage));
}

CombinationList CombinationList::extendedBy(CombinationStage stage) const {
    CombinationList result = *this;
    stage.simplify();
    result.m_width += stage.width();
    result.m_stages.push_back(std::move(stage));
    ContinuationCounter counter(result.m_stages);
    result.m_size = counter.count(0, {}, 0);
    // A new stage may rule out values of earlier ones; dropping them makes every later pass
    // shorter.
    for (std::size_t i = 0; i < result.m_stages.size(); ++i) {
        keepOnly(result.m_stages[i].firsts, counter.used(i)[0]);
        keepOnly(result.m_stages[i].seconds, counter.used(i)[1]);
    }
    return result;
}

CombinationList CombinationList::timesList(const CombinationList& tails) const {
    CombinationList result = *this;
    result.m_stages.insert(result.m_stages.end(), tails.m_stages.begin(), tails.m_stages.end());
    result.m_width += tails.m_width;
    result.m_size = m_size * tails.m_size;
    return result;
}

Combination CombinationList::at(std::uint64_t index) const {
    ContinuationCounter counter(m_stages);
    Combination combination{};
    unsigned place = 0;
    for (std::size_t stage = 0; stage < m_stages.size(); ++stage) {
        const CombinationStage& own = m_stages[stage];
        const CombinationTails tails(own, combination);
        const unsigned nextPlace = place + own.width();
        const auto skip = [&](std::uint64_t count) {
            const bool passed = index >= count;
            index -= passed ? count : 0;
            return passed;
        };
        const auto place2 = [&](unsigned first) {
            const MultiplierMask seconds = tails.seconds(first);
            combination[place] = static_cast<std::uint8_t>(first);
            if (own.width() == 1)
                return !seconds.isEmpty() &&
                       !skip(counter.count(stage + 1, combination, nextPlace));
            return std::any_of(own.seconds.begin(), own.seconds.end(), [&](std::uint8_t second) {
                combination[place + 1] = second;
                return seconds.contains(second) &&
                       !skip(counter.count(stage + 1, combination, nextPlace));
            });
        };
        // Stops at the value of this stage that the wanted combination has.
        static_cast<void>(std::any_of(own.firsts.begin(), own.firsts.end(), place2));
        place = nextPlace;
    }
    return combination;
}

void CombinationList::forEach(std::uint64_t first, std::uint64_t last,
                              const std::function<void(const Combination&)>& action) const {
    if (first >= last)
        return;
    const Combination start = at(first);
    std::uint64_t left = last - first;
    const auto visit = [&](const auto& self, std::size_t stage, unsigned place,
                           Combination& combination) -> void {
        if (stage == m_stages.size()) {
            if (start <= combination) {
                action(combination);
                --left;
            }
            return;
        }
        const CombinationStage& own = m_stages[stage];
        const CombinationTails tails(own, combination);
        const unsigned next = place + own.width();
        for (const std::uint8_t value : own.firsts) {
            const MultiplierMask allowed = tails.seconds(value);
            combination[place] = value;
            // Skips subtrees that lie before the start as a whole.
            if (std::lexicographical_compare(combination.begin(), combination.begin() + place + 1,
                                             start.begin(), start.begin() + place + 1))
                continue;
            if (own.width() == 1 && !allowed.isEmpty() && left != 0)
                self(self, stage + 1, next, combination);
            for (std::size_t i = 0; i < own.seconds.size() && left != 0; ++i) {
                combination[place + 1] = own.seconds[i];
                if (allowed.contains(own.seconds[i]))
                    self(self, stage + 1, next, combination);
            }
        }
        std::fill(combination.begin() + place, combination.begin() + next, std::uint8_t{0});
    };
    Combination combination{};
    visit(visit, 0, 0, combination);
}

bool CombinationList::tailsDependOnHead() const {
    return std::any_of(m_stages.begin(), m_stages.end(), [](const CombinationStage& stage) {
        return !stage.headPlaces.empty() && !stage.needs.empty();
    });
}

bool CombinationList::contains(const Combination& combination) const {
    unsigned place = 0;
    for (const CombinationStage& stage : m_stages) {
        const CombinationTails tails(stage, combination);
        const unsigned second = stage.width() == 2 ? combination[place + 1] : 0;
        if (std::count(stage.firsts.begin(), stage.firsts.end(), combination[place]) == 0 ||
            !tails.seconds(combination[place]).contains(second))
            return false;
        place += stage.width();
    }
    return true;
}

} // namespace hbs_clocking
