#include "regfile/ElementCursor.h"

#include <algorithm>

#include "regfile/LocalText.h"

namespace hbs::regfile {

namespace {

using xercesc::DOMNode;
using WideText = std::basic_string<XMLCh>;

bool equals(const XMLCh* tag, std::string_view name) {
    for (const char letter : name)
        if (*tag++ != static_cast<XMLCh>(letter))
            return false;
    return *tag == 0;
}

/// The node behind `node` in document order, not looking into it; null at the end of `top`.
const DOMNode* nextBeside(const DOMNode* node, const DOMNode* top) {
    while (node != top) {
        if (const DOMNode* const sibling = node->getNextSibling())
            return sibling;
        node = node->getParentNode();
    }
    return nullptr;
}

const DOMNode* nextWithin(const DOMNode* node, const DOMNode* top) {
    const DOMNode* const child = node->getFirstChild();
    return child != nullptr ? child : nextBeside(node, top);
}

bool isCharacterData(const DOMNode* node) {
    return node->getNodeType() == DOMNode::TEXT_NODE ||
           node->getNodeType() == DOMNode::CDATA_SECTION_NODE;
}

/// Xerces gathers text by recursion, which ends in a stack overflow on deeply nested elements.
WideText gatherText(const DOMNode* top) {
    WideText text;
    for (const DOMNode* node = nextWithin(top, top); node != nullptr; node = nextWithin(node, top))
        if (isCharacterData(node))
            text += node->getNodeValue();
    return text;
}

/// ASCII is the same in every code page; only other texts pay for the conversion.
std::string toLocalCodePage(const WideText& text) {
    if (std::all_of(text.begin(), text.end(), [](XMLCh unit) { return unit < 0x80; })) {
        std::string narrow(text.size(), '\0');
        std::transform(text.begin(), text.end(), narrow.begin(),
                       [](XMLCh unit) { return static_cast<char>(unit); });
        return narrow;
    }
    return LocalText(xercesc::XMLString::transcode(text.c_str())).get();
}

bool isSpace(char letter) {
    return std::string_view(" \t\n\v\f\r").find(letter) != std::string_view::npos;
}

void foldSpace(std::string& text) {
    std::size_t length = 0;
    bool pending = false;
    for (const char letter : text) {
        if (isSpace(letter)) {
            pending = length > 0;
            continue;
        }
        if (pending)
            text[length++] = ' ';
        pending = false;
        text[length++] = letter;
    }
    text.resize(length);
}

} // namespace

ElementCursor ElementCursor::children() const {
    return ElementCursor(m_node->getFirstChild());
}

int ElementCursor::nextField(std::span<const std::string_view> names) {
    if (!m_undelivered && m_node != nullptr)
        m_node = m_node->getNextSibling();
    m_undelivered = false;
    while (m_node != nullptr && m_node->getNodeType() != DOMNode::ELEMENT_NODE)
        m_node = m_node->getNextSibling();
    if (m_node == nullptr)
        return 0;
    const XMLCh* const tag = m_node->getNodeName();
    const auto found = std::find_if(names.begin(), names.end(),
                                    [tag](std::string_view name) { return equals(tag, name); });
    return found == names.end() ? 0 : static_cast<int>(found - names.begin()) + 1;
}

std::string ElementCursor::text() const {
    std::string text = toLocalCodePage(gatherText(m_node));
    foldSpace(text);
    return text;
}

} // namespace hbs::regfile
