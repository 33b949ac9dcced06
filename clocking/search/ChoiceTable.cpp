#include "clocking/search/ChoiceTable.h"

#include <algorithm>
#include <limits>

namespace hbs_clocking {

namespace {

/// Places behind the errors of a key for the multipliers of the head.
constexpr std::size_t kHeadPlaces = 3;

} // namespace

ChoiceTable::ChoiceTable(const SearchProblem& problem, const SourceTable& table, unsigned domain,
                         const ErrorFront& front)
    : m_problem(problem), m_options(table.options(Role::Own2First)),
      m_stage(problem.combinations.stages()[domain - 1]),
      m_looksAtHead(!m_stage.needs.empty() && !m_stage.headPlaces.empty()), m_front(front),
      m_domain(domain), m_stride(table.domain(domain).stride),
      m_completion(table, domain, domain == 2 ? Role::Own2Second : Role::Own3First,
                   domain == 2 ? Role::Own2Second : Role::Own3Second, problem.tolerance),
      m_contexts(m_stride + kHeadPlaces), m_befores(m_stride + kHeadPlaces), m_results(m_stride) {}

unsigned ChoiceTable::contextOf(const ErrorRow& errors, const ChoiceHead& head) {
    ErrorRow key = errors;
    const bool isKey = head.isKey || m_looksAtHead;
    for (std::size_t place = 0; place < 2; ++place)
        key.push_back(isKey ? static_cast<float>(head.muls[place]) : 0.0F);
    key.push_back(0.0F);
    const unsigned context = m_contexts.add(key.data());
    m_entryOf.resize(m_contexts.size() * m_options.all.size());
    return context;
}

ChoiceTable::Entry& ChoiceTable::entryOf(unsigned context, std::size_t option) {
    unsigned& number = m_entryOf[context * m_options.all.size() + option];
    if (number == 0) {
        setBefore(context, option);
        number = m_befores.add(m_before.data()) + 1;
        m_before.resize(m_stride);
        if (number > m_entries.size()) {
            m_entries.emplace_back();
            if (!m_completion.isPossible(m_before)) {
                m_entries.back().least = std::numeric_limits<double>::infinity();
                m_entries.back().leastBudget = m_entries.back().least;
            }
        }
    }
    return m_entries[number - 1];
}

void ChoiceTable::setBefore(unsigned context, std::size_t option) {
    const float* const key = m_contexts.at(context);
    const PllOption& own = m_options.all[option];
    m_before.assign(key, key + m_stride);
    takeBetter(m_before, own.errors[m_domain]);
    // In domain 2 the own multiplier is one of a pair; in domain 3 it may be one of the head.
    const bool isKey = m_domain == 2 || key[m_stride] != 0.0F;
    m_before.insert(m_before.end(), key + m_stride, key + m_stride + 2);
    m_before.push_back(isKey ? static_cast<float>(own.mul) : 0.0F);
}

double ChoiceTable::least(unsigned context, std::size_t option, double budget) {
    Entry& entry = entryOf(context, option);
    const bool isExact = entry.least <= entry.leastBudget;
    if (!isExact && entry.least <= budget) {
        setBefore(context, option);
        m_before.resize(m_stride);
        entry.least = m_front.least(m_before, budget);
        entry.leastBudget = budget;
    }
    return entry.least;
}

std::span<const OwnChoice> ChoiceTable::choices(unsigned context, std::size_t option, double budget,
                                                const ChoiceHead& head) {
    Entry& entry = entryOf(context, option);
    if (entry.budget < budget) {
        setBefore(context, option);
        m_before.resize(m_stride);
        fill(entry, option, budget, head);
    }
    return entry.choices;
}

void ChoiceTable::fill(Entry& entry, std::size_t option, double budget, const ChoiceHead& head) {
    m_choicesKept -= entry.choices.size();
    entry.choices.clear();
    entry.budget = budget;
    m_places.clear();
    const CombinationTails tails(m_stage, head.muls);
    const MultiplierMask seconds = tails.seconds(m_options.all[option].mul); // of domain 2
    const auto goTogether = [&](const OwnSetting& setting) {
        if (setting.second == nullptr)
            return seconds.contains(setting.first->mul);
        return !m_looksAtHead || tails.seconds(setting.first->mul).contains(setting.second->mul);
    };
    const bool withTwins = m_looksAtHead || !head.chunkStarts.empty();
    m_front.forEachWithin(m_before, budget, withTwins, [&](const OwnSetting& setting) {
        if (!goTogether(setting))
            return;
        m_errors = m_before;
        takeBetter(m_errors, setting.first->errors[m_domain]);
        if (setting.second != nullptr)
            takeBetter(m_errors, setting.second->errors[m_domain]);
        if (areAllServed(m_errors, m_problem.tolerance) && sumForBound(m_errors) <= budget)
            add(entry, setting, segmentOf(setting, head));
    });
    std::sort(entry.choices.begin(), entry.choices.end(),
              [](const OwnChoice& a, const OwnChoice& b) {
                  return a.setting.place() < b.setting.place();
              });
    m_choicesKept += entry.choices.size();
}

unsigned ChoiceTable::segmentOf(const OwnSetting& setting, const ChoiceHead& head) const {
    // With a second PLL of domain 2 at the start's multiplier, the pair of domain 3 decides on
    // which side a combination lies; below and above it, none does.
    unsigned segment = 0;
    for (const Combination& start : head.chunkStarts) {
        if (m_domain == 2) {
            const std::uint8_t edge = start[indexOf(Role::Own2Second)];
            segment +=
                (edge < setting.first->mul ? 1U : 0U) + (edge <= setting.first->mul ? 1U : 0U);
        } else {
            const std::array edge = {start[indexOf(Role::Own3First)],
                                     start[indexOf(Role::Own3Second)]};
            segment += edge <= std::array{setting.first->mul, setting.second->mul} ? 1U : 0U;
        }
    }
    return segment;
}

void ChoiceTable::add(Entry& entry, const OwnSetting& setting, unsigned segment) {
    const unsigned row = m_results.add(m_errors.data());
    const std::uint64_t key = (std::uint64_t{row} << 32U) | segment;
    const auto [place, isNew] = m_places.try_emplace(key, entry.choices.size());
    if (isNew) {
        entry.choices.push_back({setting, exactSum(m_errors), row, segment});
        return;
    }
    OwnSetting& same = entry.choices[place->second].setting;
    if (setting.place() < same.place())
        same = setting;
}

std::size_t ChoiceTable::bytes() const {
    return m_contexts.bytes() + m_befores.bytes() + m_results.bytes() +
           m_entryOf.capacity() * sizeof(unsigned) + m_entries.capacity() * sizeof(Entry) +
           m_choicesKept * sizeof(OwnChoice);
}

void ChoiceTable::clear() {
    m_contexts = RowIndex(m_stride + kHeadPlaces);
    m_befores = RowIndex(m_stride + kHeadPlaces);
    m_results = RowIndex(m_stride);
    m_entryOf = {};
    m_entries = {};
    m_choicesKept = 0;
}

} // namespace hbs_clocking
