#include "clocking/search/ContextSearch.h"

#include <algorithm>
#include <cassert>
#include <limits>

#include "clocking/SearchInterruption.h"

namespace hbs_clocking {

namespace {

/// Beyond this the memo tables are cleared; some of their content is computed again then.
constexpr std::size_t kMostBytes = 3U << 20U;

} // namespace

ContextSearch::ContextSearch(const SearchProblem& problem, const SourceTable& table,
                             const PriceBound& bound, const OwnPlls& own, ChunkLows& lows)
    : m_problem(problem), m_table(table), m_bound(bound), m_own(own), m_lows(lows),
      m_places(problem.requests.size()),
      m_completion2(table, 2, Role::Own2First, Role::Own2Second, problem.tolerance),
      m_choices2(problem, table, 2, bound.prices(2), own.seconds),
      m_choices3(problem, table, 3, bound.prices(3), own.pairs),
      m_nearRows(table.domain(0).stride + table.domain(1).stride) {
    assert(!problem.combinations.stages()[2].looksAt(indexOf(Role::Own2Second)));
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const std::vector<unsigned>& positions = table.domain(domain).positions;
        for (unsigned i = 0; i < positions.size(); ++i)
            m_places[positions[i]] = {domain, i};
    }
    fillLeast();
}

void ContextSearch::fillLeast() {
    // The smallest error that any own PLL gives a peripheral, from barred clocks too: no choice of
    // the own PLLs gives it less.
    for (const unsigned domain : {2U, 3U}) {
        ErrorRow& least = m_least[domain];
        least.assign(m_table.domain(domain).stride, kUnserved);
        for (const Role role :
             {Role::Own2First, Role::Own2Second, Role::Own3First, Role::Own3Second})
            for (const PllOption& option : m_table.options(role).all)
                for (std::size_t i = 0; i < least.size() && option.errors[domain] != nullptr; ++i)
                    least[i] = std::min(least[i], std::fabs(option.errors[domain][i]));
    }
}

void ContextSearch::search(const PllOption& main, const PllOption& noc) {
    SearchInterruption::raiseIfRequested();
    forgetIfLarge();
    ++m_effort;
    if (!enter(main, noc) || !recordContext())
        return;
    m_seen.clear();
    for (const OwnPlls::Group& group : m_own.groups)
        searchGroup(group);
}

bool ContextSearch::enter(const PllOption& main, const PllOption& noc) {
    m_context.plls = {&main, &noc};
    m_context.head.muls = {main.mul, noc.mul};
    if (!fillErrors())
        return false;
    m_context.nearSum = sumForBound(m_context.errors[0]) + sumForBound(m_context.errors[1]);
    const double limit = m_lows.limitBehind(m_context.head.muls, 2);
    setLimit(limit);
    // Three tests in ascending order of their cost: the Lagrangian bound with the prices capped at
    // the context's errors, the sum of the smallest possible errors, and whether domain 2 can be
    // served.
    const double certain = m_context.nearSum + m_own.seconds.certain(m_context.errors[2]) +
                           m_own.pairs.certain(m_context.errors[3]);
    return certain - m_bound.ownSavings() <= m_context.ceiling &&
           static_cast<double>(floorOfSums()) <= limit &&
           m_completion2.isPossible(m_context.errors[2]);
}

void ContextSearch::setLimit(double limit) {
    // Two allowances for rounding. Bounds are differences of sums of prices, which may be far
    // larger than the errors, so a bound's rounding follows from the prices. Sums of errors within
    // the limit are off in proportion to the limit only.
    m_context.ceiling = m_bound.ceilingOf(limit);
    m_context.most = limit + m_bound.roundingOf(limit);
}

bool ContextSearch::fillErrors() {
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const DomainRequests& requests = m_table.domain(domain);
        ErrorRow& errors = m_context.errors[domain];
        errors.assign(requests.stride, 0.0F);
        std::fill_n(errors.begin(), requests.positions.size(), m_problem.tolerance);
        for (const PllOption* option : m_context.plls)
            if (option->errors[domain] != nullptr)
                takeBetter(errors, option->errors[domain]);
        if (domain < 2 && !areAllServed(errors, m_problem.tolerance))
            return false;
    }
    return true;
}

float ContextSearch::floorOfSums() const {
    float sum = 0.0F;
    for (const auto& [domain, place] : m_places) {
        const float error = m_context.errors[domain][place];
        sum += domain < 2 ? error : std::min(std::fabs(error), m_least[domain][place]);
    }
    return sum;
}

bool ContextSearch::recordContext() {
    const auto& [main, noc] = m_context.plls;
    const unsigned chunk = m_lows.chunkOf(m_context.head.muls, 2);
    m_context.head.isKey = chunk == ChunkLows::kSeveral;
    m_context.numbers = {m_choices2.contextOf(m_context.errors[2], m_context.head),
                         m_choices3.contextOf(m_context.errors[3], m_context.head)};
    ErrorRow near = m_context.errors[0];
    near.insert(near.end(), m_context.errors[1].begin(), m_context.errors[1].end());
    m_context.nearNumber = m_nearRows.add(near.data());
    // A context is dropped if one with the same errors, at an earlier place of the same chunk, was
    // searched before. Proof: pair each tuple of this context with that of the earlier one that has
    // the same own PLLs. Both have the same sum, and the partner comes first.
    // - If the partner was offered, the tuple here is no record low of its chunk (an equal sum lies
    //   before it) and can't win.
    // - If the partner was pruned, its sum was above the limit at its place and time. Limits never
    //   rise, neither over time nor from a place to a later one in a chunk, so the tuple's sum is
    //   above the limit here and now as well, and would be pruned.
    // The converse fails: a later context's search says nothing of an earlier one, for of equal
    // sums the earlier one wins. Hence the memo keeps the earliest place of each key. The place
    // lists the parts by which the enumeration orders tuples that agree in the own PLLs:
    // multipliers before dividers before cross-domain dividers, dividers descending.
    return m_searched.record(
        {m_context.nearNumber, m_context.numbers[0], m_context.numbers[1], chunk},
        {main->mul, noc->mul, 8U - main->div, 4U - main->cross, 4U - noc->cross});
}

void ContextSearch::searchGroup(const OwnPlls::Group& group) {
    SearchInterruption::raiseIfRequested();
    const Context& context = m_context;
    const auto& [number2, number3] = context.numbers;
    ++m_effort;
    // The options of a group are the same in domain 2, so its bounds are taken once for all of
    // them. Looked-up bounds of both domains come first; a scan for the least sum follows only if
    // they leave the group below the ceiling. It makes the bound for each option of domain 3
    // tighter in turn.
    double floor3 = std::numeric_limits<double>::infinity();
    for (std::size_t option = group.begin; option < group.end; ++option)
        floor3 = std::min(floor3, m_choices3.floorOf(number3, option));
    const double floor2 = m_choices2.floorOf(number2, group.begin);
    if (context.nearSum + floor2 + floor3 > context.ceiling)
        return;
    const double least2 =
        m_choices2.least(number2, group.begin, context.ceiling - context.nearSum - floor3);
    for (std::size_t option = group.begin; option < group.end; ++option) {
        if (context.nearSum + least2 + m_choices3.floorOf(number3, option) > context.ceiling)
            continue;
        m_effort += 4;
        const double most3 = context.most - context.nearSum - least2;
        const double least3 = m_choices3.least(number3, option, most3);
        if (least3 <= most3)
            combine(group, option, least2, least3);
    }
}

bool ContextSearch::recordOption(const OwnPlls::Group& group, std::size_t option) {
    // The same argument as for contexts, with the first own PLL of domain 2 as part of the head.
    // Equal entry numbers mean equal errors before and thus equal choices; which second multipliers
    // the first own PLL's one excludes is part of the key of domain 2's entries.
    const PllOption& own = m_table.options(Role::Own2First).all[option];
    const auto& [main, noc] = m_context.plls;
    const std::array<unsigned, 4> key = {m_context.nearNumber,
                                         m_choices2.entryNumber(m_context.numbers[0], group.begin),
                                         m_choices3.entryNumber(m_context.numbers[1], option),
                                         m_lows.chunkOf(m_context.head.muls, 3)};
    return m_combined.record(key, {main->mul, noc->mul, own.mul, 8U - main->div, 8U - own.div,
                                   4U - main->cross, 4U - noc->cross, 4U - own.cross});
}

void ContextSearch::combine(const OwnPlls::Group& group, std::size_t option, double least2,
                            double least3) {
    const PllOption& own = m_table.options(Role::Own2First).all[option];
    ChoiceHead& head = m_context.head;
    head.muls[2] = own.mul;
    // With one more multiplier fixed the limit may be tighter than the context's.
    const double limit = m_lows.limitBehind(head.muls, 3);
    const double rounding = m_bound.roundingOf(limit);
    const double most = limit + rounding - m_context.nearSum;
    if (least2 + least3 > most || !recordOption(group, option))
        return;
    m_effort += 10;
    head.chunkStarts = m_lows.startsWithin(head.muls, 3);
    // Each domain may take what the least sum of the other leaves.
    const auto seconds = m_choices2.choices(m_context.numbers[0], group.begin,
                                            {most - least3, 2.0 * rounding}, head);
    if (seconds.empty())
        return;
    const auto pairs =
        m_choices3.choices(m_context.numbers[1], option, {most - least2, 2.0 * rounding}, head);
    const double near = exactSum(m_context.errors[0]) + exactSum(m_context.errors[1]);
    // The sums of the choices in double precision sort out most pairs; only the others are added up
    // in single precision, peripheral by peripheral.
    const std::uint64_t evaluated = m_evaluated;
    for (const OwnChoice& second : seconds)
        for (const OwnChoice& pair : pairs)
            if (near + second.sum + pair.sum <= limit + rounding)
                offer(own, second, pair);
    if (m_evaluated != evaluated)
        setLimit(m_lows.limitBehind(head.muls, 2));
}

void ContextSearch::offer(const PllOption& own, const OwnChoice& second, const OwnChoice& pair) {
    const Tuple tuple = tupleOf(own, second, pair);
    const unsigned chunk = m_lows.chunkOf(tuple.muls, kRoles);
    // The same rows of errors give the same sum, and of equal sums in a chunk only the first can
    // win: a memo of the first tuple by rows and chunk. A sum that was above the limit when it was
    // met first still is, as limits never rise.
    const std::uint64_t key =
        (std::uint64_t{second.row} << 36U) | (std::uint64_t{pair.row} << 8U) | chunk;
    const auto [entry, isNew] = m_seen.try_emplace(key);
    Seen& seen = entry->second;
    if (isNew)
        seen.sum = sumOf(second, pair);
    else if (seen.tuple <= tuple)
        return;
    ++m_evaluated;
    seen.tuple = tuple;
    if (static_cast<double>(seen.sum) <= m_lows.limit())
        m_lows.offer(tuple, seen.sum);
}

Tuple ContextSearch::tupleOf(const PllOption& own, const OwnChoice& second,
                             const OwnChoice& pair) const {
    const std::array<const PllOption*, kRoles> options = {
        m_context.plls[0],    m_context.plls[1],  &own,
        second.setting.first, pair.setting.first, pair.setting.second};
    Tuple tuple;
    for (unsigned role = 0; role < kRoles; ++role) {
        tuple.muls[role] = options[role]->mul;
        tuple.divsBelow8[role] = static_cast<std::uint8_t>(8 - options[role]->div);
    }
    for (unsigned role = 0; role < tuple.crossesBelow4.size(); ++role)
        tuple.crossesBelow4[role] = static_cast<std::uint8_t>(4 - options[role]->cross);
    return tuple;
}

float ContextSearch::sumOf(const OwnChoice& second, const OwnChoice& pair) const {
    const std::array<const float*, kDomains> errors = {
        m_context.errors[0].data(), m_context.errors[1].data(), m_choices2.errors(second.row),
        m_choices3.errors(pair.row)};
    float sum = 0.0F; // in the peripherals' order: each addition rounds, so the order is part of it
    for (const auto& [domain, place] : m_places)
        sum += errors[domain][place];
    return sum;
}

void ContextSearch::forgetIfLarge() {
    if (m_choices2.bytes() + m_choices3.bytes() + m_nearRows.bytes() + m_searched.bytes() +
            m_combined.bytes() <
        kMostBytes)
        return;
    m_choices2.clear();
    m_choices3.clear();
    m_nearRows = RowIndex(m_table.domain(0).stride + m_table.domain(1).stride);
    m_searched.clear();
    m_combined.clear();
}

} // namespace hbs_clocking
