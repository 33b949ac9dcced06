#include "workbench/clocks/ClockCheck.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <map>
#include <ostream>
#include <span>

#include "diagnostics/NearestName.h"
#include "workbench/clocks/ClockRun.h"
#include "workbench/clocks/ClockWiring.h"
#include "workbench/text/DiagnosticJson.h"
#include "workbench/text/JsonWriter.h"
#include "workbench/text/Text.h"

namespace tq {

namespace {

// MHz, and relative margins.
constexpr double kLeastVco = 2160.0;
constexpr double kMostVco = 4320.0;
constexpr double kLeastMultiplier = 25.0;
constexpr double kMostMultiplier = 160.0;
constexpr double kLargestDivider = 1023.0;
constexpr double kMargin = 1.05e-5; ///< that of the solvers, and what single precision rounds
constexpr double kNocMargin = 1.001e-4;
constexpr double kUnknown = std::numeric_limits<double>::quiet_NaN();
constexpr double kStatedMargin = 5e-7; ///< of frequencies and errors in the file

struct TreePll {
    const ClockTree::Pll* pll;
    std::size_t domain;
};

/// One PLL of the setting; NaN for what isn't known.
struct SetPll {
    const JsonNode* node = nullptr;
    double multiplier = kUnknown;
    double outputDivider = kUnknown;
    double crossDivider = kUnknown;
    double mhz = kUnknown;
};

[[nodiscard]] std::string mhzText(double mhz) {
    return fixedText(mhz, 4) + " MHz";
}

[[nodiscard]] std::string numberText(double number) {
    return number == std::floor(number) && std::fabs(number) < 1e15 ? fixedText(number, 0)
                                                                    : fixedText(number, 6);
}

[[nodiscard]] std::string quoted(const std::string& name) {
    return "\"" + name + "\"";
}

[[nodiscard]] bool isOneOf(double value, std::initializer_list<double> values) {
    return std::find(values.begin(), values.end(), value) != values.end();
}

class Checker {
public:
    Checker(const ClockTree& tree, const JsonFile& file) : m_tree(tree), m_file(file) {
        for (std::size_t i = 0; i < tree.domains.size(); ++i)
            for (const ClockTree::Pll& pll : tree.domains[i].plls)
                m_plls.push_back({&pll, i});
        m_set.resize(m_plls.size());
    }

    ClockCheck check() {
        const JsonNode& root = m_file.root();
        m_file.expectKeys(root, {"solved", "tolerance", "sum_of_relative_errors", "weighted_sum",
                                 "search", "plls", "peripherals", "conflicts", "without",
                                 "alternatives"});
        if (const JsonNode* solved = root.find("solved"); solved && !m_file.boolean(*solved))
            m_file.fail(solved->offset, "expected a solution");
        readPlls(m_file.require(root, "plls"));
        for (std::size_t i = 0; i < m_plls.size(); ++i)
            if (m_set[i].node != nullptr)
                checkPll(i);
        const JsonNode& peripherals = m_file.require(root, "peripherals");
        checkPeripherals(peripherals);
        checkStatedSums(root);
        return std::move(m_check);
    }

private:
    void error(const JsonNode& node, const char* id, std::string text, std::string expected = {}) {
        m_check.findings.add(makeDiagnostic(Severity::Error, id, m_file.placeOf(node.offset),
                                            std::move(text), std::move(expected)));
    }

    /// The entries of a list by the places of their names among the known ones.
    [[nodiscard]] std::map<std::size_t, const JsonNode*>
    byName(const JsonNode& list, std::span<const std::string_view> known, const char* what) {
        std::map<std::size_t, const JsonNode*> found;
        for (const JsonNode& entry : m_file.array(list)) {
            const JsonNode& node = m_file.require(entry, "name");
            const std::string& name = m_file.string(node);
            const auto place = std::find(known.begin(), known.end(), name);
            if (place == known.end()) {
                const std::string nearest(nearestName(name, known));
                error(node, "unknown-name", std::string("there is no ") + what + " " + quoted(name),
                      nearest.empty() ? "" : "a name such as " + quoted(nearest));
            } else if (!found.emplace(place - known.begin(), &entry).second) {
                error(node, "second-entry", std::string("a second entry for ") + quoted(name));
            }
        }
        return found;
    }

    void readPlls(const JsonNode& list) {
        std::vector<std::string_view> names;
        for (const TreePll& pll : m_plls)
            names.push_back(pll.pll->name);
        const auto entries = byName(list, names, "PLL");
        for (std::size_t i = 0; i < m_plls.size(); ++i) {
            const auto entry = entries.find(i);
            if (entry == entries.end()) {
                error(list, "missing-entry", "PLL " + quoted(std::string(names[i])) + " isn't set");
                continue;
            }
            const JsonNode& node = *entry->second;
            m_file.expectKeys(node, {"name", "domain", "multiplier", "output_divider",
                                     "cross_domain_divider", "mhz"});
            SetPll& set = m_set[i];
            set.node = &node;
            set.multiplier = m_file.number(m_file.require(node, "multiplier"));
            set.outputDivider = m_file.number(m_file.require(node, "output_divider"));
            const JsonNode* cross = node.find("cross_domain_divider");
            if (cross != nullptr)
                set.crossDivider = m_file.number(*cross);
            else
                set.crossDivider = crosses(i) ? kUnknown : usualCrossDivider();
            set.mhz = vcoMhz(set) / set.outputDivider;
        }
    }

    [[nodiscard]] double reference() const { return static_cast<double>(m_tree.referenceMhz); }
    [[nodiscard]] double vcoMhz(const SetPll& set) const { return reference() * set.multiplier; }
    [[nodiscard]] bool isLarge() const { return m_tree.pllCount > 2; }
    [[nodiscard]] bool isNoc(std::size_t pll) const { return isLarge() && pll == 1; }
    /// Of a PLL whose clock doesn't cross.
    [[nodiscard]] double usualCrossDivider() const { return isLarge() ? 4.0 : 0.0; }

    [[nodiscard]] bool crosses(std::size_t pll) const {
        for (std::size_t domain = 0; domain < m_tree.domains.size(); ++domain)
            if (wayOf(m_tree, pll, domain) == ClockWay::Across)
                return true;
        return false;
    }

    [[nodiscard]] double limitOfDomain(std::size_t domain) const {
        double limit = 1.0;
        for (const ClockTree::Pll& pll : m_tree.domains[domain].plls)
            limit = std::max(limit, static_cast<double>(pll.maxMhz));
        return limit;
    }

    void checkPll(std::size_t index) {
        const SetPll& set = m_set[index];
        const JsonNode& node = *set.node;
        const std::string& name = m_plls[index].pll->name;
        checkStatedText(node, "domain", m_tree.domains[m_plls[index].domain].name);
        const double multiplier = set.multiplier;
        if (!(multiplier >= kLeastMultiplier && multiplier <= kMostMultiplier) ||
            multiplier != std::floor(multiplier))
            error(m_file.require(node, "multiplier"), "multiplier-range",
                  "the multiplier of " + name + " is " + numberText(multiplier),
                  "a whole number from 25 to 160");
        const double vco = vcoMhz(set);
        if (vco < kLeastVco * (1 - kMargin) || vco > kMostVco * (1 + kMargin))
            error(m_file.require(node, "multiplier"), "vco-range",
                  "the VCO of " + name + " runs at " + mhzText(vco), "2160 to 4320 MHz");
        if (isNoc(index))
            checkNocDivider(set);
        else
            checkOutputDivider(index);
        checkCrossing(index);
        checkStatedNumber(node, "mhz", set.mhz, std::fabs(set.mhz) * kStatedMargin);
    }

    void checkOutputDivider(std::size_t index) {
        const SetPll& set = m_set[index];
        const JsonNode& node = m_file.require(*set.node, "output_divider");
        const std::string& name = m_plls[index].pll->name;
        if (!isOneOf(set.outputDivider, {1.0, 2.0, 4.0, 8.0})) {
            error(node, "output-divider",
                  "the output divider of " + name + " is " + numberText(set.outputDivider),
                  "1, 2, 4 or 8");
            return;
        }
        const std::size_t domain = isLarge() && index == 0 ? 1 : m_plls[index].domain;
        const double limit = limitOfDomain(domain);
        if (set.mhz > limit * (1 + kMargin))
            error(node, "pll-limit", name + " puts out " + mhzText(set.mhz),
                  "at most " + mhzText(limit) + ", the limit of " + m_tree.domains[domain].name);
    }

    [[nodiscard]] const ClockTree::Peripheral* nocPeripheral() const {
        const auto noc = std::find_if(m_tree.peripherals.begin(), m_tree.peripherals.end(),
                                      [](const auto& p) { return p.enabled && p.noc; });
        return noc == m_tree.peripherals.end() ? nullptr : &*noc;
    }

    void checkNocDivider(const SetPll& set) {
        const ClockTree::Peripheral* noc = nocPeripheral();
        if (noc == nullptr)
            return;
        const double request = static_cast<double>(noc->mhz);
        const double quotient = vcoMhz(set) / request;
        const JsonNode& node = m_file.require(*set.node, "output_divider");
        // A quotient halfway between two numbers may be rounded either way.
        if (!(std::fabs(set.outputDivider - quotient) <= 0.5 + quotient * kStatedMargin) ||
            set.outputDivider != std::floor(set.outputDivider) || set.outputDivider < 1)
            error(node, "noc-divider",
                  "the output divider of the NOC PLL is " + numberText(set.outputDivider),
                  "the whole number nearest to " + fixedText(quotient, 4) + " (VCO \u00f7 " +
                      mhzText(request) + ")");
        if (vcoMhz(set) / 8.0 > request * (1 + kNocMargin))
            error(m_file.require(*set.node, "multiplier"), "noc-ceiling",
                  "the VCO of the NOC PLL gives at least " + mhzText(vcoMhz(set) / 8.0),
                  "at most " + mhzText(request) + ", the NOC request");
    }

    void checkCrossing(std::size_t index) {
        const SetPll& set = m_set[index];
        const JsonNode* given = set.node->find("cross_domain_divider");
        const JsonNode& node = given == nullptr ? *set.node : *given;
        const std::string& name = m_plls[index].pll->name;
        const double cross = set.crossDivider;
        if (!crosses(index)) {
            if (cross != usualCrossDivider())
                error(node, "cross-divider",
                      "the cross-domain divider of " + name + " is " + numberText(cross),
                      numberText(usualCrossDivider()) + ", as its clock doesn't cross");
            return;
        }
        if (!isOneOf(cross, {1.0, 2.0, 3.0, 4.0})) {
            error(node, "cross-divider",
                  "the cross-domain divider of " + name +
                      (std::isnan(cross) ? " is missing" : " is " + numberText(cross)),
                  "1, 2, 3 or 4");
            return;
        }
        const double mhz = set.mhz / cross;
        const double limit = static_cast<double>(m_tree.maxCrossMhz);
        if (mhz > limit * (1 + kMargin) && mayBeTakenAcross(index))
            error(node, "crossing-limit", name + " crosses its domain at " + mhzText(mhz),
                  "at most " + mhzText(limit));
    }

    /// Whether a domain that the clock crosses to has enabled peripherals: the limit is theirs.
    [[nodiscard]] bool mayBeTakenAcross(std::size_t pll) const {
        return std::any_of(
            m_tree.peripherals.begin(), m_tree.peripherals.end(), [&](const auto& p) {
                return p.enabled && wayOf(m_tree, pll, domainOf(m_tree, p)) == ClockWay::Across;
            });
    }

    void checkPeripherals(const JsonNode& list) {
        std::vector<std::string_view> names;
        for (const ClockTree::Peripheral& peripheral : m_tree.peripherals)
            names.push_back(peripheral.name);
        const auto entries = byName(list, names, "peripheral");
        for (std::size_t i = 0; i < m_tree.peripherals.size(); ++i) {
            const auto entry = entries.find(i);
            if (entry != entries.end())
                checkPeripheral(m_tree.peripherals[i], *entry->second);
            else if (m_tree.peripherals[i].enabled)
                error(list, "missing-entry",
                      "peripheral " + quoted(m_tree.peripherals[i].name) + " isn't set");
        }
    }

    void checkPeripheral(const ClockTree::Peripheral& peripheral, const JsonNode& node) {
        m_file.expectKeys(node, {"name", "domain", "request_mhz", "enabled", "pll", "divider",
                                 "mhz", "error_percent", "error_ppm"});
        checkStatedText(node, "domain", peripheral.domain);
        const double request = static_cast<double>(peripheral.mhz);
        checkStatedNumber(node, "request_mhz", request, request * kStatedMargin);
        if (const JsonNode* enabled = node.find("enabled");
            enabled != nullptr && m_file.boolean(*enabled) != peripheral.enabled)
            error(*enabled, "stated-value", peripheral.name + " isn't so in the tree");
        if (!peripheral.enabled)
            return;
        const std::optional<double> clock = sourceMhz(peripheral, m_file.require(node, "pll"));
        const JsonNode& dividerNode = m_file.require(node, "divider");
        const double divider = m_file.number(dividerNode);
        if (!(divider >= 1 && divider <= kLargestDivider) || divider != std::floor(divider)) {
            error(dividerNode, "peripheral-divider",
                  "the divider of " + peripheral.name + " is " + numberText(divider),
                  "a whole number from 1 to 1023");
            return;
        }
        if (clock)
            checkClock(peripheral, node, *clock / divider, divider);
    }

    /// The clock that a source gives the peripheral before its own divider.
    [[nodiscard]] std::optional<double> sourceMhz(const ClockTree::Peripheral& peripheral,
                                                  const JsonNode& node) {
        const std::string& name = m_file.string(node);
        std::vector<std::string_view> reachable;
        std::optional<std::size_t> source;
        for (std::size_t i = 0; i < m_plls.size(); ++i) {
            if (!mayTake(m_tree, peripheral, i))
                continue;
            reachable.push_back(m_plls[i].pll->name);
            if (m_plls[i].pll->name == name)
                source = i;
        }
        if (!source) {
            std::string list;
            for (const std::string_view one : reachable)
                list.append(list.empty() ? "one of: " : ", ").append(one);
            error(node, "source", peripheral.name + " can't take a clock from " + quoted(name),
                  list);
            return std::nullopt;
        }
        const SetPll& set = m_set[*source];
        const bool across =
            wayOf(m_tree, *source, domainOf(m_tree, peripheral)) == ClockWay::Across;
        const double mhz = across ? set.mhz / set.crossDivider : set.mhz;
        return std::isfinite(mhz) ? std::optional(mhz) : std::nullopt; // else reported already
    }

    void checkClock(const ClockTree::Peripheral& peripheral, const JsonNode& node, double mhz,
                    double divider) {
        const double request = static_cast<double>(peripheral.mhz);
        checkStatedNumber(node, "mhz", mhz, mhz * kStatedMargin);
        if (request <= 0.0)
            return;
        const double signedError = (mhz - request) / request;
        const double margin = kStatedMargin * std::max(1.0, std::fabs(signedError));
        checkStatedNumber(node, "error_percent", signedError * 100.0, margin * 100.0);
        checkStatedNumber(node, "error_ppm", signedError * 1e6, margin * 1e6);
        if (isLarge() && peripheral.noc && mhz > request * (1 + kNocMargin))
            error(m_file.require(node, "divider"), "noc-ceiling",
                  peripheral.name + " gets " + mhzText(mhz), "at most " + mhzText(request));
        if (divider == kLargestDivider)
            return;
        const double error = std::fabs(signedError);
        m_check.sum += error;
        m_worst = std::max(m_worst, error);
        const double allowed = static_cast<double>(peripheral.maxErrorPercent);
        if (error * 100.0 > allowed * (1 + kMargin))
            this->error(m_file.require(node, "divider"), "allowed-error",
                        peripheral.name + " gets " + mhzText(mhz) + ", off by " +
                            fixedText(error * 100.0, 4) + " %",
                        "at most " + fixedText(allowed, 4) + " %");
    }

    void checkStatedText(const JsonNode& object, const char* key, const std::string& right) {
        const JsonNode* node = object.find(key);
        if (node != nullptr && m_file.string(*node) != right)
            error(*node, "stated-value",
                  std::string("the file states ") + quoted(m_file.string(*node)),
                  quoted(right) + ", as in the tree");
    }

    void checkStatedNumber(const JsonNode& object, const char* key, double right, double margin) {
        const JsonNode* node = object.find(key);
        if (node == nullptr || node->kind == JsonNode::Kind::Null || !std::isfinite(right))
            return;
        // Below this, single precision has few digits.
        constexpr auto least = static_cast<double>(std::numeric_limits<float>::min());
        if (!(std::fabs(m_file.number(*node) - right) <= margin + least))
            error(*node, "stated-value",
                  std::string("the file states ") + quoted(key) + " as " +
                      fixedText(node->number, 6),
                  fixedText(right, 6));
    }

    void checkStatedSums(const JsonNode& root) {
        // Each of the errors that were added up is rounded.
        const double count = static_cast<double>(m_tree.peripherals.size());
        checkStatedNumber(root, "sum_of_relative_errors", m_check.sum,
                          kStatedMargin * (1 + count) + m_check.sum * kStatedMargin);
        const JsonNode* tolerance = root.find("tolerance");
        if (tolerance == nullptr)
            return;
        const double stated = m_file.number(*tolerance);
        if (!(stated <= 1.0 + kStatedMargin && m_worst <= stated * (1 + kMargin) + kStatedMargin))
            error(*tolerance, "stated-value",
                  "the largest error is " + fixedText(m_worst, 6) + ", the stated tolerance " +
                      fixedText(stated, 6),
                  "an error below the tolerance, and a tolerance of at most 1");
    }

    const ClockTree& m_tree;
    const JsonFile& m_file;
    std::vector<TreePll> m_plls;
    std::vector<SetPll> m_set;
    double m_worst = 0.0;
    ClockCheck m_check;
};

[[nodiscard]] std::optional<double> distancePpm(const ClockCheck& check) {
    if (!check.bestSum)
        return std::nullopt;
    return (check.sum - *check.bestSum) * 1e6;
}

} // namespace

ClockCheck checkClockSetting(const ClockTree& tree, const JsonFile& setting) {
    if (const std::string fault = faultOfClockTree(tree); !fault.empty())
        throw InputError(fault);
    return Checker(tree, setting).check();
}

void addBestSum(ClockCheck& check, const ClockTree& tree) {
    const ClockRun run = runClockTree(tree);
    if (run.solver->is_result_found())
        check.bestSum = static_cast<double>(run.solver->getTotalRelativeError());
}

void printClockCheck(const ClockCheck& check, std::ostream& out) {
    const std::size_t broken = check.findings.count(Severity::Error);
    if (broken == 0)
        out << "Every rule holds.\n";
    else
        out << broken << (broken == 1 ? " rule is" : " rules are") << " broken.\n";
    out << "Sum of relative errors " << fixedText(check.sum * 1e6, 1) << " ppm";
    if (const auto distance = distancePpm(check))
        out << ", " << fixedText(std::fabs(*distance), 1) << " ppm "
            << (*distance < 0 ? "below" : "above") << " that of the solver's answer";
    out << ".\n";
}

void printClockCheckJson(const ClockCheck& check, std::ostream& out) {
    JsonWriter json;
    json.beginObject();
    json.member("valid", check.holds());
    json.member("sum_of_relative_errors", check.sum);
    if (const auto distance = distancePpm(check)) {
        json.member("best_sum_of_relative_errors", *check.bestSum);
        json.member("distance_ppm", *distance);
    }
    json.writeKey("findings");
    writeDiagnostics(json, check.findings.all());
    json.endObject();
    out << json.text();
}

} // namespace tq
