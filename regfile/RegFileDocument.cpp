#include "regfile/RegFileDocument.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinMemInputStream.hpp>

#include <algorithm>
#include <iostream>
#include <optional>
#include <utility>

#include "input/InputFile.h"
#include "regfile/PlacedDomParser.h"
#include "regfile/XercesRuntime.h"
#include "regfile/XmlGuards.h"
#include "regfile/XmlLimits.h"
#include "xp.h"

namespace hbs::regfile {

namespace {

/// The content up to its end, or of a protected file up to its first NUL byte; nothing where there
/// is no file.
std::optional<std::string> readContent(const std::string& path) {
    const bool isProtected = isl::iostreams::xp::is_encrypted(path.c_str());
    base::FileContent content = input::readFile(path);
    if (content.outcome == base::ReadOutcome::Missing)
        return std::nullopt;
    if (!content.isWhole())
        throw Fault(path + ": " + content.reason);
    if (isProtected)
        content.text.resize(std::min(content.text.find('\0'), content.text.size()));
    return std::move(content.text);
}

/// A file that is read once, so that every parser gets the same bytes.
class FileSource final : public xercesc::InputSource {
public:
    FileSource(const std::string& path, xercesc::MemoryManager& memory)
        : xercesc::InputSource(path.c_str(), &memory), m_content(readContent(path)) {}

    /// Null for a file that couldn't be opened, which the parser reports.
    xercesc::BinInputStream* makeStream() const override {
        if (!m_content)
            return nullptr;
        return new (getMemoryManager()) xercesc::BinMemInputStream(
            reinterpret_cast<const XMLByte*>(m_content->data()), m_content->size(),
            xercesc::BinMemInputStream::BufOpt_Reference, getMemoryManager());
    }
    [[nodiscard]] std::size_t size() const { return m_content ? m_content->size() : 0; }

private:
    std::optional<std::string> m_content;
};

void parseFile(xercesc::XercesDOMParser& parser, const std::string& path,
               xercesc::MemoryManager& memory) {
    const FileSource source(path, memory);
    checkLimits(source, source.size());
    parser.parse(source);
}

/// Names and paths in a fault must not make a line of their own, or steer a terminal.
std::string onOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20U || c == '\x7F'; }, ' ');
    return text;
}

/// Gives what is wrong with the file, or nothing.
std::optional<std::string> faultOf(xercesc::XercesDOMParser& parser, const std::string& path,
                                   xercesc::MemoryManager& memory) {
    try {
        parseFile(parser, path, memory);
        return std::nullopt;
    } catch (const Fault& fault) {
        return fault.what();
    } catch (const xercesc::XMLException& error) {
        return toText(error.getMessage());
    } catch (const xercesc::DOMException& error) {
        return toText(error.getMessage());
    }
}

} // namespace

struct RegFileDocument::Parser {
    ParserMemory memory;
    XmlGuards guards;
    std::unique_ptr<xercesc::XercesDOMParser> xml;
    PlacedDomParser* placed = nullptr; ///< `xml`, where places are kept

    explicit Parser(bool withPlaces) {
        if (withPlaces)
            xml.reset(placed = new PlacedDomParser(memory));
        else
            xml = std::make_unique<xercesc::XercesDOMParser>(nullptr, &memory);
        guards.applyTo(*xml);
    }
};

RegFileDocument::RegFileDocument(const std::string& path, bool withPlaces) {
    startXerces();
    m_parser = std::make_unique<Parser>(withPlaces);
    if (const auto fault = faultOf(*m_parser->xml, path, m_parser->memory)) {
        std::cerr << "Error parsing file: " << onOneLine(*fault) << std::endl;
        return;
    }
    if (const xercesc::DOMDocument* const document = m_parser->xml->getDocument())
        m_root = document->getDocumentElement();
}

RegFileDocument::~RegFileDocument() = default;

Place RegFileDocument::placeOf(const xercesc::DOMElement& element) const {
    return m_parser->placed == nullptr ? Place() : m_parser->placed->placeOf(&element);
}

} // namespace hbs::regfile
