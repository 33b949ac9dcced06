#include "clocking/search/PriceBound.h"

#include <limits>
#include <numeric>

namespace hbs_clocking {

namespace {

constexpr unsigned kFirstRounds = 30;
constexpr unsigned kMoreRounds = 60;
/// More rounds are worthwhile if they close this part of the gap to the best sum known.
constexpr double kWorthwhile = 0.25;
/// Not if the relative gap is this small: many sums lie that close together, and no bound separates
/// them.
constexpr double kGoodEnough = 2e-4;
/// A peripheral's price starts at its least possible error plus this part of the tolerance.
constexpr float kFirstRaise = 0.3F;
/// Polyak's steps aim at the best sum known times this, as the optimum itself isn't known.
constexpr double kAim = 1.05;
/// After so many rounds without a better bound the ascent returns to the best prices and shortens
/// its steps by this factor.
constexpr double kShorter = 0.6;
constexpr unsigned kPatience = 4;
/// Relative gap below which searching the rest is cheaper than a better bound.
constexpr double kCloseEnough = 1e-5;

[[nodiscard]] double sumOf(const PriceRow& prices) {
    return std::accumulate(prices.begin(), prices.end(), 0.0);
}

} // namespace

PriceBound::PriceBound(const SearchProblem& problem, const SourceTable& table)
    : m_problem(problem),
      m_table(table), m_ownTails{CombinationTails(problem.combinations.stages()[1]),
                                 CombinationTails(problem.combinations.stages()[2])} {
    // An addition in single precision is off by at most 2^-24 of its result. Comparing a sum of n
    // errors with one added in lanes involves fewer than 2n such steps; the savings, at most eight
    // rows of n/4 + 4 steps each, fewer than 2n + 32. Together: (4n + 64) × 2^-24.
    m_roundingFactor = static_cast<double>(problem.requests.size() + 16) * 0x1p-22;
    for (unsigned role = 0; role < kRoles; ++role) {
        const std::size_t count = table.options(static_cast<Role>(role)).all.size();
        m_savings[role].resize(count);
    }
    m_prices = firstPrices();
    if (table.lacksOptions()) {
        m_lowest = std::numeric_limits<double>::infinity();
        return;
    }
    const double worst = static_cast<double>(problem.tolerance) *
                         static_cast<double>(problem.requests.size()) * (1 + m_roundingFactor);
    m_ascent = {worst, worst, -std::numeric_limits<double>::infinity(), m_prices};
    climb(worst, kFirstRounds);
}

bool PriceBound::raise(double known) {
    const double before = m_lowest;
    m_ascent.capped = std::min(m_ascent.capped, known);
    m_ascent.reach = 1.0;
    climb(known, kMoreRounds);
    const double gap = known - before;
    return gap > kGoodEnough * known && m_lowest - before >= kWorthwhile * gap;
}

PriceBound::Prices PriceBound::firstPrices() const {
    Prices prices;
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        // A price below a peripheral's least error gives no saving; the ascent starts above it.
        prices[domain].assign(m_table.domain(domain).stride, 0.0F);
        for (std::size_t i = 0; i < m_table.domain(domain).positions.size(); ++i) {
            float least = m_problem.tolerance;
            for (unsigned role = 0; role < kRoles; ++role)
                for (const PllOption& option : m_table.options(static_cast<Role>(role)).all)
                    if (option.errors[domain] != nullptr)
                        least = std::min(least, std::fabs(option.errors[domain][i]));
            prices[domain][i] = least + kFirstRaise * m_problem.tolerance;
        }
    }
    return prices;
}

void PriceBound::climb(double known, unsigned rounds) {
    // The subgradient method with Polyak's steps. The bound, a sum of prices less maxima of convex
    // functions of them, is concave. Its derivative by a peripheral's price is 1 less the number of
    // best options that save something for it, which `spare` holds with the sign reversed: prices
    // fall where several PLLs serve a peripheral and rise where none does. The step length is the
    // gap to the sum aimed at, divided by the squared length of that vector.
    Ascent& ascent = m_ascent;
    for (unsigned round = 0; round < rounds; ++round) {
        evaluate();
        if (m_lowest > ceilingOf(known))
            return; // proven: no sum of this step is as small as `known`
        keepBest();
        const Favourites favourites = pickFavourites();
        const Service service = serviceOf(favourites);
        ascent.capped = std::min(ascent.capped, service.capped);
        if (service.sum < ascent.sum) {
            ascent.sum = service.sum;
            m_favourites = favourites;
        }
        double squares = 0.0;
        for (const PriceRow& row : service.spare)
            squares += std::inner_product(row.begin(), row.end(), row.begin(), 0.0);
        if (squares == 0.0 || ascent.sum - ascent.lowest < ascent.sum * kCloseEnough)
            break;
        // While the favourites leave a peripheral unserved, `sum` is infinite; `capped` counts it
        // with the tolerance, so that the step doesn't overshoot.
        const double aim = kAim * std::max(ascent.capped, ascent.lowest);
        movePrices(service.spare, ascent.reach * (aim - m_lowest) / squares);
    }
    m_prices = ascent.prices;
    evaluate();
}

void PriceBound::keepBest() {
    Ascent& ascent = m_ascent;
    if (m_lowest > ascent.lowest) {
        ascent.lowest = m_lowest;
        ascent.prices = m_prices;
        ascent.idle = 0;
    } else if (++ascent.idle == kPatience) {
        ascent.reach *= kShorter;
        ascent.idle = 0;
        m_prices = ascent.prices;
    }
}

void PriceBound::evaluate() {
    m_sumOfPrices = 0.0;
    for (const PriceRow& prices : m_prices)
        m_sumOfPrices += sumOf(prices);
    std::array<MultiplierSavings, kRoles> byMultiplier;
    for (unsigned role = 0; role < kRoles; ++role)
        evaluate(static_cast<Role>(role), byMultiplier[role]);
    m_lowest = m_sumOfPrices;
    for (const Role role : {Role::Main, Role::Noc}) {
        const MultiplierSavings::Entry best = byMultiplier[indexOf(role)].all().front();
        m_bestMuls[indexOf(role)] = best.mul;
        m_lowest -= static_cast<double>(best.saving);
        m_largest[indexOf(role)] = static_cast<double>(best.saving);
    }
    // The own PLLs of a domain are taken in pairs, since not all their multipliers go together:
    // with the best of each alone the bound would be lower than need be.
    m_ownSavings = 0.0;
    for (unsigned pair = 0; pair < m_bestOwn.size(); ++pair) {
        m_bestOwn[pair] = largestTogether(byMultiplier[2 + 2 * pair], byMultiplier[3 + 2 * pair],
                                          m_ownTails[pair]);
        const auto saving = static_cast<double>(m_bestOwn[pair].saving);
        m_ownSavings += saving;
        // The partner's largest saving may not go with this PLL's. What this PLL must save for the
        // bound to be reached is the best pair's saving less the partner's largest.
        for (unsigned place : {0U, 1U})
            m_largest[2 + 2 * pair + place] =
                saving - static_cast<double>(byMultiplier[3 + 2 * pair - place].largest());
    }
    m_lowest -= m_ownSavings;
}

void PriceBound::evaluate(Role role, MultiplierSavings& byMultiplier) {
    const std::vector<PllOption>& options = m_table.options(role).all;
    for (std::size_t i = 0; i < options.size(); ++i) {
        float saving = 0.0F;
        for (unsigned domain = 0; domain < kDomains; ++domain)
            if (options[i].errors[domain] != nullptr)
                saving += savingOf(m_prices[domain], options[i].errors[domain]);
        m_savings[indexOf(role)][i] = saving;
    }
    byMultiplier.assign(options, [&](std::size_t i) { return m_savings[indexOf(role)][i]; });
}

PriceBound::Favourites PriceBound::pickFavourites() const {
    Favourites favourites{};
    for (unsigned role = 0; role < kRoles; ++role) {
        const unsigned mul =
            role < m_bestMuls.size() ? m_bestMuls[role] : m_bestOwn[role / 2 - 1].muls[role % 2];
        favourites[role] = favourite(static_cast<Role>(role), mul);
    }
    return favourites;
}

const PllOption* PriceBound::favourite(Role role, unsigned mul) const {
    const PllOptions& options = m_table.options(role);
    const PllOption* favourite = nullptr;
    for (const PllOption& option : options.of(mul))
        if (favourite == nullptr ||
            saving(role, options.indexOf(option)) > saving(role, options.indexOf(*favourite)))
            favourite = &option;
    return favourite;
}

PriceBound::Service PriceBound::serviceOf(const Favourites& favourites) const {
    Service service;
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        service.spare[domain].assign(m_prices[domain].size(), 0.0F);
        for (std::size_t i = 0; i < m_table.domain(domain).positions.size(); ++i) {
            float smallest = kUnserved;
            float& count = service.spare[domain][i];
            count = -1.0F;
            for (const PllOption* favourite : favourites) {
                if (favourite->errors[domain] == nullptr)
                    continue;
                const float error = std::fabs(favourite->errors[domain][i]);
                smallest = std::min(smallest, error);
                count += error < m_prices[domain][i] ? 1.0F : 0.0F;
            }
            service.sum += static_cast<double>(smallest);
            service.capped += static_cast<double>(std::min(smallest, m_problem.tolerance));
        }
    }
    return service;
}

void PriceBound::movePrices(const Counts& spare, double step) {
    for (unsigned domain = 0; domain < kDomains; ++domain)
        for (std::size_t i = 0; i < m_prices[domain].size(); ++i) {
            const double change = step * static_cast<double>(spare[domain][i]);
            m_prices[domain][i] = std::max(0.0F, m_prices[domain][i] - static_cast<float>(change));
        }
}

} // namespace hbs_clocking
