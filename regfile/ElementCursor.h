// Steps over the elements of one level of a document.
#pragma once

#include <xercesc/dom/DOMElement.hpp>

#include <span>
#include <string>
#include <string_view>

namespace hbs::regfile {

/// Starts before a node, to which the first step leads: the document's root, or the first
/// child of another cursor's node.
class ElementCursor {
public:
    explicit ElementCursor(const xercesc::DOMElement* root) : m_node(root) {}
    [[nodiscard]] ElementCursor children() const;

    /// Steps to the next element and gives the position, from 1, of its name in `names`; 0 when
    /// no element is left or `names` doesn't have it, which ends the level either way.
    [[nodiscard]] int nextField(std::span<const std::string_view> names);

    /// The element stepped to last, or null after the last one.
    [[nodiscard]] const xercesc::DOMElement* element() const;

    /// The element's text in the local code page, trimmed, each inner run of white space folded to
    /// one blank. Comments and processing instructions don't count.
    [[nodiscard]] std::string text() const;

private:
    explicit ElementCursor(const xercesc::DOMNode* node) : m_node(node) {}

    const xercesc::DOMNode* m_node;
    bool m_undelivered = true;
};

} // namespace hbs::regfile
