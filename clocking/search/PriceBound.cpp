#include "clocking/search/PriceBound.h"

#include <limits>
#include <numeric>

namespace hbs_clocking {

namespace {

constexpr unsigned kRounds = 30;
/// Where the prices start, as a part of the tolerance.
constexpr float kFirstPrice = 0.3F;
/// How far above the best sum known a round aims.
constexpr double kAim = 1.05;
/// A round that brings nothing shortens the next steps, from the best prices so far.
constexpr double kShorter = 0.6;
constexpr unsigned kPatience = 4;
/// Close enough: what is left is cheaper to search.
constexpr double kCloseEnough = 1e-5;

[[nodiscard]] double sumOf(const PriceRow& prices) {
    return std::accumulate(prices.begin(), prices.end(), 0.0);
}

} // namespace

PriceBound::PriceBound(const SearchProblem& problem, const SourceTable& table)
    : m_problem(problem),
      m_table(table), m_ownTails{CombinationTails(problem.combinations.stages()[1]),
                                 CombinationTails(problem.combinations.stages()[2])} {
    // Each addition is off by 2^-24 of its result at most. A sum of n errors and one done in lanes
    // are off by less than 2n such steps; the savings, at most eight rows of them in n/4 + 4 steps
    // each, by less than 2n + 32.
    m_roundingFactor = static_cast<double>(problem.requests.size() + 16) * 0x1p-22;
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const DomainRequests& requests = table.domain(domain);
        m_prices[domain].assign(requests.stride, 0.0F);
        std::fill_n(m_prices[domain].begin(), requests.positions.size(),
                    problem.tolerance * kFirstPrice);
    }
    for (unsigned role = 0; role < kRoles; ++role) {
        const std::size_t count = table.options(static_cast<Role>(role)).all.size();
        m_savings[role].resize(count);
        m_farSavings[role].resize(count);
    }
    improve();
}

void PriceBound::evaluate() {
    m_sumOfFarPrices = sumOf(m_prices[2]) + sumOf(m_prices[3]);
    m_sumOfPrices = sumOf(m_prices[0]) + sumOf(m_prices[1]) + m_sumOfFarPrices;
    std::array<MultiplierSavings, kRoles> byMultiplier;
    m_lowest = m_sumOfPrices;
    for (unsigned r = 0; r < kRoles; ++r) {
        const std::vector<PllOption>& options = m_table.options(static_cast<Role>(r)).all;
        float largest = 0.0F;
        for (std::size_t i = 0; i < options.size(); ++i) {
            float near = 0.0F;
            float far = 0.0F;
            for (unsigned domain = 0; domain < kDomains; ++domain)
                if (options[i].errors[domain] != nullptr)
                    (domain < 2 ? near : far) +=
                        savingOf(m_prices[domain], options[i].errors[domain]);
            m_savings[r][i] = near + far;
            m_farSavings[r][i] = far;
            largest = std::max(largest, near + far);
            if (r >= indexOf(Role::Own2First))
                byMultiplier[r].offer(options[i].mul, near + far);
        }
        if (r < indexOf(Role::Own2First))
            m_lowest -= static_cast<double>(largest);
        byMultiplier[r].sort();
    }
    m_ownSavings = 0.0;
    for (unsigned pair = 0; pair < m_ownTails.size(); ++pair)
        m_ownSavings += static_cast<double>(largestTogether(
            byMultiplier[2 + 2 * pair], byMultiplier[3 + 2 * pair], m_ownTails[pair]));
    m_lowest -= m_ownSavings;
}

PriceBound::Favourites PriceBound::pickFavourites() const {
    Favourites favourites{};
    for (unsigned r = 0; r < kRoles; ++r) {
        const std::vector<PllOption>& options = m_table.options(static_cast<Role>(r)).all;
        const bool isSecond = r == indexOf(Role::Own2Second) || r == indexOf(Role::Own3Second);
        float largest = -1.0F;
        for (std::size_t i = 0; i < options.size(); ++i) {
            if (m_savings[r][i] <= largest ||
                (isSecond && options[i].mul == favourites[r - 1]->mul))
                continue;
            largest = m_savings[r][i];
            favourites[r] = &options[i];
        }
        if (favourites[r] == nullptr)
            favourites[r] = options.data();
    }
    return favourites;
}

PriceBound::Counts PriceBound::countSpareServers(const Favourites& favourites,
                                                 double& sumOfErrors) const {
    Counts spare;
    sumOfErrors = 0.0;
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        spare[domain].assign(m_prices[domain].size(), 0.0F);
        for (std::size_t i = 0; i < m_table.domain(domain).positions.size(); ++i) {
            float smallest = kUnserved;
            float& count = spare[domain][i];
            count = -1.0F;
            for (const PllOption* favourite : favourites) {
                if (favourite->errors[domain] == nullptr)
                    continue;
                const float error = std::fabs(favourite->errors[domain][i]);
                smallest = std::min(smallest, error);
                count += error < m_prices[domain][i] ? 1.0F : 0.0F;
            }
            sumOfErrors += static_cast<double>(smallest);
        }
    }
    return spare;
}

void PriceBound::movePrices(const Counts& spare, double step) {
    for (unsigned domain = 0; domain < kDomains; ++domain)
        for (std::size_t i = 0; i < m_prices[domain].size(); ++i) {
            const double change = step * static_cast<double>(spare[domain][i]);
            m_prices[domain][i] = std::max(0.0F, m_prices[domain][i] - static_cast<float>(change));
        }
}

void PriceBound::improve() {
    // The subgradient method: the bound is concave in the prices, and the spare servers of the
    // favourites say in which direction it rises.
    if (m_table.lacksOptions()) {
        m_lowest = std::numeric_limits<double>::infinity();
        return;
    }
    const double worst = static_cast<double>(m_problem.tolerance) *
                         static_cast<double>(m_problem.requests.size()) * (1 + m_roundingFactor);
    double bestSum = worst;
    double bestLowest = -1.0;
    std::array<PriceRow, kDomains> bestPrices = m_prices;
    double reach = 1.0;
    unsigned idle = 0;
    for (unsigned round = 0; round < kRounds; ++round) {
        evaluate();
        if (m_lowest > bestLowest) {
            bestLowest = m_lowest;
            bestPrices = m_prices;
            idle = 0;
        } else if (++idle == kPatience) {
            reach *= kShorter;
            idle = 0;
            m_prices = bestPrices;
        }
        if (m_lowest > ceilingOf(worst))
            return; // no sum is this large: the step has no solution
        const Favourites favourites = pickFavourites();
        double sum = 0.0;
        const Counts spare = countSpareServers(favourites, sum);
        if (sum < bestSum) {
            bestSum = sum;
            m_favourites = favourites;
        }
        double squares = 0.0;
        for (const PriceRow& row : spare)
            squares += std::inner_product(row.begin(), row.end(), row.begin(), 0.0);
        if (squares == 0.0 || bestSum - bestLowest < bestSum * kCloseEnough)
            break;
        movePrices(spare, reach * (kAim * std::max(bestSum, bestLowest) - m_lowest) / squares);
    }
    m_prices = bestPrices;
    evaluate();
}

} // namespace hbs_clocking
