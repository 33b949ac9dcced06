#include "HXMLWElement.h"

#include <algorithm>
#include <cstring>
#include <new>

#include "HXMLWDocument.h"

namespace {

/// Distinct enough among the attributes of one element, and cheap.
std::uint64_t hashBit(std::string_view name) {
    const auto first = static_cast<unsigned char>(name.front());
    const auto last = static_cast<unsigned char>(name.back());
    return std::uint64_t{1} << ((name.size() * 7 + std::size_t{first} * 5 + std::size_t{last} * 3) %
                                64);
}

const char* orEmpty(const char* text) {
    return text == nullptr ? "" : text;
}

} // namespace

HXMLWElement::HXMLWElement(HXMLWDocument& document, pugi::xml_node_struct* node)
    : m_document(document), m_node(node) {}

HXMLWElement::~HXMLWElement() = default;

void HXMLWElement::addAttribute(const char* name, const char* value) {
    value = orEmpty(value);
    setAttribute(orEmpty(name), value, std::strlen(value));
}

HXMLWElement* HXMLWElement::addChild(const char* name) {
    HXMLWElement* child = m_document.appendTo(pugi::xml_node(m_node), orEmpty(name));
    if (child == nullptr)
        return nullptr;
    (m_lastChild == nullptr ? m_firstChild : m_lastChild->m_nextSibling) = child;
    return m_lastChild = child;
}

void HXMLWElement::addProperty(const std::string& text) {
    const std::size_t equals = std::min(text.find('='), text.size());
    std::size_t keyEnd = equals;
    std::size_t valueStart = std::min(equals + 1, text.size());
    if (keyEnd > 0 && text[keyEnd - 1] == ' ' && valueStart < text.size() &&
        text[valueStart] == ' ') {
        --keyEnd;
        ++valueStart;
    }
    std::string_view key = std::string_view(text).substr(0, keyEnd);
    if (!key.empty() && key.front() == '@')
        key.remove_prefix(1);
    setAttribute(key, text.c_str() + valueStart, text.size() - valueStart);
}

const char* HXMLWElement::getName() const {
    return pugi::xml_node(m_node).name();
}

bool HXMLWElement::hasChild(const char* name) const {
    const std::string_view asked = orEmpty(name);
    return !asked.empty() &&
           !pugi::xml_node(m_node).child(m_document.fitName(asked).c_str()).empty();
}

void HXMLWElement::getChildren(std::vector<std::shared_ptr<HXMLWElement>>& children) const {
    children.clear();
    for (HXMLWElement* child = m_firstChild; child != nullptr; child = child->m_nextSibling)
        children.push_back(m_document.shared(child));
}

void HXMLWElement::setAttribute(std::string_view name, const char* value, std::size_t length) {
    const std::string& fitted = m_document.fitName(name);
    pugi::xml_node node(m_node);
    const std::uint64_t bit = hashBit(fitted);
    pugi::xml_attribute attribute;
    if ((m_attributeHashes & bit) != 0)
        attribute = node.attribute(fitted.c_str());
    if (!attribute)
        attribute = node.append_attribute(fitted.c_str());
    m_attributeHashes |= bit;
    if (!attribute.set_value(m_document.fitValue(value, length)))
        throw std::bad_alloc();
}
