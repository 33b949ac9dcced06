// What the search's cuts rest on: the table of errors, the bound and the choices of domain 3, each
// against plain arithmetic over all settings.

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <optional>
#include <random>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/TupleSearch.h"

using namespace hbs_clocking;

namespace {

/// A step of a six-PLL tree: random requests, a handful of multipliers, two barred peripherals.
SearchProblem problemOf(std::mt19937& engine) {
    const auto between = [&](float low, float high) {
        return low + (high - low) * static_cast<float>(engine() % 4096) / 4096.0F;
    };
    SearchProblem problem{&kSixPllShape, 40.0F, between(300.0F, 900.0F), 0.2F, {}, {}, {}, {}};
    for (const unsigned domain : {1U, 0U, 2U, 3U, 3U, 0U, 2U, 3U, 2U, 3U})
        problem.requests.push_back({domain, between(20.0F, 400.0F), engine() % 6 == 0});
    problem.outputDividers = [](Role, unsigned mul) {
        return DividerRange::from(mul > 80 ? 2 : 1);
    };
    problem.nocDivider = [](unsigned mul) { return mul / 16; };
    using Order = CombinationStage::Order;
    std::vector<std::uint8_t> muls;
    for (auto mul = 55 + engine() % 5; mul < 105; mul += 11)
        muls.push_back(static_cast<std::uint8_t>(mul));
    MultiplierMask half;
    half.insert(muls[1]);
    half.insert(muls[3]);
    problem.combinations = CombinationList({muls, {muls[0], muls[2]}, Order::Any, {}, {}})
                               .extendedBy({muls, muls, Order::Different, {{half}}, {0}})
                               .extendedBy({muls, muls, Order::Ascending, {{half, false}}, {0, 2}});
    return problem;
}

float clockOf(const SearchProblem& problem, Role role, const PllOption& option) {
    const unsigned div = role == Role::Noc ? problem.nocDivider(option.mul) : option.div;
    return static_cast<float>(option.mul) * problem.refMhz / static_cast<float>(div);
}

TEST(SourceTable, HoldsTheErrorOfEveryClockThatMayBe) {
    std::mt19937 engine(5);
    for (int round = 0; round < 20; ++round) {
        const SearchProblem problem = problemOf(engine);
        const SourceTable table(problem);
        int limited = 0;
        for (unsigned r = 0; r < kRoles; ++r) {
            const auto role = static_cast<Role>(r);
            for (const PllOption& option : table.options(role).all) {
                const float mhz = clockOf(problem, role, option);
                for (unsigned i = 0; i < problem.requests.size(); ++i) {
                    const auto& [domain, request, isBarred] = problem.requests[i];
                    const Reach reach = kSixPllShape.reachOf(domain, role);
                    ASSERT_EQ(reach == Reach::None, option.errors[domain] == nullptr);
                    if (reach == Reach::None)
                        continue;
                    const float cross = static_cast<float>(option.cross);
                    const float clock = reach == Reach::Across ? mhz / cross : mhz;
                    limited += reach == Reach::Across && clock > problem.maxCrossMhz * 1.001F;
                    float error = offerNearestDivider(clock, request).error;
                    if (error > problem.tolerance)
                        error = kUnserved;
                    else if (isBarred && (role == Role::Noc || role == Role::Own2Second))
                        error = -error;
                    const auto& places = table.domain(domain).positions;
                    const auto place = std::find(places.begin(), places.end(), i) - places.begin();
                    ASSERT_EQ(error, option.errors[domain][place]);
                }
            }
        }
        EXPECT_EQ(0, limited) << "clocks above the limit don't cross";
    }
}

TEST(PriceBound, LiesUnderTheSumOfEverySetting) {
    std::mt19937 engine(6);
    double closest = 1e9;
    for (int round = 0; round < 20; ++round) {
        const SearchProblem problem = problemOf(engine);
        const SourceTable table(problem);
        const PriceBound bound(problem, table);
        for (int setting = 0; setting < 3000; ++setting) {
            Combination muls = problem.combinations.at(engine() % problem.combinations.size());
            std::array<const PllOption*, kRoles> options{};
            double saved = 0.0;
            for (unsigned role = 0; role < kRoles; ++role) {
                const auto choice = table.options(static_cast<Role>(role)).of(muls[role]);
                ASSERT_FALSE(choice.empty());
                options[role] = &choice[engine() % choice.size()];
                saved +=
                    bound.saving(static_cast<Role>(role),
                                 table.options(static_cast<Role>(role)).indexOf(*options[role]));
            }
            double sum = 0.0;
            for (unsigned domain = 0; domain < kDomains; ++domain)
                for (std::size_t i = 0; i < table.domain(domain).positions.size(); ++i) {
                    float least = kUnserved;
                    for (const PllOption* option : options)
                        if (option->errors[domain] != nullptr)
                            least = std::min(least, std::fabs(option->errors[domain][i]));
                    sum += static_cast<double>(least);
                }
            ASSERT_LE(bound.lowest(), bound.ceilingOf(sum));
            ASSERT_LE(bound.sumOfPrices() - saved, bound.ceilingOf(sum));
            closest = std::min(closest, sum / bound.lowest());
        }
    }
    EXPECT_LT(closest, 1.5) << "a bound far below all sums cuts nothing";
}

TEST(OwnChoices, AreAllThatStayWithinTheBudgetEachAtItsFirstPlace) {
    std::mt19937 engine(7);
    std::size_t found = 0;
    for (int round = 0; round < 60; ++round) {
        const SearchProblem problem = problemOf(engine);
        const SourceTable table(problem);
        const PriceBound bound(problem, table);
        const Combination head = problem.combinations.at(engine() % problem.combinations.size());
        ErrorRow before(table.domain(3).stride, 0.0F);
        std::fill_n(before.begin(), table.domain(3).positions.size(), problem.tolerance);
        const auto mains = table.options(Role::Main).of(head[0]);
        takeBetter(before, mains[engine() % mains.size()].errors[3]);
        const OwnChoices::Muls from = {head[4], engine() % 2 == 0 ? head[5] : std::uint8_t{0}};
        const double budget = 0.02 * static_cast<double>(1 + engine() % 20);

        std::map<ErrorRow, std::array<unsigned, 4>> expected;
        const CombinationTails tails(problem.combinations.stages()[2], head);
        for (const PllOption& first : table.options(Role::Own3First).all)
            for (const PllOption& second : table.options(Role::Own3Second).all) {
                ErrorRow errors = before;
                takeBetter(errors, first.errors[3]);
                takeBetter(errors, second.errors[3]);
                if (!tails.seconds(first.mul).contains(second.mul) ||
                    OwnChoices::Muls{first.mul, second.mul} < from ||
                    !areAllServed(errors, problem.tolerance) || sumForBound(errors) > budget)
                    continue;
                const std::array<unsigned, 4> place = {first.mul, second.mul, 8U - first.div,
                                                       8U - second.div};
                const auto [entry, isNew] = expected.try_emplace(errors, place);
                entry->second = std::min(entry->second, place);
            }
        OwnChoices choices(problem, table, bound);
        std::map<ErrorRow, std::array<unsigned, 4>> actual;
        for (const OwnChoice& choice : choices.find(before, head, budget, from).choices)
            actual[choice.errors] = {choice.first->mul, choice.second->mul, 8U - choice.first->div,
                                     8U - choice.second->div};
        ASSERT_EQ(expected, actual) << "round " << round;
        found += actual.size();
    }
    EXPECT_GT(found, 100U);
}

/// A small step of a tree: six PLLs whose domains need help from one another, six that don't, four.
SearchProblem smallProblemOf(std::mt19937& engine, unsigned variant) {
    SearchProblem problem = problemOf(engine);
    problem.outputDividers = [](Role, unsigned) { return DividerRange::from(2); };
    // Multiples and equals of one another make ties. In every second tree the main PLL's setting
    // makes no difference but by the combinations that it stands in.
    const bool isMainIdle = engine() % 2 == 0;
    if (isMainIdle)
        problem.tolerance = 0.001F;
    for (SearchRequest& request : problem.requests) {
        request.mhz = std::array{80.0F, 40.0F, 37.5F, 100.0F, 33.3F}[engine() % 5];
        if (isMainIdle && request.domain < 2)
            request.mhz = request.domain == 0 ? 0.0F : 80.0F;
    }
    using Order = CombinationStage::Order;
    const std::vector<std::uint8_t> muls = {60, 75, 90};
    MultiplierMask need;
    need.insert(muls[engine() % 3]);
    const std::vector<std::uint8_t> mains = {61, 67, 71};
    need.insert(mains[engine() % 3]);
    const CombinationList pairs({mains, {60, 80}, Order::Any, {}, {}});
    if (variant == 0)
        problem.combinations = pairs.extendedBy({muls, muls, Order::Different, {{need}}, {0}})
                                   .extendedBy({muls, muls, Order::Ascending, {{need}}, {0, 2}});
    else if (variant == 1)
        problem.combinations =
            pairs.timesList(CombinationList({muls, muls, Order::Different, {{need}}, {}}))
                .timesList(CombinationList({muls, muls, Order::Ascending, {{need}}, {}}));
    else
        problem.combinations = pairs.extendedBy({muls, {}, Order::Single, {{need}}, {0, 1}})
                                   .extendedBy({muls, {}, Order::Single, {{need}}, {0, 1, 2}});
    if (variant == 2)
        problem.shape = &kFourPllShape;
    return problem;
}

using Sums = std::map<Tuple, float>;

/// The sums of all settings of one combination, in the order of the enumeration.
void addSums(const SearchProblem& problem, const SourceTable& table, const Combination& muls,
             Sums& sums, std::array<const PllOption*, kRoles>& options, unsigned role = 0) {
    if (role < kRoles) {
        for (const PllOption& option : table.options(static_cast<Role>(role)).of(muls[role])) {
            options[role] = &option;
            addSums(problem, table, muls, sums, options, role + 1);
        }
        return;
    }
    std::vector<float> errors(problem.requests.size());
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const DomainRequests& requests = table.domain(domain);
        ErrorRow row(requests.stride, 0.0F);
        std::fill_n(row.begin(), requests.positions.size(), problem.tolerance);
        for (const PllOption* option : options)
            if (option->errors[domain] != nullptr)
                takeBetter(row, option->errors[domain]);
        if (!areAllServed(row, problem.tolerance))
            return;
        for (std::size_t i = 0; i < requests.positions.size(); ++i)
            errors[requests.positions[i]] = row[i];
    }
    Tuple tuple{muls, {}, {}};
    for (unsigned i = 0; i < kRoles; ++i)
        tuple.divsBelow8[i] = static_cast<std::uint8_t>(8 - options[i]->div);
    for (unsigned i = 0; i < tuple.crossesBelow4.size(); ++i)
        tuple.crossesBelow4[i] = static_cast<std::uint8_t>(4 - options[i]->cross);
    float sum = 0.0F;
    for (const float error : errors)
        sum += error;
    sums.emplace(tuple, sum);
}

TEST(TupleSearch, FindsTheEndOfTheChainOfEveryRange) {
    std::mt19937 engine(8);
    int won = 0;
    for (unsigned round = 0; round < 90; ++round) {
        const SearchProblem problem = smallProblemOf(engine, round % 3);
        const SourceTable table(problem);
        const TupleSearch search(problem);
        for (int range = 0; range < 4; ++range) {
            const std::uint64_t first = engine() % problem.combinations.size();
            const std::uint64_t last = first + 1 + engine() % (problem.combinations.size() - first);
            Sums sums;
            std::array<const PllOption*, kRoles> options{};
            problem.combinations.forEach(first, last, [&](Combination muls) {
                if (problem.shape == &kFourPllShape)
                    muls = {muls[0], muls[1], muls[2], 0, muls[3], 0};
                addSums(problem, table, muls, sums, options);
            });
            std::optional<NearMinimum::Winner> expected;
            for (const auto& [tuple, sum] : sums)
                if (definitelyLess(sum, expected ? expected->sum : kWorstTotalError, kMargin))
                    expected = {tuple, sum};
            const auto actual = search.search(first, last, 1e9).winner;
            ASSERT_EQ(expected.has_value(), actual.has_value()) << "round " << round;
            if (!expected)
                continue;
            ASSERT_EQ(expected->sum, actual->sum) << "round " << round;
            ASSERT_EQ(expected->tuple, actual->tuple) << "round " << round;
            ++won;
        }
    }
    EXPECT_GT(won, 100);
}

} // namespace
