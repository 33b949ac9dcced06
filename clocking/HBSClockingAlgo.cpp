#include "clocking/HBSClockingAlgo.h"

#include <algorithm>
#include <iostream>

#include "clocking/ClockingArithmetic.h"

namespace hbs_clocking {

HBSClockingAlgo::HBSClockingAlgo(const std::string& name) : m_name(name) {}

HBSClockingAlgo::~HBSClockingAlgo() {
    // The domains are destroyed before the peripherals, the reverse of the members' own order.
    m_powerDomains.clear();
    m_peripherals.clear();
}

HBSPowerDomain* HBSClockingAlgo::addPowerDomain(const std::string& name) {
    const auto index = static_cast<std::int32_t>(m_powerDomains.size());
    m_powerDomains.push_back(std::make_unique<HBSPowerDomain>(name, index));
    return m_powerDomains.back().get();
}

HBSPll* HBSClockingAlgo::createPllConfig(const std::string& pllName,
                                         const std::string& domainName) {
    HBSPowerDomain* domain = getPowerDomain(domainName);
    if (domain == nullptr)
        domain = addPowerDomain(domainName);
    return domain->addPll(pllName, false);
}

HBSPeripheral* HBSClockingAlgo::addPeripheral(const std::string& name,
                                              const std::string& domainName, float freqMhz,
                                              bool enabled) {
    m_peripherals.push_back(std::make_unique<HBSPeripheral>(
        name, domainName, getPowerDomainIndex(domainName), freqMhz, enabled, this));
    return m_peripherals.back().get();
}

void HBSClockingAlgo::addPeripherals(const std::vector<HBSPeripheral*>& /*peripherals*/) {}

HBSPeripheral* HBSClockingAlgo::getPeripheral(const std::string& name) const {
    for (const auto& peripheral : m_peripherals)
        if (peripheral->getName() == name)
            return peripheral.get();
    return nullptr;
}

HBSPowerDomain* HBSClockingAlgo::getPowerDomain(const std::string& name) const {
    for (const auto& domain : m_powerDomains)
        if (domain->getName() == name)
            return domain.get();
    return nullptr;
}

HBSPll* HBSClockingAlgo::getPll(const std::string& name) const {
    for (const auto& domain : m_powerDomains)
        if (HBSPll* pll = domain->getPll(name))
            return pll;
    return nullptr;
}

std::vector<HBSPeripheral*> HBSClockingAlgo::getAllPeripherals() const {
    std::vector<HBSPeripheral*> all;
    all.reserve(m_peripherals.size());
    for (const auto& peripheral : m_peripherals)
        all.push_back(peripheral.get());
    return all;
}

std::vector<HBSPeripheral*> HBSClockingAlgo::getEnabledPeripherals() const {
    std::vector<HBSPeripheral*> enabled;
    for (const auto& peripheral : m_peripherals)
        if (peripheral->isEnabled())
            enabled.push_back(peripheral.get());
    return enabled;
}

std::vector<HBSPeripheral*> HBSClockingAlgo::getNocPeripherals() const {
    std::vector<HBSPeripheral*> noc;
    for (const auto& peripheral : m_peripherals)
        if (peripheral->isEnabled() && peripheral->isNOCPeripheral())
            noc.push_back(peripheral.get());
    return noc;
}

std::vector<HBSPll*> HBSClockingAlgo::getAllPlls() const {
    std::vector<HBSPll*> all;
    for (const auto& domain : m_powerDomains)
        for (HBSPll* pll : domain->getPllList())
            all.push_back(pll);
    return all;
}

HBSPowerDomain* HBSClockingAlgo::getPowerDomainAt(unsigned index) const {
    return index < m_powerDomains.size() ? m_powerDomains[index].get() : nullptr;
}

std::int32_t HBSClockingAlgo::getPowerDomainIndex(const std::string& name) const {
    const HBSPowerDomain* domain = getPowerDomain(name);
    return domain == nullptr ? -1 : domain->getIndex();
}

std::string HBSClockingAlgo::getPllNameAt(unsigned domainIndex, unsigned pllIndex) const {
    const HBSPowerDomain* domain = getPowerDomainAt(domainIndex);
    const HBSPll* pll = domain == nullptr ? nullptr : domain->getPllAt(pllIndex);
    return pll == nullptr ? std::string() : pll->getName();
}

const char* HBSClockingAlgo::faultOfPllCounts(const char* severalText) const {
    const auto anyDomain = [this](auto&& test) {
        return std::any_of(m_powerDomains.begin(), m_powerDomains.end(),
                           [&test](const auto& domain) { return test(domain->getPllCount()); });
    };
    if (anyDomain([](std::size_t plls) { return plls == 0; }))
        return "No PLL added to power domain\n";
    return anyDomain([](std::size_t plls) { return plls > 1; }) ? severalText : nullptr;
}

bool HBSClockingAlgo::validateNocAndReference() const {
    constexpr std::int32_t nocIndex = 1;
    if (getPowerDomainIndex("NOC_DOMAIN") != nocIndex)
        std::cout << "NOC_DOMAIN is not added in the desired order.\n";
    if (m_refClkFreq != 0.0F)
        return true;
    std::cout << "Input freq. is not set\n";
    return false;
}

void HBSClockingAlgo::resetResults() {
    m_totalRelativeError = kWorstTotalError;
    m_toleranceFactor = kToleranceLadder.front();
    m_resultFound = false;
    m_settings.clear();
    for (const auto& domain : m_powerDomains) {
        domain->setErrorLimit(1.0F);
        domain->resetPlls();
    }
    for (const auto& peripheral : m_peripherals)
        peripheral->setPllResult("", 0);
}

} // namespace hbs_clocking
