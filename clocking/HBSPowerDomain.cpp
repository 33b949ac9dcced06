#include "clocking/HBSPowerDomain.h"

#include <iostream>

namespace hbs_clocking {

HBSPowerDomain::HBSPowerDomain(const std::string& name, std::int32_t index)
    : m_index(index), m_name(name) {}

HBSPowerDomain::~HBSPowerDomain() = default;

HBSPll* HBSPowerDomain::addPll(const std::string& pllName, bool isNoc) {
    m_plls.push_back(std::make_unique<HBSPll>(pllName, m_name, m_index));
    HBSPll* pll = m_plls.back().get();
    if (isNoc)
        pll->setNOCpll(true);
    return pll;
}

HBSPll* HBSPowerDomain::getPll(const std::string& name) const {
    for (const auto& pll : m_plls)
        if (pll->getName() == name)
            return pll.get();
    return nullptr;
}

float HBSPowerDomain::getMaxPllFreq() const {
    float largest = 1.0F;
    for (const auto& pll : m_plls)
        if (pll->getMaxPllFreq() > largest)
            largest = pll->getMaxPllFreq();
    return largest;
}

HBSPll* HBSPowerDomain::getPllAt(unsigned index) const {
    if (index < m_plls.size())
        return m_plls[index].get();
    std::cout << "Index out of range\n";
    return nullptr;
}

std::vector<HBSPll*> HBSPowerDomain::getPllList() const {
    std::vector<HBSPll*> plls;
    plls.reserve(m_plls.size());
    for (const auto& pll : m_plls)
        plls.push_back(pll.get());
    return plls;
}

void HBSPowerDomain::resetPlls() {
    for (const auto& pll : m_plls)
        pll->setConfig(0, 0, 0, 0.0);
}

} // namespace hbs_clocking
