#include "fuzz/Expect.h"

#include <xercesc/framework/MemBufInputSource.hpp>
#include <xercesc/parsers/SAXParser.hpp>
#include <xercesc/sax/SAXParseException.hpp>
#include <xercesc/util/PlatformUtils.hpp>

#include <cstdlib>

#include "base/RapidJson.h"

namespace fuzz {

void expectJson(const std::string& text) {
    rapidjson::Document document;
    document.Parse<rapidjson::kParseValidateEncodingFlag | rapidjson::kParseIterativeFlag>(
        text.data(), text.size());
    if (document.HasParseError())
        std::abort();
}

void expectXml(const std::string& text) {
    static const bool isReady = (xercesc::XMLPlatformUtils::Initialize(), true);
    (void)isReady;
    xercesc::SAXParser parser;
    parser.setValidationScheme(xercesc::SAXParser::Val_Never);
    try {
        parser.parse(xercesc::MemBufInputSource(reinterpret_cast<const XMLByte*>(text.data()),
                                                text.size(), "text"));
    } catch (const xercesc::SAXParseException&) {
        std::abort();
    }
}

} // namespace fuzz
