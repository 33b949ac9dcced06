#include "clocking/search/ContextSearch.h"

#include <algorithm>
#include <cassert>
#include <limits>

namespace hbs_clocking {

namespace {

/// Beyond this the contexts searched are forgotten, at the price of searching some again.
constexpr std::size_t kMostSearchedBytes = 4U << 20U;

[[nodiscard]] double largestOf(const SavingRow& savings, std::size_t begin, std::size_t end) {
    const auto first = savings.begin() + static_cast<std::ptrdiff_t>(begin);
    return static_cast<double>(
        *std::max_element(first, first + static_cast<std::ptrdiff_t>(end - begin)));
}

} // namespace

ContextSearch::ContextSearch(const SearchProblem& problem, const SourceTable& table,
                             const PriceBound& bound, const CombinationRange& range)
    : m_problem(problem), m_table(table), m_bound(bound), m_range(range),
      m_ownChoices(problem, table, bound), m_places(problem.requests.size()),
      m_tailsDependOnHead(problem.combinations.tailsDependOnHead()) {
    assert(!problem.combinations.stages()[2].looksAt(indexOf(Role::Own2Second)));
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const std::vector<unsigned>& positions = table.domain(domain).positions;
        for (unsigned i = 0; i < positions.size(); ++i)
            m_places[positions[i]] = {domain, i};
    }
}

bool ContextSearch::isWorthSearching(const Context& context) {
    const std::array<unsigned, 2> place = {context.main->mul, context.noc->mul};
    std::string key;
    for (const ErrorRow& errors : context.errors)
        key += keyOf(errors);
    // Where the range begins amid a context, what comes before it must not stand for equals that
    // come later.
    const bool onEdge = place[0] == m_range.first[0] && place[1] == m_range.first[1];
    if (m_tailsDependOnHead || onEdge)
        key.append({static_cast<char>(place[0]), static_cast<char>(place[1])});
    m_searchedBytes += key.size();
    if (m_searchedBytes > kMostSearchedBytes) {
        m_searched.clear();
        m_searchedBytes = key.size();
    }
    const auto [entry, isNew] = m_searched.try_emplace(std::move(key), place);
    if (!isNew && entry->second <= place)
        return false;
    entry->second = place;
    return true;
}

void ContextSearch::search(const Context& context, NearMinimum& sums) {
    m_context = &context;
    m_sums = &sums;
    m_head = {context.main->mul, context.noc->mul};
    updateCeiling();
    m_errorIds.clear();
    m_done.clear();
    const CombinationTails tails(m_problem.combinations.stages()[1], m_head);
    if (!boundContext(tails))
        return;
    const std::size_t count = m_table.options(Role::Own2First).all.size();
    for (std::size_t begin = 0; begin < count;) {
        const OwnGroup group = groupAt(begin);
        searchGroup(group, tails);
        begin = group.end;
    }
}

void ContextSearch::updateCeiling() {
    Tuple place;
    place.muls = m_head;
    m_ceiling = m_bound.ceilingOf(m_sums->limitFrom(place));
}

bool ContextSearch::isOnEdge(unsigned places) const {
    return std::equal(m_head.begin(), m_head.begin() + places, m_range.first.begin());
}

bool ContextSearch::boundContext(const CombinationTails& tails) {
    for (const unsigned domain : {2U, 3U})
        m_prices[domain] = m_bound.prices(domain);
    const float tolerance = m_problem.tolerance;
    m_certain = m_context->nearSum;
    m_certain += capPrices(m_prices[2], m_context->errors[2], tolerance);
    m_domain3Prices = capPrices(m_prices[3], m_context->errors[3], tolerance);
    m_certain += m_domain3Prices;

    const PllOptions& firsts = m_table.options(Role::Own2First);
    const PllOptions& seconds = m_table.options(Role::Own2Second);
    computeSavings(firsts, 2, m_prices[2], m_firstSavings);
    computeSavings(firsts, 3, m_prices[3], m_acrossSavings);
    computeSavings(seconds, 2, m_prices[2], m_secondSavings);
    m_firsts2.assign(firsts.all,
                     [&](std::size_t i) { return m_firstSavings[i] + m_acrossSavings[i]; });
    m_seconds2.assign(seconds.all, [&](std::size_t i) { return m_secondSavings[i]; });

    SavingRow& savings = m_errors; // a row to work in
    for (const auto& [role, byMultiplier] :
         {std::pair(Role::Own3First, &m_firsts3), std::pair(Role::Own3Second, &m_seconds3)}) {
        const PllOptions& options = m_table.options(role);
        computeSavings(options, 3, m_prices[3], savings);
        byMultiplier->assign(options.all, [&](std::size_t i) { return savings[i]; });
    }
    const CombinationTails anyTails3(m_problem.combinations.stages()[2]);
    m_best3Anyhow = static_cast<double>(largestTogether(m_firsts3, m_seconds3, anyTails3).saving);
    const auto best2 = static_cast<double>(largestTogether(m_firsts2, m_seconds2, tails).saving);
    return m_certain - best2 - m_best3Anyhow <= m_ceiling;
}

ContextSearch::OwnGroup ContextSearch::groupAt(std::size_t begin) const {
    const std::vector<PllOption>& options = m_table.options(Role::Own2First).all;
    std::size_t end = begin + 1;
    while (end < options.size() && options[end].mul == options[begin].mul &&
           options[end].div == options[begin].div)
        ++end;
    return {begin, end, largestOf(m_acrossSavings, begin, end)};
}

void ContextSearch::searchGroup(const OwnGroup& group, const CombinationTails& tails) {
    const std::vector<PllOption>& options = m_table.options(Role::Own2First).all;
    const PllOption& own = options[group.begin];
    const MultiplierMask allowed = tails.seconds(own.mul);
    const double certain = m_certain - static_cast<double>(m_firstSavings[group.begin]) -
                           group.acrossSaving -
                           static_cast<double>(m_seconds2.largestAmong(allowed).saving);
    if (certain - m_best3Anyhow > m_ceiling)
        return;
    if (isOnEdge(2) && own.mul < m_range.first[2])
        return;
    if (m_head[2] != own.mul) {
        m_head[2] = own.mul;
        updateCeiling();
        const CombinationTails tails3(m_problem.combinations.stages()[2], m_head);
        m_best3 = static_cast<double>(largestTogether(m_firsts3, m_seconds3, tails3).saving);
    }
    if (certain - m_best3 > m_ceiling)
        return;
    collectSeconds(group, allowed);
    if (m_seconds.empty())
        return;
    for (std::size_t i = group.begin; i < group.end; ++i) {
        searchAcross(options[i], static_cast<double>(m_acrossSavings[i]), false);
        if (m_anyOnEdge)
            searchAcross(options[i], static_cast<double>(m_acrossSavings[i]), true);
    }
}

void ContextSearch::collectSeconds(const OwnGroup& group, const MultiplierMask& allowed) {
    const PllOption& own = m_table.options(Role::Own2First).all[group.begin];
    const PllOptions& seconds = m_table.options(Role::Own2Second);
    ErrorRow withOwn = m_context->errors[2];
    takeBetter(withOwn, own.errors[2]);
    m_seconds.clear();
    m_secondsKnown.clear();
    m_leastSecondSum = std::numeric_limits<double>::infinity();
    m_anyOnEdge = false;
    const bool isEdgeGroup = isOnEdge(3);
    const unsigned edge = m_range.first[3];

    const double inDomain3 = m_domain3Prices - group.acrossSaving - m_best3;
    const double missing = m_certain - static_cast<double>(m_firstSavings[group.begin]) -
                           group.acrossSaving - m_best3 - m_ceiling;
    for (const auto& [saving, mul] : m_seconds2.all()) {
        if (missing > static_cast<double>(saving))
            break; // those to come save less still
        if (!allowed.contains(mul) || (isEdgeGroup && mul < edge))
            continue;
        for (const PllOption& second : seconds.of(mul)) {
            if (missing > static_cast<double>(m_secondSavings[seconds.indexOf(second)]))
                continue;
            m_errors = withOwn;
            takeBetter(m_errors, second.errors[2]);
            if (!areAllServed(m_errors, m_problem.tolerance))
                continue;
            const double sum = sumForBound(m_errors);
            if (m_context->nearSum + sum + inDomain3 <= m_ceiling)
                addSecond(second, isEdgeGroup && mul == edge, sum);
        }
    }
}

void ContextSearch::addSecond(const PllOption& option, bool onEdge, double sum) {
    const auto nextId = static_cast<unsigned>(m_errorIds.size());
    const unsigned id = m_errorIds.try_emplace(keyOf(m_errors), nextId).first->second;
    const auto [entry, isNew] = m_secondsKnown.try_emplace(2 * id + onEdge, m_seconds.size());
    if (isNew) {
        m_seconds.push_back({&option, id, onEdge, sum, m_errors});
        m_anyOnEdge = m_anyOnEdge || onEdge;
        m_leastSecondSum = std::min(m_leastSecondSum, sum);
    } else if (&option < m_seconds[entry->second].option) {
        m_seconds[entry->second].option = &option; // the same errors, earlier
    }
}

void ContextSearch::searchAcross(const PllOption& own, double acrossSaving, bool onEdge) {
    const double sumSoFar = m_context->nearSum + m_leastSecondSum;
    if (sumSoFar + m_domain3Prices - acrossSaving - m_best3 > m_ceiling)
        return;
    m_errors = m_context->errors[3];
    takeBetter(m_errors, own.errors[3]);
    const OwnChoices::Muls from =
        onEdge ? OwnChoices::Muls{m_range.first[4], m_range.first[5]} : OwnChoices::Muls{};
    const OwnChoiceList& list = m_ownChoices.find(m_errors, m_head, m_ceiling - sumSoFar, from);
    for (const Second& second : m_seconds) {
        if (second.isOnEdge != onEdge || comesTooLate(own, second, list.id))
            continue;
        for (const OwnChoice& choice : list.choices) {
            const double sum = m_context->nearSum + second.sum + choice.sum;
            if (sum <= m_ceiling)
                evaluate(own, second, choice);
        }
    }
}

bool ContextSearch::comesTooLate(const PllOption& own, const Second& second, unsigned listId) {
    // With the same errors in domain 2 and the same choices for domain 3, the sums are the same;
    // only an earlier place makes them worth another look.
    const auto behind8 = [](unsigned div) { return static_cast<std::uint8_t>(8 - div); };
    const std::array<std::uint8_t, 5> place = {own.mul, second.option->mul, behind8(own.div),
                                               behind8(second.option->div), behind8(own.cross)};
    const std::uint64_t key = std::uint64_t{second.id} << 32U | listId;
    const auto [entry, isNew] = m_done.try_emplace(key, place);
    if (isNew)
        return false;
    if (entry->second <= place)
        return true;
    entry->second = place;
    return false;
}

void ContextSearch::evaluate(const PllOption& own, const Second& second, const OwnChoice& choice) {
    ++m_evaluated;
    const std::array<const float*, kDomains> errors = {m_context->errors[0].data(),
                                                       m_context->errors[1].data(),
                                                       second.errors.data(), choice.errors.data()};
    float sum = 0.0F; // in the order of the peripherals, since each addition rounds
    for (const auto& [domain, place] : m_places)
        sum += errors[domain][place];
    if (static_cast<double>(sum) > m_sums->limit())
        return;
    const std::array<const PllOption*, kRoles> options = {
        m_context->main, m_context->noc, &own, second.option, choice.first, choice.second};
    Tuple tuple;
    for (unsigned role = 0; role < kRoles; ++role) {
        tuple.muls[role] = options[role]->mul;
        tuple.divsBelow8[role] = static_cast<std::uint8_t>(8 - options[role]->div);
    }
    for (unsigned role = 0; role < tuple.crossesBelow4.size(); ++role)
        tuple.crossesBelow4[role] = static_cast<std::uint8_t>(4 - options[role]->cross);
    if (m_range.contains(tuple.muls))
        m_sums->offer(tuple, sum);
    updateCeiling();
}

} // namespace hbs_clocking
