// What the search's cuts rest on: the table of errors, the bound and the choices of domain 3, each
// against plain arithmetic over all settings.

#include <gtest/gtest.h>

#include <cmath>
#include <map>
#include <random>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/OwnChoices.h"

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

} // namespace
