// A DOM parser that remembers where in the file each element starts.
#pragma once

#include <xercesc/dom/DOMElement.hpp>
#include <xercesc/parsers/XercesDOMParser.hpp>

#include <unordered_map>

namespace hbs::regfile {

/// From 1; columns count UTF-16 code units.
struct Place {
    XMLFileLoc line = 0;
    XMLFileLoc column = 0;
};

/// Xerces reports where a start tag ends, not where it starts. So each hook records the end of its
/// part of the document: an element starts where the part before it ends.
class PlacedDomParser final : public xercesc::XercesDOMParser {
public:
    explicit PlacedDomParser(xercesc::MemoryManager& memory)
        : xercesc::XercesDOMParser(nullptr, &memory) {}

    /// An element that comes from an entity has the place of the reference.
    [[nodiscard]] Place placeOf(const xercesc::DOMNode* element) const;

    void startElement(const xercesc::XMLElementDecl& element, const unsigned int urlId,
                      const XMLCh* prefix, const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                      const XMLSize_t count, const bool isEmpty, const bool isRoot) override;
    void endElement(const xercesc::XMLElementDecl& element, const unsigned int urlId,
                    const bool isRoot, const XMLCh* prefix) override;
    void docCharacters(const XMLCh* text, const XMLSize_t length, const bool isCData) override;
    void ignorableWhitespace(const XMLCh* text, const XMLSize_t length,
                             const bool isCData) override;
    void docComment(const XMLCh* text) override;
    void docPI(const XMLCh* target, const XMLCh* data) override;
    void endEntityReference(const xercesc::XMLEntityDecl& entity) override;
    void XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                 const XMLCh* actualEncoding) override;

private:
    void keepEnd();

    Place m_end{1, 1};
    std::unordered_map<const xercesc::DOMNode*, Place> m_places;
};

} // namespace hbs::regfile
