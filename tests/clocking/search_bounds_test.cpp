// What the search's cuts rest on: the table of errors, the bound, the fronts and the choices of a
// domain, each against plain arithmetic over all settings.

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <map>
#include <optional>
#include <random>
#include <set>

#include "clocking/ClockingArithmetic.h"
#include "clocking/search/ChoiceTable.h"
#include "clocking/search/ContextQueue.h"
#include "clocking/search/OwnPlls.h"
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
                    const auto& [domain, request, isBarred, weight, denied] = problem.requests[i];
                    const Reach reach = kSixPllShape.reachOf(domain, role);
                    ASSERT_EQ(reach == Reach::None, option.errors[domain] == nullptr);
                    if (reach == Reach::None)
                        continue;
                    const float cross = static_cast<float>(option.cross);
                    const float clock = reach == Reach::Across ? mhz / cross : mhz;
                    limited += reach == Reach::Across && clock > problem.maxCrossMhz * 1.001F;
                    float error = offerNearestDivider(clock, request).error * weight;
                    ASSERT_EQ(0U, denied);
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

TEST(PriceBound, RisesAboveZeroFromAStartFarBelow) {
    // Every clock serves low requests well, so that at the first prices each of them saves nearly
    // all: the first bound is about -0.3 × tolerance × peripherals × clocks.
    std::mt19937 engine(9);
    for (int round = 0; round < 20; ++round) {
        SearchProblem problem = problemOf(engine);
        problem.tolerance = 1.0F;
        const std::vector<SearchRequest> requests = problem.requests;
        for (int copy = 0; copy < 4; ++copy)
            for (SearchRequest request : requests) {
                request.mhz = 1.0F + 0.01F * static_cast<float>(engine() % 500);
                problem.requests.push_back(request);
            }
        problem.requests[1].mhz = 5000.0F; // an error that no clock brings down
        const SourceTable table(problem);
        EXPECT_GT(PriceBound(problem, table).lowest(), 0.3) << "round " << round;
    }
}

/// The errors that the main PLL and the first own PLL of domain 2 leave to a domain.
ErrorRow errorsBefore(const SearchProblem& problem, const SourceTable& table, unsigned domain,
                      const PllOption& main, const PllOption* own) {
    ErrorRow before(table.domain(domain).stride, 0.0F);
    std::fill_n(before.begin(), table.domain(domain).positions.size(), problem.tolerance);
    takeBetter(before, main.errors[domain]);
    if (own != nullptr)
        takeBetter(before, own->errors[domain]);
    return before;
}

const PllOption& anyOf(std::mt19937& engine, std::span<const PllOption> options) {
    return options[engine() % options.size()];
}

TEST(ErrorFront, GivesTheLeastSumOfAllPairsAndLosesNoneOfABudget) {
    std::mt19937 engine(7);
    std::size_t found = 0;
    for (int round = 0; round < 40; ++round) {
        const SearchProblem problem = problemOf(engine);
        const SourceTable table(problem);
        const PriceBound bound(problem, table);
        ErrorFront front(3, bound.prices(3));
        for (const PllOption& first : table.options(Role::Own3First).all)
            for (const PllOption& second : table.options(Role::Own3Second).all)
                front.add({&first, &second}, 0.0);
        front.arrange();
        for (int row = 0; row < 10; ++row) {
            const PllOption& main = anyOf(engine, table.options(Role::Main).all);
            const PllOption& own = anyOf(engine, table.options(Role::Own2First).all);
            const ErrorRow before = errorsBefore(problem, table, 3, main, &own);
            const double budget = 0.02 * static_cast<double>(1 + engine() % 20);
            double least = 1e9;
            std::size_t within = 0;
            std::map<ErrorRow, std::array<unsigned, 4>> expected;
            for (const PllOption& first : table.options(Role::Own3First).all)
                for (const PllOption& second : table.options(Role::Own3Second).all) {
                    ErrorRow errors = before;
                    for (std::size_t i = 0; i < errors.size(); ++i)
                        errors[i] = std::min({std::fabs(before[i]), std::fabs(first.errors[3][i]),
                                              std::fabs(second.errors[3][i])});
                    least = std::min(least, sumForBound(errors));
                    if (sumForBound(errors) > budget)
                        continue;
                    ++within;
                    errors = before;
                    takeBetter(errors, first.errors[3]);
                    takeBetter(errors, second.errors[3]);
                    const auto place = OwnSetting{&first, &second}.place();
                    const auto [entry, isNew] = expected.try_emplace(errors, place);
                    entry->second = std::min(entry->second, place);
                }
            const double room = bound.ceilingOf(least) - least; // what rounding may hide
            ASSERT_NEAR(least, front.least(before, 1e9), room);
            ASSERT_LE(front.least(before, budget), least + room);
            if (std::fabs(least - budget) > room) {
                ASSERT_EQ(least > budget, front.least(before, budget) > budget);
            }
            std::map<ErrorRow, std::array<unsigned, 4>> actual;
            front.forEachWithin(before, budget, false, [&](const OwnSetting& setting) {
                ErrorRow errors = before;
                takeBetter(errors, setting.first->errors[3]);
                takeBetter(errors, setting.second->errors[3]);
                const auto [entry, isNew] = actual.try_emplace(errors, setting.place());
                entry->second = std::min(entry->second, setting.place());
            });
            ASSERT_EQ(expected, actual) << "without twins the first of each errors stays";
            front.forEachWithin(before, budget, true, [&](const OwnSetting&) { --within; });
            ASSERT_EQ(0U, within);
            found += expected.size();
        }
    }
    EXPECT_GT(found, 1000U);
}

TEST(ChoiceTable, HasAllChoicesOfABudgetEachAtItsFirstPlace) {
    std::mt19937 engine(7);
    std::size_t found = 0;
    for (int round = 0; round < 60; ++round) {
        const SearchProblem problem = problemOf(engine);
        const SourceTable table(problem);
        const PriceBound bound(problem, table);
        const OwnPlls plls(problem, table, bound, 1e9);
        ChoiceTable choices(problem, table, 3, bound.prices(3), plls.pairs);
        ChoiceTable lowChoices(problem, table, 3, bound.prices(3), plls.pairs);
        ChoiceHead head;
        head.muls = problem.combinations.at(engine() % problem.combinations.size());
        const PllOption& main = anyOf(engine, table.options(Role::Main).of(head.muls[0]));
        const PllOption& own = anyOf(engine, table.options(Role::Own2First).of(head.muls[2]));
        const std::size_t option = table.options(Role::Own2First).indexOf(own);
        const unsigned context =
            choices.contextOf(errorsBefore(problem, table, 3, main, nullptr), head);
        ASSERT_EQ(context,
                  lowChoices.contextOf(errorsBefore(problem, table, 3, main, nullptr), head));
        // A larger budget after a smaller one finds what the smaller one left out.
        const double larger = 0.02 * static_cast<double>(1 + engine() % 20);
        for (const double budget : {larger / 2, larger}) {
            std::map<ErrorRow, std::array<unsigned, 4>> expected;
            const CombinationTails tails(problem.combinations.stages()[2], head.muls);
            for (const PllOption& first : table.options(Role::Own3First).all)
                for (const PllOption& second : table.options(Role::Own3Second).all) {
                    ErrorRow errors = errorsBefore(problem, table, 3, main, &own);
                    takeBetter(errors, first.errors[3]);
                    takeBetter(errors, second.errors[3]);
                    if (!tails.seconds(first.mul).contains(second.mul) ||
                        !areAllServed(errors, problem.tolerance) || sumForBound(errors) > budget)
                        continue;
                    ASSERT_LE(choices.least(context, option, budget), sumForBound(errors));
                    ASSERT_LE(choices.floorOf(context, option),
                              bound.ceilingOf(sumForBound(errors)));
                    const auto place = OwnSetting{&first, &second}.place();
                    const auto [entry, isNew] = expected.try_emplace(errors, place);
                    entry->second = std::min(entry->second, place);
                }
            using Places = std::vector<std::array<unsigned, 4>>;
            std::map<std::array<unsigned, 4>, double> sums;
            for (const auto& [errors, place] : expected)
                sums.emplace(place, exactSum(errors));
            for (const double room : {1e9, 0.0}) {
                Places lows;
                double least = 1e9;
                for (const auto& [place, sum] : sums) {
                    if (sum <= least + room)
                        lows.push_back(place);
                    least = std::min(least, sum);
                }
                Places actual;
                ChoiceTable& table3 = room == 0.0 ? lowChoices : choices;
                for (const OwnChoice& choice :
                     table3.choices(context, option, {budget, room}, head))
                    actual.push_back(choice.setting.place());
                ASSERT_EQ(lows, actual) << "round " << round << ", room " << room;
                found += actual.size();
            }
        }
    }
    EXPECT_GT(found, 100U);
}

TEST(OwnPlls, HasEveryPairWhoseBoundIsWithinTheCeiling) {
    std::mt19937 engine(12);
    std::size_t found = 0;
    std::size_t left = 0;
    for (int round = 0; round < 20; ++round) {
        const SearchProblem problem = problemOf(engine);
        const SourceTable whole(problem);
        const PriceBound bound(problem, whole);
        const double ceiling = bound.lowest() * (1.0 + 0.02 * static_cast<double>(engine() % 10));
        const SourceTable table(whole, bound, ceiling);
        const OwnPlls plls(problem, table, bound, ceiling);
        std::set<std::array<unsigned, 4>> actual;
        const ErrorRow before(table.domain(3).stride, problem.tolerance);
        plls.pairs.forEachWithin(
            before, 1e9, true, [&](const OwnSetting& setting) { actual.insert(setting.place()); });
        const CombinationTails tails(problem.combinations.stages()[2]);
        for (const PllOption& first : table.options(Role::Own3First).all)
            for (const PllOption& second : table.options(Role::Own3Second).all) {
                if (!tails.seconds(first.mul).contains(second.mul))
                    continue;
                double saved = 0.0; // as one clock, which is more than the bound allows for
                for (std::size_t i = 0; i < before.size(); ++i) {
                    const float least =
                        std::min(std::fabs(first.errors[3][i]), std::fabs(second.errors[3][i]));
                    saved += static_cast<double>(std::max(0.0F, bound.prices(3)[i] - least));
                }
                const bool isIn = actual.count(OwnSetting{&first, &second}.place()) != 0;
                if (bound.lowest() + bound.ownSavings(3) - saved < ceiling - 1e-5) {
                    ASSERT_TRUE(isIn) << "round " << round;
                }
                ++(isIn ? found : left);
            }
    }
    EXPECT_GT(found, 100U);
    EXPECT_GT(left, 50U);
}

TEST(ContextQueue, GivesTheContextsWithinTheCeilingBestFirst) {
    std::mt19937 engine(13);
    std::size_t found = 0;
    for (int round = 0; round < 20; ++round) {
        const SearchProblem problem = problemOf(engine);
        const SourceTable whole(problem);
        const PriceBound bound(problem, whole);
        const double ceiling = bound.lowest() * 1.2;
        const SourceTable table(whole, bound, ceiling);
        std::multiset<double> expected;
        for (const PllOption& main : table.options(Role::Main).all)
            for (const PllOption& noc : table.options(Role::Noc).all) {
                bool isFine = true;
                for (unsigned domain = 0; domain < 2; ++domain)
                    for (std::size_t i = 0; i < table.domain(domain).positions.size(); ++i)
                        isFine = isFine &&
                                 (isServed(noc.errors[domain][i], problem.tolerance) ||
                                  (domain == 0 && isServed(main.errors[0][i], problem.tolerance)));
                const double least = bound.sumOfPrices() - bound.ownSavings() -
                                     static_cast<double>(main.saving + noc.saving);
                if (isFine && least <= ceiling)
                    expected.insert(least);
            }
        ContextQueue queue(problem, table, bound, ceiling);
        double last = -1e9;
        while (const auto next = queue.take(ceiling)) {
            ASSERT_LE(last, next->bound);
            last = next->bound;
            const auto same = expected.lower_bound(last - 1e-5);
            ASSERT_TRUE(same != expected.end() && *same < last + 1e-5) << "round " << round;
            expected.erase(same);
            ++found;
        }
        ASSERT_TRUE(expected.empty()) << "round " << round;
        ContextQueue lowered(problem, table, bound, ceiling);
        EXPECT_FALSE(lowered.take(bound.lowest() - 1.0));
    }
    EXPECT_GT(found, 50U);
}

TEST(Completion, IsDeniedOnlyWhereNoTwoSettingsServeTheDomain) {
    std::mt19937 engine(10);
    std::array<int, 2> answers{};
    for (int round = 0; round < 60; ++round) {
        SearchProblem problem = problemOf(engine);
        problem.tolerance = 0.02F;
        for (int i = 0; i < 70; ++i) // more than a word of bits
            problem.requests.push_back({2, 1e-4F});
        for (int i = 0; i < 3; ++i)
            problem.requests.push_back({2, 20.0F + static_cast<float>(engine() % 300)});
        const SourceTable table(problem);
        Completion completion(table, 2, Role::Own2First, Role::Own2Second, problem.tolerance);
        for (const PllOption& main : table.options(Role::Main).all) {
            const ErrorRow before = errorsBefore(problem, table, 2, main, nullptr);
            bool isPossible = false;
            for (const PllOption& first : table.options(Role::Own2First).all)
                for (const PllOption& second : table.options(Role::Own2Second).all) {
                    bool all = true;
                    for (std::size_t i = 0; i < table.domain(2).positions.size(); ++i)
                        all = all && (isServed(before[i], problem.tolerance) ||
                                      isServed(first.errors[2][i], problem.tolerance) ||
                                      isServed(second.errors[2][i], problem.tolerance));
                    isPossible = isPossible || all;
                }
            ASSERT_EQ(isPossible, completion.isPossible(before)) << "round " << round;
            ++answers[isPossible ? 1 : 0];
        }
    }
    EXPECT_GT(answers[0], 50);
    EXPECT_GT(answers[1], 50);
}

TEST(RowIndex, NumbersRowsByTheirBits) {
    std::mt19937 engine(11);
    RowIndex index(3);
    std::map<std::array<unsigned, 3>, unsigned> expected;
    for (int i = 0; i < 3000; ++i) {
        std::array<unsigned, 3> key{};
        for (std::size_t place = 0; place < key.size(); ++place)
            key[place] = static_cast<unsigned>(engine() % (2 + 18 * place));
        const std::array<float, 3> row = {key[0] == 0 ? 0.0F : -0.0F, static_cast<float>(key[1]),
                                          static_cast<float>(key[2])};
        const auto next = static_cast<unsigned>(expected.size());
        const unsigned number = expected.try_emplace(key, next).first->second;
        ASSERT_EQ(number, index.add(row.data()));
        ASSERT_EQ(0, std::memcmp(index.at(number), row.data(), sizeof row));
    }
}

/// A small step of a tree: six PLLs whose domains need help from one another, six that don't, four.
SearchProblem smallProblemOf(std::mt19937& engine, unsigned variant) {
    SearchProblem problem = problemOf(engine);
    problem.outputDividers = [](Role, unsigned) { return DividerRange::from(2); };
    if (engine() % 4 == 0)
        problem.requests[0].mhz = 5000.0F; // which the NOC PLL must give
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

/// What the exhaustive search of the chunks ends with.
std::optional<NearMinimum::Winner> winnerOf(const SearchProblem& problem, const SourceTable& table,
                                            const std::vector<std::uint64_t>& chunks) {
    std::optional<NearMinimum::Winner> winner;
    for (std::size_t chunk = 0; chunk < chunks.size(); ++chunk) {
        const std::uint64_t end =
            chunk + 1 < chunks.size() ? chunks[chunk + 1] : problem.combinations.size();
        Sums sums;
        std::array<const PllOption*, kRoles> options{};
        problem.combinations.forEach(chunks[chunk], end, [&](Combination muls) {
            if (problem.shape == &kFourPllShape)
                muls = {muls[0], muls[1], muls[2], 0, muls[3], 0};
            addSums(problem, table, muls, sums, options);
        });
        std::optional<NearMinimum::Winner> own;
        for (const auto& [tuple, sum] : sums)
            if (definitelyLess(sum, own ? own->sum : kWorstTotalError, kMargin))
                own = {tuple, sum};
        if (own && (winner ? winner->sum : kWorstTotalError) > own->sum)
            winner = own;
    }
    return winner;
}

TEST(SourceTable, LeavesOutNothingThatASumWithinTheCeilingNeeds) {
    std::mt19937 engine(14);
    std::size_t kept = 0;
    std::size_t all = 0;
    for (unsigned round = 0; round < 30; ++round) {
        const SearchProblem problem = smallProblemOf(engine, round % 2);
        const SourceTable whole(problem);
        PriceBound bound(problem, whole);
        std::array<const PllOption*, kRoles> options{};
        Sums wholeSums;
        problem.combinations.forEach(0, problem.combinations.size(), [&](const Combination& muls) {
            addSums(problem, whole, muls, wholeSums, options);
        });
        if (wholeSums.empty())
            continue;
        double least = 1e9;
        for (const auto& [tuple, sum] : wholeSums)
            least = std::min(least, static_cast<double>(sum));
        const double before = bound.lowest();
        static_cast<void>(bound.raise(least));
        ASSERT_GE(bound.lowest(), before);
        ASSERT_LE(bound.lowest(), bound.ceilingOf(least));
        const double limit = least * 1.1;
        const SourceTable table(whole, bound, bound.ceilingOf(limit));
        Sums sums;
        problem.combinations.forEach(0, problem.combinations.size(), [&](const Combination& muls) {
            addSums(problem, table, muls, sums, options);
        });
        for (const auto& [tuple, sum] : wholeSums) {
            if (static_cast<double>(sum) > limit)
                continue;
            // The same, or one with the same sum before it.
            const auto isSame = [&muls = tuple.muls, wanted = sum](const auto& own) {
                return own.first.muls == muls && own.second == wanted;
            };
            const bool isThere = std::any_of(sums.begin(), sums.upper_bound(tuple), isSame);
            ASSERT_TRUE(isThere) << "round " << round;
        }
        for (const auto& [tuple, sum] : sums)
            if (static_cast<double>(sum) <= limit) {
                ASSERT_EQ(wholeSums.at(tuple), sum) << "round " << round;
            }
        for (unsigned role = 0; role < kRoles; ++role) {
            kept += table.options(static_cast<Role>(role)).all.size();
            all += whole.options(static_cast<Role>(role)).all.size();
        }
    }
    EXPECT_LT(kept, all * 3 / 4);
}

TEST(TupleSearch, FindsTheWinnerOfTheChunks) {
    std::mt19937 engine(8);
    int won = 0;
    int unservable = 0;
    double sumOfBounds = 0.0;
    double sumOfLeast = 0.0;
    for (unsigned round = 0; round < 90; ++round) {
        const SearchProblem problem = smallProblemOf(engine, round % 3);
        const SourceTable table(problem);
        const TupleSearch search(problem);
        for (int division = 0; division < 4; ++division) {
            std::vector<std::uint64_t> chunks = {0};
            for (int chunk = 0; chunk < 2 * division; ++chunk)
                chunks.push_back(engine() % problem.combinations.size());
            std::sort(chunks.begin(), chunks.end());
            chunks.erase(std::unique(chunks.begin(), chunks.end()), chunks.end());
            const auto expected = winnerOf(problem, table, chunks);
            const auto actual = search.search(chunks, {}).winner;
            ASSERT_EQ(expected.has_value(), actual.has_value()) << "round " << round;
            unservable += canServeAll(problem, table) ? 0 : 1;
            if (!expected)
                continue;
            ASSERT_TRUE(canServeAll(problem, table)) << "round " << round;
            ASSERT_EQ(expected->sum, actual->sum) << "round " << round;
            ASSERT_EQ(expected->tuple, actual->tuple) << "round " << round;
            ++won;
            sumOfBounds += PriceBound(problem, table).lowest();
            sumOfLeast += static_cast<double>(expected->sum);
        }
    }
    EXPECT_GT(won, 100);
    EXPECT_GT(unservable, 20);
    EXPECT_GT(sumOfBounds, 0.7 * sumOfLeast) << "a bound far below the sums cuts nothing";
}

} // namespace
