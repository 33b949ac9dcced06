#include "clocking/reference.h"

#include <cmath>
#include <cstdint>
#include <map>
#include <set>

namespace reference {

namespace {

using Unsigned = std::uint32_t;
using Bits = std::vector<Unsigned>;

bool greater(float a, float b, float e) {
    return a - b > std::fmax(std::fabs(a), std::fabs(b)) * e;
}
bool less(float a, float b, float e) {
    return b - a > std::fmax(std::fabs(a), std::fabs(b)) * e;
}
bool isZero(float a) {
    return a == 0.0F || 1e-5F > std::fabs(a);
}

Unsigned integer(float value) {
    if (std::isnan(value) || value < 0.0F)
        return 0;
    return value < 4294967296.0F ? static_cast<Unsigned>(value) : 0xFFFFFFFFU;
}

Unsigned atMost1023(Unsigned divider) {
    return divider < 1023 ? divider : 1023;
}

Unsigned nearestDivider(float hz, float targetHz) {
    const Unsigned c = integer(std::ceil(hz / targetHz));
    if (c == 0)
        return 0xFFFFFFFFU;
    if (c == 1)
        return 1;
    const float lo = hz / static_cast<float>(c) / 1e6F;
    const float hi = hz / static_cast<float>(c - 1) / 1e6F;
    const float target = targetHz / 1e6F;
    if (hi - target > 0.0F)
        return c;
    return std::fabs((target - lo) / target) - std::fabs((target - hi) / target) > 0.0F ? c - 1 : c;
}

struct Search {
    const trees::Tree& tree;
    float tolerance = 0.001F;
    float totalError = 1000.0F;
    std::vector<float> errorLimits = std::vector<float>(tree.limitsMhz.size(), 1.0F);
    std::map<std::size_t, std::vector<Unsigned>> candidates{}; ///< by place of the peripheral
    std::set<Unsigned> all{};
    std::vector<Unsigned> bestMuls{};
    std::map<std::size_t, std::pair<Unsigned, Unsigned>> bestChoices{};

    Unsigned outputDivider(Unsigned mul, std::size_t domain) const {
        const float f = static_cast<float>(mul) * tree.referenceMhz;
        const float limit = std::fmax(1.0F, tree.limitsMhz[domain]);
        if (!less(limit * 1e6F, f * 1e6F, 1e-5F))
            return 1;
        const Unsigned c = integer(std::ceil(f / limit));
        return c > 4 ? 8 : c > 2 ? 4 : c > 1 ? 2 : c;
    }

    void collect() {
        candidates.clear();
        all.clear();
        for (Unsigned mul = 160; mul >= 25; --mul) {
            const float vcoHz = static_cast<float>(mul) * tree.referenceMhz * 1e6F;
            if (greater(vcoHz, 4.32e9F, 1e-5F) || less(vcoHz, 2.16e9F, 1e-5F))
                continue;
            for (std::size_t i = 0; i < tree.peripherals.size(); ++i)
                if (tree.peripherals[i].enabled && isCandidate(vcoHz, mul, tree.peripherals[i])) {
                    candidates[i].push_back(mul);
                    all.insert(mul);
                }
        }
    }

    bool isCandidate(float vcoHz, Unsigned mul, const trees::Peripheral& p) const {
        const auto domain = static_cast<std::size_t>(p.domain);
        const float pllHz = vcoHz / static_cast<float>(outputDivider(mul, domain));
        const float reqHz = p.requestMhz * 1e6F;
        const Unsigned div = isZero(reqHz) ? 1023 : atMost1023(nearestDivider(pllHz, reqHz));
        const float outHz = pllHz / static_cast<float>(div);
        float err = isZero(reqHz) ? 0.0F : std::fabs((reqHz - outHz) / reqHz);
        if (div == 1023)
            err = 0.0F;
        float tol = tolerance;
        if (tolerance > errorLimits[domain])
            tol = errorLimits[domain];
        if (!less(err, p.allowedPercent / 100.0F, 1e-5F))
            err = 100.0F;
        return less(err, tol, 1e-5F);
    }

    static Bits bitsOf(const std::vector<Unsigned>& muls) {
        Bits words(5, 0);
        for (const Unsigned v : muls)
            words[v >> 5U < 4 ? v >> 5U : 4] |= 1U << (v & 31U);
        return words;
    }

    std::vector<Unsigned> filter(std::size_t domain) {
        std::vector<Unsigned> out;
        for (const Unsigned m : all) {
            bool covers = true;
            for (const auto& [place, list] : candidates) {
                const Bits a = bitsOf({m});
                const Bits b = bitsOf(list);
                if (static_cast<std::size_t>(tree.peripherals[place].domain) == domain)
                    covers = covers && ((a[4] & b[4]) != 0 || (a[3] & b[3]) != 0 ||
                                        (a[2] & b[2]) != 0 || (a[1] & b[1]) != 0);
            }
            if (covers)
                out.push_back(m);
        }
        if (!out.empty() && errorLimits[domain] > tolerance)
            errorLimits[domain] = tolerance;
        return out;
    }

    float clock(Unsigned mul, std::size_t domain) const {
        return static_cast<float>(mul) * tree.referenceMhz /
               static_cast<float>(outputDivider(mul, domain));
    }

    std::vector<float> clocksFor(const trees::Peripheral& p,
                                 const std::vector<Unsigned>& muls) const {
        if (p.domain == 0)
            return {clock(muls[0], 0)};
        return {tree.allowCross ? clock(muls[0], 0) : 0.0F, clock(muls[1], 1)};
    }

    float findBest(const std::vector<float>& clocks, float target,
                   std::pair<Unsigned, Unsigned>& out) const {
        float best = tolerance;
        bool found = false;
        for (Unsigned i = 0; i < clocks.size(); ++i) {
            Unsigned div = 1023;
            if (!isZero(target))
                div = atMost1023(integer(std::ceil(clocks[i] / target)));
            const float o = clocks[i] / static_cast<float>(div);
            float err = isZero(target) ? 0.0F : std::fabs((target - o) / target);
            if (div == 1023)
                err = 0.0F;
            if (less(err, best, 1e-5F)) {
                best = err;
                out = {i, div};
                found = true;
            }
        }
        return found ? best : -1.0F;
    }

    void tryCombination(const std::vector<Unsigned>& muls, float& best) {
        float total = 0.0F;
        std::map<std::size_t, std::pair<Unsigned, Unsigned>> choices;
        for (std::size_t i = 0; i < tree.peripherals.size(); ++i) {
            const trees::Peripheral& p = tree.peripherals[i];
            if (!p.enabled)
                continue;
            const float r = findBest(clocksFor(p, muls), p.requestMhz, choices[i]);
            if (r == -1.0F)
                return;
            total += r;
        }
        if (less(total, best, 1e-5F)) {
            best = totalError = total;
            bestMuls = muls;
            bestChoices = choices;
        }
    }

    bool solveStep(std::size_t enabledCount) {
        collect();
        if (candidates.size() < enabledCount)
            return false;
        const std::vector<Unsigned> l0 = filter(0);
        const std::vector<Unsigned> l1 = tree.limitsMhz.size() > 1 ? filter(1) : Bits{0};
        float best = 1000.0F;
        for (const Unsigned m0 : l0)
            for (const Unsigned m1 : l1)
                tryCombination({m0, m1}, best);
        return !bestChoices.empty();
    }

    std::string describe(bool found) const {
        std::string text = trees::summaryLine(found, tolerance, totalError);
        std::vector<double> vco(tree.limitsMhz.size(), 0.0);
        for (std::size_t u = 0; u < vco.size(); ++u) {
            const Unsigned mul = found ? bestMuls[u] : 0;
            const Unsigned div = found ? outputDivider(mul, u) : 0;
            if (found)
                vco[u] = static_cast<double>(tree.referenceMhz * static_cast<float>(mul) /
                                             static_cast<float>(div));
            text += trees::pllLine(mul, div, vco[u], errorLimits[u]);
        }
        for (std::size_t i = 0; i < tree.peripherals.size(); ++i) {
            const auto choice = bestChoices.find(i);
            if (choice == bestChoices.end()) {
                text += trees::peripheralLine("", 0, 0.0);
                continue;
            }
            const auto [slot, div] = choice->second;
            const bool own = slot == static_cast<Unsigned>(tree.peripherals[i].domain);
            text += trees::peripheralLine(slot == 0 ? "PLL0" : "PLL1", div,
                                          own ? vco[slot] / div : 0.0);
        }
        return text;
    }
};

} // namespace

std::string solve(const trees::Tree& tree) {
    std::size_t enabledCount = 0;
    for (const trees::Peripheral& p : tree.peripherals)
        enabledCount += p.enabled ? 1 : 0;
    Search search{tree};
    if (enabledCount == 0)
        return search.describe(false);
    for (const float tolerance : {0.001F, 0.01F, 0.02F, 0.05F, 0.1F, 0.2F, 0.5F, 1.0F}) {
        search.tolerance = tolerance;
        if (search.solveStep(enabledCount))
            return search.describe(true);
    }
    return search.describe(false);
}

} // namespace reference
