#include "regfile/PlacedDomParser.h"

#include <xercesc/internal/XMLScanner.hpp>
#include <xercesc/sax/Locator.hpp>

namespace hbs::regfile {

using Base = xercesc::XercesDOMParser;

Place PlacedDomParser::placeOf(const xercesc::DOMNode* element) const {
    const auto found = m_places.find(element);
    return found == m_places.end() ? Place() : found->second;
}

void PlacedDomParser::startElement(const xercesc::XMLElementDecl& element, const unsigned int urlId,
                                   const XMLCh* prefix,
                                   const xercesc::RefVectorOf<xercesc::XMLAttr>& attributes,
                                   const XMLSize_t count, const bool isEmpty, const bool isRoot) {
    const Place start = m_end;
    Base::startElement(element, urlId, prefix, attributes, count, isEmpty, isRoot);
    // The current node, even after the end of an empty element.
    m_places.emplace(getCurrentNode(), start);
    keepEnd();
}

void PlacedDomParser::endElement(const xercesc::XMLElementDecl& element, const unsigned int urlId,
                                 const bool isRoot, const XMLCh* prefix) {
    Base::endElement(element, urlId, isRoot, prefix);
    keepEnd();
}

void PlacedDomParser::docCharacters(const XMLCh* text, const XMLSize_t length, const bool isCData) {
    Base::docCharacters(text, length, isCData);
    keepEnd();
}

void PlacedDomParser::ignorableWhitespace(const XMLCh* text, const XMLSize_t length,
                                          const bool isCData) {
    Base::ignorableWhitespace(text, length, isCData);
    keepEnd();
}

void PlacedDomParser::docComment(const XMLCh* text) {
    Base::docComment(text);
    keepEnd();
}

void PlacedDomParser::docPI(const XMLCh* target, const XMLCh* data) {
    Base::docPI(target, data);
    keepEnd();
}

void PlacedDomParser::endEntityReference(const xercesc::XMLEntityDecl& entity) {
    Base::endEntityReference(entity);
    keepEnd();
}

void PlacedDomParser::XMLDecl(const XMLCh* version, const XMLCh* encoding, const XMLCh* standalone,
                              const XMLCh* actualEncoding) {
    Base::XMLDecl(version, encoding, standalone, actualEncoding);
    keepEnd();
}

void PlacedDomParser::keepEnd() {
    const xercesc::Locator& place = *getScanner()->getLocator();
    m_end = {place.getLineNumber(), place.getColumnNumber()};
}

} // namespace hbs::regfile
