#include "workbench/ipxact/SchemaCheck.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/EntityResolver.hpp>
#include <xercesc/sax/ErrorHandler.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/OutOfMemoryException.hpp>
#include <xercesc/util/SecurityManager.hpp>
#include <xercesc/util/TransService.hpp>

#include <deque>
#include <filesystem>
#include <memory>
#include <new>
#include <string_view>
#include <system_error>

#include <pugixml.hpp>

#include "regfile/XercesRuntime.h"
#include "workbench/files/InputText.h"
#include "workbench/ipxact/ElementTree.h"
#include "workbench/ipxact/WideText.h"

namespace tq::ipxact {

namespace {

namespace fs = std::filesystem;

/// Schemas of one edition are a few dozen; a whole disk isn't searched.
constexpr std::size_t kMostSchemas = 1000;
constexpr int kMostFolders = 3; ///< levels below the folder given

/// What a schema file is for.
enum class Fit { None, DeclaresRoot, Index };

[[nodiscard]] Fit fitOf(const fs::path& file, const ElementTree& tree) {
    pugi::xml_document document;
    const std::string text = readInput(file.string());
    if (!document.load_buffer(text.data(), text.size()))
        return Fit::None;
    const pugi::xml_node schema = document.document_element();
    if (schema.attribute("targetNamespace").value() != tree.rootNamespace())
        return Fit::None;
    if (file.filename() == "index.xsd")
        return Fit::Index;
    for (const pugi::xml_node& child : schema.children()) {
        const std::string_view name = child.name();
        if (name.substr(name.find(':') + 1) == "element" &&
            child.attribute("name").value() == tree.root().name())
            return Fit::DeclaresRoot;
    }
    return Fit::None;
}

[[nodiscard]] fs::path findSchema(const std::string& folder, const ElementTree& tree) {
    std::error_code error;
    fs::recursive_directory_iterator entry(folder, fs::directory_options::skip_permission_denied,
                                           error);
    if (error)
        throw fileError(folder, "can't be read: " + error.message());
    fs::path found;
    std::size_t seen = 0;
    for (; !error && entry != fs::recursive_directory_iterator(); entry.increment(error)) {
        if (entry.depth() >= kMostFolders)
            entry.disable_recursion_pending();
        std::error_code ignored;
        if (entry->path().extension() != ".xsd" || !entry->is_regular_file(ignored))
            continue;
        if (++seen > kMostSchemas)
            break;
        const Fit fit = fitOf(entry->path(), tree);
        if (fit == Fit::Index)
            return entry->path();
        if (fit == Fit::DeclaresRoot)
            found = entry->path();
    }
    if (found.empty())
        throw InputError("there is no schema below \"" + folder + "\" for " + tree.path() +
                         ", whose root is of the namespace \"" + tree.rootNamespace() + "\"");
    return found;
}

/// Faults of the document are findings, faults of the schema end the check. Files are looked for
/// beside the schema, by their names alone.
class Check final : public xercesc::ErrorHandler, public xercesc::EntityResolver {
public:
    Check(const ElementTree& tree, fs::path schema, const DiagnosticSink& sink)
        : m_tree(tree), m_schema(std::move(schema)), m_sink(sink) {}

    [[nodiscard]] std::size_t run() {
        hbs::regfile::ParserMemory memory;
        xercesc::SecurityManager expansions;
        xercesc::SAXParser parser(nullptr, &memory);
        parser.setSecurityManager(&expansions);
        parser.setValidationScheme(xercesc::SAXParser::Val_Always);
        parser.setDoNamespaces(true);
        parser.setDoSchema(true);
        parser.setHandleMultipleImports(true);
        parser.setLoadExternalDTD(false);
        parser.setDisableDefaultEntityResolution(true);
        parser.setErrorHandler(this);
        parser.setEntityResolver(this);
        const std::unique_ptr<xercesc::InputSource> schema = sourceOf(m_schema);
        parser.loadGrammar(*schema, xercesc::Grammar::SchemaGrammarType, true);
        m_isInDocument = true;
        parser.useCachedGrammarInParse(true);
        // Whatever the document names as its schema, it is held against this one.
        parser.setLoadSchema(false);
        const std::unique_ptr<xercesc::InputSource> document = sourceOf(m_tree.path());
        parser.parse(*document);
        return m_count;
    }

    void warning(const xercesc::SAXParseException& /*fault*/) override {}
    void error(const xercesc::SAXParseException& fault) override { take(fault); }
    void fatalError(const xercesc::SAXParseException& fault) override { take(fault); }
    void resetErrors() override {}
    xercesc::InputSource* resolveEntity(const XMLCh* /*publicId*/, const XMLCh* systemId) override {
        const fs::path named(toUtf8(systemId));
        const fs::path file = m_schema.parent_path() / named.filename();
        std::error_code error;
        if (m_isInDocument || !fs::is_regular_file(file, error))
            throw fileError(m_isInDocument ? m_tree.path() : m_schema.string(),
                            "\"" + named.string() + "\" is not read");
        return sourceOf(file).release();
    }

private:
    [[nodiscard]] std::unique_ptr<xercesc::InputSource> sourceOf(const fs::path& file) {
        const std::string& text = m_texts.emplace_back(readInput(file.string()));
        const std::string name = file.string();
        const xercesc::TranscodeFromStr id(reinterpret_cast<const XMLByte*>(name.data()),
                                           name.size(), "UTF-8");
        return std::make_unique<xercesc::MemBufInputSource>(
            reinterpret_cast<const XMLByte*>(text.data()), text.size(), id.str());
    }

    void take(const xercesc::SAXParseException& fault) {
        const std::string text = toUtf8(fault.getMessage());
        if (!m_isInDocument)
            throw fileError(toUtf8(fault.getSystemId()), "line " +
                                                             std::to_string(fault.getLineNumber()) +
                                                             " of the schema: " + text);
        ++m_count;
        if (m_sink)
            m_sink(makeDiagnostic(Severity::Error, "schema",
                                  m_tree.placeAt(fault.getLineNumber(), fault.getColumnNumber()),
                                  text));
    }

    const ElementTree& m_tree;
    fs::path m_schema;
    const DiagnosticSink& m_sink;
    std::deque<std::string> m_texts; ///< of the files, while the parser reads them
    bool m_isInDocument = false;
    std::size_t m_count = 0;
};

} // namespace

std::size_t checkSchema(const std::string& path, const std::string& folder,
                        const DiagnosticSink& sink) {
    // The tree has the bounds that keep a hostile file from the parser.
    const std::shared_ptr<const ElementTree> tree = ElementTree::read(path);
    try {
        return Check(*tree, findSchema(folder, *tree), sink).run();
    } catch (const xercesc::OutOfMemoryException&) {
        throw std::bad_alloc();
    } catch (const xercesc::XMLException& error) {
        throw fileError(path, toUtf8(error.getMessage()));
    }
}

} // namespace tq::ipxact
