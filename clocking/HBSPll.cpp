#include "clocking/HBSPll.h"

namespace hbs_clocking {

HBSPll::HBSPll(const std::string& name, const std::string& powerDomainName,
               std::int32_t powerDomainIndex)
    : m_powerDomainIndex(powerDomainIndex), m_name(name), m_powerDomainName(powerDomainName) {}

void HBSPll::setConfig(std::uint32_t vcoMul, std::uint32_t clkoutDiv, std::uint32_t crossDomainDiv,
                       double vcoFreqMhz) {
    m_vcoMul = vcoMul;
    m_clkoutDiv = clkoutDiv;
    m_crossDomainDiv = crossDomainDiv;
    m_vcoFreq = vcoFreqMhz;
    m_crossDomainFreq = crossDomainDiv == 0 ? 0.0 : vcoFreqMhz / crossDomainDiv;
}

} // namespace hbs_clocking
