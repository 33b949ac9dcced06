// What the elements of one XML document share. Not for callers.
#pragma once

#include <pugixml.hpp>

#include <array>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

#include "HXMLWElement.h"

/// Owns the nodes and the elements that refer to them; an element is never moved. Shared pointers
/// to elements share the ownership of the document.
class HXMLWDocument : public std::enable_shared_from_this<HXMLWDocument> {
public:
    HXMLWElement* appendTo(pugi::xml_node parent, const char* name);

    [[nodiscard]] std::shared_ptr<HXMLWElement> shared(HXMLWElement* element) {
        return {shared_from_this(), element};
    }

    [[nodiscard]] pugi::xml_node root() { return m_document; }

    /// The name with what doesn't belong into one replaced; lives until the next call. The few
    /// names of a document repeat, so those met last are kept.
    const std::string& fitName(std::string_view name);
    /// Appends the value, with what XML can't hold replaced.
    static void appendFitted(std::string& fitted, std::string_view value);
    /// The value fitted likewise; lives until the next call. `value` ends in a
    /// zero after its `length` bytes.
    const char* fitValue(const char* value, std::size_t length);

private:
    pugi::xml_document m_document;
    std::deque<HXMLWElement> m_elements;
    struct Name {
        std::string given;
        std::string fitted = "_";
    };
    std::array<Name, 64> m_names;
    std::string m_value;
};
