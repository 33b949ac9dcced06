#include "regfile/RegFileDocument.h"

#include <boost/iostreams/filtering_stream.hpp>
#include <xercesc/dom/DOM.hpp>
#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>
#include <xercesc/sax/EntityResolver.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/BinFileInputStream.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/PlatformUtils.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/validators/DTD/DTDElementDecl.hpp>
#include <xercesc/validators/DTD/DTDEntityDecl.hpp>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <new>
#include <optional>
#include <stdexcept>
#include <vector>

#include "HUTFile.h"
#include "regfile/LocalText.h"
#include "xp.h"
#include "xp_autodetect.h"

namespace hbs::regfile {

namespace {

/// Far above what a description needs, far below what harms: nested entities stop within 10 ms.
constexpr XMLSize_t kMostEntityExpansions = 1000;
constexpr XMLSize_t kMostEntityCharacters = 1U << 16U;
constexpr std::size_t kMostUnpackedBytes = std::size_t{1} << 30;

/// Ends a parse that can't go on.
class Fault : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

std::string toText(const XMLCh* wide) {
    const LocalText narrow(xercesc::XMLString::transcode(wide));
    return narrow == nullptr ? std::string() : narrow.get();
}

/// Xerces tells most faults to its handler and throws nothing, so without this one a broken file
/// would pass as good. Warnings are no faults.
class FaultHandler final : public xercesc::ErrorHandler {
public:
    void warning(const xercesc::SAXParseException&) override {}
    void error(const xercesc::SAXParseException& fault) override { raise(fault); }
    void fatalError(const xercesc::SAXParseException& fault) override { raise(fault); }
    void resetErrors() override {}

private:
    [[noreturn]] static void raise(const xercesc::SAXParseException& fault) {
        throw Fault(toText(fault.getMessage()) + " (line " + std::to_string(fault.getLineNumber()) +
                    ", column " + std::to_string(fault.getColumnNumber()) + ")");
    }
};

/// No file or address that a description names is ever opened.
class NoEntities final : public xercesc::EntityResolver {
public:
    xercesc::InputSource* resolveEntity(const XMLCh*, const XMLCh* systemId) override {
        throw Fault("the external entity '" + toText(systemId) + "' is not read");
    }
};

/// A parser that refuses what the limit on expansions doesn't count: entities that a document type
/// expands in itself (attribute defaults, parameter entities), and long texts given many times.
class GuardedParser final : public xercesc::XercesDOMParser {
public:
    void startAttList(const xercesc::DTDElementDecl& /*element*/) override {
        throw Fault("attribute lists are not read");
    }
    void entityDecl(const xercesc::DTDEntityDecl& entity, const bool isParameter,
                    const bool isIgnored) override {
        if (isParameter)
            throw Fault("parameter entities are not read");
        if (entity.getValueLen() > kMostEntityCharacters)
            throw Fault("the entity '" + toText(entity.getName()) + "' is too long");
        xercesc::XercesDOMParser::entityDecl(entity, isParameter, isIgnored);
    }
};

/// A file named by its bytes: Xerces' own source takes addresses, too, and loses names that the
/// local code page can't hold.
class FileSource final : public xercesc::InputSource {
public:
    explicit FileSource(const std::string& path)
        : xercesc::InputSource(path.c_str()), m_path(path) {}

    xercesc::BinInputStream* makeStream() const override {
        auto stream = std::make_unique<xercesc::BinFileInputStream>(m_path.c_str());
        return stream->getIsOpen() ? stream.release() : nullptr;
    }

private:
    std::string m_path;
};

void initializeXerces() {
    try {
        xercesc::XMLPlatformUtils::Initialize();
    } catch (const xercesc::XMLException& error) {
        std::cerr << "XML toolkit initialization error: " << toText(error.getMessage())
                  << std::endl;
    }
}

/// The plain content of a protected file; empty where it can't be had whole.
std::string readProtected(const std::string& path) {
    boost::iostreams::filtering_istream stream;
    isl::iostreams::xp_autodetect()(path, stream);
    std::string content;
    std::vector<char> chunk(1 << 16);
    while (stream.good()) {
        stream.read(chunk.data(), static_cast<std::streamsize>(chunk.size()));
        content.append(chunk.data(), static_cast<std::size_t>(stream.gcount()));
        if (content.size() > kMostUnpackedBytes)
            throw Fault(path + " unpacks to more than 1 GiB");
    }
    if (stream.bad())
        content.clear();
    return content;
}

void parseFile(xercesc::XercesDOMParser& parser, const std::string& path) {
    const HUTFile file(path);
    // A path is cut at a NUL byte by the system, which would then open another file.
    if ((file.exists() && !file.isFile()) || path.find('\0') != std::string::npos)
        throw Fault(path + " is not a regular file");
    if (!isl::iostreams::xp::is_encrypted(path.c_str())) {
        parser.parse(FileSource(path));
        return;
    }
    const std::string content = readProtected(path);
    parser.parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(content.c_str()),
                                            std::strlen(content.c_str()), "mXML"));
}

/// Names and paths in a fault must not make a line of their own, or steer a terminal.
std::string onOneLine(std::string text) {
    std::replace_if(
        text.begin(), text.end(),
        [](char c) { return static_cast<unsigned char>(c) < 0x20U || c == '\x7F'; }, ' ');
    return text;
}

/// Gives what is wrong with the file, or nothing.
std::optional<std::string> faultOf(xercesc::XercesDOMParser& parser, const std::string& path) {
    try {
        parseFile(parser, path);
        return std::nullopt;
    } catch (const Fault& fault) {
        return fault.what();
    } catch (const xercesc::XMLException& error) {
        return toText(error.getMessage());
    } catch (const xercesc::DOMException& error) {
        return toText(error.getMessage());
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    }
}

} // namespace

/// Xerces borrows its helpers, so they outlive the parser itself.
struct RegFileDocument::Parser {
    FaultHandler faults;
    NoEntities entities;
    xercesc::SecurityManager limits;
    GuardedParser xml;

    Parser() {
        xml.setValidationScheme(xercesc::XercesDOMParser::Val_Never);
        xml.setDoNamespaces(false);
        xml.setDoSchema(false);
        xml.setLoadExternalDTD(false);
        xml.setDisableDefaultEntityResolution(true);
        limits.setEntityExpansionLimit(kMostEntityExpansions);
        xml.setErrorHandler(&faults);
        xml.setEntityResolver(&entities);
        xml.setSecurityManager(&limits);
    }
};

RegFileDocument::RegFileDocument(const std::string& path) {
    initializeXerces();
    m_parser = std::make_unique<Parser>();
    if (const auto fault = faultOf(m_parser->xml, path)) {
        std::cerr << "Error parsing file: " << onOneLine(*fault) << std::endl;
        return;
    }
    if (const xercesc::DOMDocument* const document = m_parser->xml.getDocument())
        m_root = document->getDocumentElement();
}

RegFileDocument::~RegFileDocument() = default;

} // namespace hbs::regfile
