#include "reference46.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <set>

namespace reference46 {

namespace {

constexpr float MARGIN = 1e-5F;
constexpr float LADDER[] = {0.001F, 0.01F, 0.02F, 0.05F, 0.1F, 0.2F, 0.5F, 1.0F};
constexpr unsigned SATURATED = 1023;

bool greater(float a, float b, float margin) {
    return a - b > std::max(std::fabs(a), std::fabs(b)) * margin;
}

bool less(float a, float b, float margin) {
    return b - a > std::max(std::fabs(a), std::fabs(b)) * margin;
}

bool equal(float a, float b, float margin) {
    if (a == b)
        return true;
    const float difference = std::fabs(a - b);
    if (a == 0.0F || b == 0.0F)
        return margin > difference;
    return std::max(std::fabs(a), std::fabs(b)) * margin >= difference;
}

unsigned saturate(float value) {
    if (!(value > 0.0F))
        return 0;
    if (value >= 4294967296.0F)
        return std::numeric_limits<unsigned>::max();
    return static_cast<unsigned>(value);
}

unsigned nearest(float freq, float target, bool inMhz) {
    const unsigned c = saturate(std::ceil(freq / target));
    if (c == 0)
        return 0xFFFFFFFFU;
    if (c == 1)
        return 1;
    float lo = freq / static_cast<float>(c);
    float hi = freq / static_cast<float>(c - 1);
    if (!inMhz) {
        lo /= 1e6F;
        hi /= 1e6F;
        target /= 1e6F;
    }
    if (hi - target > 0.0F)
        return c;
    const float below = std::fabs((target - lo) / target);
    const float above = std::fabs((target - hi) / target);
    return below - above > 0.0F ? c - 1 : c;
}

Combination operator+(Combination head, const Combination& tail) {
    head.insert(head.end(), tail.begin(), tail.end());
    return head;
}

} // namespace

Search::Search(const Tree& tree) : m_tree(tree), m_errorLimits(tree.domains.size(), 1.0F) {
    std::copy_if(tree.peripherals.begin(), tree.peripherals.end(), std::back_inserter(m_enabled),
                 [](const Peripheral& peripheral) { return peripheral.enabled; });
}

std::optional<Solution> Search::solve(int threads, std::uint64_t maxTuples) {
    for (const float tolerance : LADDER) {
        m_most = static_cast<std::size_t>(maxTuples / 64);
        const std::vector<Combination> combinations = combinationsOfStep(tolerance);
        const std::uint64_t tuples = countTuples(combinations);
        if (m_tooMany || tuples > maxTuples)
            return std::nullopt;
        maxTuples -= tuples;
        const std::size_t n = combinations.size();
        Solution best;
        if (n != 0 && n <= 1000) {
            best = evaluate(combinations, 0, n);
        } else if (n != 0) {
            const auto tasks = static_cast<std::size_t>(std::min(threads, 8));
            float standing = 1000.0F;
            for (std::size_t i = 0; i < tasks; ++i) {
                const std::size_t last = i + 1 == tasks ? n : (i + 1) * (n / tasks);
                Solution part = evaluate(combinations, i * (n / tasks), last);
                if (part.found && standing > part.total) {
                    standing = part.total;
                    best = part;
                }
            }
        }
        if (best.found) {
            best.tolerance = tolerance;
            return best;
        }
    }
    Solution none;
    none.tolerance = 1.0F;
    return none;
}

float Search::domainLimit(int domain) const {
    float limit = 1.0F;
    for (const float pll : m_tree.domains[static_cast<std::size_t>(domain)].pllLimitsMhz)
        limit = std::max(limit, pll);
    return limit;
}

unsigned Search::outputDivider(unsigned mul, int domain) const {
    const float freq = static_cast<float>(mul) * m_tree.refMhz;
    const float limit = domainLimit(domain);
    if (!less(limit * 1e6F, freq * 1e6F, MARGIN))
        return 1;
    const unsigned c = saturate(std::ceil(freq / limit));
    return c > 4 ? 8 : c > 2 ? 4 : c > 1 ? 2 : c;
}

unsigned Search::nocDivider(unsigned mul) {
    std::vector<float> requests;
    for (const Peripheral& peripheral : m_enabled)
        if (peripheral.noc)
            requests.push_back(peripheral.requestMhz);
    if (requests.size() != 1) {
        ++m_lines;
        return 1;
    }
    return saturate(std::round(static_cast<float>(mul) * m_tree.refMhz / requests[0]));
}

bool Search::serves(unsigned mul, const Peripheral& peripheral) const {
    const unsigned q = outputDivider(mul, peripheral.domain);
    const float pllHz = static_cast<float>(mul) * m_tree.refMhz * 1e6F / static_cast<float>(q);
    const float reqHz = peripheral.requestMhz * 1e6F;
    const bool zero = equal(reqHz, 0.0F, MARGIN);
    const unsigned div = zero ? SATURATED : std::min(nearest(pllHz, reqHz, false), SATURATED);
    const float outHz = pllHz / static_cast<float>(div);
    float error = 0.0F;
    if (!zero && div != SATURATED)
        error = std::fabs((reqHz - outHz) / reqHz);
    float tolerance = m_tolerance;
    const float limit = m_errorLimits[static_cast<std::size_t>(peripheral.domain)];
    if (tolerance > limit)
        tolerance = limit;
    if (!less(error, peripheral.allowedPercent / 100.0F, MARGIN))
        error = 100.0F;
    return less(error, tolerance, MARGIN);
}

std::vector<unsigned> Search::nocMultipliers() {
    const auto domain = std::find_if(m_tree.domains.begin(), m_tree.domains.end(),
                                     [](const Domain& d) { return d.name == "NOC_DOMAIN"; });
    if (domain == m_tree.domains.end())
        return {};
    const auto index = static_cast<int>(domain - m_tree.domains.begin());
    std::set<unsigned> found;
    for (unsigned mul = 160; mul >= 25; --mul) {
        const float vcoHz = static_cast<float>(mul) * m_tree.refMhz * 1e6F;
        if (greater(vcoHz, 4.32e9F, MARGIN) || less(vcoHz, 2.16e9F, MARGIN))
            continue;
        for (const Peripheral& peripheral : m_enabled) {
            if (!peripheral.noc || peripheral.domain != index)
                continue;
            const float reqHz = peripheral.requestMhz * 1e6F;
            float tolerance = m_tolerance;
            for (const unsigned k : {1U, 2U, 4U, 8U}) {
                const float outHz = vcoHz / static_cast<float>(k);
                if (less(reqHz, outHz, 0.0001F))
                    continue;
                float error = 0.0F;
                if (!equal(reqHz, 0.0F, MARGIN))
                    error = std::fabs((reqHz - outHz) / reqHz);
                const float limit = m_errorLimits[static_cast<std::size_t>(index)];
                if (tolerance > limit)
                    tolerance = limit;
                if (less(error, tolerance, MARGIN))
                    found.insert(mul);
            }
        }
    }
    lock(index, !found.empty());
    if (m_tree.pins[1] != 0)
        std::erase_if(found, [&](unsigned mul) { return mul != m_tree.pins[1]; });
    return {found.begin(), found.end()};
}

void Search::lock(int domain, bool anything) {
    float& limit = m_errorLimits[static_cast<std::size_t>(domain)];
    if (anything && limit > m_tolerance)
        limit = m_tolerance;
}

std::vector<Combination> Search::combinationsOfStep(float tolerance) {
    m_tolerance = tolerance;
    const std::vector<unsigned> noc = nocMultipliers();

    int nocIndex = -1;
    for (std::size_t i = m_tree.domains.size(); i-- > 0;)
        if (m_tree.domains[i].name == "NOC_DOMAIN")
            nocIndex = static_cast<int>(i);
    std::set<unsigned> all;
    m_covered.clear();
    for (const Peripheral& peripheral : m_enabled) {
        if (peripheral.domain == nocIndex)
            continue;
        Covered covered{peripheral.domain, {}, peripheral.requestMhz};
        bool any = false;
        for (unsigned mul = 160; mul >= 25; --mul) {
            const float vcoHz = static_cast<float>(mul) * m_tree.refMhz * 1e6F;
            if (greater(vcoHz, 4.32e9F, MARGIN) || less(vcoHz, 2.16e9F, MARGIN))
                continue;
            if (!serves(mul, peripheral))
                continue;
            any = true;
            all.insert(mul);
            covered.bits.word[std::min(mul >> 5U, 4U)] |= 1U << (mul & 31U);
        }
        if (any)
            m_covered.push_back(covered);
    }
    m_multipliers.assign(all.begin(), all.end());

    const auto nocCount = static_cast<std::size_t>(
        std::count_if(m_enabled.begin(), m_enabled.end(), [](const auto& p) { return p.noc; }));
    if (m_covered.size() != m_enabled.size() - nocCount)
        return {};
    return m_tree.sixPlls() ? combinationsOfSix(noc) : combinationsOfFour(noc);
}

bool Search::covers(const Combination& combination, int domain) const {
    Words bits;
    for (const unsigned mul : combination)
        bits.word[std::min(mul >> 5U, 4U)] |= 1U << (mul & 31U);
    for (const Covered& covered : m_covered) {
        if (covered.domain != domain)
            continue;
        bool common = false;
        for (const int i : {4, 3, 2, 1})
            common = common || (covered.bits.word[i] & bits.word[i]) != 0;
        if (!common)
            return false;
    }
    return true;
}

std::vector<unsigned> Search::valuesAt(std::size_t pll, const std::vector<unsigned>& list) const {
    const unsigned pin = m_tree.pins[pll];
    return pin == 0 ? list : std::vector<unsigned>{pin};
}

bool Search::isPinned(int pll) const {
    return m_tree.pins[static_cast<std::size_t>(pll)] != 0 ||
           std::any_of(m_enabled.begin(), m_enabled.end(),
                       [&](const Peripheral& peripheral) { return peripheral.source == pll; });
}

std::vector<Combination> Search::single(int domain) {
    std::vector<Combination> result;
    for (const unsigned m : valuesAt(static_cast<std::size_t>(domain), m_multipliers))
        if (covers({m}, domain))
            result.push_back({m});
    lock(domain, !result.empty());
    return result;
}

void Search::append(std::vector<Combination>& list, const Combination& combination) {
    if (list.size() >= m_most)
        m_tooMany = true;
    else
        list.push_back(combination);
}

std::vector<Combination> Search::product(const std::vector<Combination>& heads,
                                         const std::vector<Combination>& tails) {
    std::vector<Combination> result;
    for (const Combination& head : heads)
        for (const Combination& tail : tails)
            if (!m_tooMany)
                append(result, head + tail);
    return result;
}

std::vector<Combination> Search::extend(const std::vector<Combination>& heads,
                                        const std::vector<unsigned>& tails, int domain) {
    std::vector<Combination> result;
    for (const Combination& head : heads)
        for (const unsigned tail : tails)
            if (!m_tooMany && covers(head + Combination{tail}, domain))
                append(result, head + Combination{tail});
    lock(domain, !result.empty());
    return result;
}

std::vector<Combination> Search::extendByPairs(const std::vector<Combination>& heads, int domain) {
    std::vector<Combination> result;
    for (const Combination& head : heads)
        for (const unsigned a : valuesAt(2, m_multipliers))
            for (const unsigned b : valuesAt(3, m_multipliers))
                if (a != b && !m_tooMany && covers(head + Combination{a, b}, domain))
                    append(result, head + Combination{a, b});
    lock(domain, !result.empty());
    return result;
}

std::vector<Combination> Search::ascendingPairs(int domain) {
    std::vector<Combination> result;
    const bool anyOrder = isPinned(4) || isPinned(5);
    for (const unsigned a : valuesAt(4, m_multipliers))
        for (const unsigned b : valuesAt(5, m_multipliers))
            if ((a < b || (anyOrder && a != b)) && covers({a, b}, domain))
                result.push_back({a, b});
    lock(domain, !result.empty());
    return result;
}

std::vector<Combination> Search::crossChecked(const std::vector<Combination>& heads, int domain) {
    const auto common = [](const Combination& muls, const Covered& covered) {
        for (const unsigned mul : muls)
            for (const unsigned word : {4U, 3U, 2U, 1U})
                if (std::min(mul >> 5U, 4U) == word &&
                    (covered.bits.word[word] >> (mul & 31U) & 1U) != 0)
                    return true;
        return false;
    };
    std::vector<Combination> result;
    for (const Combination& head : heads) {
        for (const unsigned a : valuesAt(4, m_multipliers)) {
            for (const unsigned b : valuesAt(5, m_multipliers)) {
                const bool anyOrder = isPinned(4) || isPinned(5);
                if (m_tooMany || a == b || (a > b && !anyOrder))
                    continue;
                const Combination own = {a, b};
                const bool passes =
                    std::all_of(m_covered.begin(), m_covered.end(), [&](const Covered& covered) {
                        return covered.domain != domain || common(own, covered) ||
                               (common({head[0], head[2]}, covered) &&
                                !greater(covered.requestMhz * (1.0F - m_tolerance),
                                         m_tree.maxCrossMhz, MARGIN));
                    });
                if (passes)
                    append(result, head + own);
            }
        }
    }
    return result;
}

std::vector<Combination> Search::combinationsOfFour(const std::vector<unsigned>& noc) {
    std::vector<Combination> heads;
    for (const unsigned m : valuesAt(0, m_multipliers))
        heads.push_back({m});
    std::vector<Combination> combinations = extend(heads, noc, 0);
    for (const int domain : {2, 3}) {
        const std::vector<Combination> own = single(domain);
        if (combinations.empty())
            continue;
        combinations =
            own.empty() ? extend(combinations,
                                 valuesAt(static_cast<std::size_t>(domain), m_multipliers), domain)
                        : product(combinations, own);
    }
    return combinations;
}

std::vector<Combination> Search::combinationsOfSix(const std::vector<unsigned>& noc) {
    std::vector<Combination> heads;
    for (const unsigned m : valuesAt(0, m_multipliers))
        heads.push_back({m});
    std::vector<Combination> nocHeads;
    for (const unsigned m : noc)
        nocHeads.push_back({m});
    const std::vector<Combination> own0 = single(0);
    std::vector<Combination> pairs;
    if (!noc.empty())
        pairs = own0.empty() ? extend(heads, noc, 0) : product(own0, nocHeads);

    std::vector<Combination> own2;
    for (const unsigned a : valuesAt(2, m_multipliers))
        for (const unsigned b : valuesAt(3, m_multipliers))
            if (a != b && covers({a, b}, 2))
                own2.push_back({a, b});
    lock(2, !own2.empty());
    std::vector<Combination> quads;
    if (!pairs.empty())
        quads = own2.empty() ? extendByPairs(pairs, 2) : product(pairs, own2);

    const std::vector<Combination> own3 = ascendingPairs(3);
    if (quads.empty())
        return {};
    return own3.empty() ? crossChecked(quads, 3) : product(quads, own3);
}

std::vector<Combination> Search::outputDividers(const Combination& muls) const {
    const std::vector<int> domains =
        m_tree.sixPlls() ? std::vector<int>{1, -1, 2, 2, 3, 3} : std::vector<int>{1, -1, 2, 3};
    std::vector<Combination> result = {{}};
    for (std::size_t pll = 0; pll < domains.size(); ++pll) {
        std::vector<Combination> longer;
        const unsigned lowest = domains[pll] < 0 ? 1 : outputDivider(muls[pll], domains[pll]);
        const unsigned highest = domains[pll] < 0 ? 1 : lowest > 4 ? 8 : 4;
        for (const Combination& head : result)
            for (unsigned d = highest; d >= lowest; d /= 2)
                longer.push_back(head + Combination{d});
        result = longer;
    }
    return result;
}

bool Search::slotsOf(const Peripheral& peripheral, const Combination& muls, const Combination& divs,
                     const Combination& cross, unsigned nocDiv, Slots& slots) const {
    slots = {};
    const auto direct = [&](std::size_t pll) {
        const unsigned div = pll == 1 ? nocDiv : divs[pll];
        slots.mhz[pll] = static_cast<float>(muls[pll]) * m_tree.refMhz / static_cast<float>(div);
        slots.engaged[pll] = true;
    };
    bool within = true;
    const auto across = [&](std::size_t pll) {
        direct(pll);
        slots.mhz[pll] = slots.mhz[pll] / static_cast<float>(cross[pll]);
        within = within && !greater(slots.mhz[pll], m_tree.maxCrossMhz, MARGIN);
    };
    const bool six = m_tree.sixPlls();
    switch (peripheral.domain) {
    case 0:
        direct(0);
        direct(1);
        break;
    case 1:
        direct(1);
        break;
    case 2:
        across(0);
        across(1);
        direct(2);
        if (six)
            direct(3);
        break;
    default:
        across(0);
        across(2);
        if (six) {
            direct(4);
            direct(5);
        } else {
            across(1);
            direct(3);
        }
    }
    for (std::size_t pll = 0; pll < slots.engaged.size() && peripheral.source >= 0; ++pll)
        if (static_cast<int>(pll) != peripheral.source)
            slots.engaged[pll] = false;
    return within;
}

bool Search::bestSlot(const Slots& slots, float target, PeripheralChoice& choice,
                      float& error) const {
    const bool zero = equal(target, 0.0F, MARGIN);
    float best = m_tolerance;
    bool found = false;
    for (std::size_t i = 0; i < slots.mhz.size(); ++i) {
        if (!slots.engaged[i])
            continue;
        const unsigned div =
            zero ? SATURATED : std::min(nearest(slots.mhz[i], target, true), SATURATED);
        const float out = slots.mhz[i] / static_cast<float>(div);
        float candidate = 0.0F;
        if (!zero && div != SATURATED)
            candidate = std::fabs((target - out) / target);
        if (less(candidate, best, MARGIN)) {
            best = candidate;
            choice = {static_cast<unsigned>(i), div};
            found = true;
        }
    }
    error = best;
    return found;
}

bool Search::evaluateTuple(const Combination& muls, const Combination& divs,
                           const Combination& cross, unsigned nocDiv, float& sum,
                           std::vector<PeripheralChoice>& choices) const {
    sum = 0.0F;
    choices.clear();
    Slots slots;
    for (const Peripheral& peripheral : m_enabled) {
        PeripheralChoice choice;
        float error = 0.0F;
        if (!slotsOf(peripheral, muls, divs, cross, nocDiv, slots) ||
            !bestSlot(slots, peripheral.requestMhz, choice, error))
            return false;
        const bool named = peripheral.name == "PSM_REF_CTRL" || peripheral.name == "ASU_REF_CTRL";
        if (m_tree.sixPlls() && named && (choice.slot == 1 || choice.slot == 3))
            return false;
        choices.push_back(choice);
        sum += error * peripheral.weight;
    }
    return true;
}

std::uint64_t Search::countTuples(const std::vector<Combination>& combinations) const {
    std::uint64_t count = 0;
    for (const Combination& muls : combinations)
        count += outputDividers(muls).size() * 64;
    return count;
}

Solution Search::evaluate(const std::vector<Combination>& combinations, std::size_t first,
                          std::size_t last) {
    Solution best;
    const auto begin = combinations.begin();
    forEachSetting(
        {begin + static_cast<std::ptrdiff_t>(first), begin + static_cast<std::ptrdiff_t>(last)},
        [&best](const Solution& setting) {
            if (less(setting.total, best.total, MARGIN))
                best = setting;
        });
    return best;
}

void Search::forEachSetting(const std::vector<Combination>& combinations,
                            const std::function<void(const Solution&)>& action) {
    float sum = 0.0F;
    std::vector<PeripheralChoice> choices;
    for (const Combination& muls : combinations) {
        for (const Combination& divs : outputDividers(muls)) {
            for (unsigned c = 0; c < 64; ++c) {
                const Combination cross = {4 - c / 16, 4 - c / 4 % 4, 4 - c % 4, 1};
                const unsigned nocDiv = nocDivider(muls[1]);
                if (!evaluateTuple(muls, divs, cross, nocDiv, sum, choices))
                    continue;
                Solution setting;
                setting.found = true;
                setting.total = sum;
                setting.peripherals = choices;
                for (std::size_t pll = 0; pll < muls.size(); ++pll) {
                    const unsigned div = pll == 1 ? nocDiv : divs[pll];
                    setting.plls.push_back({muls[pll], div, pll < 3 ? cross[pll] : 4});
                }
                action(setting);
            }
        }
    }
}

} // namespace reference46
