#include "clocking/search/SettingSearch.h"

#include <algorithm>
#include <queue>

namespace hbs_clocking {

namespace {

[[nodiscard]] MultiplierMask only(unsigned mul) {
    MultiplierMask mask;
    mask.insert(mul);
    return mask;
}

/// The combinations of the list whose places all have an allowed value.
[[nodiscard]] CombinationList restrictedList(const CombinationList& list,
                                             std::span<const MultiplierMask> allowed) {
    const auto keep = [](std::vector<std::uint8_t>& values, const MultiplierMask& mask) {
        std::erase_if(values, [&](std::uint8_t value) { return !mask.contains(value); });
    };
    CombinationList result;
    unsigned place = 0;
    for (CombinationStage stage : list.stages()) {
        keep(stage.firsts, allowed[place]);
        if (stage.width() == 2)
            keep(stage.seconds, allowed[place + 1]);
        place += stage.width();
        if (stage.firsts.empty())
            return {};
        result = result.extendedBy(std::move(stage));
        if (result.isEmpty())
            return {};
    }
    return result;
}

} // namespace

void SettingSearch::find(SettingList& list) const {
    const unsigned places = m_problem.combinations.width();
    const auto isLater = [](const Part& a, const Part& b) { return a.sum > b.sum; };
    std::priority_queue<Part, std::vector<Part>, decltype(isLater)> parts(isLater);
    Masks all;
    for (MultiplierMask& mask : all)
        for (unsigned mul = kMinMultiplier; mul <= kMaxMultiplier; ++mul)
            mask.insert(mul);
    if (const auto whole = solve(all))
        parts.push(*whole);
    // A full list takes no setting of the sum that its last one has. Where requests of about 0 make
    // nearly all combinations equal, going on would try every one of them.
    while (!parts.empty() && parts.top().sum < list.limit()) {
        const Part part = parts.top();
        parts.pop();
        addSettings(part.best, list);
        // Without its best combination the part falls into disjoint parts, one per place: those
        // that have the best's multipliers in all earlier places and another one in this place.
        Masks rest = part.allowed;
        for (unsigned place = 0; place < places; ++place) {
            Masks other = rest;
            other[place].erase(part.best[place]);
            if (const auto next = solve(other))
                parts.push(*next);
            rest[place] = only(part.best[place]);
        }
    }
}

SearchProblem SettingSearch::restricted(const Masks& allowed) const {
    SearchProblem problem = m_problem;
    problem.combinations = restrictedList(m_problem.combinations, allowed);
    return problem;
}

std::optional<SettingSearch::Part> SettingSearch::solve(const Masks& allowed) const {
    const SearchProblem problem = restricted(allowed);
    if (problem.combinations.isEmpty())
        return std::nullopt;
    const TupleSearch::Result found = TupleSearch(problem).search(std::array{std::uint64_t{0}}, {});
    if (!found.winner)
        return std::nullopt;
    Part part{allowed, {}, found.winner->sum};
    for (unsigned place = 0; place < problem.combinations.width(); ++place)
        part.best[place] = found.winner->tuple.muls[m_problem.shape->roleOf(place)];
    return part;
}

void SettingSearch::addSettings(const Combination& combination, SettingList& list) const {
    Masks allowed;
    for (unsigned place = 0; place < m_problem.combinations.width(); ++place)
        allowed[place] = only(combination[place]);
    const SearchProblem problem = restricted(allowed);
    const SourceTable table(problem);
    Choice choice;
    const auto choose = [&](const auto& self, unsigned role) -> void {
        if (role == kRoles)
            return addSetting(table, choice, list);
        for (const PllOption& option : table.options(static_cast<Role>(role)).all) {
            choice.options[role] = &option;
            self(self, role + 1);
        }
    };
    choose(choose, 0);
}

void SettingSearch::addSetting(const SourceTable& table, const Choice& choice,
                               SettingList& list) const {
    std::vector<float> errors(m_problem.requests.size());
    std::vector<unsigned> sources(m_problem.requests.size());
    for (unsigned domain = 0; domain < kDomains; ++domain) {
        const DomainRequests& requests = table.domain(domain);
        for (std::size_t i = 0; i < requests.positions.size(); ++i) {
            float standing = m_problem.tolerance;
            for (unsigned role = 0; role < kRoles; ++role) {
                const float* const offered = choice.options[role]->errors[domain];
                if (offered == nullptr ||
                    !definitelyLess(std::fabs(offered[i]), std::fabs(standing), kMargin))
                    continue;
                standing = offered[i];
                sources[requests.positions[i]] = role;
            }
            if (!isServed(standing, m_problem.tolerance))
                return;
            errors[requests.positions[i]] = standing;
        }
    }
    float sum = 0.0F;
    for (const float error : errors)
        sum += error;
    if (sum <= list.limit())
        list.add(settingOf(choice, sum, sources));
}

ClockSetting SettingSearch::settingOf(const Choice& choice, float sum,
                                      const std::vector<unsigned>& sources) const {
    ClockSetting setting;
    setting.sum = sum;
    const TreeShape& shape = *m_problem.shape;
    for (unsigned pll = 0; pll < shape.pllCount; ++pll) {
        const unsigned role = shape.roleOf(pll);
        const PllOption& option = *choice.options[role];
        const bool isNoc = role == indexOf(Role::Noc);
        setting.plls.push_back(
            {option.mul, isNoc ? m_problem.nocDivider(option.mul) : option.div, option.cross});
    }
    for (std::size_t i = 0; i < sources.size(); ++i) {
        const unsigned pll = shape.pllOf[sources[i]];
        const ClockSetting::Pll& set = setting.plls[pll];
        float mhz = static_cast<float>(set.multiplier) * m_problem.refMhz /
                    static_cast<float>(set.outputDivider);
        if (shape.reach[m_problem.requests[i].domain][sources[i]] == Reach::Across)
            mhz /= static_cast<float>(set.crossDivider);
        setting.peripherals.emplace_back(
            pll, offerNearestDivider(mhz, m_problem.requests[i].mhz).divider);
    }
    return setting;
}

} // namespace hbs_clocking
