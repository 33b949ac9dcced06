#include "addressing/RegisterReferences.h"

#include <algorithm>

namespace hbs_addressing {

namespace {

constexpr std::string_view kOpening = "register_value(";
constexpr std::string_view kBlanks = " \t\n\v\f\r";

} // namespace

RegisterReferences::RegisterReferences(std::string_view expression)
    : m_buffer(expression), m_length(expression.size()), m_end(expression.size()) {
    m_buffer.push_back('\0');
}

bool RegisterReferences::next() {
    const std::string_view searched(m_buffer.data(), m_end);
    const std::size_t start = searched.find(kOpening, m_position);
    if (start == std::string_view::npos)
        return false;
    // The name runs up to the first ")". Without one there is no later match either.
    const std::size_t inside = start + kOpening.size();
    const std::size_t closing = searched.find(')', inside);
    if (closing == std::string_view::npos)
        return false;
    m_match = searched.substr(start, closing + 1 - start);
    const std::size_t name = std::min(searched.find_first_not_of(kBlanks, inside), closing);
    m_name = searched.substr(name, closing - name);
    m_position = closing + 1;
    return true;
}

void RegisterReferences::replace(std::string_view value) {
    const std::size_t place = std::string_view(m_buffer.data(), m_length).find(m_match);
    if (place == std::string_view::npos)
        return;
    const std::size_t behind = place + m_match.size();
    const std::size_t length = m_length - m_match.size() + value.size();
    if (m_buffer.size() <= length)
        m_buffer.resize(length + 1);

    char* const text = m_buffer.data();
    std::char_traits<char>::move(text + place + value.size(), text + behind, m_length - behind);
    std::char_traits<char>::copy(text + place, value.data(), value.size());
    text[length] = '\0';
    m_length = length;
}

} // namespace hbs_addressing
