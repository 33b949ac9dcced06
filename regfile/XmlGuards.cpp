#include "regfile/XmlGuards.h"

#include <xercesc/sax/SAXParseException.hpp>

#include "regfile/LocalText.h"
#include "regfile/XmlLimits.h"

namespace hbs::regfile {

std::string toText(const XMLCh* wide) {
    const LocalText narrow(xercesc::XMLString::transcode(wide));
    return narrow == nullptr ? std::string() : narrow.get();
}

void FaultHandler::raise(const xercesc::SAXParseException& fault) {
    throw Fault(toText(fault.getMessage()), fault.getLineNumber(), fault.getColumnNumber());
}

xercesc::InputSource* NoEntities::resolveEntity(const XMLCh* /*publicId*/, const XMLCh* systemId) {
    throw Fault("the external entity '" + toText(systemId) + "' is not read");
}

XmlGuards::XmlGuards() {
    m_expansions.setEntityExpansionLimit(limits::kExpansions);
}

} // namespace hbs::regfile
