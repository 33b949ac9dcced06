#include "SearchTrees.h"

#include <array>
#include <cmath>
#include <sstream>
#include <stdexcept>

#include "clocking/trees46.h"

namespace search_trees {

using reference46::Peripheral;
using reference46::Tree;
using trees::Dice;
using trees46::Kind;

namespace {

constexpr std::array<const char*, 4> kDomainNames = {"LOW", "NOC_DOMAIN", "MID", "HIGH"};
constexpr std::array kCrossLimits = {250.0F, 500.0F, 800.0F, 1000.0F, 1600.0F};
constexpr std::array kRound = {25.0F,  33.333F, 50.0F,  66.667F, 100.0F, 125.0F,
                               150.0F, 200.0F,  250.0F, 300.0F,  400.0F, 500.0F};

/// What some multiplier gives exactly.
float nocRequestOf(Dice& dice, float refMhz) {
    const auto lowest = static_cast<unsigned>(std::ceil(2160.0F / refMhz));
    const auto mul = static_cast<float>(lowest + dice.below(lowest));
    return refMhz * mul / dice.pick(std::array{1.0F, 2.0F, 4.0F});
}

Tree generateMixed(unsigned seed, bool sixPlls, unsigned peripherals) {
    Tree tree = trees46::generate(seed, sixPlls, peripherals, Kind::Rings);
    Dice dice(seed * 7 + 3);
    tree.refMhz = dice.between(10.0F, 90.0F);
    tree.peripherals[0].requestMhz = nocRequestOf(dice, tree.refMhz);
    tree.maxCrossMhz = dice.pick(kCrossLimits);
    for (reference46::Domain& domain : tree.domains)
        for (float& limit : domain.pllLimitsMhz)
            limit = dice.between(400.0F, 3000.0F);
    return tree;
}

Tree generateAny(unsigned seed, bool sixPlls, unsigned peripherals) {
    constexpr std::array families = {Family::Plain, Family::Mixed, Family::NearTie};
    constexpr std::array kinds = {Kind::Odd, Kind::Rings, Kind::Ordinary};
    const unsigned inner = seed / 6 + 100000 * (seed % 6);
    if (seed % 6 < 3)
        return generate(families[seed % 6], inner, sixPlls, peripherals);
    return trees46::generate(inner, sixPlls, peripherals, kinds[seed % 6 - 3]);
}

bool isBarred(const Peripheral& peripheral) {
    return peripheral.name == "PSM_REF_CTRL" || peripheral.name == "ASU_REF_CTRL";
}

Peripheral peripheralOf(const std::string& word) {
    Peripheral peripheral;
    std::size_t length = 0;
    peripheral.domain = std::stoi(word, &length);
    const std::string request = word.substr(length + 1);
    peripheral.requestMhz = std::stof(request, &length);
    for (const char mark : request.substr(length)) {
        peripheral.noc = peripheral.noc || mark == 'n';
        peripheral.enabled = peripheral.enabled && mark != 'd';
        if (mark == 'b')
            peripheral.name = "PSM_REF_CTRL";
    }
    return peripheral;
}

void changeRequest(Tree& tree, Peripheral& peripheral, Dice& dice) {
    const auto count = static_cast<unsigned>(tree.peripherals.size());
    switch (dice.below(6)) {
    case 0:
        peripheral.requestMhz = dice.between(2000.0F, 4500.0F);
        break;
    case 1:
        peripheral.requestMhz = tree.peripherals[1 + dice.below(count - 1)].requestMhz;
        break;
    case 2:
        peripheral.requestMhz = dice.pick(kRound);
        break;
    case 3:
        peripheral.requestMhz *= dice.between(0.97F, 1.03F);
        break;
    case 4:
        peripheral.requestMhz *= dice.pick(std::array{0.5F, 2.0F, 1.5F, 0.75F});
        break;
    default:
        peripheral.requestMhz = std::exp(dice.between(std::log(5.0F), std::log(1200.0F)));
    }
}

} // namespace

Tree generate(Family family, unsigned seed, bool sixPlls, unsigned peripherals) {
    switch (family) {
    case Family::Plain:
        return trees46::generate(seed, sixPlls, peripherals, Kind::Plain);
    case Family::Mixed:
        return generateMixed(seed, sixPlls, peripherals);
    case Family::NearTie:
        return trees46::generate(seed, sixPlls, peripherals - 1, Kind::NearTies);
    default:
        return generateAny(seed, sixPlls, peripherals);
    }
}

void mutate(Tree& tree, Dice& dice) {
    const auto count = static_cast<unsigned>(tree.peripherals.size());
    for (unsigned change = 1 + dice.below(3); change != 0; --change) {
        Peripheral& peripheral = tree.peripherals[1 + dice.below(count - 1)];
        reference46::Domain& domain = tree.domains[dice.below(4)];
        switch (dice.below(9)) {
        case 0:
            tree.refMhz = dice.between(10.0F, 90.0F);
            break;
        case 1:
            tree.maxCrossMhz = dice.between(200.0F, 1600.0F);
            break;
        case 2:
            tree.peripherals[0].requestMhz = nocRequestOf(dice, tree.refMhz);
            break;
        case 3:
            peripheral.domain = static_cast<int>(dice.pick(std::array{0.0F, 2.0F, 3.0F}));
            break;
        case 4:
            domain.pllLimitsMhz[dice.below(static_cast<unsigned>(domain.pllLimitsMhz.size()))] =
                dice.between(400.0F, 3000.0F);
            break;
        default:
            changeRequest(tree, peripheral, dice);
        }
    }
}

std::string toText(const Tree& tree) {
    std::ostringstream text;
    text.precision(9);
    text << tree.refMhz << ' ' << tree.maxCrossMhz;
    for (const reference46::Domain& domain : tree.domains) {
        text << " |";
        for (const float limit : domain.pllLimitsMhz)
            text << ' ' << limit;
    }
    text << " |";
    for (const Peripheral& peripheral : tree.peripherals)
        text << ' ' << peripheral.domain << ':' << peripheral.requestMhz
             << (peripheral.noc ? "n" : "") << (isBarred(peripheral) ? "b" : "")
             << (peripheral.enabled ? "" : "d");
    return text.str();
}

Tree fromText(const std::string& line) {
    std::istringstream text(line);
    Tree tree;
    text >> tree.refMhz >> tree.maxCrossMhz;
    std::size_t parts = 0;
    for (std::string word; text >> word;) {
        if (word == "|" && parts++ < kDomainNames.size())
            tree.domains.push_back({kDomainNames[parts - 1], {}});
        else if (word != "|" && parts <= kDomainNames.size() && parts != 0)
            tree.domains.back().pllLimitsMhz.push_back(std::stof(word));
        else if (word != "|")
            tree.peripherals.push_back(peripheralOf(word));
    }
    if (parts != kDomainNames.size() + 1 || tree.peripherals.empty())
        throw std::invalid_argument("not a clock tree: " + line);
    return tree;
}

} // namespace search_trees
