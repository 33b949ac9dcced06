#include "blockmodel/HABMAddrAperture.h"

#include <cstddef>
#include <cstdint>

HABMAddrAperture::HABMAddrAperture(const HABMAddrValue& start, const HABMAddrValue& size)
    : m_start(start), m_size(size) {}

HABMAddrAperture::HABMAddrAperture(const std::string& text) {
    const std::size_t colon = text.find(':');
    if (text.empty()) {
        m_start = m_size = HABMAddrValue(std::uint64_t{0});
    } else if (colon != std::string::npos) {
        m_start = HABMAddrValue(text.substr(0, colon));
        m_size = HABMAddrValue(text.substr(colon + 1));
    }
}

HABMAddrValue HABMAddrAperture::getHighAddress() const {
    const HABMAddrValue zero(std::uint64_t{0});
    if (m_size == zero)
        return m_start;
    return m_start.plus(m_size.minus(HABMAddrValue(std::uint64_t{1})));
}

bool HABMAddrAperture::operator<(const HABMAddrAperture& other) const {
    return m_start == other.m_start ? m_size < other.m_size : m_start < other.m_start;
}
