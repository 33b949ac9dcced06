#include "regfile/XmlLimits.h"

#include <xercesc/framework/XMLAttr.hpp>
#include <xercesc/framework/XMLElementDecl.hpp>
#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/HandlerBase.hpp>
#include <xercesc/sax/Locator.hpp>
#include <xercesc/util/BinInputStream.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include <memory>
#include <string>
#include <string_view>
#include <unordered_set>
#include <utility>

#include "regfile/XercesRuntime.h"
#include "regfile/XmlGuards.h"

namespace hbs::regfile {

namespace {

using NameView = std::basic_string_view<XMLCh>;

struct NameHash {
    using is_transparent = void;
    std::size_t operator()(NameView name) const { return std::hash<NameView>()(name); }
};

/// Counts what the DOM pays for. The operations are Xerces' own hooks, called in document order;
/// they don't call the base class, which would only prepare events that nothing receives.
class Counter final : public xercesc::SAXParser {
public:
    Counter(std::size_t bytes, xercesc::MemoryManager& memory)
        : xercesc::SAXParser(nullptr, &memory), m_bytes(bytes) {
        // Without handlers the scanner calls no hook.
        setDocumentHandler(&m_unused);
        setDTDHandler(&m_unused);
    }

    void startElement(const xercesc::XMLElementDecl& element, const unsigned int /*urlId*/,
                      const XMLCh* /*prefix*/,
                      const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      const XMLSize_t count, const bool isEmpty, const bool /*isRoot*/) override {
        expectAtMost(limits::kElements, ++m_elements, "elements");
        expectAtMost(limits::kLevels, ++m_levels, "levels of elements");
        expectAtMost(limits::kAttributes, count, "attributes of one element");
        addName(element.getFullName());
        for (XMLSize_t i = 0; i < count; ++i)
            addAttribute(*attributes.elementAt(i));
        if (isEmpty)
            --m_levels;
    }

    void endElement(const xercesc::XMLElementDecl& /*element*/, const unsigned int /*urlId*/,
                    const bool /*isRoot*/, const XMLCh* /*prefix*/) override {
        --m_levels;
    }

    void startEntityReference(const xercesc::XMLEntityDecl& entity) override {
        m_expanded += entity.getValueLen();
        expectAtMost(limits::kExpandedCharacters, m_expanded, "characters out of entities");
    }

    void startAttList(const xercesc::DTDElementDecl& /*element*/) override {
        refuse("attribute lists are not read");
    }

    void entityDecl(const xercesc::DTDEntityDecl& entity, const bool isParameter,
                    const bool /*isIgnored*/) override {
        if (isParameter)
            refuse("parameter entities are not read");
        if (entity.getValueLen() > limits::kEntityCharacters)
            refuse("the entity '" + toText(entity.getName()) + "' is too long");
        addDeclaration();
    }

    void startIntSubset() override {
        m_isInDocumentType = true;
        m_bytesAhead = m_bytesRead;
    }

    void endIntSubset() override { m_isInDocumentType = false; }

    /// Called for each block that the parser reads. The names of a content model have no hook.
    void addBlock(std::size_t bytes) {
        if (m_isInDocumentType)
            expectAtMost(limits::kDocumentTypeBytes, m_bytesRead - m_bytesAhead,
                         "bytes in the document type");
        m_bytesRead += bytes;
    }

    void elementDecl(const xercesc::DTDElementDecl& /*element*/,
                     const bool /*isIgnored*/) override {
        addDeclaration();
    }

    void notationDecl(const xercesc::XMLNotationDecl& /*notation*/,
                      const bool /*isIgnored*/) override {
        addDeclaration();
    }

private:
    void addDeclaration() {
        expectAtMost(limits::kDeclarations, ++m_declarations, "declarations in the document type");
    }

    void addName(NameView name) {
        if (m_names.find(name) != m_names.end())
            return;
        expectAtMost(limits::kNames, m_names.size() + 1, "different names");
        m_names.emplace(name);
    }

    /// Entities inside values have no hook, but only they can make the values longer than the file.
    void addAttribute(const xercesc::XMLAttr& attribute) {
        addName(attribute.getQName());
        m_attributeCharacters += NameView(attribute.getValue()).size();
        if (m_attributeCharacters > m_bytes)
            expectAtMost(limits::kExpandedCharacters, m_attributeCharacters - m_bytes,
                         "characters out of entities");
    }

    void expectAtMost(std::size_t limit, std::size_t count, const char* things) const {
        if (count > limit)
            refuse("more than " + std::to_string(limit) + " " + things);
    }

    [[noreturn]] void refuse(const std::string& text) const {
        const xercesc::Locator& place = *getScanner().getLocator();
        throw Fault(text, place.getLineNumber(), place.getColumnNumber());
    }

    xercesc::HandlerBase m_unused;
    std::size_t m_bytes;
    std::size_t m_bytesRead = 0;
    std::size_t m_bytesAhead = 0; ///< of the document type
    bool m_isInDocumentType = false;
    std::size_t m_levels = 0;
    std::size_t m_elements = 0;
    std::size_t m_declarations = 0;
    std::size_t m_expanded = 0;
    std::size_t m_attributeCharacters = 0;
    std::unordered_set<std::basic_string<XMLCh>, NameHash, std::equal_to<>> m_names;
};

/// Tells the counter of each block before the parser gets it.
class CountedStream final : public xercesc::BinInputStream {
public:
    CountedStream(std::unique_ptr<xercesc::BinInputStream> stream, Counter& counter)
        : m_stream(std::move(stream)), m_counter(counter) {}

    [[nodiscard]] XMLFilePos curPos() const override { return m_stream->curPos(); }
    [[nodiscard]] const XMLCh* getContentType() const override {
        return m_stream->getContentType();
    }
    XMLSize_t readBytes(XMLByte* block, XMLSize_t bytes) override {
        const XMLSize_t count = m_stream->readBytes(block, bytes);
        m_counter.addBlock(count);
        return count;
    }

private:
    std::unique_ptr<xercesc::BinInputStream> m_stream;
    Counter& m_counter;
};

class CountedSource final : public xercesc::InputSource {
public:
    CountedSource(const xercesc::InputSource& source, Counter& counter,
                  xercesc::MemoryManager& memory)
        : xercesc::InputSource(source.getSystemId(), &memory), m_source(source),
          m_counter(counter) {}

    [[nodiscard]] xercesc::BinInputStream* makeStream() const override {
        std::unique_ptr<xercesc::BinInputStream> stream(m_source.makeStream());
        if (stream == nullptr)
            return nullptr;
        return new (getMemoryManager()) CountedStream(std::move(stream), m_counter);
    }

private:
    const xercesc::InputSource& m_source;
    Counter& m_counter;
};

} // namespace

void checkLimits(const xercesc::InputSource& source, std::size_t bytes) {
    ParserMemory memory;
    XmlGuards guards;
    Counter counter(bytes, memory);
    guards.applyTo(counter);
    counter.parse(CountedSource(source, counter, memory));
}

} // namespace hbs::regfile
