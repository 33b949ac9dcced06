// One element of an XML document that is being built.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "tq_export.h"

class HXMLWDocument;
namespace pugi {
struct xml_node_struct;
}

/// An element with attributes and child elements, no text content. Elements come from
/// `HXMLWInterface::createRoot` and `addChild`, belong to their tree and live until the last shared
/// pointer to any element of the tree is gone.
///
///     auto root = HXMLWInterface::createRoot("PLAN");
///     root->addChild("PART")->addProperty("@NAME=left");
///     HXMLWInterface::writeToFile(root, "plan.xml"); // <PLAN><PART NAME="left"/></PLAN>
///
/// Attributes keep the order in which they were added. One added a second time takes the later
/// value and keeps its first place.
///
/// Names and values are UTF-8. Whatever they hold, the file is well-formed: in a value each
/// character that XML 1.0 can't hold and each byte that isn't UTF-8 becomes U+FFFD; in a name each
/// byte but letters, digits, "_", ":", "-" and "." of ASCII becomes "_", and an empty attribute
/// name is "_". Null texts count as empty. `std::bad_alloc` is raised when memory ends.
class TQ_EXPORT HXMLWElement {
public:
    /// Adds an attribute; `name` comes without "@", `value` is taken unchanged.
    virtual void addAttribute(const char* name, const char* value);
    /// Appends a child and gives it; the tree owns it. Null for an empty name.
    virtual HXMLWElement* addChild(const char* name);
    /// The text form "@KEY=value" or "@KEY = value": adds the attribute KEY. The first "=" divides;
    /// when there are blanks around it, one on each side is dropped, and all other blanks belong to
    /// the value. The "@" may be missing. A text without "=" is a key with an empty value.
    virtual void addProperty(const std::string& text);
    /// The element's name, never null. Lives as long as the element.
    [[nodiscard]] virtual const char* getName() const;
    [[nodiscard]] virtual bool hasChild(const char* name) const;
    /// Replaces what `children` holds by the children in order.
    virtual void getChildren(std::vector<std::shared_ptr<HXMLWElement>>& children) const;
    virtual ~HXMLWElement();

    /// Made by the tree alone.
    HXMLWElement(HXMLWDocument& document, pugi::xml_node_struct* node);
    HXMLWElement(const HXMLWElement&) = delete;
    HXMLWElement& operator=(const HXMLWElement&) = delete;

private:
    friend class HXMLWInterface;

    void setAttribute(std::string_view name, const char* value, std::size_t length);

    HXMLWDocument& m_document;
    pugi::xml_node_struct* m_node;
    HXMLWElement* m_firstChild = nullptr;
    HXMLWElement* m_lastChild = nullptr;
    HXMLWElement* m_nextSibling = nullptr;
    /// One bit for each hash of an attribute's name that is there: most names needn't be searched.
    std::uint64_t m_attributeHashes = 0;
};
