// A register description file as a document in memory.
#pragma once

#include <xercesc/dom/DOMElement.hpp>

#include <memory>
#include <string>

#include "regfile/PlacedDomParser.h"

namespace hbs::regfile {

/// Owns the XML parser, and with it the document.
class RegFileDocument {
public:
    /// Opens and parses the file, which may be protected. A fault is reported as one line on the
    /// standard error stream. Keeping the places of all elements takes time and memory.
    explicit RegFileDocument(const std::string& path, bool withPlaces = false);
    ~RegFileDocument();

    RegFileDocument(const RegFileDocument&) = delete;
    RegFileDocument& operator=(const RegFileDocument&) = delete;

    /// Null where the file couldn't be parsed.
    [[nodiscard]] const xercesc::DOMElement* root() const { return m_root; }
    /// Zeros without places.
    [[nodiscard]] Place placeOf(const xercesc::DOMElement& element) const;

private:
    struct Parser;

    std::unique_ptr<Parser> m_parser;
    const xercesc::DOMElement* m_root = nullptr;
};

} // namespace hbs::regfile
