#include "workbench/ipxact/ElementTree.h"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/framework/XMLEntityDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/BinMemInputStream.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>

#include <algorithm>
#include <new>
#include <utility>

#include "diagnostics/SourceText.h"
#include "regfile/XercesRuntime.h"
#include "regfile/XmlGuards.h"
#include "regfile/XmlLimits.h"
#include "workbench/files/InputText.h"
#include "workbench/ipxact/WideText.h"

namespace tq::ipxact {

namespace {

/// Findings in files up to this size show their line.
constexpr std::size_t kMostKept = std::size_t{16} << 20U;

constexpr const char* kSchemaInstance = "http://www.w3.org/2001/XMLSchema-instance";
constexpr const char* kXmlnsPrefix = "xmlns";

bool isBlank(char c) {
    return c == ' ' || c == '\t' || c == '\n' || c == '\r';
}

[[noreturn]] void raiseAt(const ElementTree& tree, const std::string& text, std::size_t line,
                          std::size_t column) {
    throw InputError(makeDiagnostic(Severity::Error, "xml", tree.placeAt(line, column), text));
}

} // namespace

/// Ends a parse that has what it was for.
struct EndOfHead {};

/// Builds a tree from the hooks of the scanner, which are called in document order. They don't call
/// the base class, which would only prepare events that nothing receives.
class TreeBuilder final : public xercesc::SAXParser {
public:
    TreeBuilder(ElementTree& tree, std::size_t bytes, bool isHeadOnly,
                xercesc::MemoryManager& memory)
        : xercesc::SAXParser(nullptr, &memory), m_tree(tree), m_bytes(bytes),
          m_isHeadOnly(isHeadOnly) {
        setDocumentHandler(&m_unused); // without handlers the scanner calls no hook
        setDTDHandler(&m_unused);
    }

    void XMLDecl(const XMLCh* /*version*/, const XMLCh* /*encoding*/, const XMLCh* /*standalone*/,
                 const XMLCh* /*actual*/) override {
        keepEnd();
    }
    void docComment(const XMLCh* /*text*/) override { keepEnd(); }
    void docPI(const XMLCh* /*target*/, const XMLCh* /*data*/) override { keepEnd(); }
    void ignorableWhitespace(const XMLCh* /*text*/, const XMLSize_t /*length*/,
                             const bool /*isCData*/) override {
        keepEnd();
    }
    void docCharacters(const XMLCh* text, const XMLSize_t length, const bool /*isCData*/) override {
        if (m_skipped == 0 && m_isLeaf)
            appendText(m_text, WideView(text, length));
        keepEnd();
    }

    void startElement(const xercesc::XMLElementDecl& element, const unsigned int urlId,
                      const XMLCh* /*prefix*/,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      const XMLSize_t count, const bool isEmpty, const bool isRoot) override {
        if (isRoot)
            openRoot(urlId);
        expectAtMost(ElementTree::kMostLevels, ++m_levels, "levels of elements");
        expectAtMost(ElementTree::kMostAttributes, count, "attributes of one element");
        if (m_skipped != 0 || isForeign(element, urlId))
            m_tree.m_foreign += m_skipped++ == 0 ? 1U : 0U;
        else
            open(element, attributes, count);
        if (isEmpty)
            close();
        keepEnd();
    }
    void endElement(const xercesc::XMLElementDecl& /*element*/, const unsigned int /*urlId*/,
                    const bool /*isRoot*/, const XMLCh* /*prefix*/) override {
        close();
        keepEnd();
    }

    void startIntSubset() override {
        m_isInDocumentType = true;
        m_bytesAhead = m_bytesRead;
    }
    void endIntSubset() override { m_isInDocumentType = false; }
    /// Called for each block that the parser reads. The names of a content model, in which it is
    /// quadratic, have no hook.
    void addBlock(std::size_t bytes) {
        if (m_isInDocumentType)
            expectAtMost(hbs::regfile::limits::kDocumentTypeBytes, m_bytesRead - m_bytesAhead,
                         "bytes in the document type");
        m_bytesRead += bytes;
    }

    void startEntityReference(const xercesc::XMLEntityDecl& entity) override {
        m_expanded += entity.getValueLen();
        expectAtMost(kMostExpanded, m_expanded, "characters out of entities");
    }
    void endEntityReference(const xercesc::XMLEntityDecl& /*entity*/) override { keepEnd(); }
    void startAttList(const xercesc::DTDElementDecl& /*element*/) override {
        refuse("attribute lists are not read");
    }
    void entityDecl(const xercesc::DTDEntityDecl& /*entity*/, const bool isParameter,
                    const bool /*isIgnored*/) override {
        if (isParameter)
            refuse("parameter entities are not read");
        expectAtMost(kMostDeclarations, ++m_declarations, "declarations in the document type");
    }
    void elementDecl(const xercesc::DTDElementDecl& /*element*/,
                     const bool /*isIgnored*/) override {
        expectAtMost(kMostDeclarations, ++m_declarations, "declarations in the document type");
    }

private:
    static constexpr std::size_t kMostExpanded = hbs::regfile::limits::kExpandedCharacters;
    static constexpr std::size_t kMostDeclarations = hbs::regfile::limits::kDeclarations;
    static constexpr std::size_t kMostNames = hbs::regfile::limits::kNames;

    struct Open {
        std::uint32_t node = 0;
        std::uint32_t lastChild = 0;
    };

    void openRoot(unsigned int urlId) {
        m_rootUrl = urlId;
        m_tree.m_namespace = toUtf8(getScanner().getURIText(urlId));
    }
    [[nodiscard]] bool isForeign(const xercesc::XMLElementDecl& element, unsigned int urlId) const {
        static constexpr XMLCh kExtensions[] = u"vendorExtensions";
        return urlId != m_rootUrl || WideView(element.getBaseName()) == kExtensions;
    }

    void open(const xercesc::XMLElementDecl& element,
              const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes, std::size_t count) {
        auto& nodes = m_tree.m_nodes;
        expectAtMost(ElementTree::kMostElements, nodes.size() + 1, "elements");
        const auto index = static_cast<std::uint32_t>(nodes.size());
        ElementTree::Node node;
        node.name = nameOf(element.getBaseName());
        node.line = m_line;
        node.column = m_column;
        if (count != 0)
            addAttributes(node, attributes, count);
        nodes.push_back(node);
        if (!m_open.empty())
            linkTo(m_open.back(), index);
        m_open.push_back({index, 0});
        m_text.clear();
        m_isLeaf = true;
    }
    void linkTo(Open& parent, std::uint32_t index) {
        (parent.lastChild == 0 ? m_tree.m_nodes[parent.node].child
                               : m_tree.m_nodes[parent.lastChild].next) = index;
        parent.lastChild = index;
    }
    void close() {
        --m_levels;
        if (m_skipped != 0) {
            --m_skipped;
            return;
        }
        const auto& node = m_tree.m_nodes[m_open.back().node];
        if (m_isLeaf)
            keepText(m_tree.m_nodes[m_open.back().node]);
        m_open.pop_back();
        m_isLeaf = false;
        if (m_isHeadOnly && m_open.size() == 1 && m_tree.m_names[node.name] == "version")
            throw EndOfHead();
    }
    void keepText(ElementTree::Node& node) {
        std::string_view text = m_text;
        while (!text.empty() && isBlank(text.front()))
            text.remove_prefix(1);
        while (!text.empty() && isBlank(text.back()))
            text.remove_suffix(1);
        node.text = static_cast<std::uint32_t>(m_tree.m_texts.size());
        node.textSize = static_cast<std::uint32_t>(text.size());
        m_tree.m_texts += text;
    }
    void addAttributes(ElementTree::Node& node,
                       const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                       std::size_t count) {
        node.attribute = static_cast<std::uint32_t>(m_tree.m_attributes.size());
        for (std::size_t i = 0; i < count; ++i) {
            const xercesc::XMLAttr& attribute = *attributes.elementAt(i);
            if (isMeta(attribute))
                continue;
            const std::size_t start = m_tree.m_texts.size();
            appendText(m_tree.m_texts, attribute.getValue());
            m_tree.m_attributes.push_back(
                {nameOf(attribute.getName()), static_cast<std::uint32_t>(start),
                 static_cast<std::uint32_t>(m_tree.m_texts.size() - start)});
            ++node.attributeCount;
        }
        // Entities inside values have no hook, but only they can make the texts longer than the
        // file.
        if (m_tree.m_texts.size() > 2 * m_bytes)
            expectAtMost(kMostExpanded, m_tree.m_texts.size() - 2 * m_bytes,
                         "characters out of entities");
    }
    /// Declarations of namespaces and places of schemas.
    [[nodiscard]] bool isMeta(const xercesc::XMLAttr& attribute) const {
        if (toUtf8(attribute.getPrefix()) == kXmlnsPrefix ||
            toUtf8(attribute.getName()) == kXmlnsPrefix)
            return true;
        return attribute.getPrefix() != nullptr && *attribute.getPrefix() != 0 &&
               toUtf8(getScanner().getURIText(attribute.getURIId())) == kSchemaInstance;
    }

    std::uint32_t nameOf(const XMLCh* name) {
        const WideView view(name);
        if (const auto known = m_names.find(view); known != m_names.end())
            return known->second;
        expectAtMost(kMostNames, m_names.size() + 1, "different names");
        const auto index = static_cast<std::uint32_t>(m_tree.m_names.size());
        m_tree.m_names.push_back(toUtf8(name));
        m_names.emplace(view, index);
        return index;
    }

    void keepEnd() {
        const xercesc::Locator& place = *getScanner().getLocator();
        m_line = static_cast<std::uint32_t>(place.getLineNumber());
        m_column = static_cast<std::uint32_t>(place.getColumnNumber());
    }
    void expectAtMost(std::size_t limit, std::size_t count, const char* things) const {
        if (count > limit)
            refuse("more than " + std::to_string(limit) + " " + things);
    }
    [[noreturn]] void refuse(const std::string& text) const {
        const xercesc::Locator& place = *getScanner().getLocator();
        raiseAt(m_tree, text, place.getLineNumber(), place.getColumnNumber());
    }

    struct NameHash {
        using is_transparent = void;
        std::size_t operator()(WideView name) const { return std::hash<WideView>()(name); }
    };

    xercesc::HandlerBase m_unused;
    ElementTree& m_tree;
    std::size_t m_bytes;
    bool m_isHeadOnly;
    std::unordered_map<std::basic_string<XMLCh>, std::uint32_t, NameHash, std::equal_to<>> m_names;
    std::vector<Open> m_open;
    std::string m_text;
    bool m_isLeaf = false;
    std::size_t m_skipped = 0; ///< levels of foreign elements that are open
    std::size_t m_levels = 0;
    std::size_t m_expanded = 0;
    std::size_t m_declarations = 0;
    std::size_t m_bytesRead = 0;
    std::size_t m_bytesAhead = 0; ///< of the document type
    bool m_isInDocumentType = false;
    unsigned int m_rootUrl = 0;
    std::uint32_t m_line = 1; ///< where the piece of the document in front ends
    std::uint32_t m_column = 1;
};

namespace {

/// The content in blocks, each told to the builder before the parser gets it.
class ContentStream final : public xercesc::BinMemInputStream {
public:
    ContentStream(const std::string& content, TreeBuilder& builder, xercesc::MemoryManager& memory)
        : xercesc::BinMemInputStream(reinterpret_cast<const XMLByte*>(content.data()),
                                     content.size(), BufOpt_Reference, &memory),
          m_builder(builder) {}

    XMLSize_t readBytes(XMLByte* block, XMLSize_t bytes) override {
        const XMLSize_t count = xercesc::BinMemInputStream::readBytes(block, bytes);
        m_builder.addBlock(count);
        return count;
    }

private:
    TreeBuilder& m_builder;
};

class ContentSource final : public xercesc::InputSource {
public:
    ContentSource(const std::string& content, TreeBuilder& builder, xercesc::MemoryManager& memory)
        : xercesc::InputSource("", &memory), m_content(content), m_builder(builder) {}

    [[nodiscard]] xercesc::BinInputStream* makeStream() const override {
        return new (getMemoryManager()) ContentStream(m_content, m_builder, *getMemoryManager());
    }

private:
    const std::string& m_content;
    TreeBuilder& m_builder;
};

/// Faults, and references to anything outside the file, end the parse with their place.
class Faults final : public xercesc::ErrorHandler, public xercesc::EntityResolver {
public:
    explicit Faults(const ElementTree& tree) : m_tree(tree) {}

    void warning(const xercesc::SAXParseException& /*fault*/) override {}
    void error(const xercesc::SAXParseException& fault) override { raise(fault); }
    void fatalError(const xercesc::SAXParseException& fault) override { raise(fault); }
    void resetErrors() override {}
    xercesc::InputSource* resolveEntity(const XMLCh* /*publicId*/, const XMLCh* systemId) override {
        throw fileError(m_tree.path(),
                        "the external entity \"" + toUtf8(systemId) + "\" is not read");
    }

private:
    [[noreturn]] void raise(const xercesc::SAXParseException& fault) const {
        raiseAt(m_tree, toUtf8(fault.getMessage()), fault.getLineNumber(), fault.getColumnNumber());
    }

    const ElementTree& m_tree;
};

void parseInto(ElementTree& tree, const std::string& content, bool isHeadOnly) {
    hbs::regfile::ParserMemory memory;
    hbs::regfile::XmlGuards guards;
    Faults faults(tree);
    TreeBuilder builder(tree, content.size(), isHeadOnly, memory);
    guards.applyTo(builder);
    builder.setDoNamespaces(true);
    builder.setErrorHandler(&faults);
    builder.setEntityResolver(&faults);
    const ContentSource source(content, builder, memory);
    try {
        builder.parse(source);
    } catch (const EndOfHead&) {
        return;
    }
}

/// Turns a column in UTF-16 code units into one in bytes.
std::size_t byteColumn(std::string_view line, std::size_t column) {
    std::size_t units = 1, at = 0;
    while (at < line.size() && units < column) {
        const auto first = static_cast<unsigned char>(line[at]);
        const std::size_t bytes = first < 0xC0U ? 1 : first < 0xE0U ? 2 : first < 0xF0U ? 3 : 4;
        units += bytes == 4 ? 2 : 1;
        at += bytes;
    }
    return std::min(at, line.size()) + 1;
}

} // namespace

std::string_view Element::name() const {
    return m_tree == nullptr ? std::string_view()
                             : std::string_view(m_tree->m_names[m_tree->m_nodes[m_index].name]);
}

std::string_view Element::text() const {
    if (m_tree == nullptr)
        return {};
    const auto& node = m_tree->m_nodes[m_index];
    return m_tree->view(node.text, node.textSize);
}

std::string_view Element::attribute(std::string_view name) const {
    if (m_tree == nullptr)
        return {};
    const auto& node = m_tree->m_nodes[m_index];
    for (std::uint32_t i = 0; i < node.attributeCount; ++i) {
        const auto& attribute = m_tree->m_attributes[node.attribute + i];
        if (m_tree->m_names[attribute.name] == name)
            return m_tree->view(attribute.text, attribute.textSize);
    }
    return {};
}

bool Element::hasAttributes() const {
    return m_tree != nullptr && m_tree->m_nodes[m_index].attributeCount != 0;
}

Element Element::child(std::string_view name) const {
    for (const Element child : children())
        if (child.name() == name)
            return child;
    return {};
}

Element Element::firstChild() const {
    if (m_tree == nullptr || m_tree->m_nodes[m_index].child == 0)
        return {};
    return {*m_tree, m_tree->m_nodes[m_index].child};
}

Element Element::next() const {
    const std::uint32_t next = m_tree->m_nodes[m_index].next;
    return next == 0 ? Element() : Element(*m_tree, next);
}

Place Element::place() const {
    if (m_tree == nullptr)
        return {};
    const auto& node = m_tree->m_nodes[m_index];
    return m_tree->placeAt(node.line, node.column);
}

std::pair<std::uint32_t, std::uint32_t> Element::position() const {
    if (m_tree == nullptr)
        return {0, 0};
    const auto& node = m_tree->m_nodes[m_index];
    return {node.line, node.column};
}

std::shared_ptr<const ElementTree> ElementTree::read(const std::string& path) {
    return parse(path, readInput(path));
}

std::shared_ptr<const ElementTree> ElementTree::readHead(const std::string& path) {
    return parsePart(path, readInput(path), Part::Head);
}

std::shared_ptr<const ElementTree> ElementTree::parse(const std::string& path,
                                                      std::string content) {
    return parsePart(path, std::move(content), Part::Whole);
}

std::shared_ptr<const ElementTree> ElementTree::parsePart(const std::string& path,
                                                          std::string content, Part part) {
    const bool isHeadOnly = part == Part::Head;
    hbs::regfile::startXerces();
    const auto tree = std::make_shared<ElementTree>();
    tree->m_path = path;
    if (content.size() > kMostBytes)
        throw fileError(path, "it has more than 2 GiB");
    // An element takes eleven bytes at least where it has a text; untouched pages cost nothing.
    tree->m_nodes.reserve(std::min(kMostElements, content.size() / 8 + 1));
    tree->m_texts.reserve(content.size() / 4);
    try {
        if (content.size() <= kMostKept) {
            tree->m_content = std::move(content);
            tree->m_source = std::make_unique<SourceText>(path, tree->m_content);
            parseInto(*tree, tree->m_content, isHeadOnly);
        } else {
            parseInto(*tree, content, isHeadOnly);
        }
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    } catch (const xercesc::XMLException& error) {
        throw fileError(path, toUtf8(error.getMessage()));
    }
    return tree;
}

ElementTree::ElementTree() = default;
ElementTree::~ElementTree() = default;

Place ElementTree::placeAt(std::size_t line, std::size_t column) const {
    if (m_source == nullptr)
        return placeInLine(m_path, line, column, {});
    const std::string_view text = m_source->line(line);
    return placeInLine(m_path, line, byteColumn(text, column), text);
}

} // namespace tq::ipxact
