#include "regfile/HBSRegister.h"

namespace hbs {

const std::string& HBSRegister::getName() const {
    return m_name;
}

const std::string& HBSRegister::getDesc() const {
    return m_desc;
}

const std::string& HBSRegister::getOffset() const {
    return m_offset;
}

} // namespace hbs
