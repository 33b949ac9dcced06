// A register description file as a document in memory.
#pragma once

#include <xercesc/dom/DOMElement.hpp>

#include <memory>
#include <optional>
#include <string>

#include "diagnostics/Diagnostic.h"

namespace hbs::regfile {

/// Owns the XML parser, and with it the document.
class RegFileDocument {
public:
    /// Opens and parses the file, which may be protected. A fault goes to the sink, or, without
    /// one, as one line to the standard error stream. Keeping the places of all elements takes time
    /// and memory.
    explicit RegFileDocument(const std::string& path, bool withPlaces = false,
                             const tq::DiagnosticSink& sink = {});
    ~RegFileDocument();

    RegFileDocument(const RegFileDocument&) = delete;
    RegFileDocument& operator=(const RegFileDocument&) = delete;

    /// Null where the file couldn't be parsed.
    [[nodiscard]] const xercesc::DOMElement* root() const { return m_root; }
    /// The file alone without places.
    [[nodiscard]] tq::Place placeOf(const xercesc::DOMElement& element) const;

private:
    struct Parser;
    struct Failure;

    [[nodiscard]] std::optional<Failure> parse();
    void report(const Failure& failure, const tq::DiagnosticSink& sink);

    std::string m_path;
    std::unique_ptr<Parser> m_parser;
    const xercesc::DOMElement* m_root = nullptr;
};

} // namespace hbs::regfile
