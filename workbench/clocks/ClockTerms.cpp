#include "workbench/clocks/ClockTerms.h"

#include <cmath>

#include "workbench/clocks/ClockNames.h"
#include "workbench/clocks/ClockWiring.h"
#include "workbench/files/InputError.h"

namespace tq {

namespace {

// MHz, with the relative margin of the solvers.
constexpr double kLeastVco = 2160.0 * (1 - 1e-5);
constexpr double kMostVco = 4320.0 * (1 + 1e-5);
constexpr const char* kPinForm = "PLL.multiplier=NUMBER or PERIPHERAL.source=PLL";

[[nodiscard]] unsigned readMultiplier(const ClockTree& tree, const std::string& text,
                                      const std::string& context) {
    const double number = readNumber(text, context);
    const double reference = static_cast<double>(tree.referenceMhz);
    const double least = std::max(25.0, std::ceil(kLeastVco / reference));
    const double most = std::min(160.0, std::floor(kMostVco / reference));
    if (number != std::floor(number) || number < least || number > most) {
        std::string range = "no multiplier keeps the VCO within 2160 to 4320 MHz";
        if (least <= most)
            range = "expected a whole number from " + std::to_string(static_cast<int>(least)) +
                    " to " + std::to_string(static_cast<int>(most)) +
                    ", which keeps the VCO within 2160 to 4320 MHz";
        throw InputError(context + ": " + range);
    }
    return static_cast<unsigned>(number);
}

[[nodiscard]] const ClockTree::Peripheral&
enabledPeripheral(const ClockTree& tree, const std::string& name, const std::string& context) {
    const ClockTree::Peripheral& peripheral = tree.peripherals[findPeripheral(tree, name, context)];
    if (!peripheral.enabled)
        throw InputError(context + ": the peripheral \"" + name + "\" isn't enabled");
    return peripheral;
}

void expectReach(const ClockTree& tree, const ClockTree::Peripheral& peripheral,
                 const std::string& source, const std::string& context) {
    if (mayTake(tree, peripheral, findPll(tree, source, context)))
        return;
    std::string reachable;
    const auto names = pllNames(tree);
    for (std::size_t pll = 0; pll < names.size(); ++pll)
        if (mayTake(tree, peripheral, pll))
            reachable.append(reachable.empty() ? "" : ", ").append(names[pll]);
    throw InputError(context + ": " + peripheral.name + " can't take a clock from \"" + source +
                     "\", expected one of: " + reachable);
}

void expectNew(bool isNew, const std::string& context) {
    if (!isNew)
        throw InputError(context + ": a second one for the same name");
}

} // namespace

void addPin(const ClockTree& tree, const std::string& text, hbs_clocking::SearchTerms& terms) {
    const std::string context = "--pin " + text;
    const Halves halves = splitAtLast(text, '=', context, kPinForm);
    const Halves subject = splitAtLast(halves.left, '.', context, kPinForm);
    if (subject.right == "multiplier") {
        static_cast<void>(findPll(tree, subject.left, context));
        const unsigned multiplier = readMultiplier(tree, halves.right, context);
        expectNew(terms.multipliers.emplace(subject.left, multiplier).second, context);
    } else if (subject.right == "source") {
        expectReach(tree, enabledPeripheral(tree, subject.left, context), halves.right, context);
        expectNew(terms.sources.emplace(subject.left, halves.right).second, context);
    } else {
        throw InputError(context + ": \"" + subject.right + "\" can't be pinned, expected " +
                         kPinForm);
    }
}

void addWeight(const ClockTree& tree, const std::string& text, hbs_clocking::SearchTerms& terms) {
    const std::string context = "--weight " + text;
    const Halves halves = splitAtLast(text, '=', context, "PERIPHERAL=WEIGHT");
    static_cast<void>(enabledPeripheral(tree, halves.left, context));
    const double weight = readNumber(halves.right, context);
    if (weight < 0.001 || weight > 1000.0)
        throw InputError(context + ": expected a weight from 0.001 to 1000");
    expectNew(terms.weights.emplace(halves.left, static_cast<float>(weight)).second, context);
}

} // namespace tq
