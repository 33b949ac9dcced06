#include "clocking/search/OwnChoices.h"

#include <tuple>

namespace hbs_clocking {

namespace {

constexpr unsigned kDomain = 3;
constexpr std::size_t kMaxFloatsKept = 1U << 20U;

/// The place of a setting in the enumeration, where multipliers come before dividers.
[[nodiscard]] auto placeOf(const PllOption& first, const PllOption& second) {
    return std::make_tuple(first.mul, second.mul, 8 - first.div, 8 - second.div);
}

} // namespace

std::string keyOf(const ErrorRow& errors) {
    return {reinterpret_cast<const char*>(errors.data()), errors.size() * sizeof(float)};
}

void computeSavings(const PllOptions& options, unsigned domain, const PriceRow& prices,
                    SavingRow& savings) {
    savings.resize(options.all.size());
    const float* before = nullptr;
    for (std::size_t i = 0; i < savings.size(); ++i) {
        const float* errors = options.all[i].errors[domain];
        savings[i] = i != 0 && errors == before ? savings[i - 1] : savingOf(prices, errors);
        before = errors;
    }
}

double capPrices(PriceRow& prices, const ErrorRow& errors, float tolerance) {
    double sum = 0.0;
    for (std::size_t i = 0; i < prices.size(); ++i) {
        // Who isn't served yet depends on the clocks to come.
        if (isServed(errors[i], tolerance))
            prices[i] = std::min(prices[i], errors[i]);
        sum += static_cast<double>(prices[i]);
    }
    return sum;
}

OwnChoices::OwnChoices(const SearchProblem& problem, const SourceTable& table,
                       const PriceBound& bound)
    : m_problem(problem), m_table(table), m_bound(bound) {}

const OwnChoiceList& OwnChoices::find(const ErrorRow& before, const Combination& head,
                                      double budget, const Muls& from) {
    std::string key = keyOf(before);
    key.append({static_cast<char>(from[0]), static_cast<char>(from[1])});
    for (const unsigned place : m_problem.combinations.stages()[2].headPlaces)
        key += static_cast<char>(head[place]);
    if (m_floatsKept > kMaxFloatsKept) {
        m_known.clear();
        m_floatsKept = 0;
    }
    const auto [entry, isNew] = m_known.try_emplace(std::move(key));
    OwnChoiceList& list = entry->second;
    if (isNew)
        list.id = m_nextId++;
    if (isNew || list.budget < budget) {
        list.budget = budget;
        list.choices.clear();
        search(list, before, head, from);
        m_floatsKept += (list.choices.size() + 2) * (before.size() + 16);
    }
    return list;
}

void OwnChoices::search(OwnChoiceList& list, const ErrorRow& before, const Combination& head,
                        const Muls& from) {
    const PllOptions& firsts = m_table.options(Role::Own3First);
    const PllOptions& seconds = m_table.options(Role::Own3Second);
    m_prices = m_bound.prices(kDomain);
    const double prices = capPrices(m_prices, before, m_problem.tolerance);
    computeSavings(firsts, kDomain, m_prices, m_firstSavings);
    computeSavings(seconds, kDomain, m_prices, m_secondSavings);
    m_seconds.assign(seconds.all, [&](std::size_t i) { return m_secondSavings[i]; });

    m_distinct.clear();
    const double least = prices - list.budget;
    const CombinationTails tails(m_problem.combinations.stages()[2], head);
    for (std::size_t i = 0; i < firsts.all.size(); ++i) {
        const PllOption& first = firsts.all[i];
        const double missing = least - static_cast<double>(m_firstSavings[i]);
        if (missing > static_cast<double>(m_seconds.largest()))
            continue;
        m_withFirst = before;
        takeBetter(m_withFirst, first.errors[kDomain]);
        searchSeconds(list, first, tails.seconds(first.mul), missing, from);
    }
}

void OwnChoices::searchSeconds(OwnChoiceList& list, const PllOption& first,
                               const MultiplierMask& allowed, double missing, const Muls& from) {
    const PllOptions& seconds = m_table.options(Role::Own3Second);
    for (const auto& [saving, mul] : m_seconds.all()) {
        if (missing > static_cast<double>(saving))
            break; // those to come save less still
        if (!allowed.contains(mul) || Muls{first.mul, static_cast<std::uint8_t>(mul)} < from)
            continue;
        for (const PllOption& second : seconds.of(mul)) {
            if (missing > static_cast<double>(m_secondSavings[seconds.indexOf(second)]))
                continue;
            m_errors = m_withFirst;
            takeBetter(m_errors, second.errors[kDomain]);
            if (areAllServed(m_errors, m_problem.tolerance))
                add(list, first, second);
        }
    }
}

void OwnChoices::add(OwnChoiceList& list, const PllOption& first, const PllOption& second) {
    const double sum = sumForBound(m_errors);
    if (sum > list.budget)
        return;
    const auto [entry, isNew] = m_distinct.try_emplace(keyOf(m_errors), list.choices.size());
    if (isNew) {
        list.choices.push_back({&first, &second, sum, m_errors});
        return;
    }
    OwnChoice& same = list.choices[entry->second];
    if (placeOf(first, second) < placeOf(*same.first, *same.second)) {
        same.first = &first;
        same.second = &second;
    }
}

} // namespace hbs_clocking
