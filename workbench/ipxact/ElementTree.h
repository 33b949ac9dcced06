// An XML file as a compact tree of elements: what the readers of component descriptions walk.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "diagnostics/Diagnostic.h"
#include "diagnostics/SourceText.h"

namespace tq::ipxact {

class ElementTree;

/// One element of a tree, or none. A small handle: copy it. Valid as long as its tree.
class Element {
public:
    Element() = default;
    Element(const ElementTree& tree, std::uint32_t index) : m_tree(&tree), m_index(index) {}

    explicit operator bool() const { return m_tree != nullptr; }
    [[nodiscard]] bool operator==(const Element&) const = default;

    /// Without its prefix; empty for none.
    [[nodiscard]] std::string_view name() const;
    /// Without white space around it; empty where there are child elements.
    [[nodiscard]] std::string_view text() const;
    /// The value of an attribute, by its name without a prefix; empty where it is missing.
    [[nodiscard]] std::string_view attribute(std::string_view name) const;
    [[nodiscard]] bool hasAttributes() const;
    /// The first child of that name, or none.
    [[nodiscard]] Element child(std::string_view name) const;
    [[nodiscard]] std::string_view textOf(std::string_view childName) const {
        return child(childName).text();
    }
    [[nodiscard]] Place place() const;
    /// Line and column of `ElementTree::placeAt`.
    [[nodiscard]] std::pair<std::uint32_t, std::uint32_t> position() const;
    [[nodiscard]] std::uint32_t index() const { return m_index; }
    [[nodiscard]] const ElementTree* tree() const { return m_tree; }

    class Children;
    [[nodiscard]] Children children() const;

private:
    [[nodiscard]] Element firstChild() const;
    [[nodiscard]] Element next() const;

    const ElementTree* m_tree = nullptr;
    std::uint32_t m_index = 0;
};

/// For a range-based loop.
class Element::Children {
public:
    class Iterator {
    public:
        explicit Iterator(Element element) : m_element(element) {}
        Element operator*() const { return m_element; }
        Iterator& operator++() {
            m_element = m_element.next();
            return *this;
        }
        bool operator!=(const Iterator& other) const { return !(m_element == other.m_element); }

    private:
        Element m_element;
    };

    explicit Children(Element parent) : m_parent(parent) {}
    [[nodiscard]] Iterator begin() const { return Iterator(m_parent.firstChild()); }
    [[nodiscard]] Iterator end() const { return Iterator(Element()); }

private:
    Element m_parent;
};

/// Keeps the elements of the root's namespace with their texts, attributes and places. Elements of
/// other namespaces and vendor extensions are left out and counted.
///
/// Files may come from outside: nothing is fetched, entities expand within bounds, and a file has
/// at most `kMostElements` elements, `kMostLevels` levels and `kMostAttributes` attributes of one
/// element. A tree takes about 40 bytes an element besides its texts.
class ElementTree {
public:
    static constexpr std::size_t kMostElements = 4'000'000;
    static constexpr std::size_t kMostLevels = 256;
    static constexpr std::size_t kMostAttributes = 256;
    static constexpr std::size_t kMostBytes = std::size_t{1} << 31U;

    ElementTree();
    ~ElementTree();
    ElementTree(const ElementTree&) = delete;
    ElementTree& operator=(const ElementTree&) = delete;

    /// Reads a file, stored plain or protected. Raises `InputError` with line and column where it
    /// can't be read, isn't well-formed or passes a bound.
    [[nodiscard]] static std::shared_ptr<const ElementTree> read(const std::string& path);
    /// The same up to the root's version, which identifies a file: vendor, library, name, version.
    [[nodiscard]] static std::shared_ptr<const ElementTree> readHead(const std::string& path);
    /// Reads a text as `read` does.
    [[nodiscard]] static std::shared_ptr<const ElementTree> parse(const std::string& path,
                                                                  std::string content);

    [[nodiscard]] const std::string& path() const { return m_path; }
    /// The namespace of the root element; empty for none.
    [[nodiscard]] const std::string& rootNamespace() const { return m_namespace; }
    [[nodiscard]] Element root() const { return {*this, 0}; }
    [[nodiscard]] std::size_t size() const { return m_nodes.size(); }
    /// A place of the file: a line and a column from 1, the column in UTF-16 code units.
    [[nodiscard]] Place placeAt(std::size_t line, std::size_t column) const;
    /// Elements that were left out with their content: vendor extensions and other namespaces.
    [[nodiscard]] std::size_t foreignElements() const { return m_foreign; }

private:
    friend class Element;
    friend class TreeBuilder;

    enum class Part { Whole, Head };
    static std::shared_ptr<const ElementTree> parsePart(const std::string& path,
                                                        std::string content, Part part);

    struct Node {
        std::uint32_t name = 0;
        std::uint32_t child = 0; ///< 0 for none, as the root is never a child
        std::uint32_t next = 0;
        std::uint32_t text = 0; ///< offset into the texts
        std::uint32_t textSize = 0;
        std::uint32_t attribute = 0; ///< index of the first
        std::uint32_t attributeCount = 0;
        std::uint32_t line = 0;
        std::uint32_t column = 0;
    };
    struct Attribute {
        std::uint32_t name = 0;
        std::uint32_t text = 0;
        std::uint32_t textSize = 0;
    };

    [[nodiscard]] std::string_view view(std::uint32_t offset, std::uint32_t size) const {
        return std::string_view(m_texts).substr(offset, size);
    }
    std::string m_path;
    std::string m_namespace;
    std::string m_content;                ///< empty for large files, whose findings show no line
    std::unique_ptr<SourceText> m_source; ///< over the content, where it is kept
    std::vector<std::string> m_names;
    std::vector<Node> m_nodes;
    std::vector<Attribute> m_attributes;
    std::string m_texts;
    std::size_t m_foreign = 0;
};

inline Element::Children Element::children() const {
    return Children(*this);
}

} // namespace tq::ipxact
