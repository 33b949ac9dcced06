#include "clocking/search/ChoiceTable.h"

#include <algorithm>
#include <limits>

namespace hbs_clocking {

namespace {

/// Entries of a key after its errors: the multipliers of the head.
constexpr std::size_t kHeadPlaces = 3;

} // namespace

ChoiceTable::ChoiceTable(const SearchProblem& problem, const SourceTable& table, unsigned domain,
                         const PriceRow& prices, const ErrorFront& front)
    : m_problem(problem), m_options(table.options(Role::Own2First)),
      m_stage(problem.combinations.stages()[domain - 1]),
      m_looksAtHead(!m_stage.needs.empty() && !m_stage.headPlaces.empty()), m_prices(prices),
      m_front(front), m_domain(domain), m_stride(table.domain(domain).stride),
      m_completion(table, domain, domain == 2 ? Role::Own2Second : Role::Own3First,
                   domain == 2 ? Role::Own2Second : Role::Own3Second, problem.tolerance),
      m_contexts(m_stride + kHeadPlaces), m_befores(m_stride + kHeadPlaces), m_results(m_stride) {}

unsigned ChoiceTable::contextOf(const ErrorRow& errors, const ChoiceHead& head) {
    // Where the multipliers don't matter their entries are 0, so that contexts with equal errors
    // share a number, and with it all that is memoised.
    ErrorRow key = errors;
    const bool isKey = head.isKey || m_looksAtHead;
    for (std::size_t place = 0; place < 2; ++place)
        key.push_back(isKey ? static_cast<float>(head.muls[place]) : 0.0F);
    key.push_back(0.0F);
    const unsigned context = m_contexts.add(key.data());
    m_entryOf.resize(m_contexts.size() * m_options.all.size());
    if (m_floors.size() < m_entryOf.size())
        addFloors(context);
    return context;
}

void ChoiceTable::addFloors(unsigned context) {
    // At prices that aren't above the context's errors the context saves nothing, so the sum is at
    // least the prices less the savings of the option and of the setting. Two rows of such prices
    // give a bound each, of which the larger one counts: the fitted prices capped at these errors,
    // which are better where the context serves well, and the errors themselves.
    PriceRow prices = m_prices;
    PriceRow before = m_prices;
    const float* const errors = m_contexts.at(context);
    for (std::size_t i = 0; i < prices.size(); ++i) {
        before[i] = std::fabs(errors[i]);
        prices[i] = std::min(prices[i], before[i]);
    }
    constexpr double any = std::numeric_limits<double>::infinity();
    const double least = m_front.least(prices, any);
    const double leastBefore = m_front.least(before, any);
    // Ceilings allow for the rounding of sums of the prices. The context's errors may be far larger
    // than these, so their sums are widened by their own rounding here.
    const double larger = 1.0 + static_cast<double>(m_stride + kLanes) * 0x1p-23;
    for (const PllOption& option : m_options.all) {
        const auto saving = static_cast<double>(savingOf(prices, option.errors[m_domain]));
        const auto savingBefore = static_cast<double>(savingOf(before, option.errors[m_domain]));
        m_floors.push_back(static_cast<float>(
            std::max(least - saving, leastBefore / larger - savingBefore * larger)));
    }
}

double ChoiceTable::floorOf(unsigned context, std::size_t option) {
    return static_cast<double>(m_floors[context * m_options.all.size() + option]);
}

unsigned ChoiceTable::entryNumber(unsigned context, std::size_t option) {
    static_cast<void>(entryOf(context, option));
    return m_entryOf[context * m_options.all.size() + option];
}

ChoiceTable::Entry& ChoiceTable::entryOf(unsigned context, std::size_t option) {
    unsigned& number = m_entryOf[context * m_options.all.size() + option];
    if (number == 0) {
        setBefore(context, option);
        // Many contexts and options leave the same errors; they share an entry.
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
    // In domain 2 this multiplier decides which second ones go with it. In domain 3 it matters only
    // where the list of combinations or a chunk's start depends on the head.
    const bool isKey = m_domain == 2 || key[m_stride] != 0.0F;
    m_before.insert(m_before.end(), key + m_stride, key + m_stride + 2);
    m_before.push_back(isKey ? static_cast<float>(own.mul) : 0.0F);
}

double ChoiceTable::least(unsigned context, std::size_t option, double budget) {
    Entry& entry = entryOf(context, option);
    // A result above the budget that it was searched for is a lower bound only: the scan ended
    // early. It is searched again if it doesn't exceed the new budget.
    const bool isExact = entry.least <= entry.leastBudget;
    if (!isExact && entry.least <= budget) {
        setBefore(context, option);
        m_before.resize(m_stride);
        entry.least = m_front.least(m_before, budget);
        entry.leastBudget = budget;
    }
    return entry.least;
}

std::span<const OwnChoice> ChoiceTable::choices(unsigned context, std::size_t option,
                                                const ChoiceBudget& budget,
                                                const ChoiceHead& head) {
    Entry& entry = entryOf(context, option);
    // A list for a larger budget holds all that a smaller one asks for; the caller tests the sums.
    if (entry.budget < budget.sum) {
        setBefore(context, option);
        m_before.resize(m_stride);
        fill(entry, option, budget, head);
    }
    return entry.choices;
}

void ChoiceTable::fill(Entry& entry, std::size_t option, const ChoiceBudget& budget,
                       const ChoiceHead& head) {
    m_choicesKept -= entry.choices.size();
    entry.budget = budget.sum;
    m_lows.clear();
    m_steps.clear();
    const CombinationTails tails(m_stage, head.muls);
    const MultiplierMask seconds = tails.seconds(m_options.all[option].mul); // of domain 2
    const auto goTogether = [&](const OwnSetting& setting) {
        if (setting.second == nullptr)
            return seconds.contains(setting.first->mul);
        return !m_looksAtHead || tails.seconds(setting.first->mul).contains(setting.second->mul);
    };
    // The first of twins can represent the others only if all are in one segment and in the list.
    const bool withTwins = m_looksAtHead || !head.chunkStarts.empty();
    m_front.forEachWithin(m_before, budget.sum, withTwins, [&](const OwnSetting& setting) {
        if (goTogether(setting) && setErrors(setting) && sumForBound(m_errors) <= budget.sum)
            keepLow(setting, segmentOf(setting, head), budget.room);
    });
    addLows(entry, budget.room);
    m_choicesKept += entry.choices.size();
}

bool ChoiceTable::setErrors(const OwnSetting& setting) {
    m_errors = m_before;
    takeBetter(m_errors, setting.first->errors[m_domain]);
    if (setting.second != nullptr)
        takeBetter(m_errors, setting.second->errors[m_domain]);
    return areAllServed(m_errors, m_problem.tolerance);
}

void ChoiceTable::keepLow(const OwnSetting& setting, unsigned segment, double room) {
    // Segments are contiguous in the order of places. The front delivers settings of large saving
    // first, so that most later ones are found to be dominated here.
    const Step own = {setting.place(), segment, exactSum(m_errors)};
    auto behind =
        std::upper_bound(m_steps.begin(), m_steps.end(), own.place,
                         [](const auto& place, const Step& step) { return place < step.place; });
    if (behind != m_steps.begin() && std::prev(behind)->segment == segment) {
        const double before = std::prev(behind)->sum;
        if (own.sum > before + room)
            return;
        if (own.sum >= before) {
            m_lows.push_back({setting, own.sum, 0, segment});
            return;
        }
    }
    m_lows.push_back({setting, own.sum, 0, segment});
    auto end = behind;
    while (end != m_steps.end() && end->segment == segment && end->sum >= own.sum)
        ++end;
    m_steps.insert(m_steps.erase(behind, end), own);
}

void ChoiceTable::addLows(Entry& entry, double room) {
    // `keepLow` saw the choices in the order of savings and kept some that an earlier place found
    // later dominates. In the order of places one pass removes them, and those with the same
    // errors.
    std::sort(m_lows.begin(), m_lows.end(), [](const OwnChoice& a, const OwnChoice& b) {
        return a.setting.place() < b.setting.place();
    });
    entry.choices.clear();
    double least = std::numeric_limits<double>::infinity();
    const OwnChoice* last = nullptr;
    std::size_t first = 0; // of the segment
    for (OwnChoice& low : m_lows) {
        if (last != nullptr && last->segment != low.segment) {
            least = std::numeric_limits<double>::infinity();
            first = entry.choices.size();
        }
        last = &low;
        if (low.sum > least + room)
            continue;
        least = std::min(least, low.sum);
        static_cast<void>(setErrors(low.setting));
        low.row = m_results.add(m_errors.data());
        if (std::none_of(entry.choices.begin() + static_cast<std::ptrdiff_t>(first),
                         entry.choices.end(),
                         [&](const OwnChoice& same) { return same.row == low.row; }))
            entry.choices.push_back(low);
    }
}

unsigned ChoiceTable::segmentOf(const OwnSetting& setting, const ChoiceHead& head) const {
    // In domain 2, where the second PLL has the same multiplier as the chunk's start, the pair of
    // domain 3 decides on which side of the start a combination lies. Such choices therefore form a
    // segment of their own, between those that lie before and those that lie behind with any pair.
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

std::size_t ChoiceTable::bytes() const {
    return m_contexts.bytes() + m_befores.bytes() + m_results.bytes() +
           m_entryOf.capacity() * sizeof(unsigned) + m_floors.capacity() * sizeof(float) +
           m_entries.capacity() * sizeof(Entry) + m_choicesKept * sizeof(OwnChoice);
}

void ChoiceTable::clear() {
    m_contexts = RowIndex(m_stride + kHeadPlaces);
    m_befores = RowIndex(m_stride + kHeadPlaces);
    m_results = RowIndex(m_stride);
    m_entryOf = {};
    m_floors = {};
    m_entries = {};
    m_choicesKept = 0;
}

} // namespace hbs_clocking
