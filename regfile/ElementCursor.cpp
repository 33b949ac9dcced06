#include "regfile/ElementCursor.h"

#include <algorithm>
#include <utility>

#include "regfile/LocalText.h"

namespace hbs::regfile {

namespace {

using xercesc::DOMNode;

bool equals(const XMLCh* tag, std::string_view name) {
    for (const char letter : name)
        if (*tag++ != static_cast<XMLCh>(letter))
            return false;
    return *tag == 0;
}

/// The node after `node` in document order, not looking into it; null at the end of `top`.
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
    const DOMNode::NodeType type = node->getNodeType();
    return type == DOMNode::TEXT_NODE || type == DOMNode::CDATA_SECTION_NODE;
}

/// Takes a text letter by letter, trims it and folds white space.
class FoldedText {
public:
    void add(char letter) {
        if (isSpace(letter)) {
            m_pending = !m_text.empty();
            return;
        }
        if (m_pending)
            m_text += ' ';
        m_pending = false;
        m_text += letter;
    }
    std::string take() { return std::move(m_text); }

private:
    static bool isSpace(char letter) { return letter == ' ' || (letter >= '\t' && letter <= '\r'); }

    std::string m_text;
    bool m_pending = false;
};

/// Calls `use` with each piece of an element's text. Xerces gathers text by recursion, which ends
/// in a stack overflow on deeply nested elements.
template <class Use>
void eachPiece(const DOMNode* top, Use use) {
    const DOMNode* node = nextWithin(top, top);
    while (node != nullptr) {
        if (isCharacterData(node)) {
            use(node->getNodeValue());
            node = nextBeside(node, top);
        } else {
            node = nextWithin(node, top);
        }
    }
}

/// ASCII is the same in every code page, so it needs no conversion. False for any other text.
bool foldAscii(const DOMNode* top, FoldedText& folded) {
    XMLCh seen = 0;
    eachPiece(top, [&](const XMLCh* piece) {
        for (; *piece != 0; ++piece) {
            seen |= *piece;
            folded.add(static_cast<char>(*piece));
        }
    });
    return seen < 0x80;
}

std::string foldConverted(const DOMNode* top) {
    std::basic_string<XMLCh> whole;
    eachPiece(top, [&](const XMLCh* piece) { whole += piece; });
    const LocalText narrow(xercesc::XMLString::transcode(whole.c_str()));
    FoldedText folded;
    for (const char* letter = narrow == nullptr ? "" : narrow.get(); *letter != '\0'; ++letter)
        folded.add(*letter);
    return folded.take();
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

const xercesc::DOMElement* ElementCursor::element() const {
    return static_cast<const xercesc::DOMElement*>(m_node);
}

std::string ElementCursor::text() const {
    FoldedText folded;
    return foldAscii(m_node, folded) ? folded.take() : foldConverted(m_node);
}

} // namespace hbs::regfile
