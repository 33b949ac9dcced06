#include "regfile/HBSRegistersMap.h"

namespace hbs {

HBSRegister* HBSRegistersMap::getRegister(const std::string& name) {
    const auto entry = m_registers.find(name);
    return entry == m_registers.end() ? nullptr : entry->second;
}

} // namespace hbs
