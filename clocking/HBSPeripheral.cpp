#include "clocking/HBSPeripheral.h"

#include <algorithm>

#include "clocking/HBSClockingAlgo.h"
#include "clocking/HBSPll.h"

namespace hbs_clocking {

HBSPeripheral::HBSPeripheral(const std::string& name, const std::string& powerDomainName,
                             std::int32_t powerDomainIndex, float requestedFreqMhz, bool enabled,
                             HBSClockingAlgo* algo)
    : m_enabled(enabled), m_powerDomainIndex(powerDomainIndex), m_requestedFreq(requestedFreqMhz),
      m_name(name), m_powerDomainName(powerDomainName), m_algo(algo) {}

bool HBSPeripheral::setPowerDomain(const std::string& name) {
    m_powerDomainName = name;
    return true;
}

void HBSPeripheral::setMaxAllowedPeripheralError(float percent) {
    m_maxAllowedError = std::min(percent, 100.0F);
}

void HBSPeripheral::setPllResult(const std::string& pllName, std::uint32_t divider) {
    m_pllName = pllName;
    m_clkoutDiv = divider;
    const HBSPll* pll = m_algo->getPll(pllName);
    // A divider of 0 clears the result; the frequency stays, even where a PLL has an empty name.
    if (pll == nullptr || divider == 0)
        return;
    // Domain 0 takes the NOC clock of domain 1 directly, every other crossing is divided.
    const bool direct = pll->getPowerDomainIndex() == m_powerDomainIndex ||
                        (m_powerDomainIndex == 0 && pll->getPowerDomainIndex() == 1);
    m_actualFreq = (direct ? pll->getVcoFreq() : pll->getCrossDomainFreq()) / divider;
}

} // namespace hbs_clocking
