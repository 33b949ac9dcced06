#include "regfile/RegFileDocument.h"

#include <xercesc/dom/DOM.hpp>
#include <xercesc/sax/InputSource.hpp>
#include <xercesc/util/BinMemInputStream.hpp>

#include <algorithm>
#include <iostream>
#include <optional>
#include <string_view>
#include <utility>

#include "diagnostics/SourceText.h"
#include "input/InputFile.h"
#include "regfile/PlacedDomParser.h"
#include "regfile/XercesRuntime.h"
#include "regfile/XmlGuards.h"
#include "regfile/XmlLimits.h"
#include "xp.h"

namespace hbs::regfile {

namespace {

/// The content up to its end, or of a protected file up to its first NUL byte.
base::FileContent readContent(const std::string& path) {
    const bool isProtected = isl::iostreams::xp::is_encrypted(path.c_str());
    base::FileContent content = input::readFile(path);
    if (isProtected)
        content.text.resize(std::min(content.text.find('\0'), content.text.size()));
    return content;
}

/// Hands the same bytes to every parser.
class TextSource final : public xercesc::InputSource {
public:
    TextSource(const std::string& path, const base::FileContent& content,
               xercesc::MemoryManager& memory)
        : xercesc::InputSource(path.c_str(), &memory), m_content(content) {}

    /// Null for a missing file, which the parser reports with its own text.
    xercesc::BinInputStream* makeStream() const override {
        if (m_content.outcome == base::ReadOutcome::Missing)
            return nullptr;
        return new (getMemoryManager()) xercesc::BinMemInputStream(
            reinterpret_cast<const XMLByte*>(m_content.text.data()), m_content.text.size(),
            xercesc::BinMemInputStream::BufOpt_Reference, getMemoryManager());
    }

private:
    const base::FileContent& m_content;
};

/// Names and paths in a message must not start a new line or control a terminal.
std::string onOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20U || c == '\x7F'; }, ' ');
    return text;
}

} // namespace

struct RegFileDocument::Parser {
    ParserMemory memory;
    XmlGuards guards;
    base::FileContent content;
    std::optional<tq::SourceText> source; ///< over the content, where places are asked for
    std::unique_ptr<xercesc::XercesDOMParser> xml;
    PlacedDomParser* placed = nullptr; ///< `xml`, where places are kept

    explicit Parser(bool withPlaces) {
        if (withPlaces)
            xml.reset(placed = new PlacedDomParser(memory));
        else
            xml = std::make_unique<xercesc::XercesDOMParser>(nullptr, &memory);
        guards.applyTo(*xml);
    }

    /// Content with NUL bytes isn't one of eight-bit characters; its lines can't be shown.
    void openSource(const std::string& path) {
        const bool isShown = content.text.find('\0') == std::string::npos;
        source.emplace(path, isShown ? std::string_view(content.text) : std::string_view());
    }
};

/// Why a file has no document.
struct RegFileDocument::Failure {
    std::string message; ///< for the standard error stream
    std::string text;    ///< for a sink, which gets the place apart
    XMLFileLoc line = 0; ///< from 1; 0 where unknown
    XMLFileLoc column = 0;
};

RegFileDocument::RegFileDocument(const std::string& path, bool withPlaces,
                                 const tq::DiagnosticSink& sink)
    : m_path(path) {
    startXerces();
    m_parser = std::make_unique<Parser>(withPlaces);
    if (const auto failure = parse()) {
        report(*failure, sink);
        return;
    }
    if (withPlaces)
        m_parser->openSource(path);
    else
        m_parser->content = {};
    if (const xercesc::DOMDocument* const document = m_parser->xml->getDocument())
        m_root = document->getDocumentElement();
}

RegFileDocument::~RegFileDocument() = default;

std::optional<RegFileDocument::Failure> RegFileDocument::parse() {
    m_parser->content = readContent(m_path);
    const base::FileContent& content = m_parser->content;
    if (!content.isWhole() && content.outcome != base::ReadOutcome::Missing)
        return Failure{m_path + ": " + content.reason, "can't be read: " + content.reason};
    try {
        const TextSource source(m_path, content, m_parser->memory);
        checkLimits(source, content.text.size());
        m_parser->xml->parse(source);
        return std::nullopt;
    } catch (const Fault& fault) {
        if (!content.isWhole())
            return Failure{fault.what(), "can't be read: " + content.reason};
        return Failure{fault.what(), fault.text(), fault.line(), fault.column()};
    } catch (const xercesc::XMLException& error) {
        return Failure{toText(error.getMessage()), toText(error.getMessage())};
    } catch (const xercesc::DOMException& error) {
        return Failure{toText(error.getMessage()), toText(error.getMessage())};
    }
}

void RegFileDocument::report(const Failure& failure, const tq::DiagnosticSink& sink) {
    if (!sink) {
        std::cerr << "Error parsing file: " << onOneLine(failure.message) << std::endl;
        return;
    }
    m_parser->openSource(m_path);
    sink(tq::makeDiagnostic(tq::Severity::Error, "unreadable-file",
                            failure.line == 0
                                ? tq::placeOfFile(m_path)
                                : m_parser->source->placeAt(failure.line, failure.column),
                            failure.text));
}

tq::Place RegFileDocument::placeOf(const xercesc::DOMElement& element) const {
    if (m_parser->placed == nullptr)
        return tq::placeOfFile(m_path);
    const Place place = m_parser->placed->placeOf(&element);
    return m_parser->source->placeAt(place.line, place.column);
}

} // namespace hbs::regfile
