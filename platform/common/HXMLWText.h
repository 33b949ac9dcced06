// XML as text, element after element, without a tree.
#pragma once

#include <cstddef>
#include <string_view>
#include <vector>

#include "tq_export.h"

/// Renders elements to the bytes that `HXMLWInterface::writeToFile` gives for the same tree:
///
///     HXMLWText text;
///     text.start("PART");
///     text.attribute("NAME", "left");
///     text.end(); // <PART NAME="left" />
///
/// Values may hold any bytes, as in `HXMLWElement`. Names are XML names already, and each attribute
/// comes once, before the element's children. Names have to outlive the object.
class TQ_EXPORT HXMLWText {
public:
    /// `depth`: levels above the first element, by which it is indented.
    explicit HXMLWText(std::size_t depth = 0) : m_depth(depth) {}

    /// Opens an element; adds an attribute to the element opened last; closes the innermost
    /// element.
    void start(std::string_view element);
    void attribute(std::string_view name, std::string_view value);
    void end();
    /// Adds whole elements that another text rendered for the level that is open here.
    void append(std::string_view elements);

    /// What was rendered so far. Good until the next operation.
    [[nodiscard]] std::string_view bytes() const { return {m_bytes.data(), m_length}; }
    /// Forgets the bytes, not the elements that are open.
    void clearBytes() { m_length = 0; }

private:
    void endTag();
    char* makeRoom(std::size_t bytes);
    void put(std::string_view piece);

    // Not a string's own growing, which costs a call for each of many small pieces.
    std::vector<char> m_bytes; ///< room; those after `m_length` don't count
    std::size_t m_length = 0;
    std::size_t m_depth;
    std::vector<std::string_view> m_open;
    bool m_inTag = false; ///< the element opened last has no child yet
};
